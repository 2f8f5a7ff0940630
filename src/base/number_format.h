#pragma once

#include <expected>
#include <string>
#include <string_view>

/// Numbers as people on board write and read them.
namespace thalvorn {

/// How the user's country writes numbers; UTF-8, because some group with a narrow no-break space.
struct NumberLocale {
  std::string decimalPoint = ".";
  std::string groupSeparator = ",";
};

/// A meter reading with one decimal: "1234.5 hrs".
std::string hoursText(double hours);

/// The reading a meter stands at: "Current: 1234.5 hrs".
std::string currentHoursText(double hours);

/// A number with exactly `decimals` decimals (0 to 15), grouped by thousands: "12,345.60". A value that is not finite
/// gives an em dash.
std::string formatNumber(double value, int decimals, const NumberLocale& locale = {});

/// A number with at most `decimals` decimals and no trailing zeros: quantities such as "2" and "0.75".
std::string formatQuantity(double value, int decimals = 3, const NumberLocale& locale = {});

/// The number of minor digits of an ISO 4217 currency: 2, but 0 for the yen and 3 for the dinar.
int currencyDecimals(std::string_view currency);

/// An amount with its ISO 4217 code before it, "EUR 1,250.00"; without a code just the amount.
std::string formatMoney(double amount, std::string_view currency, const NumberLocale& locale = {});

/// Reads a number as a person types it: decimal point or comma, with or without group separators (comma, point,
/// apostrophe, any blank). A single point or comma is read as the locale writes it, but as the decimal point when it
/// cannot separate thousands. The error is a sentence to show beside the field.
std::expected<double, std::string> parseNumber(std::string_view text, const NumberLocale& locale = {});

}  // namespace thalvorn
