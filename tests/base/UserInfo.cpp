#include "base/UserInfo.h"

#include <QTest>

#include <string>

using namespace ambertide;

class UserInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void descriptionsAreOneShortLine()
    {
        UserInfo hostile = {{"line\nbreak", std::string(1'000'000, 'x')}};
        for (int i = 0; i < 1000; ++i)
            hostile.emplace("key" + std::to_string(i), OpaqueValue{std::string(255, '(')});
        const auto line = describe(hostile);
        QVERIFY(line.size() < 1000 && line.find('\n') == std::string::npos && line.ends_with("... 997 more}"));
    }
};

QTEST_GUILESS_MAIN(UserInfoTest)
#include "UserInfo.moc"
