#pragma once

#include "compliance/gmdss_test_log.h"
#include "core/register.h"

namespace thalvorn {

/// One record per test of the radio equipment.
template <>
struct Register<GMDSSTestLog> {
  static constexpr RegisterFacts facts{
      .key = "gmdss", .title = "GMDSS Radio Test Log", .singular = "test log entry", .plural = "test log entries"};
  static constexpr auto date = &GMDSSTestLog::date;
  /// How a person calls a test: its kind.
  static std::string name(const GMDSSTestLog& test) { return std::string(test.testType.display()); }
  static constexpr std::array columns{
      fieldColumn<&GMDSSTestLog::date>(),
      fieldColumn<&GMDSSTestLog::testType>({.searched = true, .filter = ColumnFilter::choices, .weight = 1.3}),
      fieldColumn<&GMDSSTestLog::result>({.searched = true, .filter = ColumnFilter::choices, .weight = 0.8}),
      fieldColumn<&GMDSSTestLog::performedBy>({.searched = true, .filter = ColumnFilter::text}),
      fieldColumn<&GMDSSTestLog::notes>({.searched = true, .weight = 2})};
};

}  // namespace thalvorn
