#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "support/SigningKey.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace ambertide;
using Status = InstallationStatus;

/// In a dpkg world of its own, in which version 1.10 of the application is installed.
class PackageInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QFile::remove(m_folder.filePath(QStringLiteral("root/version")));
        for (const auto *folder :
             {"root/var/lib/dpkg/info", "root/var/lib/dpkg/updates", "work/package/x", "new/DEBIAN"})
            QVERIFY(QDir(m_folder.path()).mkpath(QString::fromLatin1(folder)));
        file("work/package/update.deb", "left by one that was killed");
        leave("install ok installed");
        const auto root = "--root=" + m_folder.filePath(QStringLiteral("root")).toStdString();
        m_rules = {*SignatureVerifier::withPublicKeys(m_key.publicKey()), "ambertide", {}};
        m_rules.folder = m_folder.filePath(QStringLiteral("work/package")).toStdString();
        m_rules.dpkg = {"/usr/bin/dpkg", root, "--force-not-root", "--log=/dev/null"};
        m_rules.query = {"/usr/bin/dpkg-query", root};
        m_rules.install = m_rules.dpkg;
        m_rules.install.emplace_back("--install");
    }

    void onlyTheNewerPackageThatWasAnnouncedIsInstalled()
    {
        const auto end = [this](const char *name, const char *version, const char *architecture = "all") {
            return installSigned(build(name, version, architecture)).status;
        };
        QCOMPARE(end("ambertide", "1.10"), Status::WrongPackage);
        m_announced = "1.10";
        QCOMPARE(end("ambertide", "1.10"), Status::NotNewer);
        m_announced = "1.9";
        QCOMPARE(end("ambertide", "1.9"), Status::NotNewer);
        m_announced = "2.0";
        QCOMPARE(end("amberwave", "2.0"), Status::WrongPackage);
        QCOMPARE(end("ambertide", "2.0", "s390x"), Status::WrongPackage);
        QVERIFY(!isInstalled());
        QCOMPARE(end("ambertide", "2.0-1"), Status::Installed);
        QVERIFY(isInstalled());
    }

    void whateverStateANewerPackageCanMendIsMended()
    {
        const QByteArray package = build("ambertide", "2.0", "all");
        for (const char *state : {"half-installed", "reinstreq half-installed", "unpacked", "half-configured",
                                  "triggers-awaited", "triggers-pending"}) {
            init();
            leave(QByteArray("install ") + (strchr(state, ' ') ? "" : "ok ") + state);
            const auto end = installSigned(package);
            QVERIFY2(end.status == Status::Installed && isInstalled(), (state + end.problem).c_str());
        }
        leave("deinstall ok config-files");
        QCOMPARE(installSigned(package).status, Status::NotAPackage);
    }

    void bytesThatTheKeyDidNotSignAreRefused()
    {
        QByteArray package = build("ambertide", "2.0", "all");
        const std::string signature = m_key.sign(package);
        QCOMPARE(install(package, SigningKey().sign(package)).status, Status::BadSignature);
        QCOMPARE(install(package, {}).status, Status::BadSignature);
        package[package.size() / 2] = static_cast<char>(package.at(package.size() / 2) ^ 1);
        QCOMPARE(install(package, signature).status, Status::BadSignature);
        QCOMPARE(installSigned("text").status, Status::WrongPackage);
        QVERIFY(!isInstalled());
    }

    void whyAnInstallationFailedIsTold()
    {
        const QByteArray package = build("ambertide", "2.0", "all");
        const auto end = [&](const char *script) {
            m_rules.install = {"/bin/sh", "-c", script};
            return installSigned(package);
        };
        const auto failed = end("yes | head -c 200000; echo the end; exit 3");
        QVERIFY(failed.status == Status::Failed && failed.problem.ends_with("the end ") && failed.problem.size() < 400);
        QCOMPARE(end("echo 'cannot copy: No space left on device'; exit 1").status, Status::NoRoom);
        QCOMPARE(end("echo 'E: Could not get lock'; exit 100").status, Status::Busy);
        m_rules.mostBytes = static_cast<std::uint64_t>(package.size()) - 1;
        QVERIFY(installSigned(package).problem.find("larger") != std::string::npos);
    }

    void aCallerWhoSendsNothingIsNotWaitedForLong()
    {
        std::array<int, 2> ends{};
        QCOMPARE(::pipe(ends.data()), 0);
        m_rules.inputTime = std::chrono::seconds(0);
        QCOMPARE(installPackage(m_rules, ends[0], {}, {}).problem, std::string("the package did not come in time"));
        m_rules.inputTime = std::chrono::hours(1);
        ::close(ends[1]);
        m_rules.termination = ends[0]; // readable, now that it is at its end
        std::array<int, 2> silent{};
        QCOMPARE(::pipe(silent.data()), 0);
        QVERIFY(installPackage(m_rules, silent[0], {}, {}).problem.starts_with("asked to end"));
        for (const int each : {ends[0], silent[0], silent[1]})
            ::close(each);
    }

    void oneInstallationIsMadeAtATime()
    {
        const int lock = ::open(m_rules.folder.c_str(), O_RDONLY | O_DIRECTORY);
        QCOMPARE(::flock(lock, LOCK_EX), 0);
        QCOMPARE(installPackage(m_rules, -1, {}, {}).status, Status::Busy);
        QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("work/package/update.deb")))); // it is the other's
        ::close(lock);
    }

