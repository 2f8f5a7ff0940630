#pragma once

#include <QThreadPool>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "backend/supabase_client.h"
#include "store/app_view_model.h"
#include "sync/run_token.h"
#include "sync/sync_log.h"
#include "sync/table_reader.h"

namespace thalvorn {

/// Why a table or one of its records could not be synchronised, for the sync panel.
struct SyncProblem {
  std::string table;
  std::string record;  ///< its name, else its day; empty when the whole table is meant
  std::string text;
  friend bool operator==(const SyncProblem&, const SyncProblem&) = default;
};

/// What the server was found to lack. A server without our own columns, tombstones or change stamps works too; fields
/// that need them keep their local value, and every table is read every time.
struct ServerSchema {
  bool acknowledgments = true;  ///< the table of who has read which post
  bool ownColumns = true;       ///< extra_json, server_version, seen_version
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
  /// Downloads that were cut off, by table and owner of the rows.
  std::map<std::string, std::shared_ptr<PartialDownload>, std::less<>>& partial;
  std::string accountID;
  std::string userID;
  RunToken token;
  Timestamp deleteBefore;                    ///< deletions made later can still be undone, and wait
  std::optional<std::int64_t> version = {};  ///< change stamp of the table under way
  std::vector<SyncProblem> problems;
  std::set<std::string_view> tables = {};  ///< those that were exchanged
  int unanswered = 0;                      ///< tables, the last ones, that were asked for in vain
  QThreadPool& decoder;                    ///< where large pages are read
  std::shared_ptr<RequestTurns> turns = std::make_shared<RequestTurns>();
  std::shared_ptr<PagesAhead> ahead = std::make_shared<PagesAhead>();
  std::size_t aheadFrom = 0;  ///< the first step that has not been asked for ahead
  bool lostConnection = false;
  bool sessionGone = false;
};
using SyncRunPtr = std::shared_ptr<SyncRun>;

}  // namespace thalvorn
