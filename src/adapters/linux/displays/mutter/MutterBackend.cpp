#include "adapters/linux/displays/mutter/MutterBackend.h"

#include "adapters/linux/bus/CallBatch.h"
#include "adapters/linux/bus/SdBusReader.h"
#include "adapters/linux/displays/mutter/MutterRestore.h"
#include "adapters/linux/displays/mutter/NightLight.h"
#include "adapters/linux/displays/mutter/TintName.h"
#include "adapters/linux/displays/shared/timeAsleep.h"
#include "base/Console.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr auto patienceForBus = 300ms;
/// A session that is still starting may be slow, and what is found then holds until Ambertide is started again.
constexpr auto patienceForService = 4s;
constexpr auto betweenAttempts = 2s;
/// While a socket is full.
constexpr auto betweenFlushes = 10ms;
/// Mutter writes its own tables once more when it has read a display's profile, and nothing announces that.
constexpr std::array looksAfterChange{1500ms, 1000ms, 750ms, 500ms, 300ms, 150ms, 50ms};
/// Handled in one go; limited, so that a flood holds nothing else up.
constexpr int mostMessages = 200;
/// For a whole restore; when that is not enough, it is tried again, or the guardian does it. On a busy machine colord
/// alone takes half of it, and restoring without the calibration would flash other colours.
constexpr auto longestRestore = 900ms;
constexpr auto betweenRestores = 300ms;
constexpr int mostRestores = 10;

/// False when the connection has ended.
bool handleMessages(sd_bus *bus)
{
    int handled = 1;
    for (int i = 0; i < mostMessages && handled > 0; ++i)
        handled = sd_bus_process(bus, nullptr);
    return handled >= 0;
}

} // namespace

std::string MutterBackend::refusal()
{
    const auto deadline = Clock::now() + patienceForService;
    const auto bus = openSdBus(SdBusKind::session);
    const bool isThere = bus && waitUntilReady(bus.get(), deadline) &&
                         !ownerOfName(bus.get(), display_config::service, deadline).value_or("").empty();
    return isThere ? "" : "GNOME's display service is not on the session bus";
}

MutterBackend::MutterBackend(const std::filesystem::path &guardian)
    : m_guardian(guardian, {"mutter", guardian.parent_path() / "AmbertideMutterRestorer"}), m_timeAsleep(timeAsleep())
{
    if (connect())
        processUntil(m_bus.get(), Clock::now() + patienceForBus, [this] { return m_crtcs->hasBeenRead(); });
}

std::span<const DisplayIdentifier> MutterBackend::displays() const
{
    return m_crtcs ? m_crtcs->active() : std::span<const DisplayIdentifier>();
}

bool MutterBackend::write(std::span<const DisplayIdentifier> displays, const GammaTables &tables, Wait wait)
{
    if (wait == Wait::Never && (!m_bus || !m_isTinting))
        return !m_bus && Clock::now() < m_nextAttempt;
    if (!connect())
        return true;
    m_nextRestore.reset();
    if (m_crtcs->hasBeenRead() && !displays.empty())
        beginTint();
    noteWake();
    m_crtcs->show(displays, tables);
    return wait == Wait::Allowed || due().value_or(Clock::time_point::max()) > Clock::now() + betweenFlushes;
}

void MutterBackend::restore()
{
    m_restoresLeft = mostRestores;
    tryToRestore();
}

void MutterBackend::tryToRestore()
{
    m_nextRestore.reset();
    if (!connect())
        return;
    m_looks.clear();
    m_crtcs->clear();
    if (!m_systemBus)
        connectToSystemBus();
    const auto deadline = Clock::now() + longestRestore;
    const auto unknown =
        m_isTinting ? IfUnknown::leaveOut : IfUnknown::writeNothing; // without a tint mutter's own are shown anyway
    if (waitUntilReady(m_bus.get(), deadline) &&
        restoreMutterDisplays(m_bus.get(), m_systemBus.get(), deadline, unknown)) {
        m_guardian.dismiss();
        if (std::exchange(m_isTinting, false))
            tint_name::release(m_bus.get());
    } else if (m_isTinting && --m_restoresLeft > 0) {
        m_nextRestore = Clock::now() + betweenRestores;
    }
}

int MutterBackend::descriptor() const { return m_bus ? m_sources.descriptor() : -1; }

std::optional<DisplayBackend::Clock::time_point> MutterBackend::due() const
{
    auto soonest = Clock::time_point::max();
    if (!m_looks.empty())
        soonest = m_looks.back();
    if (m_nextRestore)
        soonest = std::min(soonest, *m_nextRestore);
    for (auto *const bus : {m_bus.get(), m_systemBus.get()}) {
        std::uint64_t microseconds = 0;
        if (bus && sd_bus_get_timeout(bus, &microseconds) > 0 && std::in_range<std::int64_t>(microseconds))
            soonest = std::min(soonest, Clock::time_point(std::chrono::microseconds(microseconds)));
        if (bus && (sd_bus_get_events(bus) & POLLOUT) != 0)
            soonest = std::min(soonest, Clock::now() + betweenFlushes);
    }
    return soonest == Clock::time_point::max() ? std::nullopt : std::optional(soonest);
}

