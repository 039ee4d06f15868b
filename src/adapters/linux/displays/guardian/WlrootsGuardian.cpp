#include "adapters/linux/displays/guardian/WlrootsGuardian.h"

#include "adapters/linux/displays/guardian/GuardianChannel.h"
#include "adapters/linux/displays/wlroots/WlrootsCompositor.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ambertide {

using namespace std::chrono_literals;

namespace {

/// How long to wait for each answer of a compositor, which may be busy.
constexpr auto patience = 10s;
/// How long to wait for the application to end once its end of the channel is closed, since a dying process may close
/// one file long before another. An application that lives on has closed its connection to the compositor before.
constexpr int millisecondsToEnd = 200;

/// A descriptor of the process at the other end of the channel, which becomes readable when that has ended. To be
/// closed by the caller; negative when there is no such process.
int processBehind(int channel)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(channel, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return -1;
    return static_cast<int>(syscall(SYS_pidfd_open, peer.pid, 0)); // glibc 2.36 declares pidfd_open() for C only
}

} // namespace

bool guardWlroots(const char *where, int channel)
{
    const int application = processBehind(channel);
    const bool wasTinting = GuardianChannel(channel).awaitEnd();
    if (wasTinting) {
        // If Hyprland is asked for a control that another program still has, it refuses that control to everybody from
        // then on. Once the application has gone, Hyprland handles the end of its connection before any request on
        // ours.
        pollfd end{application, POLLIN, 0};
        poll(&end, 1, millisecondsToEnd);
    }
    close(application);
    if (!wasTinting)
        return true;
    WlrootsCompositor compositor(where);
    compositor.takeControls(patience);
    return compositor.restore(patience);
}

} // namespace ambertide
