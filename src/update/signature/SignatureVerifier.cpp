#include "update/signature/SignatureVerifier.h"

#include "update/signature/Base64.h"

#include <sodium.h>

namespace ambertide {

static_assert(crypto_sign_PUBLICKEYBYTES == 32 && crypto_sign_BYTES == 64);

std::optional<SignatureVerifier> SignatureVerifier::withPublicKey(std::string_view base64)
{
    SignatureVerifier verifier;
    if (sodium_init() < 0 || !decodeBase64(base64, verifier.m_publicKey))
        return std::nullopt;
    return verifier;
}

bool SignatureVerifier::accepts(std::span<const unsigned char> bytes, std::string_view signature) const
{
    std::array<unsigned char, crypto_sign_BYTES> decoded{};
    return decodeBase64(signature, decoded) &&
           crypto_sign_verify_detached(decoded.data(), bytes.data(), bytes.size(), m_publicKey.data()) == 0;
}

} // namespace ambertide
