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
    configuration.installedVersion = [&bundle] {
        return QString::fromStdString(bundle.presentInformation("CFBundleVersion").value_or(std::string()));
    };
    return configuration;
}

bool UpdateConfiguration::isComplete() const
{
    return feed.isValid() && !feed.isEmpty() && verifier && !running.version.isEmpty();
}

} // namespace ambertide
