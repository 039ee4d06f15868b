// ambertide_bench [tables] [ramps] [application] [bus] [windows]: prints the figures of docs/figures.md, each beside
// what it has to reach. All of them together take some five minutes, half of which is spent watching the application do
// nothing. ambertide_bench compare: prints the table that compares it with other programs.

#include "Compare.h"
#include "Measuring.h"
#include "ProcessCost.h"
#include "Session.h"
#include "Windows.h"
#include "adapters/linux/bus/BusNames.h"
#include "adapters/linux/displays/randr/RandrBackend.h"
#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "adapters/qt/ThreadTaskExecutor.h"
#include "display/DisplayManager.h"
#include "support/ChildProcess.h"
#include "support/Fakes.h"
#include "support/PrivateXServer.h"
#include "support/RandrClient.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

/// Keeps the optimiser from removing a value that is not used.
void use(const void *value) { asm volatile("" : : "g"(value) : "memory"); }

void measureTables()
{
    constexpr int calls = 20'000;
    const auto computing = [] {
        for (int i = 0; i < calls; ++i) {
            const auto tables = DisplayManager::createGammaTables(2000 + i % 4500);
            use(&tables);
        }
    };
    const auto filling = [] {
        GammaTables tables;
        for (int i = 0; i < calls; ++i) {
            const auto value = static_cast<float>(i);
            for (auto *table : {&tables.red, &tables.green, &tables.blue})
                table->fill(value);
            use(&tables);
        }
    };
    const double ratio = medianOf(31, [&] { return millisecondsFor(computing) / millisecondsFor(filling); });
    print("createGammaTables, in times of filling 768 floats", ratio, 6, "");
}

/// Passes everything on and measures a ramp, with the periodic pass or two that fall into it.
class TimedDisplays final : public DisplayServices
{
public:
    explicit TimedDisplays(DisplayServices &displays) : m_displays(displays) {}
    std::vector<DisplayIdentifier> activeDisplays() override { return m_displays.activeDisplays(); }
    void setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables) override
    {
        const std::scoped_lock lock(m_lock);
        if (std::exchange(isRampExpected, false)) {
            costAtStart = ProcessCost::of(getpid());
            startedAt = Clock::now();
        }
        m_displays.setTransferTables(displays, tables);
        // The last step shows the target already; the ramp ends with the second write of it, one interval later.
        if (tables.green == awaited && ++writesOfTarget == 2) {
            cost = ProcessCost::of(getpid()) - costAtStart;
            duration = Clock::now() - startedAt;
        }
    }
    void restoreSystemColours() override { m_displays.restoreSystemColours(); }

    /// The next write begins a ramp to this temperature.
    void expectRamp(double temperature)
    {
        const std::scoped_lock lock(m_lock);
        awaited = DisplayManager::createGammaTables(temperature).green;
        writesOfTarget = 0;
        isRampExpected = true;
    }

    ProcessCost cost;            ///< of the last ramp, from its first step to its end
    Clock::duration duration{0}; ///< likewise

private:
    DisplayServices &m_displays;
    std::mutex m_lock; ///< guards all below and what is measured
    GammaTables::Table awaited = {};
    int writesOfTarget = 0;
    bool isRampExpected = false;
    ProcessCost costAtStart;
    Clock::time_point startedAt;
};

struct Ramp
{
    double seconds;
    double cpuMillisecondsAStep;
};

