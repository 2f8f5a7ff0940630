#pragma once

#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class GMDSSTestType : std::uint8_t {
  dailyBatteryCheck,
  weeklyDSCTest,
  monthlyEPIRBTest,
  monthlySARTTest,
  annualRadioSurvey,
  other
};

template <>
struct EnumTexts<GMDSSTestType> {
  static constexpr std::array<EnumText, 6> table{{{"dailyBatteryCheck", "Daily Battery/DSC Check"},
                                                  {"weeklyDSCTest", "Weekly DSC Test Call"},
                                                  {"monthlyEPIRBTest", "Monthly EPIRB Self-Test"},
                                                  {"monthlySARTTest", "Monthly SART Self-Test"},
                                                  {"annualRadioSurvey", "Annual Radio Survey"},
                                                  {"other", "Other"}}};
};

enum class GMDSSTestResult : std::uint8_t { pass, passWithNotes, fail };

template <>
struct EnumTexts<GMDSSTestResult> {
  static constexpr std::array<EnumText, 3> table{
      {{"pass", "Pass"}, {"passWithNotes", "Pass with notes"}, {"fail", "Fail"}}};
};

/// One test of the radio equipment.
struct GMDSSTestLog {
  Uuid id;
  Uuid vesselID;
  Choice<GMDSSTestType> testType;
  Timestamp date;
  Choice<GMDSSTestResult> result;
  std::string performedBy;
  std::string notes;
  Timestamp createdAt;

  friend bool operator==(const GMDSSTestLog&, const GMDSSTestLog&) = default;
};
BOOST_DESCRIBE_STRUCT(GMDSSTestLog, (), (id, vesselID, testType, date, result, performedBy, notes, createdAt))
THALVORN_JSON_RECORD(GMDSSTestLog);

template <>
struct RecordFacts<GMDSSTestLog> {
  static constexpr std::array facts{FieldFacts{.name = "testType", .label = "Test"},
                                    FieldFacts{.name = "date", .label = "Date", .required = true},
                                    FieldFacts{.name = "result", .label = "Result"},
                                    FieldFacts{.name = "performedBy", .label = "Performed by"},
                                    FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline},
                                    FieldFacts{.name = "createdAt", .label = "Entered"}};
};
static_assert(factsNameFields<GMDSSTestLog>());

}  // namespace thalvorn
