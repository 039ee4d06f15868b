#pragma once

#include "adapters/linux/bus/SdBus.h"

#include <poll.h>

#include <atomic>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace ambertide {

/// Stands in for mutter, and for the settings daemon's Night Light, on the session bus: takes tables with the newest
/// serial only, loses them with each change, and would crash by malformed ones.
class FakeMutter
{
public:
    using Levels = std::vector<std::uint16_t>; ///< red, green, blue
    enum class Habit { regular, silent, refusing, wrongTypes, thousandsOfCrtcs, hugeTables, noTables, noProperties };

    /// CRTCs with tables of these sizes.
    explicit FakeMutter(const std::vector<std::size_t> &sizes) : m_sizes(sizes)
    {
        resetTables();
        for (const auto *name : {"org.gnome.Mutter.DisplayConfig", "org.gnome.SettingsDaemon.Color"})
            sd_bus_request_name(m_bus.get(), name, 0);
        sd_bus_add_filter(m_bus.get(), nullptr, handle, this);
        m_thread = std::jthread([this](const std::stop_token &stop) { run(stop); });
    }

    std::atomic<Habit> habit = Habit::regular;
    std::atomic<int> malformed = 0;
    std::atomic<int> written = 0;
    std::atomic<int> calls = 0;

    Levels shown(std::size_t crtc) const
    {
        const std::scoped_lock lock(m_lock);
        return m_shown[crtc];
    }
    /// As by another program.
    void writeOver(std::size_t crtc)
    {
        const std::scoped_lock lock(m_lock);
        m_shown[crtc].assign(3 * m_sizes[crtc], 77);
    }
    void makeSerialStale() { ++m_serial; }
    void changeMonitors()
    {
        const std::scoped_lock lock(m_lock);
        ++m_serial;
        resetTables();
        sd_bus_emit_signal(m_bus.get(), path, service, "MonitorsChanged", "");
        sd_bus_flush(m_bus.get());
    }
    void setNightLight(bool isActive, std::uint32_t temperature)
    {
        const std::scoped_lock lock(m_lock);
        m_temperature = temperature;
        resetTables();
        sd_bus_emit_signal(m_bus.get(), "/org/gnome/SettingsDaemon/Color", "org.freedesktop.DBus.Properties",
                           "PropertiesChanged", "sa{sv}as", "org.gnome.SettingsDaemon.Color", 2, "NightLightActive",
                           "b", isActive, "Temperature", "u", temperature, 0);
        sd_bus_flush(m_bus.get());
    }

private:
    static constexpr char path[] = "/org/gnome/Mutter/DisplayConfig";
    static constexpr char service[] = "org.gnome.Mutter.DisplayConfig";

    void run(const std::stop_token &stop)
    {
        while (!stop.stop_requested()) {
            pollfd source{sd_bus_get_fd(m_bus.get()), POLLIN, 0};
            poll(&source, 1, 5);
            const std::scoped_lock lock(m_lock);
            while (habit != Habit::silent && sd_bus_process(m_bus.get(), nullptr) > 0) {
            }
        }
    }

    /// Something that neither a tint nor a restore leaves behind.
    void resetTables()
    {
        m_shown.clear();
        for (const auto size : m_sizes)
            m_shown.emplace_back(3 * size, 1);
    }

    static int handle(sd_bus_message *call, void *context, sd_bus_error *)
    {
        return static_cast<FakeMutter *>(context)->answer(call);
    }
    int answer(sd_bus_message *call)
    {
        const std::string_view member = sd_bus_message_get_member(call) ? sd_bus_message_get_member(call) : "";
        if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0)
            return 0;
        ++calls;
        if (member == "Get")
            return habit == Habit::noProperties ? 1 : answerProperty(call);
        if (habit == Habit::wrongTypes)
            return sd_bus_reply_method_return(call, "sa{sv}", "none", 0);
        if (member == "GetResources")
            return answerResources(call);
        std::uint32_t serial = 0;
        std::uint32_t crtc = 0;
        sd_bus_message_read(call, "uu", &serial, &crtc);
        if (serial != m_serial || crtc >= m_sizes.size() || (habit == Habit::refusing && member == "SetCrtcGamma"))
            return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "stale");
        return member == "SetCrtcGamma" ? takeTables(call, crtc) : answerTables(call, crtc);
    }

    int answerProperty(sd_bus_message *call) const
    {
        const char *name = nullptr;
        sd_bus_message_read(call, "ss", nullptr, &name);
        if (std::string_view(name) == "Temperature")
            return sd_bus_reply_method_return(call, "v", "u", m_temperature);
        return sd_bus_reply_method_return(call, "v", "b", m_temperature != 6500);
    }

    int answerResources(sd_bus_message *call)
    {
        sd_bus_message *reply = nullptr;
        sd_bus_message_new_method_return(call, &reply);
        const SdBusMessage owner(reply);
        sd_bus_message_append(reply, "u", m_serial.load());
        const std::size_t count = habit == Habit::thousandsOfCrtcs ? 50'000 : m_sizes.size();
        sd_bus_message_open_container(reply, 'a', "(uxiiiiiuaua{sv})");
        for (std::size_t i = 0; i < count; ++i)
            sd_bus_message_append(reply, "(uxiiiiiuaua{sv})", static_cast<std::uint32_t>(i), std::int64_t{7}, 0, 0, 640,
                                  480, i == 2 ? -1 : 0, 0U, 1, 0U, 0);
        sd_bus_message_close_container(reply);
        sd_bus_message_append(reply, "a(uxiausauaua{sv})", 1, 0U, std::int64_t{7}, 0, 1, 0U, "DP-1", 1, 0U, 0, 1,
                              "vendor", "s", "lab");
        sd_bus_message_append(reply, "a(uxuudu)ii", 0, 1, 1);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    int answerTables(sd_bus_message *call, std::uint32_t crtc)
    {
        sd_bus_message *reply = nullptr;
        sd_bus_message_new_method_return(call, &reply);
        const SdBusMessage owner(reply);
        const Levels told = habit == Habit::hugeTables ? Levels(15'000'000) : m_shown[crtc];
        const std::size_t size = habit == Habit::noTables ? 0 : told.size() / 3;
        for (std::size_t channel = 0; channel < 3; ++channel)
            sd_bus_message_append_array(reply, 'q', told.data() + channel * size, 2 * size);
        return sd_bus_send(nullptr, reply, nullptr);
    }

    int takeTables(sd_bus_message *call, std::uint32_t crtc)
    {
        Levels taken;
        for (std::size_t channel = 1; channel <= 3; ++channel) {
            const void *levels = nullptr;
            std::size_t size = 0;
            sd_bus_message_read_array(call, 'q', &levels, &size);
            const auto *const first = static_cast<const std::uint16_t *>(levels);
            taken.insert(taken.end(), first, first + size / 2);
            if (size == 0 || taken.size() != channel * (size / 2))
                ++malformed;
        }
        ++written;
        m_shown[crtc] = std::move(taken);
        return sd_bus_reply_method_return(call, "");
    }

    const std::vector<std::size_t> m_sizes;
    mutable std::mutex m_lock; ///< guards what follows
    const SdBusConnection m_bus = openSdBus(SdBusKind::session);
    std::vector<Levels> m_shown;
    std::atomic<std::uint32_t> m_serial = 7;
    std::uint32_t m_temperature = 6500;
    std::jthread m_thread;
};

} // namespace ambertide
