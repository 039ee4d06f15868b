#include "adapters/linux/bus/SdBusApplicationConnection.h"

#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/bus/PostedSignal.h"
#include "adapters/linux/bus/SdBusWriter.h"

#include <cerrno>

namespace ambertide {

namespace {

int keepNotification(sd_bus_message *message, void *context, sd_bus_error *)
{
    *static_cast<std::optional<Notification> *>(context) = posted_signal::decode(message);
    return 0;
}

bool send(sd_bus *bus, const Notification &notification)
{
    const auto message = posted_signal::encode(bus, notification);
    return message && sd_bus_send(bus, message.get(), nullptr) >= 0;
}

} // namespace

ApplicationConnection::Outcome SdBusApplicationConnection::connect()
{
    m_bus = openSdBus(SdBusKind::session);
    if (!m_bus || !waitUntilReady(m_bus.get(), m_deadline))
        return Outcome::noTransport;
    const auto owner = ownerOfName(m_bus.get(), bus_names::application, m_deadline);
    m_owner = owner.value_or("");
    if (!owner)
        return Outcome::noTransport;
    return m_owner.empty() ? Outcome::notRunning : Outcome::done;
}

ApplicationConnection::Outcome SdBusApplicationConnection::post(const Notification &notification)
{
    if (const auto outcome = connect(); outcome != Outcome::done)
        return outcome;
    // The bus delivers the messages of one connection in order, so once the application answers the ping, it has
    // received the post.
    const auto ping =
        SdBusWriter::call(m_bus.get(), m_owner.c_str(), bus_names::applicationPath, "org.freedesktop.DBus.Peer", "Ping")
            .take();
    if (!ping || !send(m_bus.get(), notification) || !callUntil(m_bus.get(), ping.get(), m_deadline))
        return Outcome::noAnswer;
    return Outcome::done;
}

ApplicationConnection::Answer SdBusApplicationConnection::request(const Notification &notification,
                                                                  std::string_view answer)
{
    if (const auto outcome = connect(); outcome != Outcome::done)
        return {outcome, std::nullopt};
    std::optional<Notification> received;
    const auto match = addMatch(m_bus.get(), posted_signal::matchRule(answer, m_owner), keepNotification, &received);
    if (!match || !send(m_bus.get(), notification) ||
        !processUntil(m_bus.get(), m_deadline, [&received] { return received.has_value(); }))
        return {Outcome::noAnswer, std::nullopt};
    return {Outcome::done, std::move(received)};
}

} // namespace ambertide
