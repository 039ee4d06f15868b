#include "update/HttpsDownloader.h"

#include <QHostAddress>
#include <QIODevice>

#include <utility>

namespace ambertide {

namespace {

using Kind = UpdateFailure::Kind;

constexpr int mostRedirects = 5;
constexpr qint64 pieceBytes = 64 * 1024;

int statusOf(const QNetworkReply &reply) { return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }

Kind kindOf(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::InsecureRedirectError:
        return Kind::NotSecure;
    case QNetworkReply::OperationCanceledError: // by the transfer timeout, since cancel() disconnects from the reply
        return Kind::TimedOut;
    default: // a redirect that leads nowhere has a status, too
        return statusOf(reply) >= 300 ? Kind::ServerError : Kind::Unreachable;
    }
}

} // namespace

HttpsDownloader::HttpsDownloader(TransportSecurity security) : m_security(security)
{
    m_total.setSingleShot(true);
    connect(&m_total, &QTimer::timeout, this,
            [this] { fail(Kind::TimedOut, QStringLiteral("the server is too slow")); });
}

HttpsDownloader::~HttpsDownloader() { cancel(); }

void HttpsDownloader::start(const QUrl &location, QIODevice &sink, const DownloadLimits &limits)
{
    cancel();
    m_sink = &sink;
    m_limits = limits;
    m_received = 0;
    m_expected = 0;
    if (!isAllowed(location))
        return fail(Kind::NotSecure, location.toDisplayString().left(200));

    QNetworkRequest request(location);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    request.setTransferTimeout(static_cast<int>(limits.idle.count()));
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // HTTP/1.1 is enough for one file
    // A compressed answer could unpack to far more than was sent. Setting this header also makes Qt unpack nothing.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setRawHeader("User-Agent", "Ambertide");
    m_total.start(limits.total);
    m_reply = m_network.get(request);
    m_reply->setReadBufferSize(pieceBytes);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpsDownloader::readHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpsDownloader::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &HttpsDownloader::end);
}

/// Has the event loop delete the reply, which closes the connection: this may run inside one of the reply's signals.
void HttpsDownloader::cancel()
{
    m_total.stop();
    const QPointer reply = std::exchange(m_reply, nullptr);
    if (!reply)
        return;
    reply->disconnect(this);
    reply->deleteLater();
}

bool HttpsDownloader::isAllowed(const QUrl &location) const
{
    if (location.scheme() == QLatin1String("https"))
        return !location.host().isEmpty();
    return m_security == TransportSecurity::HttpsOrLoopback && location.scheme() == QLatin1String("http") &&
           QHostAddress(location.host()).isLoopback();
}

void HttpsDownloader::readHead()
{
    const int status = statusOf(*m_reply);
    if (status >= 400)
        return fail(Kind::ServerError, QStringLiteral("HTTP status %1").arg(status));
    m_expected = m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    if (m_expected > m_limits.mostBytes)
        fail(Kind::TooLarge, QStringLiteral("%1 bytes announced").arg(m_expected));
}

void HttpsDownloader::readBody()
{
    while (m_reply && m_reply->bytesAvailable() > 0) {
        const QByteArray piece = m_reply->read(pieceBytes);
        m_received += piece.size();
        if (m_received > m_limits.mostBytes)
            return fail(Kind::TooLarge, QStringLiteral("more than %1 bytes").arg(m_limits.mostBytes));
        if (m_sink->write(piece) != piece.size())
            return fail(Kind::CannotStore, m_sink->errorString());
        Q_EMIT progressed(m_received, m_expected);
    }
}

void HttpsDownloader::end()
{
    readBody();
    if (!m_reply)
        return;
    if (m_reply->error() != QNetworkReply::NoError)
        return fail(kindOf(*m_reply), m_reply->errorString());
    if (const int status = statusOf(*m_reply); status != 200)
        return fail(Kind::ServerError, QStringLiteral("HTTP status %1").arg(status));
    cancel();
    Q_EMIT finished();
}

void HttpsDownloader::fail(UpdateFailure::Kind kind, const QString &detail)
{
    cancel();
    Q_EMIT failed({kind, detail.simplified()});
}

} // namespace ambertide
