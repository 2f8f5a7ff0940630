#include "backend/http_transport.h"

#include <QCoro/QCoroNetworkReply>
#include <QFile>
#include <QNetworkRequest>
#include <QTimer>

#include "backend/logging.h"

namespace thalvorn {
namespace {

QNetworkRequest platformRequest(const HttpRequest& request) {
  QNetworkRequest built(request.url);
  for (const auto& [name, value] : request.headers) built.setRawHeader(name, value);
  built.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
  built.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  built.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  built.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  built.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  built.setTransferTimeout(static_cast<int>(request.idle.count()));
  return built;
}

/// A time-out ends a reply as "cancelled".
bool isLost(QNetworkReply::NetworkError error) {
  return error == QNetworkReply::TimeoutError || error == QNetworkReply::OperationCanceledError ||
         error == QNetworkReply::RemoteHostClosedError;
}

QString described(const QNetworkReply& reply) {
  return reply.error() == QNetworkReply::OperationCanceledError ? QStringLiteral("The request timed out.")
                                                                : reply.errorString();
}

struct LaterDeletion {
  void operator()(QObject* object) const { object->deleteLater(); }
};

}  // namespace

QByteArray HttpReply::header(QByteArrayView name) const {
  for (const auto& [key, value] : headers)
    if (key.compare(name, Qt::CaseInsensitive) == 0) return value;
  return {};
}

struct HttpTransport::Attempt {
  std::expected<HttpReply, SBError> result;
  bool mayRepeat = false;
};

HttpTransport::HttpTransport(Timing& timing) : timing_(timing), session_(std::make_unique<QNetworkAccessManager>()) {
  session_->setAutoDeleteReplies(false);
}

HttpTransport::~HttpTransport() {
  *alive_ = false;
  const auto open = session_->findChildren<QNetworkReply*>();
  for (QNetworkReply* reply : open) reply->abort();
}

QCoro::Task<HttpTransport::Attempt> HttpTransport::once(HttpRequest request) {
  const auto alive = alive_;
  std::unique_ptr<QFile> file;
  if (!request.bodyFile.isEmpty()) {
    file = std::make_unique<QFile>(request.bodyFile);
    if (!file->open(QIODevice::ReadOnly)) {
      co_return Attempt{
          std::unexpected(SBError::refused(
              QStringLiteral("The file could not be read: ") + file->errorString(),
              QStringLiteral("The file is not on this computer any more, or it cannot be read. Attach it again."))),
          false};
    }
  }
  const QNetworkRequest built = platformRequest(request);
  const std::unique_ptr<QNetworkReply, LaterDeletion> reply(
      file                    ? session_->sendCustomRequest(built, request.method, file.get())
      : request.body.isNull() ? session_->sendCustomRequest(built, request.method)
                              : session_->sendCustomRequest(built, request.method, request.body));
  if (file) file.release()->setParent(reply.get());
  if (request.deadline.count() > 0)
    QTimer::singleShot(request.deadline, reply.get(), [pending = reply.get()] { pending->abort(); });
  if (!reply->isFinished()) co_await reply.get();
  if (!*alive) co_return Attempt{std::unexpected(SBError::network(QStringLiteral("The request was given up."))), false};

  // Everything is read before the error is looked at: refusals carry their reason in the body.
  const QByteArray body = reply->readAll();
  const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
  const auto error = reply->error();
  const bool whole = error == QNetworkReply::NoError || error >= QNetworkReply::ContentAccessDenied;
  if (!whole) co_return Attempt{std::unexpected(SBError::network(described(*reply))), isLost(error)};
  if (!status.isValid()) {
    if (error == QNetworkReply::NoError)
      co_return Attempt{std::unexpected(SBError::server(0, QStringLiteral("Non-HTTP response"))), false};
    co_return Attempt{std::unexpected(SBError::network(described(*reply))), false};
  }
  co_return Attempt{HttpReply{status.toInt(), body, reply->rawHeaderPairs()}, false};
}

QCoro::Task<std::expected<HttpReply, SBError>> HttpTransport::exchange(HttpRequest request) {
  const auto alive = alive_;
  for (int attempt = 1;; ++attempt) {
    Attempt made = co_await once(request);
    if (!*alive || !made.mayRepeat) co_return std::move(made.result);
    qCWarning(backendLog).noquote() << QStringLiteral("⚠️ Network error attempt %1/%2: %3")
                                           .arg(attempt)
                                           .arg(request.attempts)
                                           .arg(made.result.error().reason);
    if (attempt >= request.attempts) co_return std::move(made.result);
    co_await timing_.wait(std::chrono::seconds(attempt));
    if (!*alive) co_return std::move(made.result);
  }
}

QCoro::Task<std::expected<HttpReply, SBError>> HttpTransport::send(HttpRequest request) {
  auto reply = co_await exchange(std::move(request));
  if (reply && !reply->isSuccess()) co_return std::unexpected(SBError::fromReply(*reply));
  co_return std::move(reply);
}

}  // namespace thalvorn
