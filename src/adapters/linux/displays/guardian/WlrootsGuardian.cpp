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

/// For each answer of a compositor that is busy.
constexpr auto patience = 10s;
/// Between the end of the channel and that of the application, which may close one file long before another. One that
/// lives on has closed its connection to the compositor before.
constexpr int millisecondsToEnd = 200;

/// The process at the other end of a channel, to be closed; becomes readable when that has ended.
int processBehind(int channel)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(channel, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return -1;
    return static_cast<int>(syscall(SYS_pidfd_open, peer.pid, 0)); // glibc 2.36 declares its own for C alone
}

} // namespace

bool guardWlroots(const char *where, int channel)
{
    const int application = processBehind(channel);
    const bool wasTinting = GuardianChannel(channel).awaitEnd();
    if (wasTinting) {
        // Hyprland that is asked for a control while another program has it refuses it to everybody from then on. The
        // connection that has just been closed comes before ours in its queue.
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
