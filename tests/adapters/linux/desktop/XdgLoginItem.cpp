#include "adapters/linux/desktop/XdgLoginItem.h"

#include "support/FakeMainBundle.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <fstream>

using namespace ambertide;
namespace fs = std::filesystem;
using enum LoginItemStatus;

/// Each test has a folder of settings, and a bundle with a program, of its own.
class TestXdgLoginItem : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> m_home;
    fs::path m_folder;
    fs::path m_entry;
    FakeMainBundle m_bundle{fs::path()};
    XdgLoginItem m_item{m_bundle};

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        qputenv("XDG_CONFIG_HOME", m_home->path().toUtf8());
        qputenv("XDG_CONFIG_DIRS", "/nowhere");
        m_folder = m_home->path().toStdString() + "/autostart";
        m_entry = m_folder / "me.tovanu.Ambertide.desktop";
        m_bundle.bundlePath = m_home->path().toStdString() + "/a'b\"c$d`e\\f%g%%h;i#j Янтарь 琥珀";
        fs::create_directories(m_bundle.bundlePath / "Contents/MacOS");
        fs::copy("/bin/true", m_bundle.bundlePath / "Contents/MacOS/Ambertide");
    }

    void comesAndGoes()
    {
        const auto bundle = m_bundle.bundlePath.string() + "\t&\nExec=x\r\n[Desktop Action y]\n";
        fs::rename(m_bundle.bundlePath, bundle);
        m_bundle.bundlePath = bundle;
        QCOMPARE(m_item.status(), NotRegistered);
        QVERIFY(m_item.unregisterItem());
        QVERIFY(!m_item.registerItem());
        QCOMPARE(m_item.status(), Enabled);
        QCOMPARE(fs::status(m_entry).permissions(), fs::perms(0644));
        QCOMPARE(std::distance(fs::directory_iterator(m_folder), {}), 1);
        fs::remove_all(bundle);
        QCOMPARE(m_item.status(), NotFound);
        QVERIFY(!m_item.unregisterItem());
        QCOMPARE(m_item.status(), NotRegistered);
    }

    void readsWhatOthersWrote()
    {
        fs::create_directories(m_folder);
        const std::pair<std::string, LoginItemStatus> cases[] = {
            {"Hidden=false\nX-GNOME-Autostart-enabled=true\nX-systemd-skip=false\n", Enabled},
            {"Hidden=true\n", RequiresApproval},
            {"X-GNOME-Autostart-enabled=false\n", RequiresApproval},
            {"X-systemd-skip=true\n", RequiresApproval},
            {"Exec=/usr\n", NotFound},
            {"TryExec=/nowhere\n", NotFound},
            {std::string("\0", 1), NotFound},
            {std::string(200'000, '#'), NotFound},
        };
        for (const auto &[keys, status] : cases) {
            std::ofstream(m_entry) << "[Desktop Entry]\nExec=sh -c x\n" << keys;
            QVERIFY2(m_item.status() == status, keys.substr(0, 100).c_str());
            QVERIFY(!m_item.registerItem());
            QCOMPARE(m_item.status(), Enabled);
        }
    }

    void replacesWhatIsNoFileButAFolder()
    {
        fs::create_directories(m_folder);
        QCOMPARE(::mkfifo(m_entry.c_str(), 0600), 0);
        for (const fs::path next : {"", "/nowhere", "me.tovanu.Ambertide.desktop", "/dev/zero"}) {
            if (!next.empty())
                fs::create_symlink(next, m_entry);
            QCOMPARE(m_item.status(), NotFound);
            QVERIFY(!m_item.registerItem());
            QVERIFY(fs::is_regular_file(fs::symlink_status(m_entry)));
            QVERIFY(!m_item.unregisterItem());
        }
        fs::create_directory(m_entry);
        QVERIFY(m_item.registerItem()->ends_with("Is a directory"));
        QVERIFY(m_item.unregisterItem()->ends_with("Is a directory"));
        QCOMPARE(std::distance(fs::directory_iterator(m_folder), {}), 1);
        m_bundle.bundlePath = "/\xff";
        QVERIFY(m_item.registerItem()->ends_with("UTF-8"));
    }

    void isStartedBySystemd()
    {
        const auto generator = QStringLiteral("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator");
        QVERIFY2(QFile::exists(generator), "the package systemd is needed");
        for (const std::string addition : {"", "Hidden=true\n", "X-systemd-skip=true\n"}) {
            QVERIFY(!m_item.registerItem());
            std::ofstream(m_entry, std::ios::app) << addition;
            QFile unit(m_home->filePath(QStringLiteral("app-me.tovanu.Ambertide@autostart.service")));
            unit.remove();
            QCOMPARE(QProcess::execute(generator, {m_home->path(), m_home->path(), m_home->path()}), 0);
            QCOMPARE(unit.open(QIODevice::ReadOnly), addition.empty());
            QCOMPARE(m_item.status() == Enabled, addition.empty());
            QCOMPARE(unit.readAll().contains("琥珀/Contents/MacOS/Ambertide\"\n"), addition.empty());
        }
    }
};

QTEST_GUILESS_MAIN(TestXdgLoginItem)
#include "XdgLoginItem.moc"
