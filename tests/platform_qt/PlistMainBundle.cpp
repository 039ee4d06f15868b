#include "platform/qt/PlistMainBundle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace ambertide;

class PlistMainBundleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textValuesAreReadAndAnythingElseReadsAsNothing_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("identifier");
        const QByteArray head = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>";
        const QByteArray entry = "<key>CFBundleIdentifier</key><string>org.example</string>";
        QTest::newRow("after values of other kinds")
            << head + "<key>a</key><array><string>x</string></array><key>b</key><true/>" + entry + "</dict></plist>"
            << QByteArray("org.example");
        QTest::newRow("markup inside a value")
            << head + "<key>CFBundleIdentifier</key><string>org.<b>x</b>example</string></dict></plist>"
            << QByteArray("org.example");
        QTest::newRow("cut off") << head + entry << QByteArray();
        QTest::newRow("other document") << QByteArray("<html><dict>") + entry + "</dict></html>" << QByteArray();
        QTest::newRow("binary") << QByteArray("bplist00\x00\xff\xfe", 11) << QByteArray();
        QTest::newRow("nested a hundred thousand deep")
            << head + QByteArray("<dict>").repeated(100'000) << QByteArray();
    }
    void textValuesAreReadAndAnythingElseReadsAsNothing()
    {
        const QTemporaryDir folder;
        const auto bundle = folder.filePath(QStringLiteral("Some.app"));
        QVERIFY(QDir().mkpath(bundle + QStringLiteral("/Contents/MacOS")));
        QFile file(bundle + QStringLiteral("/Contents/Info.plist"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QFETCH(QByteArray, content);
        file.write(content);
        file.close();

        const PlistMainBundle read((bundle + QStringLiteral("/Contents/MacOS/program")).toStdString());
        QCOMPARE(read.path().string(), bundle.toStdString());
        QTEST(QByteArray::fromStdString(read.identifier().value_or("")), "identifier");
    }
};

QTEST_GUILESS_MAIN(PlistMainBundleTest)
#include "PlistMainBundle.moc"
