#include "update/signature/SignatureVerifier.h"

#include "update/signature/Base64.h"

#include <sodium.h>

#include <algorithm>
#include <utility>

namespace ambertide {

static_assert(crypto_sign_PUBLICKEYBYTES == 32 && crypto_sign_BYTES == 64);

std::optional<SignatureVerifier> SignatureVerifier::withPublicKeys(std::string_view base64)
{
    const auto space = base64.find(' ');
    std::vector<std::string_view> texts = {base64.substr(0, space)};
    if (space != std::string_view::npos)
        texts.push_back(base64.substr(space + 1));
    SignatureVerifier verifier;
    for (const auto text : texts) {
        if (!decodeBase64(text, verifier.m_publicKeys.emplace_back()))
            return std::nullopt;
    }
    return sodium_init() < 0 ? std::nullopt : std::optional(std::move(verifier));
}

bool SignatureVerifier::accepts(std::span<const unsigned char> bytes, std::string_view signature) const
{
    std::array<unsigned char, crypto_sign_BYTES> decoded{};
    return decodeBase64(signature, decoded) && std::ranges::any_of(m_publicKeys, [&](const auto &key) {
               return crypto_sign_verify_detached(decoded.data(), bytes.data(), bytes.size(), key.data()) == 0;
           });
}

} // namespace ambertide
