#include "platform/linux/update/PkexecUpdateInstaller.h"

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
    void everyEndIsToldApart_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const QByteArray &script, Outcome outcome, const char *message) {
            QTest::newRow(name) << script << outcome << QString::fromLatin1(message);
        };
        row("gets bytes, signature and nothing else",
            "[ \"$*\" = '--disable-internal-agent /usr/lib/helper QUJD' ] && [ \"$(cat)\" = bytes ] && ! env | grep -q "
            "QT_",
            Outcome::Installed, "");
        row("dismissed", "exit 126", Outcome::Dismissed, "");
        row("not authorised", "echo 'Not authorized\n\nreported' >&2; exit 127", Outcome::NotAuthorised,
            "Not authorized");
        row("refused", "echo 'not newer' >&2; exit 1", Outcome::Failed, "not newer");
        row("silent", "exit 3", Outcome::Failed, "the installer ended with status 3");
        row("killed", "kill -9 $$", Outcome::Failed, "the installation was broken off");
        row("talkative", "yes | tr -d '\\n' | head -c 1000000 >&2; exit 1", Outcome::Failed,
            QByteArray(4096, 'y').constData());
        row("no pkexec", "", Outcome::NotAuthorised,
            "pkexec, which asks for administrator rights, could not be started");
    }
    void everyEndIsToldApart()
    {
        QFETCH(QByteArray, script);
        QFETCH(Outcome, outcome);
        const auto installer = install(script);
        QTRY_VERIFY(m_result);
        QVERIFY(m_result->outcome == outcome);
        QTEST(QString::fromStdString(m_result->message), "message");
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
