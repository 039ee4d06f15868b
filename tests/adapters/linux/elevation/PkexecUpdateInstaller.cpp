#include "adapters/linux/elevation/PkexecUpdateInstaller.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

namespace ambertide {

using Outcome = UpdateInstaller::Outcome;

/// Against a shell script in the place of pkexec.
class PkexecUpdateInstallerTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::optional<UpdateInstaller::Result> m_result;

    std::filesystem::path file(const char *name, const QByteArray &content)
    {
        QFile written(m_folder.filePath(QString::fromLatin1(name)));
        if (!written.open(QIODevice::WriteOnly) || written.write(content) != content.size())
            qFatal("%s", qPrintable(written.errorString()));
        written.setPermissions(written.permissions() | QFileDevice::ExeOwner);
        return written.fileName().toStdString();
    }
    std::unique_ptr<UpdateInstaller> install(const QByteArray &script)
    {
        m_result.reset();
        const auto pkexec = script.isEmpty() ? "/nowhere/pkexec" : file("pkexec", "#!/bin/sh\n" + script);
        auto installer = std::make_unique<PkexecUpdateInstaller>("/usr/lib/helper", pkexec);
        installer->install(file("package", "bytes"), "QUJD", [this](const auto &result) { m_result = result; });
        return installer;
    }

private Q_SLOTS:
    void everyEndIsToldApart()
    {
        const auto ends = [this](const QByteArray &script, Outcome outcome, const std::string &message) {
            const auto installer = install(script);
            QTRY_VERIFY(m_result);
            QVERIFY2(m_result->outcome == outcome, script);
            QCOMPARE(m_result->message, message);
        };
        ends("[ \"$*\" = '--disable-internal-agent /usr/lib/helper QUJD' ] && [ \"$(cat)\" = bytes ] && ! env | grep "
             "QT_",
             Outcome::Installed, "");
        ends("exit 126", Outcome::Dismissed, "");
        ends("echo 'Not authorized\n\nreported' >&2; exit 127", Outcome::NotAuthorised, "Not authorized");
        ends("exit 3", Outcome::Failed, "the installer ended with status 3");
        ends("kill -9 $$", Outcome::Failed, "the installation was broken off");
        ends("yes | tr -d '\\n' | head -c 1000000 >&2; exit 1", Outcome::Failed, std::string(4096, 'y'));
        ends({}, Outcome::NotAuthorised, "pkexec, which asks for administrator rights, could not be started");
    }

    void anInstallationOutlivesTheInstaller()
    {
        const QString finished = m_folder.filePath(QStringLiteral("finished"));
        auto installer = install("cd " + m_folder.path().toUtf8() + "; mkfifo gate; read line < gate; touch finished");
        QTRY_VERIFY(QFile::exists(m_folder.filePath(QStringLiteral("gate"))));
        installer.reset();
        file("gate", "go\n");
        QTRY_VERIFY(QFile::exists(finished));
        QVERIFY(!m_result);
    }
};

} // namespace ambertide

QTEST_GUILESS_MAIN(ambertide::PkexecUpdateInstallerTest)
#include "PkexecUpdateInstaller.moc"
