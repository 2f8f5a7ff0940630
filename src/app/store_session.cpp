#include "app/store_session.h"

#include <QCoroFuture>
#include <algorithm>

#include "base/date_format.h"
#include "store/legacy_migration.h"
#include "store/preferences.h"

namespace thalvorn::app {

std::expected<std::unique_ptr<StoreSession>, QString> StoreSession::open(const QString& file, const Clock& clock) {
  auto cache = LocalCache::open(std::filesystem::path(file.toStdString()));
  if (!cache) return std::unexpected(QString::fromStdString(cache.error().message));
  if (!(*cache)->isReadOnly()) migratePreferences(**cache, THALVORN_PREVIOUS_PREFERENCE_DOMAIN);
  return std::unique_ptr<StoreSession>(new StoreSession(std::move(*cache), clock));
}

StoreSession::StoreSession(std::unique_ptr<LocalCache> cache, const Clock& clock)
    : cache_(std::move(cache)), model_(std::make_unique<AppViewModel>(*cache_, clock)) {}

StoreSession::~StoreSession() = default;

std::string StoreSession::startingPrefix() const {
  const Preferences preferences(*cache_);
  if (std::string user = preferences.text(preference_keys::userID); !user.empty()) return user;
  return preferences.text(preference_keys::lastFleet);
}

void StoreSession::noteOpened(const std::string& prefix) {
  if (cache_->isReadOnly()) return;
  Preferences preferences(*cache_);
  preferences.setText(preference_keys::lastFleet, prefix);
}

void StoreSession::forgetChoice() { Preferences(*cache_).remove(preference_keys::lastFleet); }

void StoreSession::openFleet(const std::string& prefix) {
  QCoro::connect(read(prefix), this, [] {});
}

QCoro::Task<void> StoreSession::read(std::string prefix) {
  noteOpened(prefix);
  if (prefix == AppViewModel::demoPrefix && model_->demoFleetIsStale()) {
    const SaveResult filled = co_await model_->fillDemoFleet();
    if (!filled) qWarning("%s", filled.error().message.c_str());
  }
  co_await model_->reloadForUser(prefix);
}

void StoreSession::openFleetNow(const std::string& prefix) {
  noteOpened(prefix);
  if (prefix == AppViewModel::demoPrefix && model_->demoFleetIsStale()) model_->fillDemoFleet().waitForFinished();
  model_->reloadNow(prefix);
}

QString CachePreferences::preference(const QString& key) const {
  return QString::fromStdString(cache_.preference(key.toStdString()).value_or(std::string()));
}

void CachePreferences::setPreference(const QString& key, const QString& value) {
  cache_.setPreference(key.toStdString(), value.toStdString());
}

}  // namespace thalvorn::app