/// One ramp between two tints on the server's displays, in this process.
Ramp measureRamp(const PrivateXServer &server, std::size_t displayCount)
{
    BackendDisplayServices randr([&server] {
        return std::make_unique<RandrBackend>(server.display(), AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian");
    });
    randr.restoreSystemColours(); // returns when the server has been connected to
    if (randr.activeDisplays().size() != displayCount)
        throw std::runtime_error("the X server shows another number of displays");
    TimedDisplays displays(randr);
    static FakeSystemWake wake;
    ThreadTaskExecutor executor;
    const auto manager = DisplayManager::create(displays, executor, wake);
    const auto rampTo = [&](double temperature) {
        displays.expectRamp(temperature);
        manager->setTemperature(temperature);
        do {
            std::this_thread::sleep_for(1s); // seldom: this thread's own cost is counted, too
        } while (manager->temperature() != temperature);
        executor.waitUntilIdle(1s);
    };
    rampTo(4000);
    rampTo(2500);
    const Ramp ramp = {std::chrono::duration<double>(displays.duration).count(),
                       Milliseconds(displays.cost.cpuTime).count() / 60};
    randr.restoreSystemColours();
    return ramp;
}

void measureRamps()
{
    PrivateXServer server(PrivateXServer::Kind::dummy);
    std::vector<Ramp> one;
    for (int run = 0; run < 5; ++run)
        one.push_back(measureRamp(server, 1));
    for (int output = 1; output < 16; ++output)
        server.switchOn(QStringLiteral("DUMMY%1").arg(output));
    std::vector<Ramp> sixteen;
    for (int run = 0; run < 5; ++run)
        sixteen.push_back(measureRamp(server, 16));

    const auto medianRamp = [](const std::vector<Ramp> &ramps, double Ramp::*member) {
        std::vector<double> values;
        for (const auto &ramp : ramps)
            values.push_back(ramp.*member);
        return median(values);
    };
    const double cpuOfOne = medianRamp(one, &Ramp::cpuMillisecondsAStep);
    print("ramp, one display: CPU a step", cpuOfOne, 0.06, "ms");
    print("ramp, sixteen displays: in times of one", medianRamp(sixteen, &Ramp::cpuMillisecondsAStep) / cpuOfOne, 4,
          "");
    print("ramp, one display: length of its 60 steps", medianRamp(one, &Ramp::seconds), 2.1, "s");
    print("ramp, sixteen displays: length of its 60 steps", medianRamp(sixteen, &Ramp::seconds), 2.1, "s");
}

/// What this machine takes for a thread to wake up and go back to sleep, and nothing else.
std::chrono::nanoseconds bareWakeUp()
{
    constexpr int wakeUps = 12;
    const auto before = ProcessCost::of(getpid());
    for (int i = 0; i < wakeUps; ++i)
        std::this_thread::sleep_for(700ms);
    return (ProcessCost::of(getpid()) - before).cpuTime / wakeUps;
}

void measureIdle(Session &session, const char *state, double wakeUps, double cpuMilliseconds)
{
    const auto before = ProcessCost::of(session.process());
    std::this_thread::sleep_for(60s);
    const auto cost = ProcessCost::of(session.process()) - before;
    print((std::string("idle, ") + state + ": wake-ups a minute").c_str(), static_cast<double>(cost.wakeUps), wakeUps,
          "");
    print((std::string("idle, ") + state + ": CPU a minute").c_str(), Milliseconds(cost.cpuTime).count(),
          cpuMilliseconds, "ms");
    const auto bare = bareWakeUp() * cost.wakeUps;
    std::printf("%-66s %9.2f\n", "  in times of as many wake-ups of a thread that does nothing",
                Milliseconds(cost.cpuTime) / Milliseconds(bare));
}

void measureApplication()
{
    Session session;

    print("start to the first table, beyond the pauses of 550 ms",
          medianOf(9,
                   [&] {
                       session.store("3400");
                       const auto before = session.shown();
                       const auto start = Clock::now();
                       session.start();
                       waitFor("no table after start", [&] { return session.shown() != before; });
                       const double time = Milliseconds(Clock::now() - start).count();
                       session.stop();
                       return time - 550;
                   }),
          150, "ms");

    session.store("6500");
    session.start();
    session.waitUntilReached();
    std::this_thread::sleep_for(8s); // it waits for a tray during the first five
    print("memory, no window opened: proportional set size",
          static_cast<double>(memoryOf(session.process(), "Pss:")) / 1024, 22, "MB");
    measureIdle(session, "neutral", 60, 2);

    print("ambertide get, whole process",
          medianOf(101, [&] { return millisecondsFor([&] { session.tool({QStringLiteral("get")}); }); }), 10, "ms");

    session.tool({QStringLiteral("set"), QStringLiteral("3000")});
    session.settle();
    int next = 0;
    print("ambertide set to the first new table",
          medianOf(11,
                   [&] {
                       const auto before = session.shown();
                       const auto start = Clock::now();
                       session.tool({QStringLiteral("set"), QString::number(next++ % 2 == 0 ? 4000 : 3000)});
                       waitFor("no table after set", [&] { return session.shown() != before; });
                       const double time = Milliseconds(Clock::now() - start).count();
                       session.settle();
                       return time;
                   }),
          120, "ms");

    const auto guardian = childOf(session.process(), "AmbertideGuardian");
    const auto guardianBefore = ProcessCost::of(guardian);
    measureIdle(session, "tinted", 120, 4);
    print("guardian, tinted: private memory",
          static_cast<double>(memoryOf(guardian, "Private_Clean:") + memoryOf(guardian, "Private_Dirty:")) / 1024, 1,
          "MB");
    print("guardian, tinted: wake-ups a minute",
          static_cast<double>((ProcessCost::of(guardian) - guardianBefore).wakeUps), 0, "");
    print("memory, tinted, no window opened: proportional set size",
          static_cast<double>(memoryOf(session.process(), "Pss:")) / 1024, 22, "MB");
}

void measureBusInterfaces()
{
    Session session;
    session.store("3000");
    session.start();
    session.waitUntilReached();
    Caller caller;
    print("KRunner's Match, whole call",
          medianOf(201,
                   [&] {
                       return millisecondsFor([&] {
                           caller.call(bus_names::runnerPath, "org.kde.krunner1", "Match", "s",
                                       "set display temperature to 3400K in Ambertide");
                       });
                   }),
          2, "ms");
    print("GNOME Shell's GetResultMetas for five, whole call",
          medianOf(201,
                   [&] {
                       return millisecondsFor([&] {
                           caller.call(bus_names::searchProviderPath, "org.gnome.Shell.SearchProvider2",
                                       "GetResultMetas", "as", 5, "k1000", "k1900", "k2700", "k3400", "k4200");
                       });
                   }),
          2, "ms");
    session.settle();
    int next = 0;
    print("a write of the property Temperature to the first new table",
          medianOf(11,
                   [&] {
                       const auto before = session.shown();
                       const auto start = Clock::now();
                       caller.call(bus_names::applicationPath, "org.freedesktop.DBus.Properties", "Set", "ssv",
                                   bus_names::temperatureInterface, "Temperature", "d",
                                   next++ % 2 == 0 ? 4000.0 : 3000.0);
                       waitFor("no table after the write", [&] { return session.shown() != before; });
                       const double time = Milliseconds(Clock::now() - start).count();
                       session.settle();
                       return time;
                   }),
          120, "ms");
    session.stop();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    try {
        const std::vector<std::pair<QString, void (*)()>> groups = {
            {QStringLiteral("tables"), measureTables},           {QStringLiteral("ramps"), measureRamps},
            {QStringLiteral("application"), measureApplication}, {QStringLiteral("bus"), measureBusInterfaces},
            {QStringLiteral("windows"), measureWindows},         {QStringLiteral("compare"), compare},
        };
        for (const auto &[name, measure] : groups) {
            if ((argc < 2 && measure != compare) || QCoreApplication::arguments().contains(name))
                measure();
        }
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
