#pragma once

#include "platform/UpdateInstaller.h"

#include <optional>

namespace ambertide {

/// Keeps what it is asked to install until the test says what came of it.
class FakeUpdateInstaller final : public UpdateInstaller
{
public:
    struct Request
    {
        std::filesystem::path package;
        std::string signature;
        std::function<void(Result)> done;
    };
    std::optional<Request> request;

    void install(const std::filesystem::path &package, std::string_view signature,
                 std::function<void(Result)> done) override
    {
        request = {package, std::string(signature), std::move(done)};
    }
};

} // namespace ambertide
