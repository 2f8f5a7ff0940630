#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/timestamp.h"
#include "compliance/crew_member.h"
#include "core/maintenance_task.h"
#include "records/guest_profile.h"
#include "records/ship_contact.h"
#include "records/ship_document.h"
#include "store/attachments.h"
#include "store/local_cache.h"

namespace thalvorn {

// ---- inline content -------------------------------------------------------------------------------------------------

/// Records whose inline photos and files have become files on disk.
template <class T>
struct ContentMoves {
  std::vector<std::pair<T, T>> records;  ///< before and after, only those that changed
  std::size_t bytes = 0;                 ///< moved out of the records
  std::vector<std::string> failures;     ///< for the log; what could not be moved is still in its record
};

/// Writes the inline content of records to disk and gives the records that hold its path instead. Running it again
/// after an interruption finds the same files and gives the same records.
ContentMoves<MaintenanceTask> moveInlineContent(const std::vector<MaintenanceTask>& tasks,
                                                const AttachmentStore& files);
ContentMoves<ShipDocument> moveInlineContent(const std::vector<ShipDocument>& documents, const AttachmentStore& files);
ContentMoves<GuestProfile> moveInlineContent(const std::vector<GuestProfile>& guests, const AttachmentStore& files);
ContentMoves<CrewMember> moveInlineContent(const std::vector<CrewMember>& crew, const AttachmentStore& files);
ContentMoves<ShipContact> moveInlineContent(const std::vector<ShipContact>& contacts, const AttachmentStore& files);

/// Writes to the log what has been moved out of the entry of a suffix, once that is on disk: the migration's line,
/// where the collection has one, and the line of the purged blob. Nothing for other suffixes or when nothing was moved.
void logMovedContent(std::string_view suffix, const std::string& key, std::size_t bytes);

// ---- the previous program's preferences ----------------------------------------------------------------------------

/// Every value of a preference domain of this user: the settings file of that name. Lists are joined by commas.
std::map<std::string, std::string> preferencesOfDomain(const std::string& domain);

/// Copies the values of the previous domain into the cache's preferences, once: a marker remembers that it was done.
/// An empty domain means that there never was one.
void migratePreferences(LocalCache& cache, const std::string& previous_domain);

/// Brings the collections that older programs kept as preferences (key = prefix + suffix, value = JSON list) into the
/// entries of the prefix, then purges them. Records that are there already stay as they are; what cannot be read is
/// kept aside. Waits until it is on disk; on failure the old blob stays, for the next start.
void adoptLegacyEntries(LocalCache& cache, const std::string& prefix, std::span<const std::string_view> suffixes,
                        Timestamp now);

}  // namespace thalvorn
