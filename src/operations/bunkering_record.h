#pragma once

#include <string>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// The grade of fuel delivered. The abbreviations are the trade's own.
enum class FuelType : std::uint8_t { diesel, hfo, mdo, mgo, vlsfo, ulsfo, lng, other };

template <>
struct EnumTexts<FuelType> {
  static constexpr std::array<EnumText, 8> table{
      {{"Diesel"}, {"HFO"}, {"MDO"}, {"MGO"}, {"VLSFO"}, {"ULSFO"}, {"LNG"}, {"Other"}}};
};

/// One delivery of fuel.
struct BunkeringRecord {
  Uuid id;
  Uuid vesselID;
  std::string vesselName;  ///< name and IMO number as they were at the delivery
  std::string vesselIMO;
  std::string supplierName;
  std::string supplierContact;
  Timestamp date;
  std::string port;
  std::string location;  ///< berth or anchorage
  Choice<FuelType> fuelType;
  double quantityGallons = 0;  ///< US gallons
  double pricePerGallon = 0;   ///< in `currency`
  double totalCharge = 0;      ///< as invoiced, tax and fees included; not quantity × price
  std::string currency;        ///< ISO 4217 code
  std::string invoiceNumber;
  std::string notes;

  friend bool operator==(const BunkeringRecord&, const BunkeringRecord&) = default;
};
BOOST_DESCRIBE_STRUCT(BunkeringRecord, (),
                      (id, vesselID, vesselName, vesselIMO, supplierName, supplierContact, date, port, location,
                       fuelType, quantityGallons, pricePerGallon, totalCharge, currency, invoiceNumber, notes))
THALVORN_JSON_RECORD(BunkeringRecord);

template <>
struct RecordFacts<BunkeringRecord> {
  static constexpr std::array facts{
      FieldFacts{.name = "vesselName", .label = "Vessel", .placeholder = "e.g. S/Y Thalvorn"},
      FieldFacts{.name = "vesselIMO", .label = "IMO number", .placeholder = "7 digits"},
      FieldFacts{.name = "supplierName", .label = "Supplier / Bunker Co."},
      FieldFacts{.name = "supplierContact", .label = "Supplier contact"},
      FieldFacts{.name = "date", .label = "Date", .required = true, .entry = FieldEntry::dateOnly},
      FieldFacts{.name = "port", .label = "Port", .placeholder = "e.g. Port of Miami"},
      FieldFacts{.name = "location", .label = "Berth / Anchorage"},
      FieldFacts{.name = "fuelType", .label = "Fuel type"},
      FieldFacts{.name = "quantityGallons",
                 .label = "Quantity (Gal)",
                 .unit = "gal",
                 .decimals = 1,
                 .minimum = 0,
                 .maximum = 1e7,
                 .required = true},
      FieldFacts{.name = "pricePerGallon",
                 .label = "Price per Gallon",
                 .placeholder = "0.000",
                 .decimals = 3,
                 .minimum = 0,
                 .maximum = 1e6},
      FieldFacts{.name = "totalCharge",
                 .label = "Total Charge (inc. tax)",
                 .placeholder = "0.00",
                 .decimals = 2,
                 .minimum = 0,
                 .maximum = 1e9},
      FieldFacts{.name = "currency", .label = "Currency", .placeholder = "USD"},
      FieldFacts{.name = "invoiceNumber", .label = "Invoice Number", .placeholder = "INV-0001"},
      FieldFacts{.name = "notes", .label = "Notes", .entry = FieldEntry::multiline}};
};
static_assert(factsNameFields<BunkeringRecord>());

}  // namespace thalvorn
