#pragma once

#include "ports/Calendar.h"
#include "ports/UpdateInstaller.h"
#include "ports/UserDefaults.h"
#include "update/Appcast.h"
#include "update/HttpsDownloader.h"
#include "update/UpdateConfiguration.h"

#include <QBuffer>
#include <QObject>
#include <QTemporaryFile>

#include <memory>

namespace ambertide {

/// One check for an update and what follows from it, up to the installed package. Windows show its state and pass on
/// what the user decides; a decision that does not fit the state is ignored. Main thread.
class UpdateSession final : public QObject
{
    Q_OBJECT

public:
    enum class Origin {
        Manual,   ///< the user asked: every state is worth showing
        Automatic ///< only an update that was found is worth showing, and once that valid feeds have stopped coming
    };
    enum class State {
        Checking,
        UpToDate,
        Found,
        Downloading,
        ReadyToInstall, ///< downloaded and verified
        Installing,
        Installed, ///< now or before, but the running program is still the old one
        Failed,
        Ended
    };

    /// Everything passed by reference must outlive the session.
    UpdateSession(const UpdateConfiguration &configuration, UserDefaults &defaults, const Calendar &calendar,
                  UpdateInstaller &installer, Origin origin);

    /// Starts the check; after a failure, starts it again.
    void start();
    /// To be called when the user asks for a check while this session is under way.
    void makeManual();

    State state() const { return m_state; }
    bool isWorthShowing() const;
    const RunningVersion &running() const { return m_configuration.running; }
    const AppcastItem &item() const { return m_item; } ///< set from State::Found on
    bool isCritical() const { return isCriticalFor(m_item, running()); }
    const ReleaseNotes &releaseNotes() const { return m_item.releaseNotes; } ///< foreign text, not made safe yet
    const UpdateFailure &failure() const { return m_failure; }               ///< set in State::Failed
    bool hasMissedServer() const { return m_hasMissedServer; } ///< the last check could not be made, for now

    void download();
    void install();
    /// Ends the session and keeps automatic checks silent about this version.
    void skip();
    /// Ends the session, because it was cancelled, put off or has nothing more to say. Ignored during an installation.
    void end();

Q_SIGNALS:
    void stateChanged();
    /// The user asked for what is already shown.
    void askedAgain();
    /// In State::Downloading, in bytes; `expected` is 0 when the server does not announce the size.
    void progressed(qint64 received, qint64 expected);
    void releaseNotesChanged();

private:
    void setState(State state);
    void readFeed();
    std::optional<UpdateFailure::Kind> problemWithFeed();
    bool isOverdue();
    void loadReleaseNotes();
    void verify();
    void finishInstallation(const UpdateInstaller::Result &result);
    void fail(const UpdateFailure &failure);

    const UpdateConfiguration &m_configuration;
    UserDefaults &m_defaults; ///< holds what the user chose to skip, and which feeds were seen
    const Calendar &m_calendar;
    UpdateInstaller &m_installer;
    Origin m_origin;
    State m_state = State::Checking;

    QBuffer m_feed;
    AppcastItem m_item;
    QBuffer m_notes;
    UpdateFailure m_failure{};
    bool m_hasMissedServer = false;
    std::unique_ptr<QTemporaryFile> m_package;
    // Last, so that they are destroyed before what they write to.
    HttpsDownloader m_feedDownloader;
    HttpsDownloader m_notesDownloader;
    HttpsDownloader m_packageDownloader;
};

} // namespace ambertide
