#pragma once

#include "backend/token_store.h"
#include "store/local_cache.h"

namespace thalvorn {

/// The session among the preferences of the store's file, which is readable by its user alone. Backups leave it out.
/// One process at a time holds the file, so no other can refresh the tokens meanwhile.
class SessionStore : public TokenStore {
 public:
  explicit SessionStore(LocalCache& cache) : cache_(cache) {}

  StoredSession session() const override;
  QCoro::Task<bool> keep(StoredSession session) override;
  QString lockFile() const override { return {}; }

 private:
  LocalCache& cache_;
};

}  // namespace thalvorn
