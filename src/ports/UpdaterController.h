#pragma once

#include <functional>
#include <memory>

namespace ambertide {

/// Port: the system's standard updater controller. It looks for new versions by itself at an interval while it is told
/// to, and at once on request, and shows its own windows for the result. Main thread. Several may exist at a time; they
/// share the time of the last check, so that an interval holds one automatic check.
class UpdaterController
{
public:
    virtual ~UpdaterController() = default;

    /// Off from the start. An automatic check that fails or finds nothing is silent.
    virtual void setAutomaticallyChecksForUpdates(bool isOn) = 0;
    /// In seconds; one below an hour counts as an hour.
    virtual void setUpdateCheckInterval(double seconds) = 0;
    /// A check that a person asked for: it shows windows from the start. One that is under way comes to the front.
    virtual void checkForUpdates() = 0;
    /// False where a check can only fail, because this build names no usable feed or key. checkForUpdates() then says
    /// so.
    virtual bool canCheckForUpdates() const = 0;
};

/// Creates a controller that has started; none in a build without an updater.
using UpdaterControllerFactory = std::function<std::unique_ptr<UpdaterController>()>;

} // namespace ambertide
