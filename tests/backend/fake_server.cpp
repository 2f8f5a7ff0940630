#include "backend/fake_server.h"

#include <QTcpSocket>

namespace thalvorn {

FakeServer::FakeServer() {
  connect(&server_, &QTcpServer::newConnection, this, &FakeServer::accept);
  if (!server_.listen(QHostAddress::LocalHost)) qFatal("no port on loopback");
}

QString FakeServer::url() const { return QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort()); }

void FakeServer::accept() {
  while (QTcpSocket* socket = server_.nextPendingConnection()) {
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { take(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
      pending_.remove(socket);
      socket->deleteLater();
    });
  }
}

void FakeServer::take(QTcpSocket* socket) {
  QByteArray& bytes = pending_[socket];
  bytes += socket->readAll();
  const auto end = bytes.indexOf("\r\n\r\n");
  if (end < 0) return;
  FakeRequest request;
  const QList<QByteArray> lines = bytes.left(end).split('\n');
  const QList<QByteArray> first = lines.first().split(' ');
  request.method = first.value(0);
  request.target = first.value(1);
  for (const QByteArray& line : lines.mid(1)) {
    const auto colon = line.indexOf(':');
    request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
  }
  const auto length = request.headers.value("content-length").toLongLong();
  if (bytes.size() < end + 4 + length) return;
  request.body = bytes.mid(end + 4, length);
  bytes.remove(0, end + 4 + length);
  requests_.push_back(request);
  FakeReply reply;
  if (script_.empty()) {
    reply = otherwise(request);
  } else {
    reply = script_.front();
    script_.pop_front();
  }
  answer(socket, reply);
}

void FakeServer::answer(QTcpSocket* socket, const FakeReply& reply) {
  if (reply.manner == FakeReply::Manner::silence) return;
  if (reply.manner == FakeReply::Manner::drop) {
    socket->abort();
    return;
  }
  QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " Reason\r\n";
  for (const auto& [name, value] : reply.headers) head += name + ": " + value + "\r\n";
  if (reply.status != 204 && reply.status != 304) {
    const auto extra = reply.manner == FakeReply::Manner::cut ? 1000 : 0;
    head += "Content-Length: " + QByteArray::number(reply.body.size() + extra) + "\r\n";
  }
  socket->write(head + "\r\n" + reply.body);
  if (reply.manner == FakeReply::Manner::cut) socket->disconnectFromHost();
}

}  // namespace thalvorn
