#include "base/UserInfo.h"

#include <QTest>

#include <limits>
#include <string>

using namespace ambertide;

Q_DECLARE_METATYPE(ambertide::UserInfoValue)

class UserInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyNumbersReadAsNumbersAndOnlyWholeOnesAsIntegers_data()
    {
        constexpr auto none = std::numeric_limits<double>::min();
        QTest::addColumn<UserInfoValue>("value");
        QTest::addColumn<bool>("isInteger");
        QTest::addColumn<double>("number");
        const auto row = [](const char *name, UserInfoValue value, bool isInteger, double number) {
            QTest::newRow(name) << value << isInteger << number;
        };
        row("integer", std::int64_t{3400}, true, 3400);
        row("whole double", 3400.0, true, 3400);
        row("fraction", 3450.5, false, 3450.5);
        row("beyond an integer", 1e19, false, 1e19);
        row("just beyond an integer", 9223372036854775808.0, false, 9223372036854775808.0);
        row("infinity", std::numeric_limits<double>::infinity(), false, std::numeric_limits<double>::infinity());
        row("text", std::string("3400"), false, none);
        row("truth value", true, false, none);
        row("container", OpaqueValue{"a{sv}"}, false, none);
    }
    void onlyNumbersReadAsNumbersAndOnlyWholeOnesAsIntegers()
    {
        QFETCH(UserInfoValue, value);
        QFETCH(double, number);
        const UserInfo userInfo = {{"temperature", value}};
        QTEST(integerValue(userInfo, "temperature").has_value(), "isInteger");
        QCOMPARE(numberValue(userInfo, "temperature").value_or(std::numeric_limits<double>::min()), number);
        QVERIFY(!integerValue(userInfo, "Temperature"));
        QVERIFY(!numberValue({}, "temperature"));
    }

    void descriptionsAreOneShortLine()
    {
        QCOMPARE(describe({}), std::string("{}"));
        QCOMPARE(describe({{"temperature", std::int64_t{3400}}}), std::string("{temperature = 3400}"));
        UserInfo hostile = {{"line\nbreak", std::string(1'000'000, 'x')}};
        for (int i = 0; i < 1000; ++i)
            hostile.emplace("key" + std::to_string(i), OpaqueValue{std::string(255, '(')});
        const auto line = describe(hostile);
        QVERIFY(line.size() < 1000);
        QVERIFY(line.find('\n') == std::string::npos);
        QVERIFY(line.ends_with("... 997 more}"));
    }
};

QTEST_GUILESS_MAIN(UserInfoTest)
#include "UserInfo.moc"
