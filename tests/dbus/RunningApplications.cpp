#include "platform/Console.h"
#include "platform/linux/DBusApplicationObject.h"
#include "platform/linux/DBusRunningApplications.h"
#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include <cstdio>
#include <memory>
#include <vector>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char identifier[] = "me.tovanu.Ambertide";

/// Another process: says which copies it finds, and goes on owning the name, or not, until its input ends.
int runCopy()
{
    DBusSession session(SdBusKind::session);
    DBusRunningApplications applications(session);
    for (const auto &application : applications.withIdentifier(identifier))
        std::printf("%lld ", static_cast<long long>(application.processIdentifier));
    std::printf("\n");
    std::fflush(stdout);
    return std::getchar() == EOF ? 0 : 1;
}

/// One copy in this process.
struct Copy
{
    DBusSession session{SdBusKind::session, 10ms};
    DBusRunningApplications applications{session};

    std::size_t found() { return applications.withIdentifier(identifier).size(); }
};

} // namespace

class RunningApplicationsTest : public QObject
{
    Q_OBJECT

    std::vector<std::string> m_lines;

private Q_SLOTS:
    void init()
    {
        m_lines.clear();
        console::redirect([this](std::string_view line) { m_lines.emplace_back(line); });
    }
    void cleanup() { console::redirect({}); }

    void ofCopiesStartedAtOnceExactlyOneIsAlone()
    {
        const PrivateBus bus;
        std::vector<std::unique_ptr<QProcess>> copies(6);
        for (auto &copy : copies) {
            copy = std::make_unique<QProcess>();
            copy->start(QCoreApplication::applicationFilePath(), {QStringLiteral("copy")});
        }
        QByteArray alone;
        std::vector<QByteArray> others;
        for (auto &copy : copies) {
            QVERIFY(copy->waitForReadyRead());
            const auto found = copy->readLine().trimmed();
            QVERIFY(found.startsWith(QByteArray::number(copy->processId())));
            if (!found.contains(' ')) {
                QVERIFY(alone.isEmpty());
                alone = found;
            } else {
                others.push_back(found);
            }
        }
        QVERIFY(!alone.isEmpty());
        for (const auto &found : others)
            QVERIFY(found.endsWith(' ' + alone));
        for (auto &copy : copies) {
            copy->closeWriteChannel();
            QVERIFY(copy->waitForFinished());
        }
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

    void withoutABusThatAnswersThisCopyIsAloneWithinASecond()
    {
        PrivateBus bus;
        bus.freeze();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(Copy().found(), 1U);
        QVERIFY(timer.elapsed() < 1000);
        QCOMPARE(m_lines.size(), 1U);
    }

    void theNameIsClaimedAgainWhenTheBusIsBack()
    {
        PrivateBus bus;
        Copy first;
        QCOMPARE(first.found(), 1U);
        bus.stop();
        QTRY_COMPARE(m_lines.size(), 1U);
        bus.start();
        QTRY_COMPARE(m_lines.size(), 2U);
        QCOMPARE(Copy().found(), 2U);
    }

    void activationsReachTheRunningCopyWithTheirToken()
    {
        const PrivateBus bus;
        Copy first;
        std::vector<std::string> events;
        DBusApplicationObject object(first.session,
                                     [&](const std::string &token) { events.push_back("activate " + token); });
        object.setAction("settings", [&](const std::string &token) { events.push_back("settings " + token); });
        QCOMPARE(first.found(), 1U);

        Copy second;
        qputenv("XDG_ACTIVATION_TOKEN", "token");
        second.applications.activate(second.applications.withIdentifier(identifier).back());
        qunsetenv("XDG_ACTIVATION_TOKEN");
        second.applications.activate({});
        const auto call = [&](const char *method, const char *types, auto... values) {
            sd_bus_call_method_async(second.session.bus(), nullptr, identifier, "/me/tovanu/Ambertide",
                                     "org.freedesktop.Application", method, nullptr, nullptr, types, values...);
        };
        call("ActivateAction", "sava{sv}", "settings", 1, "s", "ignored", 1, "desktop-startup-id", "s", "old token");
        call("ActivateAction", "sava{sv}", "unknown", 0, 0);
        call("Open", "asa{sv}", 1, "file:///a", 0);

        QTRY_COMPARE(events.size(), 4U);
        QVERIFY((events == std::vector<std::string>{"activate token", "activate ", "settings old token", "activate "}));
    }
};

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc == 2 && qstrcmp(argv[1], "copy") == 0)
        return runCopy();
    RunningApplicationsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "RunningApplications.moc"