private:
    QString file(const char *name, const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s: %s", name, qPrintable(file.errorString()));
        return file.fileName();
    }
    void leave(const QByteArray &state)
    {
        file("root/var/lib/dpkg/status", "Package: ambertide\nStatus: " + state +
                                             "\nArchitecture: all\nMaintainer: x\nDescription: x\nVersion: 1.10\n" +
                                             (state.contains("awaited") ? "Triggers-Awaited: other\n" : "") +
                                             (state.contains("pending") ? "Triggers-Pending: x\n" : "") +
                                             (state.contains("half-c") ? "Config-Version: 1.9\n" : ""));
    }
    QByteArray build(const QByteArray &name, const QByteArray &version, const QByteArray &architecture)
    {
        file("new/version", "2");
        file("new/DEBIAN/control", "Package: " + name + "\nVersion: " + version + "\nArchitecture: " + architecture +
                                       "\nMaintainer: x\nDescription: x\n");
        const QString built = m_folder.filePath(QStringLiteral("built.deb"));
        QProcess::execute(QStringLiteral("/usr/bin/dpkg-deb"),
                          {QStringLiteral("--build"), m_folder.filePath(QStringLiteral("new")), built});
        QFile package(built);
        return package.open(QIODevice::ReadOnly) ? package.readAll() : QByteArray();
    }
    InstallationEnd installSigned(const QByteArray &bytes) { return install(bytes, m_key.sign(bytes)); }
    InstallationEnd install(const QByteArray &bytes, const std::string &signature)
    {
        QFile sent(file("sent", bytes));
        if (!sent.open(QIODevice::ReadOnly))
            qFatal("%s", qPrintable(sent.errorString()));
        const auto end = installPackage(m_rules, sent.handle(), signature, m_announced);
        if (QFile::exists(QString::fromStdString(m_rules.folder)))
            qFatal("the package is left behind");
        return end;
    }
    bool isInstalled() const { return QFile::exists(m_folder.filePath(QStringLiteral("root/version"))); }

    QTemporaryDir m_folder;
    SigningKey m_key;
    std::string m_announced = "2.0";
    InstallationRules m_rules{*SignatureVerifier::withPublicKeys(m_key.publicKey()), {}, {}};
};

QTEST_GUILESS_MAIN(PackageInstallation)
#include "PackageInstallation.moc"
