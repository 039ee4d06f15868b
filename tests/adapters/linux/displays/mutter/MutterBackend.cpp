#include "adapters/linux/displays/mutter/MutterBackend.h"

#include "FakeMutter.h"
#include "adapters/linux/displays/shared/BackendDisplayServices.h"
#include "support/CapturedConsole.h"
#include "support/PrivateBus.h"
#include "support/TintingCopy.h"

using namespace ambertide;
using Habit = FakeMutter::Habit;

namespace {

BackendDisplayServices makeServices()
{
    return BackendDisplayServices(
        [] { return std::make_unique<MutterBackend>(AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian"); });
}

} // namespace

class MutterBackendTest : public QObject
{
    Q_OBJECT

    PrivateBus m_session;
    PrivateBus m_system{"DBUS_SYSTEM_BUS_ADDRESS"};
    CapturedConsole m_console;

private Q_SLOTS:
    void init() { m_console.lines.clear(); }

    void displaysAreTintedInTheirSizesKeptUpAndRestored()
    {
        FakeMutter mutter({256, 1024, 256});
        auto services = makeServices();
        QTRY_COMPARE(services.activeDisplays().size(), 2U); // the third one shows no picture
        for (int pass = 0; pass < 20; ++pass) {
            setTint(services, 0.5);
            QTRY_VERIFY(mutter.shows(0.5));
        }
        QCOMPARE(mutter.written.load(), 2);
        for (int i = 0; i < 13; ++i) {
            mutter.writeOver(1); // and no signal tells of it
            QTRY_VERIFY((setTint(services, 0.5), mutter.shows(0.5)));
            QCOMPARE(mutter.written.load(), 3 + i);
        }
        QCOMPARE(m_console.lines.size(), 1U);

        mutter.makeSerialStale();
        setTint(services, 0.25);
        QTRY_VERIFY(mutter.shows(0.25));
        services.restoreSystemColours();
        QVERIFY(mutter.shows(1, 3));
        QCOMPARE(mutter.malformed.load(), 0);
    }

    void whatMutterWritesOverATintIsRepairedAtOnceAndWithoutATintLeftAlone()
    {
        FakeMutter mutter({256, 256});
        mutter.setNightLight(4000);
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(mutter.shows(0.5));
        // Before the displays change, after which the tables are looked at for a while in any case.
        for (const std::uint32_t temperature : {3900U, 6500U, 4000U}) {
            mutter.setNightLight(temperature);
            QTRY_VERIFY(mutter.shows(0.5));
        }
        mutter.changeMonitors();
        QTRY_VERIFY(mutter.shows(0.5));
        QCOMPARE(m_console.lines.size(), 2U); // that Night Light is on, and that it has come on again

        // Without colord mutter shows no Night Light.
        services.restoreSystemColours();
        QVERIFY(mutter.shows(1));
        const int written = mutter.written;
        mutter.setNightLight(3000);
        mutter.changeMonitors();
        mutter.makeSerialStale();
        services.restoreSystemColours();
        QTRY_COMPARE(mutter.written.load(), written + 2);
        mutter.habit = Habit::noProperties; // nothing is put there that might not be mutter's own
        services.restoreSystemColours();
        services.restoreSystemColours(); // by now the first of them is over
        QCOMPARE(mutter.written.load(), written + 2);
        QCOMPARE(mutter.malformed.load(), 0);
    }

    void aMutterThatMisbehavesIsOutlivedAndAskedNoFaster()
    {
        for (const auto habit : {Habit::silent, Habit::refusing, Habit::wrongTypes, Habit::thousandsOfCrtcs,
                                 Habit::hugeTables, Habit::noTables}) {
            FakeMutter mutter({256, 256});
            auto services = makeServices();
            QTRY_COMPARE(services.activeDisplays().size(), 2U);
            mutter.habit = habit;
            mutter.changeMonitors();
            const int before = mutter.calls;
            constexpr int writes = 20;
            for (int i = 0; i < writes; ++i)
                services.setTransferTables(std::array<DisplayIdentifier, 3>{0, 1, 999},
                                           tint(static_cast<float>(i) / 100));
            // A write has at most two refused attempts, of three calls each.
            QTest::qWait(50);
            QVERIFY2(mutter.calls - before <= 6 * writes, qPrintable(QString::number(mutter.calls - before)));
            services.restoreSystemColours();
            if (habit == Habit::hugeTables || habit == Habit::noTables)
                QTRY_VERIFY_WITH_TIMEOUT(mutter.shows(1), 30000); // in some size that there is
            mutter.habit = Habit::regular;
            mutter.changeMonitors();
            QTRY_VERIFY_WITH_TIMEOUT((setTint(services, 0.5), mutter.shows(0.5)), 30000);
            QCOMPARE(mutter.malformed.load(), 0);
        }
    }

    void onlyTheNewestTintIsKeptForASlowMutter()
    {
        FakeMutter mutter({256});
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(mutter.shows(0.5));
        mutter.habit = Habit::silent;
        for (int i = 1; i <= 100; ++i)
            setTint(services, static_cast<float>(i) / 200);
        const int before = mutter.calls;
        setTint(services, 0.25);
        mutter.habit = Habit::regular;
        QTRY_VERIFY(mutter.shows(0.25));
        QVERIFY(mutter.calls - before <= 4);
    }

    void aBusThatComesBackIsUsedAgain()
    {
        QVERIFY(!MutterBackend::refusal().empty());
        std::optional<FakeMutter> mutter;
        mutter.emplace(std::vector<std::size_t>{256});
        QCOMPARE(MutterBackend::refusal(), std::string());
        auto services = makeServices();
        setTint(services, 0.5);
        QTRY_VERIFY(mutter->shows(0.5));
        m_session.stop();
        mutter.reset();
        services.restoreSystemColours();
        m_session.start();
        mutter.emplace(std::vector<std::size_t>{256});
        QTRY_VERIFY_WITH_TIMEOUT((setTint(services, 0.25), mutter->shows(0.25)), 10'000);
    }

    void displaysAreGivenBackWhateverEndsTheApplicationUnlessAnotherCopyTints()
    {
        FakeMutter mutter({256, 256});
        for (const bool byReturning : {true, false}) {
            TintingCopy copy("mutter");
            QTRY_VERIFY((copy.show("0.5"), mutter.shows(0.5)));
            copy.end(byReturning);
            QTRY_VERIFY(mutter.shows(1));
        }
        TintingCopy old("mutter");
        QTRY_VERIFY((old.show("0.5"), mutter.shows(0.5)));
        TintingCopy young("mutter");
        QTRY_VERIFY((young.show("0.25"), mutter.shows(0.25)));
        QVERIFY(old.end(false, 5000));
        QVERIFY(mutter.shows(0.25));
        young.show("1");
        QTRY_VERIFY(mutter.shows(1));
        young.show("1"); // the first of them is over by now
        mutter.writeOver(0);
        const int written = mutter.written;
        QVERIFY(young.end(false, 5000));
        QCOMPARE(mutter.written.load(), written); // what was given back is left alone
        QCOMPARE(mutter.malformed.load(), 0);
    }
};

QTEST_GUILESS_MAIN(MutterBackendTest)
#include "MutterBackend.moc"
