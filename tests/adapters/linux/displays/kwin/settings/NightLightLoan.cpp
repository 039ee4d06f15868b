#include "adapters/linux/displays/kwin/settings/NightLightLoan.h"

#include "adapters/linux/displays/kwin/settings/SettingsFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <array>
#include <fstream>
#include <tuple>

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
    std::ofstream(file).write(content.data(), content.size());
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
        for (const auto &[before, borrowed] : {
                 std::pair<QByteArray, QByteArray>{"", set},
                 {"[A]\nActive=no\n", "[A]\nActive=no\n\n" + set},
                 {"[A]\nx=1", QByteArray("[A]\nx=1\n\n" + set).chopped(1)},
                 {"[NightColor]\n\n[B]\ny=2\n", set + "\n[B]\ny=2\n"},
                 {"[NightColor]\nNightTemperature=4100\nLatitude=5\nActive=false\n\n[B]\n",
                  "[NightColor]\nNightTemperature=3380\nLatitude=5\nActive=true\nMode=Constant\n\n[B]\n"},
                 {"[A]\r\n\r\n[NightColor]\r\nMode = 1\r\n",
                  "[A]\r\n\r\n[NightColor]\r\nMode=Constant\r\nActive=true\r\nNightTemperature=3380\r\n"},
                 {"[NightColor]\nActive[$d]\nMode[$e]=$M\nMode[de]=Eins\nModes=2\nActive\n",
                  "[NightColor]\nActive=true\nMode=Constant\nMode[de]=Eins\nModes=2\nActive\nNightTemperature="
                  "3380\n"},
                 {"[NightColor]\nMode=1\nMode=2\n[A]\nMode=3\n[NightColor]\nActive=0\n[NightColor][B]\nMode=4",
                  "[NightColor]\nMode=1\nMode=Constant\n[A]\nMode=3\n[NightColor]\nActive=true\n"
                  "NightTemperature=3380\n[NightColor][B]\nMode=4"},
                 {rubbish, rubbish + '\n' + set},
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

    void whatOneCopyBorrowsComesBackWhileItIsOursAtWhateverMomentThePowerGoes()
    {
        const auto keysOf = [](const QByteArray &group) { return group.mid(group.indexOf('\n') + 1); };
        const QByteArray first = "[NightColor]\n" + ours;
        const auto second = QByteArray(first).replace("3380", "2656");
        const auto amongOthers = "[A]\nx=1\n\n" + first + "Latitude=5\n\n[B]\nActive=1\n";
        for (const QByteArray before : {"", "[NightColor]\nActive=true\nMode=Times\n"}) {
            std::array<QByteArray, 4> states{"", "", "", "Damaged\nwrote 2656\n"}; // the first three follow each other
            const Home home;
            put(home.files.kwinrc, before);
            {
                NightLightLoan loan(home.files);
                for (const std::size_t step : {1U, 2U}) {
                    QVERIFY(loan.borrow(step == 1 ? 3380 : 2656));
                    states[step] = contentOf(home.files.state);
                }
                NightLightLoan another(home.files);
                QVERIFY(!another.borrow(3380));
                QCOMPARE(another.giveBack(0ms), End::nothingBorrowed);
                QCOMPARE(contentOf(home.files.kwinrc), second);
            }
            using Disk = std::tuple<int, QByteArray, End>; // one of the states, settings, and what comes of them
            for (const auto &[state, settings, end] :
                 {Disk{1, before, End::nothingBorrowed}, Disk{1, first, End::givenBack}, Disk{2, first, End::givenBack},
                  Disk{2, second, End::givenBack}, Disk{2, before, End::nothingBorrowed},
                  Disk{3, second, End::nothingBorrowed}, Disk{1, amongOthers, End::givenBack},
                  Disk{1, QByteArray(first).replace("3380", "4000"), End::changedByOthers},
                  Disk{1, QByteArray(first).replace("Mode=Constant\n", ""), End::changedByOthers},
                  Disk{1, QByteArray(first).replace("true", "false"), End::changedByOthers}}) {
                put(home.files.state, states[static_cast<std::size_t>(state)]);
                put(home.files.kwinrc, settings);
                NightLightLoan loan(home.files);
                QCOMPARE(loan.isUntouched(), end == End::givenBack);
                QCOMPARE(loan.giveBack(0ms), end);
                auto expected = settings;
                if (end == End::givenBack)
                    expected.replace(keysOf(first), keysOf(before)).replace(keysOf(second), keysOf(before));
                QCOMPARE(contentOf(home.files.kwinrc), expected == "[NightColor]\n" ? QByteArray() : expected);
                QVERIFY(!home.hasState());
            }
        }
    }

    void settingsThatCannotBeBorrowedAreLeftAlone()
    {
        const QByteArray lockedBySystem = "[NightColor]\nActive[$ei]=false\n";
        for (const QByteArray &settings :
             {QByteArray("[NightColor]\nMode[$i]=1\n"), QByteArray("[NightColor][$i]\n"), QByteArray("[$i]\n[A]\n"),
              QByteArray(2'000'000, '#'), QByteArray(), QByteArray("pipe"), QByteArray("link"),
              QByteArray("nowhere to save them")}) {
            Home home;
            const bool canBeSaved = !settings.startsWith("nowhere");
            if (!canBeSaved)
                home.files.state = home.files.kwinrc + "/state";
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
            QCOMPARE(loan.giveBack(0ms), canBeSaved ? End::nothingBorrowed : End::failed);
        }
    }
};

QTEST_APPLESS_MAIN(NightLightLoanTest)
#include "NightLightLoan.moc"
