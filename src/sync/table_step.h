#pragma once

// One table step, for any kind of record. Included only by the source files that instantiate it.

#include <unordered_set>

#include "sync/row_exchange.h"
#include "sync/steps.h"
#include "sync/table_reader.h"

namespace thalvorn {
namespace step_detail {

/// What a download gathers while its pages come.
template <class T>
struct Gathered {
  SyncRunPtr run;
  RunToken token;
  std::shared_ptr<UuidSet> seen;  ///< of the rows' owner whose turn it is
  std::optional<SBError> failure;
};

/// Reads a page, a large one on a thread of its own: the store's has other things to do.
template <class T>
QCoro::Task<std::shared_ptr<std::optional<ReadRows<T>>>> decodeAside(QThreadPool* decoder, QByteArray json) {
  constexpr qsizetype kSmall = 32'768;
  using Result = std::shared_ptr<std::optional<ReadRows<T>>>;
  if (json.size() < kSmall) co_return std::make_shared<std::optional<ReadRows<T>>>(decode<T>(json));
  const auto promise = std::make_shared<QPromise<Result>>();
  const QFuture<Result> future = promise->future();
  promise->start();
  decoder->start([promise, json = std::move(json)] {
    promise->addResult(std::make_shared<std::optional<ReadRows<T>>>(decode<T>(json)));
    promise->finish();
  });
  co_return co_await future;
}

/// Whether what a page brought is on disk.
template <class T>
QCoro::Task<bool> isKept(std::shared_ptr<Gathered<T>> gathered, Saving saving) {
  const bool kept = co_await whenSaved(gathered->run, std::move(saving));
  if (!kept && !gathered->token.isOver()) gathered->failure = notSaved();
  co_return kept;
}

/// Takes the records of a page. What waits here is looked at as it stands at that moment, after the last await.
template <class T>
TakenPage takeReceived(const std::shared_ptr<Gathered<T>>& gathered, std::vector<ReceivedRow<T>> received,
                       const std::unordered_set<Uuid>& unread) {
  SyncRun& run = *gathered->run;
  TakenPage taken;
  std::vector<Uuid> seenNow;
  for (const Uuid& id : unread)
    if (gathered->seen->insert(id).second) seenNow.push_back(id);
  std::vector<FromBackend<T>> changes;
  changes.reserve(received.size());
  Edit notes;
  for (ReceivedRow<T>& row : received) {
    const Uuid id = row.row.id;
    if (!gathered->seen->insert(id).second) continue;
    seenNow.push_back(id);
    const auto ours = run.model.unsent<T>(id);
    if (!ours) {
      const T* current = run.model.collection<T>().find(id);
      if (current && *current == row.record) continue;
      changes.push_back({.id = id, .theirs = row.record, .merged = std::move(row.record), .form = std::move(row.form)});
    } else if (ours->current && ours->base != row.record) {
      changes.push_back(settle(run, *ours, row, notes));
    }
  }
  taken.fresh = static_cast<int>(seenNow.size());
  if (!changes.empty()) {
    const Saving saving = run.model.takeFromBackend<T>(std::move(changes), std::move(notes));
    if (saving.isFinished() && !saving.result().has_value()) {
      for (const Uuid& id : seenNow) gathered->seen->erase(id);
      gathered->failure = notSaved();
      return {.fresh = -1};
    }
  }
  // Its records may have come before, and be on their way to the disk from then.
  taken.saved = [gathered, saving = run.model.everythingSaved()] { return isKept<T>(gathered, saving); };
  return taken;
}

template <class T>
QCoro::Task<TakenPage> takePage(std::shared_ptr<Gathered<T>> gathered,
                                std::shared_ptr<std::optional<ReadRows<T>>> page) {
  const TakenPage unreadable{.fresh = -1};
  if (!*page) co_return unreadable;
  const SyncRunPtr run = gathered->run;
  if (!co_await whenEditsSaved(run)) {
    gathered->failure = notSaved();
    co_return unreadable;
  }
  if (gathered->token.isOver()) co_return {};
  std::unordered_set<Uuid> unread;
  std::vector<ReceivedRow<T>> received = receive<T>(*run, std::exchange(**page, {}), &unread);
  if (const auto completed = co_await complete<T>(run, &received); !completed) {
    gathered->failure = completed.error();
    co_return unreadable;
  }
  if (gathered->token.isOver()) co_return {};
  if (!co_await whenEditsSaved(run)) {
    gathered->failure = notSaved();
    co_return unreadable;
  }
  if (gathered->token.isOver()) co_return {};
  co_return takeReceived<T>(gathered, std::move(received), unread);
}

template <class T>
QCoro::Task<TakePage> readPage(std::shared_ptr<Gathered<T>> gathered, QByteArray json) {
  // The run may be all that is left of the session.
  if (gathered->token.isOver()) co_return [] { return ready(TakenPage{}); };
  auto page = co_await decodeAside<T>(&gathered->run->decoder, std::move(json));
  co_return [gathered, page = std::move(page)] { return takePage<T>(gathered, page); };
}

/// Records that a complete download did not show are gone, unless they were made here and never went up.
template <class T>
SBTask<void> removeAbsent(SyncRunPtr run, RunToken token, std::shared_ptr<const UuidSet> seen) {
  if (token.isOver()) co_return {};
  if (!co_await whenSaved(run)) co_return std::unexpected(notSaved());
  if (token.isOver()) co_return {};
  std::unordered_map<Uuid, Unsent<T>> waiting;
  for (Unsent<T>& record : run->model.unsent<T>()) {
    const Uuid id = record.id;
    waiting.emplace(id, std::move(record));
  }
  std::vector<FromBackend<T>> gone;
  Edit notes;
  for (const T& record : run->model.collection<T>().records()) {
    if (seen->contains(record.id)) continue;
    const auto ours = waiting.find(record.id);
    if (ours != waiting.end()) {
      if (!ours->second.base) continue;
      addNote<T>(notes, deletionNote(record, mySide(*run, ours->second), MergeSide{run->client.serverNow(), {}},
                                     run->client.serverNow()));
    }
    gone.push_back({.id = record.id, .theirs = std::nullopt, .merged = std::nullopt});
  }
  if (!gone.empty() && !co_await whenSaved(run, run->model.takeFromBackend<T>(std::move(gone), std::move(notes))))
    co_return std::unexpected(notSaved());
  co_return {};
}

/// Whose rows are asked for one after the other: the account, or each of its vessels.
template <class T>
std::vector<Uuid> ownersOf(const SyncRun& run) {
  std::vector<Uuid> owners;
  if constexpr (RowKind<T>::facts.scope == RowScope::vessel) {
    for (const Vessel& vessel : run.model.vessels().records()) owners.push_back(vessel.id);
  } else {
    owners.push_back(Uuid::parse(run.accountID).value_or(Uuid{}));
  }
  return owners;
}

template <class T>
void logDeletion(const SyncRun& run, const T& record) {
  if constexpr (std::is_same_v<T, Vessel>) run.log.say("🗑 deleted vessel " + record.name);
  if constexpr (std::is_same_v<T, VoyagePlan>) run.log.say("🗑 deleted voyage plan " + record.planName);
}

/// Under which name a download that is cut off is kept.
template <class T>
std::string placeOf(const Uuid& owner) {
  return std::string(table<T>()) + ' ' + owner.toString();
}

/// Deletes one batch of records that were deleted here; gives those that somebody changed in between.
template <class T>
SBTask<std::vector<Uuid>> deleteBatch(SyncRunPtr run, RunToken token, std::vector<Uuid> ids) {
  std::unordered_set<Uuid> unread;
  const auto theirs = co_await readRows<T>(run, ids, &unread);
  if (!theirs) co_return std::unexpected(theirs.error());
  if (!co_await whenSaved(run)) co_return std::unexpected(notSaved());
  if (token.isOver()) co_return {};

  // What somebody else made of a record is in the history, on disk, before the record goes.
  std::vector<FromBackend<T>> changes;
  Edit notes;
  for (const Unsent<T>& ours : stillWaiting<T>(*run, ids)) {
    const auto row = theirs->find(ours.id);
    if (row == theirs->end() || ours.current || ours.base == row->second.record) continue;
    addNote<T>(notes, deletionNote(row->second.record, theirSide(*run, row->second), mySide(*run, ours),
                                   run->client.serverNow()));
    changes.push_back({.id = ours.id, .theirs = row->second.record, .merged = std::nullopt});
  }
  if (!changes.empty()) {
    if (!co_await whenSaved(run, run->model.takeFromBackend<T>(std::move(changes), std::move(notes))))
      co_return std::unexpected(notSaved());
    if (token.isOver()) co_return {};
    if (!co_await whenSaved(run)) co_return std::unexpected(notSaved());
  }

  const std::vector<Unsent<T>> waiting = stillWaiting<T>(*run, ids);
  std::unordered_set<Uuid> refusedRows;
  for (const Unsent<T>& ours : waiting) {
    if (token.isOver()) co_return {};
    const auto row = theirs->find(ours.id);
    if (row == theirs->end() || ours.current) continue;
    TableQuery asSeen = TableQuery(table<T>()).eq("id", ours.id);
    if (row->second.row.serverVersion) asSeen.eq("server_version", std::to_string(*row->second.row.serverVersion));
    const auto removed = co_await run->client.remove(asSeen);
    if (token.isOver()) co_return {};
    if (removed) continue;
    const SBError& error = removed.error();
    if constexpr (std::is_same_v<T, YardPeriod>) run->log.say("❌ Yard delete: " + error.logLine().toStdString());
    if (!isRefusal(error)) co_return std::unexpected(error);
    note(*run, table<T>(), recordNameOrDay(row->second.record, run->model.calendar()), error);
    refusedRows.insert(ours.id);
  }

  const auto left = co_await readRows<T>(run, ids, &unread);
  if (!left) co_return std::unexpected(left.error());
  if (token.isOver() || !co_await whenSaved(run) || token.isOver()) co_return {};
  std::vector<Uploaded<T>> done;
  std::vector<Uuid> again;
  for (const Unsent<T>& ours : waiting) {
    if (ours.current || refusedRows.contains(ours.id)) continue;
    if (unread.contains(ours.id)) {
      passOverUnreadable(run, ours, &refusedRows);
    } else if (left->contains(ours.id)) {
      again.push_back(ours.id);
    } else {
      if (const auto row = theirs->find(ours.id); row != theirs->end()) logDeletion(*run, row->second.record);
      done.push_back({.id = ours.id, .upTo = ours.revision, .record = {}});
    }
  }
  run->model.markUploaded<T>(done);
  co_return again;
}

/// Gives a server that has no rows at all those of this computer, but for what has been deleted there. False when that
/// was all of them.
template <class T>
SBTask<bool> seedEmptyServer(SyncRunPtr run, RunToken token) {
  std::vector<Uuid> ids;
  for (const T& record : run->model.collection<T>().records()) ids.push_back(record.id);
  std::unordered_set<Uuid> deleted;
  for (const std::vector<Uuid>& some : inParts(std::move(ids))) {
    const auto tombstones = co_await readTombstones(run, std::string(table<T>()), some);
    if (!tombstones) co_return std::unexpected(tombstones.error());
    if (token.isOver()) co_return true;
    for (const auto& entry : *tombstones) deleted.insert(entry.first);
  }
  std::vector<RowOf<T>> rows;
  for (const T& record : run->model.collection<T>().records())
    if (!deleted.contains(record.id))
      rows.push_back(rowFromRecord<T>(record, contextOf<T>(*run, {.at = run->client.serverNow()}, nullptr)));
  if (rows.empty()) co_return false;
  run->log.say("syncISMCheckDefinitions: seeding empty server with " + std::to_string(rows.size()) +
               " local definitions");
  std::unordered_set<Uuid> refusedRows;
  const auto sent = co_await uploadRows(run, token, uploadOf<T>(run, std::move(rows)), &refusedRows);
  if (!sent) co_return std::unexpected(sent.error());
  co_return true;
}

}  // namespace step_detail

template <class T>
SBTask<void> uploadDeletions(SyncRunPtr run, RunToken token) {
  using namespace step_detail;
  std::vector<Unsent<T>> deletions = run->model.unsent<T>();
  std::erase_if(deletions, [&](const Unsent<T>& record) { return record.current || record.at > run->deleteBefore; });
  if (deletions.empty() || !mayWrite<T>(*run)) co_return {};
  const std::vector<Uuid> ids = idsOf(deletions);
  for (std::size_t begin = 0; begin < ids.size(); begin += kMostRows) {
    std::vector<Uuid> batch(ids.begin() + static_cast<std::ptrdiff_t>(begin),
                            ids.begin() + static_cast<std::ptrdiff_t>(std::min(begin + kMostRows, ids.size())));
    for (int round = 0; round < kRounds && !batch.empty(); ++round) {
      const auto left = co_await deleteBatch<T>(run, token, std::move(batch));
      if (!left) co_return std::unexpected(left.error());
      if (token.isOver()) co_return {};
      batch = *left;
    }
    for (const Unsent<T>& kept : stillWaiting<T>(*run, batch))
      run->problems.push_back({std::string(table<T>()),
                               kept.base ? recordNameOrDay(*kept.base, run->model.calendar()) : std::string(),
                               "The server did not delete this record; it is asked again."});
  }
  co_return {};
}

template <class T>
SBTask<void> uploadChanges(SyncRunPtr run, RunToken token) {
  using namespace step_detail;
  std::unordered_set<Uuid> refusedRows;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<Unsent<T>> waiting = run->model.unsent<T>();
    std::erase_if(waiting, [&](const Unsent<T>& record) { return !record.current || refusedRows.contains(record.id); });
    if (round == 0) {
      std::string line = std::string(stepFacts<T>.uploads) + std::to_string(waiting.size());
      if constexpr (std::is_same_v<T, VesselProfile>)
        line += " dirty row(s) (of " + std::to_string(run->model.vesselProfiles().size()) + " total)";
      if (!waiting.empty()) run->log.say(line);
    }
    if (waiting.empty()) break;
    // Whoever may read the crew board may acknowledge its posts.
    const bool acknowledges =
        std::is_same_v<T, CrewBoardPost> && run->model.rights(RecordKind<T>::facts.permission).read;
    if (!acknowledges && !mayWrite<T>(*run)) break;
    for (std::vector<Uuid>& ids : inParts(idsOf(waiting))) {
      const auto exchanged = co_await exchangeBatch<T>(run, token, std::move(ids), &refusedRows);
      if (!exchanged) co_return std::unexpected(exchanged.error());
      if (token.isOver()) co_return {};
    }
  }
  co_return {};
}

