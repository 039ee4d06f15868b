#include "ui/updates/UpdateFailureText.h"

#include <QCoreApplication>

namespace ambertide {

namespace {

class Texts
{
    Q_DECLARE_TR_FUNCTIONS(ambertide::UpdateFailure)

public:
    static QString sentence(UpdateFailure::Kind kind)
    {
        switch (kind) {
        case UpdateFailure::Kind::NotConfigured:
            return tr("This build of Ambertide cannot check for updates: it was made without the address or the key of "
                      "an update feed. Update it the way it was installed.");
        case UpdateFailure::Kind::NotSecure:
            return tr("The connection to the update server is not secure, so nothing was loaded. Download the new "
                      "version from the Ambertide web page instead.");
        case UpdateFailure::Kind::Unreachable:
            return tr("The update server could not be reached. Check your network connection and try again.");
        case UpdateFailure::Kind::TimedOut:
            return tr("The update server took too long to answer. Check your network connection and try again.");
        case UpdateFailure::Kind::ServerError:
            return tr("The update server could not answer the request. Try again later.");
        case UpdateFailure::Kind::TooLarge:
            return tr("The update server sent far more than was expected, so nothing was loaded. Try again later.");
        case UpdateFailure::Kind::FeedUnreadable:
            return tr("The update server sent something other than update information signed by the makers of "
                      "Ambertide. If your network asks you to log in first, do so and try again.");
        case UpdateFailure::Kind::FeedOutdated:
            return tr("The update server sent update information that is out of date, so newer versions may be "
                      "missing from it. Check the date of this computer and try again later.");
        case UpdateFailure::Kind::BadSignature:
            return tr("The update is not signed by the makers of Ambertide, so it was thrown away. Try again later, or "
                      "download the new version from the Ambertide web page.");
        case UpdateFailure::Kind::CannotStore:
            return tr("The update could not be saved. Make room on your disk and try again.");
        case UpdateFailure::Kind::NotAuthorised:
            return tr("Only an administrator of this computer can install the update, and no administrator's password "
                      "was given. If you were not asked for one, nothing in this session can ask (no polkit "
                      "authentication agent is running, or pkexec is not installed).");
        case UpdateFailure::Kind::WrongPackage:
            return tr("The update is another one than was announced, so it was not installed. Try again later, or "
                      "download the new version from the Ambertide web page.");
        case UpdateFailure::Kind::NotAPackage:
            return tr("Ambertide was not installed as a package on this computer. Update it the way it was installed.");
        case UpdateFailure::Kind::Busy:
            return tr("Other software is being installed on this computer. Try again when that has ended.");
        case UpdateFailure::Kind::CannotInstall:
            return tr(
                "The update could not be installed, so the present version stays. Try again later, or download the "
                "new version from the Ambertide web page.");
        }
        return {};
    }
};

} // namespace

QString describeForPeople(const UpdateFailure &failure) { return Texts::sentence(failure.kind); }

} // namespace ambertide
