#pragma once

#include <QByteArray>

#include <sodium.h>

#include <array>
#include <span>
#include <string>

namespace ambertide {

/// A key pair made for one test.
class SigningKey
{
public:
    SigningKey()
    {
        if (sodium_init() < 0 || crypto_sign_keypair(m_public.data(), m_secret.data()) != 0)
            qFatal("libsodium makes no key");
    }

    std::string publicKey() const { return base64(m_public); }
    std::string sign(const QByteArray &bytes) const
    {
        std::array<unsigned char, crypto_sign_BYTES> signature{};
        crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char *>(bytes.data()),
                             static_cast<unsigned long long>(bytes.size()), m_secret.data());
        return base64(signature);
    }

private:
    static std::string base64(std::span<const unsigned char> bytes)
    {
        return QByteArray(reinterpret_cast<const char *>(bytes.data()), std::ssize(bytes)).toBase64().toStdString();
    }

    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> m_public{};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> m_secret{};
};

} // namespace ambertide
