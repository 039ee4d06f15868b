#include "base/UserInfo.h"

#include <QTest>

#include <limits>
#include <string>
#include <tuple>

using namespace ambertide;

class UserInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyNumbersReadAsNumbersAndOnlyWholeOnesAsIntegers()
    {
        constexpr auto infinity = std::numeric_limits<double>::infinity();
        const std::tuple<UserInfoValue, std::optional<std::int64_t>, std::optional<double>> cases[] = {
            {std::int64_t{3400}, 3400, 3400},
            {3400.0, 3400, 3400},
            {3450.5, {}, 3450.5},
            {9223372036854775808.0, {}, 9223372036854775808.0}, // just beyond an integer
            {infinity, {}, infinity},
            {std::string("3400"), {}, {}},
            {true, {}, {}},
            {OpaqueValue{"a{sv}"}, {}, {}},
        };
        for (const auto &[value, integer, number] : cases) {
            const UserInfo userInfo = {{"temperature", value}};
            QVERIFY2(integerValue(userInfo, "temperature") == integer, describe(userInfo).c_str());
            QVERIFY2(numberValue(userInfo, "temperature") == number, describe(userInfo).c_str());
            QVERIFY(!integerValue(userInfo, "Temperature") && !numberValue(userInfo, "Temperature"));
        }
    }

    void descriptionsAreOneShortLine()
    {
        QCOMPARE(describe({{"temperature", std::int64_t{3400}}}), std::string("{temperature = 3400}"));
        UserInfo hostile = {{"line\nbreak", std::string(1'000'000, 'x')}};
        for (int i = 0; i < 1000; ++i)
            hostile.emplace("key" + std::to_string(i), OpaqueValue{std::string(255, '(')});
        const auto line = describe(hostile);
        QVERIFY(line.size() < 1000 && line.find('\n') == std::string::npos && line.ends_with("... 997 more}"));
    }
};

QTEST_GUILESS_MAIN(UserInfoTest)
#include "UserInfo.moc"
