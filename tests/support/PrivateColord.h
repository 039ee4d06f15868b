#pragma once

#include "support/PrivateBus.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>

#include <cmath>
#include <csignal>
#include <fstream>

namespace ambertide {

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

/// A calibration: a square for red, its half for green and a straight line for blue.
inline double calibrationCurve(std::size_t channel, double in)
{
    return channel == 2 ? in : in * in / (channel == 0 ? 1 : 2);
}

/// Its tag 'vcgt', with so many entries.
template <typename Entry>
QByteArray calibrationTag(std::uint16_t count, double largest)
{
    QByteArray tag = "vcgt" + bigEndian(0U, 0U, std::uint16_t{3}, count, std::uint16_t{sizeof(Entry)});
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (int i = 0; i < count; ++i)
            tag += bigEndian(static_cast<Entry>(std::lround(largest * calibrationCurve(channel, i / (count - 1.0)))));
    }
    return tag;
}

/// A colour profile with a description, which colord wants, and the given tag unless it is empty.
inline QByteArray colourProfile(const QByteArray &tag)
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

/// The real colord on a system bus of its own, with its databases in a folder of its own. Both end with this object.
class PrivateColord
{
public:
    static bool isInstalled() { return QFile::exists(QLatin1String(program)); }

    /// False when it does not come up.
    bool start()
    {
        for (const char *variable : {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(variable, m_folder.path().toUtf8());
        m_process.setChildProcessModifier([] { // its databases are below /var
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
                mount("none", "/var/lib/colord", "tmpfs", 0, nullptr);
        });
        m_process.start(QLatin1String(program), {});
        return QTest::qWaitFor([this] { return !addDisplay(QStringLiteral("another")).isEmpty(); });
    }
    ~PrivateColord()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// A display at that output, without a profile. Its object.
    QString addDisplay(const QString &output)
    {
        return call(QStringLiteral("CreateDevice ssa{ss} d%1 normal 2 Kind display XRANDR_name %2")
                        .arg(QString::number(++m_number), output));
    }
    /// Makes a file of that content the display's default profile.
    void setProfile(const QString &display, const QByteArray &content)
    {
        const auto file = m_folder.filePath(QString::number(++m_number) + QStringLiteral(".icc"));
        std::ofstream(file.toStdString()).write(content.data(), content.size());
        const auto profile =
            call(QStringLiteral("CreateProfile ssa{ss} p%1 normal 1 Filename %2").arg(QString::number(m_number), file));
        call(QStringLiteral("AddProfile so hard ") + profile, display, QStringLiteral(".Device"));
        call(QStringLiteral("MakeProfileDefault o ") + profile, display, QStringLiteral(".Device"));
    }
    /// One that does not answer.
    void suspend() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP); }

private:
    static constexpr char program[] = "/usr/libexec/colord";

    /// The object in the answer.
    static QString call(const QString &arguments,
                        const QString &object = QStringLiteral("/org/freedesktop/ColorManager"),
                        const QString &interface = {})
    {
        constexpr char command[] = "--system call org.freedesktop.ColorManager %1 org.freedesktop.ColorManager%2 %3";
        QProcess busctl;
        busctl.start(QStringLiteral("busctl"),
                     QProcess::splitCommand(QString::fromLatin1(command).arg(object, interface, arguments)));
        busctl.waitForFinished();
        return QString::fromUtf8(busctl.readAll()).section(u'"', 1, 1);
    }

    const PrivateBus m_bus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_number = 0;
};

} // namespace ambertide
