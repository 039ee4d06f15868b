#pragma once

#include "ports/Calendar.h"

#include <QByteArray>

#include <optional>

namespace ambertide {

class SignatureVerifier;

/// What the last line of a feed says: when the bytes before its signature were signed, and until when they are valid.
/// The line is an XML comment, so the feed stays an appcast for readers that do not know it:
///
///     <!-- feed signed="2027-01-31T12:00:00Z" until="2027-05-01T12:00:00Z" ed25519="base64" -->
struct SignedFeed
{
    Date signedAt;
    Date validUntil;

    /// Nothing unless the bytes end with such a line, with two valid times and a signature that `verifier` accepts. Any
    /// thread.
    static std::optional<SignedFeed> read(const QByteArray &bytes, const SignatureVerifier &verifier);
};

} // namespace ambertide
