#pragma once

#include "model/AppViewModel.h"
#include "protocol/DefaultsKeys.h"
#include "support/FakeCalendar.h"
#include "support/FakeDisplayServices.h"
#include "support/FakeDistributedNotificationCenter.h"
#include "support/FakeSystemWake.h"
#include "support/FakeTaskExecutor.h"
#include "support/FakeUserDefaults.h"

namespace ambertide {

/// The application's model at a temperature, with everything that it works on.
struct ModelBench
{
    explicit ModelBench(double temperature)
    {
        userDefaults.setDouble(defaults::temperature, temperature);
        model.emplace(
            AppViewModel::Ports{displays, executor, wake, userDefaults, notifications, distributed, calendar});
        executor.advance(std::chrono::seconds(5));
        displays.takeWrites();
    }
    ~ModelBench() { model.reset(); }

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
