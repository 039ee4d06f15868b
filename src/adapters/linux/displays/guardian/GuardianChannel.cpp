#include "adapters/linux/displays/guardian/GuardianChannel.h"

#include <sys/socket.h>

#include <cerrno>

namespace ambertide {

bool GuardianChannel::receive()
{
    for (;;) {
        GuardianMessage message = 0;
        const auto length = recv(m_descriptor, &message, sizeof message, 0);
        if (length == sizeof message) {
            m_told = message;
            return true;
        }
        if (length == 0 || (length < 0 && errno != EINTR && errno != EAGAIN))
            return false;
    }
}

bool GuardianChannel::awaitEnd()
{
    while (receive()) {
    }
    return m_told != 0;
}

} // namespace ambertide
