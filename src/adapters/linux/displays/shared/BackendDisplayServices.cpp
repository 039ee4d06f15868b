#include "adapters/linux/displays/shared/BackendDisplayServices.h"

#include "adapters/linux/displays/shared/GuardianProcess.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

constexpr auto patienceForRestore = 500ms;
constexpr auto patienceForEnd = 1s;
constexpr std::chrono::milliseconds longestWait = 1h;

} // namespace

class BackendDisplayServices::Worker
{
public:
    Worker(Create create, Settle settle)
        : m_create(std::move(create)), m_settle(std::move(settle)), m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
    }
    ~Worker() { ::close(m_wake); }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    void run();

    std::vector<DisplayIdentifier> displays()
    {
        const std::scoped_lock lock(m_lock);
        return m_displays;
    }
    std::optional<TintRefusal> refusal()
    {
        const std::scoped_lock lock(m_lock);
        return m_refusal;
    }
    bool isGuarded()
    {
        const std::scoped_lock lock(m_lock);
        return m_isGuarded;
    }
    void show(std::span<const DisplayIdentifier> displays, const GammaTables &tables);
    void beginRamp(const std::optional<GammaTables> &target);
    /// Returns when that has been done, or after `limit`.
    void restore(std::chrono::milliseconds limit);
    void close(std::chrono::milliseconds limit);
    /// False when the thread has not ended in time.
    bool end();

private:
    struct Tint
    {
        std::vector<DisplayIdentifier> displays;
        GammaTables tables;
    };

    void ask(std::optional<Tint> wanted);
    void askFor(const std::optional<GammaTables> &target);
    void wake() const;
    bool perform(DisplayBackend::Wait wait);
    bool shouldEnd();
    void process();
    void settleGuardian();
    void waitForEvent();
    void noteDisplays();

    const Create m_create;
    const Settle m_settle;
    const int m_wake; ///< an eventfd, which ends the thread's wait

    std::mutex m_backendLock; ///< guards m_backend; taken before m_lock where both are
    std::unique_ptr<DisplayBackend> m_backend;

    std::mutex m_lock; ///< guards all below; held for moments only
    std::condition_variable m_changed;
    std::vector<DisplayIdentifier> m_displays;
    std::optional<TintRefusal> m_refusal;
    bool m_isGuarded = true;
    std::optional<Tint> m_wanted; ///< nothing: the system's own colours
    std::uint64_t m_asked = 0;    ///< how many requests have been made
    std::uint64_t m_done = 0;     ///< how many of them have been carried out, or overtaken by a newer one
    bool m_makesOwnRamps = false;
    bool m_isCreated = false;
    std::optional<std::optional<GammaTables>> m_earlyTarget; ///< of a ramp that began before there was a backend
    bool m_isClosed = false;                                 ///< nothing is tinted any more
    bool m_shouldEnd = false;
    bool m_hasEnded = false;
};

void BackendDisplayServices::Worker::run()
{
    {
        const std::scoped_lock backendLock(m_backendLock);
        m_backend = m_create();
        noteDisplays();
        const std::scoped_lock lock(m_lock);
        m_makesOwnRamps = m_backend->makesOwnRamps();
        if (m_makesOwnRamps && m_earlyTarget)
            askFor(*m_earlyTarget);
        m_isCreated = true;
    }
    while (!shouldEnd()) {
        {
            const std::scoped_lock backendLock(m_backendLock);
            process();
            perform(DisplayBackend::Wait::Allowed);
        }
        settleGuardian();
        waitForEvent();
    }
    {
        const std::scoped_lock backendLock(m_backendLock);
        m_backend.reset();
    }
    const std::scoped_lock lock(m_lock);
    m_hasEnded = true;
    m_changed.notify_all();
}

bool BackendDisplayServices::Worker::shouldEnd()
{
    const std::scoped_lock lock(m_lock);
    return m_shouldEnd;
}

void BackendDisplayServices::Worker::process()
{
    if (auto *const guardian = m_backend->guardian())
        guardian->renew();
    const bool mustWriteAgain = m_backend->process();
    noteDisplays();
    const std::scoped_lock lock(m_lock);
    if (mustWriteAgain && m_wanted) {
        m_wanted->displays = m_displays;
        ++m_asked;
    }
}

void BackendDisplayServices::Worker::settleGuardian()
{
    pid_t started = 0;
    {
        const std::scoped_lock backendLock(m_backendLock);
        if (auto *const guardian = m_backend->guardian())
            started = guardian->takeStarted();
    }
    if (started != 0)
        m_settle(started);
}

void BackendDisplayServices::Worker::waitForEvent()
{
    std::array<pollfd, 3> sources{{{m_wake, POLLIN, 0}, {-1, POLLIN, 0}, {-1, 0, 0}}};
    int timeout = -1;
    {
        const std::scoped_lock backendLock(m_backendLock);
        sources[1].fd = m_backend->descriptor();
        if (const auto *const guardian = m_backend->guardian())
            sources[2].fd = guardian->channel();
        if (const auto due = m_backend->due()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*due - DisplayBackend::Clock::now());
            timeout = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, longestWait.count()));
        }
    }
    poll(sources.data(), sources.size(), timeout);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto length = read(m_wake, &count, sizeof count);
}

