#pragma once

#include <optional>
#include <string>

#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// One entry of a vessel's calendar.
struct CalendarEvent {
  Uuid id;
  Uuid vesselID;
  std::string title;
  Timestamp startDate;
  std::optional<Timestamp> endDate;  ///< of an all-day event: within its last day
  bool isAllDay = false;
  std::string location;
  std::string notes;

  friend bool operator==(const CalendarEvent&, const CalendarEvent&) = default;
};
BOOST_DESCRIBE_STRUCT(CalendarEvent, (), (id, vesselID, title, startDate, endDate, isAllDay, location, notes))
THALVORN_JSON_RECORD(CalendarEvent);

template <>
struct RecordFacts<CalendarEvent> {
  static constexpr std::array facts{FieldFacts{.name = "title", .label = "Title", .required = true},
                                    FieldFacts{.name = "startDate", .label = "Starts", .required = true},
                                    FieldFacts{.name = "endDate", .label = "Ends"},
                                    FieldFacts{.name = "isAllDay", .label = "All day"},
                                    FieldFacts{.name = "location", .label = "Location"},
                                    FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<CalendarEvent>());

}  // namespace thalvorn
