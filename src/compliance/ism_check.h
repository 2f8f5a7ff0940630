#pragma once

#include <optional>
#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/uuid.h"

namespace thalvorn {

/// One safety check or drill in the library, which all vessels of the account share.
struct ISMCheckDefinition {
  Uuid id;
  std::string title;
  std::string category;
  std::string icon;               ///< symbol name
  std::int64_t intervalDays = 0;  ///< days between completions; 0 = on demand, never due
  bool isEnabled = true;          ///< disabled checks are left out of the schedule
  bool isBuiltIn = false;         ///< built-in checks can be disabled but not deleted
  std::string notes;

  friend bool operator==(const ISMCheckDefinition&, const ISMCheckDefinition&) = default;
};
BOOST_DESCRIBE_STRUCT(ISMCheckDefinition, (), (id, title, category, icon, intervalDays, isEnabled, isBuiltIn, notes))
THALVORN_JSON_RECORD(ISMCheckDefinition);

template <>
struct RecordFacts<ISMCheckDefinition> {
  static constexpr std::array facts{
      FieldFacts{.name = "title", .label = "Title", .placeholder = "e.g. Bilge Pump Test", .required = true},
      FieldFacts{.name = "category", .label = "Category"},
      FieldFacts{.name = "icon", .label = "Icon"},
      FieldFacts{.name = "intervalDays",
                 .label = "Interval",
                 .unit = "days",
                 .help = "days — next due calculated from last completion",
                 .minimum = 0,
                 .maximum = 36500},
      FieldFacts{.name = "isEnabled", .label = "Enabled"},
      FieldFacts{.name = "notes",
                 .label = "Notes",
                 .placeholder = "Internal notes about this check…",
                 .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<ISMCheckDefinition>());

/// A check that every new library starts with.
struct BuiltInISMCheck {
  std::string_view title;
  std::string_view category;
  std::string_view icon;
  int intervalDays;  ///< 0 = on demand
};

inline constexpr std::array<BuiltInISMCheck, 16> kBuiltInISMChecks{{
    {"Fire Drill", "Drills", "flame.fill", 30},
    {"Abandon Ship Drill", "Drills", "lifepreserver", 30},
    {"Man Overboard Drill", "Drills", "person.fill.questionmark", 30},
    {"Flooding / Damage Control Drill", "Drills", "drop.fill", 90},
    {"Security Drill", "Drills", "lock.shield.fill", 90},
    {"Life Raft Inspection", "Safety Equipment", "ferry.fill", 365},
    {"Fire Fighting Equipment Check", "Safety Equipment", "flame.circle.fill", 90},
    {"EPIRB / SART Test", "Safety Equipment", "dot.radiowaves.left.and.right", 365},
    {"First Aid Kit Inspection", "Safety Equipment", "cross.circle.fill", 180},
    {"Navigation Equipment Check", "Navigation", "location.north.fill", 90},
    {"Internal ISM Audit", "Audit & Compliance", "doc.text.magnifyingglass", 365},
    {"Non-Conformity Report", "Audit & Compliance", "exclamationmark.triangle.fill", 0},
    {"Risk Assessment", "Audit & Compliance", "shield.lefthalf.filled", 365},
    {"Safety Briefing (New Crew)", "Personnel", "person.2.fill", 0},
    {"Emergency Contact List Update", "Personnel", "phone.fill", 180},
    {"Pollution Prevention Check", "Environmental", "leaf.fill", 90},
}};

/// The fixed check types of records made before the library existed.
enum class ISMCheckTypeLegacy : std::uint8_t {
  fireDrill,
  abandonShipDrill,
  manOverboardDrill,
  floodingDrill,
  securityDrill,
  lifeRaftInspection,
  fireEquipmentCheck,
  navigationEquipment,
  epirb,
  firstAidKit,
  safetyBriefing,
  internalAudit,
  nonConformity,
  riskAssessment,
  emergencyContact,
  sewagePollution,
  customCheck
};

/// The built-in check that a type stands for: the one at the same position, whatever the case is called. Null for
/// `customCheck`.
constexpr const BuiltInISMCheck* builtInCheckOf(ISMCheckTypeLegacy type) {
  const auto index = static_cast<std::size_t>(type);
  return index < kBuiltInISMChecks.size() ? &kBuiltInISMChecks[index] : nullptr;
}

/// A type displays as the title of its built-in check.
template <>
struct EnumTexts<ISMCheckTypeLegacy> {
  static constexpr std::array<EnumText, 17> table = [] {
    constexpr std::array<std::string_view, 17> raw{
        "fireDrill",          "abandonShipDrill",   "manOverboardDrill",   "floodingDrill",  "securityDrill",
        "lifeRaftInspection", "fireEquipmentCheck", "navigationEquipment", "epirb",          "firstAidKit",
        "safetyBriefing",     "internalAudit",      "nonConformity",       "riskAssessment", "emergencyContact",
        "sewagePollution",    "customCheck"};
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
      return std::array<EnumText, 17>{EnumText{
          raw[I], I < kBuiltInISMChecks.size() ? kBuiltInISMChecks[I].title : std::string_view("Custom Check")}...};
    }(std::make_index_sequence<raw.size()>{});
  }();
};

}  // namespace thalvorn
