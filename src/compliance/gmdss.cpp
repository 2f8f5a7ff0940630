#include "compliance/gmdss.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/search_text.h"

namespace thalvorn {
namespace {

struct Period {
  GMDSSTestType test;
  std::string_view name;
  int days;
  int months;
};
constexpr std::array kPeriods{
    Period{GMDSSTestType::dailyBatteryCheck, "Daily", 1, 0}, Period{GMDSSTestType::weeklyDSCTest, "Weekly", 7, 0},
    Period{GMDSSTestType::monthlyEPIRBTest, "Monthly", 0, 1}, Period{GMDSSTestType::monthlySARTTest, "Monthly", 0, 1},
    Period{GMDSSTestType::annualRadioSurvey, "Annual", 0, 12}};

Timestamp dueAfter(const Period& period, Timestamp passed, const Calendar& calendar) {
  std::chrono::year_month_day day = calendar.date(passed) + std::chrono::months(period.months);
  if (!day.ok()) day = day.year() / day.month() / std::chrono::last;
  return calendar.at(std::chrono::sys_days(day) + std::chrono::days(period.days));
}

bool passes(const GMDSSTestLog& test) {
  return test.result == GMDSSTestResult::pass || test.result == GMDSSTestResult::passWithNotes;
}

GMDSSDue dueOf(const Period& period, const Uuid& vesselID, std::span<const GMDSSTestLog> tests, Timestamp now,
               const Calendar& calendar) {
  const auto today = calendar.date(now);
  const GMDSSTestLog* last = nullptr;
  const GMDSSTestLog* passed = nullptr;
  // Of two at the same time the one entered later counts.
  const auto later = [](const GMDSSTestLog& test, const GMDSSTestLog* than) {
    return than == nullptr || std::pair(test.date, test.createdAt) > std::pair(than->date, than->createdAt);
  };
  for (const GMDSSTestLog& test : tests) {
    if (test.vesselID != vesselID || test.testType != period.test || calendar.date(test.date) > today) continue;
    if (later(test, last)) last = &test;
    if (passes(test) && later(test, passed)) passed = &test;
  }
  GMDSSDue due{.test = period.test};
  if (last == nullptr) return due;
  due.last = last->date;
  if (passed != nullptr) due.nextDue = dueAfter(period, passed->date, calendar);
  if (last->result == GMDSSTestResult::fail)
    due.standing = GMDSSStanding::failed;
  else if (due.nextDue)
    due.standing = calendar.date(*due.nextDue) > today    ? GMDSSStanding::inDate
                   : calendar.date(*due.nextDue) == today ? GMDSSStanding::dueToday
                                                          : GMDSSStanding::overdue;
  return due;
}

bool isRadio(const EquipmentItem& item) {
  if (item.system == EquipmentSystem::communications) return true;
  return SearchWords("epirb").matches({item.component, item.model}) ||
         SearchWords("sart").matches({item.component, item.model});
}

}  // namespace

std::vector<GMDSSDue> gmdssDues(const Uuid& vesselID, std::span<const GMDSSTestLog> tests, Timestamp now,
                                const Calendar& calendar) {
  std::vector<GMDSSDue> dues;
  for (const Period& period : kPeriods) dues.push_back(dueOf(period, vesselID, tests, now, calendar));
  return dues;
}

std::string_view gmdssPeriod(GMDSSTestType test) {
  const auto found = std::ranges::find(kPeriods, test, &Period::test);
  return found == kPeriods.end() ? std::string_view() : found->name;
}

std::string gmdssStandingText(std::span<const GMDSSDue> dues) {
  std::string text;
  for (const auto& [standing, word] :
       {std::pair(GMDSSStanding::failed, "failed"), std::pair(GMDSSStanding::overdue, "overdue"),
        std::pair(GMDSSStanding::never, "never passed")}) {
    const auto count = std::ranges::count(dues, standing, &GMDSSDue::standing);
    if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, word);
  }
  return text.empty() ? "All in date" : text;
}

void GMDSSTotals::add(const GMDSSTestLog& test) {
  ++tests;
  passed += passes(test) ? 1 : 0;
  withNotes += test.result == GMDSSTestResult::passWithNotes ? 1 : 0;
  failed += test.result == GMDSSTestResult::fail ? 1 : 0;
}

GMDSSTestLog newGMDSSTest(std::string performedBy, Timestamp now) {
  GMDSSTestLog made;
  made.date = now;
  made.performedBy = std::move(performedBy);
  made.createdAt = now;
  return made;
}

RadioStation radioStation(const Uuid& vesselID, std::span<const GMDSSTestLog> tests,
                          std::span<const EquipmentItem> equipment, std::span<const ShipDocument> documents,
                          std::span<const CrewMember> crew, Timestamp now, const Calendar& calendar) {
  RadioStation station{.dues = gmdssDues(vesselID, tests, now, calendar)};
  for (const EquipmentItem& item : equipment)
    if (item.vesselID == vesselID && isRadio(item)) station.equipment.push_back(item);
  for (const ShipDocument& document : documents)
    if (document.vesselID == vesselID && document.category == DocumentCategory::radio)
      station.licenses.push_back(document);
  for (const CrewMember& member : crew) {
    if (member.vesselID != vesselID || !member.isActive) continue;
    for (const CrewCertification& certificate : member.certifications) {
      if (certificate.isArchived || certificate.type != CertificationType::gmdssRadio) continue;
      const bool whole = !member.firstName.empty() && !member.lastName.empty();
      station.operators.push_back({member.firstName + (whole ? " " : "") + member.lastName, certificate});
    }
  }
  return station;
}

}  // namespace thalvorn
