#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/json.h"
#include "store/local_cache.h"

namespace thalvorn::cache_detail {

/// Between the positions of neighbouring segments, so that a segment that has grown can be split where it lies.
inline constexpr std::int64_t kPositionGap = std::int64_t{1} << 32;

/// Cuts records into JSON lists of about `segmentBytes` each.
template <class Records>
std::vector<std::string> cutIntoSegments(const Records& records, std::size_t segmentBytes) {
  std::vector<std::string> segments;
  for (const std::string_view record : records) {
    if (segments.empty() || segments.back().size() + record.size() + 2 > segmentBytes) {
      if (!segments.empty()) segments.back() += ']';
      segments.emplace_back("[").append(record);
    } else {
      segments.back().append(",").append(record);
    }
  }
  if (!segments.empty()) segments.back() += ']';
  return segments;
}

/// Brings the journal's edits into the segments, a step at a time; each step replaces at most one segment or writes a
/// few new ones, and is a transaction of its own.
///
/// Records that exist are replaced or taken out where they lie. New ones are written as `pending` segments, which
/// nobody reads, until the last step shows them all together by moving the prefix's fold mark; the same step fills up
/// the last segment. Until then the journal still counts as unfolded, and reading replays it over what has been
/// replaced already, which gives the same. So a fold may stop after any step. A segment that is not a readable list is
/// left as it is.
class JournalFold {
 public:
  JournalFold(SQLite::Database& database, const LocalCache::Options& options);
  /// True when there is more to do.
  bool step();
  /// Begin anew after the end, for edits that came after the beginning.
  void again() { again_ = true; }
  /// Does no more for this prefix; what was done of it stays right.
  void leaveOff(const std::string& prefix);
  /// The last revision folded.
  Revision reached() const { return reached_; }

 private:
  /// What becomes of one record.
  struct Fate {
    std::string after;  ///< empty: it goes
    std::size_t order = 0;
    bool found = false;
    bool moved = false;  ///< was deleted and added again, so that it stands at the end
  };
  struct Entry {
    std::unordered_map<Uuid, Fate> fates;
    std::vector<std::string_view> intoTail;
    std::deque<std::string_view> intoNew;  ///< of new segments
    std::int64_t lastPosition = 0;
  };
  enum class Phase { begin, gather, scan, append, finish, purge };

  void nextPrefix();
  void begin();
  void gather();
  void take(const EntryChange& change);
  void scan();
  void rewrite(std::int64_t position, const std::vector<RawElement>& elements);
  void planAppending(const std::string& suffix, Entry& entry);
  void append();
  void finish();
  void purge();
  void purgeDropped();
  void purgeSent();
  bool isCovered(const EntryChange& change, Revision revision);
  void forgetNeedlessMarks();
  /// False when someone else has begun to fold this prefix or has replaced it.
  bool stillOurs();

  SQLite::Database& database_;
  const LocalCache::Options& options_;
  SQLite::Statement covering_;
  std::vector<std::string> prefixes_;
  std::string prefix_;
  Phase phase_ = Phase::begin;
  bool again_ = false;
  std::int64_t token_ = 0;
  Revision mark_ = 0;    ///< folded before we began
  Revision target_ = 0;  ///< folded when we are done
  Revision reached_ = 0;
  Revision cursor_ = 0;
  std::size_t changesTaken_ = 0;
  std::map<std::string, Entry> entries_;
  std::map<std::string, Entry>::iterator entry_;
  std::int64_t position_ = 0;
};

}  // namespace thalvorn::cache_detail
