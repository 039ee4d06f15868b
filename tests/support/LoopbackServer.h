#pragma once

#include <QByteArray>
#include <QHash>
#include <QTcpServer>
#include <QUrl>

#include <memory>

namespace ambertide {

/// An HTTP server on a free port of this machine that answers as a test tells it to.
class LoopbackServer
{
public:
    struct Answer
    {
        QByteArray head = "HTTP/1.1 200 OK\r\n";
        QByteArray body = {};
        bool isEndless = false; ///< sends the body again and again for as long as it is taken
        bool staysOpen = false; ///< does not hang up after the body
    };

    /// With a key and a certificate, both in PEM, it speaks TLS.
    explicit LoopbackServer(const QByteArray &identity = {});

    void answer(const QByteArray &path, const Answer &answer) { m_answers.insert(path, answer); }
    /// Answers with the body and its true length.
    void serve(const QByteArray &path, const QByteArray &body);
    QUrl url(const QByteArray &path, const QByteArray &host = "127.0.0.1") const;
    void stopListening() { m_server->close(); }
    int requestCount(const QByteArray &path) const { return m_requests.value(path); }

private:
    void accept();
    void reply(QTcpSocket &socket);

    std::unique_ptr<QTcpServer> m_server;
    QByteArray m_scheme = "http";
    QHash<QByteArray, Answer> m_answers;
    QHash<QByteArray, int> m_requests;
};

} // namespace ambertide
