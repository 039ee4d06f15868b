#include "adapters/linux/displays/guardian/MutterGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"

#include <unistd.h>

#include <string>

namespace ambertide {

bool guardMutter(const char *restorer, int descriptor)
{
    GuardianChannel channel(descriptor);
    if (access(restorer, X_OK) != 0)
        return false;
    if (!channel.awaitEnd())
        return true;
    execl(restorer, restorer, std::to_string(channel.told()).c_str(), nullptr);
    return false;
}

} // namespace ambertide
