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

/// One check for an update and what follows from it, from the question to the installed package. Windows show its state
/// and pass on what the person decides; a decision that does not fit the state is ignored. Main thread.
class UpdateSession final : public QObject
{
    Q_OBJECT

public:
    enum class Origin {
        Manual,   ///< a person asked: every state is worth showing
        Automatic ///< worth showing are an update that was found and, once, that valid feeds have stopped coming
    };
    enum class State {
        Checking,
        UpToDate,
        Found,
        Downloading,
        ReadyToInstall, ///< downloaded and verified
        Installing,
        Installed, ///< the running program is still the old one
        Failed,
        Ended
    };

    /// All that is passed by reference must outlive the session.
    UpdateSession(const UpdateConfiguration &configuration, UserDefaults &defaults, const Calendar &calendar,
                  UpdateInstaller &installer, Origin origin);

    /// Also begins anew after a failure.
    void start();
    /// A person asked while a check is under way.
    void makeManual();

    State state() const { return m_state; }
    bool isWorthShowing() const;
    const RunningVersion &running() const { return m_configuration.running; }
    const AppcastItem &item() const { return m_item; } ///< from Found on
    bool isCritical() const { return isCriticalFor(m_item, running()); }
    const ReleaseNotes &releaseNotes() const { return m_item.releaseNotes; } ///< foreign, as they came
    const UpdateFailure &failure() const { return m_failure; }               ///< in Failed

    void download();
    void install();
    /// Ends the session and keeps automatic checks silent about this version.
    void skip();
    /// Ends the session: cancelled, put off, or read. Not while an installation is under way.
    void end();

Q_SIGNALS:
    void stateChanged();
    /// A person asked for what is shown already.
    void askedAgain();
    /// In Downloading, in bytes; `expected` is 0 when the server does not tell.
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
    UserDefaults &m_defaults; ///< holds what a person chose to skip, and which feeds were seen
    const Calendar &m_calendar;
    UpdateInstaller &m_installer;
    Origin m_origin;
    State m_state = State::Checking;

    QBuffer m_feed;
    AppcastItem m_item;
    QBuffer m_notes;
    UpdateFailure m_failure{};
    std::unique_ptr<QTemporaryFile> m_package;
    // Last, so that they fall silent before what they write to is gone.
    HttpsDownloader m_feedDownloader;
    HttpsDownloader m_notesDownloader;
    HttpsDownloader m_packageDownloader;
};

} // namespace ambertide
