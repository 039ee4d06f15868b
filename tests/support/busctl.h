#pragma once

#include <QProcess>
#include <QTest>

namespace ambertide {

/// What `busctl --user` prints, on either output, for these arguments, split as by QProcess::splitCommand().
/// Serves Qt's events meanwhile: what it calls may live in the same thread.
inline QString busctl(const QString &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("busctl"), QStringList(QStringLiteral("--user")) + QProcess::splitCommand(arguments));
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 20'000))
        return QStringLiteral("busctl does not end");
    return QString::fromUtf8(process.readAll()).trimmed();
}

} // namespace ambertide
