// show-update: shows the window of an update that a feed of its own announces, in the desktop's look, until it is
// closed. For pictures.

#include "adapters/linux/bus/DBusSession.h"
#include "adapters/linux/desktop/PortalAppearance.h"
#include "ui/AppearanceFollower.h"
#include "ui/updates/UpdateWindow.h"
#include "update/UpdateFixture.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    using namespace ambertide;
    QApplication application(argc, argv);
    DBusSession session(SdBusKind::session);
    PortalAppearance appearance(session);
    const AppearanceFollower follower(appearance);

    UpdateFixture fixture;
    fixture.bundle.values["CFBundleShortVersionString"] = "0.1.0";
    fixture.server.serve("/notes", "<ul><li>The schedule follows the clock when it changes.</li>"
                                   "<li>New displays are tinted within a second.</li>"
                                   "<li>German texts.</li></ul>");
    const QByteArray package(2'400'000, 'p');
    fixture.announce(package, fixture.key.sign(package),
                     "<up:shortVersionString>0.2.0</up:shortVersionString><up:releaseNotesLink>" +
                         fixture.server.url("/notes").toEncoded() + "</up:releaseNotesLink>");
    const auto service =
        fixture.service([](UpdateSession &shown) { return std::make_unique<UpdateWindow>(shown, [] {}); });
    service->check(UpdateSession::Origin::Automatic); // shows nothing before it is found
    return QApplication::exec();
}
