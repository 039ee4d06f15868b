#include "update/SignedFeed.h"

#include "update/signature/SignatureVerifier.h"

#include <QDateTime>
#include <QRegularExpression>

#include <algorithm>

namespace ambertide {

namespace {

constexpr qsizetype longestLine = 300;
constexpr qint64 referenceDate = 978307200; // 2001-01-01 UTC, in seconds since 1970

/// Nothing unless it is a time in UTC to the second.
std::optional<Date> dateOf(const QString &text)
{
    const auto time = QDateTime::fromString(text, Qt::ISODate);
    if (!time.isValid() || time.toUTC().toString(Qt::ISODate) != text)
        return std::nullopt;
    return Date{static_cast<double>(time.toSecsSinceEpoch() - referenceDate)};
}

} // namespace

std::optional<SignedFeed> SignedFeed::read(const QByteArray &bytes, const SignatureVerifier &verifier)
{
    static const QRegularExpression line(
        QStringLiteral(R"-(<!-- feed signed="([^"]*)" until="([^"]*)"( ed25519="([^"]*)" -->\n?)\z)-"));
    const auto match = line.match(QString::fromLatin1(bytes.last(std::min(bytes.size(), longestLine))));
    const auto signedAt = dateOf(match.captured(1));
    const auto validUntil = dateOf(match.captured(2));
    const auto *start = reinterpret_cast<const unsigned char *>(bytes.constData());
    const auto size = static_cast<std::size_t>(bytes.size() - match.capturedLength(3));
    if (!signedAt || !validUntil || !verifier.accepts({start, size}, match.captured(4).toStdString()))
        return std::nullopt;
    return SignedFeed{*signedAt, *validUntil};
}

} // namespace ambertide
