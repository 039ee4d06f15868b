#pragma once

#include <QByteArray>
#include <QHash>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
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
    explicit LoopbackServer(const QByteArray &identity = {})
    {
        if (!identity.isEmpty()) {
            QSslConfiguration configuration;
            configuration.setLocalCertificate(QSslCertificate(identity));
            configuration.setPrivateKey(QSslKey(identity, QSsl::Ec));
            auto secure = std::make_unique<QSslServer>();
            secure->setSslConfiguration(configuration);
            m_server = std::move(secure);
            m_scheme = "https";
        }
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
            while (auto *socket = m_server->nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { reply(*socket); });
            }
        });
        if (!m_server->listen(QHostAddress::LocalHost))
            qFatal("no port to listen on: %s", qPrintable(m_server->errorString()));
    }

    void answer(const QByteArray &path, const Answer &answer) { m_answers.insert(path, answer); }
    void serve(const QByteArray &path, const QByteArray &body) { answer(path, {.body = body}); }
    QUrl url(const QByteArray &path) const
    {
        return QUrl::fromEncoded(m_scheme + "://127.0.0.1:" + QByteArray::number(m_server->serverPort()) + path);
    }
    int requestCount(const QByteArray &path) const { return m_requests.value(path); }

private:
    void reply(QTcpSocket &socket)
    {
        if (!socket.peek(64 * 1024).contains("\r\n\r\n"))
            return;
        const QByteArray path = socket.readAll().split(' ').value(1);
        ++m_requests[path];
        const Answer answer = m_answers.value(path, {"HTTP/1.1 404 Not Found\r\n", "not here"});
        socket.write(answer.head + (answer.head.endsWith("\r\n") ? "Connection: close\r\n\r\n" : "") + answer.body);
        if (answer.isEndless) {
            QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket, body = answer.body] {
                if (socket.bytesToWrite() < body.size())
                    socket.write(body);
            });
        } else if (!answer.staysOpen) {
            socket.disconnectFromHost();
        }
    }

    std::unique_ptr<QTcpServer> m_server = std::make_unique<QTcpServer>();
    QByteArray m_scheme = "http";
    QHash<QByteArray, Answer> m_answers;
    QHash<QByteArray, int> m_requests;
};

} // namespace ambertide
