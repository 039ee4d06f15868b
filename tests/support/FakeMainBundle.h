#pragma once

#include "platform/MainBundle.h"

#include <functional>
#include <map>

namespace ambertide {

class FakeMainBundle final : public MainBundle
{
public:
    explicit FakeMainBundle(std::filesystem::path path) : bundlePath(std::move(path)) {}

    std::filesystem::path path() const override { return bundlePath; }
    std::optional<std::string> information(std::string_view key) const override
    {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }

    std::filesystem::path bundlePath;
    std::map<std::string, std::string, std::less<>> values;
};

} // namespace ambertide
