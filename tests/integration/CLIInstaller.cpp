#include "integration/CLIInstaller.h"

#include "ports/PrivilegedRunner.h"
#include "support/FakeMainBundle.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;
using enum PrivilegedResult::Status;

class TestCLIInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linksTheToolRemovesTheLinkAndSaysWhatWentWrong()
    {
        const fs::path link = m_folder / "ambertide";
        const FakeMainBundle bundle(m_folder / "Amber tide.app");
        const fs::path tool = bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        struct FakePrivilegedRunner final : PrivilegedRunner
        {
            PrivilegedResult run(const std::string &command) override
            {
                commands += command + '\n';
                return result;
            }
            void cancel() override {}
            PrivilegedResult result;
            std::string commands;
        } runner;
        CLIInstaller installer(bundle, runner, link);
        const auto both = [&] {
            std::string failures;
            for (const auto operation : {&CLIInstaller::install, &CLIInstaller::uninstall}) {
                try {
                    (installer.*operation)();
                } catch (const CLIInstaller::CLIError &error) {
                    failures += error.errorDescription() + '|';
                }
            }
            return failures;
        };
        // With neither tool nor link there is nothing to ask for.
        QCOMPARE(both(), "Could not find CLI executable in app bundle|");
        QCOMPARE(runner.commands, "");

        fs::create_directories(tool.parent_path());
        std::ofstream(tool) << "tool";
        fs::create_symlink(tool, link);
        QCOMPARE(both(), "");
        QCOMPARE(runner.commands, "mkdir -p /usr/local/bin && ln -sf '" + tool.string() + "' '" + link.string() +
                                      "'\nrm -f '" + link.string() + "'\n");
        runner.result = {Failed, "no"};
        QCOMPARE(both(), "Failed to install the CLI tool: no|Failed to uninstall the CLI tool: no|");

        // A link to nowhere is no installed tool, and stays where it is.
        runner = {};
        fs::remove(tool);
        QVERIFY(!installer.isInstalled());
        QCOMPARE(both(), "Could not find CLI executable in app bundle|");
        QCOMPARE(runner.commands, "");
    }

    void theAdministratorShellRunsNothingElse()
    {
        for (const auto *name : {"mkdir", "ln", "rm"}) {
            std::ofstream(m_folder / name) << "#!/bin/sh\nprintf '%s|' \"${0##*/}\" \"$@\"\n";
            fs::permissions(m_folder / name, fs::perms::owner_all);
        }
        const auto runs = [this](const std::string &command, const char *ran) {
            QProcess shell;
            shell.setEnvironment({QStringLiteral("PATH=") + m_temporary.path()});
            shell.start(QStringLiteral(AMBERTIDE_SOURCES "/packaging/polkit/administrator-shell"),
                        {QStringLiteral("-c"), QString::fromStdString(command)});
            QVERIFY(shell.waitForFinished());
            QCOMPARE(shell.readAllStandardOutput(), ran);
            QCOMPARE(shell.exitCode(), *ran ? 0 : 64);
        };
        const auto link = [](const std::string &target) {
            return "mkdir -p /usr/local/bin && ln -sf '" + target + "' '/usr/local/bin/ambertide'";
        };
        runs(link("/a $(b) `c`\n\"/Contents/MacOS/AmbertideCLI"),
             "mkdir|-p|/usr/local/bin|ln|-sf|/a $(b) `c`\n\"/Contents/MacOS/AmbertideCLI|/usr/local/bin/ambertide|");
        runs("rm -f '/usr/local/bin/ambertide'", "rm|-f|/usr/local/bin/ambertide|");
        runs("rm -f '/usr/local/bin/other'", "");
        runs("rm -f '/usr/local/bin/ambertide'; rm x", "");
        runs(link("/a'; rm x; '/Contents/MacOS/AmbertideCLI"), "");
        runs(link("/bin/sh"), "");
        runs(link("a/Contents/MacOS/AmbertideCLI"), "");
    }

private:
    QTemporaryDir m_temporary;
    fs::path m_folder{m_temporary.path().toStdString()};
};

QTEST_GUILESS_MAIN(TestCLIInstaller)
#include "CLIInstaller.moc"
