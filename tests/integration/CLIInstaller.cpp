#include "integration/CLIInstaller.h"

#include "support/FakeMainBundle.h"
#include "support/FakePrivilegedRunner.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;
using enum PrivilegedResult::Status;

/// A bundle with a tool, and a place for its link, in a folder of the test's own.
class TestCLIInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.emplace();
        m_link = fs::path(m_folder->path().toStdString()) / "ambertide";
        m_bundle.bundlePath = m_link.parent_path() / "Amber tide.app";
        m_tool = m_bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        fs::create_directories(m_tool.parent_path());
        std::ofstream(m_tool) << "tool";
        m_runner = {};
    }

    void linksTheToolAndRemovesTheLink()
    {
        QCOMPARE(failureOf(&CLIInstaller::install), "");
        fs::create_symlink(m_tool, m_link);
        QCOMPARE(failureOf(&CLIInstaller::uninstall), "");
        const auto link = m_link.string();
        const std::vector<std::string> expected = {
            "mkdir -p /usr/local/bin && ln -sf '" + m_tool.string() + "' '" + link + "'", "rm -f '" + link + "'"};
        QCOMPARE(m_runner.commands, expected);
    }

    void asksForNothingWhenThereIsNothingToDo()
    {
        fs::create_symlink(m_link.parent_path() / "gone", m_link);
        QCOMPARE(failureOf(&CLIInstaller::uninstall), "");
        fs::remove(m_tool);
        QCOMPARE(failureOf(&CLIInstaller::install), "Could not find CLI executable in app bundle");
        QVERIFY(m_runner.commands.empty());
    }

    void saysWhatWentWrong()
    {
        fs::create_symlink(m_tool, m_link);
        const auto fails = [this](PrivilegedResult result, const std::string &installing, const std::string &removing) {
            m_runner.result = result;
            QCOMPARE(failureOf(&CLIInstaller::install), installing);
            QCOMPARE(failureOf(&CLIInstaller::uninstall), removing);
        };
        fails({Failed, "no"}, "Failed to install the CLI tool: no", "Failed to uninstall the CLI tool: no");
        fails({Failed, {}}, "Failed to install the CLI tool: Unknown error",
              "Failed to uninstall the CLI tool: Unknown error");
        fails({Rejected, {}}, "Failed to create installation script", "Failed to create installation script");
    }

    void theAdministratorShellRunsNothingElse()
    {
        for (const auto name : {"mkdir", "ln", "rm"}) {
            const auto standIn = m_link.parent_path() / name;
            std::ofstream(standIn) << "#!/bin/sh\nprintf '%s|' \"${0##*/}\" \"$@\"\n";
            fs::permissions(standIn, fs::perms::owner_all);
        }
        const auto runs = [this](const char *command, const char *ran) {
            QProcess shell;
            shell.setEnvironment({QStringLiteral("PATH=") + m_folder->path()});
            shell.start(QFINDTESTDATA("../../packaging/polkit/administrator-shell"),
                        {QStringLiteral("-c"), QString::fromUtf8(command)});
            QVERIFY(shell.waitForFinished());
            QCOMPARE(shell.readAllStandardOutput(), ran);
            QCOMPARE(shell.exitCode(), *ran ? 0 : 64);
        };
#define LINK(TARGET) "mkdir -p /usr/local/bin && ln -sf '" TARGET "' '/usr/local/bin/ambertide'"
        runs(LINK("/a $(b) `c`\n\"/Contents/MacOS/AmbertideCLI"),
             "mkdir|-p|/usr/local/bin|ln|-sf|/a $(b) `c`\n\"/Contents/MacOS/AmbertideCLI|/usr/local/bin/ambertide|");
        runs("rm -f '/usr/local/bin/ambertide'", "rm|-f|/usr/local/bin/ambertide|");
        runs("rm -f '/usr/local/bin/other'", "");
        runs("rm -f '/usr/local/bin/ambertide'; rm x", "");
        runs(LINK("/a'; rm x; '/Contents/MacOS/AmbertideCLI"), "");
        runs(LINK("/bin/sh"), "");
        runs(LINK("a/Contents/MacOS/AmbertideCLI"), "");
#undef LINK
    }

private:
    /// Empty for none.
    std::string failureOf(void (CLIInstaller::*operation)())
    {
        CLIInstaller installer(m_bundle, m_runner, m_link);
        try {
            (installer.*operation)();
            return {};
        } catch (const CLIInstaller::CLIError &error) {
            return error.errorDescription();
        }
    }

    std::optional<QTemporaryDir> m_folder;
    fs::path m_link;
    fs::path m_tool;
    FakeMainBundle m_bundle{fs::path()};
    FakePrivilegedRunner m_runner;
};

QTEST_GUILESS_MAIN(TestCLIInstaller)
#include "CLIInstaller.moc"
