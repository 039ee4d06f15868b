#pragma once

#include "model/AppViewModel.h"
#include "model/ScheduleEntry.h"
#include "ports/LoginItem.h"
#include "ports/PrivilegedRunner.h"
#include "ports/UpdaterController.h"
#include "protocol/DefaultsKeys.h"
#include "support/Fakes.h"

namespace ambertide {

/// An administrator, a login item and an updater. Writes down what it is told, in order.
struct FakeSystem final : PrivilegedRunner, LoginItem
{
    struct Updater final : UpdaterController
    {
        explicit Updater(std::string &record) : calls(record) {}
        void setAutomaticallyChecksForUpdates(bool isOn) override { calls += isOn ? "on " : "off "; }
        void setUpdateCheckInterval(double) override {}
        void checkForUpdates() override { calls += "check "; }
        bool canCheckForUpdates() const override { return true; }
        std::string &calls;
    };

    PrivilegedResult run(const std::string &command) override { return calls += command, result; }
    void cancel() override {}
    LoginItemStatus status() const override { return LoginItemStatus::NotRegistered; }
    std::optional<std::string> registerItem() override { return calls += "login ", std::nullopt; }
    std::optional<std::string> unregisterItem() override { return calls += "no-login ", std::nullopt; }

    std::string calls;
    PrivilegedResult result; ///< of every command
    UpdaterControllerFactory createUpdater = [this] { return std::make_unique<Updater>(calls); };
};

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
    FakeSystem system;
    FakeTaskExecutor executor;
    std::optional<AppViewModel> model;
};

} // namespace ambertide
