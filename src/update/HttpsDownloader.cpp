#include "update/HttpsDownloader.h"

#include <QHostAddress>
#include <QIODevice>
#include <QNetworkReply>

#include <utility>

namespace ambertide {

namespace {

constexpr int mostRedirects = 5;
constexpr qint64 pieceBytes = 64 * 1024;

bool isLoopback(const QString &host) { return QHostAddress(host).isLoopback(); }

bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// Every attribute that would let the network layer act on its own is off.
QNetworkRequest plainRequest(const QUrl &location)
{
    QNetworkRequest request(location);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    // A compressed answer could unpack to far more than what came; setting the header also turns unpacking off.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setRawHeader("User-Agent", "Ambertide");
    return request;
}

} // namespace

HttpsDownloader::HttpsDownloader(TransportSecurity security, QObject *parent)
    : QObject(parent), m_security(security), m_network(this)
{
    m_patience.setSingleShot(true);
    m_total.setSingleShot(true);
    const auto timeOut = [this] { fail(UpdateFailure::Kind::TimedOut, QStringLiteral("the server is too slow")); };
    connect(&m_patience, &QTimer::timeout, this, timeOut);
    connect(&m_total, &QTimer::timeout, this, timeOut);
}

HttpsDownloader::~HttpsDownloader() { cancel(); }

void HttpsDownloader::start(const QUrl &location, QIODevice &sink, const DownloadLimits &limits)
{
    cancel();
    m_sink = &sink;
    m_limits = limits;
    m_received = 0;
    m_redirects = 0;
    m_total.start(limits.total);
    m_patience.start(limits.connect);
    QMetaObject::invokeMethod(
        this,
        [this, location, run = ++m_run] {
            if (run == m_run)
                request(location);
        },
        Qt::QueuedConnection);
}

void HttpsDownloader::cancel()
{
    ++m_run;
    m_patience.stop();
    m_total.stop();
    dropReply();
}

bool HttpsDownloader::isAllowed(const QUrl &location) const
{
    if (!location.isValid() || location.host().isEmpty() || !location.userInfo().isEmpty())
        return false;
    return location.scheme() == QLatin1String("https") ||
           (m_security == TransportSecurity::HttpsOrLoopback && location.scheme() == QLatin1String("http") &&
            isLoopback(location.host()));
}

void HttpsDownloader::request(const QUrl &location)
{
    if (!isAllowed(location))
        return fail(UpdateFailure::Kind::NotSecure, location.toDisplayString().left(200));
    m_hasHead = false;
    m_expected = 0;
    m_patience.start(m_limits.connect);
    m_reply = m_network.get(plainRequest(location));
    m_reply->setReadBufferSize(pieceBytes);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HttpsDownloader::readHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpsDownloader::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &HttpsDownloader::end);
}

void HttpsDownloader::readHead()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (m_hasHead || status == 0)
        return;
    m_hasHead = true;
    if (isRedirect(status))
        return followRedirect(status);
    if (status != 200)
        return fail(UpdateFailure::Kind::ServerError, QStringLiteral("HTTP status %1").arg(status));
    m_expected = m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    if (m_expected > m_limits.mostBytes)
        return fail(UpdateFailure::Kind::TooLarge, QStringLiteral("%1 bytes announced").arg(m_expected));
    if (m_limits.exactBytes && m_expected > 0 && m_expected != *m_limits.exactBytes)
        return fail(UpdateFailure::Kind::WrongLength,
                    QStringLiteral("%1 bytes instead of %2").arg(m_expected).arg(*m_limits.exactBytes));
    m_patience.start(m_limits.idle);
}

void HttpsDownloader::followRedirect(int status)
{
    const auto target = m_reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isEmpty() || ++m_redirects > mostRedirects)
        return fail(UpdateFailure::Kind::ServerError, QStringLiteral("HTTP status %1 leads nowhere").arg(status));
    const QUrl location = m_reply->url().resolved(target);
    dropReply();
    request(location);
}

void HttpsDownloader::readBody()
{
    readHead();
    while (m_reply && m_reply->bytesAvailable() > 0) {
        const QByteArray piece = m_reply->read(pieceBytes);
        m_received += piece.size();
        if (m_received > m_limits.mostBytes)
            return fail(UpdateFailure::Kind::TooLarge, QStringLiteral("more than %1 bytes").arg(m_limits.mostBytes));
        if (m_limits.exactBytes && m_received > *m_limits.exactBytes)
            return fail(UpdateFailure::Kind::WrongLength,
                        QStringLiteral("more than the %1 bytes announced").arg(*m_limits.exactBytes));
        if (m_sink->write(piece) != piece.size())
            return fail(UpdateFailure::Kind::CannotStore, m_sink->errorString());
        m_patience.start(m_limits.idle);
        Q_EMIT progressed(m_received, m_limits.exactBytes.value_or(m_expected));
    }
}

void HttpsDownloader::end()
{
    readBody();
    if (!m_reply)
        return;
    if (m_reply->error() != QNetworkReply::NoError)
        return fail(UpdateFailure::Kind::Unreachable, m_reply->errorString());
    const qint64 announced = m_limits.exactBytes.value_or(m_expected);
    if (announced > 0 && m_received != announced)
        return fail(UpdateFailure::Kind::WrongLength,
                    QStringLiteral("%1 bytes instead of %2").arg(m_received).arg(announced));
    cancel();
    Q_EMIT finished();
}

/// Leaves the reply to the event loop, where its end closes the connection: this may run inside one of its signals.
void HttpsDownloader::dropReply()
{
    const QPointer reply = std::exchange(m_reply, nullptr);
    if (!reply)
        return;
    reply->disconnect(this);
    reply->deleteLater();
}

void HttpsDownloader::fail(UpdateFailure::Kind kind, const QString &detail)
{
    cancel();
    Q_EMIT failed({kind, detail.simplified()});
}

} // namespace ambertide
