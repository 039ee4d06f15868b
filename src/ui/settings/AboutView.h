#pragma once

#include <QUrl>
#include <QWidget>

namespace ambertide {

class Button;
class MainBundle;
class TextLabel;

/// What this program is: icon, name, version and purpose, its page on the web, and a button that checks for updates.
class AboutView final : public QWidget
{
    Q_OBJECT

public:
    /// Without a feed the button for updates is hidden.
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
