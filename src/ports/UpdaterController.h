#pragma once

#include <functional>
#include <memory>

namespace ambertide {

/// Port: the system's standard updater controller. It looks for new versions at an interval while that is switched on,
/// and at any time on request, and shows the result in windows of its own. Main thread. Several may exist at a time;
/// they share the time of the last check, so that there is one automatic check in each interval.
class UpdaterController
{
public:
    virtual ~UpdaterController() = default;

    /// Off from the start. An automatic check that fails or finds nothing is silent.
    virtual void setAutomaticallyChecksForUpdates(bool isOn) = 0;
    /// In seconds; one below an hour counts as an hour.
    virtual void setUpdateCheckInterval(double seconds) = 0;
    /// Checks because the user asked for it, and so shows windows from the start; those of a check that is under way
    /// come to the front.
    virtual void checkForUpdates() = 0;
    /// False where a check can only fail, because this build names no usable feed or key. checkForUpdates() then says
    /// so.
    virtual bool canCheckForUpdates() const = 0;
};

/// Creates a controller and starts it. Returns null in a build without an updater.
using UpdaterControllerFactory = std::function<std::unique_ptr<UpdaterController>()>;

} // namespace ambertide
