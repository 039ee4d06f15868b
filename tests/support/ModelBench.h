#pragma once

#include "model/AppViewModel.h"
#include "model/ScheduleEntry.h"
#include "protocol/DefaultsKeys.h"
#include "support/Fakes.h"

namespace ambertide {

/// The application's model, with everything that it works on.
struct ModelBench
{
    /// At a temperature that was stored, once that is shown.
    explicit ModelBench(double stored)
    {
        userDefaults.setDouble(defaults::temperature, stored);
        start();
    }
    ModelBench() = default;
    ~ModelBench() { model.reset(); }

    void start()
    {
        model.emplace(AppViewModel::Ports{.displays = displays,
                                          .executor = executor,
                                          .wake = wake,
                                          .userDefaults = userDefaults,
                                          .notifications = notifications,
                                          .distributedNotifications = distributed,
                                          .calendar = calendar});
        executor.advance(std::chrono::seconds(5));
        displays.takeWrites();
    }
    void storeSchedule(const std::vector<ScheduleEntry> &entries)
    {
        userDefaults.setData(defaults::scheduleEntries, encodeSchedule(entries));
    }
    /// Whether the next periodic pass shows this temperature, as far as it can be shown.
    bool isShown(double temperature)
    {
        displays.takeWrites();
        executor.advance(std::chrono::seconds(2));
        const auto writes = displays.takeWrites();
        return temperature >= 6500
                   ? writes.empty()
                   : !writes.empty() && writes.back().tables.blue ==
                                            DisplayManager::createGammaTables(std::max(temperature, 2000.0)).blue;
    }

    FakeDisplayServices displays;
    FakeSystemWake wake;
    FakeUserDefaults userDefaults;
    NotificationCenter notifications;
    FakeDistributedNotificationCenter distributed;
    FakeCalendar calendar;
    FakeTaskExecutor executor;
    std::optional<AppViewModel> model;
};

} // namespace ambertide
