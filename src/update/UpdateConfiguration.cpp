#include "update/UpdateConfiguration.h"

namespace ambertide {

UpdateConfiguration UpdateConfiguration::fromBundle(const MainBundle &bundle)
{
    const auto text = [&](std::string_view key) {
        return QString::fromStdString(bundle.information(key).value_or(std::string()));
    };
    UpdateConfiguration configuration;
    configuration.feed = QUrl(text("SUFeedURL"), QUrl::StrictMode);
    configuration.verifier =
        SignatureVerifier::withPublicKeys(bundle.information("SUPublicEDKey").value_or(std::string()));
    configuration.running.version = text("CFBundleVersion");
    configuration.running.displayVersion = text("CFBundleShortVersionString");
    return configuration;
}

std::optional<QString> UpdateConfiguration::problem() const
{
    if (!feed.isValid() || feed.isEmpty())
        return QStringLiteral("there is no feed location");
    if (!verifier)
        return QStringLiteral("there is no public key to check updates with");
    if (running.version.isEmpty())
        return QStringLiteral("the running version is unknown");
    return std::nullopt;
}

} // namespace ambertide
