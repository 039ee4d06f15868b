#include "platform/NotificationCenter.h"

#include <QTest>

#include <string>

using namespace ambertide;

class NotificationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void observersHearTheirNameInOrderUntilTheyLetGo()
    {
        NotificationCenter center;
        std::string heard;
        auto first = center.observe("a", [&](const Notification &) { heard += '1'; });
        auto second = center.observe("a", [&](const Notification &) { heard += '2'; });
        auto other = center.observe("b", [&](const Notification &) { heard += 'b'; });
        center.post({.name = "a", .userInfo = {}});
        first.release();
        center.post({.name = "a", .userInfo = {}});
        QCOMPARE(heard, std::string("122"));
    }

    void anObserverMayChangeTheRegistrationsFromWithinAPost()
    {
        NotificationCenter center;
        std::string heard;
        Observation second;
        Observation added;
        auto first = center.observe("a", [&](const Notification &notification) {
            heard += '1';
            second.release();
            if (heard.size() == 1) {
                added = center.observe("a", [&](const Notification &) { heard += '3'; });
                center.post(notification);
            }
        });
        second = center.observe("a", [&](const Notification &) { heard += '2'; });
        center.post({.name = "a", .userInfo = {}});
        QCOMPARE(heard, std::string("113"));
    }
};

QTEST_GUILESS_MAIN(NotificationsTest)
#include "Notifications.moc"
