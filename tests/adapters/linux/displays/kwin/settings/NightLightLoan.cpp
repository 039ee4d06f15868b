#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include "adapters/linux/displays/kwin/settings/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <optional>

using namespace ambertide;
using namespace std::chrono_literals;
using End = NightLightLoan::End;

namespace {

QByteArray contentOf(const std::string &file)
{
    return QByteArray::fromStdString(settings_file::read(file).value_or("unreadable"));
}

void put(const std::string &file, const QByteArray &content)
{
    QFile target(QString::fromStdString(file));
    QVERIFY(target.open(QIODevice::WriteOnly));
    QCOMPARE(target.write(content), content.size());
}

struct Home
{
    QTemporaryDir folder;
    NightLightLoan::Files files{.state = (folder.path() + QStringLiteral("/state/ambertide/night-light")).toStdString(),
                                .kwinrc = (folder.path() + QStringLiteral("/kwinrc")).toStdString(),
                                .systemKwinrcs = {(folder.path() + QStringLiteral("/system")).toStdString()}};
};

const QByteArray ours = "Active=true\nMode=Constant\nNightTemperature=3380\n";

} // namespace

class NightLightLoanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyThreeKeysChangeAndComeBackByteForByte_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("borrowed");
        const auto row = [](const char *name, const QByteArray &before, const QByteArray &borrowed) {
            QTest::newRow(name) << before << borrowed;
        };
        const QByteArray set = "[NightColor]\n" + ours;
        row("no settings", "", set);
        row("no group", "[A]\nActive=no\n", "[A]\nActive=no\n\n" + set);
        row("no line feed at the end", "[A]\nx=1", QByteArray("[A]\nx=1\n\n" + set).chopped(1));
        row("an empty group amid others", "[NightColor]\n\n[B]\ny=2\n", set + "\n[B]\ny=2\n");
        row("keys amid others", "[NightColor]\nNightTemperature=4100\nLatitude=5\nActive=false\n\n[B]\n",
            "[NightColor]\nNightTemperature=3380\nLatitude=5\nActive=true\nMode=Constant\n\n[B]\n");
        row("CRLF", "[A]\r\n\r\n[NightColor]\r\nMode = 1\r\n",
            "[A]\r\n\r\n[NightColor]\r\nMode=Constant\r\nActive=true\r\nNightTemperature=3380\r\n");
        row("options and languages", "[NightColor]\nActive[$d]\nMode[$e]=$M\nMode[de]=Eins\nModes=2\nActive\n",
            "[NightColor]\nActive=true\nMode=Constant\nMode[de]=Eins\nModes=2\nActive\nNightTemperature=3380\n");
        row("what comes twice",
            "[NightColor]\nMode=1\nMode=2\n[A]\nMode=3\n[NightColor]\nActive=0\n[NightColor][B]\nMode=4",
            "[NightColor]\nMode=1\nMode=Constant\n[A]\nMode=3\n[NightColor]\nActive=true\nNightTemperature=3380\n"
            "[NightColor][B]\nMode=4");
        row("rubbish", QByteArray("\0[[\n[\n=\n]\xff\n[NightColor\n", 23),
            QByteArray("\0[[\n[\n=\n]\xff\n[NightColor\n", 23) + '\n' + set);
    }
    void onlyThreeKeysChangeAndComeBackByteForByte()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, borrowed);
        const Home home;
        put(home.files.kwinrc, before);
        chmod(home.files.kwinrc.c_str(), 0640);
        const auto link = home.files.kwinrc + ".link";
        QVERIFY(QFile::link(QStringLiteral("kwinrc"), QString::fromStdString(link)));
        NightLightLoan loan({home.files.state, link, {}});
        QVERIFY(loan.borrow(4000) && loan.borrow(3380) && loan.isUntouched());
        QCOMPARE(contentOf(home.files.kwinrc), borrowed);
        QCOMPARE(loan.giveBack(0ms), End::givenBack);
        QCOMPARE(contentOf(home.files.kwinrc), before);
        struct stat status = {};
        QVERIFY(stat(home.files.kwinrc.c_str(), &status) == 0 && (status.st_mode & 07777) == 0640);
        QVERIFY(QFileInfo(QString::fromStdString(link)).isSymLink());
        QVERIFY(!QFile::exists(QString::fromStdString(home.files.state)));
    }

    /// What the disk holds is one of the two states and one of the three settings that follow each other.
    void powerMayGoAtAnyMoment_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("settings");
        QTest::addColumn<End>("end");
        QTest::newRow("before the first change") << 1 << 0 << End::nothingBorrowed;
        QTest::newRow("after the first change") << 1 << 1 << End::givenBack;
        QTest::newRow("before the second change") << 2 << 1 << End::givenBack;
        QTest::newRow("after the second change") << 2 << 2 << End::givenBack;
        QTest::newRow("before the state is removed") << 2 << 0 << End::nothingBorrowed;
        QTest::newRow("and damaged the state") << 3 << 2 << End::nothingBorrowed;
    }
    void powerMayGoAtAnyMoment()
    {
        QFETCH(int, state);
        QFETCH(int, settings);
        QFETCH(End, end);
        const Home home;
        const QByteArray before = "[NightColor]\nActive=true\nMode=Times\n";
        put(home.files.kwinrc, before);
        QByteArrayList states{"", "", "", "Damaged\nwrote 2656\n"};
        QByteArrayList allSettings{before, "", ""};
        {
            NightLightLoan loan(home.files);
            for (const int step : {1, 2}) {
                QVERIFY(loan.borrow(step == 1 ? 3380 : 2656));
                states[step] = contentOf(home.files.state);
                allSettings[step] = contentOf(home.files.kwinrc);
            }
        }
        put(home.files.state, states[state]);
        put(home.files.kwinrc, allSettings[settings]);
        QCOMPARE(NightLightLoan(home.files).giveBack(0ms), end);
        QCOMPARE(contentOf(home.files.kwinrc), end == End::givenBack ? before : allSettings[settings]);
        QVERIFY(!QFile::exists(QString::fromStdString(home.files.state)));
    }

    void whatOthersChangeMeanwhileIsTheirs_data()
    {
        QTest::addColumn<QByteArray>("theirs");
        QTest::addColumn<QByteArray>("after");
        const auto keeps = [](const char *name, const QByteArray &theirs) { QTest::newRow(name) << theirs << theirs; };
        keeps("switched off", "[NightColor]\nActive=false\nMode=Constant\nNightTemperature=3380\n");
        keeps("another mode", "[NightColor]\nActive=true\nNightTemperature=3380\n");
        keeps("another temperature", "[NightColor]\nActive=true\nMode=Constant\nNightTemperature=4000\n");
        QTest::newRow("other settings") << "[A]\nx=1\n\n[NightColor]\n" + ours + "Latitude=5\n\n[B]\nActive=1\n"
                                        << QByteArray("[A]\nx=1\n\n[NightColor]\nLatitude=5\n\n[B]\nActive=1\n");
    }
    void whatOthersChangeMeanwhileIsTheirs()
    {
        QFETCH(QByteArray, theirs);
        QFETCH(QByteArray, after);
        const Home home;
        NightLightLoan loan(home.files);
        QVERIFY(loan.borrow(3380));
        put(home.files.kwinrc, theirs);
        QCOMPARE(loan.isUntouched(), theirs != after);
        QCOMPARE(loan.giveBack(0ms), theirs == after ? End::changedByOthers : End::givenBack);
        QCOMPARE(contentOf(home.files.kwinrc), after);
        QVERIFY(!QFile::exists(QString::fromStdString(home.files.state)));
    }

    void settingsThatCannotBeBorrowedAreLeftAlone_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QByteArray>("ofSystem");
        QTest::newRow("locked key") << QByteArray("[NightColor]\nMode[$i]=1\n") << QByteArray();
        QTest::newRow("locked group") << QByteArray("[NightColor][$i]\n") << QByteArray();
        QTest::newRow("locked file") << QByteArray("[$i]\n[A]\n") << QByteArray();
        QTest::newRow("locked by the system") << QByteArray() << QByteArray("[NightColor]\nActive[$ei]=false\n");
        QTest::newRow("huge") << QByteArray(2'000'000, '#') << QByteArray();
        QTest::newRow("a pipe") << QByteArray("pipe") << QByteArray();
        QTest::newRow("a link to nowhere") << QByteArray("link") << QByteArray();
    }
    void settingsThatCannotBeBorrowedAreLeftAlone()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QByteArray, ofSystem);
        const Home home;
        put(home.files.systemKwinrcs.front(), ofSystem);
        const bool isFile = settings != "pipe" && settings != "link";
        if (settings == "pipe")
            QCOMPARE(mkfifo(home.files.kwinrc.c_str(), 0600), 0);
        else if (settings == "link")
            QVERIFY(QFile::link(QStringLiteral("/nonexistent/kwinrc"), QString::fromStdString(home.files.kwinrc)));
        else
            put(home.files.kwinrc, settings);
        NightLightLoan loan(home.files);
        QVERIFY(!loan.borrow(3380) && !loan.isActive());
        QVERIFY(!loan.failure().empty());
        if (isFile)
            QCOMPARE(QFile(QString::fromStdString(home.files.kwinrc)).size(), settings.size());
        QCOMPARE(loan.giveBack(0ms), End::nothingBorrowed);
    }

    void oneCopyAtATimeBorrows()
    {
        const Home home;
        std::optional<NightLightLoan> first(home.files);
        QVERIFY(first->borrow(3380));
        const auto borrowed = contentOf(home.files.kwinrc);
        NightLightLoan second(home.files);
        QVERIFY(!second.borrow(2656));
        QCOMPARE(second.giveBack(0ms), End::nothingBorrowed);
        QCOMPARE(contentOf(home.files.kwinrc), borrowed);
        first.reset();
        QCOMPARE(second.giveBack(0ms), End::givenBack);
        QCOMPARE(contentOf(home.files.kwinrc), QByteArray());
    }
};

QTEST_APPLESS_MAIN(NightLightLoanTest)
#include "NightLightLoan.moc"
