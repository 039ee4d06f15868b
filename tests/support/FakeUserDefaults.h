#pragma once

#include "ports/UserDefaults.h"

#include <functional>
#include <map>
#include <variant>

namespace ambertide {

/// A store in memory that keeps the kind in which a value was written.
class FakeUserDefaults final : public UserDefaults
{
public:
    std::map<std::string, std::variant<double, long long, bool, std::string>, std::less<>> values;

    bool hasObject(std::string_view key) override { return values.contains(key); }
    double doubleValue(std::string_view key) override
    {
        const auto found = values.find(key);
        if (found == values.end())
            return 0;
        if (const auto *integer = std::get_if<long long>(&found->second))
            return static_cast<double>(*integer);
        const auto *number = std::get_if<double>(&found->second);
        return number != nullptr ? *number : 0;
    }
    bool boolValue(std::string_view key) override
    {
        const auto found = values.find(key);
        return found != values.end() && found->second == decltype(found->second)(true);
    }
    std::optional<std::string> data(std::string_view key) override
    {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(std::get<std::string>(found->second));
    }
    void setDouble(std::string_view key, double value) override { values[std::string(key)] = value; }
    void setInteger(std::string_view key, long long value) override { values[std::string(key)] = value; }
    void setBool(std::string_view key, bool value) override { values[std::string(key)] = value; }
    void setData(std::string_view key, std::string_view bytes) override
    {
        values[std::string(key)] = std::string(bytes);
    }
    void flush(std::chrono::milliseconds) override {}
};

} // namespace ambertide
