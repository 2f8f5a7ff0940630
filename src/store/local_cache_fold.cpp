#include "store/local_cache_fold.h"

#include <algorithm>
#include <limits>
#include <random>

#include "store/local_cache_journal.h"

namespace thalvorn::cache_detail {
namespace {

using SQLite::Statement;
using SQLite::Transaction;
using SQLite::TransactionBehavior;

/// How much of the journal one step reads.
constexpr std::size_t kBytesPerStep = 65'536;
constexpr int kRowsPerStep = 32;
constexpr int kNewSegmentsPerStep = 4;
/// A segment that grows beyond this multiple of its target is split.
constexpr std::size_t kSplitFactor = 4;

std::int64_t randomToken() {
  std::random_device device;
  return static_cast<std::int64_t>((std::uint64_t{device()} << 32 | device()) >> 1) | 1;
}

template <class... Values>
int change(SQLite::Database& database, const char* sql, const Values&... values) {
  Statement statement(database, sql);
  SQLite::bind(statement, values...);
  return statement.exec();
}

}  // namespace

JournalFold::JournalFold(SQLite::Database& database, const LocalCache::Options& options)
    : database_(database),
      options_(options),
      covering_(database, "SELECT 1 FROM sent WHERE prefix = ? AND suffix = ? AND id = ? AND revision >= ?") {
  Statement query(database_, "SELECT DISTINCT prefix FROM journal");
  while (query.executeStep()) prefixes_.push_back(query.getColumn(0).getString());
  nextPrefix();
}

void JournalFold::nextPrefix() {
  entries_.clear();
  prefix_.clear();
  phase_ = Phase::begin;
  if (prefixes_.empty()) return;
  prefix_ = std::move(prefixes_.back());
  prefixes_.pop_back();
}

void JournalFold::leaveOff(const std::string& prefix) {
  std::erase(prefixes_, prefix);
  if (prefix_ == prefix) nextPrefix();
}

bool JournalFold::step() {
  if (prefix_.empty() && again_) {
    JournalFold next(database_, options_);
    prefixes_ = std::move(next.prefixes_);
    prefix_ = std::move(next.prefix_);
    again_ = false;
  }
  if (prefix_.empty()) return false;
  switch (phase_) {
    case Phase::begin:
      begin();
      break;
    case Phase::gather:
      gather();
      break;
    case Phase::scan:
      scan();
      break;
    case Phase::append:
      append();
      break;
    case Phase::finish:
      finish();
      break;
    case Phase::purge:
      purge();
      break;
  }
  return true;
}

void JournalFold::begin() {
  token_ = randomToken();
  changesTaken_ = 0;
  Transaction transaction(database_, TransactionBehavior::IMMEDIATE);
  Statement query(database_,
                  "SELECT (SELECT revision FROM fold WHERE prefix = ?1), max(revision) FROM journal WHERE prefix = ?1");
  query.bind(1, prefix_);
  query.executeStep();
  mark_ = query.getColumn(0).getInt64();
  target_ = query.getColumn(1).getInt64();
  cursor_ = mark_;
  phase_ = Phase::gather;
  if (target_ <= mark_) {
    cursor_ = 0;
    phase_ = Phase::purge;
    return;
  }
  change(database_,
         "INSERT INTO fold(prefix, token) VALUES(?, ?) ON CONFLICT(prefix) DO UPDATE SET token = excluded.token",
         prefix_, token_);
  change(database_, "DELETE FROM segment WHERE prefix = ? AND pending > ?", prefix_, mark_);
  transaction.commit();
}

bool JournalFold::stillOurs() {
  Statement query(database_, "SELECT 1 FROM fold WHERE prefix = ? AND token = ?");
  SQLite::bind(query, prefix_, token_);
  return query.executeStep();
}

void JournalFold::gather() {
  Statement query(database_,
                  "SELECT revision, changes FROM journal WHERE prefix = ? AND revision > ? AND revision <= ?"
                  " ORDER BY revision");
  SQLite::bind(query, prefix_, cursor_, target_);
  std::size_t bytes = 0;
  while (bytes < kBytesPerStep) {
    if (!query.executeStep()) {
      phase_ = Phase::scan;
      entry_ = entries_.begin();
      position_ = std::numeric_limits<std::int64_t>::min();
      return;
    }
    cursor_ = query.getColumn(0).getInt64();
    const std::string changes = query.getColumn(1).getString();
    bytes += changes.size();
    // A row that cannot be read stays in the journal; it is reported when the file is checked or loaded.
    if (const auto decoded = decodeChanges(changes))
      for (const EntryChange& one : *decoded) take(one);
  }
}

void JournalFold::take(const EntryChange& change) {
  const std::size_t order = changesTaken_++;
  const auto [found, isNew] = entries_[change.suffix].fates.try_emplace(change.id);
  Fate& fate = found->second;
  if (isNew) {
    fate.order = order;
  } else if (fate.after.empty() && !change.after.empty()) {
    fate.order = order;
    fate.moved = true;
  }
  fate.after = change.after;
}

void JournalFold::scan() {
  if (entry_ == entries_.end()) {
    for (auto& [suffix, entry] : entries_) planAppending(suffix, entry);
    entry_ = entries_.begin();
    phase_ = Phase::append;
    return;
  }
  Statement query(database_,
                  "SELECT position, json FROM segment WHERE prefix = ? AND suffix = ? AND position > ? AND pending <= ?"
                  " ORDER BY position LIMIT 1");
  SQLite::bind(query, prefix_, entry_->first, position_, mark_);
  if (!query.executeStep()) {
    ++entry_;
    position_ = std::numeric_limits<std::int64_t>::min();
    return;
  }
  position_ = query.getColumn(0).getInt64();
  const std::string json = query.getColumn(1).getString();
  query.reset();
  const auto elements = splitJsonList(json);
  if (!elements) return;
  bool touched = false;
  for (const RawElement& element : *elements) {
    const auto id = Uuid::parse(element.id);
    const auto fate = id ? entry_->second.fates.find(*id) : entry_->second.fates.end();
    if (fate == entry_->second.fates.end()) continue;
    fate->second.found = true;
    touched = true;
  }
  if (touched) rewrite(position_, *elements);
}

void JournalFold::rewrite(std::int64_t position, const std::vector<RawElement>& elements) {
  Entry& entry = entry_->second;
  std::vector<std::string_view> kept;
  kept.reserve(elements.size());
  std::size_t bytes = 2;
  for (const RawElement& element : elements) {
    const auto id = Uuid::parse(element.id);
    const auto fate = id ? entry.fates.find(*id) : entry.fates.end();
    std::string_view record = element.bytes;
    if (fate != entry.fates.end()) record = fate->second.moved ? std::string_view{} : fate->second.after;
    if (record.empty()) continue;
    kept.push_back(record);
    bytes += record.size() + 1;
  }

  Transaction transaction(database_, TransactionBehavior::IMMEDIATE);
  if (!stillOurs()) return nextPrefix();
  if (kept.empty()) {
    change(database_, "DELETE FROM segment WHERE prefix = ? AND suffix = ? AND position = ?", prefix_, entry_->first,
           position);
    transaction.commit();
    return;
  }
  std::vector<std::string> pieces = cutIntoSegments(kept, options_.segmentBytes);
  Statement next(database_, "SELECT min(position) FROM segment WHERE prefix = ? AND suffix = ? AND position > ?");
  SQLite::bind(next, prefix_, entry_->first, position);
  next.executeStep();
  const std::int64_t room = next.getColumn(0).isNull() ? kPositionGap : next.getColumn(0).getInt64() - position;
  const auto count = static_cast<std::int64_t>(pieces.size());
  if (bytes <= options_.segmentBytes * kSplitFactor || room <= count)
    pieces = cutIntoSegments(kept, std::numeric_limits<std::size_t>::max());
  change(database_, "UPDATE segment SET json = ? WHERE prefix = ? AND suffix = ? AND position = ?", pieces.front(),
         prefix_, entry_->first, position);
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    position_ = position + room / count * static_cast<std::int64_t>(i);
    change(database_, "INSERT INTO segment(prefix, suffix, position, json) VALUES(?, ?, ?, ?)", prefix_, entry_->first,
           position_, pieces[i]);
  }
  transaction.commit();
}

