#include "app/Updates.h"

namespace ambertide {

UpdaterControllerFactory makeUpdates(const SystemPorts &, std::function<void()>)
{
    return [] { return nullptr; };
}

} // namespace ambertide
