#pragma once

#include "platform/MainBundle.h"

#include <map>

namespace ambertide {

class FakeMainBundle final : public MainBundle
{
public:
    std::map<std::string, std::string, std::less<>> values;

    std::filesystem::path path() const override { return "/nowhere/Ambertide.app"; }
    std::optional<std::string> information(std::string_view key) const override
    {
        const auto found = values.find(key);
        return found != values.end() ? std::optional(found->second) : std::nullopt;
    }
};

} // namespace ambertide
