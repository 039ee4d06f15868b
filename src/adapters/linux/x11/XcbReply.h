#pragma once

#include "base/Release.h"

#include <cstdlib>
#include <memory>

namespace ambertide {

/// Owns what xcb has allocated: a reply, an event or an error. A reply is null where the server answered with an error.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, Release<&std::free>>;

/// Takes over what an xcb function has returned.
template <typename Reply>
XcbReply<Reply> owned(Reply *reply)
{
    return XcbReply<Reply>(reply);
}

} // namespace ambertide
