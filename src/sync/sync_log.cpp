#include "sync/sync_log.h"

namespace thalvorn {

Q_LOGGING_CATEGORY(syncLog, "thalvorn.sync")

void SyncLog::say(const QString& text) {
  const bool problem = text.startsWith(u"❌") || text.startsWith(u"⚠️");
  if (problem) {
    qCWarning(syncLog, "%s", qUtf8Printable(text));
  } else {
    qCInfo(syncLog, "%s", qUtf8Printable(text));
  }
  lines_.push_back({.at = clock_.now(), .text = text, .isProblem = problem});
  if (lines_.size() > kMost) lines_.pop_front();
  Q_EMIT added();
}

}  // namespace thalvorn
