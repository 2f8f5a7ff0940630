#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "base/number_format.h"

namespace thalvorn {

/// The ISO 4217 codes that forms offer: those of the cruising grounds, the commonest first. Old records may hold
/// others.
std::span<const std::string_view> currencyCodes();

/// Amounts by currency code, never added across; a blank code counts as USD.
class CurrencyTotals {
 public:
  void add(double amount, std::string_view currency);
  const std::map<std::string, double, std::less<>>& byCurrency() const { return totals_; }
  /// "EUR 1,250.00 + USD 900.00"; empty without amounts.
  std::string text(const NumberLocale& numbers) const;

 private:
  std::map<std::string, double, std::less<>> totals_;
};

}  // namespace thalvorn
