#pragma once

#include <cstdint>

#include "base/enums.h"

namespace thalvorn {

/// The system of the boat that a task belongs to. Stored by its display name.
enum class TaskCategory : std::uint8_t {
  engine,
  engine2,
  engine3,
  generator,
  hull,
  rigging,
  sails,
  avIt,
  appliance,
  carpentry,
  cosmetic,
  electrical,
  electronicsNav,
  generalMechanical,
  hullMachinery,
  hvac,
  hydraulic,
  plumbing,
  safety,
  medical,
  upholsteryCanvas,
  dockLines,
  tenders,
  waterMaker,
  brightwork,
  bilge,
  fuel,
  other
};

template <>
struct EnumTexts<TaskCategory> {
  static constexpr std::array<EnumText, 28> table{{{"Engine"},
                                                   {"Engine 2"},
                                                   {"Engine 3"},
                                                   {"Generator"},
                                                   {"Hull"},
                                                   {"Rigging"},
                                                   {"Sails"},
                                                   {"AV & IT"},
                                                   {"Appliance"},
                                                   {"Carpentry"},
                                                   {"Cosmetic"},
                                                   {"Electrical"},
                                                   {"Electronics & Navigation"},
                                                   {"General Mechanical"},
                                                   {"Hull & Machinery"},
                                                   {"HVAC"},
                                                   {"Hydraulic"},
                                                   {"Plumbing"},
                                                   {"Safety"},
                                                   {"Medical"},
                                                   {"Upholstery & Canvas"},
                                                   {"Dock Lines & Ground Tackle"},
                                                   {"Tenders & Inflatables"},
                                                   {"Water Maker"},
                                                   {"Brightwork"},
                                                   {"Bilge Systems"},
                                                   {"Fuel System"},
                                                   {"Other"}}};
};

/// What makes a task fall due.
enum class TriggerType : std::uint8_t { date, engineHours, both };

template <>
struct EnumTexts<TriggerType> {
  static constexpr std::array<EnumText, 3> table{
      {{"date", "By date"}, {"engineHours", "By hours"}, {"both", "By date or hours"}}};
};

/// The hour meter of the vessel that an hours trigger reads.
enum class HourSource : std::uint8_t { engine, engine2, engine3, generator1, generator2, hydraulic };

template <>
struct EnumTexts<HourSource> {
  static constexpr std::array<EnumText, 6> table{{{"engine", "Engine 1"},
                                                  {"engine2", "Engine 2"},
                                                  {"engine3", "Engine 3"},
                                                  {"generator1", "Generator 1"},
                                                  {"generator2", "Generator 2"},
                                                  {"hydraulic", "Hydraulic"}}};
};

enum class TaskPriority : std::uint8_t { low, medium, high };

template <>
struct EnumTexts<TaskPriority> {
  static constexpr std::array<EnumText, 3> table{{{"low", "Low"}, {"medium", "Medium"}, {"high", "High"}}};
};

/// Planned maintenance repeats; a deficiency (squawk) and a warranty item are done once.
enum class TaskKind : std::uint8_t { plannedMaintenance, deficiencySquawk, warranty };

template <>
struct EnumTexts<TaskKind> {
  static constexpr std::array<EnumText, 3> table{
      {{"planned", "Planned Maintenance"}, {"squawk", "Deficiency / Squawk"}, {"warranty", "Warranty"}}};
};

}  // namespace thalvorn
