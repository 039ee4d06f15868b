#include "adapters/linux/displays/shared/PollSet.h"

#include <sys/epoll.h>
#include <unistd.h>

namespace ambertide {

PollSet::PollSet() : m_descriptor(epoll_create1(EPOLL_CLOEXEC)) {}

PollSet::~PollSet() { close(m_descriptor); }

void PollSet::add(int descriptor) const
{
    epoll_event event{};
    event.events = EPOLLIN;
    epoll_ctl(m_descriptor, EPOLL_CTL_ADD, descriptor, &event);
}

} // namespace ambertide
