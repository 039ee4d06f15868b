#pragma once

#include <QByteArray>

#include <sodium.h>

#include <string>

namespace ambertide {

/// A key pair made for one test.
class SigningKey
{
public:
    SigningKey()
    {
        if (sodium_init() < 0 || crypto_sign_keypair(bytes(m_public), bytes(m_secret)) != 0)
            qFatal("libsodium makes no key");
    }

    std::string publicKey() const { return m_public.toBase64().toStdString(); }
    std::string sign(QByteArray content)
    {
        QByteArray signature(crypto_sign_BYTES, '\0');
        const auto size = static_cast<unsigned long long>(content.size());
        crypto_sign_detached(bytes(signature), nullptr, bytes(content), size, bytes(m_secret));
        return signature.toBase64().toStdString();
    }

private:
    static unsigned char *bytes(QByteArray &array) { return reinterpret_cast<unsigned char *>(array.data()); }

    QByteArray m_public{crypto_sign_PUBLICKEYBYTES, '\0'};
    QByteArray m_secret{crypto_sign_SECRETKEYBYTES, '\0'};
};

} // namespace ambertide
