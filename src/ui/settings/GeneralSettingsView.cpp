#include "ui/settings/GeneralSettingsView.h"

#include "base/Task.h"
#include "integration/CLIInstaller.h"
#include "integration/LaunchHelper.h"
#include "ui/controls/Alert.h"
#include "ui/controls/Card.h"
#include "ui/controls/SwitchRow.h"
#include "ui/settings/AboutView.h"
#include "ui/settings/CommandLineToolView.h"

#include <QTimer>
#include <QVBoxLayout>

namespace ambertide {

namespace {

constexpr int padding = 20;
constexpr int topPadding = 6;
constexpr int gap = 14;

/// Why it failed, in words for the user; nothing on success.
std::optional<QString> run(CLIInstaller &installer, void (CLIInstaller::*operation)())
{
    try {
        (installer.*operation)();
    } catch (const CLIInstaller::CLIError &error) {
        return error.errorDescription();
    }
    return std::nullopt;
}

} // namespace

GeneralSettingsView::GeneralSettingsView(SettingsViewModel &viewModel, const SettingsPorts &ports)
    : m_viewModel(viewModel), m_installer(ports.installer), m_installerExecutor(ports.installerExecutor),
      m_sparkleUpdater(ports.createUpdaterController, ports.userDefaults),
      m_updaterObservation(
          m_sparkleUpdater.observe([this] { QTimer::singleShot(0, this, &GeneralSettingsView::refresh); })),
      m_cliInstalled(ports.installer.isInstalled()),
      m_about(new AboutView(ports.mainBundle, m_sparkleUpdater.hasFeed())),
      m_launchAtLogin(new SwitchRow(tr("Start at login"), SwitchRow::Kind::Form)),
      m_automaticallyCheckForUpdates(new SwitchRow(tr("Automatically check for updates"), SwitchRow::Kind::Form)),
      m_commandLineTool(new CommandLineToolView)
{
    auto *start = new Card;
    start->addRow(m_launchAtLogin);
    start->addRow(m_automaticallyCheckForUpdates);
    auto *tool = new Card;
    tool->addRow(m_commandLineTool);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, topPadding, padding, padding);
    column->setSpacing(gap);
    column->addWidget(m_about);
    column->addWidget(start);
    column->addWidget(tool);
    column->addStretch();

    m_automaticallyCheckForUpdates->setVisible(m_sparkleUpdater.hasFeed());
    m_commandLineTool->setInstalled(m_cliInstalled);
    refresh();
    connect(m_about, &AboutView::checkForUpdatesPressed, this, [this] { m_sparkleUpdater.checkForUpdates(); });
    connect(m_launchAtLogin, &SwitchRow::toggled, this, [this, &helper = ports.launchHelper](bool isOn) {
        m_viewModel.setLaunchAtLogin(isOn);
        helper.setLaunchAtLogin(isOn);
    });
    connect(m_automaticallyCheckForUpdates, &SwitchRow::clicked, this,
            [this](bool isOn) { m_sparkleUpdater.setAutomaticallyChecksForUpdates(isOn); });
    connect(m_commandLineTool, &CommandLineToolView::pressed, this, &GeneralSettingsView::installOrUninstall);
    connect(&m_viewModel, &SettingsViewModel::changed, this, &GeneralSettingsView::refresh);
}

void GeneralSettingsView::refresh()
{
    m_about->setCanCheckForUpdates(m_sparkleUpdater.canCheckForUpdates());
    m_launchAtLogin->setChecked(m_viewModel.launchAtLogin());
    m_automaticallyCheckForUpdates->setChecked(m_sparkleUpdater.automaticallyChecksForUpdates());
}

void GeneralSettingsView::installOrUninstall()
{
    setProcessing(true);
    // The application may end, and this view with it, before the prompt has been answered.
    Task::start(
        m_installerExecutor,
        [view = QPointer(this), &installer = m_installer, wasInstalled = m_cliInstalled](TaskContext task) -> Async {
            const auto error = run(installer, wasInstalled ? &CLIInstaller::uninstall : &CLIInstaller::install);
            co_await task.onMain();
            if (view)
                view->finish(wasInstalled, error);
        });
}

void GeneralSettingsView::finish(bool wasInstalled, const std::optional<QString> &error)
{
    if (!error) {
        m_cliInstalled = !wasInstalled;
        m_commandLineTool->setInstalled(m_cliInstalled);
    }
    setProcessing(false);
    if (error)
        showAlert(*window(), tr("CLI Installation"), *error, tr("OK"));
    Q_EMIT processingEnded();
}

void GeneralSettingsView::setProcessing(bool isProcessing)
{
    if (isProcessing)
        m_formerFocus = window()->focusWidget();
    m_isProcessing = isProcessing;
    m_commandLineTool->setProcessing(isProcessing);
    setDisabled(isProcessing);
    if (isProcessing)
        m_focusMeanwhile = window()->focusWidget();
    else if (m_formerFocus && m_formerFocus->isVisible() && m_focusMeanwhile == window()->focusWidget())
        m_formerFocus->setFocus(Qt::OtherFocusReason);
}

} // namespace ambertide
