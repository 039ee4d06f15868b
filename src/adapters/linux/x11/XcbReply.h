#pragma once

#include <cstdlib>
#include <memory>

namespace ambertide {

struct FreeReply
{
    void operator()(void *reply) const { std::free(reply); }
};

/// What xcb hands out to be freed: a reply, an event or an error. Null where the server answered with an error.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeReply>;

/// Takes over what an xcb function has returned.
template <typename Reply>
XcbReply<Reply> owned(Reply *reply)
{
    return XcbReply<Reply>(reply);
}

} // namespace ambertide
