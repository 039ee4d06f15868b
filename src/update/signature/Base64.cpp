#include "update/signature/Base64.h"

#include <sodium.h>

#include <algorithm>

namespace ambertide {

bool decodeBase64(std::string_view text, std::span<unsigned char> bytes)
{
    if (bytes.empty())
        return text.empty(); // such a span may have no address to give to the decoder
    // libsodium 1.0.18 accepts some bytes beyond ASCII as digits.
    if (std::ranges::any_of(text, [](char each) { return static_cast<unsigned char>(each) >= 0x80; }))
        return false;
    std::size_t length = 0;
    return sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr, &length, nullptr,
                             sodium_base64_VARIANT_ORIGINAL) == 0 &&
           length == bytes.size();
}

} // namespace ambertide
