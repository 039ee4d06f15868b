#include "signature/Base64.h"
#include "signature/SignatureVerifier.h"
#include "support/SigningKey.h"

#include <QTest>

#include <string>
#include <vector>

using namespace ambertide;

namespace {

std::span<const unsigned char> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const unsigned char *>(text.data()), text.size()};
}

} // namespace

class Signatures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyCanonicalBase64OfTheExactLengthIsRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("isRead");
        QTest::newRow("one pad") << QByteArray("YWI=") << 2 << true;
        QTest::newRow("two pads") << QByteArray("YQ==") << 1 << true;
        QTest::newRow("none") << QByteArray("YWJj") << 3 << true;
        QTest::newRow("empty") << QByteArray() << 1 << false;
        QTest::newRow("too short") << QByteArray("YWI=") << 3 << false;
        QTest::newRow("too long") << QByteArray("YWJj") << 2 << false;
        QTest::newRow("pad missing") << QByteArray("YWI") << 2 << false;
        QTest::newRow("pad too many") << QByteArray("YWI==") << 2 << false;
        QTest::newRow("stray bits") << QByteArray("YWJ=") << 2 << false;
        QTest::newRow("space") << QByteArray("YW I=") << 2 << false;
        QTest::newRow("line end") << QByteArray("YWI=\n") << 2 << false;
        QTest::newRow("url alphabet") << QByteArray("_-8=") << 2 << false;
        QTest::newRow("zero byte") << QByteArray("YW\0I=", 5) << 2 << false;
    }
    void onlyCanonicalBase64OfTheExactLengthIsRead()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, length);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(length));
        QTEST(decodeBase64({text.data(), static_cast<std::size_t>(text.size())}, bytes), "isRead");
    }

    // RFC 8032, section 7.1, test 2.
    void theStandardsOwnExampleIsAccepted()
    {
        const auto publicKey = QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c");
        const auto signature = QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                                                   "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
        const auto verifier = SignatureVerifier::withPublicKey(publicKey.toBase64().toStdString());
        QVERIFY(verifier);
        QVERIFY(verifier->accepts(bytesOf("\x72"), signature.toBase64().toStdString()));
        QVERIFY(!verifier->accepts(bytesOf("\x73"), signature.toBase64().toStdString()));
    }

    void whatIsNotSignedByTheKeyIsRefused()
    {
        const SigningKey key;
        const SigningKey otherKey;
        const auto verifier = SignatureVerifier::withPublicKey(key.publicKey());
        QVERIFY(verifier);
        std::string package(5000, 'p');
        const std::string signature = key.sign(package);
        QVERIFY(verifier->accepts(bytesOf(package), signature));
        QVERIFY(!verifier->accepts(bytesOf(package), otherKey.sign(package)));
        QVERIFY(!verifier->accepts(bytesOf(package), ""));
        QVERIFY(!verifier->accepts(bytesOf(package), signature + "\n"));
        QVERIFY(!verifier->accepts(bytesOf(package.substr(1)), signature));
        package.back() = static_cast<char>(package.back() ^ 1);
        QVERIFY(!verifier->accepts(bytesOf(package), signature));
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