void JournalFold::planAppending(const std::string& suffix, Entry& entry) {
  std::vector<const Fate*> added;
  for (const auto& [id, fate] : entry.fates)
    if (!fate.after.empty() && (!fate.found || fate.moved)) added.push_back(&fate);
  std::ranges::sort(added, {}, &Fate::order);

  Statement query(database_,
                  "SELECT position, json FROM segment WHERE prefix = ? AND suffix = ? AND pending <= ?"
                  " ORDER BY position DESC LIMIT 1");
  SQLite::bind(query, prefix_, suffix, mark_);
  std::size_t tail_bytes = std::numeric_limits<std::size_t>::max();
  if (query.executeStep()) {
    entry.lastPosition = query.getColumn(0).getInt64();
    const std::string tail = query.getColumn(1).getString();
    if (splitJsonList(tail)) tail_bytes = tail.size();
  }
  for (const Fate* fate : added) {
    const bool fits = entry.intoNew.empty() && tail_bytes < options_.segmentBytes &&
                      fate->after.size() + 1 <= options_.segmentBytes - tail_bytes;
    if (fits) tail_bytes += fate->after.size() + 1;
    if (fits) {
      entry.intoTail.emplace_back(fate->after);
    } else {
      entry.intoNew.emplace_back(fate->after);
    }
  }
}

