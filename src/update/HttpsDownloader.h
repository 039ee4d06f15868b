#pragma once

#include "update/UpdateFailure.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>

class QIODevice;

namespace ambertide {

enum class TransportSecurity {
    HttpsOnly,
    HttpsOrLoopback, ///< plain HTTP too, to this very machine; for tests
};

/// How much and how long a server may send.
struct DownloadLimits
{
    qint64 mostBytes = 0;
    std::chrono::milliseconds idle = std::chrono::seconds(30); ///< without a single byte, connecting included
    std::chrono::milliseconds total = std::chrono::minutes(2);
};

/// Fetches one file at a time over HTTPS. Follows a few redirects, to HTTPS only.
///
/// Main thread. Holds no more than a few pieces of the body in memory. Ends with exactly one of finished() and
/// failed(), which may come from within start(); with neither after cancel().
class HttpsDownloader final : public QObject
{
    Q_OBJECT

public:
    explicit HttpsDownloader(TransportSecurity security);
    ~HttpsDownloader() override;

    /// Cancels what is under way. `sink` must be open for writing and outlive the download; after a failure it may hold
    /// a part of the file.
    void start(const QUrl &location, QIODevice &sink, const DownloadLimits &limits);
    void cancel();

Q_SIGNALS:
    /// `expected` is 0 when the server does not announce the size.
    void progressed(qint64 received, qint64 expected);
    void finished();
    void failed(const ambertide::UpdateFailure &failure);

private:
    bool isAllowed(const QUrl &location) const;
    void readHead();
    void readBody();
    void end();
    void fail(UpdateFailure::Kind kind, const QString &detail);

    TransportSecurity m_security;
    QNetworkAccessManager m_network;
    QPointer<QNetworkReply> m_reply;
    QIODevice *m_sink = nullptr;
    DownloadLimits m_limits;
    QTimer m_total;
    qint64 m_received = 0;
    qint64 m_expected = 0; ///< 0 when unknown
};

} // namespace ambertide
