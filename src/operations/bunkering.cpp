#include "operations/bunkering.h"

#include <algorithm>

#include "core/report_basics.h"

namespace thalvorn {

double calculatedTotal(double quantityGallons, double pricePerGallon) { return quantityGallons * pricePerGallon; }

BunkeringRecord newBunkeringRecord(const Vessel& vessel, const VesselProfile& profile,
                                   std::span<const BunkeringRecord> records, Timestamp now, const Uuid& id) {
  BunkeringRecord made{.id = id,
                       .vesselID = vessel.id,
                       .vesselName = vessel.name,
                       .vesselIMO = profile.imoNumber,
                       .date = now,
                       .currency = std::string(costCurrency(profile))};
  const BunkeringRecord* last = nullptr;
  for (const BunkeringRecord& other : records)
    if (other.vesselID == vessel.id && (last == nullptr || other.date >= last->date)) last = &other;
  if (last == nullptr) return made;
  made.fuelType = last->fuelType;
  if (!last->currency.empty()) made.currency = last->currency;
  return made;
}

void BunkeringTotals::add(const BunkeringRecord& record) {
  ++records;
  gallons += record.quantityGallons;
  charge += record.totalCharge;
  charges.add(record.totalCharge, record.currency);
}

bool BunkeringTotals::hasOtherCurrencies() const {
  return std::ranges::any_of(charges.byCurrency(), [](const auto& total) { return total.first != "USD"; });
}

BunkeringTotals totalsOf(std::span<const BunkeringRecord> records) {
  BunkeringTotals totals;
  for (const BunkeringRecord& record : records) totals.add(record);
  return totals;
}

}  // namespace thalvorn
