#include "platform/linux/XdgLoginItem.h"

#include "platform/linux/DesktopEntry.h"
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

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_root = m_home->path().toStdString();
        qputenv("XDG_CONFIG_HOME", m_home->path().toUtf8());
        qputenv("XDG_CONFIG_DIRS", "/nowhere");
        m_entry = m_root / "autostart/me.tovanu.Ambertide.desktop";
        useBundle("Янтарь 'x' \"y\" 琥珀");
    }

    void comesAndGoes()
    {
        useBundle("a'b\"c$d`e\\f%g%%h;i#j é");
        QCOMPARE(m_item.status(), NotRegistered);
        QVERIFY(m_item.unregisterItem());
        QVERIFY(!m_item.registerItem());
        QCOMPARE(m_item.status(), Enabled);
        QCOMPARE(DesktopEntry::parse(contents(m_entry))->string("TryExec"), std::optional(m_program.string()));
        QCOMPARE(fs::status(m_entry).permissions(), fs::perms(0644));
        QCOMPARE(std::distance(fs::directory_iterator(m_entry.parent_path()), {}), 1);
        fs::remove(m_program);
        QCOMPARE(m_item.status(), NotFound);
        QVERIFY(!m_item.unregisterItem());
        QCOMPARE(m_item.status(), NotRegistered);
    }

    void readsWhatOthersWrote()
    {
        fs::create_directories(m_entry.parent_path());
        const auto reads = [this](LoginItemStatus status, const std::string &keys) {
            std::ofstream(m_entry) << "[Desktop Entry]\nExec=sh -c x\n" << keys;
            QVERIFY2(m_item.status() == status, keys.substr(0, 100).c_str());
            QVERIFY(!m_item.registerItem());
            QCOMPARE(m_item.status(), Enabled);
        };
        reads(Enabled, "Hidden=false\nX-GNOME-Autostart-enabled=true\nX-systemd-skip=false\n");
        reads(RequiresApproval, "Hidden=true\n");
        reads(RequiresApproval, "X-GNOME-Autostart-enabled=false\n");
        reads(RequiresApproval, "X-systemd-skip=true\n");
        reads(NotFound, "Exec=/nowhere/Ambertide\n");
        reads(NotFound, "Exec=/usr\n");
        reads(NotFound, "TryExec=/nowhere\n");
        reads(NotFound, std::string("\0", 1));
        reads(NotFound, std::string(200'000, '#'));
    }

    void replacesWhatIsNoFile()
    {
        fs::create_directories(m_entry.parent_path());
        QCOMPARE(::mkfifo(m_entry.c_str(), 0600), 0);
        for (const fs::path next : {"", "/nowhere", "me.tovanu.Ambertide.desktop", "/dev/zero"}) {
            if (!next.empty())
                fs::create_symlink(next, m_entry);
            QCOMPARE(m_item.status(), NotFound);
            QVERIFY(!m_item.registerItem());
            QVERIFY(fs::is_regular_file(fs::symlink_status(m_entry)));
            QVERIFY(!m_item.unregisterItem());
        }
    }

    void saysWhatStandsInTheWay()
    {
        fs::create_directories(m_entry);
        QCOMPARE(m_item.status(), NotFound);
        QVERIFY(m_item.registerItem()->ends_with("Is a directory"));
        QVERIFY(m_item.unregisterItem()->ends_with("Is a directory"));
        QCOMPARE(std::distance(fs::directory_iterator(m_entry.parent_path()), {}), 1);
        fs::remove_all(m_entry.parent_path());
        std::ofstream(m_entry.parent_path()) << "a file where the folder should be";
        QCOMPARE(m_item.status(), NotRegistered);
        QVERIFY(m_item.registerItem()->ends_with("File exists"));
        m_bundle.bundlePath = "/\xff";
        QVERIFY(m_item.registerItem()->ends_with("UTF-8"));
    }

    void isStartedBySystemd()
    {
        const auto generator = QStringLiteral("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator");
        if (!QFile::exists(generator))
            QSKIP("systemd is not installed");
        for (const std::string addition : {"", "Hidden=true\n", "X-systemd-skip=true\n"}) {
            QVERIFY(!m_item.registerItem());
            std::ofstream(m_entry, std::ios::app) << addition;
            const auto unit = m_root / "app-me.tovanu.Ambertide@autostart.service";
            fs::remove(unit);
            QCOMPARE(QProcess::execute(generator, {m_home->path(), m_home->path(), m_home->path()}), 0);
            QCOMPARE(fs::exists(unit), m_item.status() == Enabled);
            QCOMPARE(contents(unit).find("琥珀/Contents/MacOS/Ambertide\"\n") != std::string::npos, addition.empty());
        }
    }

private:
    static std::string contents(const fs::path &path)
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void useBundle(const char *name)
    {
        m_bundle.bundlePath = m_root / name;
        m_program = m_bundle.bundlePath / "Contents/MacOS/Ambertide";
        fs::create_directories(m_program.parent_path());
        std::ofstream(m_program) << "#!/bin/sh\n";
        fs::permissions(m_program, fs::perms::owner_all);
    }

    std::optional<QTemporaryDir> m_home;
    fs::path m_root;
    fs::path m_entry;
    fs::path m_program;
    FakeMainBundle m_bundle{fs::path()};
    XdgLoginItem m_item{m_bundle};
};

QTEST_GUILESS_MAIN(TestXdgLoginItem)
#include "XdgLoginItem.moc"
