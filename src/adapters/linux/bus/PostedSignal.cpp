#include "adapters/linux/bus/PostedSignal.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/bus/SdBusWriter.h"

#include <utility>

namespace ambertide::posted_signal {

namespace {

constexpr std::string_view alwaysKept = "temperature";

} // namespace

std::string matchRule(std::string_view name, std::string_view sender)
{
    return signalRule({{"sender", sender},
                       {"path", bus_names::applicationPath},
                       {"interface", bus_names::notificationInterface},
                       {"member", bus_names::postedMember},
                       {"arg0", name}});
}

SdBusMessage encode(sd_bus *bus, const Notification &notification)
{
    return SdBusWriter::signal(bus, bus_names::applicationPath, bus_names::notificationInterface,
                               bus_names::postedMember)
        .add(notification.name, notification.userInfo.value_or(UserInfo()))
        .take();
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
