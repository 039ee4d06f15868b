#pragma once

#include "ports/MainBundle.h"

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
        return values.contains(key) ? std::optional(values.find(key)->second) : std::nullopt;
    }

    std::filesystem::path bundlePath;
    std::map<std::string, std::string, std::less<>> values;
};

} // namespace ambertide
