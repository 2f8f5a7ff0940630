#pragma once

#include <QObject>
#include <QString>
#include <expected>
#include <memory>
#include <string>

#include "app/app_controller.h"
#include "base/calendar.h"
#include "store/app_view_model.h"
#include "store/local_cache.h"

namespace thalvorn::app {

/// The open store file with the records of whoever works now, and the choice between the fleets that live in it.
class StoreSession : public QObject {
  Q_OBJECT

 public:
  /// Opens or creates the file. The error is for the user.
  static std::expected<std::unique_ptr<StoreSession>, QString> open(const QString& file, const Clock& clock);
  ~StoreSession() override;

  AppViewModel& model() { return *model_; }
  LocalCache& cache() { return *cache_; }
  /// Photos and files of the records, beside the store's file.
  const AttachmentStore& attachments() const { return model_->attachments(); }

  /// Whose records to show at start: the signed-in user's, else the fleet that was open last on this computer; empty
  /// when nobody has chosen one.
  std::string startingPrefix() const;

  /// Nobody's fleet is open at the next start.
  void forgetChoice();

  /// Reads a fleet's records off this thread. The demo fleet is dated from today: one of another day is made anew.
  void openFleet(const std::string& prefix);
  /// The same, finished before it returns.
  void openFleetNow(const std::string& prefix);

 private:
  StoreSession(std::unique_ptr<LocalCache> cache, const Clock& clock);

  void noteOpened(const std::string& prefix);
  QCoro::Task<void> read(std::string prefix);

  std::unique_ptr<LocalCache> cache_;
  std::unique_ptr<AppViewModel> model_;
};

/// Preferences of the window in the store's file.
class CachePreferences : public PreferenceStore {
 public:
  explicit CachePreferences(LocalCache& cache) : cache_(cache) {}
  QString preference(const QString& key) const override;
  void setPreference(const QString& key, const QString& value) override;

 private:
  LocalCache& cache_;
};

}  // namespace thalvorn::app
