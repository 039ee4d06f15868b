#include "adapters/linux/displays/mutter/ColourProfiles.h"

#include "adapters/linux/displays/mutter/VideoCardGamma.h"
#include "support/PrivateBus.h"

#include <QTest>
#include <QtEndian>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cmath>
#include <csignal>

using namespace ambertide;
using namespace std::chrono_literals;

namespace {

constexpr char colord[] = "/usr/libexec/colord";

template <typename... Numbers>
QByteArray bigEndian(Numbers... numbers)
{
    QByteArray bytes;
    const auto append = [&bytes](auto number) {
        const auto swapped = qToBigEndian(number);
        bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
    };
    (append(numbers), ...);
    return bytes;
}

/// A square for red, its half for green and a straight line for blue.
double curve(std::size_t channel, double in) { return channel == 2 ? in : in * in / (channel == 0 ? 1 : 2); }

template <typename Entry>
QByteArray tableTag(std::uint16_t count, double largest)
{
    QByteArray tag = "vcgt" + bigEndian(0U, 0U, std::uint16_t{3}, count, std::uint16_t{sizeof(Entry)});
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (int i = 0; i < count; ++i)
            tag += bigEndian(static_cast<Entry>(std::lround(largest * curve(channel, i / (count - 1.0)))));
    }
    return tag;
}

QByteArray formulaTag()
{
    constexpr int one = 0x10000;
    return "vcgt" + bigEndian(0U, 1U) + bigEndian(2 * one, 0, one, 2 * one, 0, one / 2, one, 0, one);
}

/// With a description, which colord wants, and the given tag unless it is empty.
QByteArray profile(const QByteArray &tag)
{
    const auto description = "desc" + bigEndian(0U, 4U) + QByteArray("lab").leftJustified(82, '\0');
    const auto size = static_cast<std::uint32_t>(tag.size());
    QByteArray whole(128, '\0');
    whole.replace(8, 16, bigEndian(0x02400000U) + "mntrRGB XYZ ");
    whole.replace(36, 4, "acsp");
    whole += bigEndian(size > 0 ? 2U : 1U) + "desc" + bigEndian(156U, 94U);
    whole += size > 0 ? "vcgt" + bigEndian(252U, size) : QByteArray(12, '\0');
    whole += description + QByteArray(2, '\0') + tag;
    whole.replace(0, 4, bigEndian(static_cast<std::uint32_t>(whole.size())));
    return whole;
}

