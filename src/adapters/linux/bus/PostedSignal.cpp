#include "adapters/linux/bus/PostedSignal.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"

#include <cstdint>
#include <utility>

namespace ambertide::posted_signal {

namespace {

constexpr std::string_view alwaysKept = "temperature";

int appendValue(sd_bus_message *message, const UserInfoValue &value)
{
    if (const auto *truth = std::get_if<bool>(&value))
        return sd_bus_message_append(message, "v", "b", static_cast<int>(*truth));
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return sd_bus_message_append(message, "v", "x", *integer);
    if (const auto *number = std::get_if<double>(&value))
        return sd_bus_message_append(message, "v", "d", *number);
    return sd_bus_message_append(message, "v", "s", std::get<std::string>(value).c_str());
}

bool appendDictionary(sd_bus_message *message, const UserInfo &userInfo)
{
    if (sd_bus_message_open_container(message, 'a', "{sv}") < 0)
        return false;
    for (const auto &[key, value] : userInfo) {
        if (std::holds_alternative<OpaqueValue>(value))
            continue;
        if (sd_bus_message_open_container(message, 'e', "sv") < 0 ||
            sd_bus_message_append_basic(message, 's', key.c_str()) < 0 || appendValue(message, value) < 0 ||
            sd_bus_message_close_container(message) < 0)
            return false;
    }
    return sd_bus_message_close_container(message) >= 0;
}

} // namespace

std::string matchRule(std::string_view name, std::string_view sender)
{
    std::string rule = "type='signal'";
    const auto require = [&rule](std::string_view key, std::string_view value) {
        rule.append(",").append(key).append("='").append(value).append("'");
    };
    if (!sender.empty())
        require("sender", sender);
    require("path", bus_names::applicationPath);
    require("interface", bus_names::notificationInterface);
    require("member", bus_names::postedMember);
    require("arg0", name);
    return rule;
}

SdBusMessage encode(sd_bus *bus, const Notification &notification)
{
    sd_bus_message *message = nullptr;
    if (sd_bus_message_new_signal(bus, &message, bus_names::applicationPath, bus_names::notificationInterface,
                                  bus_names::postedMember) < 0)
        return nullptr;
    SdBusMessage owner(message);
    if (sd_bus_message_append_basic(message, 's', notification.name.c_str()) < 0 ||
        !appendDictionary(message, notification.userInfo.value_or(UserInfo())))
        return nullptr;
    return owner;
}

std::optional<Notification> decode(sd_bus_message *message)
{
    if (sd_bus_message_has_signature(message, "sa{sv}") <= 0)
        return std::nullopt;
    SdBusReader reader(message);
    auto name = reader.text();
    auto userInfo = name ? reader.dictionary(alwaysKept) : std::nullopt;
    if (!userInfo)
        return std::nullopt;
    Notification notification{.name = *std::move(name), .userInfo = std::nullopt};
    if (!userInfo->empty())
        notification.userInfo = std::move(userInfo);
    return notification;
}

} // namespace ambertide::posted_signal
