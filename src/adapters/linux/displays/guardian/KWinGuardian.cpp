#include "adapters/linux/displays/guardian/KWinGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/kwin/announceNightLight.h"
#include "adapters/linux/displays/kwin/settings/giveNightLightBack.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>

namespace ambertide {

namespace {

/// How long to wait for the dead application's lock on the loan. When the whole session ends, the guardian has no more
/// time than that; and a copy that has taken the lock over does not let go of it.
constexpr std::chrono::milliseconds patienceForLoan{400};

constexpr std::uint64_t patienceForKWin = 300'000; ///< microseconds

/// The bus, through a library that is loaded only when this is made: while the guardian waits, the library would cost
/// more memory than everything else. Never unloaded.
class LateBus
{
public:
    LateBus()
    {
        void *const library = dlopen("libsystemd.so.0", RTLD_NOW);
        if (library && find(library, m_open, "sd_bus_open_user") && find(library, m_emit, "sd_bus_emit_signal") &&
            find(library, m_get, "sd_bus_get_property_trivial") &&
            find(library, m_limit, "sd_bus_set_method_call_timeout") &&
            find(library, m_finish, "sd_bus_flush_close_unref") && m_open(&m_bus) >= 0)
            m_limit(m_bus, patienceForKWin);
    }
    ~LateBus()
    {
        if (m_bus)
            m_finish(m_bus);
    }
    LateBus(const LateBus &) = delete;
    LateBus &operator=(const LateBus &) = delete;

    void announce()
    {
        if (m_bus)
            announceNightLight(m_emit, m_bus);
    }
    std::optional<NightLightState> state()
    {
        int isRunning = 0;
        std::uint32_t temperature = 0;
        if (!m_bus || !get("running", 'b', &isRunning) || !get("currentTemperature", 'u', &temperature))
            return std::nullopt;
        return NightLightState{.isRunning = isRunning != 0,
                               .temperature = static_cast<int>(std::min(temperature, 10'000U))};
    }

private:
    template <typename Function>
    static bool find(void *library, Function *&function, const char *name)
    {
        function = reinterpret_cast<Function *>(dlsym(library, name));
        return function != nullptr;
    }
    bool get(const char *property, char type, void *value)
    {
        return m_get(m_bus, "org.kde.KWin", "/org/kde/KWin/NightLight", "org.kde.KWin.NightLight", property, nullptr,
                     type, value) >= 0;
    }

    decltype(&sd_bus_open_user) m_open = nullptr;
    decltype(&sd_bus_emit_signal) m_emit = nullptr;
    decltype(&sd_bus_get_property_trivial) m_get = nullptr;
    decltype(&sd_bus_set_method_call_timeout) m_limit = nullptr;
    decltype(&sd_bus_flush_close_unref) m_finish = nullptr;
    sd_bus *m_bus = nullptr;
};

} // namespace

bool guardKWin(const char *state, int channel)
{
    if (!GuardianChannel(channel).awaitEnd())
        return true;
    auto files = NightLightLoan::filesOfUser();
    files.state = state;
    NightLightLoan loan(std::move(files));
    std::optional<LateBus> bus;
    const auto lateBus = [&bus]() -> LateBus & { return bus ? *bus : bus.emplace(); };
    giveNightLightBack(loan, patienceForLoan,
                       {.announce = [&] { lateBus().announce(); }, .state = [&] { return lateBus().state(); }});
    return true;
}

} // namespace ambertide
