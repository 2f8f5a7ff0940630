#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "backend/supabase_client.h"
#include "store/app_view_model.h"
#include "sync/run_token.h"
#include "sync/sync_log.h"

namespace thalvorn {

/// Why a table or one of its records could not be synchronised, for the sync panel.
struct SyncProblem {
  std::string table;
  std::string record;  ///< its name; empty when the whole table is meant
  std::string text;
  friend bool operator==(const SyncProblem&, const SyncProblem&) = default;
};

/// What the server was found to lack. A server without our own columns, tombstones or change stamps works too; fields
/// that need them keep their local value, and every table is read every time.
struct ServerSchema {
  bool ownColumns = true;  ///< extra_json, server_version, seen_version
  bool tombstones = true;
  bool stamps = true;
};

/// What the steps of one run share.
struct SyncRun {
  AppViewModel& model;
  SupabaseClient& client;
  SyncLog& log;
  Timing& timing;
  ServerSchema& schema;
  /// When a table whose server was busy may be asked again, in `Timing` time.
  std::map<std::string, std::chrono::milliseconds, std::less<>>& notBefore;
  std::string accountID;
  std::string userID;
  RunToken token;
  Timestamp deleteBefore;  ///< deletions made later can still be undone, and wait
  std::vector<SyncProblem> problems;
  bool lostConnection = false;
  bool sessionGone = false;
};
using SyncRunPtr = std::shared_ptr<SyncRun>;

}  // namespace thalvorn
