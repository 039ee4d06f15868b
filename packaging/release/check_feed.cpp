// check-feed FEED PACKAGE: checks that every copy of an older release would accept this feed and install this package,
// with the same code and the same key as in the application.

#include "update/Appcast.h"
#include "update/SignedFeed.h"
#include "update/UpdateChoice.h"
#include "update/signature/SignatureVerifier.h"

#include <QFile>

#include <cstdio>
#include <stdexcept>

using namespace ambertide;

namespace {

QByteArray contents(const char *path)
{
    QFile file(QString::fromLocal8Bit(path));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(std::string(path).append(": ").append(file.errorString().toStdString()));
    return file.readAll();
}

void expect(bool holds, const char *what)
{
    if (!holds)
        throw std::runtime_error(what);
}

void check(const QByteArray &feed, const QByteArray &package)
{
    const auto verifier = SignatureVerifier::withPublicKeys(AMBERTIDE_FEED_PUBLIC_KEY);
    expect(verifier.has_value(), "this build has no usable public key");
    expect(SignedFeed::read(feed, *verifier).has_value(), "the feed is not signed with the key of this build");
    QString problem;
    const auto appcast = Appcast::read(feed, problem);
    if (!appcast)
        throw std::runtime_error(problem.toStdString());
    const auto item = chooseUpdate(*appcast, {QStringLiteral("0"), QStringLiteral("0")});
    expect(item.has_value(), "the feed has no release for this system");
    expect(item->version == QLatin1String(AMBERTIDE_BUNDLE_VERSION) &&
               item->displayVersion == QLatin1String(AMBERTIDE_VERSION),
           "the feed names another version than this build's");
    expect(item->packageLink.scheme() == QLatin1String("https"), "the package's address is not HTTPS");
    const auto *bytes = reinterpret_cast<const unsigned char *>(package.constData());
    expect(verifier->accepts({bytes, static_cast<std::size_t>(package.size())}, item->signature.toStdString()),
           "the package is not what the feed's signature is for");
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 3) {
        std::fputs("usage: check-feed FEED PACKAGE\n", stderr);
        return 2;
    }
    try {
        check(contents(argv[1]), contents(argv[2]));
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "check-feed: %s\n", failure.what());
        return 1;
    }
    std::puts("The feed announces " AMBERTIDE_VERSION " (" AMBERTIDE_BUNDLE_VERSION
              "), and feed and package are signed.");
    return 0;
}
