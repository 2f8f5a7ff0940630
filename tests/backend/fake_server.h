#pragma once

#include <QByteArray>
#include <QMap>
#include <QTcpServer>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace thalvorn {

struct FakeRequest {
  QByteArray method;
  QByteArray target;                     ///< path and query as they came
  QMap<QByteArray, QByteArray> headers;  ///< names in lower case
  QByteArray body;
};

struct FakeReply {
  enum class Manner { whole, drop, cut, silence };
  int status = 200;
  QByteArray body;
  std::vector<std::pair<QByteArray, QByteArray>> headers;
  Manner manner =
      Manner::whole;  ///< `drop`: close without a reply; `cut`: close in the middle; `silence`: never answer
};

/// An HTTP server on loopback that answers from a script and keeps what it was asked.
class FakeServer : public QObject {
 public:
  FakeServer();

  QString url() const;
  /// The next replies, in order; when they are used up, `otherwise` answers.
  void script(std::initializer_list<FakeReply> replies) { script_.insert(script_.end(), replies); }
  std::function<FakeReply(const FakeRequest&)> otherwise = [](const FakeRequest&) { return FakeReply{500, "{}", {}}; };

  const std::vector<FakeRequest>& requests() const { return requests_; }
  const FakeRequest& last() const { return requests_.back(); }
  bool isScriptDone() const { return script_.empty(); }

 private:
  void accept();
  void take(QTcpSocket* socket);
  void answer(QTcpSocket* socket, const FakeReply& reply);

  QMap<QTcpSocket*, QByteArray> pending_;
  std::deque<FakeReply> script_;
  std::vector<FakeRequest> requests_;
  QTcpServer server_;  // last: its sockets say goodbye to the others
};

}  // namespace thalvorn
