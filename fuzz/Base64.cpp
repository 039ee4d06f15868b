#include "update/signature/Base64.h"

#include "Require.h"

#include <QByteArray>

/// Whatever is read must be the one canonical text of what was read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const std::size_t length : {size * 3 / 4, size * 3 / 4 - 1, size * 3 / 4 - 2}) {
        if (length > size)
            continue;
        QByteArray bytes(static_cast<qsizetype>(length), '\0');
        const bool isRead = ambertide::decodeBase64(text, {reinterpret_cast<unsigned char *>(bytes.data()), length});
        require(!isRead || bytes.toBase64().toStdString() == text);
    }
    return 0;
}