void JournalFold::append() {
  while (entry_ != entries_.end() && entry_->second.intoNew.empty()) ++entry_;
  if (entry_ == entries_.end()) {
    phase_ = Phase::finish;
    return;
  }
  Transaction transaction(database_, TransactionBehavior::IMMEDIATE);
  if (!stillOurs()) return nextPrefix();
  Entry& entry = entry_->second;
  // Where the tail lies must not move, so new segments count from behind it.
  Statement query(database_, "SELECT max(position) FROM segment WHERE prefix = ? AND suffix = ?");
  SQLite::bind(query, prefix_, entry_->first);
  query.executeStep();
  std::int64_t last = query.getColumn(0).getInt64();
  for (int count = 0; count < kNewSegmentsPerStep && !entry.intoNew.empty(); ++count) {
    std::string segment;
    do {
      segment.append(segment.empty() ? "[" : ",").append(entry.intoNew.front());
      entry.intoNew.pop_front();
    } while (!entry.intoNew.empty() && segment.size() + entry.intoNew.front().size() + 2 <= options_.segmentBytes);
    segment += ']';
    change(database_, "INSERT INTO segment(prefix, suffix, position, pending, json) VALUES(?, ?, ?, ?, ?)", prefix_,
           entry_->first, last += kPositionGap, target_, segment);
  }
  transaction.commit();
}

void JournalFold::finish() {
  Transaction transaction(database_, TransactionBehavior::IMMEDIATE);
  if (!stillOurs()) return nextPrefix();
  for (const auto& [suffix, entry] : entries_) {
    if (entry.intoTail.empty()) continue;
    Statement query(database_, "SELECT json FROM segment WHERE prefix = ? AND suffix = ? AND position = ?");
    SQLite::bind(query, prefix_, suffix, entry.lastPosition);
    query.executeStep();
    const std::string tail = query.getColumn(0).getString();
    const auto elements = splitJsonList(tail);
    std::vector<std::string_view> records;
    for (const RawElement& element : *elements) records.push_back(element.bytes);
    records.insert(records.end(), entry.intoTail.begin(), entry.intoTail.end());
    change(database_, "UPDATE segment SET json = ? WHERE prefix = ? AND suffix = ? AND position = ?",
           cutIntoSegments(records, std::numeric_limits<std::size_t>::max()).front(), prefix_, suffix,
           entry.lastPosition);
  }
  change(database_, "UPDATE fold SET revision = ?, token = 0 WHERE prefix = ?", target_, prefix_);
  transaction.commit();
  entries_.clear();
  mark_ = target_;
  reached_ = std::max(reached_, target_);
  cursor_ = 0;
  phase_ = Phase::purge;
}

void JournalFold::purge() {
  if (std::ranges::find(options_.neverUploaded, prefix_) != options_.neverUploaded.end())
    purgeDropped();
  else
    purgeSent();
}

void JournalFold::purgeDropped() {
  const int gone = change(database_,
                          "DELETE FROM journal WHERE revision IN (SELECT revision FROM journal WHERE prefix = ?"
                          " AND revision <= ? ORDER BY revision LIMIT ?)",
                          prefix_, mark_, kRowsPerStep);
  if (gone == 0) nextPrefix();
}

bool JournalFold::isCovered(const EntryChange& change, Revision revision) {
  if (change.sent) return true;
  covering_.reset();
  SQLite::bind(covering_, prefix_, change.suffix, change.id.toString(), revision);
  const bool covered = covering_.executeStep();
  covering_.reset();
  return covered;
}

void JournalFold::purgeSent() {
  Statement query(database_,
                  "SELECT revision, changes FROM journal WHERE prefix = ? AND revision > ? AND revision <= ?"
                  " ORDER BY revision LIMIT ?");
  SQLite::bind(query, prefix_, cursor_, mark_, kRowsPerStep);
  std::size_t bytes = 0;
  bool end = true;
  std::vector<Revision> needless;
  while (bytes < kBytesPerStep && query.executeStep()) {
    end = false;
    cursor_ = query.getColumn(0).getInt64();
    const std::string changes = query.getColumn(1).getString();
    bytes += changes.size();
    const auto decoded = decodeChanges(changes);
    if (decoded && std::ranges::all_of(*decoded, [&](const EntryChange& one) { return isCovered(one, cursor_); }))
      needless.push_back(cursor_);
  }
  query.reset();
  if (end) {
    forgetNeedlessMarks();
    return nextPrefix();
  }
  if (needless.empty()) return;
  Transaction transaction(database_, TransactionBehavior::IMMEDIATE);
  Statement remove(database_, "DELETE FROM journal WHERE revision = ?");
  for (const Revision revision : needless) {
    remove.bind(1, revision);
    remove.exec();
    remove.reset();
  }
  transaction.commit();
}

void JournalFold::forgetNeedlessMarks() {
  change(database_,
         "DELETE FROM sent WHERE prefix = ?1 AND revision <"
         " coalesce((SELECT min(revision) FROM journal WHERE prefix = ?1), 9223372036854775807)",
         prefix_);
}

}  // namespace thalvorn::cache_detail
