#include "adapters/linux/displays/profiles/ColourProfiles.h"

#include "adapters/linux/displays/profiles/VideoCardGamma.h"
#include "support/PrivateColord.h"

#include <sys/stat.h>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

bool isCurve(const std::optional<GammaTables> &tables, double tolerance)
{
    if (!tables)
        return false;
    std::size_t channel = 0;
    for (const auto *const table : {&tables->red, &tables->green, &tables->blue}) {
        for (std::size_t i = 0; i < GammaTables::size; ++i) {
            const double expected = calibrationCurve(channel, static_cast<double>(i) / 255);
            if (!(std::abs((*table)[i] - expected) <= tolerance))
                return false;
        }
        ++channel;
    }
    return true;
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
    void curvesOfAllKindsAreRead()
    {
        constexpr int one = 0x10000;
        const auto formula = "vcgt" + bigEndian(0U, 1U) + bigEndian(2 * one, 0, one, 2 * one, 0, one / 2, one, 0, one);
        for (const auto &tag : {calibrationTag<std::uint16_t>(256, 65535), calibrationTag<std::uint16_t>(1024, 65535),
                                calibrationTag<std::uint8_t>(256, 255), QByteArray(formula)})
            QVERIFY(isCurve(read(colourProfile(tag)).tables, tag.size() == 786 ? 0.003 : 3 / 65535.0));
    }

    void damagedProfilesHaveNoCurveAndDoNoHarm()
    {
        auto whole = colourProfile(calibrationTag<std::uint16_t>(256, 65535));
        for (const auto length : {0, 100, 140, 260, 270, 1000})
            QVERIFY(!read(whole.left(length)).tables);
        QVERIFY(read(whole.left(100)).isDamaged);
        whole[252 + 13] = 9; // channels
        QVERIFY(read(whole).isDamaged);
        const auto none = read(colourProfile({}));
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
        const auto calibrated = colourProfile(calibrationTag<std::uint16_t>(256, 65535));
        colord.setProfile(colord.addDisplay(QStringLiteral("DP-1")), calibrated);
        colord.setProfile(colord.addDisplay(QStringLiteral("DP-2")), colourProfile({}));
        colord.addDisplay(QStringLiteral("DP-3"));
        const auto profiles = ask(5s);
        const std::array expected{Knowledge::found, Knowledge::found, Knowledge::none, Knowledge::none,
                                  Knowledge::none};
        QVERIFY(std::ranges::equal(profiles, expected, {}, &ColourProfile::knowledge));
        QVERIFY(isCurve(profiles[0].calibration, 2 / 65535.0));
        QVERIFY(!profiles[1].calibration && profiles[1].damagedFile.empty());

        // One that does not answer is not waited for.
        colord.suspend();
        const auto late = ask(20ms);
        QVERIFY(late[0].knowledge == Knowledge::unknown && !late[0].calibration);
    }
};

QTEST_GUILESS_MAIN(ColourProfilesTest)
#include "ColourProfiles.moc"
