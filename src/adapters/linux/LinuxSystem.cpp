#include "adapters/linux/LinuxSystem.h"

#include "adapters/linux/ActivationToken.h"
#include "adapters/linux/SessionApplication.h"
#include "adapters/linux/ToolkitBus.h"
#include "adapters/linux/bus/DBusNotificationCenter.h"
#include "adapters/linux/bus/DBusRunningApplications.h"
#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/desktop/FeedbackdHapticPerformer.h"
#include "adapters/linux/desktop/LogindSystemWake.h"
#include "adapters/linux/desktop/PortalAppearance.h"
#include "adapters/linux/desktop/XdgLoginItem.h"
#include "adapters/linux/displays/SessionDisplayServices.h"
#include "adapters/linux/elevation/PkexecPrivilegedRunner.h"
#include "adapters/linux/elevation/makeUpdateInstaller.h"
#include "adapters/linux/panel/DesktopPanelPlacement.h"
#include "adapters/linux/services/DBusApplicationObject.h"
#include "adapters/linux/services/DBusTemperatureObject.h"
#include "adapters/linux/services/GnomeSearchProvider.h"
#include "adapters/linux/services/KRunnerObject.h"
#include "adapters/linux/tray/DesktopTrayIcon.h"
#include "adapters/qt/PlistMainBundle.h"
#include "adapters/qt/SettingsUserDefaults.h"
#include "adapters/qt/SystemCalendar.h"
#include "adapters/qt/ThreadTaskExecutor.h"
#include "model/presets/SetColorTemperatureShortcut.h"

#include <system_error>
#include <utility>

namespace ambertide {

/// In the order of construction, which is the reverse of that of destruction: the toolkit changes the environment while
/// it starts, so no other thread may read that yet, and the tasks end before what they work on.
struct LinuxSystem::Adapters
{
    SessionApplication application;
    std::unique_ptr<BackendDisplayServices> displays;
    PlistMainBundle mainBundle;
    SystemCalendar calendar;
    SettingsUserDefaults userDefaults;
    DBusSession sessionBus{SdBusKind::session};
    DBusSession systemBus{SdBusKind::system};
    DBusNotificationCenter distributedNotifications{sessionBus};
    DBusRunningApplications runningApplications{sessionBus};
    LogindSystemWake wake{systemBus};
    ThreadTaskExecutor executor;
    std::unique_ptr<UpdateInstaller> updateInstaller;
    PkexecPrivilegedRunner privilegedRunner;
    XdgLoginItem loginItem{mainBundle};
    PortalAppearance appearance{sessionBus};
    FeedbackdHapticPerformer haptics{sessionBus};
    DesktopPanelPlacement placement;
    ThreadTaskExecutor installerExecutor;

    Adapters(const std::filesystem::path &program, int &argc, char **argv)
        : application(argc, argv), displays(makeSessionDisplayServices(program.parent_path())), mainBundle(program),
          updateInstaller(makeUpdateInstaller(program.parent_path())), privilegedRunner(program.parent_path())
    {
    }
};

struct LinuxSystem::Services
{
    /// The request, with which a window may take the keyboard if the desktop has sent a token for that.
    static std::function<void(const std::string &)> withToken(std::function<void()> request)
    {
        return [request = std::move(request)](const std::string &activationToken) {
            if (!activationToken.empty())
                activation_token::offer(activationToken);
            request();
        };
    }

    std::function<void(const std::string &)> activate;
    std::function<void(ColorTemperature)> perform;
    DBusApplicationObject application;
    KRunnerObject runner;
    GnomeSearchProvider searchProvider;
    DBusTemperatureObject temperature;

    Services(Adapters &adapters, Requests requests)
        : activate(withToken(std::move(requests.activate))), perform([&adapters](ColorTemperature preset) {
              SetColorTemperatureShortcut{preset}.perform(adapters.userDefaults, adapters.distributedNotifications);
          }),
          application(adapters.sessionBus, activate, perform), runner(adapters.sessionBus, perform),
          searchProvider(adapters.sessionBus, perform, [this] { activate({}); }),
          temperature(adapters.sessionBus, requests.model)
    {
        for (auto &[name, action] : requests.actions)
            application.setAction(name, withToken(std::move(action)));
    }
};

std::filesystem::path LinuxSystem::runningProgram()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

LinuxSystem::LinuxSystem(const std::filesystem::path &program, int &argc, char **argv)
{
    keepToolkitOffMuteBus();
    m_adapters = std::make_unique<Adapters>(program, argc, argv);
}

LinuxSystem::~LinuxSystem() = default;

SystemPorts LinuxSystem::ports()
{
    return {
        .displays = *m_adapters->displays,
        .executor = m_adapters->executor,
        .installerExecutor = m_adapters->installerExecutor,
        .userDefaults = m_adapters->userDefaults,
        .distributedNotifications = m_adapters->distributedNotifications,
        .runningApplications = m_adapters->runningApplications,
        .wake = m_adapters->wake,
        .calendar = m_adapters->calendar,
        .mainBundle = m_adapters->mainBundle,
        .loginItem = m_adapters->loginItem,
        .privilegedRunner = m_adapters->privilegedRunner,
        .updateInstaller = *m_adapters->updateInstaller,
        .appearance = m_adapters->appearance,
        .haptics = m_adapters->haptics,
        .placement = m_adapters->placement,
        .createTrayIcon = [this](TrayIcon::Callbacks callbacks) -> std::unique_ptr<TrayIcon> {
            return std::make_unique<DesktopTrayIcon>(m_adapters->sessionBus,
                                                     m_adapters->mainBundle.path() / "Contents/Resources/icons",
                                                     std::move(callbacks));
        },
        .isStartedByPerson = !QCoreApplication::arguments().contains(QLatin1String(XdgLoginItem::startArgument)),
    };
}

void LinuxSystem::serve(Requests requests)
{
    m_services = std::make_unique<Services>(*m_adapters, std::move(requests));
    m_adapters->loginItem.bringUpToDate();
}

void LinuxSystem::stopServing() { m_services.reset(); }

void LinuxSystem::endDisplays(std::chrono::milliseconds limit) { m_adapters->displays->end(limit); }

bool LinuxSystem::waitUntilIdle(std::chrono::milliseconds limit) { return m_adapters->executor.waitUntilIdle(limit); }

} // namespace ambertide
