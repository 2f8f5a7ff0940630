#pragma once

#include <QObject>
#include <QTcpServer>
#include <QUrl>
#include <functional>
#include <random>

class QTcpSocket;

namespace thalvorn {

/// A network between a client and the backend that loses, delays, repeats and cuts what passes, by a seed.
class FaultyProxy : public QObject {
  Q_OBJECT

 public:
  FaultyProxy(const QUrl& server, std::uint32_t seed, QObject* parent = nullptr);

  QUrl url() const;
  /// Of a hundred requests, how many meet a fault.
  void setFaults(int percent) { percent_ = percent; }
  /// The next request with this method is answered as by a server that is busy with another.
  void deferNext(QByteArray method) { deferred_ = std::move(method); }
  /// No request whose target holds `part` gets through.
  void lose(QByteArray part) { lost_ = std::move(part); }
  /// Nothing passes at all.
  void setOffline(bool offline) { offline_ = offline; }
  bool isOffline() const { return offline_; }
  int requests() const { return requests_; }
  /// Called with every request and its reply, where something wants to know.
  void setListener(std::function<void(const QByteArray& request, const QByteArray& reply)> listener) {
    listener_ = std::move(listener);
  }
  /// What passed, both ways.
  qint64 bytes() const { return bytes_; }

 private:
  enum class Fault {
    none,
    lostRequest,   ///< the server never sees it
    lostReply,     ///< the work is done, nobody hears of it
    cutReply,      ///< half a reply
    twice,         ///< the request arrives two times
    unauthorized,  ///< an answer in between, in the server's place
    conflict,
    tooMany,
    failure,
    unavailable
  };
  struct Exchange;

  Fault draw();
  void accept();
  void read(QTcpSocket* client);
  void forward(QTcpSocket* client, const QByteArray& request, Fault fault);
  void answer(QTcpSocket* client, const QByteArray& reply, Fault fault);

  QTcpServer server_;
  QUrl target_;
  std::mt19937 random_;
  int percent_ = 0;
  QByteArray deferred_;
  QByteArray lost_;
  bool offline_ = false;
  std::function<void(const QByteArray&, const QByteArray&)> listener_;
  int requests_ = 0;
  qint64 bytes_ = 0;
};

}  // namespace thalvorn
