#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "support/SigningKey.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>

#include <filesystem>
#include <fstream>

using namespace ambertide;
using Outcome = UpdateInstaller::Outcome;
using std::string;

/// In a dpkg world of its own, in which version 1.10 of the application is installed.
class PackageInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        for (const auto *folder :
             {"root/var/lib/dpkg/info", "root/var/lib/dpkg/updates", "work/package/x", "new/DEBIAN"})
            std::filesystem::create_directories(path(folder));
        std::filesystem::remove(path("root/version"));
        write("work/package/update.deb", "left by one that was killed");
        leave("install ok installed");
        m_rules.dpkg = {"/usr/bin/dpkg", "--root=" + path("root"), "--force-not-root", "--log=/dev/null"};
        m_rules.query = {"/usr/bin/dpkg-query", "--root=" + path("root")};
        m_rules.install = m_rules.dpkg;
        m_rules.install.emplace_back("--install");
    }

    void onlyTheNewerPackageThatWasAnnouncedIsInstalled()
    {
        const auto end = [this](const char *announced, const char *name, const char *version,
                                const char *kind = "all") {
            m_announced = announced;
            return installSigned(build(name, version, kind)).outcome;
        };
        QCOMPARE(end("2.0", "ambertide", "1.11"), Outcome::WrongPackage);
        QCOMPARE(end("2.0", "amberwave", "2.0"), Outcome::WrongPackage);
        QCOMPARE(end("2.0", "ambertide", "2.0", "s390x"), Outcome::WrongPackage);
        QCOMPARE(end("1.10", "ambertide", "1.10"), Outcome::NotNewer);
        QCOMPARE(end("1.9", "ambertide", "1.9"), Outcome::NotNewer);
        QVERIFY(!isInstalled());
        QCOMPARE(end("2.0", "ambertide", "2.0-1"), Outcome::Installed);
        QVERIFY(isInstalled());
        init();
        m_rules.install.insert(m_rules.install.begin(), {"/bin/sh", "-c", "\"$@\"; exit 100", "sh"});
        QCOMPARE(end("2.0", "ambertide", "2.0"), Outcome::Installed); // it is another package that makes trouble
    }

    void whateverStateANewerPackageCanMendIsMended()
    {
        const QByteArray package = build("ambertide", "2.0");
        for (const char *state : {"ok half-installed", "reinstreq half-installed", "ok unpacked", "ok half-configured",
                                  "ok triggers-awaited", "ok triggers-pending"}) {
            init();
            leave(string("install ") + state);
            m_rules.dpkg = {"/bin/sh", "-c", "echo $0 $* >>'" + path("configured") + "'"};
            QVERIFY2(installSigned(package).outcome == Outcome::Installed && isInstalled(), state);
            QVERIFY2(std::filesystem::remove(path("configured")), state); // dpkg may refuse the package until then
        }
        leave("deinstall ok config-files");
        QCOMPARE(installSigned(package).outcome, Outcome::NotAPackage);
    }

    void bytesThatTheKeyDidNotSignAreRefused()
    {
        QByteArray package = build("ambertide", "2.0");
        const string signature = m_key.sign(package);
        QCOMPARE(install(package, SigningKey().sign(package)).outcome, Outcome::BadSignature);
        QCOMPARE(install(package, {}).outcome, Outcome::BadSignature);
        package[package.size() / 2] = static_cast<char>(package.at(package.size() / 2) ^ 1);
        QCOMPARE(install(package, signature).outcome, Outcome::BadSignature);
        QVERIFY(!isInstalled());
        QCOMPARE(installSigned("text").outcome, Outcome::WrongPackage);
    }

    void whyAnInstallationFailedIsTold()
    {
        const QByteArray package = build("ambertide", "2.0");
        const auto end = [&](const char *script) {
            m_rules.install = {"/bin/sh", "-c", script};
            return installSigned(package);
        };
        const auto failed = end("yes | head -c 200000; echo the end; exit 3");
        QVERIFY(failed.outcome == Outcome::Failed && failed.problem.ends_with("the end ") &&
                failed.problem.size() < 400);
        QCOMPARE(end("echo 'cannot copy: No space left on device'; exit 1").outcome, Outcome::NoRoom);
        QCOMPARE(end("echo 'E: Could not get lock'; exit 100").outcome, Outcome::Busy);
        InstallationRules rules = m_rules;
        rules.mostBytes = 4;
        QVERIFY(install("bytes", {}, rules).problem.find("larger") != string::npos);
        rules.inputTime = std::chrono::seconds(0);
        const auto problem = [&](const char *source) {
            const int input = ::open(source, O_RDWR);
            const auto silent = installPackage(rules, input, {}, {}).problem;
            ::close(input);
            return silent;
        };
        QCOMPARE(problem("/dev/ptmx"), "the package did not come in time");
        rules.inputTime = std::chrono::hours(1);
        rules.termination = ::open("/dev/null", O_RDONLY);
        QCOMPARE(problem("/dev/ptmx"), "asked to end before the package had come");
        ::close(rules.termination);
        const int lock = ::open(path("work").c_str(), O_RDONLY);
        rules.folder = path("work");
        QVERIFY(::flock(lock, LOCK_EX) == 0 && problem("/dev/null") == "another update is being installed");
        ::close(lock);
    }

