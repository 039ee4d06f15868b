#include "platform/linux/XdgLoginItem.h"

#include "platform/linux/DesktopEntry.h"
#include "support/FakeMainBundle.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>

using namespace ambertide;
namespace fs = std::filesystem;
using Status = LoginItemStatus;
Q_DECLARE_METATYPE(ambertide::LoginItemStatus)

namespace {

std::string contents(const fs::path &path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

/// Each test has a home, and a bundle with a program, of its own.
class TestXdgLoginItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_root = m_home->path().toStdString();
        qputenv("XDG_CONFIG_HOME", (m_home->path() + QStringLiteral("/config")).toUtf8());
        m_entry = m_root / "config/autostart/me.tovanu.Ambertide.desktop";
        useBundle("Ambertide.app");
    }

    void comesAndGoes_data()
    {
        QTest::addColumn<QByteArray>("bundle");
        QTest::newRow("plain") << QByteArray("Ambertide.app");
        QTest::newRow("blanks and other scripts") << QByteArray("Янтарь 琥珀 é");
        QTest::newRow("what desktops and shells mind") << QByteArray("a'b\"c$d`e\\f%g%%h;i#j");
    }
    void comesAndGoes()
    {
        QFETCH(QByteArray, bundle);
        useBundle(bundle.constData());
        XdgLoginItem item(m_bundle);
        QCOMPARE(item.status(), Status::NotRegistered);
        QVERIFY(item.unregisterItem());

        QVERIFY(!item.registerItem());
        QCOMPARE(item.status(), Status::Enabled);
        QCOMPARE(DesktopEntry::parse(contents(m_entry))->program(), std::optional(m_program.string()));
        QCOMPARE(fs::status(m_entry).permissions(), fs::perms(0644));
        QCOMPARE(std::distance(fs::directory_iterator(m_entry.parent_path()), {}), 1);

        fs::remove(m_program);
        QCOMPARE(item.status(), Status::NotFound);
        QVERIFY(!item.unregisterItem());
        QCOMPARE(item.status(), Status::NotRegistered);
        QVERIFY(item.unregisterItem());
    }

    void readsWhatOthersWrote_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<Status>("status");
        using std::string;
        QTest::newRow("a program on the path") << string("[Desktop Entry]\nExec=sh -c x\n") << Status::Enabled;
        QTest::newRow("switches at their defaults")
            << string("[Desktop Entry]\nExec=sh\nHidden=false\nX-GNOME-Autostart-enabled=true\nX-systemd-skip=false\n")
            << Status::Enabled;
        QTest::newRow("hidden") << string("[Desktop Entry]\nHidden=true\n") << Status::RequiresApproval;
        QTest::newRow("off in GNOME") << string("[Desktop Entry]\nExec=sh\nX-GNOME-Autostart-enabled=false\n")
                                      << Status::RequiresApproval;
        QTest::newRow("off in systemd") << string("[Desktop Entry]\nExec=sh\nX-systemd-skip=true\n")
                                        << Status::RequiresApproval;
        QTest::newRow("program gone") << string("[Desktop Entry]\nExec=/nowhere/Ambertide\n") << Status::NotFound;
        QTest::newRow("program is a folder") << string("[Desktop Entry]\nExec=/usr\n") << Status::NotFound;
        QTest::newRow("what it tries is gone")
            << string("[Desktop Entry]\nExec=sh\nTryExec=/nowhere\n") << Status::NotFound;
        QTest::newRow("no program") << string("[Desktop Entry]\nType=Application\n") << Status::NotFound;
        QTest::newRow("binary") << string("\x7f"
                                          "ELF\0\0[Desktop Entry]\nExec=sh\n",
                                          30)
                                << Status::NotFound;
        QTest::newRow("empty") << string() << Status::NotFound;
        QTest::newRow("huge") << string("[Desktop Entry]\nExec=sh\n") + string(200'000, '#') << Status::NotFound;
    }
    void readsWhatOthersWrote()
    {
        QFETCH(std::string, text);
        fs::create_directories(m_entry.parent_path());
        std::ofstream(m_entry) << text;
        XdgLoginItem item(m_bundle);
        QTEST(item.status(), "status");
        QVERIFY(!item.registerItem());
        QCOMPARE(item.status(), Status::Enabled);
    }

