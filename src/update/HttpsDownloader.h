#pragma once

#include "update/UpdateFailure.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <optional>

class QIODevice;
class QNetworkReply;

namespace ambertide {

enum class TransportSecurity {
    HttpsOnly,
    HttpsOrLoopback, ///< plain HTTP too, to this very machine; for tests
};

/// How much and how long a server may send.
struct DownloadLimits
{
    qint64 mostBytes = 0;
    std::optional<qint64> exactBytes = {};                        ///< when another source announced the length
    std::chrono::milliseconds connect = std::chrono::seconds(20); ///< to the head of the answer, at each hop
    std::chrono::milliseconds idle = std::chrono::seconds(30);    ///< between two pieces of the body
    std::chrono::milliseconds total = std::chrono::minutes(2);
};

/// Fetches one file at a time over HTTPS, each redirect checked before it is followed.
///
/// Main thread. Holds no more than a few pieces of the body in memory. Ends with exactly one of finished() and
/// failed(), never from within start(); with neither after cancel().
class HttpsDownloader final : public QObject
{
    Q_OBJECT

public:
    explicit HttpsDownloader(TransportSecurity security, QObject *parent = nullptr);
    ~HttpsDownloader() override;

    /// Ends what is under way. `sink` is open for writing and outlives the download; after a failure it may hold a
    /// part.
    void start(const QUrl &location, QIODevice &sink, const DownloadLimits &limits);
    void cancel();

Q_SIGNALS:
    /// `expected` is 0 when the server does not tell.
    void progressed(qint64 received, qint64 expected);
    void finished();
    void failed(const ambertide::UpdateFailure &failure);

private:
    bool isAllowed(const QUrl &location) const;
    void request(const QUrl &location);
    void readHead();
    void followRedirect(int status);
    void readBody();
    void end();
    void dropReply();
    void fail(UpdateFailure::Kind kind, const QString &detail);

    TransportSecurity m_security;
    QNetworkAccessManager m_network;
    QPointer<QNetworkReply> m_reply;
    QIODevice *m_sink = nullptr;
    DownloadLimits m_limits;
    QTimer m_patience; ///< runs out when the server says nothing for too long
    QTimer m_total;
    qint64 m_received = 0;
    qint64 m_expected = 0;
    int m_redirects = 0;
    int m_run = 0; ///< tells a start that was cancelled before the event loop came to it
    bool m_hasHead = false;
};

} // namespace ambertide
