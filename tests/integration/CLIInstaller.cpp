#include "integration/CLIInstaller.h"

#include "ports/PrivilegedRunner.h"
#include "support/Fakes.h"

#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;

class TestCLIInstaller : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsAskedForWithoutToolOrLink()
    {
        struct FakePrivilegedRunner final : PrivilegedRunner
        {
            PrivilegedResult run(const std::string &command) override
            {
                commands += command + '\n';
                return {};
            }
            void cancel() override {}
            std::string commands;
        } runner;
        const fs::path link = m_folder / "ambertide";
        const FakeMainBundle bundle(m_folder / "Amber tide.app");
        const fs::path tool = bundle.bundlePath / "Contents/MacOS/AmbertideCLI";
        CLIInstaller installer(bundle, runner, link);
        for (const bool isThere : {false, true, false}) { // in the end the link leads nowhere
            runner.commands.clear();
            if (isThere) {
                fs::create_directories(tool.parent_path());
                std::ofstream(tool) << "tool";
                fs::create_symlink(tool, link);
                installer.install();
            } else {
                fs::remove(tool);
                QVERIFY_EXCEPTION_THROWN(installer.install(), CLIInstaller::CLIError);
            }
            QCOMPARE(installer.isInstalled(), isThere);
            installer.uninstall();
            const auto commands = "mkdir -p /usr/local/bin && ln -sf '" + tool.string() + "' '" + link.string() +
                                  "'\nrm -f '" + link.string() + "'\n";
            QCOMPARE(runner.commands, isThere ? commands : "");
        }
    }

private:
    QTemporaryDir m_temporary;
    fs::path m_folder{m_temporary.path().toStdString()};
};

QTEST_GUILESS_MAIN(TestCLIInstaller)
#include "CLIInstaller.moc"
