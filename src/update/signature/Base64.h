#pragma once

#include <span>
#include <string_view>

namespace ambertide {

/// Fills `bytes` from the base64 of RFC 4648, section 4. False, with `bytes` in no particular state, unless the text is
/// the one canonical form of exactly that many bytes: padded, no white space, no stray bits. Any thread.
bool decodeBase64(std::string_view text, std::span<unsigned char> bytes);

} // namespace ambertide
