#pragma once

#include <QUrl>
#include <QWidget>

namespace ambertide {

class Button;
class MainBundle;

/// What this program is: icon, name, version, what it is for, its page on the web and the way to a newer version.
class AboutView final : public QWidget
{
    Q_OBJECT

public:
    /// Without a feed there is nothing to check for updates.
    AboutView(const MainBundle &bundle, bool hasFeed);

    void setCanCheckForUpdates(bool canCheck);

Q_SIGNALS:
    void checkForUpdatesPressed();

private:
    Button *m_checkForUpdates = nullptr;
};

} // namespace ambertide
