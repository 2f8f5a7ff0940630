#include "faulty_proxy.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <memory>

namespace thalvorn {
namespace {

Q_LOGGING_CATEGORY(proxyLog, "thalvorn.proxy")

/// The bytes of the first whole message in `buffer`; 0 when it is not whole yet.
qsizetype wholeMessage(const QByteArray& buffer) {
  const qsizetype head = buffer.indexOf("\r\n\r\n");
  if (head < 0) return 0;
  qsizetype length = 0;
  for (const QByteArray& line : buffer.left(head).split('\n'))
    if (line.toLower().startsWith("content-length:")) length = line.mid(15).trimmed().toLongLong();
  const qsizetype whole = head + 4 + length;
  return buffer.size() >= whole ? whole : 0;
}

QByteArray canned(int status, const char* body, const char* header = "") {
  return QByteArray("HTTP/1.1 ") + QByteArray::number(status) +
         " Fault\r\nContent-Type: application/json\r\nConnection: close\r\n" + header +
         "Content-Length: " + QByteArray::number(static_cast<int>(strlen(body))) + "\r\n\r\n" + body;
}

/// So that each message has a connection of its own.
QByteArray closing(const QByteArray& message) {
  const qsizetype firstLine = message.indexOf("\r\n");
  const qsizetype head = message.indexOf("\r\n\r\n");
  QByteArray lines = message.mid(firstLine, head - firstLine);
  QByteArray kept;
  for (const QByteArray& line : lines.split('\n'))
    if (!line.trimmed().isEmpty() && !line.toLower().startsWith("connection:")) kept += "\r\n" + line.trimmed();
  return message.left(firstLine) + kept + "\r\nConnection: close" + message.mid(head);
}

}  // namespace

FaultyProxy::FaultyProxy(const QUrl& server, std::uint32_t seed, QObject* parent)
    : QObject(parent), target_(server), random_(seed) {
  server_.listen(QHostAddress::LocalHost);
  connect(&server_, &QTcpServer::newConnection, this, &FaultyProxy::accept);
}

QUrl FaultyProxy::url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort())); }

FaultyProxy::Fault FaultyProxy::draw() {
  const auto number = [this](int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); };
  if (number(100) >= percent_) return Fault::none;
  return static_cast<Fault>(1 + number(9));
}

void FaultyProxy::accept() {
  while (QTcpSocket* client = server_.nextPendingConnection()) {
    if (offline_) {
      client->abort();
      client->deleteLater();
      continue;
    }
    connect(client, &QTcpSocket::readyRead, this, [this, client] { read(client); });
    connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
  }
}

void FaultyProxy::read(QTcpSocket* client) {
  const QByteArray sofar = client->property("request").toByteArray() + client->readAll();
  const qsizetype whole = wholeMessage(sofar);
  if (whole == 0) {
    client->setProperty("request", sofar);
    return;
  }
  client->setProperty("request", sofar.mid(whole));
  ++requests_;
  bytes_ += whole;
  Fault fault = offline_ ? Fault::lostRequest : draw();
  if (!deferred_.isEmpty() && sofar.startsWith(deferred_)) {
    fault = Fault::conflict;
    deferred_.clear();
  }
  if (!lost_.isEmpty() && sofar.left(sofar.indexOf('\n')).contains(lost_)) fault = Fault::lostRequest;
  const QByteArray request = closing(sofar.left(whole));
  qCInfo(proxyLog, "port %d: %s, fault %d", server_.serverPort(), sofar.left(sofar.indexOf(" HTTP/")).constData(),
         static_cast<int>(fault));
  switch (fault) {
    case Fault::lostRequest:
      return client->abort();
    case Fault::unauthorized:
      return answer(client, canned(401, R"({"code":"PGRST303","message":"JWT expired","details":null,"hint":null})"),
                    fault);
    case Fault::conflict:
      return answer(
          client, canned(409, R"({"code":"40001","message":"could not serialize access","details":null,"hint":null})"),
          fault);
    case Fault::tooMany:
      return answer(client, canned(429, R"({"message":"Too many requests"})", "Retry-After: 0\r\n"), fault);
    case Fault::failure:
      return answer(client, canned(500, R"({"code":"XX000","message":"internal error","details":null,"hint":null})"),
                    fault);
    case Fault::unavailable:
      return answer(client, canned(503, R"({"message":"name resolution failed"})", "Retry-After: 0\r\n"), fault);
    case Fault::twice:
      forward(nullptr, request, Fault::none);
      return forward(client, request, fault);
    default:
      return forward(client, request, fault);
  }
}

void FaultyProxy::forward(QTcpSocket* client, const QByteArray& request, Fault fault) {
  auto* upstream = new QTcpSocket(this);
  const auto reply = std::make_shared<QByteArray>();
  const QPointer<QTcpSocket> waiting(client);
  connect(upstream, &QTcpSocket::connected, upstream, [upstream, request] { upstream->write(request); });
  connect(upstream, &QTcpSocket::readyRead, upstream, [upstream, reply] { *reply += upstream->readAll(); });
  connect(upstream, &QTcpSocket::disconnected, this, [this, upstream, request, reply, waiting, fault] {
    *reply += upstream->readAll();
    upstream->deleteLater();
    if (listener_) listener_(request, *reply);
    if (waiting) answer(waiting, *reply, fault);
  });
  upstream->connectToHost(target_.host(), static_cast<quint16>(target_.port()));
}

void FaultyProxy::answer(QTcpSocket* client, const QByteArray& reply, Fault fault) {
  if (fault == Fault::lostReply || offline_ || reply.isEmpty()) return client->abort();
  bytes_ += reply.size();
  client->write(fault == Fault::cutReply ? reply.left(reply.size() / 2) : reply);
  client->disconnectFromHost();
}

}  // namespace thalvorn
