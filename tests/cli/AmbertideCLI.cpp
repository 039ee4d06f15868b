#include "cli/AmbertideCLI.h"

#include "model/Notifications.h"

#include <QTest>

#include <vector>

using namespace ambertide;
using Outcome = ApplicationConnection::Outcome;

namespace {

class FakeApplicationConnection final : public ApplicationConnection
{
public:
    Answer answer;
    std::vector<Notification> posts;
    std::string awaited;

    Outcome post(const Notification &notification) override
    {
        posts.push_back(notification);
        return answer.outcome;
    }
    Answer request(const Notification &notification, std::string_view name) override
    {
        posts.push_back(notification);
        awaited = name;
        return answer;
    }
};

} // namespace

Q_DECLARE_METATYPE(ambertide::ApplicationConnection::Answer)

class AmbertideCLITest : public QObject
{
    Q_OBJECT

    FakeApplicationConnection m_application;

    AmbertideCLI::Result run(const QByteArrayList &arguments)
    {
        const std::vector<std::string_view> views(arguments.begin(), arguments.end());
        return AmbertideCLI(m_application).run(views);
    }

private Q_SLOTS:
    void init() { m_application = {}; }

    void wrongUsageIsRefusedBeforeAnythingIsPosted_data()
    {
        QTest::addColumn<QByteArrayList>("arguments");
        QTest::addColumn<QByteArray>("mention");
        for (const char *temperature : {"", "3400.0", "3400K", " 3400", "3400 ", "+3400", "-3400", "0x1000", "3e3",
                                        "nan", "999", "6501", "0", "99999999999999999999999999", "34\xc2\xb2"})
            QTest::addRow("set '%s'", temperature)
                << QByteArrayList{"set", temperature} << QByteArray("from 1000 to 6500");
        const QByteArray usage = "Usage: ambertide set <temperature>\n       ambertide get\n";
        QTest::newRow("nothing") << QByteArrayList{} << usage;
        QTest::newRow("unknown command") << QByteArrayList{"put", "3400"} << usage;
        QTest::newRow("unknown option") << QByteArrayList{"--verbose"} << usage;
        QTest::newRow("set without a temperature") << QByteArrayList{"set"} << usage;
        QTest::newRow("set with two") << QByteArrayList{"set", "3400", "3500"} << usage;
        QTest::newRow("get with more") << QByteArrayList{"get", "3400"} << usage;
        QTest::newRow("version with more") << QByteArrayList{"--version", "get"} << usage;
    }
    void wrongUsageIsRefusedBeforeAnythingIsPosted()
    {
        QFETCH(QByteArrayList, arguments);
        QFETCH(QByteArray, mention);
        const auto result = run(arguments);
        QCOMPARE(result.status, AmbertideCLI::wrongUsage);
        QVERIFY(result.output.empty());
        QVERIFY(QByteArray::fromStdString(result.errors).contains(mention));
        QVERIFY(m_application.posts.empty());
    }

    void setPostsTheTemperatureAsAnInteger_data()
    {
        QTest::addColumn<QByteArray>("temperature");
        QTest::addColumn<qint64>("posted");
        QTest::newRow("least") << QByteArray("1000") << qint64{1000};
        QTest::newRow("no round hundred") << QByteArray("3449") << qint64{3449};
        QTest::newRow("most") << QByteArray("6500") << qint64{6500};
    }
    void setPostsTheTemperatureAsAnInteger()
    {
        QFETCH(QByteArray, temperature);
        QFETCH(qint64, posted);
        m_application.answer.outcome = Outcome::done;
        const auto result = run({"set", temperature});
        QCOMPARE(result.status, AmbertideCLI::success);
        QVERIFY(result.output.empty() && result.errors.empty());
        QCOMPARE(m_application.posts.size(), 1U);
        QCOMPARE(m_application.posts[0].name, std::string("Ambertide.UpdateTemperature"));
        QVERIFY((*m_application.posts[0].userInfo == UserInfo{{"temperature", std::int64_t{posted}}}));
    }

    void getPrintsTheAnswerAndNothingElse()
    {
        m_application.answer = {Outcome::done, Notification{"Any", UserInfo{{"temperature", std::int64_t{2700}}}}};
        const auto result = run({"get"});
        QCOMPARE(result.status, AmbertideCLI::success);
        QCOMPARE(result.output, std::string("2700\n"));
        QVERIFY(result.errors.empty());
        QCOMPARE(m_application.posts.at(0).name, std::string("Ambertide.GetTemperature"));
        QCOMPARE(m_application.awaited, std::string("Ambertide.TemperatureResponse"));
    }

    void whatCouldNotBeDoneIsSaidInOneLine_data()
    {
        QTest::addColumn<ApplicationConnection::Answer>("answer");
        QTest::newRow("no bus") << ApplicationConnection::Answer{Outcome::noTransport, std::nullopt};
        QTest::newRow("not running") << ApplicationConnection::Answer{Outcome::notRunning, std::nullopt};
        QTest::newRow("no answer") << ApplicationConnection::Answer{Outcome::noAnswer, std::nullopt};
        QTest::newRow("no number") << ApplicationConnection::Answer{Outcome::done, Notification{"Any", std::nullopt}};
    }
    void whatCouldNotBeDoneIsSaidInOneLine()
    {
        QFETCH(ApplicationConnection::Answer, answer);
        m_application.answer = answer;
        const auto result = run({"get"});
        QCOMPARE(result.status, AmbertideCLI::failure);
        QVERIFY(result.output.empty());
        QVERIFY(result.errors.starts_with("ambertide: "));
        QCOMPARE(result.errors.find('\n'), result.errors.size() - 1);
    }

    void helpIsGivenWhereverItIsAskedFor_data()
    {
        QTest::addColumn<QByteArrayList>("arguments");
        QTest::newRow("alone") << QByteArrayList{"--help"};
        QTest::newRow("of a command") << QByteArrayList{"set", "-h"};
    }
    void helpIsGivenWhereverItIsAskedFor()
    {
        QFETCH(QByteArrayList, arguments);
        const auto result = run(arguments);
        QCOMPARE(result.status, AmbertideCLI::success);
        QVERIFY(result.output.find("ambertide get") != std::string::npos);
    }
};

QTEST_GUILESS_MAIN(AmbertideCLITest)
#include "AmbertideCLI.moc"
