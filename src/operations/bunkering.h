#pragma once

#include <span>
#include <vector>

#include "core/currencies.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "operations/bunkering_record.h"

/// The rules of the bunkering register: a new record, what its price comes to, and what adds up over records.
namespace thalvorn {

inline constexpr double kLitresPerGallon = 3.78541;  ///< of US gallons

/// Quantity times price, beside which the invoiced total stands with its tax and fees; never stored.
double calculatedTotal(double quantityGallons, double pricePerGallon);

/// A new record as of now: name and IMO number as the vessel has them, fuel and currency as at her last delivery, else
/// the currency of her costs.
BunkeringRecord newBunkeringRecord(const Vessel& vessel, const VesselProfile& profile,
                                   std::span<const BunkeringRecord> records, Timestamp now,
                                   const Uuid& id = Uuid::random());

struct BunkeringTotals {
  std::size_t records = 0;
  double gallons = 0;
  /// All invoiced totals as the numbers they are, which is what the register's report totals as US dollars; a sum of
  /// money only where `charges` has one currency.
  double charge = 0;
  CurrencyTotals charges{};

  void add(const BunkeringRecord& record);
  /// Whether something was invoiced in another currency than US dollars.
  bool hasOtherCurrencies() const;
};
BunkeringTotals totalsOf(std::span<const BunkeringRecord> records);

}  // namespace thalvorn
