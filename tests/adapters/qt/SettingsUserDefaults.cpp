#include "adapters/qt/SettingsUserDefaults.h"

#include "support/CapturedConsole.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <optional>

using namespace ambertide;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

class SettingsUserDefaultsTest : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> folder;
    std::optional<CapturedConsole> console;
    fs::path file;
    QString path; ///< the same

    void writeFile(const std::string &content) const
    {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }
    std::string readFile(const char *suffix = "") const
    {
        return {std::istreambuf_iterator(std::ifstream(file.string() + suffix).rdbuf()), {}};
    }

private Q_SLOTS:
    void init()
    {
        folder.emplace();
        path = folder->filePath(QStringLiteral("config/ambertide/defaults.ini"));
        file = path.toStdString();
        console.reset();
        console.emplace();
    }

    void everyKindOfValueComesBackFromTheFile()
    {
        const std::string bytes("[{\"a\":\"\xC3\xBC \\n\"},\n\0\xff]", 18);
        for (const char *inTheWay : {".lock/x", ".new/defaults.ini.lock/x", ".new.lock/x"})
            fs::create_directories(file.string() + inTheWay);
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
            fs::last_write_time(file, {});
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
        QVERIFY(defaults.hasObject("B"));
        for (const auto *line : {"Ambertide.ScheduleEnabled=true", "B=1", "=2700", "Other=1"})
            QVERIFY2(readFile().find(line) != std::string::npos, line);
    }

    void aBrokenFileIsSetAsideAndReported()
    {
        const std::string good = "[General]\nAmbertide.Temperature=2700\n";
        for (const auto &[content, kept] : {std::pair(good + "Ambertide.Sched", 2700.0), // cut off inside a key
                                            {std::string("\x7f\x45LF\0\0=\n\xff\xfe", 10), 0.0},
                                            {good + "a=\xff\n", 0.0}, // not UTF-8
                                            {good + "a=" + std::string(2'000'000, 'x'), 0.0}}) {
            init();
            writeFile(content);
            {
                SettingsUserDefaults defaults(path);
                QCOMPARE(defaults.doubleValue("Ambertide.Temperature"), kept);
                defaults.setBool("b", true);
                defaults.flush(10s);
                QCOMPARE(defaults.doubleValue("Ambertide.Temperature"), kept);
            }
            QVERIFY(SettingsUserDefaults(path).boolValue("b"));
            QVERIFY(readFile(".broken") == content);
            QCOMPARE(console->lines.size(), std::size_t(1));

            // a second broken file does not take the first one's place
            writeFile("\xff\xff");
            QVERIFY(!SettingsUserDefaults(path).hasObject("b"));
            QVERIFY(readFile(".broken") == content);
            QCOMPARE(readFile(".broken-2"), std::string("\xff\xff"));
        }
    }

    void whatIsNoFileIsSetAsideWithoutReadingIt()
    {
        for (const bool isPipe : {true, false}) { // otherwise a folder
            init();
            fs::create_directories(isPipe ? file.parent_path() : file);
            if (isPipe)
                QCOMPARE(mkfifo(file.c_str(), 0600), 0);
            SettingsUserDefaults defaults(path);
            defaults.setDouble("d", 1);
            defaults.flush(10s);
            QVERIFY(fs::is_regular_file(file));
            QVERIFY(fs::exists(file.string() + ".broken"));
        }
    }

    void whatCannotBeWrittenIsKeptReportedOnceAndWrittenLater()
    {
        const auto inTheWay = file.parent_path(); // a file where the folder should be
        fs::create_directories(inTheWay.parent_path());
        SettingsUserDefaults defaults(path);
        for (const std::size_t times : {1U, 2U}) { // each trouble is said once
            fs::remove_all(inTheWay);
            std::ofstream(inTheWay) << "";
            for (int i = 0; i < 10; ++i) {
                defaults.setDouble("d", i);
                defaults.flush(10s);
                QCOMPARE(defaults.doubleValue("d"), double(i));
            }
            QCOMPARE(console->lines.size(), times);
            QCOMPARE(defaults.unusableFile(), file.string());
            fs::remove(inTheWay);
            QCOMPARE(defaults.doubleValue("d"), 9.0);
            QTRY_COMPARE(SettingsUserDefaults(path).doubleValue("d"), 9.0);
            defaults.flush(10s); // and nothing of the writing is left
            QVERIFY(!defaults.unusableFile());
        }
    }
};

QTEST_GUILESS_MAIN(SettingsUserDefaultsTest)
#include "SettingsUserDefaults.moc"
