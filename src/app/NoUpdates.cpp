#include "app/Updates.h"

#include <memory>

namespace ambertide {

namespace {

class NoUpdates final : public UpdaterController
{
public:
    void setAutomaticallyChecksForUpdates(bool) override {}
    void setUpdateCheckInterval(double) override {}
    void checkForUpdates() override {}
    bool canCheckForUpdates() const override { return false; }
};

} // namespace

UpdaterControllerFactory makeUpdates(const SystemPorts &, std::function<void()>)
{
    return [] { return std::make_unique<NoUpdates>(); };
}

} // namespace ambertide
