#pragma once

#include <string>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "operations/position_facts.h"

namespace thalvorn {

/// A named position of the waypoint library, which all vessels of the account share.
struct SavedWaypoint {
  Uuid id;
  std::string name;
  double latitude = 0;   ///< decimal degrees, north positive
  double longitude = 0;  ///< decimal degrees, east positive
  std::string notes;
  std::string category;  ///< free text, e.g. "Anchorage"
  Timestamp createdAt;

  friend bool operator==(const SavedWaypoint&, const SavedWaypoint&) = default;
};
BOOST_DESCRIBE_STRUCT(SavedWaypoint, (), (id, name, latitude, longitude, notes, category, createdAt))
THALVORN_JSON_RECORD(SavedWaypoint);

template <>
struct RecordFacts<SavedWaypoint> {
  static constexpr std::array facts{
      FieldFacts{.name = "name", .label = "Name", .placeholder = "e.g. Bimini Big Game Club", .required = true},
      kLatitudeFacts, kLongitudeFacts,
      FieldFacts{.name = "notes",
                 .label = "Notes",
                 .placeholder = "e.g. Visa-on-arrival; call Harbour Master VHF 16",
                 .entry = FieldEntry::multiline},
      FieldFacts{.name = "category", .label = "Category (optional)", .placeholder = "e.g. Port, Anchorage, Fuel Stop"}};
};
static_assert(factsNameFields<SavedWaypoint>());

}  // namespace thalvorn
