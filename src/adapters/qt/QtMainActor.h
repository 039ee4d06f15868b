#pragma once

#include "base/TaskExecutor.h"

#include <QObject>

#include <deque>
#include <mutex>

namespace ambertide {

/// Runs continuations from Qt's event loop. Create and destroy on the main thread; what is still waiting by then is
/// destroyed unrun.
class QtMainActor final : public QObject, public MainActor
{
public:
    void resume(Continuation continuation) override;

protected:
    bool event(QEvent *event) override;

private:
    void runWaiting();

    std::mutex m_lock;
    std::deque<Continuation> m_waiting;
    bool m_isEventPosted = false;
};

} // namespace ambertide
