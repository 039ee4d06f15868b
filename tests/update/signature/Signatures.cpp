#include "update/signature/SignatureVerifier.h"

#include <QTest>

class Signatures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheSignedBytesAreAccepted() // RFC 8032, section 7.1, test 2
    {
        const auto publicKey = QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c");
        const auto signature = QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                                                   "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
        const auto verifier = ambertide::SignatureVerifier::withPublicKeys(publicKey.toBase64().toStdString());
        for (const auto &message : std::array<unsigned char, 2>{0x72, 0x73})
            QCOMPARE(verifier->accepts({&message, 1}, signature.toBase64().toStdString()), message == 0x72);
    }
};

QTEST_GUILESS_MAIN(Signatures)
#include "Signatures.moc"
