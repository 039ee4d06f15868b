#include "update/UpdateSession.h"

#include "base/Console.h"
#include "update/ForeignText.h"
#include "update/SignedFeed.h"

#include <QDir>
#include <QPointer>

#include <map>
#include <span>
#include <utility>

namespace ambertide {

namespace {

constexpr qsizetype longestVersion = 40;
constexpr qint64 mostPackageBytes = qint64{128} * 1024 * 1024;
constexpr std::string_view skippedVersionKey = "SUSkippedVersion";
// Both in seconds since the reference date.
constexpr std::string_view newestFeedKey = "Ambertide.NewestFeed"; // when the newest feed seen was signed
constexpr std::string_view feedTermKey = "Ambertide.FeedTerm";     // when its validity ends; 0 once the user was told

/// Foreign text, shortened to fit into a sentence.
QString shortText(const QString &text) { return displayableText(text.simplified()).left(longestVersion); }

bool isPlainTextFile(const QUrl &location)
{
    return location.path().endsWith(QLatin1String(".txt")) || location.path().endsWith(QLatin1String(".md"));
}

} // namespace

UpdateSession::UpdateSession(const UpdateConfiguration &configuration, UserDefaults &defaults, const Calendar &calendar,
                             UpdateInstaller &installer, Origin origin)
    : m_configuration(configuration), m_defaults(defaults), m_calendar(calendar), m_installer(installer),
      m_origin(origin), m_feedDownloader(configuration.security), m_notesDownloader(configuration.security),
      m_packageDownloader(configuration.security)
{
    connect(&m_feedDownloader, &HttpsDownloader::finished, this, &UpdateSession::readFeed);
    connect(&m_feedDownloader, &HttpsDownloader::failed, this, &UpdateSession::fail);
    connect(&m_notesDownloader, &HttpsDownloader::finished, this, [this] {
        m_item.releaseNotes = {QString::fromUtf8(m_notes.data()), isPlainTextFile(m_item.releaseNotesLink)};
        Q_EMIT releaseNotesChanged();
    });
    connect(&m_packageDownloader, &HttpsDownloader::finished, this, &UpdateSession::verify);
    connect(&m_packageDownloader, &HttpsDownloader::failed, this, &UpdateSession::fail);
    connect(&m_packageDownloader, &HttpsDownloader::progressed, this, &UpdateSession::progressed);
}

void UpdateSession::start()
{
    if (m_state != State::Checking && m_state != State::Failed)
        return;
    if (m_state == State::Failed)
        m_origin = Origin::Manual; // it is the user who tries again
    if (m_origin == Origin::Manual)
        m_defaults.setData(skippedVersionKey, {});
    m_notesDownloader.cancel(); // of the release that the former check found
    m_hasMissedServer = false;
    m_item = {};
    m_feed.close();
    m_feed.setData({});
    m_feed.open(QIODevice::WriteOnly);
    setState(State::Checking);
    if (!m_configuration.isComplete())
        return fail({UpdateFailure::Kind::NotConfigured, {}});
    m_feedDownloader.start(m_configuration.feed, m_feed, {.mostBytes = Appcast::mostBytes});
}

void UpdateSession::makeManual()
{
    m_defaults.setData(skippedVersionKey, {});
    if (std::exchange(m_origin, Origin::Manual) != Origin::Manual)
        Q_EMIT stateChanged(); // it has become worth showing
    Q_EMIT askedAgain();
}

bool UpdateSession::isWorthShowing() const
{
    return m_state != State::Ended && (m_origin == Origin::Manual || m_state >= State::Found);
}

void UpdateSession::setState(State state)
{
    m_state = state;
    Q_EMIT stateChanged();
}

/// What is wrong with the feed as a whole, before anything in it is read.
std::optional<UpdateFailure::Kind> UpdateSession::problemWithFeed()
{
    const auto feed = SignedFeed::read(m_feed.data(), *m_configuration.verifier);
    if (!feed)
        return UpdateFailure::Kind::FeedUnreadable;
    const double newest = m_defaults.doubleValue(newestFeedKey);
    if (feed->signedAt.secondsSinceReference > newest) {
        m_defaults.setDouble(newestFeedKey, feed->signedAt.secondsSinceReference);
        m_defaults.setDouble(feedTermKey, feed->validUntil.secondsSinceReference);
    }
    if (feed->signedAt.secondsSinceReference < newest || feed->validUntil < m_calendar.now())
        return UpdateFailure::Kind::FeedOutdated;
    return std::nullopt;
}

/// Whether the newest feed has ceased to be valid and no newer one has come. True once for each feed.
bool UpdateSession::isOverdue()
{
    const double term = m_defaults.doubleValue(feedTermKey);
    if (term == 0 || m_calendar.now() <= Date{term})
        return false;
    m_defaults.setDouble(feedTermKey, 0);
    return true;
}

void UpdateSession::readFeed()
{
    if (const auto problem = problemWithFeed())
        return fail({*problem, {}});
    QString problem;
    const auto appcast = Appcast::read(m_feed.data(), problem);
    if (!appcast)
        return fail({UpdateFailure::Kind::FeedUnreadable, displayableText(problem.simplified())});
    const auto item = chooseUpdate(*appcast, m_configuration.running);
    const bool isAutomatic = m_origin == Origin::Automatic;
    if (!item)
        return isAutomatic ? end() : setState(State::UpToDate);
    const bool isInstalled = compareVersions(m_configuration.installedVersion(), item->version) >= 0;
    const auto skipped = QString::fromStdString(m_defaults.data(skippedVersionKey).value_or(std::string()));
    if (isAutomatic && !isInstalled && isSkipped(*item, skipped, m_configuration.running))
        return end();
    m_item = *item;
    m_item.displayVersion = shortText(m_item.displayVersion);
    if (isInstalled)
        return setState(State::Installed);
    setState(State::Found);
    loadReleaseNotes();
}

void UpdateSession::loadReleaseNotes()
{
    if (m_state != State::Found || m_item.releaseNotesLink.isEmpty())
        return;
    m_notes.close();
    m_notes.setData({});
    m_notes.open(QIODevice::WriteOnly);
    m_notesDownloader.start(m_item.releaseNotesLink, m_notes, {.mostBytes = longestForeignText});
}

void UpdateSession::download()
{
    if (m_state != State::Found || m_item.packageLink.isEmpty())
        return;
    m_package = std::make_unique<QTemporaryFile>(QDir::tempPath() + QStringLiteral("/ambertide-update-XXXXXX.deb"));
    setState(State::Downloading);
    if (!m_package->open())
        return fail({UpdateFailure::Kind::CannotStore, m_package->errorString()});
    m_packageDownloader.start(m_item.packageLink, *m_package,
                              {.mostBytes = mostPackageBytes, .total = std::chrono::hours(1)});
}

void UpdateSession::verify()
{
    if (!m_package->flush())
        return fail({UpdateFailure::Kind::CannotStore, m_package->errorString()});
    const qint64 size = m_package->size();
    const auto *bytes = m_package->map(0, size);
    if (bytes == nullptr ||
        !m_configuration.verifier->accepts({bytes, static_cast<std::size_t>(size)}, m_item.signature.toStdString()))
        return fail({UpdateFailure::Kind::BadSignature, {}});
    m_package->close();
    setState(State::ReadyToInstall);
}

void UpdateSession::install()
{
    if (m_state != State::ReadyToInstall)
        return;
    setState(State::Installing);
    m_installer.install({.path = m_package->fileName().toStdString(),
                         .signature = m_item.signature.toStdString(),
                         .version = m_item.displayVersion.toStdString()},
                        [session = QPointer(this)](const UpdateInstaller::Result &result) {
                            if (session)
                                session->finishInstallation(result);
                        });
}

void UpdateSession::finishInstallation(const UpdateInstaller::Result &result)
{
    using Outcome = UpdateInstaller::Outcome;
    static const std::map<Outcome, UpdateFailure::Kind> kinds = {
        {Outcome::NotAuthorised, UpdateFailure::Kind::NotAuthorised},
        {Outcome::BadSignature, UpdateFailure::Kind::BadSignature},
        {Outcome::WrongPackage, UpdateFailure::Kind::WrongPackage},
        {Outcome::NotAPackage, UpdateFailure::Kind::NotAPackage},
        {Outcome::NoRoom, UpdateFailure::Kind::CannotStore},
        {Outcome::Busy, UpdateFailure::Kind::Busy},
        {Outcome::Failed, UpdateFailure::Kind::CannotInstall},
    };
    if (result.outcome == Outcome::Installed || result.outcome == Outcome::NotNewer)
        return setState(State::Installed);
    if (result.outcome == Outcome::Dismissed)
        return setState(State::ReadyToInstall);
    fail({kinds.at(result.outcome), displayableText(QString::fromStdString(result.message).simplified())});
}

void UpdateSession::skip()
{
    if (m_state != State::Found || isCritical())
        return;
    m_defaults.setData(skippedVersionKey, m_item.version.toStdString());
    end();
}

void UpdateSession::end()
{
    if (m_state == State::Installing || m_state == State::Ended)
        return;
    m_feedDownloader.cancel();
    m_notesDownloader.cancel();
    m_packageDownloader.cancel();
    m_package.reset();
    setState(State::Ended);
}

void UpdateSession::fail(const UpdateFailure &failure)
{
    m_hasMissedServer = m_state == State::Checking && (failure.kind == UpdateFailure::Kind::Unreachable ||
                                                       failure.kind == UpdateFailure::Kind::TimedOut);
    if (m_origin == Origin::Automatic && m_state == State::Checking && !isOverdue())
        return end();
    m_package.reset();
    m_failure = failure;
    if (!failure.detail.isEmpty())
        console::print("The update did not succeed: " + failure.detail.toStdString());
    setState(State::Failed);
}

} // namespace ambertide
