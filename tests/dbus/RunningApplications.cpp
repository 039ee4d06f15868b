#include "platform/linux/DBusApplicationObject.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/DBusRunningApplications.h"
#include "support/CapturedConsole.h"
#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include <cstdio>
#include <memory>

using namespace ambertide;

namespace {

constexpr char identifier[] = "me.tovanu.Ambertide";

struct Copy
{
    DBusSession session{SdBusKind::session};
    DBusRunningApplications applications{session};

    std::size_t found() { return applications.withIdentifier(identifier).size(); }
};

/// A process of its own, which says which copies it finds and stays until its input ends.
int runCopy()
{
    Copy copy;
    for (const auto &application : copy.applications.withIdentifier(identifier))
        std::printf("%lld ", static_cast<long long>(application.processIdentifier));
    std::printf("\n");
    std::fflush(stdout);
    return std::getchar() == EOF ? 0 : 1;
}

} // namespace

class RunningApplicationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofCopiesStartedAtOnceExactlyOneIsAlone()
    {
        const PrivateBus bus;
        QProcess copies[6];
        for (auto &copy : copies)
            copy.start(QCoreApplication::applicationFilePath(), {QStringLiteral("copy")});
        QByteArrayList alone;
        QByteArrayList others;
        for (auto &copy : copies) {
            QVERIFY(copy.waitForReadyRead());
            const auto found = copy.readLine().trimmed().split(' ');
            QCOMPARE(found[0], QByteArray::number(copy.processId()));
            (found.size() == 1 ? alone : others).append(found.back());
        }
        for (auto &copy : copies) {
            copy.closeWriteChannel();
            QVERIFY(copy.waitForFinished());
        }
        QCOMPARE(alone.size(), 1);
        QCOMPARE(others.count(alone[0]), 5);
    }

    void aCopyThatHasEndedIsNotFound()
    {
        const PrivateBus bus;
        auto first = std::make_unique<Copy>();
        Copy second;
        QCOMPARE(first->found(), 1U);
        QCOMPARE(first->found(), 1U);
        QCOMPARE(second.found(), 2U);
        first.reset();
        QCOMPARE(second.found(), 1U);
    }

    void askingLosesNoPost()
    {
        const PrivateBus bus;
        Copy copy;
        DBusNotificationCenter center(copy.session);
        bool isReceived = false;
        const auto observation = center.observe("Name", Delivery::standard, [&](const auto &) { isReceived = true; });
        center.post({"Name", std::nullopt}, Delivery::standard);
        // Its answers come after the post, which is therefore read with them.
        QCOMPARE(copy.found(), 1U);
        QTRY_VERIFY(isReceived);
    }

    void withoutABusThatAnswersThisCopyIsAloneWithinASecond()
    {
        const CapturedConsole console;
        PrivateBus bus;
        bus.freeze();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(Copy().found(), 1U);
        QVERIFY(timer.elapsed() < 1000);
        QCOMPARE(console.lines.size(), 1U);
    }

    void activationsReachTheRunningCopyWithTheirToken()
    {
        const PrivateBus bus;
        Copy first;
        std::vector<std::string> events;
        DBusApplicationObject object(first.session, [&](const auto &token) { events.push_back("activate " + token); });
        object.setAction("settings", [&](const auto &token) { events.push_back("settings " + token); });
        QCOMPARE(first.found(), 1U);

        Copy second;
        const auto found = second.applications.withIdentifier(identifier);
        qputenv("XDG_ACTIVATION_TOKEN", "token");
        second.applications.activate(found.back());
        qunsetenv("XDG_ACTIVATION_TOKEN");
        for (const char *action : {"settings", "unknown"})
            sd_bus_call_method_async(second.session.bus(), nullptr, identifier, "/me/tovanu/Ambertide",
                                     "org.freedesktop.Application", "ActivateAction", nullptr, nullptr, "sava{sv}",
                                     action, 1, "s", "ignored", 1, "desktop-startup-id", "s", "old token");
        second.applications.activate(found.back());

        QTRY_COMPARE(events.size(), 3U);
        const std::vector<std::string> expected = {"activate token", "settings old token", "activate "};
        QCOMPARE(events, expected);
    }
};

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    RunningApplicationsTest test;
    return argc == 2 && qstrcmp(argv[1], "copy") == 0 ? runCopy() : QTest::qExec(&test, argc, argv);
}
#include "RunningApplications.moc"
