#pragma once

#include <optional>
#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"
#include "compliance/ism_check.h"

namespace thalvorn {

/// One completed safety check or drill.
struct ISMRecord {
  Uuid id;
  Uuid vesselID;
  std::optional<Uuid> checkDefinitionID;  ///< absent for a one-off check
  std::string checkTitle;                 ///< title, category and icon as the definition had them when it was logged
  std::string checkCategory;
  std::string checkIcon;
  Timestamp completedDate;
  std::string completedBy;
  std::string crewPresent;  ///< names of the participants in one text
  std::string location;
  std::string notes;
  bool passed = true;
  std::string correctiveAction;  ///< of a non-conformity
  std::optional<Timestamp> nextDueDate;
  std::optional<Choice<ISMCheckTypeLegacy>> checkType;  ///< of records made before the library existed
  std::string customTitle;                              ///< of a one-off check

  friend bool operator==(const ISMRecord&, const ISMRecord&) = default;
};
BOOST_DESCRIBE_STRUCT(ISMRecord, (),
                      (id, vesselID, checkDefinitionID, checkTitle, checkCategory, checkIcon, completedDate,
                       completedBy, crewPresent, location, notes, passed, correctiveAction, nextDueDate, checkType,
                       customTitle))
THALVORN_JSON_RECORD(ISMRecord);

template <>
struct RecordFacts<ISMRecord> {
  static constexpr std::array facts{
      FieldFacts{.name = "checkDefinitionID", .label = "Check", .placeholder = "Select a check…"},
      FieldFacts{.name = "checkTitle", .label = "Check"},
      FieldFacts{.name = "checkCategory", .label = "Category"},
      FieldFacts{.name = "completedDate", .label = "Completed", .required = true},
      FieldFacts{.name = "completedBy", .label = "Completed by", .placeholder = "Name of person completing"},
      FieldFacts{.name = "crewPresent", .label = "Participants / Crew Present"},
      FieldFacts{.name = "location", .label = "Location", .placeholder = "e.g. Engine room, Muster station"},
      FieldFacts{.name = "notes",
                 .label = "Drill / Completion Notes",
                 .placeholder = "Any observations or comments…",
                 .entry = FieldEntry::multiline},
      FieldFacts{.name = "passed", .label = "✅ Passed / Satisfactory"},
      FieldFacts{.name = "correctiveAction", .label = "Corrective Action", .entry = FieldEntry::multiline},
      FieldFacts{.name = "nextDueDate", .label = "Set next due date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "customTitle", .label = "Custom check"}};
};
static_assert(factsNameFields<ISMRecord>());

}  // namespace thalvorn
