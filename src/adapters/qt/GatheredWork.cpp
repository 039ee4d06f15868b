#include "adapters/qt/GatheredWork.h"

#include <utility>

namespace ambertide {

GatheredWork::GatheredWork(std::chrono::milliseconds gatheringTime, std::function<void()> work)
    : m_gatheringTime(gatheringTime), m_work(std::move(work)),
      m_thread([this](const std::stop_token &stop) { run(stop); })
{
}

void GatheredWork::request()
{
    const std::scoped_lock lock(m_lock);
    ++m_requested;
    m_changed.notify_all();
}

void GatheredWork::finish(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_lock);
    m_isUrgent = isWaiting();
    m_changed.notify_all();
    m_changed.wait_for(lock, limit, [this] { return !isWaiting(); });
}

void GatheredWork::run(const std::stop_token &stop)
{
    std::unique_lock lock(m_lock);
    while (m_changed.wait(lock, stop, [this] { return isWaiting(); })) {
        m_changed.wait_for(lock, stop, m_gatheringTime, [this] { return m_isUrgent; });
        const auto taken = m_requested;
        lock.unlock();
        m_work();
        lock.lock();
        m_done = taken;
        m_isUrgent = m_isUrgent && isWaiting();
        m_changed.notify_all();
    }
}

} // namespace ambertide
