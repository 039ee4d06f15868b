#include "base/Observers.h"

#include <QTest>

#include <string>

using namespace ambertide;

class ObserversTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anObserverMayChangeTheRegistrationsFromWithinACall()
    {
        Observers<> observers;
        std::string heard;
        Observation second;
        Observation added;
        const auto first = observers.observe([&] {
            heard += '1';
            second.release();
            if (heard.size() == 1) {
                added = observers.observe([&] { heard += '3'; });
                observers.notify();
            }
        });
        second = observers.observe([&] { heard += '2'; });
        observers.notify();
        QCOMPARE(heard, std::string("113"));
    }
};

QTEST_GUILESS_MAIN(ObserversTest)
#include "Observers.moc"
