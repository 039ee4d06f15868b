#include "adapters/linux/desktop/XdgLoginItem.h"

#include "support/Fakes.h"

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

    std::string entry() const { return {std::istreambuf_iterator(std::ifstream(m_entry).rdbuf()), {}}; }

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

    void comesAndGoesWhateverStandsThere()
    {
        const auto bundle = m_bundle.bundlePath.string() + "\t&\nExec=x\r\n[Desktop Action y]\n";
        fs::rename(m_bundle.bundlePath, bundle);
        m_bundle.bundlePath = bundle;
        QCOMPARE(m_item.status(), NotRegistered);
        QVERIFY(m_item.unregisterItem());
        fs::create_directories(m_folder);
        QCOMPARE(::mkfifo(m_entry.c_str(), 0600), 0);
        for (const fs::path link : {"", "/nowhere", "me.tovanu.Ambertide.desktop", "/dev/zero"}) {
            if (!link.empty())
                fs::create_symlink(link, m_entry);
            QCOMPARE(m_item.status(), NotFound);
            QVERIFY(!m_item.registerItem());
            QCOMPARE(m_item.status(), Enabled);
            QCOMPARE(fs::symlink_status(m_entry).permissions(), fs::perms(0644));
            QVERIFY(!m_item.unregisterItem());
            QCOMPARE(m_item.status(), NotRegistered);
        }
        fs::create_directory(m_entry);
        QVERIFY(m_item.registerItem()->ends_with("Is a directory"));
        QVERIFY(m_item.unregisterItem()->ends_with("Is a directory"));
        QCOMPARE(std::distance(fs::directory_iterator(m_folder), {}), 1);
        m_bundle.bundlePath = "/\xff";
        QVERIFY(m_item.registerItem()->ends_with("UTF-8"));
    }

    void readsWhatOthersWrote()
    {
        fs::create_directories(m_folder);
        const std::string start = "[Desktop Entry]\nExec=sh -c x\n";
        const std::pair<std::string, LoginItemStatus> cases[] = {
            {start + "Hidden=false\nX-GNOME-Autostart-enabled=true\nX-systemd-skip=false\n", Enabled},
            {start + "Hidden=true\r\n", RequiresApproval},
            {start + "X-GNOME-Autostart-enabled=false\n", RequiresApproval},
            {start + "X-systemd-skip=1\n", RequiresApproval},
            {start + "Exec=/usr\n", NotFound},
            {start + "TryExec=/nowhere\n", NotFound},
            {"[Desktop Entry]\nExec=\"sh\n", NotFound},
            {"[Other]\n" + start, NotFound},
            {start + '\0', NotFound},
            {start + std::string(200'000, '#'), NotFound},
        };
        for (const auto &[text, status] : cases) {
            std::ofstream(m_entry) << text;
            QVERIFY2(m_item.status() == status, text.substr(0, 100).c_str());
        }
        QVERIFY(!m_item.registerItem());
        QCOMPARE(m_item.status(), Enabled);
        // What an earlier version wrote is brought up to date, but nothing else.
        const std::string current = entry();
        const std::string earlier = QString::fromStdString(current).remove(QStringLiteral(" --at-login")).toStdString();
        for (const auto &[before, after] :
             {std::pair(earlier, current), {start, start}, {earlier + "Hidden=true\n", earlier + "Hidden=true\n"}}) {
            std::ofstream(m_entry) << before;
            m_item.bringUpToDate();
            QCOMPARE(entry(), after);
        }
        m_item.registerItem();
        fs::remove_all(m_bundle.bundlePath);
        QCOMPARE(m_item.status(), NotFound);
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
            QCOMPARE(unit.readAll().contains("f%%g%%%%h;i#j Янтарь 琥珀/Contents/MacOS/Ambertide\" --at-login\n"),
                     addition.empty());
        }
    }
};

QTEST_GUILESS_MAIN(TestXdgLoginItem)
#include "XdgLoginItem.moc"
