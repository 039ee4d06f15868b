#pragma once

#include "adapters/linux/bus/SdBusWriter.h"
#include "support/Tint.h"

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <ranges>
#include <string_view>
#include <thread>
#include <vector>

namespace ambertide {

/// Stands in for mutter, and for the settings daemon's Night Light, on the session bus: takes tables with the newest
/// serial only, loses them with each change, and would crash by malformed ones: unequal, or of a size that none has.
class FakeMutter
{
public:
    enum class Habit { regular, silent, refusing, wrongTypes, thousandsOfCrtcs, hugeTables, noTables, noProperties };

    /// CRTCs with tables of these sizes.
    explicit FakeMutter(const std::vector<std::size_t> &sizes) : m_sizes(sizes)
    {
        resetTables();
        for (const auto *name : {"org.gnome.Mutter.DisplayConfig", "org.gnome.SettingsDaemon.Color"})
            sd_bus_request_name(m_bus.get(), name, 0);
        const auto handler = [](sd_bus_message *message, void *mutter, sd_bus_error *) {
            return static_cast<FakeMutter *>(mutter)->answer(message);
        };
        sd_bus_add_filter(m_bus.get(), nullptr, handler, this);
        m_thread = std::jthread([this](const std::stop_token &stop) { run(stop); });
    }

    std::atomic<Habit> habit = Habit::regular;
    std::atomic<int> malformed = 0;
    std::atomic<int> written = 0;
    std::atomic<int> calls = 0;

    /// Whether so many CRTCs, from the first on, are tinted so.
    bool shows(float blue, std::ptrdiff_t crtcs = 2) const
    {
        const std::scoped_lock lock(m_lock);
        return std::ranges::all_of(m_shown | std::views::take(crtcs),
                                   [blue](const auto &levels) { return isTint(levels, blue); });
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
        sd_bus_emit_signal(m_bus.get(), "/org/gnome/Mutter/DisplayConfig", "org.gnome.Mutter.DisplayConfig",
                           "MonitorsChanged", "");
        sd_bus_flush(m_bus.get());
    }
    /// Kelvin, or 6500 to have it off.
    void setNightLight(std::uint32_t temperature)
    {
        const std::scoped_lock lock(m_lock);
        m_temperature = temperature;
        resetTables();
        sd_bus_emit_signal(m_bus.get(), "/org/gnome/SettingsDaemon/Color", "org.freedesktop.DBus.Properties",
                           "PropertiesChanged", "sa{sv}as", "org.gnome.SettingsDaemon.Color", 2, "NightLightActive",
                           "b", int(temperature != 6500), "Temperature", "u", temperature, 0);
        sd_bus_flush(m_bus.get());
    }

private:
    using Levels = std::vector<std::uint16_t>; ///< red, green, blue

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

    int answer(sd_bus_message *call)
    {
        if (sd_bus_message_is_method_call(call, nullptr, nullptr) <= 0)
            return 0;
        ++calls;
        const std::string_view member = sd_bus_message_get_member(call);
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
        return sd_bus_reply_method_return(call, "v", "b", int(m_temperature != 6500));
    }

    int answerResources(sd_bus_message *call)
    {
        const auto reply = SdBusWriter::reply(call).add(m_serial.load()).take();
        const std::size_t count = habit == Habit::thousandsOfCrtcs ? 50'000 : m_sizes.size();
        sd_bus_message_open_container(reply.get(), 'a', "(uxiiiiiuaua{sv})");
        for (std::size_t i = 0; i < count; ++i)
            sd_bus_message_append(reply.get(), "(uxiiiiiuaua{sv})", static_cast<std::uint32_t>(i), std::int64_t{7}, 0,
                                  0, 640, 480, i == 2 ? -1 : 0, 0U, 1, 0U, 0);
        sd_bus_message_close_container(reply.get());
        sd_bus_message_append(reply.get(), "a(uxiausauaua{sv})", 1, 0U, std::int64_t{7}, 0, 1, 0U, "DP-1", 1, 0U, 0, 1,
                              "vendor", "s", "lab");
        sd_bus_message_append(reply.get(), "a(uxuudu)ii", 0, 1, 1);
        return sd_bus_send(nullptr, reply.get(), nullptr);
    }

    int answerTables(sd_bus_message *call, std::uint32_t crtc)
    {
        const auto reply = SdBusWriter::reply(call).take();
        const Levels told = habit == Habit::hugeTables ? Levels(300'000) : m_shown[crtc];
        const std::size_t size = habit == Habit::noTables ? 0 : told.size() / 3;
        for (std::size_t channel = 0; channel < 3; ++channel)
            sd_bus_message_append_array(reply.get(), 'q', told.data() + channel * size, 2 * size);
        return sd_bus_send(nullptr, reply.get(), nullptr);
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
            if (size < 2 * 256 || size > 2 * 4096 || taken.size() != channel * (size / 2))
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
