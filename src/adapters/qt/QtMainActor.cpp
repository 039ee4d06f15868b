#include "adapters/qt/QtMainActor.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace ambertide {

namespace {

QEvent::Type wakeUpType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

void QtMainActor::resume(Continuation continuation)
{
    {
        const std::scoped_lock lock(m_lock);
        m_waiting.push_back(std::move(continuation));
        if (std::exchange(m_isEventPosted, true))
            return;
    }
    QCoreApplication::postEvent(this, new QEvent(wakeUpType()));
}

void QtMainActor::runWaiting()
{
    std::deque<Continuation> due;
    {
        const std::scoped_lock lock(m_lock);
        m_isEventPosted = false;
        due.swap(m_waiting);
    }
    for (auto &continuation : due)
        continuation.resume();
}

bool QtMainActor::event(QEvent *event)
{
    if (event->type() != wakeUpType())
        return QObject::event(event);
    runWaiting();
    return true;
}

} // namespace ambertide