    void replacesWhatIsNoFile_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("named pipe") << QStringLiteral("mkfifo \"$0\"");
        QTest::newRow("link to nothing") << QStringLiteral("ln -s nowhere \"$0\"");
        QTest::newRow("link to itself") << QStringLiteral("ln -s me.tovanu.Ambertide.desktop \"$0\"");
        QTest::newRow("link to an endless device") << QStringLiteral("ln -s /dev/zero \"$0\"");
    }
    void replacesWhatIsNoFile()
    {
        QFETCH(QString, command);
        fs::create_directories(m_entry.parent_path());
        QCOMPARE(QProcess::execute(QStringLiteral("/bin/sh"),
                                   {QStringLiteral("-c"), command, QString::fromStdString(m_entry.string())}),
                 0);
        XdgLoginItem item(m_bundle);
        QCOMPARE(item.status(), Status::NotFound);
        QVERIFY(!item.registerItem());
        QVERIFY(fs::is_regular_file(fs::symlink_status(m_entry)));
        QCOMPARE(item.status(), Status::Enabled);
    }

    void saysWhatStandsInTheWay()
    {
        XdgLoginItem item(m_bundle);
        fs::create_directories(m_entry);
        QCOMPARE(item.status(), Status::NotFound);
        QVERIFY(item.registerItem()->find("directory") != std::string::npos);
        QVERIFY(item.unregisterItem()->find("directory") != std::string::npos);
        QCOMPARE(std::distance(fs::directory_iterator(m_entry.parent_path()), {}), 1);

        fs::remove_all(m_entry.parent_path());
        std::ofstream(m_entry.parent_path()) << "a file where the folder should be";
        QCOMPARE(item.status(), Status::NotRegistered);
        QVERIFY(!item.registerItem()->empty());
        QVERIFY(item.unregisterItem());

        m_bundle.bundlePath = "/not UTF-8: \xff";
        QVERIFY(item.registerItem()->find("UTF-8") != std::string::npos);
    }

    void isStartedBySystemd_data()
    {
        QTest::addColumn<QByteArray>("bundle");
        QTest::addColumn<QByteArray>("addition");
        QTest::addColumn<bool>("started");
        QTest::newRow("as registered") << QByteArray("Ambertide.app") << QByteArray() << true;
        QTest::newRow("blanks, quotes, other scripts") << QByteArray("Янтарь 'x' 琥珀") << QByteArray() << true;
        QTest::newRow("hidden") << QByteArray("Ambertide.app") << QByteArray("Hidden=true\n") << false;
        QTest::newRow("skipped") << QByteArray("Ambertide.app") << QByteArray("X-systemd-skip=true\n") << false;
    }
    void isStartedBySystemd()
    {
        const auto generator = QStringLiteral("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator");
        if (!QFile::exists(generator))
            QSKIP("systemd is not installed");
        QFETCH(QByteArray, bundle);
        QFETCH(QByteArray, addition);
        QFETCH(bool, started);
        useBundle(bundle.constData());
        XdgLoginItem item(m_bundle);
        QVERIFY(!item.registerItem());
        std::ofstream(m_entry, std::ios::app) << addition.constData();
        QCOMPARE(item.status(), started ? Status::Enabled : Status::RequiresApproval);

        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), m_home->path() + QStringLiteral("/none"));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        const auto units = m_home->path() + QStringLiteral("/units");
        QVERIFY(QDir().mkpath(units));
        process.start(generator, {units, units, units});
        QVERIFY(process.waitForFinished());
        const auto unit = contents(fs::path(units.toStdString()) / "app-me.tovanu.Ambertide@autostart.service");
        QCOMPARE(!unit.empty(), started);
        QCOMPARE(unit.find(m_program.string()) != std::string::npos, started);
    }

private:
    void useBundle(const char *name)
    {
        m_bundle.bundlePath = m_root / name;
        m_program = m_bundle.bundlePath / "Contents/MacOS/Ambertide";
        fs::create_directories(m_program.parent_path());
        std::ofstream(m_program) << "#!/bin/sh\n";
        fs::permissions(m_program, fs::perms::owner_all);
    }

    std::unique_ptr<QTemporaryDir> m_home;
    fs::path m_root;
    fs::path m_entry;
    fs::path m_program;
    FakeMainBundle m_bundle{fs::path()};
};

QTEST_GUILESS_MAIN(TestXdgLoginItem)
#include "XdgLoginItem.moc"
