#include "update/Appcast.h"

#include "Require.h"
#include "update/ReleaseNotes.h"
#include "update/UpdateChoice.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QString notes = ambertide::displayableText(ambertide::plainTextOfHtml(QString::fromUtf8(bytes)));
    require(notes.size() <= ambertide::longestReleaseNotes);

    QString problem;
    const auto appcast = ambertide::Appcast::read(bytes, problem);
    require(appcast.has_value() || !problem.isEmpty());
    if (!appcast)
        return 0;
    for (const auto &item : appcast->items)
        require(!item.version.isEmpty() && !item.displayVersion.isEmpty());
    const ambertide::RunningVersion running{QStringLiteral("5"), {}, QStringLiteral("6.1")};
    if (const auto item = ambertide::chooseUpdate(*appcast, running)) {
        require(item->operatingSystem == QLatin1String("linux"));
        require(!ambertide::isSkipped(*item, running.version, running));
    }
    return 0;
}
