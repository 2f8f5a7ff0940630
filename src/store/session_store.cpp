#include "store/session_store.h"

#include <QCoroFuture>
#include <QPromise>

#include "store/preferences.h"

namespace thalvorn {
namespace {

constexpr std::string_view kExpiresAt = "sb_expires_at";

}  // namespace

StoredSession SessionStore::session() const {
  const auto text = [this](std::string_view key) { return cache_.preference(key).value_or(std::string()); };
  StoredSession session{.accessToken = text(preference_keys::accessToken),
                        .refreshToken = text(preference_keys::refreshToken),
                        .userID = text(preference_keys::userID),
                        .userEmail = text(preference_keys::userEmail),
                        .expiresAt = {}};
  if (const auto expiry = cache_.preference(kExpiresAt)) session.expiresAt = parseTimestamp(*expiry);
  return session;
}

QCoro::Task<bool> SessionStore::keep(StoredSession session) {
  const auto put = [this](std::string_view key, const std::string& value) {
    cache_.setPreference(std::string(key), value.empty() ? std::nullopt : std::optional(value));
  };
  put(preference_keys::accessToken, session.accessToken);
  put(preference_keys::refreshToken, session.refreshToken);
  put(preference_keys::userID, session.userID);
  put(preference_keys::userEmail, session.userEmail);
  put(kExpiresAt, session.expiresAt ? formatTimestamp(*session.expiresAt) : std::string());
  const auto promise = std::make_shared<QPromise<bool>>();
  promise->start();
  const QFuture<bool> written = promise->future();
  cache_.whenWritten([promise](const std::expected<Revision, CacheError>& result) {
    promise->addResult(result.has_value());
    promise->finish();
  });
  co_return co_await written;
}

}  // namespace thalvorn
