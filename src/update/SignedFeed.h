#pragma once

#include "ports/Calendar.h"

#include <QByteArray>

#include <optional>

namespace ambertide {

class SignatureVerifier;

/// What the last line of a feed vouches for: that the bytes before its signature are those of a holder of a key, and
/// from when to when. The line is an XML comment, so that the feed stays an appcast for whoever does not know of it:
///
///     <!-- feed signed="2027-01-31T12:00:00Z" until="2027-05-01T12:00:00Z" ed25519="base64" -->
struct SignedFeed
{
    Date signedAt;
    Date validUntil;

    /// Nothing unless the bytes end with such a line, of which both times and the signature hold. Any thread.
    static std::optional<SignedFeed> read(const QByteArray &bytes, const SignatureVerifier &verifier);
};

} // namespace ambertide
