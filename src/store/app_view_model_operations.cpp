// What the crew does: each operation reads the records as they stand, lets the rules of core/ work out the new ones,
// and applies them as one edit.

#include <fmt/format.h>

#include "store/app_view_model.h"

namespace thalvorn {
namespace {

constexpr std::string_view kVesselGone = "This vessel was deleted meanwhile; nothing was changed.";

}  // namespace

// ---- vessels
// --------------------------------------------------------------------------------------------------------------

Saving AppViewModel::removeVessel(const Uuid& vesselID) {
  const Vessel* vessel = vessels().find(vesselID);
  if (!vessel) return refused(std::string(kVesselGone));
  Edit edit{.label = "“" + vessel->name + "” deleted"};
  forEachKind([&]<class T>(std::type_identity<T>) {
    for (const T& record : collection<T>().records())
      if (vesselOf(record) == vesselID) edit.remove(record);
  });
  edit.remove(*vessel);
  return apply(std::move(edit));
}

std::vector<std::string> AppViewModel::whatHangsOn(const Uuid& vesselID) const {
  std::vector<std::string> lines;
  forEachKind([&]<class T>(std::type_identity<T>) {
    const auto records = collection<T>().records();
    const auto count = std::ranges::count_if(records, [&](const T& record) { return vesselOf(record) == vesselID; });
    if (count == 0) return;
    const KindFacts& facts = RecordKind<T>::facts;
    lines.push_back(fmt::format("{} {}", count, count == 1 ? facts.singular : facts.plural));
  });
  return lines;
}

Saving AppViewModel::reorderVessels(const std::vector<Uuid>& order) {
  Edit edit{.label = "Vessels put in order"};
  for (std::size_t position = 0; position < order.size(); ++position) {
    const Vessel* vessel = vessels().find(order[position]);
    if (!vessel) return refused(std::string(kVesselGone));
    if (vessel->sortOrder == static_cast<std::int64_t>(position)) continue;
    Vessel moved = *vessel;
    moved.sortOrder = static_cast<std::int64_t>(position);
    edit.replace(*vessel, std::move(moved));
  }
  return apply(std::move(edit));
}

}  // namespace thalvorn
