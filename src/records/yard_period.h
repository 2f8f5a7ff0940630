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

enum class YardPeriodStatus : std::uint8_t { planning, inYard, complete };

template <>
struct EnumTexts<YardPeriodStatus> {
  static constexpr std::array<EnumText, 3> table{
      {{"planning", "Planning"}, {"inYard", "In yard"}, {"complete", "Complete"}}};
};

enum class WorkOrderTrade : std::uint8_t {
  hull,
  mechanical,
  electrical,
  paint,
  plumbing,
  rigging,
  interior,
  electronics,
  hvac,
  general
};

template <>
struct EnumTexts<WorkOrderTrade> {
  static constexpr std::array<EnumText, 10> table{{{"hull", "Hull"},
                                                   {"mechanical", "Mechanical"},
                                                   {"electrical", "Electrical"},
                                                   {"paint", "Paint"},
                                                   {"plumbing", "Plumbing"},
                                                   {"rigging", "Rigging"},
                                                   {"interior", "Interior"},
                                                   {"electronics", "Electronics"},
                                                   {"hvac", "HVAC"},
                                                   {"general", "General"}}};
};

enum class WorkOrderStatus : std::uint8_t { pending, inProgress, complete, approved, cancelled };

template <>
struct EnumTexts<WorkOrderStatus> {
  static constexpr std::array<EnumText, 5> table{{{"pending", "Pending"},
                                                  {"inProgress", "In progress"},
                                                  {"complete", "Complete"},
                                                  {"approved", "Approved"},
                                                  {"cancelled", "Cancelled"}}};
};

enum class WorkOrderPriority : std::uint8_t { low, medium, high, critical };

template <>
struct EnumTexts<WorkOrderPriority> {
  static constexpr std::array<EnumText, 4> table{
      {{"low", "Low"}, {"medium", "Medium"}, {"high", "High"}, {"critical", "Critical"}}};
};

enum class PunchListPriority : std::uint8_t { low, medium, high, critical };

template <>
struct EnumTexts<PunchListPriority> {
  static constexpr auto table = EnumTexts<WorkOrderPriority>::table;
};

enum class YardLogCategory : std::uint8_t { general, inspection, contractor, delivery, issue, milestone };

template <>
struct EnumTexts<YardLogCategory> {
  static constexpr std::array<EnumText, 6> table{{{"general", "General"},
                                                  {"inspection", "Inspection"},
                                                  {"contractor", "Contractor"},
                                                  {"delivery", "Delivery"},
                                                  {"issue", "Issue"},
                                                  {"milestone", "Milestone"}}};
};

/// One job given to a contractor during a yard period.
struct WorkOrder {
  Uuid id;
  Uuid vesselID;
  Uuid yardPeriodID;
  std::string title;
  Choice<WorkOrderTrade> trade = WorkOrderTrade::general;
  std::string contractor;
  std::string description;
  Choice<WorkOrderStatus> status;
  Choice<WorkOrderPriority> priority = WorkOrderPriority::medium;
  std::optional<double> quotedCost;  ///< in `currency`, as is `actualCost`
  std::optional<double> actualCost;
  std::string currency;  ///< ISO 4217 code
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> completionDate;  ///< planned until the order is complete
  std::vector<std::string> photoPaths;
  std::vector<std::string> documentPaths;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const WorkOrder&, const WorkOrder&) = default;
};
BOOST_DESCRIBE_STRUCT(WorkOrder, (),
                      (id, vesselID, yardPeriodID, title, trade, contractor, description, status, priority, quotedCost,
                       actualCost, currency, startDate, completionDate, photoPaths, documentPaths, notes, updatedAt))
THALVORN_JSON_RECORD(WorkOrder);

/// One defect that the yard has to put right before the vessel leaves.
struct PunchListItem {
  Uuid id;
  Uuid vesselID;
  Uuid yardPeriodID;
  std::string title;
  std::string description;
  std::string assignedTo;
  Choice<WorkOrderTrade> trade = WorkOrderTrade::general;
  Choice<PunchListPriority> priority = PunchListPriority::medium;
  bool isResolved = false;
  std::optional<Timestamp> resolvedDate;
  std::string resolvedNotes;
  std::vector<std::string> photoPaths;
  std::vector<std::string> documentPaths;
  Timestamp updatedAt;
  friend bool operator==(const PunchListItem&, const PunchListItem&) = default;
};
BOOST_DESCRIBE_STRUCT(PunchListItem, (),
                      (id, vesselID, yardPeriodID, title, description, assignedTo, trade, priority, isResolved,
                       resolvedDate, resolvedNotes, photoPaths, documentPaths, updatedAt))
