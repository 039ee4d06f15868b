#include "integration/LaunchHelper.h"

#include "platform/Console.h"
#include "support/FakeLoginItem.h"

#include <QTest>

using namespace ambertide;
using enum LoginItemStatus;

class TestLaunchHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void switchesAndReports_data()
    {
        QTest::addColumn<LoginItemStatus>("status");
        QTest::addColumn<char>("failing");
        QTest::addColumn<bool>("enable");
        QTest::addColumn<std::string>("calls");
        QTest::addColumn<std::string>("printed");
        const auto row = [](const char *name, LoginItemStatus status, char failing, bool enable, std::string calls,
                            std::string printed) {
            QTest::newRow(name) << status << failing << enable << calls << printed;
        };
        row("on", NotRegistered, ' ', true, "+", "");
        row("on, switched off elsewhere", RequiresApproval, ' ', true, "+", "");
        row("on, while on: renewed", Enabled, ' ', true, "-+", "");
        row("on, not renewable", Enabled, '-', true, "-", "Failed to enable launch at login: locked");
        row("on fails", NotFound, '+', true, "+", "Failed to enable launch at login: locked");
        row("off", Enabled, ' ', false, "-", "");
        row("off, while off", NotRegistered, '-', false, "-", "Failed to disable launch at login: locked");
    }
    void switchesAndReports()
    {
        QFETCH(LoginItemStatus, status);
        QFETCH(char, failing);
        QFETCH(bool, enable);
        FakeLoginItem item;
        item.currentStatus = status;
        (failing == '+' ? item.registerFailure : item.unregisterFailure) =
            failing == ' ' ? std::nullopt : std::optional<std::string>("locked");
        std::string printed;
        console::redirect([&](std::string_view line) { printed += line; });
        LaunchHelper helper(item);
        QCOMPARE(helper.isLaunchAtLoginEnabled(), status == Enabled);
        helper.setLaunchAtLogin(enable);
        console::redirect({});
        QTEST(item.calls, "calls");
        QTEST(printed, "printed");
    }
};

QTEST_GUILESS_MAIN(TestLaunchHelper)
#include "LaunchHelper.moc"
