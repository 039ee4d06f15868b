#include "platform/linux/DesktopEntry.h"

#include <QFile>
#include <QTest>

using namespace ambertide;
using Text = std::optional<std::string>;

class TestDesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsFiles()
    {
        QCOMPARE(read("plain")->program(), Text("/usr/lib/ambertide/Contents/MacOS/Ambertide"));
        QCOMPARE(read("crlf-hidden")->program(), Text("/bin/sh"));
        QCOMPARE(read("crlf-hidden")->boolean("Hidden"), std::optional(true));
        QCOMPARE(read("quoting")->program(), Text("/o p/$x`y\"z\\w%"));
        QCOMPARE(read("quoting")->boolean("X-systemd-skip"), std::optional(true));
        for (const auto name : {"broken", "ends-in-escape"})
            QVERIFY2(!read(name).value().program(), name);
        for (const auto name : {"nul", "other-group-first", "binary", "empty"})
            QVERIFY2(!read(name), name);
    }

    void readsWhatItWrites()
    {
        for (const Text text : {"/opt/Ambertide.app", "  /a b\tc  ", "/'a' \"b\" $c `d` \\e #f ;g &h |i ~j *k (l) <m>",
                                "/%f%%u%", "\\\\s\\n\\", "/a\nExec=/bin/false\r\n[Desktop Action x]\n", "/дом/家/é"}) {
            const auto entry =
                DesktopEntry::parse("[Desktop Entry]\nExec=" + DesktopEntry::execArgument(*text) +
                                    " --more\nName=" + DesktopEntry::escaped(*text) + "\nHidden=false\n");
            QVERIFY(entry);
            QCOMPARE(entry->program(), text);
            QCOMPARE(entry->string("Name"), text);
            QCOMPARE(entry->boolean("Hidden"), std::optional(false));
        }
    }

private:
    static std::optional<DesktopEntry> read(const char *name)
    {
        QFile file(QFINDTESTDATA(QStringLiteral("../corpus/desktop-entry/%1.desktop").arg(QLatin1String(name))));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("the corpus lacks %s", name);
        return DesktopEntry::parse(file.readAll().toStdString());
    }
};

QTEST_GUILESS_MAIN(TestDesktopEntry)
#include "DesktopEntry.moc"
