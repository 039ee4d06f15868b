#include "integration/CLIInstaller.h"

#include "support/FakeMainBundle.h"
#include "support/FakePrivilegedRunner.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>
#include <fstream>
#include <memory>

using namespace ambertide;
namespace fs = std::filesystem;

using Case = CLIInstaller::CLIError::Case;
using Status = PrivilegedResult::Status;
Q_DECLARE_METATYPE(PrivilegedResult)
Q_DECLARE_METATYPE(Case)

/// A bundle with a tool, and a place for its link, in a folder of the test's own.
class TestCLIInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_root = m_folder->path().toStdString();
        m_link = m_root / "ambertide";
        m_bundle.bundlePath = m_root / "Amber tide.app";
        m_tool = m_bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        fs::create_directories(m_tool.parent_path());
        std::ofstream(m_tool) << "tool";
        m_runner = {};
    }

    void linksTheToolAndRemovesTheLink()
    {
        QVERIFY(!installer().isInstalled());
        installer().install();
        fs::create_symlink(m_tool, m_link);
        QVERIFY(installer().isInstalled());
        installer().uninstall();

        const std::vector<std::string> expected = {"mkdir -p /usr/local/bin && ln -sf '" + m_tool.string() + "' '" +
                                                       m_link.string() + "'",
                                                   "rm -f '" + m_link.string() + "'"};
        QCOMPARE(m_runner.commands, expected);
    }

    void asksForNothingWhenThereIsNothingToDo()
    {
        installer().uninstall();
        fs::create_symlink(m_root / "gone", m_link);
        QVERIFY(!installer().isInstalled());
        installer().uninstall();
        fs::remove(m_tool);
        try {
            installer().install();
            QFAIL("installed a tool that is not there");
        } catch (const CLIInstaller::CLIError &error) {
            QCOMPARE(error.code(), Case::BundleNotFound);
            QCOMPARE(error.what(), "Could not find CLI executable in app bundle");
        }
        QVERIFY(m_runner.commands.empty());
    }

    void saysWhatWentWrong_data()
    {
        QTest::addColumn<PrivilegedResult>("result");
        QTest::addColumn<bool>("install");
        QTest::addColumn<Case>("code");
        QTest::addColumn<std::string>("description");
        using std::string;
        QTest::newRow("install, with a message")
            << PrivilegedResult{Status::Failed, "cancelled"} << true << Case::InstallationFailed
            << string("Failed to install the CLI tool: cancelled");
        QTest::newRow("install, without") << PrivilegedResult{Status::Failed, {}} << true << Case::InstallationFailed
                                          << string("Failed to install the CLI tool: Unknown error");
        QTest::newRow("uninstall, with a message")
            << PrivilegedResult{Status::Failed, "cancelled"} << false << Case::UninstallationFailed
            << string("Failed to uninstall the CLI tool: cancelled");
        QTest::newRow("uninstall, without")
            << PrivilegedResult{Status::Failed, {}} << false << Case::UninstallationFailed
            << string("Failed to uninstall the CLI tool: Unknown error");
        QTest::newRow("install, text not taken")
            << PrivilegedResult{Status::Rejected, "why"} << true << Case::ScriptCreationFailed
            << string("Failed to create installation script");
        QTest::newRow("uninstall, text not taken")
            << PrivilegedResult{Status::Rejected, {}} << false << Case::ScriptCreationFailed
            << string("Failed to create installation script");
    }
    void saysWhatWentWrong()
    {
        QFETCH(PrivilegedResult, result);
        QFETCH(bool, install);
        QFETCH(Case, code);
        QFETCH(std::string, description);
        m_runner.result = result;
        if (!install)
            fs::create_symlink(m_tool, m_link);
        try {
            install ? installer().install() : installer().uninstall();
            QFAIL("a failure was not reported");
        } catch (const CLIInstaller::CLIError &error) {
            QCOMPARE(error.code(), code);
            QCOMPARE(error.errorDescription(), description);
        }
    }

    void theAdministratorShellRunsNothingElse_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("ran");
        const QString link = QString::fromUtf8(CLIInstaller::defaultPath);
        const auto linking = [](const QString &target) {
            return QStringLiteral("mkdir -p /usr/local/bin && ln -sf '%1' '/usr/local/bin/ambertide'").arg(target);
        };
        const auto tool = QStringLiteral("/opt/a $(b) \"c\"\n`d`/Contents/MacOS/AmbertideCLI");
        const auto dashC = QStringLiteral("-c");
        const QString nothing;
        QTest::newRow("install") << QStringList{dashC, linking(tool)}
                                 << QStringLiteral("mkdir|-p|/usr/local/bin|ln|-sf|%1|%2|").arg(tool, link);
        QTest::newRow("uninstall") << QStringList{dashC, QStringLiteral("rm -f '%1'").arg(link)}
                                   << QStringLiteral("rm|-f|%1|").arg(link);
        QTest::newRow("uninstall something else")
            << QStringList{dashC, QStringLiteral("rm -f '/usr/local/bin/other'")} << nothing;
        QTest::newRow("more after it") << QStringList{dashC, QStringLiteral("rm -f '%1'; rm x").arg(link)} << nothing;
        QTest::newRow("a quote in the path")
            << QStringList{dashC, linking(QStringLiteral("/a'; rm x; '/Contents/MacOS/AmbertideCLI"))} << nothing;
        QTest::newRow("another program") << QStringList{dashC, linking(QStringLiteral("/bin/sh"))} << nothing;
        QTest::newRow("relative path") << QStringList{dashC, linking(QStringLiteral("x/Contents/MacOS/AmbertideCLI"))}
                                       << nothing;
        QTest::newRow("no command") << QStringList{dashC} << nothing;
        QTest::newRow("a script") << QStringList{QStringLiteral("/tmp/x"), QStringLiteral("rm -f '%1'").arg(link)}
                                  << nothing;
    }
    void theAdministratorShellRunsNothingElse()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, ran);
        for (const auto name : {"mkdir", "ln", "rm"}) {
            std::ofstream(m_root / name) << "#!/bin/sh\nprintf '%s|' \"${0##*/}\" \"$@\"\n";
            fs::permissions(m_root / name, fs::perms::owner_all);
        }
        QProcess shell;
        auto environment = QProcessEnvironment();
        environment.insert(QStringLiteral("PATH"), m_folder->path());
        shell.setProcessEnvironment(environment);
        shell.start(QFINDTESTDATA("../../packaging/polkit/administrator-shell"), arguments);
        QVERIFY(shell.waitForFinished());
        QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), ran);
        QCOMPARE(shell.exitCode(), ran.isEmpty() ? 64 : 0);
        QCOMPARE(shell.readAllStandardError().isEmpty(), !ran.isEmpty());
    }

private:
    CLIInstaller installer() { return CLIInstaller(m_bundle, m_runner, m_link); }

    std::unique_ptr<QTemporaryDir> m_folder;
    fs::path m_root;
    fs::path m_link;
    fs::path m_tool;
    FakeMainBundle m_bundle{fs::path()};
    FakePrivilegedRunner m_runner;
};

QTEST_GUILESS_MAIN(TestCLIInstaller)
#include "CLIInstaller.moc"
