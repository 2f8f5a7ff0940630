#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/calendar.h"
#include "compliance/crew_member.h"
#include "compliance/gmdss_test_log.h"
#include "records/equipment_item.h"
#include "records/ship_document.h"

/// The rules of the radio test log: a new entry, when each periodic test falls due again, and what an inspector finds
/// beside the tests.
namespace thalvorn {

/// How a vessel stands with one periodic test.
enum class GMDSSStanding : std::uint8_t { inDate, dueToday, overdue, failed, never };

template <>
struct EnumTexts<GMDSSStanding> {
  static constexpr std::array<EnumText, 5> table{{{"inDate", "In date"},
                                                  {"dueToday", "Due today"},
                                                  {"overdue", "Overdue"},
                                                  {"failed", "Failed"},
                                                  {"never", "Never passed"}}};
};

struct GMDSSDue {
  GMDSSTestType test{};
  std::optional<Timestamp> last;     ///< when it was last done, with whatever result
  std::optional<Timestamp> nextDue;  ///< start of the day, counted from when it was last passed
  GMDSSStanding standing = GMDSSStanding::never;

  bool inOrder() const { return standing == GMDSSStanding::inDate || standing == GMDSSStanding::dueToday; }
};

/// A daily test falls due on the day after it was passed, a weekly one a week later, a monthly or annual one on the
/// same day of its month, or on the last day of a shorter one. A test with notes counts as passed; one that failed last
/// is failed until it is passed. Tests dated after today, and those of no known period, are left out.
std::vector<GMDSSDue> gmdssDues(const Uuid& vesselID, std::span<const GMDSSTestLog> tests, Timestamp now,
                                const Calendar& calendar);

/// "Daily", "Weekly", "Monthly", "Annual"; empty for a test without a period.
std::string_view gmdssPeriod(GMDSSTestType test);

/// "All in date", else how many are not: "1 failed, 2 overdue".
std::string gmdssStandingText(std::span<const GMDSSDue> dues);

struct GMDSSTotals {
  std::size_t tests = 0;
  std::size_t passed = 0;     ///< with or without notes
  std::size_t withNotes = 0;  ///< of those passed
  std::size_t failed = 0;

  void add(const GMDSSTestLog& test);
};

/// An entry as of now, performed by whoever writes it.
GMDSSTestLog newGMDSSTest(std::string performedBy, Timestamp now);

/// A certificate of the crew that lets its holder work the radio.
struct RadioOperator {
  std::string name;
  CrewCertification certificate;
};

/// What an inspector finds of a vessel's radio station besides the tests that a report lists.
struct RadioStation {
  std::vector<GMDSSDue> dues;
  std::vector<EquipmentItem> equipment;  ///< communications, and EPIRB and SART wherever they are filed
  std::vector<ShipDocument> licenses;    ///< documents filed as radio
  std::vector<RadioOperator> operators;  ///< of the crew in service; archived certificates are left out
};
RadioStation radioStation(const Uuid& vesselID, std::span<const GMDSSTestLog> tests,
                          std::span<const EquipmentItem> equipment, std::span<const ShipDocument> documents,
                          std::span<const CrewMember> crew, Timestamp now, const Calendar& calendar);

}  // namespace thalvorn
