#pragma once

// How the records of one kind go up: read as they stand, merged, sent, read back. For the table steps alone.

#include <QCoroFuture>
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "backend/conflict_rows.h"
#include "backend/row_kind.h"
#include "sync/acknowledgments.h"
#include "sync/conflicts.h"
#include "sync/row_upload.h"
#include "sync/step_facts.h"
#include "sync/sync_run.h"
#include "sync/when_saved.h"
#include "sync/yard_parts.h"

namespace thalvorn {
namespace step_detail {

constexpr int kRounds = 4;
constexpr std::size_t kMostRows = TableQuery::kMostInList;

/// A row as the server has it, and the record in it.
template <class T>
struct ReceivedRow {
  RowOf<T> row;
  T record;
  StoredForm form = {};  ///< of the record, where it is made already
  /// Documents in it that this program cannot read; written back, they would be lost.
  std::vector<JsonError> unreadable = {};
  /// Of a yard period.
  std::shared_ptr<const YardPartRows> parts = {};
};

template <class T>
using Received = std::unordered_map<Uuid, ReceivedRow<T>>;

template <class T>
constexpr std::string_view table() {
  return RecordKind<T>::facts.table;
}

/// What was entered here is not on disk yet; nothing is exchanged that might be lost.
SBError notSaved();

inline QCoro::Task<bool> whenSaved(SyncRunPtr run) { return thalvorn::whenSaved(&run->model, run->token); }
inline QCoro::Task<bool> whenEditsSaved(SyncRunPtr run) { return thalvorn::whenEditsSaved(&run->model, run->token); }
inline QCoro::Task<bool> whenSaved(SyncRunPtr run, Saving saving) {
  return thalvorn::whenSaved(&run->model, std::move(saving), run->token);
}

/// The "id" of a row that cannot be read otherwise.
std::optional<Uuid> identityIn(const std::string& json);

void note(SyncRun& run, std::string_view table, std::string record, const SBError& error);

template <class Row>
void tellUnreadable(SyncRun& run, const Row& row, const JsonError& error) {
  if constexpr (std::is_same_v<Row, SBVoyagePlanRow>) {
    run.log.say("❌ VoyagePlan JSON decode FAILED for '" + row.planName + "'");
    const QString text = QString::fromStdString(row.planJson);
    run.log.say(QStringLiteral("   plan_json head: ") + text.left(80));
    run.log.say(QStringLiteral("   Raw payload (first 300 chars): ") + text.left(300));
    run.problems.push_back(
        {"voyage_plans", row.planName, "This plan cannot be read by this program: " + error.message()});
  } else {
    run.log.say("❌ a row cannot be read: " + error.message());
    run.problems.push_back({std::string("rows"), {}, "A row cannot be read by this program: " + error.message()});
  }
}

/// A row that was read apart from the records of this computer, and what it comes to where there is none of them.
template <class T>
struct ReadRow {
  RowOf<T> row;
  std::expected<FromRow<T>, JsonError> made;
  StoredForm form;
};

/// The rows of a reply, read without looking at anything else: on any thread. Empty when the reply is no list.
template <class T>
struct ReadRows {
  std::vector<ReadRow<T>> rows;
  std::vector<SetAside> setAside;
};

template <class T>
std::optional<ReadRows<T>> decode(const QByteArray& json) {
  auto list =
      listFromJson<RowOf<T>>(std::string_view(json.data(), static_cast<std::size_t>(json.size())), JsonFields::full);
  if (!list) return std::nullopt;
  ReadRows<T> read{.rows = {}, .setAside = std::move(list->setAside)};
  read.rows.reserve(list->records.size());
  for (RowOf<T>& row : list->records) {
    auto made = recordFromRow<T>(row);
    StoredForm form = made ? storedForm(made->record) : StoredForm{};
    read.rows.push_back({std::move(row), std::move(made), std::move(form)});
  }
  return read;
}

/// The records of rows that have been read, as they complete those of this computer. A row that cannot be read is told
/// and passed over; `unread` takes the identities of those: they are there all the same.
template <class T>
std::vector<ReceivedRow<T>> receive(SyncRun& run, ReadRows<T> read, std::unordered_set<Uuid>* unread) {
  std::vector<ReceivedRow<T>> received;
  received.reserve(read.rows.size());
  for (const SetAside& faulty : read.setAside) {
    run.log.say("❌ " + std::string(table<T>()) + ": a row cannot be read: " + faulty.error.message());
    run.problems.push_back(
        {std::string(table<T>()), {}, "A row cannot be read by this program: " + faulty.error.message()});
    if (const auto id = identityIn(faulty.bytes)) unread->insert(*id);
  }
  for (ReadRow<T>& one : read.rows) {
    if (const T* known = run.model.collection<T>().find(one.row.id)) {
      one.made = recordFromRow<T>(one.row, known);
      one.form = {};
    }
    if (!one.made) {
      tellUnreadable(run, one.row, one.made.error());
      unread->insert(one.row.id);
      continue;
    }
    received.push_back({.row = std::move(one.row),
                        .record = std::move(one.made->record),
                        .form = std::move(one.form),
                        .unreadable = std::move(one.made->unreadable)});
  }
  return received;
}

/// As many identities at a time as an address holds.
inline std::vector<std::vector<Uuid>> inParts(std::vector<Uuid> ids) {
  std::vector<std::vector<Uuid>> parts;
  for (std::size_t begin = 0; begin < ids.size(); begin += kMostRows) {
    const std::size_t end = std::min(begin + kMostRows, ids.size());
    parts.emplace_back(ids.begin() + static_cast<std::ptrdiff_t>(begin),
                       ids.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return parts;
}

/// Completes records that lie in several tables.
template <class T>
SBTask<void> complete(SyncRunPtr run, std::vector<ReceivedRow<T>>* received) {
  std::vector<Uuid> ids;
  std::unordered_map<Uuid, ReceivedRow<T>*> rows;
  if constexpr (std::is_same_v<T, YardPeriod> || std::is_same_v<T, CrewBoardPost>) {
    for (ReceivedRow<T>& row : *received)
      if (rows.insert_or_assign(row.row.id, &row).second) ids.push_back(row.row.id);
  }
  if constexpr (std::is_same_v<T, YardPeriod>) {
    for (const std::vector<Uuid>& some : inParts(std::move(ids))) {
      auto parts = co_await readYardParts(run, some);
      if (!parts) co_return std::unexpected(parts.error());
      for (const Uuid& id : some) {
        ReceivedRow<T>& row = *rows.at(id);
        row.form = {};
        row.parts = std::make_shared<const YardPartRows>(std::move((*parts)[id]));
        attachParts(row.record, *row.parts, run->model.collection<T>().find(id));
      }
    }
  }
  if constexpr (std::is_same_v<T, CrewBoardPost>) {
    if (!run->schema.acknowledgments) ids.clear();
    for (const std::vector<Uuid>& some : inParts(std::move(ids))) {
      auto acknowledgments = co_await readAcknowledgments(run, some);
      if (!acknowledgments && acknowledgments.error().remedy == SBError::Remedy::updateSchema) {
        run->schema.acknowledgments = false;
        break;
      }
      if (!acknowledgments) co_return std::unexpected(acknowledgments.error());
      for (const Uuid& id : some) {
        rows.at(id)->record.acknowledgments = std::move((*acknowledgments)[id]);
        rows.at(id)->form = {};
      }
    }
  }
  co_return {};
}

/// The rows of these identities as they stand on the server, whose replies may be shorter than the list.
template <class T>
SBTask<Received<T>> readRows(SyncRunPtr run, std::vector<Uuid> ids, std::unordered_set<Uuid>* unread) {
  std::vector<ReceivedRow<T>> all;
  while (!ids.empty()) {
    const auto reply = co_await run->client.read(TableQuery(table<T>()).eq("account_id", run->accountID).in("id", ids),
                                                 ids.size() > 1);
    if (!reply) co_return std::unexpected(reply.error());
    if (run->token.isOver()) break;
    const std::size_t asked = ids.size();
    auto read = decode<T>(reply->rows);
    if (!read) co_return std::unexpected(SBError::server(200, QStringLiteral("Invalid JSON response")));
    for (ReceivedRow<T>& row : receive<T>(*run, *std::move(read), unread)) {
      std::erase(ids, row.row.id);
      all.push_back(std::move(row));
    }
    std::erase_if(ids, [&](const Uuid& id) { return unread->contains(id); });
    const std::size_t came = asked - ids.size();
    const bool isCut = came > 0 && reply->total.value_or(0) > static_cast<std::int64_t>(came);
    if (!isCut) break;
  }
  const auto completed = co_await complete<T>(run, &all);
  if (!completed) co_return std::unexpected(completed.error());
  Received<T> byIdentity;
  for (ReceivedRow<T>& row : all) {
    const Uuid id = row.row.id;
    byIdentity.insert_or_assign(id, std::move(row));
  }
  co_return std::move(byIdentity);
}

template <class T>
MergeSide mySide(const SyncRun& run, const Unsent<T>& ours) {
  return {std::min(ours.at, run.client.serverNow()), run.userID};
}

template <class T>
MergeSide theirSide(const SyncRun& run, const ReceivedRow<T>& theirs) {
  return {std::min(theirs.row.updatedAt, run.client.serverNow()), theirs.row.userId.toString()};
}

template <class T>
void addNote(Edit& notes, ConflictNote conflict) {
  if constexpr (!std::is_same_v<T, ConflictNote>) notes.add(std::move(conflict));
}

/// A record that waits here, and what the server has of it, become one.
template <class T>
FromBackend<T> settle(const SyncRun& run, const Unsent<T>& ours, const ReceivedRow<T>& theirs, Edit& notes) {
  const MergeSide mine = mySide(run, ours);
  const MergeSide other = theirSide(run, theirs);
  Merge<T> merge = mergeRecords(ours.base ? &*ours.base : nullptr, *ours.current, mine, theirs.record, other);
  if (!merge.conflicts.empty()) {
    addNote<T>(notes, conflictNote(merge.record, merge.mineKept ? mine : other, merge.lost,
                                   merge.mineKept ? other : mine, std::move(merge.conflicts), run.client.serverNow()));
  }
  return {.id = ours.id, .theirs = theirs.record, .merged = std::move(merge.record)};
}

template <class T>
std::vector<Uuid> idsOf(const std::vector<Unsent<T>>& records) {
  std::vector<Uuid> ids;
  for (const Unsent<T>& record : records) ids.push_back(record.id);
  return ids;
}

/// The records of `ids` that still wait.
template <class T>
std::vector<Unsent<T>> stillWaiting(const SyncRun& run, const std::vector<Uuid>& ids) {
  const std::unordered_set<Uuid> wanted(ids.begin(), ids.end());
  std::vector<Unsent<T>> waiting = run.model.unsent<T>();
  std::erase_if(waiting, [&](const Unsent<T>& record) { return !wanted.contains(record.id); });
  return waiting;
}

/// Who deleted what, by record.
using Tombstones = std::unordered_map<Uuid, MergeSide>;
SBTask<Tombstones> readTombstones(SyncRunPtr run, std::string table, std::vector<Uuid> ids);
SBTask<void> takeBackTombstones(SyncRunPtr run, std::string table, std::vector<Uuid> ids);

/// Records that the server took but does not show: deleted there meanwhile, or deleted before and put back here.
template <class T>
SBTask<void> settleAbsent(SyncRunPtr run, RunToken token, std::vector<Uuid> absent) {
  const auto tombstones = co_await readTombstones(run, std::string(table<T>()), absent);
  if (!tombstones) co_return std::unexpected(tombstones.error());
  if (token.isOver() || !co_await whenSaved(run) || token.isOver()) co_return {};
  std::vector<Uuid> revived;
  std::vector<FromBackend<T>> gone;
  Edit notes;
  for (const Unsent<T>& ours : stillWaiting<T>(*run, absent)) {
    if (!ours.current) continue;
    const auto tombstone = tombstones->find(ours.id);
    if (tombstone == tombstones->end()) {
      run->problems.push_back({std::string(table<T>()), recordNameOrDay(*ours.current, run->model.calendar()),
                               "The server did not keep this record. It stays here and is sent again."});
    } else if (ours.revived && (!ours.base || tombstone->second.by == run->userID)) {
      revived.push_back(ours.id);
    } else {
      addNote<T>(notes, deletionNote(*ours.current, mySide(*run, ours), tombstone->second, run->client.serverNow()));
      gone.push_back({.id = ours.id, .theirs = std::nullopt, .merged = std::nullopt});
    }
  }
  if (!gone.empty() && !co_await whenSaved(run, run->model.takeFromBackend<T>(std::move(gone), std::move(notes))))
    co_return std::unexpected(notSaved());
  if (token.isOver()) co_return {};
  if (!revived.empty()) co_return co_await takeBackTombstones(run, std::string(table<T>()), std::move(revived));
  co_return {};
}

/// What a person calls the record with this identity.
template <class T>
std::string nameOf(const SyncRun& run, const Uuid& id) {
  const T* record = run.model.collection<T>().find(id);
  if constexpr (std::is_same_v<T, VesselProfile>) {
    if (const Vessel* vessel = record ? run.model.vessels().find(record->vesselID) : nullptr) return vessel->name;
  }
  return record ? recordNameOrDay(*record, run.model.calendar()) : std::string();
}

/// Whether the user may change records of this kind; when not, that is told.
template <class T>
bool mayWrite(SyncRun& run) {
  if (run.model.rights(RecordKind<T>::facts.permission).write) return true;
  run.problems.push_back({std::string(table<T>()),
                          {},
                          "Your role in this account no longer allows changing " +
                              std::string(RecordKind<T>::facts.plural) +
                              ". What you changed stays here until it does."});
  return false;
}

/// A record that the server refuses for good is told by name and passed over in this run. False for any other error.
template <class T>
bool noteRefusal(const SyncRunPtr& run, const Uuid& id, const SBError& error, std::unordered_set<Uuid>* refusedRows) {
  if (!isRefusal(error)) return false;
  note(*run, table<T>(), nameOf<T>(*run, id), error);
  refusedRows->insert(id);
  return true;
}

template <class T>
RowUpload uploadOf(const SyncRunPtr& run, std::vector<RowOf<T>> rows) {
  RowUpload upload = rowUpload(table<T>(), std::move(rows), [run](const Uuid& id) { return nameOf<T>(*run, id); });
  upload.failure = stepFacts<T>.failure;
  return upload;
}

/// A record as it went up, and the newest edit in it.
template <class T>
struct Sent {
  T record;
  Revision revision = 0;
};

/// A row's time never goes back, however late an edit made offline arrives. A row that was not there has been seen at
/// version 0: should it be there by now, because an earlier attempt arrived late or twice, this one writes nothing.
template <class T>
RowContext contextOf(const SyncRun& run, const Unsent<T>& ours, const ReceivedRow<T>* stored) {
  RowContext context{.userID = Uuid::parse(run.userID).value_or(Uuid{}),
                     .accountID = Uuid::parse(run.accountID).value_or(Uuid{}),
                     .updatedAt = std::min(ours.at, run.client.serverNow()),
                     .seenVersion = 0};
  if (stored) {
    context.updatedAt = std::max(context.updatedAt, stored->row.updatedAt);
    context.seenVersion = stored->row.serverVersion;
  }
  return context;
}

/// Leaves the documents of a row that cannot be read as they are stored. False when the edit changed what is in them.
template <class T>
bool keepUnreadable(const ReceivedRow<T>& stored, const Unsent<T>& ours, const RowContext& context, RowOf<T>& row) {
  if (stored.unreadable.empty()) return true;
  const RowOf<T> before = rowFromRecord<T>(ours.base ? *ours.base : T{}, context);
  const RowOf<T> after = rowFromRecord<T>(*ours.current, context);
  return std::ranges::all_of(stored.unreadable, [&](const JsonError& error) {
    if (!sameColumn(before, after, error.field)) return false;
    copyColumn(stored.row, row, error.field);
    return true;
  });
}

template <class T>
void passOverUnreadable(const SyncRunPtr& run, const Unsent<T>& ours, std::unordered_set<Uuid>* refusedRows) {
  refusedRows->insert(ours.id);
  run->problems.push_back(
      {std::string(table<T>()),
       ours.current ? recordNameOrDay(*ours.current, run->model.calendar())
       : ours.base  ? recordNameOrDay(*ours.base, run->model.calendar())
                    : std::string(),
       "A newer program wrote what this one cannot read; update this program to send your change."});
}

/// Merges, sends and reads back one batch of records.
template <class T>
SBTask<void> exchangeBatch(SyncRunPtr run, RunToken token, std::vector<Uuid> ids,
                           std::unordered_set<Uuid>* refusedRows) {
  std::unordered_set<Uuid> unread;
  auto theirs = co_await readRows<T>(run, ids, &unread);
  if (!theirs) co_return std::unexpected(theirs.error());
  if (token.isOver()) co_return {};
  if (!co_await whenSaved(run)) co_return std::unexpected(notSaved());
  if (token.isOver()) co_return {};

  std::vector<FromBackend<T>> changes;
  Edit notes;
  for (const Unsent<T>& ours : stillWaiting<T>(*run, ids)) {
    const auto row = theirs->find(ours.id);
    if (row == theirs->end() || !ours.current || ours.base == row->second.record) continue;
    changes.push_back(settle(*run, ours, row->second, notes));
  }
  if (!changes.empty()) {
    if (!co_await whenSaved(run, run->model.takeFromBackend<T>(std::move(changes), std::move(notes))))
      co_return std::unexpected(notSaved());
    if (token.isOver()) co_return {};
    if (!co_await whenSaved(run)) co_return std::unexpected(notSaved());
    if (token.isOver()) co_return {};
  }

  std::vector<RowOf<T>> rows;
  std::unordered_map<Uuid, Sent<T>> sent;
  std::vector<Uuid> sentIds;
  std::vector<std::pair<YardPeriod, YardPartRows>> periods;
  std::vector<std::pair<Uuid, bool>> acknowledged;  ///< posts, and whether the user's own is to be there
  for (const Unsent<T>& ours : stillWaiting<T>(*run, ids)) {
    if (!ours.current) continue;
    const auto found = theirs->find(ours.id);
    const ReceivedRow<T>* stored = found == theirs->end() ? nullptr : &found->second;
    const RowContext context = contextOf(*run, ours, stored);
    RowOf<T> row = rowFromRecord<T>(*ours.current, context, stored ? &stored->row : nullptr);
    if (unread.contains(ours.id) || (stored && !keepUnreadable(*stored, ours, context, row))) {
      passOverUnreadable(run, ours, refusedRows);
      continue;
    }
    auto asSent = recordFromRow<T>(row, &*ours.current);
    if (!asSent) continue;
    if constexpr (std::is_same_v<T, YardPeriod>)
      periods.emplace_back(*ours.current, stored && stored->parts ? *stored->parts : YardPartRows{});
    bool rowDiffers = true;
    if constexpr (std::is_same_v<T, CrewBoardPost>) {
      if (run->schema.acknowledgments) {
        const std::vector<std::string> none;
        const std::vector<std::string>& theirUsers = stored ? stored->record.acknowledgments : none;
        std::vector<std::string>& users = asSent->record.acknowledgments;
        users = withOwnAcknowledgment(theirUsers, ours.current->acknowledgments, run->userID);
        if (users != theirUsers) acknowledged.emplace_back(ours.id, users.size() > theirUsers.size());
      }
      // Who may only acknowledge may not write the post itself.
      rowDiffers = !stored || !differInAcknowledgmentsAlone(asSent->record, stored->record);
    }
    sentIds.push_back(ours.id);
    sent.emplace(ours.id, Sent<T>{std::move(asSent->record), ours.revision});
    if (rowDiffers) rows.push_back(std::move(row));
  }
  if (sentIds.empty()) co_return {};
  const auto done = co_await uploadRows(run, token, uploadOf<T>(run, std::move(rows)), refusedRows);
  if (!done) co_return std::unexpected(done.error());
  for (auto& [period, parts] : periods) {
    if (token.isOver()) co_return {};
    const Uuid id = period.id;
    const auto allTaken = co_await sendYardParts(run, token, std::move(period), std::move(parts));
    if (!allTaken) co_return std::unexpected(allTaken.error());
    if (!*allTaken) refusedRows->insert(id);
  }
  for (const auto& [post, isSo] : acknowledged) {
    if (token.isOver()) co_return {};
    const auto told = co_await sendAcknowledgment(run, post, isSo);
    if (!told && !noteRefusal<T>(run, post, told.error(), refusedRows)) co_return std::unexpected(told.error());
  }
  if (token.isOver()) co_return {};

  const auto stored = co_await readRows<T>(run, sentIds, &unread);
  if (!stored) co_return std::unexpected(stored.error());
  if (token.isOver()) co_return {};
  std::vector<Uploaded<T>> uploaded;
  std::vector<Uuid> absent;
  for (const Uuid& id : sentIds) {
    if (refusedRows->contains(id)) continue;
    const auto row = stored->find(id);
    if (row == stored->end()) {
      absent.push_back(id);
    } else if (sent.at(id).record == row->second.record) {
      uploaded.push_back({.id = id, .upTo = sent.at(id).revision, .record = row->second.record});
    }
  }
  run->model.markUploaded<T>(uploaded);
  if (!absent.empty()) co_return co_await settleAbsent<T>(run, token, std::move(absent));
  co_return {};
}

}  // namespace step_detail
}  // namespace thalvorn
