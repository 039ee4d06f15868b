#pragma once

#include <QUrl>
#include <QWidget>

namespace ambertide {

class Button;
class MainBundle;
class TextLabel;

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

protected:
    void changeEvent(QEvent *event) override;

private:
    void fitDescription();

    TextLabel *m_description = nullptr;
    Button *m_checkForUpdates = nullptr;
};

} // namespace ambertide
