#include "adapters/qt/SettingsUserDefaults.h"

#include "support/CapturedConsole.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <optional>

using namespace ambertide;
using namespace std::chrono_literals;

class SettingsUserDefaultsTest : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> folder;
    std::optional<CapturedConsole> console;
    QString path;

    void writeFile(const QByteArray &content)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray readFile(const char *suffix = "")
    {
        QFile file(path + QLatin1String(suffix));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void init()
    {
        folder.emplace();
        path = folder->filePath(QStringLiteral("config/ambertide/defaults.ini"));
        console.reset();
        console.emplace();
    }

    void everyKindOfValueComesBackFromTheFile()
    {
        const std::string bytes("[{\"a\":\"\xC3\xBC \\n\"},\n\0\xff]", 18);
        for (const char *inTheWay : {".lock/x", ".new/defaults.ini.lock/x", ".new.lock/x"})
            QVERIFY(QDir().mkpath(path + QLatin1String(inTheWay)));
        SettingsUserDefaults written(path);
        QVERIFY(!written.hasObject("d"));
        written.setDouble("d", 3449.5);
        written.setInteger("i", -3400);
        written.setBool("b", true);
        written.setData("x", bytes);
        QCOMPARE(written.doubleValue("d"), 3449.5); // before it is on disk
        written.flush(10s);

        SettingsUserDefaults read(path);
        QCOMPARE(read.doubleValue("d"), 3449.5);
        QCOMPARE(read.doubleValue("i"), -3400.0);
        QCOMPARE(read.boolValue("b"), true);
        QVERIFY(read.data("x") == bytes);
        QVERIFY(!read.data("absent") && !read.boolValue("absent") && read.doubleValue("absent") == 0);
        QVERIFY(console->lines.empty());
    }

    void statesOfOneLengthAndTimeAreToldApart()
    {
        SettingsUserDefaults defaults(path);
        for (const auto *value : {"3800", "2700"}) {
            defaults.setData("schedule", value);
            defaults.flush(10s);
            std::filesystem::last_write_time(path.toStdString(), {});
            QCOMPARE(defaults.data("schedule"), std::string(value));
        }
    }

    void aChangeByAnotherProgramIsSeenAndKept()
    {
        SettingsUserDefaults defaults(path);
        defaults.setDouble("Ambertide.Temperature", 3400);
        defaults.flush(10s);
        writeFile("[General]\nAmbertide.Temperature=2700\nOther=1\nNoFlag=maybe\n");
        QCOMPARE(defaults.doubleValue("Ambertide.Temperature"), 2700.0);
        QVERIFY(!defaults.boolValue("NoFlag"));
        writeFile(readFile() + "B=1\n");
        defaults.setBool("Ambertide.ScheduleEnabled", true);
        defaults.flush(10s);
        QTRY_VERIFY(defaults.hasObject("B") && readFile().contains("Ambertide.ScheduleEnabled=true"));
        QVERIFY(readFile().contains("B=1") && readFile().contains("=2700") && readFile().contains("Other=1"));
    }

    void aBrokenFileIsSetAsideAndReported_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<double>("kept");
        const QByteArray good = "[General]\nAmbertide.Temperature=2700\n";
        QTest::newRow("cut off inside a key") << good + "Ambertide.Sched" << 2700.0;
        QTest::newRow("binary") << QByteArray("\x7f\x45LF\0\0=\n\xff\xfe", 10) << 0.0;
        QTest::newRow("not UTF-8") << good + "a=\xff\n" << 0.0;
        QTest::newRow("huge") << good + "a=" + QByteArray(2'000'000, 'x') << 0.0;
    }
    void aBrokenFileIsSetAsideAndReported()
    {
        QFETCH(QByteArray, content);
        writeFile(content);
        {
            SettingsUserDefaults defaults(path);
            QTEST(defaults.doubleValue("Ambertide.Temperature"), "kept");
            defaults.setBool("b", true);
            defaults.flush(10s);
            QTEST(defaults.doubleValue("Ambertide.Temperature"), "kept");
        }
        QVERIFY(SettingsUserDefaults(path).boolValue("b"));
        QCOMPARE(readFile(".broken"), content);
        QCOMPARE(console->lines.size(), std::size_t(1));

        // a second broken file does not take the first one's place
        writeFile("\xff\xff");
        QVERIFY(!SettingsUserDefaults(path).hasObject("b"));
        QCOMPARE(readFile(".broken"), content);
        QCOMPARE(readFile(".broken-2"), QByteArray("\xff\xff"));
    }

    void whatIsNoFileIsSetAsideWithoutReadingIt()
    {
        for (const bool isPipe : {true, false}) { // otherwise a folder
            init();
            QVERIFY(QDir().mkpath(isPipe ? QFileInfo(path).path() : path));
            if (isPipe)
                QCOMPARE(mkfifo(path.toUtf8().constData(), 0600), 0);
            SettingsUserDefaults defaults(path);
            defaults.setDouble("d", 1);
            defaults.flush(10s);
            QVERIFY(QFileInfo(path).isFile());
            QVERIFY(QFileInfo::exists(path + QStringLiteral(".broken")));
        }
    }

    void whatCannotBeWrittenIsKeptReportedOnceAndWrittenLater()
    {
        writeFile({});
        const auto blocker = QFileInfo(path).path(); // a file where the folder should be
        QVERIFY(QFile::remove(path) && QDir().rmdir(blocker));
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly));
        SettingsUserDefaults defaults(path);
        for (const std::size_t times : {1U, 2U}) { // each trouble is said once
            for (int i = 0; i < 10; ++i) {
                defaults.setDouble("d", i);
                defaults.flush(10s);
                QCOMPARE(defaults.doubleValue("d"), double(i));
            }
            QCOMPARE(console->lines.size(), times);
            QCOMPARE(defaults.unusableFile(), path.toStdString());
            QVERIFY(file.remove());
            QCOMPARE(defaults.doubleValue("d"), 9.0);
            QTRY_COMPARE(SettingsUserDefaults(path).doubleValue("d"), 9.0);
            defaults.flush(10s); // and nothing of the writing is left
            QVERIFY(!defaults.unusableFile());
            QVERIFY(QFile::remove(path) && QDir().rmdir(blocker) && file.open(QIODevice::WriteOnly));
        }
    }
};

QTEST_GUILESS_MAIN(SettingsUserDefaultsTest)
#include "SettingsUserDefaults.moc"
