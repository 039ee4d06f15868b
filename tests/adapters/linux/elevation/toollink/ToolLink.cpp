#include "adapters/linux/elevation/toollink/ToolLink.h"

#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;

class ToolLink : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whateverHasTheNameIsReplacedExceptAFolder()
    {
        const QTemporaryDir temporary;
        const fs::path base = temporary.path().toStdString();
        const fs::path folder = base / "local/bin", link = folder / "ambertide", tool = base / "a ' tool";
        QCOMPARE(toolLink::install(tool, folder), toolLink::NoTool);
        std::ofstream(tool) << "tool";
        QCOMPARE(toolLink::install(tool, folder), toolLink::NoTool); // it cannot be run
        fs::permissions(tool, fs::perms::owner_all);
        const auto installs = [&] {
            return toolLink::install(tool, folder) == toolLink::Done && fs::read_symlink(link) == tool;
        };
        QVERIFY(installs());
        fs::create_directory(base / "other");
        for (const auto &target : {base / "other", base / "gone"}) {
            fs::remove(link);
            fs::create_symlink(target, link);
            std::ofstream(folder / ".ambertide-new") << "left by one that was killed";
            QVERIFY(installs());
        }
        QVERIFY(fs::is_empty(base / "other"));
        for (int i = 0; i < 2; ++i)
            QCOMPARE(toolLink::uninstall(folder), toolLink::Done);
        QVERIFY(fs::is_empty(folder) && fs::exists(tool));
        fs::create_directories(link / "kept");
        QCOMPARE(toolLink::install(tool, folder), toolLink::FolderInWay);
        QCOMPARE(toolLink::uninstall(folder), toolLink::FolderInWay);
        QVERIFY(fs::exists(link / "kept"));
    }
};

QTEST_GUILESS_MAIN(ToolLink)
#include "ToolLink.moc"
