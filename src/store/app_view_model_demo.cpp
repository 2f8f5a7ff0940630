#include <algorithm>
#include <map>
#include <memory>

#include "base/date_format.h"
#include "compliance/demo_radio_log.h"
#include "core/demo_fleet.h"
#include "operations/demo_voyages.h"
#include "store/app_view_model.h"

namespace thalvorn {
namespace {

using EntryLists = std::map<std::string, std::vector<std::string>>;

/// The records as the cache keeps them: in the entry of their kind and, where that leaves fields out, its side entry.
template <class T>
void addEntries(EntryLists& lists, const std::vector<T>& records) {
  const std::string suffix(RecordKind<T>::facts.suffix);
  for (const T& record : records) {
    lists[suffix].push_back(toJson(record));
    if constexpr (HasExtraFields<T>) {
      if (std::string extra = extraJson(record); !extra.empty()) lists[suffix + "_extra"].push_back(std::move(extra));
    }
  }
}

constexpr std::string_view kDemoDay = "thalvorn.demoDay";        // on which it was made
constexpr std::string_view kDemoEdited = "thalvorn.demoEdited";  // by whoever explores it

}  // namespace

bool AppViewModel::demoFleetIsStale() const {
  if (cache_.isReadOnly()) return false;
  if (std::ranges::count(cache_.prefixes(), demoPrefix) == 0) return true;
  return !cache_.preference(kDemoEdited) && cache_.preference(kDemoDay) != spreadsheetDate(calendar().date(now()));
}

void AppViewModel::noteDemoEdit() {
  if (isDemo() && !cache_.preference(kDemoEdited)) cache_.setPreference(std::string(kDemoEdited), "yes");
}

Saving AppViewModel::fillDemoFleet() {
  if (cache_.isReadOnly()) return refused(cache_.readOnlyReason());
  const DemoFleet fleet = demoFleet(now(), calendar());
  cache_.setPreference(std::string(kDemoDay), spreadsheetDate(calendar().date(now())));
  cache_.setPreference(std::string(kDemoEdited), std::nullopt);
  EntryLists lists;
  addEntries(lists, fleet.vessels);
  addEntries(lists, fleet.profiles);
  addEntries(lists, fleet.tasks);
  addEntries(lists, fleet.logs);
  const DemoVoyages voyages = demoVoyages(fleet, now(), calendar());
  addEntries(lists, voyages.shipsLog);
  addEntries(lists, voyages.bunkering);
  addEntries(lists, demoRadioLog(fleet, now(), calendar()));
  const auto promise = std::make_shared<QPromise<SaveResult>>();
  promise->start();
  cache_.replaceAll(std::string(demoPrefix), std::move(lists), [promise](std::expected<Revision, CacheError> result) {
    promise->addResult(result ? SaveResult(*result) : std::unexpected(StoreError{result.error().message}));
    promise->finish();
  });
  return promise->future();
}

}  // namespace thalvorn
