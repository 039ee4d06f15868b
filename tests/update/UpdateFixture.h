#pragma once

#include "support/Fakes.h"
#include "support/LoopbackServer.h"
#include "support/SigningKey.h"
#include "update/UpdateService.h"

#include <QPointer>
#include <QTest>

namespace ambertide {

/// A feed server, a key, and all that a running application of version 5 brings to update checking. The installer waits
/// for the test to say what came of the installation.
struct UpdateFixture final : UpdateInstaller
{
    UpdateFixture()
    {
        bundle.values = {{"SUFeedURL", server.url("/feed").toString().toStdString()},
                         {"SUPublicEDKey", key.publicKey()},
                         {"CFBundleVersion", "5"},
                         {"CFBundleShortVersionString", "0.5"}};
    }

    void install(const UpdatePackage &package, std::function<void(Result)> done) override
    {
        toInstall = package;
        installed = std::move(done);
    }

    /// Announces version 6.
    void announce(const QByteArray &package, const std::string &signature, const QByteArray &more = {})
    {
        server.serve("/package", package);
        serveFeed("<item><up:version>6</up:version><up:os>linux</up:os>" + more + "<enclosure url='" +
                  server.url("/package").toEncoded() + "' up:edSignature='" + signature.c_str() + "'/></item>");
    }
    void serveFeed(const QByteArray &items, const QByteArray &signedAt = "2001-01-01T00:00:00Z",
                   const QByteArray &until = "2100-01-01T00:00:00Z")
    {
        const QByteArray feed = "<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>" +
                                items + "</channel></rss><!-- feed signed=\"" + signedAt + "\" until=\"" + until + '"';
        server.serve("/feed", feed + " ed25519=\"" + QByteArray::fromStdString(key.sign(feed)) + "\" -->");
    }

    std::unique_ptr<UpdateService> service(UpdateViewFactory createView)
    {
        auto configuration = UpdateConfiguration::fromBundle(bundle);
        configuration.security = TransportSecurity::HttpsOrLoopback;
        return std::make_unique<UpdateService>(configuration, defaults, calendar, executor, *this,
                                               std::move(createView));
    }
    std::unique_ptr<UpdateService> service()
    {
        return service([this](UpdateSession &shown) {
            session = &shown;
            return std::make_unique<QObject>();
        });
    }

    LoopbackServer server;
    SigningKey key;
    FakeMainBundle bundle{"/nowhere/Ambertide.app"};
    FakeUserDefaults defaults;
    FakeCalendar calendar;
    FakeTaskExecutor executor;
    QPointer<UpdateSession> session; ///< the one that is shown
    UpdatePackage toInstall;
    std::function<void(Result)> installed;
};

} // namespace ambertide
