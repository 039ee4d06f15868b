#pragma once

#include "platform/UserDefaults.h"

#include <map>
#include <variant>

namespace ambertide {

/// Settings in memory. One thread.
class FakeUserDefaults final : public UserDefaults
{
public:
    bool hasObject(std::string_view key) const override { return m_values.contains(key); }
    double doubleValue(std::string_view key) const override { return value<double>(key).value_or(0); }
    bool boolValue(std::string_view key) const override { return value<bool>(key).value_or(false); }
    std::optional<std::string> data(std::string_view key) const override { return value<std::string>(key); }

    void setDouble(std::string_view key, double number) override { set(key, number); }
    void setInteger(std::string_view key, long long number) override { set(key, static_cast<double>(number)); }
    void setBool(std::string_view key, bool isOn) override { set(key, isOn); }
    void setData(std::string_view key, std::string_view bytes) override { set(key, std::string(bytes)); }

private:
    using Value = std::variant<double, bool, std::string>;

    void set(std::string_view key, Value value) { m_values.insert_or_assign(std::string(key), std::move(value)); }
    template <typename Held>
    std::optional<Held> value(std::string_view key) const
    {
        const auto found = m_values.find(key);
        const auto *held = found != m_values.end() ? std::get_if<Held>(&found->second) : nullptr;
        return held != nullptr ? std::optional(*held) : std::nullopt;
    }

    std::map<std::string, Value, std::less<>> m_values;
};

} // namespace ambertide