template <class T>
SBTask<bool> downloadRows(SyncRunPtr run, RunToken token) {
  using namespace step_detail;
  // Not read, and so not known either: should the member be let in later, everything is fetched.
  if (!run->model.rights(RecordKind<T>::facts.permission).read) co_return false;
  const std::size_t before = run->model.collection<T>().size();
  std::shared_ptr<UuidSet> seen;  ///< of all owners
  bool isWhole = true;
  for (const Uuid& owner : ownersOf<T>(*run)) {
    const std::string place = placeOf<T>(owner);
    std::shared_ptr<PartialDownload>& kept = run->partial[place];
    if (!kept || kept->next == 0) kept = std::make_shared<PartialDownload>(PartialDownload{.version = run->version});
    const std::shared_ptr<PartialDownload> partial = kept;
    const bool goesOn = partial->next > 0;
    const auto gathered =
        std::make_shared<Gathered<T>>(Gathered<T>{.run = run, .token = token, .seen = partial->seen, .failure = {}});
    const auto read =
        co_await readTable({.client = &run->client,
                            .query = rowsOf<T>(owner),
                            .order = RowKind<T>::facts.order,
                            .token = token,
                            .partial = partial,
                            .turns = run->turns,
                            .expect = [run](std::size_t rows) { run->model.makeRoom<T>(rows); },
                            .ahead = run->ahead},
                           [gathered](QByteArray rows) { return readPage<T>(gathered, std::move(rows)); });
    if (token.isOver()) co_return false;
    if (gathered->failure) co_return std::unexpected(*gathered->failure);
    if (!read) co_return std::unexpected(read.error());
    if (seen) {
      seen->insert(partial->seen->begin(), partial->seen->end());
    } else {
      seen = partial->seen;
    }
    // Put together from several runs, it is whole only if nothing changed from the first to the last.
    const bool unchanged = !goesOn || (run->version && partial->version == run->version);
    isWhole = isWhole && read->complete && unchanged;
    run->partial.erase(place);
  }
  if (!seen) seen = std::make_shared<UuidSet>();
  if constexpr (std::is_same_v<T, ISMCheckDefinition>) {
    if (isWhole && seen->empty() && before > 0) {
      const auto seeded = co_await seedEmptyServer<T>(run, token);
      if (!seeded) co_return std::unexpected(seeded.error());
      // What went up is read, and what did not is removed, by the next run.
      if (*seeded) co_return false;
    }
  }
  if (isWhole) {
    const auto removed = co_await removeAbsent<T>(run, token, seen);
    if (!removed) co_return std::unexpected(removed.error());
  }
  if (token.isOver()) co_return false;
  std::string line = std::string(stepFacts<T>.summary);
  if constexpr (std::is_same_v<T, YardPeriod>) {
    std::size_t orders = 0;
    std::size_t punches = 0;
    std::size_t entries = 0;
    for (const YardPeriod& period : run->model.yardPeriods().records()) {
      orders += period.workOrders.size();
      punches += period.punchList.size();
      entries += period.logEntries.size();
    }
    line += std::to_string(seen->size()) + " periods, " + std::to_string(orders) + " work orders, " +
            std::to_string(punches) + " punch list items, " + std::to_string(entries) + " log entries";
  } else if (line.ends_with("local=")) {
    line += std::to_string(before) + " remote=" + std::to_string(seen->size());
  } else {
    line += std::to_string(seen->size());
  }
  run->log.say(line);
  co_return isWhole;
}

template <class T>
void askAhead(SyncRun& run) {
  using namespace step_detail;
  if (!run.model.rights(RecordKind<T>::facts.permission).read) return;
  for (const Uuid& owner : ownersOf<T>(run)) {
    const auto partial = run.partial.find(placeOf<T>(owner));
    if (partial != run.partial.end() && partial->second && partial->second->next > 0) continue;
    if (run.ahead->isFull()) return;
    run.ahead->ask(run.turns, &run.client, rowsOf<T>(owner), RowKind<T>::facts.order, run.token);
  }
}

/// Makes the steps of one kind.
#define THALVORN_INSTANTIATE_STEP(Type)                                        \
  template SBTask<void> uploadDeletions<Type>(SyncRunPtr run, RunToken token); \
  template SBTask<void> uploadChanges<Type>(SyncRunPtr run, RunToken token);   \
  template SBTask<bool> downloadRows<Type>(SyncRunPtr run, RunToken token);    \
  template void askAhead<Type>(SyncRun & run)

}  // namespace thalvorn
