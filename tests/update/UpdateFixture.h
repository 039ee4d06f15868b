#pragma once

#include "support/FakeCalendar.h"
#include "support/FakeMainBundle.h"
#include "support/FakeUpdateInstaller.h"
#include "support/FakeUserDefaults.h"
#include "support/LoopbackServer.h"
#include "support/SigningKey.h"
#include "update/UpdateService.h"

#include <QTest>

#include <vector>

namespace ambertide {

/// A feed server, a key, and all that a running application of version 5 brings to update checking.
struct UpdateFixture
{
    class RecordingView final : public UpdateView
    {
    public:
        RecordingView(UpdateFixture &fixture, UpdateSession &session) : m_fixture(fixture)
        {
            m_fixture.session = &session;
        }
        ~RecordingView() override { m_fixture.session = nullptr; }
        void bringForward() override { ++m_fixture.forwardCount; }

    private:
        UpdateFixture &m_fixture;
    };

    UpdateFixture()
    {
        bundle.values = {{"SUFeedURL", server.url("/feed").toString().toStdString()},
                         {"SUPublicEDKey", key.publicKey()},
                         {"CFBundleVersion", "5"},
                         {"CFBundleShortVersionString", "0.5"}};
    }

    /// Announces `version` with the package's signature, or with the claimed one where there is one.
    void announce(const QByteArray &version, const QByteArray &package = "package", const QByteArray &more = {})
    {
        const QByteArray signature = QByteArray::fromStdString(claimedSignature.value_or(key.sign(package)));
        server.serve("/package", package);
        serveFeed("<item><up:version>" + version + "</up:version>" + more + "<enclosure url='" +
                  server.url("/package").toEncoded() + "' length='" + QByteArray::number(package.size()) +
                  "' up:edSignature='" + signature + "' up:os='linux'/></item>");
    }
    void serveFeed(const QByteArray &items)
    {
        server.serve("/feed", "<rss xmlns:up='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>" + items +
                                  "</channel></rss>");
    }

    std::unique_ptr<UpdateService> service(UpdateViewFactory createView)
    {
        auto configuration = UpdateConfiguration::fromBundle(bundle);
        configuration.security = TransportSecurity::HttpsOrLoopback;
        return std::make_unique<UpdateService>(configuration, defaults, calendar, installer, std::move(createView));
    }
    std::unique_ptr<UpdateService> service()
    {
        return service([this](UpdateSession &shown) { return std::make_unique<RecordingView>(*this, shown); });
    }

    LoopbackServer server;
    SigningKey key;
    FakeMainBundle bundle{"/nowhere/Ambertide.app"};
    FakeUserDefaults defaults;
    FakeCalendar calendar;
    FakeUpdateInstaller installer;
    UpdateSession *session = nullptr; ///< the one that is shown
    int forwardCount = 0;
    std::optional<std::string> claimedSignature;
};

} // namespace ambertide
