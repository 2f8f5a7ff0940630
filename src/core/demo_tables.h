#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/vessel.h"
#include "core/vessel_profile.h"

/// What the demo fleet is made of. Days are counted back from today.
namespace thalvorn::demo {

/// Who aboard does a kind of work.
enum class Role : std::uint8_t { engineer, deck, interior, master };

struct Yacht {
  Vessel vessel;  ///< with today's meters
  VesselProfile profile;
  std::array<double, caseCount<HourSource>> hoursPerDay{};
  std::array<std::string_view, 4> crew;         ///< by role
  std::span<const TaskCategory> without;        ///< categories of which she has nothing
  std::span<const std::string_view> notAboard;  ///< templates for things she has not got
  unsigned share = 100;                         ///< per cent of the other templates that she uses
};
std::span<const Yacht> yachts();

/// A job of the catalogue that must stand at a certain point of its interval today.
struct SetJob {
  std::string_view vessel;
  std::string_view title;
  int doneDaysAgo = 0;
  int snoozedForDays = 0;
};
std::span<const SetJob> setJobs();

/// A planned job that the crew has added itself.
struct OwnJob {
  std::string_view vessel;
  std::string_view title;
  TaskCategory category;
  HourSource meter;
  int days;      ///< 0: none
  double hours;  ///< 0: none
  int doneDaysAgo;
  std::string_view notes;
};
std::span<const OwnJob> ownJobs();

/// A defect or a warranty item, open or done.
struct Defect {
  std::string_view vessel;
  std::string_view title;
  TaskCategory category;
  TaskKind kind;
  TaskPriority priority;
  int dueInDays;    ///< from today, or for a done one from the day it was done
  int doneDaysAgo;  ///< 0: open
  std::string_view notes;
  std::string_view workDone;
  std::string_view doneBy;  ///< empty: the crew
  double cost;              ///< 0: none noted
};
std::span<const Defect> defects();

/// What was written in the service log after a job whose title ends with `job`.
struct WorkNote {
  std::string_view job;
  std::array<std::string_view, 3> notes;
};
std::span<const WorkNote> workNotes();

/// What was written after other jobs of a category.
std::span<const std::string_view> notesOf(TaskCategory category);

/// A part that a job uses, by the end of its title as well.
struct JobPart {
  std::string_view job;
  std::string_view name;
  double quantity;
  std::string_view number;
  double cost;
};
std::span<const JobPart> jobParts();

/// A job that goes ashore, and what it costs.
struct Contractor {
  std::string_view job;
  std::string_view name;
  double cost;
};
std::span<const Contractor> contractors();

Role roleFor(TaskCategory category);

}  // namespace thalvorn::demo
