#pragma once

#include <sodium.h>

#include <array>
#include <span>
#include <stdexcept>
#include <string>

namespace ambertide {

/// A key pair made for one test.
class SigningKey
{
public:
    SigningKey()
    {
        if (sodium_init() < 0)
            throw std::runtime_error("libsodium does not start");
        crypto_sign_keypair(m_public.data(), m_secret.data());
    }

    std::string publicKey() const { return base64(m_public); }

    template <typename Bytes>
    std::string sign(const Bytes &bytes) const
    {
        std::array<unsigned char, crypto_sign_BYTES> signature{};
        const auto view = std::as_bytes(std::span(std::data(bytes), std::size(bytes)));
        crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char *>(view.data()),
                             view.size(), m_secret.data());
        return base64(signature);
    }

private:
    static std::string base64(std::span<const unsigned char> bytes)
    {
        std::string text(sodium_base64_ENCODED_LEN(bytes.size(), sodium_base64_VARIANT_ORIGINAL), '\0');
        sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), sodium_base64_VARIANT_ORIGINAL);
        text.pop_back();
        return text;
    }

    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> m_public{};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> m_secret{};
};

} // namespace ambertide
