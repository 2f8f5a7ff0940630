#include "core/currencies.h"

#include <array>

#include "base/number_format.h"

namespace thalvorn {

std::span<const std::string_view> currencyCodes() {
  static constexpr std::array<std::string_view, 58> codes{
      "USD", "EUR", "GBP", "CHF", "AUD", "NZD", "CAD", "AED", "XCD", "BSD", "BBD", "BMD", "KYD", "XCG", "AWG",
      "TTD", "JMD", "DOP", "MXN", "PAB", "CRC", "COP", "BRL", "TRY", "ALL", "MAD", "TND", "EGP", "ILS", "NOK",
      "SEK", "DKK", "ISK", "PLN", "ZAR", "SCR", "MUR", "MVR", "INR", "LKR", "THB", "SGD", "MYR", "IDR", "PHP",
      "HKD", "CNY", "JPY", "KRW", "FJD", "XPF", "TOP", "WST", "PGK", "QAR", "SAR", "OMR", "GIP"};
  return codes;
}

void CurrencyTotals::add(double amount, std::string_view currency) {
  totals_[std::string(currency.empty() ? std::string_view("USD") : currency)] += amount;
}

std::string CurrencyTotals::text(const NumberLocale& numbers) const {
  std::string text;
  for (const auto& [currency, total] : totals_) {
    if (!text.empty()) text += " + ";
    text += formatMoney(total, currency, numbers);
  }
  return text;
}

}  // namespace thalvorn
