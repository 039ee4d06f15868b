#pragma once

#include "ui/settings/GeneralSettingsView.h"

#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace ambertide {

class Page;
class TextLabel;

/// The Settings window with its two tabs, and the model behind them. Below the tabs it says what keeps settings from
/// being saved or displays from being guarded, as long as something does. Main thread.
///
/// It opens on General, in front of other windows, as high as the tab needs and the screen allows; it is wider than
/// usual only for large text. Closing deletes it, but while the tool is being installed it is only hidden until that
/// has ended. So its owner holds it in a QPointer, and creates one when the user asks for it and there is none.
class SettingsView final : public QWidget
{
    Q_OBJECT

public:
    using Ports = SettingsPorts;

    SettingsView(AppViewModel &appViewModel, const Ports &ports);
    ~SettingsView() override;

    /// To be called when the window is shown.
    void showSchedule() { m_settingsViewModel.setSelectedTab(1); }

Q_SIGNALS:
    /// The keys for quitting a program were pressed.
    void quitRequested();

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    void addTab(QLatin1String symbol, const QString &title, QWidget *content);
    void showSelectedTab();
    void showTrouble();
    void fit();

    AppViewModel &m_appViewModel;
    UserDefaults &m_userDefaults;
    SettingsViewModel m_settingsViewModel;
    GeneralSettingsView *m_general = nullptr;
    QTabBar *m_tabs = nullptr;
    QStackedWidget *m_pages = nullptr;
    TextLabel *m_trouble = nullptr;
};

} // namespace ambertide
