#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include "adapters/linux/displays/kwin/settings/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <array>
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
    bool hasState() const { return QFile::exists(QString::fromStdString(files.state)); }
};

const QByteArray ours = "Active=true\nMode=Constant\nNightTemperature=3380\n";

} // namespace

class NightLightLoanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyThreeKeysChangeAndComeBackByteForByte()
    {
        const QByteArray set = "[NightColor]\n" + ours;
        const QByteArray rubbish("\0[[\n[\n=\n]\xff\n[NightColor\n", 23);
        struct Row
        {
            QByteArray before;
            QByteArray borrowed;
        };
        for (const auto &[before, borrowed] : {
                 Row{"", set},
                 Row{"[A]\nActive=no\n", "[A]\nActive=no\n\n" + set},
                 Row{"[A]\nx=1", QByteArray("[A]\nx=1\n\n" + set).chopped(1)},
                 Row{"[NightColor]\n\n[B]\ny=2\n", set + "\n[B]\ny=2\n"},
                 Row{"[NightColor]\nNightTemperature=4100\nLatitude=5\nActive=false\n\n[B]\n",
                     "[NightColor]\nNightTemperature=3380\nLatitude=5\nActive=true\nMode=Constant\n\n[B]\n"},
                 Row{"[A]\r\n\r\n[NightColor]\r\nMode = 1\r\n",
                     "[A]\r\n\r\n[NightColor]\r\nMode=Constant\r\nActive=true\r\nNightTemperature=3380\r\n"},
                 Row{"[NightColor]\nActive[$d]\nMode[$e]=$M\nMode[de]=Eins\nModes=2\nActive\n",
                     "[NightColor]\nActive=true\nMode=Constant\nMode[de]=Eins\nModes=2\nActive\nNightTemperature="
                     "3380\n"},
                 Row{"[NightColor]\nMode=1\nMode=2\n[A]\nMode=3\n[NightColor]\nActive=0\n[NightColor][B]\nMode=4",
                     "[NightColor]\nMode=1\nMode=Constant\n[A]\nMode=3\n[NightColor]\nActive=true\n"
                     "NightTemperature=3380\n[NightColor][B]\nMode=4"},
                 Row{rubbish, rubbish + '\n' + set},
             }) {
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
            QVERIFY(!home.hasState());
        }
    }

    void powerMayGoAtAnyMoment()
    {
        const QByteArray before = "[NightColor]\nActive=true\nMode=Times\n";
        struct Row ///< the disk holds one of the states and one of the settings that follow each other
        {
            int state;
            int settings;
            End end;
        };
        for (const auto &[state, settings, end] :
             {Row{1, 0, End::nothingBorrowed}, Row{1, 1, End::givenBack}, Row{2, 1, End::givenBack},
              Row{2, 2, End::givenBack}, Row{2, 0, End::nothingBorrowed}, Row{3, 2, End::nothingBorrowed}}) {
            const Home home;
            put(home.files.kwinrc, before);
            std::array<QByteArray, 4> states{"", "", "", "Damaged\nwrote 2656\n"};
            std::array allSettings{before, QByteArray(), QByteArray()};
            {
                NightLightLoan loan(home.files);
                for (const std::size_t step : {1U, 2U}) {
                    QVERIFY(loan.borrow(step == 1 ? 3380 : 2656));
                    states[step] = contentOf(home.files.state);
                    allSettings[step] = contentOf(home.files.kwinrc);
                }
            }
            put(home.files.state, states[state]);
            put(home.files.kwinrc, allSettings[settings]);
            QCOMPARE(NightLightLoan(home.files).giveBack(0ms), end);
            QCOMPARE(contentOf(home.files.kwinrc), end == End::givenBack ? before : allSettings[settings]);
            QVERIFY(!home.hasState());
        }
    }

    void whatOthersChangeMeanwhileIsTheirs()
    {
        const QByteArray added = "[A]\nx=1\n\n[NightColor]\n%1Latitude=5\n\n[B]\nActive=1\n";
        for (const QByteArray theirs : {"[NightColor]\nActive=false\nMode=Constant\nNightTemperature=3380\n",
                                        "[NightColor]\nActive=true\nNightTemperature=3380\n",
                                        "[NightColor]\nActive=true\nMode=Constant\nNightTemperature=4000\n", "%1"}) {
            const bool areOthers = theirs == "%1"; // settings than those that are borrowed
            const Home home;
            NightLightLoan loan(home.files);
            QVERIFY(loan.borrow(3380));
            put(home.files.kwinrc, areOthers ? QByteArray(added).replace("%1", ours) : theirs);
            QCOMPARE(loan.isUntouched(), areOthers);
            QCOMPARE(loan.giveBack(0ms), areOthers ? End::givenBack : End::changedByOthers);
            QCOMPARE(contentOf(home.files.kwinrc), areOthers ? QByteArray(added).replace("%1", "") : theirs);
            QVERIFY(!home.hasState());
        }
    }

    void settingsThatCannotBeBorrowedAreLeftAlone()
    {
        const QByteArray lockedBySystem = "[NightColor]\nActive[$ei]=false\n";
        for (const QByteArray &settings :
             {QByteArray("[NightColor]\nMode[$i]=1\n"), QByteArray("[NightColor][$i]\n"), QByteArray("[$i]\n[A]\n"),
              QByteArray(2'000'000, '#'), QByteArray(), QByteArray("pipe"), QByteArray("link")}) {
            const Home home;
            put(home.files.systemKwinrcs.front(), settings.isEmpty() ? lockedBySystem : QByteArray());
            if (settings == "pipe")
                QCOMPARE(mkfifo(home.files.kwinrc.c_str(), 0600), 0);
            else if (settings == "link")
                QVERIFY(QFile::link(QStringLiteral("/nonexistent/kwinrc"), QString::fromStdString(home.files.kwinrc)));
            else
                put(home.files.kwinrc, settings);
            const auto size = QFileInfo(QString::fromStdString(home.files.kwinrc)).size();
            NightLightLoan loan(home.files);
            QVERIFY(!loan.borrow(3380) && !loan.isActive());
            QVERIFY(!loan.failure().empty());
            QCOMPARE(QFileInfo(QString::fromStdString(home.files.kwinrc)).size(), size);
            QCOMPARE(loan.giveBack(0ms), End::nothingBorrowed);
        }
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
