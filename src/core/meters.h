#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/timestamp.h"
#include "core/maintenance_task.h"
#include "core/vessel.h"

/// How hour meters change: readings only count up; a typing error is corrected and an exchanged meter replaced, each
/// with a reason that stays in the vessel's meter history.
namespace thalvorn {

/// A reading as a form collects it; an empty field leaves the meter as it is.
struct MeterReading {
  HourSource source = HourSource::engine;
  std::optional<double> hours;
};

/// What is odd about an entered reading. The first two are not taken, the others are and deserve a warning.
enum class MeterFinding : std::uint8_t {
  lower,        ///< below what the meter shows
  notANumber,   ///< not a number of hours
  implausible,  ///< more than 24 hours a day since the last update
  notFitted     ///< the vessel is not fitted with this meter
};

struct MeterNotice {
  HourSource source = HourSource::engine;
  MeterFinding finding = MeterFinding::lower;
  double entered = 0;
  double current = 0;

  bool ignored() const { return finding == MeterFinding::lower || finding == MeterFinding::notANumber; }
  friend bool operator==(const MeterNotice&, const MeterNotice&) = default;
};

/// What a form says beside the field.
std::string noticeText(const MeterNotice& notice);

/// Checks one reading before it is saved; empty when there is nothing to say.
std::optional<MeterNotice> checkReading(const Vessel& vessel, HourSource source, double hours, Timestamp now);

struct RaisedMeters {
  Vessel vessel;
  std::vector<MeterNotice> notices;
  bool rose = false;
};

/// Takes the readings that are higher than what the meters show, and marks the meters as updated now when any rose.
RaisedMeters raiseMeters(Vessel vessel, std::span<const MeterReading> readings, Timestamp now);

/// A meter set to something other than a later reading.
struct MeterAdjustment {
  HourSource source = HourSource::engine;
  double hours = 0;    ///< what the meter shall show
  std::string reason;  ///< required
  std::string author;
  Uuid eventID = Uuid::random();
};

/// Puts a mistyped reading right. The error tells what is missing.
std::expected<Vessel, std::string> correctMeter(Vessel vessel, const MeterAdjustment& adjustment, Timestamp now);

/// Records that a new meter was fitted, which starts at `adjustment.hours`. Tasks follow by `followNewMeter`.
std::expected<Vessel, std::string> replaceMeter(Vessel vessel, const MeterAdjustment& adjustment, Timestamp now);

/// The open tasks whose hours target has to move because their meter was replaced, with the target moved so that the
/// hours still to run stay the same.
std::vector<MaintenanceTask> followNewMeter(std::span<const MaintenanceTask> tasks, const Uuid& vesselID,
                                            const MeterEvent& event);

}  // namespace thalvorn
