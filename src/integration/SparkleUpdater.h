#pragma once

#include "base/Observers.h"
#include "ports/UpdaterController.h"
#include "ports/UserDefaults.h"

#include <functional>
#include <memory>
#include <utility>

namespace ambertide {

/// Checks for updates as the user chose: a switch for automatic checks, once a day, and a check on demand. Main thread.
/// Several may exist; each reads the choice when it is created.
class SparkleUpdater
{
public:
    /// `defaults` must outlive it.
    SparkleUpdater(const UpdaterControllerFactory &createController, UserDefaults &defaults);

    /// Whether the build has an updater at all. Without one nothing below has an effect.
    bool isBuiltIn() const { return m_updaterController != nullptr; }
    /// True as soon as the object exists, even where a check can only fail: a manual one then explains what is wrong.
    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    /// False where a check can only fail, because this build has no updater or names no usable feed or key.
    bool hasFeed() const { return isBuiltIn() && m_updaterController->canCheckForUpdates(); }
    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    void setAutomaticallyChecksForUpdates(bool isOn);

    void checkForUpdates();

    /// `willChange` is called before automaticallyChecksForUpdates() changes.
    Observation observe(std::function<void()> willChange) { return m_observers.observe(std::move(willChange)); }

private:
    const std::unique_ptr<UpdaterController> m_updaterController;
    UserDefaults &m_defaults;
    bool m_canCheckForUpdates = false;
    bool m_automaticallyChecksForUpdates = false;
    Observers<> m_observers;
};

} // namespace ambertide
