#include "adapters/linux/displays/kwin/NightLightService.h"

#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/displays/kwin/announceNightLight.h"

#include <cstdint>
#include <utility>

namespace ambertide {

namespace {

constexpr char name[] = "org.kde.KWin";
constexpr char path[] = "/org/kde/KWin/NightLight";
constexpr char interface[] = "org.kde.KWin.NightLight";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

bool isTrue(const UserInfo &properties, std::string_view key)
{
    const auto found = properties.find(key);
    return found != properties.end() && found->second == UserInfoValue(true);
}

SdBusDeadline fromNow() { return std::chrono::steady_clock::now() + NightLightService::patience; }

} // namespace

bool NightLightService::connect()
{
    if (m_bus && sd_bus_is_open(m_bus.get()) > 0)
        return true;
    disconnect();
    m_bus = openSdBus(SdBusKind::session);
    if (!m_bus || !waitUntilReady(m_bus.get(), fromNow())) {
        disconnect();
        return false;
    }
    m_properties =
        addMatch(m_bus.get(), signalRule({{"sender", name}, {"path", path}, {"member", "PropertiesChanged"}}),
                 receiveProperties, this);
    m_configChanges = addMatch(m_bus.get(), signalRule({{"path", "/kwinrc"}, {"member", "ConfigChanged"}}),
                               receiveConfigChange, this);
    return true;
}

void NightLightService::disconnect()
{
    m_properties.reset();
    m_configChanges.reset();
    m_bus.reset();
    m_changes = {};
}

std::optional<NightLightState> NightLightService::state()
{
    sd_bus_message *call = nullptr;
    if (!connect() || sd_bus_message_new_method_call(m_bus.get(), &call, name, path, propertiesInterface, "GetAll") < 0)
        return std::nullopt;
    const SdBusMessage owner(call);
    sd_bus_message_set_auto_start(call, 0);
    sd_bus_message_append_basic(call, 's', interface);
    const auto reply = callUntil(m_bus.get(), call, fromNow());
    const auto properties = reply ? SdBusReader(reply.get()).dictionary() : std::nullopt;
    if (!properties)
        return std::nullopt;
    const auto temperature = integerValue(*properties, "currentTemperature").value_or(0);
    return NightLightState{.isAvailable = isTrue(*properties, "available"),
                           .isRunning = isTrue(*properties, "running"),
                           .isInhibited = isTrue(*properties, "inhibited"),
                           .temperature = std::in_range<int>(temperature) ? static_cast<int>(temperature) : 0};
}

void NightLightService::announceChange()
{
    if (!connect() || announceNightLight(&sd_bus_emit_signal, m_bus.get()) < 0)
        return;
    processUntil(m_bus.get(), fromNow(), [this] {
        std::uint64_t left = 0;
        return sd_bus_get_n_queued_write(m_bus.get(), &left) < 0 || left == 0;
    });
}

int NightLightService::descriptor() const { return m_bus ? sd_bus_get_fd(m_bus.get()) : -1; }

bool NightLightService::hasMore() const
{
    std::uint64_t left = 0;
    return m_bus && sd_bus_get_n_queued_read(m_bus.get(), &left) >= 0 && left > 0;
}

NightLightService::Changes NightLightService::process()
{
    int handled = m_bus ? 1 : 0;
    for (int most = 100; handled > 0 && most > 0; --most) // the rest waits for the next turn
        handled = sd_bus_process(m_bus.get(), nullptr);
    const auto changes = std::exchange(m_changes, {});
    if (handled < 0)
        disconnect();
    return changes;
}

int NightLightService::receiveProperties(sd_bus_message *message, void *context, sd_bus_error *)
{
    SdBusReader reader(message);
    if (reader.text() == interface) {
        const auto properties = reader.dictionary();
        auto &changes = static_cast<NightLightService *>(context)->m_changes;
        if (properties && properties->contains("inhibited"))
            changes.isInhibited = isTrue(*properties, "inhibited");
    }
    return 0;
}

int NightLightService::receiveConfigChange(sd_bus_message *, void *context, sd_bus_error *)
{
    static_cast<NightLightService *>(context)->m_changes.settings = true;
    return 0;
}

} // namespace ambertide
