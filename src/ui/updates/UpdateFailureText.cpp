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
            return tr("The update would have come over a connection that is not secure, so it was not loaded. "
                      "Download the new version from the Ambertide web page instead.");
        case UpdateFailure::Kind::Unreachable:
            return tr("The update server could not be reached. Check your network connection and try again.");
        case UpdateFailure::Kind::TimedOut:
            return tr("The update server took too long to answer. Check your network connection and try again.");
        case UpdateFailure::Kind::ServerError:
            return tr("The update server could not answer the request. Try again later.");
        case UpdateFailure::Kind::TooLarge:
            return tr("The update server sent more than an update can be, so it was not loaded. Try again later.");
        case UpdateFailure::Kind::FeedUnreadable:
            return tr("The update server sent something other than update information. If your network asks you to "
                      "log in first, do so and try again.");
        case UpdateFailure::Kind::BadSignature:
            return tr("The update is not signed by the makers of Ambertide, so it was thrown away. Try again later, or "
                      "download the new version from the Ambertide web page.");
        case UpdateFailure::Kind::CannotStore:
            return tr("The update could not be saved. Make room on your disk and try again.");
        case UpdateFailure::Kind::NotAuthorised:
            return tr("Installing the update takes the rights of an administrator, and they were not given. Ask an "
                      "administrator of this computer.");
        case UpdateFailure::Kind::CannotInstall:
            return tr(
                "The update could not be installed, so the present version stays. Try again later, or download the "
                "new version from the Ambertide web page.");
        }
        return {};
    }
};

} // namespace

QString describeForPeople(const UpdateFailure &failure)
{
    const QString sentence = Texts::sentence(failure.kind);
    return failure.detail.isEmpty() ? sentence : sentence + QStringLiteral("\n\n(%1)").arg(failure.detail);
}

} // namespace ambertide
