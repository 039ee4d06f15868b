#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace ambertide {

/// Tells whether bytes are signed with one of the keys for updates: Ed25519 (RFC 8032) over all of them. Any thread.
class SignatureVerifier
{
public:
    /// For one key, or two separated by a space, so that keys can be changed. Nothing unless each is the base64 of
    /// exactly 32 bytes.
    static std::optional<SignatureVerifier> withPublicKeys(std::string_view base64);

    /// `signature` is the base64 of exactly 64 bytes; any other text is a wrong signature.
    bool accepts(std::span<const unsigned char> bytes, std::string_view signature) const;

private:
    SignatureVerifier() = default;

    std::vector<std::array<unsigned char, 32>> m_publicKeys;
};

} // namespace ambertide