bool MutterBackend::process()
{
    if (m_nextRestore && *m_nextRestore <= Clock::now())
        tryToRestore();
    if (m_systemBus && !handleMessages(m_systemBus.get())) {
        m_profileWatch = {};
        m_systemBus.reset();
    }
    if (m_bus && !handleMessages(m_bus.get()))
        disconnect();
    if (!m_bus)
        return false;
    if (m_crtcs->takeReloaded())
        noteChange();
    if (m_crtcs->isContested() && !std::exchange(m_isContestSaid, true))
        console::print(
            "Another program keeps changing the colors of the displays; Ambertide's come back every 2 seconds.");
    if (!m_looks.empty() && m_looks.back() <= Clock::now()) {
        m_looks.pop_back();
        m_mustWriteAgain = true;
    }
    return std::exchange(m_mustWriteAgain, false);
}

bool MutterBackend::connect()
{
    if (m_bus)
        return true;
    const auto now = Clock::now();
    if (now < m_nextAttempt)
        return false;
    m_nextAttempt = now + betweenAttempts;
    m_bus = openSdBus(SdBusKind::session);
    if (!m_bus)
        return false;
    m_sources.add(sd_bus_get_fd(m_bus.get()));
    m_crtcs.emplace(m_bus.get());
    connectToSystemBus();

    const auto changed = [](sd_bus_message *, void *context, sd_bus_error *) {
        static_cast<MutterBackend *>(context)->m_crtcs->reload();
        return 0;
    };
    watch(signalRule({{"sender", display_config::service}, {"member", "MonitorsChanged"}}), changed);
    watch(signalRule(
              {{"sender", "org.freedesktop.DBus"}, {"member", "NameOwnerChanged"}, {"arg0", display_config::service}}),
          changed);
    watch(signalRule({{"sender", night_light::service}, {"path", night_light::path}, {"member", "PropertiesChanged"}}),
          [](sd_bus_message *signal, void *context, sd_bus_error *) {
              SdBusReader reader(signal);
              if (reader.text() == night_light::interface)
                  static_cast<MutterBackend *>(context)->takeNightLight(reader.dictionary());
              return 0;
          });
    askForNightLight();
    m_crtcs->reload();
    return true;
}

void MutterBackend::connectToSystemBus()
{
    m_profileWatch = {};
    m_systemBus = openSdBus(SdBusKind::system);
    if (!m_systemBus)
        return;
    m_sources.add(sd_bus_get_fd(m_systemBus.get()));
    const auto changed = [](sd_bus_message *, void *context, sd_bus_error *) {
        static_cast<MutterBackend *>(context)->noteChange();
        return 0;
    };
    m_profileWatch = watchColourProfiles(m_systemBus.get(), changed, this);
}

/// What mutter was told is lost with the connection; the next write or restore makes a new one.
void MutterBackend::disconnect()
{
    m_profileWatch = {};
    m_slots.clear();
    m_crtcs.reset();
    m_looks.clear();
    m_systemBus.reset();
    m_bus.reset();
    m_isTinting = false;
    m_nextAttempt = Clock::now() + betweenAttempts;
}

void MutterBackend::watch(const std::string &rule, sd_bus_message_handler_t handler)
{
    m_slots.push_back(addMatch(m_bus.get(), rule, handler, this));
}

void MutterBackend::askForNightLight()
{
    const auto call = getProperty(m_bus.get(), night_light::service, night_light::path, night_light::interface,
                                  night_light::activeProperty);
    const auto handler = [](sd_bus_message *reply, void *context, sd_bus_error *) {
        SdBusReader reader(reply);
        const auto value = sd_bus_message_is_method_error(reply, nullptr) != 0 ? std::nullopt : reader.variant();
        if (value)
            static_cast<MutterBackend *>(context)->takeNightLight(UserInfo{{night_light::activeProperty, *value}});
        return 0;
    };
    sd_bus_slot *slot = nullptr;
    if (call && sd_bus_call_async(m_bus.get(), &slot, call.get(), handler, this, 0) >= 0)
        m_slots.emplace_back(slot);
}

/// Called once mutter has answered, so the bus has told this connection its name by now.
void MutterBackend::beginTint()
{
    const char *uniqueName = nullptr;
    if (sd_bus_get_unique_name(m_bus.get(), &uniqueName) < 0)
        return;
    m_guardian.guard(tint_name::claimOf(uniqueName));
    if (std::exchange(m_isTinting, true))
        return;
    tint_name::acquire(m_bus.get());
    sayNightLight();
}

void MutterBackend::takeNightLight(const std::optional<UserInfo> &properties)
{
    if (!properties)
        return;
    if (const auto isActive = properties->find(night_light::activeProperty); isActive != properties->end()) {
        const auto *const value = std::get_if<bool>(&isActive->second);
        m_isNightLightActive = value && *value;
        sayNightLight();
    }
    if (properties->contains(night_light::temperatureProperty)) {
        m_crtcs->forgetShown();
        m_mustWriteAgain = true;
    }
}

void MutterBackend::sayNightLight()
{
    if (!m_isNightLightActive)
        m_isNightLightSaid = false;
    else if (m_isTinting && !std::exchange(m_isNightLightSaid, true))
        console::print("GNOME's Night Light is on, too: it shows again when Ambertide is at neutral.");
}

/// Displays have come, gone or been set up anew, and mutter has given them its own tables.
void MutterBackend::noteChange()
{
    m_crtcs->forgetShown();
    m_mustWriteAgain = true;
    m_looks.clear();
    if (!m_isTinting)
        return;
    const auto now = Clock::now();
    for (const auto delay : looksAfterChange)
        m_looks.push_back(now + delay);
}

/// If the machine has slept meanwhile, it is unknown what the displays show.
void MutterBackend::noteWake()
{
    const auto asleep = timeAsleep();
    if (asleep - std::exchange(m_timeAsleep, asleep) > 100ms)
        m_crtcs->forgetShown();
}

} // namespace ambertide
