#include "adapters/linux/elevation/helper/PackageInstallation.h"

#include "support/SigningKey.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace ambertide;

/// In a dpkg world of its own, in which version 1.10 of the application is installed.
class PackageInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QFile::remove(m_folder.filePath(QStringLiteral("root/version")));
        for (const auto *folder : {"root/var/lib/dpkg/info", "root/var/lib/dpkg/updates", "work", "new/DEBIAN"})
            QVERIFY(QDir(m_folder.path()).mkpath(QString::fromLatin1(folder)));
        file("root/var/lib/dpkg/info/ambertide.list", "/.\n");
        file("root/var/lib/dpkg/status", "Package: ambertide\nStatus: install ok installed\nArchitecture: all\n"
                                         "Maintainer: x\nDescription: x\nVersion: 1.10\n");
        const auto root = "--root=" + m_folder.filePath(QStringLiteral("root")).toStdString();
        m_rules = {*SignatureVerifier::withPublicKey(m_key.publicKey()), "ambertide", {}};
        m_rules.directory = m_folder.filePath(QStringLiteral("work")).toStdString();
        m_rules.query = {"/usr/bin/dpkg-query", root};
        m_rules.install = {"/usr/bin/dpkg", root, "--force-not-root", "--log=/dev/null", "--install"};
    }

    void onlyANewerPackageOfThisApplicationIsInstalled()
    {
        const auto problem = [this](const char *name, const char *version, const char *architecture) {
            const QByteArray package = build(name, version, architecture);
            return QByteArray::fromStdString(install(package, m_key.sign(package)));
        };
        QVERIFY(problem("ambertide", "1.10", "all").contains("not newer"));
        QVERIFY(problem("ambertide", "1.9", "all").contains("not newer"));
        QVERIFY(problem("amberwave", "2.0", "all").contains("no package of"));
        QVERIFY(problem("ambertide", "2.0", "s390x").contains("architecture"));
        QVERIFY(!isInstalled());
        QCOMPARE(problem("ambertide", "2.0", "all"), QByteArray());
        QVERIFY(isInstalled());
    }

    void bytesThatTheKeyDidNotSignAreRefused()
    {
        QByteArray package = build("ambertide", "2.0", "all");
        const std::string signature = m_key.sign(package);
        const auto refuses = [&](const QByteArray &bytes, const std::string &claim) {
            return install(bytes, claim).find("not signed") != std::string::npos && !isInstalled();
        };
        QVERIFY(refuses(package, SigningKey().sign(package)));
        QVERIFY(refuses(package, {}));
        package[package.size() / 2] = static_cast<char>(package.at(package.size() / 2) ^ 1);
        QVERIFY(refuses(package, signature));
    }

    void whatCannotBeInstalledHereIsTold()
    {
        const QByteArray package = build("amberwave", "2.0", "all");
        const auto problem = [&](const QByteArray &bytes) { return install(bytes, m_key.sign(bytes)); };
        QVERIFY(!problem({}).empty());
        QVERIFY(problem("text").find("no package of") != std::string::npos);
        m_rules.packageName = "amberwave";
        QVERIFY(problem(package).find("not installed as a package") != std::string::npos);
        m_rules.query = {"/bin/sh", "-c", "echo installed 1.0"};
        m_rules.install = {"/bin/sh", "-c", "echo begun; yes | head -c 200000; echo; exit 3"};
        QVERIFY(problem(package).starts_with("the package would not install: ") && problem(package).size() < 400);
        m_rules.mostBytes = static_cast<std::uint64_t>(package.size()) - 1;
        QVERIFY(problem(package).find("larger") != std::string::npos);
    }

private:
    QString file(const char *name, const QByteArray &bytes)
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s: %s", name, qPrintable(file.errorString()));
        return file.fileName();
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
    std::string install(const QByteArray &bytes, const std::string &signature)
    {
        QFile sent(file("sent", bytes));
        if (!sent.open(QIODevice::ReadOnly))
            qFatal("%s", qPrintable(sent.errorString()));
        const auto problem = installPackage(m_rules, sent.handle(), signature);
        return QDir(QString::fromStdString(m_rules.directory)).isEmpty() ? problem : "the package is left behind";
    }
    bool isInstalled() const { return QFile::exists(m_folder.filePath(QStringLiteral("root/version"))); }

    QTemporaryDir m_folder;
    SigningKey m_key;
    InstallationRules m_rules{*SignatureVerifier::withPublicKey(m_key.publicKey()), {}, {}};
};

QTEST_GUILESS_MAIN(PackageInstallation)
#include "PackageInstallation.moc"
