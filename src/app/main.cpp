#include "adapters/linux/LinuxSystem.h"
#include "app/AmbertideApp.h"
#include "app/Process.h"
#include "ports/UserDefaults.h"

#include <QCoreApplication>
#include <QThread>

#include <cstdlib>
#include <future>
#include <memory>
#include <optional>

namespace {

using namespace ambertide;
using namespace std::chrono_literals;

/// Stores what has been changed so far, if the main thread and the disk answer in time.
void keepSettings(UserDefaults &userDefaults)
{
    constexpr auto timeForEach = 150ms;
    if (QThread::currentThread() != qApp->thread()) {
        const auto turn = std::make_shared<std::promise<void>>(); // shared: it may come long after this wait has ended
        QMetaObject::invokeMethod(
            qApp, [turn] { turn->set_value(); }, Qt::QueuedConnection);
        turn->get_future().wait_for(timeForEach);
    }
    userDefaults.flush(timeForEach);
}

AmbertideApp::Ending run(const std::filesystem::path &program, int argc, char *argv[])
{
    LinuxSystem system(program, argc, argv);
    auto &userDefaults = system.ports().userDefaults;
    process::setLastWork([&] {
        system.endDisplays(200ms);
        keepSettings(userDefaults);
    });
    std::optional<AmbertideApp> app(std::in_place, system.ports());
    if (!app->launch()) {
        userDefaults.flush(300ms); // it may have had to make a broken file anew
        std::_Exit(EXIT_SUCCESS);  // the displays are the other copy's, and must not be given back
    }
    system.serve({.model = app->viewModel(),
                  .activate = [&app] { app->activate(); },
                  .actions = {{"quit", AmbertideApp::quit},
                              {"settings", [&app] { app->showSettings(); }},
                              {"check-for-updates", [&app] { app->checkForUpdates(); }}}});
    const auto ending = app->run();
    if (ending == AmbertideApp::Ending::Superfluous) {
        userDefaults.flush(300ms);
        std::_Exit(EXIT_SUCCESS);
    }
    system.stopServing();
    app.reset();
    process::ignoreEndingSignals(); // their handler must not use what is being destroyed from here on
    if (!system.waitUntilIdle(1s)) {
        // The display server does not answer. Waiting for it is the guardian's job.
        userDefaults.flush(300ms);
        std::_Exit(EXIT_SUCCESS);
    }
    return ending;
}

} // namespace

int main(int argc, char *argv[])
{
    process::prepare();
    const auto program = LinuxSystem::runningProgram();
    if (run(program, argc, argv) == AmbertideApp::Ending::Restart)
        process::startAnew(program, argv);
    return EXIT_SUCCESS;
}
