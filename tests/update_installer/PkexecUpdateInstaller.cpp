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

    std::filesystem::path file(const char *name, const QByteArray &content, bool isProgram = false)
    {
        QFile written(m_folder.filePath(QString::fromLatin1(name)));
        if (!written.open(QIODevice::WriteOnly) || written.write(content) != content.size())
            qFatal("%s", qPrintable(written.errorString()));
        if (isProgram)
            written.setPermissions(written.permissions() | QFileDevice::ExeOwner);
        return written.fileName().toStdString();
    }
    std::filesystem::path script(const QByteArray &lines) { return file("pkexec", "#!/bin/sh\n" + lines, true); }

    static UpdateInstaller::Result install(UpdateInstaller &installer, const std::filesystem::path &package)
    {
        std::optional<UpdateInstaller::Result> result;
        installer.install(package, "QUJD", [&](const UpdateInstaller::Result &each) { result = each; });
        [&] { QTRY_VERIFY(result); }();
        return result.value_or(UpdateInstaller::Result{Outcome::Failed, "no result"});
    }

private Q_SLOTS:
    void theHelperGetsTheBytesAndTheSignatureAndNothingElse()
    {
        qputenv("LD_PRELOAD_OF_A_STRANGER", "x");
        PkexecUpdateInstaller installer("/usr/lib/helper",
                                        script("[ \"$*\" = '--disable-internal-agent /usr/lib/helper QUJD' ] "
                                               "&& [ \"$(cat)\" = bytes ] && ! env | grep -q STRANGER"));
        QVERIFY(install(installer, file("package", "bytes")).outcome == Outcome::Installed);
    }

    void everyEndIsToldApart_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<Outcome>("outcome");
        QTest::addColumn<QString>("message");
        QTest::newRow("dismissed") << QByteArray("exit 126") << Outcome::Dismissed << QString();
        QTest::newRow("not authorised") << QByteArray("echo 'Not authorized\n\nreported' >&2; exit 127")
                                        << Outcome::NotAuthorised << QStringLiteral("Not authorized");
        QTest::newRow("refused") << QByteArray("echo 'not newer' >&2; exit 1") << Outcome::Failed
                                 << QStringLiteral("not newer");
        QTest::newRow("silent") << QByteArray("exit 3") << Outcome::Failed
                                << QStringLiteral("the installer ended with status 3");
        QTest::newRow("killed") << QByteArray("kill -9 $$") << Outcome::Failed
                                << QStringLiteral("the installation was broken off");
        QTest::newRow("talkative") << QByteArray("yes | tr -d '\\n' | head -c 1000000 >&2; exit 1") << Outcome::Failed
                                   << QString(4096, u'y');
    }
    void everyEndIsToldApart()
    {
        QFETCH(QByteArray, lines);
        QFETCH(Outcome, outcome);
        PkexecUpdateInstaller installer("/usr/lib/helper", script(lines));
        const auto result = install(installer, file("package", "bytes"));
        QVERIFY(result.outcome == outcome);
        QTEST(QString::fromStdString(result.message), "message");
    }

    void withoutPkexecThereIsAnAnswer()
    {
        PkexecUpdateInstaller installer("/usr/lib/helper", "/nowhere/pkexec");
        const auto result = install(installer, file("package", "bytes"));
        QVERIFY(result.outcome == Outcome::NotAuthorised && !result.message.empty());
    }

    void anInstallationOutlivesTheInstaller()
    {
        const QString finished = m_folder.filePath(QStringLiteral("finished"));
        auto installer = std::make_unique<PkexecUpdateInstaller>(
            "/usr/lib/helper", script(QByteArray("touch begun; read line < gate; touch finished")
                                          .replace("begun", m_folder.filePath(QStringLiteral("begun")).toUtf8())
                                          .replace("finished", finished.toUtf8())
                                          .replace("gate", m_folder.filePath(QStringLiteral("gate")).toUtf8())));
        QCOMPARE(system(qPrintable(QStringLiteral("mkfifo ") + m_folder.filePath(QStringLiteral("gate")))), 0);
        bool isDone = false;
        installer->install(file("package", "bytes"), "QUJD", [&](const auto &) { isDone = true; });
        QTRY_VERIFY(QFile::exists(m_folder.filePath(QStringLiteral("begun"))));
        installer.reset();
        file("gate", "go\n");
        QTRY_VERIFY(QFile::exists(finished));
        QVERIFY(!isDone);
    }
};

} // namespace ambertide

QTEST_GUILESS_MAIN(ambertide::PkexecUpdateInstallerTest)
#include "PkexecUpdateInstaller.moc"
