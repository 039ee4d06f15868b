#pragma once

#include "base/NotificationCenter.h"
#include "base/TaskExecutor.h"
#include "ports/Calendar.h"
#include "ports/DisplayServices.h"
#include "ports/DistributedNotificationCenter.h"
#include "ports/MainBundle.h"
#include "ports/SystemWake.h"
#include "ports/UserDefaults.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace ambertide {

/// Background and main thread in one, on the test's own thread and in a time of its own: nothing runs and no time
/// passes but by the calls below.
class FakeTaskExecutor final : public TaskExecutor
{
public:
    std::chrono::nanoseconds lateness{0}; ///< of every sleep

    ~FakeTaskExecutor() override
    {
        while (!m_waiting.empty()) // what one holds may start another
            const auto dropped = std::exchange(m_waiting, {});
    }

    void resume(Continuation continuation) override { m_waiting.emplace(m_now, std::move(continuation)); }
    void resumeOnMain(Continuation continuation) override { resume(std::move(continuation)); }
    void resumeAfter(std::chrono::nanoseconds delay, Continuation continuation) override
    {
        m_waiting.emplace(m_now + std::max(delay, {}) + lateness, std::move(continuation));
    }
    void wakeCancelled(const TaskState &task) override
    {
        const auto sleeper = std::find_if(m_waiting.upper_bound(m_now), m_waiting.end(),
                                          [&](const auto &each) { return each.second.task().get() == &task; });
        if (sleeper == m_waiting.end())
            return;
        auto woken = m_waiting.extract(sleeper);
        woken.key() = m_now;
        m_waiting.insert(std::move(woken));
    }
    /// Lets the time pass without running anything.
    void blockThread(std::chrono::nanoseconds duration) override { m_now += duration; }

    std::chrono::nanoseconds now() const override { return m_now; }
    auto sleeperCount() const { return std::distance(m_waiting.upper_bound(m_now), m_waiting.end()); }

    /// Runs what is ready until nothing is.
    void runReady() { advance({}); }
    /// Runs what is ready and whatever falls due until `duration` has passed.
    void advance(std::chrono::nanoseconds duration)
    {
        const auto end = m_now + duration;
        while (!m_waiting.empty() && m_waiting.begin()->first <= std::max(m_now, end)) {
            auto next = m_waiting.extract(m_waiting.begin());
            m_now = std::max(m_now, next.key());
            next.mapped().resume();
        }
        m_now = std::max(m_now, end);
    }

private:
    std::chrono::nanoseconds m_now{0};
    std::multimap<std::chrono::nanoseconds, Continuation> m_waiting; ///< by when they go on; equal ones as they came
};

/// A clock that stands where the test has put it, in a zone without clock changes.
struct FakeCalendar final : Calendar
{
    Date current;

    static Date at(int hour, int minute) { return {hour * 3600.0 + minute * 60.0}; }

    Date now() const override { return current; }
    DateComponents timeOfDay(Date date) const override
    {
        const int minutes = static_cast<int>(std::fmod(date.secondsSinceReference, 86400) / 60);
        return {.hour = minutes / 60, .minute = minutes % 60};
    }
    std::optional<Date> date(const DateComponents &timeOfDay) const override
    {
        return at(timeOfDay.hour.value_or(0), timeOfDay.minute.value_or(0));
    }
};

/// Records what is asked of it. Safe from any thread, as the port demands.
class FakeDisplayServices final : public DisplayServices
{
public:
    struct Write
    {
        std::vector<DisplayIdentifier> displays;
        GammaTables tables;
        bool isRestore = false;
    };

    std::vector<DisplayIdentifier> displays = {1, 2};
    std::vector<std::optional<GammaTables>> rampTargets;
    std::optional<TintRefusal> tintRefusal;
    bool hasGuardian = true;

    std::vector<DisplayIdentifier> activeDisplays() override { return displays; }
    void setTransferTables(std::span<const DisplayIdentifier> addressed, const GammaTables &tables) override
    {
        const std::scoped_lock lock(m_lock);
        m_writes.push_back({{addressed.begin(), addressed.end()}, tables, false});
    }
    void restoreSystemColours() override
    {
        const std::scoped_lock lock(m_lock);
        m_writes.push_back({displays, {}, true});
    }
    void beginRamp(const std::optional<GammaTables> &target) override { rampTargets.push_back(target); }
    std::optional<TintRefusal> refusal() override { return tintRefusal; }
    bool isGuarded() override { return hasGuardian; }

    /// What was written since the last call.
    std::vector<Write> takeWrites()
    {
        const std::scoped_lock lock(m_lock);
        return std::exchange(m_writes, {});
    }

private:
    std::mutex m_lock;
    std::vector<Write> m_writes;
};

/// Delivers to its own observers before post() returns, and records what was asked of it.
class FakeDistributedNotificationCenter final : public DistributedNotificationCenter
{
public:
    std::vector<std::pair<Notification, Delivery>> posts;

    Observation observe(std::string name, Delivery, NotificationHandler handler) override
    {
        return m_observers.observe(name, std::move(handler));
    }
    void post(const Notification &notification, Delivery delivery) override
    {
        posts.emplace_back(notification, delivery);
        m_observers.post(notification);
    }

private:
    NotificationCenter m_observers;
};

struct FakeMainBundle final : MainBundle
{
    explicit FakeMainBundle(std::filesystem::path path) : bundlePath(std::move(path)) {}

    std::filesystem::path bundlePath;
    std::map<std::string, std::string, std::less<>> values;

    std::filesystem::path path() const override { return bundlePath; }
    std::optional<std::string> information(std::string_view key) const override
    {
        return values.contains(key) ? std::optional(values.find(key)->second) : std::nullopt;
    }
};

class FakeSystemWake final : public SystemWake
{
public:
    Observation observe(std::function<void()> handler) override { return m_observers.observe(std::move(handler)); }
    void wakeUp() { m_observers.notify(); }

private:
    Observers<> m_observers;
};

/// A store in memory.
class FakeUserDefaults final : public UserDefaults
{
public:
    struct Value
    {
        double number = 0;
        bool flag = false;
        std::optional<std::string> bytes = {};
    };

    std::map<std::string, Value, std::less<>> values;
    std::optional<std::string> fileInTrouble;

    bool hasObject(std::string_view key) override { return values.contains(key); }
    double doubleValue(std::string_view key) override { return stored(key).number; }
    bool boolValue(std::string_view key) override { return stored(key).flag; }
    std::optional<std::string> data(std::string_view key) override { return stored(key).bytes; }
    void setDouble(std::string_view key, double number) override { values[std::string(key)] = {.number = number}; }
    void setInteger(std::string_view key, long long value) override { setDouble(key, static_cast<double>(value)); }
    void setBool(std::string_view key, bool flag) override { values[std::string(key)] = {.flag = flag}; }
    void setData(std::string_view key, std::string_view bytes) override
    {
        values[std::string(key)] = {.bytes = std::string(bytes)};
    }
    void flush(std::chrono::milliseconds) override {}
    std::optional<std::string> unusableFile() override { return fileInTrouble; }

private:
    Value stored(std::string_view key) const { return values.contains(key) ? values.find(key)->second : Value(); }
};

} // namespace ambertide