bool isCurve(const std::optional<GammaTables> &tables, double tolerance)
{
    if (!tables)
        return false;
    std::size_t channel = 0;
    for (const auto *const table : {&tables->red, &tables->green, &tables->blue}) {
        for (std::size_t i = 0; i < GammaTables::size; ++i) {
            if (!(std::abs((*table)[i] - curve(channel, static_cast<double>(i) / 255)) <= tolerance))
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

    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("No profile could be written");
        return file.fileName();
    }
    auto read(const QByteArray &content) const
    {
        return readVideoCardGamma(write(QStringLiteral("read.icc"), content).toStdString());
    }

private Q_SLOTS:
    void curvesOfAllKindsAreRead()
    {
        QVERIFY(isCurve(read(profile(tableTag<std::uint16_t>(256, 65535))), 1 / 65535.0));
        QVERIFY(isCurve(read(profile(tableTag<std::uint16_t>(1024, 65535))), 2 / 65535.0));
        QVERIFY(isCurve(read(profile(tableTag<std::uint8_t>(256, 255))), 0.002));
        QVERIFY(isCurve(read(profile(formulaTag())), 1 / 65535.0));
    }

    void damagedProfilesHaveNoCurveAndDoNoHarm()
    {
        for (const auto &tag : {tableTag<std::uint16_t>(256, 65535), formulaTag()}) {
            const auto whole = profile(tag);
            for (int length = 0; length < whole.size(); length += length < 280 ? 1 : 97)
                QVERIFY(!read(whole.left(length)));
            for (int at = 36; at < 280; ++at) {
                for (const char byte : {'\0', '\x7f', '\xff'}) {
                    auto changed = whole;
                    changed[at] = byte;
                    const auto tables = read(changed);
                    QVERIFY(!tables || (tables->red[255] >= 0 && tables->red[255] <= 1));
                }
            }
        }
        QVERIFY(!read(profile({})));
        QVERIFY(!readVideoCardGamma("/nonexistent"));
        QVERIFY(!readVideoCardGamma("/dev/zero"));
        const auto pipe = m_folder.filePath(QStringLiteral("pipe")).toStdString();
        QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
        QVERIFY(!readVideoCardGamma(pipe));
    }

    void colordTellsTheDefaultProfiles()
    {
        using Knowledge = ColourProfile::Knowledge;
        const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
        const std::vector<std::string> connectors{"DP-1", "DP-2", "DP-3", ""};
        const auto connection = openSdBus(SdBusKind::system);
        const auto ask = [&] {
            std::vector<Knowledge> known;
            for (const auto &found : readColourProfiles(connection.get(), connectors, SdBusDeadline::clock::now() + 5s))
                known.push_back(found.knowledge);
            return known;
        };
        QCOMPARE(ask(), std::vector(4, Knowledge::none));
        if (!QFile::exists(QLatin1String(colord)))
            QSKIP("colord is not installed");

        for (const char *variable : {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(variable, m_folder.path().toUtf8());
        QProcess service;
        service.setChildProcessModifier([] { // its databases are below /var
            if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
                mount("none", "/var/lib/colord", "tmpfs", 0, nullptr);
        });
        service.start(QLatin1String(colord), {});
        const auto call = [](const QString &arguments) {
            QProcess busctl;
            busctl.setProcessChannelMode(QProcess::MergedChannels);
            busctl.start(QStringLiteral("busctl"),
                         QStringLiteral("--system call org.freedesktop.ColorManager ").split(u' ', Qt::SkipEmptyParts) +
                             QProcess::splitCommand(arguments));
            busctl.waitForFinished();
            return QString::fromUtf8(busctl.readAll()).trimmed();
        };
        const auto manager = QStringLiteral("/org/freedesktop/ColorManager org.freedesktop.ColorManager ");
        QTRY_VERIFY(call(manager + QStringLiteral("GetDevices")).startsWith(u"ao"));
        const auto with = write(QStringLiteral("with.icc"), profile(tableTag<std::uint16_t>(256, 65535)));
        const auto without = write(QStringLiteral("without.icc"), profile({}));
        int number = 0;
        for (const auto &file : {with, without, QString()}) {
            const auto device =
                call(manager + QStringLiteral("CreateDevice ssa{ss} d%1 normal 2 Kind display XRANDR_name "
                                              "DP-%1")
                                   .arg(++number))
                    .section(u'"', 1, 1);
            QVERIFY2(device.startsWith(u'/'), qPrintable(device));
            if (file.isEmpty())
                continue;
            const auto made =
                call(manager + QStringLiteral("CreateProfile ssa{ss} p%1 normal 1 Filename %2").arg(number).arg(file))
                    .section(u'"', 1, 1);
            const auto added =
                call(device + QStringLiteral(" org.freedesktop.ColorManager.Device AddProfile so soft ") + made);
            QCOMPARE(added, QString());
        }
        QCOMPARE(ask(), (std::vector{Knowledge::found, Knowledge::found, Knowledge::none, Knowledge::none}));
        const auto profiles = readColourProfiles(connection.get(), connectors, SdBusDeadline::clock::now() + 5s);
        QVERIFY(isCurve(profiles[0].calibration, 1 / 65535.0));
        QVERIFY(!profiles[1].calibration);

        // One that does not answer is not waited for.
        ::kill(static_cast<pid_t>(service.processId()), SIGSTOP);
        const auto late = readColourProfiles(connection.get(), connectors, SdBusDeadline::clock::now() + 20ms);
        QVERIFY(late[0].knowledge == Knowledge::unknown && !late[0].calibration);
        service.kill();
        service.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(ColourProfilesTest)
#include "ColourProfiles.moc"
