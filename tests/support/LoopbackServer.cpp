#include "support/LoopbackServer.h"

#include <QTcpSocket>

namespace ambertide {

LoopbackServer::LoopbackServer()
{
    connect(&m_server, &QTcpServer::newConnection, this, &LoopbackServer::accept);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("no port to listen on: %s", qPrintable(m_server.errorString()));
}

void LoopbackServer::serve(const QByteArray &path, const QByteArray &body)
{
    answer(path, {"HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n", body});
}

QUrl LoopbackServer::url(const QByteArray &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(QString::fromLatin1(path)));
}

void LoopbackServer::accept()
{
    while (auto *socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { reply(*socket); });
    }
}

void LoopbackServer::reply(QTcpSocket &socket)
{
    if (!socket.peek(64 * 1024).contains("\r\n\r\n"))
        return;
    const QByteArray path = socket.readAll().split(' ').value(1);
    ++m_requests[path];
    const Answer answer = m_answers.value(path, {"HTTP/1.1 404 Not Found\r\n", "not here"});
    socket.write(answer.head + (answer.head.endsWith("\r\n") ? "Connection: close\r\n\r\n" : ""));
    socket.write(answer.body);
    if (answer.isEndless) {
        connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket, body = answer.body] {
            if (socket.bytesToWrite() < body.size())
                socket.write(body);
        });
    } else if (!answer.staysOpen) {
        socket.disconnectFromHost();
    }
}

} // namespace ambertide
