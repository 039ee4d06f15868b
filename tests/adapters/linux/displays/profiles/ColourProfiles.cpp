#include "adapters/linux/displays/profiles/ColourProfiles.h"

#include "adapters/linux/displays/profiles/VideoCardGamma.h"
#include "support/PrivateColord.h"

#include <sys/stat.h>

#include <cmath>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

bool isCalibration(const std::optional<GammaTables> &tables)
{
    for (std::size_t i = 0; tables && i < GammaTables::size; ++i) {
        const std::array levels{tables->red[i], tables->green[i], tables->blue[i]};
        for (std::size_t channel = 0; channel < levels.size(); ++channel) {
            const double expected = std::pow(static_cast<double>(i) / 255, calibrationGamma[channel]);
            if (!(std::abs(levels[channel] - expected) <= 2 / 65535.0))
                return false;
        }
    }
    return tables.has_value();
}

} // namespace

class ColourProfilesTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

    VideoCardGamma read(const QByteArray &content) const
    {
        const auto file = m_folder.filePath(QStringLiteral("read.icc")).toStdString();
        std::ofstream(file).write(content.data(), content.size());
        return readVideoCardGamma(file);
    }

private Q_SLOTS:
    void damagedProfilesHaveNoCurveAndDoNoHarm()
    {
        auto whole = colourProfile(true);
        QVERIFY(isCalibration(read(whole).tables));
        const auto tag = whole.lastIndexOf("vcgt");
        for (const auto length : {qsizetype{0}, qsizetype{100}, qsizetype{140}, tag + 8, tag + 18, tag + 1000})
            QVERIFY(!read(whole.left(length)).tables);
        QVERIFY(read(whole.left(100)).isDamaged);
        whole[tag + 13] = 9; // channels
        QVERIFY(read(whole).isDamaged);
        const auto none = read(colourProfile(false));
        QVERIFY(!none.tables && !none.isDamaged);
        const auto pipe = m_folder.filePath(QStringLiteral("pipe")).toStdString();
        QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
        for (const auto &file : {std::string("/nonexistent"), std::string("/dev/zero"), pipe})
            QVERIFY(readVideoCardGamma(file).isDamaged);
    }

    void colordTellsTheDefaultProfiles()
    {
        using Knowledge = ColourProfile::Knowledge;
        PrivateColord colord;
        const std::vector<std::string> connectors{"DP-1", "DP-2", "DP-3", "DP-4", ""};
        const auto connection = openSdBus(SdBusKind::system);
        const auto ask = [&](auto patience) {
            return readColourProfiles(connection.get(), connectors, SdBusDeadline::clock::now() + patience);
        };
        for (const auto &found : ask(5s))
            QCOMPARE(found.knowledge, Knowledge::none);
        if (!PrivateColord::isInstalled())
            QSKIP("colord is not installed");
        QVERIFY(colord.start());
        colord.setProfile(colord.addDisplay(QStringLiteral("DP-1")), colourProfile(true));
        colord.setProfile(colord.addDisplay(QStringLiteral("DP-2")), colourProfile(false));
        colord.addDisplay(QStringLiteral("DP-3"));
        const auto profiles = ask(5s);
        const std::array expected{Knowledge::found, Knowledge::found, Knowledge::none, Knowledge::none,
                                  Knowledge::none};
        QVERIFY(std::ranges::equal(profiles, expected, {}, &ColourProfile::knowledge));
        QVERIFY(isCalibration(profiles[0].calibration));
        QVERIFY(!profiles[1].calibration && profiles[1].damagedFile.empty());

        // One that does not answer is not waited for.
        colord.suspend();
        const auto late = ask(20ms);
        QVERIFY(late[0].knowledge == Knowledge::unknown && !late[0].calibration);
    }
};

QTEST_GUILESS_MAIN(ColourProfilesTest)
#include "ColourProfiles.moc"
