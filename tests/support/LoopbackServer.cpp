#include "support/LoopbackServer.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>

namespace ambertide {

LoopbackServer::LoopbackServer(const QByteArray &identity) : m_server(std::make_unique<QTcpServer>())
{
    if (!identity.isEmpty()) {
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(QSslCertificate(identity));
        configuration.setPrivateKey(QSslKey(identity, QSsl::Ec));
        auto secure = std::make_unique<QSslServer>();
        secure->setSslConfiguration(configuration);
        m_server = std::move(secure);
        m_scheme = "https";
    }
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] { accept(); });
    if (!m_server->listen(QHostAddress::LocalHost))
        qFatal("no port to listen on: %s", qPrintable(m_server->errorString()));
}

void LoopbackServer::serve(const QByteArray &path, const QByteArray &body)
{
    answer(path, {"HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n", body});
}

QUrl LoopbackServer::url(const QByteArray &path, const QByteArray &host) const
{
    return QUrl::fromEncoded(m_scheme + "://" + host + ':' + QByteArray::number(m_server->serverPort()) + path);
}

void LoopbackServer::accept()
{
    while (auto *socket = m_server->nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { reply(*socket); });
    }
}

void LoopbackServer::reply(QTcpSocket &socket)
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

} // namespace ambertide
