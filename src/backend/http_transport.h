#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QString>
#include <QUrl>
#include <chrono>
#include <expected>
#include <memory>
#include <utility>
#include <vector>

#include "backend/sb_error.h"
#include "backend/timing.h"

namespace thalvorn {

struct HttpRequest {
  QByteArray method = "GET";
  QUrl url;
  std::vector<std::pair<QByteArray, QByteArray>> headers;
  QByteArray body;
  QString bodyFile;                             ///< sent instead of `body`, read as it goes out
  int attempts = 3;                             ///< at most, when replies time out or the connection is lost
  std::chrono::milliseconds idle{30'000};       ///< without a byte moving
  std::chrono::milliseconds deadline{120'000};  ///< for one attempt in all; 0 = none
};

struct HttpReply {
  int status = 0;
  QByteArray body;
  QList<QNetworkReply::RawHeaderPair> headers;

  /// Empty when absent; names in any case.
  QByteArray header(QByteArrayView name) const;
  bool isSuccess() const { return status >= 200 && status <= 299; }
};

/// Sends requests and gives back whole replies. Only time-outs and lost connections are tried again, after 1, 2, …
/// seconds; redirects are not followed, so that a token goes nowhere else, and certificates are always verified. Since
/// the platform itself may repeat a request whose connection broke, every request must be safe to arrive twice.
class HttpTransport {
 public:
  explicit HttpTransport(Timing& timing);
  /// Requests under way end with a network error.
  ~HttpTransport();
  HttpTransport(const HttpTransport&) = delete;
  HttpTransport& operator=(const HttpTransport&) = delete;

  /// A reply of any status.
  QCoro::Task<std::expected<HttpReply, SBError>> exchange(HttpRequest request);
  /// A reply of status 200–299; any other is an error.
  QCoro::Task<std::expected<HttpReply, SBError>> send(HttpRequest request);

 private:
  struct Attempt;
  QCoro::Task<Attempt> once(HttpRequest request);

  Timing& timing_;
  std::unique_ptr<QNetworkAccessManager> session_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
