#pragma once

#include "support/PrivateBus.h"
#include "support/busctl.h"

#include <lcms2.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>

#include <array>
#include <csignal>
#include <fstream>

namespace ambertide {

/// The exponents of red, green and blue in the calibration of the profile below.
inline constexpr std::array calibrationGamma{2.0, 1.5, 1.0};

/// A colour profile, with a calibration (its tag 'vcgt', in tables of 16 bits) or without.
inline QByteArray colourProfile(bool isCalibrated)
{
    auto *const profile = cmsCreate_sRGBProfile();
    std::array<cmsToneCurve *, 3> curves{};
    for (std::size_t channel = 0; channel < curves.size(); ++channel)
        curves[channel] = cmsBuildGamma(nullptr, calibrationGamma[channel]);
    if (isCalibrated)
        cmsWriteTag(profile, cmsSigVcgtTag, curves.data());
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    QByteArray content(static_cast<int>(size), '\0');
    cmsSaveProfileToMem(profile, content.data(), &size);
    cmsFreeToneCurveTriple(curves.data());
    cmsCloseProfile(profile);
    return content;
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
        return QTest::qWaitFor([] { return !addDisplay(QStringLiteral("another")).isEmpty(); });
    }
    ~PrivateColord()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// A display at that output, without a profile, or with the one that it had before it was removed. Its object.
    static QString addDisplay(const QString &output)
    {
        return call(QStringLiteral("CreateDevice ssa{ss} at-%1 normal 2 Kind display XRANDR_name %1").arg(output));
    }
    static void removeDisplay(const QString &display) { call(QStringLiteral("DeleteDevice o ") + display); }
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
        return busctl(QStringLiteral("--system call org.freedesktop.ColorManager %1 org.freedesktop.ColorManager%2 %3")
                          .arg(object, interface, arguments))
            .section(u'"', 1, 1);
    }

    const PrivateBus m_bus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_number = 0;
};

} // namespace ambertide