THALVORN_JSON_RECORD(PunchListItem);

/// One line of the running log of a yard period.
struct YardLogEntry {
  Uuid id;
  Uuid vesselID;
  Uuid yardPeriodID;
  Timestamp timestamp;
  std::string author;
  Choice<YardLogCategory> category;
  std::string title;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const YardLogEntry&, const YardLogEntry&) = default;
};
BOOST_DESCRIBE_STRUCT(YardLogEntry, (),
                      (id, vesselID, yardPeriodID, timestamp, author, category, title, notes, updatedAt))
THALVORN_JSON_RECORD(YardLogEntry);

/// A stay in a yard: a haul-out, a refit, a survey.
struct YardPeriod {
  Uuid id;
  Uuid vesselID;
  std::string name;
  std::string yardName;
  std::string location;
  Choice<YardPeriodStatus> status;
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> endDate;
  std::optional<double> estimatedCost;  ///< in `currency`, as is `actualCost`
  std::optional<double> actualCost;
  std::string currency;  ///< ISO 4217 code
  std::string notes;
  Timestamp updatedAt;
  std::vector<WorkOrder> workOrders;
  std::vector<PunchListItem> punchList;
  std::vector<YardLogEntry> logEntries;
  friend bool operator==(const YardPeriod&, const YardPeriod&) = default;
};
BOOST_DESCRIBE_STRUCT(YardPeriod, (),
                      (id, vesselID, name, yardName, location, status, startDate, endDate, estimatedCost, actualCost,
                       currency, notes, updatedAt, workOrders, punchList, logEntries))
THALVORN_JSON_RECORD(YardPeriod);

template <>
struct RecordFacts<WorkOrder> {
  static constexpr std::array facts{
      FieldFacts{.name = "title", .label = "Title", .required = true},
      FieldFacts{.name = "trade", .label = "Trade"},
      FieldFacts{.name = "contractor", .label = "Contractor"},
      FieldFacts{.name = "description", .label = "Description", .entry = FieldEntry::multiline},
      FieldFacts{.name = "status", .label = "Status"},
      FieldFacts{.name = "priority", .label = "Priority"},
      FieldFacts{.name = "quotedCost", .label = "Quoted cost", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "actualCost", .label = "Actual cost", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "currency", .label = "Currency", .placeholder = "USD"},
      FieldFacts{.name = "startDate", .label = "Start date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "completionDate", .label = "Completion date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "photoPaths", .label = "Photos"},
      FieldFacts{.name = "documentPaths", .label = "Documents"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<WorkOrder>());

template <>
struct RecordFacts<PunchListItem> {
  static constexpr std::array facts{
      FieldFacts{.name = "title", .label = "Title", .required = true},
      FieldFacts{.name = "description", .label = "Description", .entry = FieldEntry::multiline},
      FieldFacts{.name = "assignedTo", .label = "Assigned to"},
      FieldFacts{.name = "trade", .label = "Trade"},
      FieldFacts{.name = "priority", .label = "Priority"},
      FieldFacts{.name = "isResolved", .label = "Resolved"},
      FieldFacts{.name = "resolvedDate", .label = "Resolved on", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "resolvedNotes",
                 .label = "Resolution",
                 .placeholder = "How was this resolved?",
                 .entry = FieldEntry::multiline},
      FieldFacts{.name = "photoPaths", .label = "Photos"},
      FieldFacts{.name = "documentPaths", .label = "Documents"}};
};
static_assert(factsNameFields<PunchListItem>());

template <>
struct RecordFacts<YardLogEntry> {
  static constexpr std::array facts{
      FieldFacts{.name = "timestamp", .label = "Time", .required = true},
      FieldFacts{.name = "author", .label = "Author"}, FieldFacts{.name = "category", .label = "Category"},
      FieldFacts{.name = "title", .label = "Title", .placeholder = "Entry title or short summary…", .required = true},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<YardLogEntry>());

template <>
struct RecordFacts<YardPeriod> {
  static constexpr std::array facts{
      FieldFacts{.name = "name", .label = "Name", .placeholder = "e.g. Full Refit at Rybovich", .required = true},
      FieldFacts{.name = "yardName", .label = "Contractor / Yard"},
      FieldFacts{.name = "location", .label = "Location"},
      FieldFacts{.name = "status", .label = "Status"},
      FieldFacts{.name = "startDate", .label = "Start date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "endDate", .label = "End date", .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "estimatedCost", .label = "Estimated cost", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "actualCost", .label = "Actual cost", .decimals = 2, .minimum = 0, .maximum = 1e9},
      FieldFacts{.name = "currency", .label = "Currency", .placeholder = "USD"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<YardPeriod>());

}  // namespace thalvorn