/// Carries out the newest request, unless that has been done. False when it has to be tried again with leave to wait,
/// or there is a newer one by now.
bool BackendDisplayServices::Worker::perform(DisplayBackend::Wait wait)
{
    std::optional<Tint> wanted;
    std::uint64_t asked = 0;
    {
        const std::scoped_lock lock(m_lock);
        if (m_done == m_asked)
            return true;
        wanted = m_wanted;
        asked = m_asked;
    }
    if (!wanted && wait == DisplayBackend::Wait::Never)
        return false;
    if (!wanted)
        m_backend->restore();
    else if (!m_backend->write(wanted->displays, wanted->tables, wait))
        return false;
    noteDisplays();
    const std::scoped_lock lock(m_lock);
    m_done = asked;
    m_changed.notify_all();
    return m_done == m_asked;
}

void BackendDisplayServices::Worker::noteDisplays()
{
    const auto displays = m_backend->displays();
    const std::scoped_lock lock(m_lock);
    m_displays.assign(displays.begin(), displays.end());
    m_refusal = m_backend->tintRefusal();
    const auto *const guardian = m_backend->guardian();
    m_isGuarded = !guardian || !guardian->isMissing();
}

void BackendDisplayServices::Worker::show(std::span<const DisplayIdentifier> displays, const GammaTables &tables)
{
    {
        const std::scoped_lock lock(m_lock);
        if (m_makesOwnRamps || m_isClosed)
            return;
        ask(Tint{{displays.begin(), displays.end()}, tables});
    }
    const std::unique_lock backendLock(m_backendLock, std::try_to_lock);
    const bool isDone = backendLock && m_backend && perform(DisplayBackend::Wait::Never);
    // A guardian that was started here has to be watched by the thread.
    if (!isDone || (m_backend->guardian() && m_backend->guardian()->hasStarted()))
        wake();
}

void BackendDisplayServices::Worker::beginRamp(const std::optional<GammaTables> &target)
{
    {
        const std::scoped_lock lock(m_lock);
        if (m_isClosed)
            return;
        if (!m_isCreated)
            m_earlyTarget = target;
        if (!m_makesOwnRamps)
            return;
        askFor(target);
    }
    wake();
}

void BackendDisplayServices::Worker::askFor(const std::optional<GammaTables> &target)
{
    ask(target ? std::optional(Tint{m_displays, *target}) : std::nullopt);
}

void BackendDisplayServices::Worker::ask(std::optional<Tint> wanted)
{
    m_wanted = std::move(wanted);
    ++m_asked;
}

void BackendDisplayServices::Worker::restore(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_lock);
    m_earlyTarget.reset();
    ask(std::nullopt);
    wake();
    m_changed.wait_for(lock, limit, [this, asked = m_asked] { return m_done >= asked; });
}

void BackendDisplayServices::Worker::close(std::chrono::milliseconds limit)
{
    {
        const std::scoped_lock lock(m_lock);
        m_isClosed = true;
        m_earlyTarget.reset();
        if (!m_wanted && m_done == m_asked)
            return;
    }
    restore(limit);
}

bool BackendDisplayServices::Worker::end()
{
    std::unique_lock lock(m_lock);
    m_shouldEnd = true;
    wake();
    return m_changed.wait_for(lock, patienceForEnd, [this] { return m_hasEnded; });
}

void BackendDisplayServices::Worker::wake() const
{
    constexpr std::uint64_t once = 1;
    [[maybe_unused]] const auto length = write(m_wake, &once, sizeof once);
}

BackendDisplayServices::BackendDisplayServices(Create create, Settle settle)
    : m_worker(std::make_shared<Worker>(std::move(create), std::move(settle))),
      m_thread([worker = m_worker] { worker->run(); })
{
}

BackendDisplayServices::~BackendDisplayServices()
{
    if (m_worker->end())
        m_thread.join();
    else
        m_thread.detach();
}

std::vector<DisplayIdentifier> BackendDisplayServices::activeDisplays() { return m_worker->displays(); }

void BackendDisplayServices::setTransferTables(std::span<const DisplayIdentifier> displays, const GammaTables &tables)
{
    m_worker->show(displays, tables);
}

void BackendDisplayServices::restoreSystemColours() { m_worker->restore(patienceForRestore); }

std::optional<TintRefusal> BackendDisplayServices::refusal() { return m_worker->refusal(); }

bool BackendDisplayServices::isGuarded() { return m_worker->isGuarded(); }

void BackendDisplayServices::beginRamp(const std::optional<GammaTables> &target) { m_worker->beginRamp(target); }

void BackendDisplayServices::end(std::chrono::milliseconds limit) { m_worker->close(limit); }

} // namespace ambertide
