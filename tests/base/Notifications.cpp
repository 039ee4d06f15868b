#include "base/NotificationCenter.h"

#include <QTest>

#include <string>

using namespace ambertide;

class NotificationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
