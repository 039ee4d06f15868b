#include "signature/Base64.h"
#include "signature/SignatureVerifier.h"
#include "support/SigningKey.h"

#include <QTest>

using namespace ambertide;

class Signatures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyCanonicalBase64OfTheExactLengthIsRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isRead");
        const auto row = [](const char *name, const QByteArray &text, bool isRead) {
            QTest::newRow(name) << text << isRead;
        };
        row("two bytes", "YWI=", true);
        row("empty", "", false);
        row("one byte", "YQ==", false);
        row("three bytes", "YWJj", false);
        row("pad missing", "YWI", false);
        row("pad too many", "YWI==", false);
        row("stray bits", "YWJ=", false);
        row("space", "YW I=", false);
        row("line end", "YWI=\n", false);
        row("url alphabet", "_-8=", false);
        row("beyond ASCII", "\xcdWI=", false);
        row("zero byte", QByteArray("YW\0I=", 5), false);
    }
    void onlyCanonicalBase64OfTheExactLengthIsRead()
    {
        QFETCH(QByteArray, text);
        std::array<unsigned char, 2> bytes{};
        QTEST(decodeBase64(text.toStdString(), bytes), "isRead");
    }

    // RFC 8032, section 7.1, test 2.
    void theStandardsOwnExampleIsAccepted()
    {
        const auto publicKey = QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c");
        const auto signature = QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                                                   "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
        const auto verifier = SignatureVerifier::withPublicKey(publicKey.toBase64().toStdString());
        std::array<unsigned char, 1> message{0x72};
        QVERIFY(verifier->accepts(message, signature.toBase64().toStdString()));
        message[0] ^= 1;
        QVERIFY(!verifier->accepts(message, signature.toBase64().toStdString()));
    }

    void aPlaceholderIsNoKey()
    {
        QVERIFY(!SignatureVerifier::withPublicKey(""));
        QVERIFY(!SignatureVerifier::withPublicKey("YOUR_PUBLIC_KEY"));
        QVERIFY(!SignatureVerifier::withPublicKey(SigningKey().sign(std::string("64 bytes, not 32"))));
    }
};

QTEST_GUILESS_MAIN(Signatures)
#include "Signatures.moc"
