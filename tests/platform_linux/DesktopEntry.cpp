#include "platform/linux/DesktopEntry.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace ambertide;
using std::string;

using MaybeBool = std::optional<bool>;
using MaybeString = std::optional<std::string>;

class TestDesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsFiles_data()
    {
        QTest::addColumn<bool>("isEntry");
        QTest::addColumn<MaybeString>("program");
        QTest::addColumn<MaybeBool>("hidden");
        QTest::addColumn<MaybeBool>("skipped");
        const MaybeString none;
        const MaybeBool absent;
        QTest::newRow("plain") << true << MaybeString("/usr/lib/ambertide/Contents/MacOS/Ambertide") << absent
                               << absent;
        QTest::newRow("crlf-hidden") << true << MaybeString("/bin/sh") << MaybeBool(true) << absent;
        QTest::newRow("quoting") << true << MaybeString("/o p/$x`y\"z\\w%") << absent << MaybeBool(true);
        QTest::newRow("broken") << true << none << absent << absent;
        QTest::newRow("ends-in-escape") << true << none << absent << absent;
        QTest::newRow("nul") << false << none << absent << absent;
        QTest::newRow("other-group-first") << false << none << absent << absent;
        QTest::newRow("binary") << false << none << absent << absent;
        QTest::newRow("empty") << false << none << absent << absent;
    }
    void readsFiles()
    {
        QFETCH(bool, isEntry);
        QFile file(QFINDTESTDATA("../corpus/desktop-entry") +
                   QStringLiteral("/%1.desktop").arg(QString::fromUtf8(QTest::currentDataTag())));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const auto entry = DesktopEntry::parse(file.readAll().toStdString());
        QCOMPARE(entry.has_value(), isEntry);
        if (!entry)
            return;
        QTEST(entry->program(), "program");
        QTEST(entry->boolean("Hidden"), "hidden");
        QTEST(entry->boolean("X-systemd-skip"), "skipped");
    }

    void writesWhatItReads_data()
    {
        QTest::addColumn<string>("text");
        QTest::newRow("plain") << string("/opt/Ambertide.app/Ambertide");
        QTest::newRow("blanks") << string("  /a b\tc  ");
        QTest::newRow("what a shell minds") << string("/'a' \"b\" $c `d` \\e #f ;g &h |i ~j *k (l) <m>");
        QTest::newRow("percent signs") << string("/%f%%u%");
        QTest::newRow("backslashes") << string("\\\\s\\n\\");
        QTest::newRow("line ends") << string("/a\nExec=/bin/false\r\n[Desktop Action x]\n");
        QTest::newRow("other scripts") << string("/домик/家/é");
    }
    void writesWhatItReads()
    {
        QFETCH(string, text);
        const auto entry = DesktopEntry::parse("[Desktop Entry]\nExec=" + DesktopEntry::execArgument(text) +
                                               " --more\nName=" + DesktopEntry::escaped(text) + "\nHidden=false\n");
        QVERIFY(entry);
        QCOMPARE(entry->program(), MaybeString(text));
        QCOMPARE(entry->string("Name"), MaybeString(text));
        QCOMPARE(entry->boolean("Hidden"), MaybeBool(false));
    }
};

QTEST_GUILESS_MAIN(TestDesktopEntry)
#include "DesktopEntry.moc"
