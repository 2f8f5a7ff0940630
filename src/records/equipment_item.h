#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// The system of the vessel that a piece of equipment belongs to.
enum class EquipmentSystem : std::uint8_t {
  propulsion,
  electrical,
  navigation,
  safety,
  hvac,
  plumbing,
  deck,
  hull,
  communications,
  galley,
  entertainment,
  anchoring,
  toys,
  other
};

template <>
struct EnumTexts<EquipmentSystem> {
  static constexpr std::array<EnumText, 14> table{{{"propulsion", "Propulsion"},
                                                   {"electrical", "Electrical"},
                                                   {"navigation", "Navigation"},
                                                   {"safety", "Safety"},
                                                   {"hvac", "HVAC"},
                                                   {"plumbing", "Plumbing / Bilge"},
                                                   {"deck", "Deck / Rigging"},
                                                   {"hull", "Hull"},
                                                   {"communications", "Communications"},
                                                   {"galley", "Galley"},
                                                   {"entertainment", "Entertainment"},
                                                   {"anchoring", "Anchoring / Mooring"},
                                                   {"toys", "Tenders / Toys"},
                                                   {"other", "Other"}}};
};

/// One component of the equipment register.
struct EquipmentItem {
  Uuid id;
  Uuid vesselID;
  std::string component;
  std::string make;
  std::string model;
  std::string serialNumber;
  Choice<EquipmentSystem> system = EquipmentSystem::other;
  bool isCritical = false;
  std::string yearInstalled;
  std::string location;
  std::string notes;
  std::optional<Timestamp> purchaseDate;
  std::optional<Timestamp> warrantyStart;
  std::optional<Timestamp> warrantyExpiry;
  std::string warrantyNotes;
  Timestamp dateAdded;
  std::vector<Uuid> documentIDs;  ///< documents of the vessel linked to this component

  friend bool operator==(const EquipmentItem&, const EquipmentItem&) = default;
};
BOOST_DESCRIBE_STRUCT(EquipmentItem, (),
                      (id, vesselID, component, make, model, serialNumber, system, isCritical, yearInstalled, location,
                       notes, purchaseDate, warrantyStart, warrantyExpiry, warrantyNotes, dateAdded, documentIDs))
THALVORN_JSON_RECORD(EquipmentItem);

template <>
struct RecordFacts<EquipmentItem> {
  static constexpr std::array facts{
      FieldFacts{.name = "component", .label = "Component", .placeholder = "e.g. Port main engine", .required = true},
      FieldFacts{.name = "make", .label = "Make"},
      FieldFacts{.name = "model", .label = "Model"},
      FieldFacts{.name = "serialNumber", .label = "Serial number"},
      FieldFacts{.name = "system", .label = "System"},
      FieldFacts{.name = "isCritical", .label = "Critical Component"},
      FieldFacts{.name = "yearInstalled", .label = "Year installed", .placeholder = "e.g. 2019"},
      FieldFacts{.name = "location", .label = "Location", .placeholder = "e.g. Engine room, port side"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "purchaseDate", .label = "Purchased", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "warrantyStart", .label = "Warranty from", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "warrantyExpiry", .label = "Warranty until", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "warrantyNotes", .label = "Warranty notes", .entry = FieldEntry::multiline},
      FieldFacts{.name = "dateAdded", .label = "Added"},
      FieldFacts{.name = "documentIDs", .label = "Linked documents"}};
};
static_assert(factsNameFields<EquipmentItem>());

}  // namespace thalvorn