private:
    string path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)).toStdString(); }
    void write(const char *name, const string &bytes) const { std::ofstream(path(name)) << bytes; }
    void leave(const string &state)
    {
        const auto add = [&state](const char *part, const char *field) { return state.ends_with(part) ? field : ""; };
        write("root/var/lib/dpkg/info/ambertide.list", "/.\n");
        write("root/var/lib/dpkg/status",
              "Package: ambertide\nStatus: " + state + add("awaited", "\nTriggers-Awaited: other") +
                  add("pending", "\nTriggers-Pending: x") + add("half-configured", "\nConfig-Version: 1.9") +
                  "\nArchitecture: all\nMaintainer: x\nDescription: x\nVersion: 1.10\n");
    }
    QByteArray build(const string &name, const string &version, const string &architecture = "all")
    {
        write("new/version", "2");
        write("new/DEBIAN/control", "Package: " + name + "\nVersion: " + version + "\nArchitecture: " + architecture +
                                        "\nMaintainer: x\nDescription: x\n");
        const QString built = m_folder.filePath(QStringLiteral("built.deb"));
        QProcess::execute(QStringLiteral("/usr/bin/dpkg-deb"),
                          {QStringLiteral("--build"), m_folder.filePath(QStringLiteral("new")), built});
        QFile package(built);
        return package.open(QIODevice::ReadOnly) ? package.readAll() : QByteArray();
    }
    InstallationEnd installSigned(const QByteArray &bytes) { return install(bytes, m_key.sign(bytes)); }
    InstallationEnd install(const QByteArray &bytes, const string &signature)
    {
        return install(bytes, signature, m_rules);
    }
    InstallationEnd install(const QByteArray &bytes, const string &signature, const InstallationRules &rules)
    {
        write("sent", bytes.toStdString());
        const int sent = ::open(path("sent").c_str(), O_RDONLY);
        const auto end = installPackage(rules, sent, signature, m_announced);
        ::close(sent);
        if (std::filesystem::exists(rules.folder))
            qFatal("the package is left behind");
        return end;
    }
    bool isInstalled() const { return std::filesystem::exists(path("root/version")); }

    QTemporaryDir m_folder;
    SigningKey m_key;
    string m_announced = "2.0";
    InstallationRules m_rules{*SignatureVerifier::withPublicKeys(m_key.publicKey()), "ambertide", path("work/package")};
};

QTEST_GUILESS_MAIN(PackageInstallation)
#include "PackageInstallation.moc"
