#include "update/Appcast.h"

#include "Require.h"
#include "update/ForeignText.h"
#include "update/SignedFeed.h"
#include "update/UpdateChoice.h"
#include "update/signature/SignatureVerifier.h"

/// Whatever is read has a version, only a newer one is chosen, and versions have an order. Nothing is signed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    require(ambertide::displayableText(QString::fromUtf8(bytes)).size() <= ambertide::longestForeignText);

    static const auto verifier =
        ambertide::SignatureVerifier::withPublicKeys("PUAXw+hDiVqStwqnTRt+vJyYLM8uxJaMwM1V8Sr0Zgw=").value();
    require(!ambertide::SignedFeed::read(bytes, verifier));

    QString problem;
    const auto appcast = ambertide::Appcast::read(bytes, problem);
    require(appcast.has_value() || !problem.isEmpty());
    if (!appcast)
        return 0;
    const ambertide::RunningVersion running{QStringLiteral("5"), {}};
    const auto chosen = ambertide::chooseUpdate(*appcast, running);
    require(!chosen || !ambertide::isSkipped(*chosen, running.version, running));
    for (const auto &item : appcast->items) {
        require(!item.version.isEmpty() && !item.displayVersion.isEmpty());
        const auto order = ambertide::compareVersions(item.version, running.version);
        require((order < 0) == (ambertide::compareVersions(running.version, item.version) > 0));
    }
    return 0;
}
