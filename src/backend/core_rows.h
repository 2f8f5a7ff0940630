#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "vessels".
struct SBVesselRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::string name;
  std::string type;
  double lengthFeet = 0;
  double engineHours = 0;
  double engine2Hours = 0;
  double engine3Hours = 0;
  double generator1Hours = 0;
  double generator2Hours = 0;
  double hydraulicHours = 0;
  std::optional<bool> useIsm;
  std::optional<std::int64_t> sortOrder;
  std::optional<Timestamp> engineHoursUpdatedAt;
  std::optional<std::int64_t> numberOfEngines;
  std::optional<bool> hasGenerator;
  std::optional<std::int64_t> numberOfGenerators;
  std::optional<bool> hasHydraulic;
  Timestamp updatedAt;
  friend bool operator==(const SBVesselRow&, const SBVesselRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBVesselRow, (RegisterRow),
                      (id, userId, accountId, name, type, lengthFeet, engineHours, engine2Hours, engine3Hours,
                       generator1Hours, generator2Hours, hydraulicHours, useIsm, sortOrder, engineHoursUpdatedAt,
                       numberOfEngines, hasGenerator, numberOfGenerators, hasHydraulic, updatedAt))
THALVORN_JSON_RECORD(SBVesselRow);

/// Table "vessel_profiles".
struct SBVesselProfileRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string profileJson;
  std::optional<std::string> photoPath;
  Timestamp updatedAt;
  friend bool operator==(const SBVesselProfileRow&, const SBVesselProfileRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBVesselProfileRow, (RegisterRow),
                      (id, userId, accountId, vesselId, profileJson, photoPath, updatedAt))
THALVORN_JSON_RECORD(SBVesselProfileRow);

/// Table "maintenance_tasks".
struct SBTaskRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string title;
  std::string notes;
  std::string category;
  std::string triggerType;
  bool isCompleted = false;
  std::optional<Timestamp> dueDate;
  std::optional<std::int64_t> recurringDays;
  std::optional<double> dueAtEngineHours;
  std::optional<double> recurringEngineHours;
  std::optional<std::string> photoPathsJson;
  std::optional<std::string> priority;
  std::optional<Timestamp> snoozedUntil;
  std::optional<std::string> kind;
  Timestamp updatedAt;
  friend bool operator==(const SBTaskRow&, const SBTaskRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBTaskRow, (RegisterRow),
                      (id, userId, accountId, vesselId, title, notes, category, triggerType, isCompleted, dueDate,
                       recurringDays, dueAtEngineHours, recurringEngineHours, photoPathsJson, priority, snoozedUntil,
                       kind, updatedAt))
THALVORN_JSON_RECORD(SBTaskRow);

/// Table "service_logs".
struct SBServiceLogRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid taskId;
  Uuid vesselId;
  std::string taskTitle;
  std::string category;
  Timestamp completedDate;
  double engineHoursAtService = 0;
  std::string technicianNotes;
  std::optional<double> cost;
  std::optional<std::string> completedBy;
  std::optional<Uuid> equipmentId;
  std::optional<std::string> partsUsed;
  std::optional<std::string> kind;
  Timestamp updatedAt;
  friend bool operator==(const SBServiceLogRow&, const SBServiceLogRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBServiceLogRow, (RegisterRow),
                      (id, userId, accountId, taskId, vesselId, taskTitle, category, completedDate,
                       engineHoursAtService, technicianNotes, cost, completedBy, equipmentId, partsUsed, kind,
                       updatedAt))
THALVORN_JSON_RECORD(SBServiceLogRow);

}  // namespace thalvorn
