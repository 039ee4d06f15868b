#include "adapters/linux/displays/OwnScope.h"

#include "adapters/linux/bus/SdBusWriter.h"

#include <string>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 250ms;
/// Microseconds. The guardian ignores SIGTERM, and a log-out must not wait long for one that hangs.
constexpr std::uint64_t timeToStop = 2'000'000;

} // namespace

void moveToOwnScope(pid_t process)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto bus = openSdBus(SdBusKind::session);
    if (!bus || !waitUntilReady(bus.get(), deadline))
        return;
    auto call = SdBusWriter::call(bus.get(), "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                                  "org.freedesktop.systemd1.Manager", "StartTransientUnit");
    call.withoutStarting().add("app-ambertide-guardian-" + std::to_string(process) + ".scope", "fail");
    const auto property = [&call](const char *name, const char *type, auto addValue) {
        call.container('r', "sv", [&] { call.add(name).container('v', type, addValue); });
    };
    call.container('a', "(sv)", [&] {
        property("PIDs", "au",
                 [&] { call.container('a', "u", [&] { call.add(static_cast<std::uint32_t>(process)); }); });
        property("TimeoutStopUSec", "t", [&] { call.add(timeToStop); });
        property("CollectMode", "s", [&] { call.add("inactive-or-failed"); });
    });
    call.container('a', "(sa(sv))", [] {});
    callUntil(bus.get(), call.take().get(), deadline);
}

} // namespace ambertide
