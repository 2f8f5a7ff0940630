#pragma once

#include "core/register.h"
#include "operations/bunkering_record.h"

namespace thalvorn {

/// One record per delivery of fuel.
template <>
struct Register<BunkeringRecord> {
  static constexpr RegisterFacts facts{
      .key = "bunkering", .title = "Fuel Bunkering Log", .singular = "bunkering record", .plural = "bunkering records"};
  static constexpr auto date = &BunkeringRecord::date;
  /// How a person calls a delivery: who supplied it, and where.
  static std::string name(const BunkeringRecord& record);
  static constexpr std::array columns{
      fieldColumn<&BunkeringRecord::date>(),
      fieldColumn<&BunkeringRecord::supplierName>({.title = "Supplier", .searched = true, .weight = 1.4}),
      fieldColumn<&BunkeringRecord::supplierContact>({.searched = true}),
      fieldColumn<&BunkeringRecord::port>({.searched = true, .weight = 1.2}),
      fieldColumn<&BunkeringRecord::location>({.searched = true}),
      fieldColumn<&BunkeringRecord::fuelType>({.filter = ColumnFilter::choice}),
      fieldColumn<&BunkeringRecord::quantityGallons>({.title = "Quantity"}),
      fieldColumn<&BunkeringRecord::pricePerGallon>(),
      fieldColumn<&BunkeringRecord::totalCharge>({.title = "Total charge"}),
      fieldColumn<&BunkeringRecord::currency>(),
      fieldColumn<&BunkeringRecord::invoiceNumber>({.title = "Invoice", .searched = true}),
      fieldColumn<&BunkeringRecord::notes>({.searched = true, .weight = 1.8})};
};

}  // namespace thalvorn
