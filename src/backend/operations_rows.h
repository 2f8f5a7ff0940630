#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "backend/sb_row.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

/// Table "ships_log".
struct SBShipsLogRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  Timestamp date;
  double engineHours = 0;
  std::optional<double> hoursUnderway;
  std::string departurePort;
  std::string arrivalPort;
  std::optional<double> distanceNm;
  std::optional<double> fuelUsedGallons;
  std::string weather;
  std::string seaState;
  std::int64_t crewCount = 0;
  std::string notes;
  std::string skipper;
  std::optional<std::string> guests;
  std::optional<std::string> crewRoster;
  std::optional<std::string> tripLog;
  std::optional<double> windSpeedKnots;
  std::optional<std::string> windDirection;
  std::optional<double> waveHeightFeet;
  Timestamp updatedAt;
  friend bool operator==(const SBShipsLogRow&, const SBShipsLogRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBShipsLogRow, (RegisterRow),
                      (id, userId, accountId, vesselId, date, engineHours, hoursUnderway, departurePort, arrivalPort,
                       distanceNm, fuelUsedGallons, weather, seaState, crewCount, notes, skipper, guests, crewRoster,
                       tripLog, windSpeedKnots, windDirection, waveHeightFeet, updatedAt))
THALVORN_JSON_RECORD(SBShipsLogRow);

/// Table "bunkering_records".
struct SBBunkeringRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string vesselName;
  Timestamp date;
  std::string supplierName;
  std::string port;
  std::string location;
  std::string fuelType;
  double quantityGallons = 0;
  double pricePerGallon = 0;
  double totalCharge = 0;
  std::string currency;
  std::string invoiceNumber;
  std::string notes;
  Timestamp updatedAt;
  friend bool operator==(const SBBunkeringRow&, const SBBunkeringRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBBunkeringRow, (RegisterRow),
                      (id, userId, accountId, vesselId, vesselName, date, supplierName, port, location, fuelType,
                       quantityGallons, pricePerGallon, totalCharge, currency, invoiceNumber, notes, updatedAt))
THALVORN_JSON_RECORD(SBBunkeringRow);

/// Table "voyage_plans".
struct SBVoyagePlanRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  Uuid vesselId;
  std::string planName;
  Timestamp dateCreated;
  std::string planJson;
  Timestamp updatedAt;
  friend bool operator==(const SBVoyagePlanRow&, const SBVoyagePlanRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBVoyagePlanRow, (RegisterRow),
                      (id, userId, accountId, vesselId, planName, dateCreated, planJson, updatedAt))
THALVORN_JSON_RECORD(SBVoyagePlanRow);

/// Table "saved_waypoints".
struct SBSavedWaypointRow : RegisterRow {
  Uuid id;
  Uuid userId;
  Uuid accountId;
  std::string name;
  double latitude = 0;
  double longitude = 0;
  std::string notes;
  std::string category;
  Timestamp createdAt;
  Timestamp updatedAt;
  friend bool operator==(const SBSavedWaypointRow&, const SBSavedWaypointRow&) = default;
};
BOOST_DESCRIBE_STRUCT(SBSavedWaypointRow, (RegisterRow),
                      (id, userId, accountId, name, latitude, longitude, notes, category, createdAt, updatedAt))
THALVORN_JSON_RECORD(SBSavedWaypointRow);

}  // namespace thalvorn
