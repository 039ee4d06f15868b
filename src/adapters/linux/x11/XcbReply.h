#pragma once

#include "base/Release.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

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

/// The list of `count` items that begins at `first`, as far as it lies within the reply: servers may claim more than
/// they have sent.
template <typename Reply, typename Item>
std::span<const Item> listIn(const XcbReply<Reply> &reply, const Item *first, std::size_t count)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(first);
    const auto end = reinterpret_cast<std::uintptr_t>(reply.get()) + 32 + std::size_t{4} * reply->length; // X protocol
    const std::size_t most = begin < end ? (end - begin) / sizeof(Item) : 0;
    return {first, std::min(count, most)};
}

} // namespace ambertide
