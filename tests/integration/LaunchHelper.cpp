#include "integration/LaunchHelper.h"

#include "platform/Console.h"
#include "support/FakeLoginItem.h"

#include <QTest>

using namespace ambertide;

Q_DECLARE_METATYPE(ambertide::LoginItemStatus)

class TestLaunchHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        console::redirect([this](std::string_view line) { m_printed.emplace_back(line); });
        m_printed.clear();
    }
    void cleanup() { console::redirect({}); }

    void countsAsEnabledOnlyWhenTheSystemSaysSo_data()
    {
        QTest::addColumn<LoginItemStatus>("status");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("enabled") << LoginItemStatus::Enabled << true;
        QTest::newRow("not registered") << LoginItemStatus::NotRegistered << false;
        QTest::newRow("requires approval") << LoginItemStatus::RequiresApproval << false;
        QTest::newRow("not found") << LoginItemStatus::NotFound << false;
    }
    void countsAsEnabledOnlyWhenTheSystemSaysSo()
    {
        QFETCH(LoginItemStatus, status);
        FakeLoginItem item;
        item.currentStatus = status;
        QTEST(LaunchHelper(item).isLaunchAtLoginEnabled(), "enabled");
    }

    void switchesAndReports_data()
    {
        using Failure = std::optional<std::string>;
        using Calls = std::vector<std::string>;
        QTest::addColumn<LoginItemStatus>("status");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<Failure>("registerFailure");
        QTest::addColumn<Failure>("unregisterFailure");
        QTest::addColumn<Calls>("calls");
        QTest::addColumn<Calls>("printed");

        const Failure none;
        QTest::newRow("on") << LoginItemStatus::NotRegistered << true << none << none << Calls{"register"} << Calls{};
        QTest::newRow("on, while switched off elsewhere")
            << LoginItemStatus::RequiresApproval << true << none << none << Calls{"register"} << Calls{};
        QTest::newRow("on, while on: renewed")
            << LoginItemStatus::Enabled << true << none << none << Calls{"unregister", "register"} << Calls{};
        QTest::newRow("on, while on, and it cannot be renewed")
            << LoginItemStatus::Enabled << true << none << Failure("locked") << Calls{"unregister"}
            << Calls{"Failed to enable launch at login: locked"};
        QTest::newRow("on fails") << LoginItemStatus::NotFound << true << Failure("disk full") << none
                                  << Calls{"register"} << Calls{"Failed to enable launch at login: disk full"};
        QTest::newRow("off") << LoginItemStatus::Enabled << false << none << none << Calls{"unregister"} << Calls{};
        QTest::newRow("off, while off") << LoginItemStatus::NotRegistered << false << none << none
                                        << Calls{"unregister"}
                                        << Calls{"Failed to disable launch at login: not registered"};
    }
    void switchesAndReports()
    {
        QFETCH(LoginItemStatus, status);
        QFETCH(bool, enabled);
        QFETCH(std::optional<std::string>, registerFailure);
        QFETCH(std::optional<std::string>, unregisterFailure);
        FakeLoginItem item;
        item.currentStatus = status;
        item.registerFailure = registerFailure;
        item.unregisterFailure = unregisterFailure;
        LaunchHelper(item).setLaunchAtLogin(enabled);
        QTEST(item.calls, "calls");
        QTEST(m_printed, "printed");
    }

private:
    std::vector<std::string> m_printed;
};

QTEST_GUILESS_MAIN(TestLaunchHelper)
#include "LaunchHelper.moc"
