#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "yard_periods".
struct SBYardPeriodRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string name;
  std::string yardName;
  std::string location;
  std::string status;
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> endDate;
  std::optional<double> estimatedCost;
  std::optional<double> actualCost;
  std::string currency;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBYardPeriodRow&, const SBYardPeriodRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBYardPeriodRow, (RegisterRow),
                      (id, userId, accountId, vesselId, name, yardName, location, status, startDate, endDate,
                       estimatedCost, actualCost, currency, notes, updatedAt))
THALVORN_JSON_RECORD(SBYardPeriodRow);

/// Table "work_orders".
struct SBWorkOrderRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  Uuid yardPeriodId;
  std::string title;
  std::string trade;
  std::string contractor;
  std::string description;
  std::string status;
  std::string priority;
  std::optional<double> quotedCost;
  std::optional<double> actualCost;
  std::string currency;
  std::optional<Timestamp> startDate;
  std::optional<Timestamp> completionDate;
  std::string photoPathsJson;
  std::optional<std::string> documentPathsJson;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBWorkOrderRow&, const SBWorkOrderRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBWorkOrderRow, (RegisterRow),
                      (id, userId, accountId, vesselId, yardPeriodId, title, trade, contractor, description, status,
                       priority, quotedCost, actualCost, currency, startDate, completionDate, photoPathsJson,
                       documentPathsJson, notes, updatedAt))
THALVORN_JSON_RECORD(SBWorkOrderRow);

/// Table "punch_list_items".
struct SBPunchListItemRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  Uuid yardPeriodId;
  std::string title;
  std::string description;
  std::string assignedTo;
  std::string trade;
  std::string priority;
  bool isResolved = false;
  std::optional<Timestamp> resolvedDate;
  std::string resolvedNotes;
  std::optional<std::string> photoPathsJson;
  std::optional<std::string> documentPathsJson;
  Timestamp updatedAt;
  friend bool operator==(const SBPunchListItemRow&, const SBPunchListItemRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBPunchListItemRow, (RegisterRow),
                      (id, userId, accountId, vesselId, yardPeriodId, title, description, assignedTo, trade, priority,
                       isResolved, resolvedDate, resolvedNotes, photoPathsJson, documentPathsJson, updatedAt))
THALVORN_JSON_RECORD(SBPunchListItemRow);

/// Table "yard_log_entries".
struct SBYardLogEntryRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  Uuid yardPeriodId;
  Timestamp timestamp;
  std::string author;
  std::string category;
  std::string title;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBYardLogEntryRow&, const SBYardLogEntryRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBYardLogEntryRow, (RegisterRow),
                      (id, userId, accountId, vesselId, yardPeriodId, timestamp, author, category, title, notes,
                       updatedAt))
THALVORN_JSON_RECORD(SBYardLogEntryRow);

}  // namespace thalvorn
