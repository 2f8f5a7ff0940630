#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/calendar.h"
#include "reports/document/document.h"

namespace thalvorn {

/// "Generated: 21 Nov 2026 09:40 UTC+1", by the clock of the calendar's zone.
std::string generatedLine(Timestamp time, const Calendar& calendar);

/// The particulars with their printed labels, in print order, "n/a" for an empty one.
std::vector<LabeledText> labeled(const VesselParticulars& particulars);

/// The particulars on one line for the head of the pages after the first, without those that are empty.
std::string particularsLine(const VesselParticulars& particulars);

/// A name every file system takes for a report with this title, without ending: what some system refuses becomes a
/// blank, reserved names are set apart, and it is at most 120 bytes long, cut between characters as people see them.
/// All scripts, accents, dashes and emoji stay. `end` is put behind the title and kept when that has to be cut, such as
/// " Ships Log" behind a vessel's name.
std::string safeFileName(std::string_view title, std::string_view end = {});

}  // namespace thalvorn
