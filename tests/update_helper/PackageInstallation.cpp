#include "platform/linux/update/helper/PackageInstallation.h"

#include "support/SigningKey.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace ambertide;

namespace {

struct Package
{
    QByteArray name = "ambertide";
    QByteArray version = "2.0";
    QByteArray architecture = "all";
};

void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s: %s", qPrintable(program), process.readAllStandardError().constData());
}

/// A dpkg world of its own, in which version 1.10 of the application is installed.
class PackageWorld
{
public:
    PackageWorld()
    {
        for (const char *folder : {"root/var/lib/dpkg/info", "root/var/lib/dpkg/updates", "work"})
            QDir(m_folder.path()).mkpath(QString::fromLatin1(folder));
        write(QStringLiteral("root/var/lib/dpkg/status"), {});
        const auto root = "--root=" + m_folder.filePath(QStringLiteral("root")).toStdString();
        rules.directory = workFolder().toStdString();
        rules.query = {"/usr/bin/dpkg-query", root};
        rules.install = {"/usr/bin/dpkg", root, "--force-not-root", "--log=/dev/null", "--install"};
        QStringList install;
        for (const auto &word : rules.install)
            install.append(QString::fromStdString(word));
        write(QStringLiteral("installed.deb"), build({.version = "1.10"}));
        run(install.takeFirst(), install << m_folder.filePath(QStringLiteral("installed.deb")));
    }

    QByteArray build(const Package &package) const
    {
        const QString folder = m_folder.filePath(QStringLiteral("package"));
        QDir(folder).mkpath(QStringLiteral("DEBIAN"));
        write(QStringLiteral("package/version"), package.version);
        write(QStringLiteral("package/DEBIAN/control"),
              "Package: " + package.name + "\nVersion: " + package.version + "\nArchitecture: " + package.architecture +
                  "\nMaintainer: Nobody <nobody@example.org>\nDescription: x\n");
        const QString file = m_folder.filePath(QStringLiteral("built.deb"));
        run(QStringLiteral("/usr/bin/dpkg-deb"), {QStringLiteral("--build"), folder, file});
        return read(file);
    }

    std::string install(const QByteArray &bytes, const std::string &signature) const
    {
        write(QStringLiteral("sent"), bytes);
        QFile sent(m_folder.filePath(QStringLiteral("sent")));
        if (!sent.open(QIODevice::ReadOnly))
            return "the test cannot read its own file";
        return installPackage(rules, sent.handle(), signature);
    }

    QByteArray installedVersion() const { return read(m_folder.filePath(QStringLiteral("root/version"))); }
    QString workFolder() const { return m_folder.filePath(QStringLiteral("work")); }

    SigningKey key;
    InstallationRules rules{*SignatureVerifier::withPublicKey(key.publicKey()), "ambertide", {}};

private:
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s: %s", qPrintable(name), qPrintable(file.errorString()));
    }

    QTemporaryDir m_folder;
};

} // namespace

Q_DECLARE_METATYPE(Package)

class PackageInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSignedNewerPackageIsInstalled()
    {
        const PackageWorld world;
        const QByteArray package = world.build({});
        QCOMPARE(world.install(package, world.key.sign(package)), std::string());
        QCOMPARE(world.installedVersion(), QByteArray("2.0"));
        QVERIFY(QDir(world.workFolder()).isEmpty());
    }

    void aSignedPackageThatIsNoUpdateIsRefused_data()
    {
        QTest::addColumn<Package>("package");
        QTest::addColumn<QString>("complaint");
        QTest::newRow("the same version") << Package{.version = "1.10"} << QStringLiteral("not newer");
        QTest::newRow("older, announced as newer") << Package{.version = "1.9"} << QStringLiteral("not newer");
        QTest::newRow("before the release") << Package{.version = "1.10~rc1"} << QStringLiteral("not newer");
        QTest::newRow("another name") << Package{.name = "amberwave"} << QStringLiteral("no package of");
        QTest::newRow("another architecture") << Package{.architecture = "s390x"} << QStringLiteral("architecture");
    }
    void aSignedPackageThatIsNoUpdateIsRefused()
    {
        QFETCH(Package, package);
        QFETCH(QString, complaint);
        const PackageWorld world;
        const QByteArray bytes = world.build(package);
        const QString problem = QString::fromStdString(world.install(bytes, world.key.sign(bytes)));
        QVERIFY2(problem.contains(complaint), qPrintable(problem));
        QCOMPARE(world.installedVersion(), QByteArray("1.10"));
        QVERIFY(QDir(world.workFolder()).isEmpty());
    }

    void bytesThatTheKeyDidNotSignAreRefused()
    {
        PackageWorld world;
        QByteArray package = world.build({});
        const std::string signature = world.key.sign(package);
        QVERIFY(!world.install(package, SigningKey().sign(package)).empty());
        QVERIFY(!world.install(package, {}).empty());
        QVERIFY(!world.install(package + ' ', signature).empty());
        QVERIFY(!world.install({}, world.key.sign(QByteArray())).empty());
        package[package.size() / 2] = static_cast<char>(package.at(package.size() / 2) ^ 1);
        QVERIFY(world.install(package, signature).find("not signed") != std::string::npos);
        QCOMPARE(world.installedVersion(), QByteArray("1.10"));
        QVERIFY(QDir(world.workFolder()).isEmpty());
    }

    void whatCannotBeAnUpdateHereIsRefused()
    {
        PackageWorld world;
        QVERIFY(world.install("text", world.key.sign(QByteArray("text"))).find("no package of") != std::string::npos);
        const QByteArray package = world.build({.name = "amberwave"});
        const std::string signature = world.key.sign(package);
        world.rules.packageName = "amberwave";
        QVERIFY(world.install(package, signature).find("not installed as a package") != std::string::npos);
        world.rules.mostBytes = static_cast<std::uint64_t>(package.size()) - 1;
        QVERIFY(world.install(package, signature).find("larger") != std::string::npos);
    }

    void aFailureOfTheInstallerIsTold()
    {
        PackageWorld world;
        world.rules.install = {"/bin/sh", "-c", "echo begun; yes | head -c 200000; echo; exit 3"};
        const QByteArray package = world.build({});
        const std::string problem = world.install(package, world.key.sign(package));
        QVERIFY2(problem.starts_with("the package would not install: ") && problem.size() < 400, problem.c_str());
        world.rules.install = {"/nowhere/apt-get"};
        QVERIFY(!world.install(package, world.key.sign(package)).empty());
    }
};

QTEST_GUILESS_MAIN(PackageInstallation)
#include "PackageInstallation.moc"
