#include "signature/Base64.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// The canonical form, by plain arithmetic.
std::string encoded(const std::vector<unsigned char> &bytes)
{
    static constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        unsigned group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (start + i < bytes.size() ? bytes[start + i] : 0u);
        for (std::size_t i = 0; i < 4; ++i)
            text += start + i <= bytes.size() ? alphabet[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

} // namespace

/// Whatever is read must be the one canonical text of what was read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const std::size_t length :
         {size / 4 * 3, size / 4 * 3 - 1, size / 4 * 3 - 2, std::size_t{32}, std::size_t{64}}) {
        if (length > size)
            continue;
        std::vector<unsigned char> bytes(length);
        if (ambertide::decodeBase64(text, bytes) && encoded(bytes) != text)
            std::abort();
    }
    return 0;
}
