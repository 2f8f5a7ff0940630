#include "core/demo_tables.h"

namespace thalvorn::demo {
namespace {

constexpr std::array kMotorYachtWithout{TaskCategory::engine3, TaskCategory::rigging, TaskCategory::sails};
constexpr std::array kSailingYachtWithout{TaskCategory::engine2, TaskCategory::engine3, TaskCategory::hullMachinery,
                                          TaskCategory::hydraulic};
constexpr std::array kSportYachtWithout{TaskCategory::rigging, TaskCategory::sails, TaskCategory::hullMachinery,
                                        TaskCategory::brightwork};

constexpr std::array<std::string_view, 2> kNotOnLargeYachts{"Gas system leak test", "Bimini & awnings inspection"};
constexpr std::array<std::string_view, 16> kOnlyOnLargeYachts{"Rescue boat & davit inspection",
                                                              "Quick-closing fuel valves test",
                                                              "Breathing apparatus & EEBD check",
                                                              "Fire pump & hydrants test",
                                                              "General alarm & PA test",
                                                              "BNWAS & bridge alarms test",
                                                              "Sewage treatment plant service",
                                                              "Oily water separator & 15 ppm monitor check",
                                                              "Lifting appliances thorough examination",
                                                              "Medical chest annual inspection",
                                                              "Insulation resistance test",
                                                              "Switchboard thermal scan",
                                                              "MF/HF radio & antenna check",
                                                              "Emergency lighting test",
                                                              "Garbage station & placards check",
                                                              "Turbocharger inspection"};

Yacht meridian() {
  Yacht yacht;
  yacht.vessel.name = "M/Y Meridian";
  yacht.vessel.type = "Motor yacht";
  yacht.vessel.lengthFeet = 154.2;
  yacht.vessel.engineHours = 4812.4;
  yacht.vessel.engine2Hours = 4807.9;
  yacht.vessel.generator1Hours = 9120.0;
  yacht.vessel.generator2Hours = 8977.6;
  yacht.vessel.hydraulicHours = 6230.5;
  yacht.vessel.numberOfEngines = 2;
  yacht.vessel.hasGenerator = true;
  yacht.vessel.numberOfGenerators = 2;
  yacht.vessel.hasHydraulic = true;
  yacht.vessel.useISM = true;
  yacht.vessel.notes = "Charter season May to October. Winter berth with yard period in January.";
  VesselProfile& profile = yacht.profile;
  profile.formerNames = "Alba Mare";
  profile.flag = "Cayman Islands";
  profile.portOfRegistry = "George Town";
  profile.officialNumber = "749014";
  profile.imoNumber = "9990014";
  profile.callSign = "ZGQM4";
  profile.mmsi = "319900014";
  profile.hullNumber = "Yard no. 047";
  profile.classSociety = "100A1 SSC Yacht Mono G6, LMC UMS";
  profile.grossTonnage = 498;
  profile.netTonnage = 149;
  profile.beamFeet = 29.5;
  profile.draftFeet = 8.9;
  profile.airDraftFeet = 63.3;
  profile.builder = "Cantiere Punta Grande";
  profile.yearBuilt = "2015";
  profile.hullMaterial = "Steel, aluminium superstructure";
  profile.engineMake = "2 × 12V diesel, 1,450 hp; s/n PG-12471, PG-12472";
  profile.generatorMake = "2 × 118 kW; s/n G4471, G4472";
  profile.fuelCapacityGallons = 15850;
  profile.waterCapacityGallons = 3960;
  profile.cruisingSpeedKnots = 13;
  profile.maxGuests = 12;
  profile.safeManning = 7;
  profile.owner = "Meridian Holdings Ltd";
  profile.manager = "Blue Quay Yacht Management";
  profile.managerPhone = "+377 0000 0147";
  profile.designatedPerson = "C. Aubert, +377 0000 0199 (24 h)";
  profile.homePort = "Antibes";
  profile.timeZone = "Europe/Paris";
  profile.currency = "USD";
  yacht.hoursPerDay = {2.4, 2.4, 0, 5.0, 4.8, 3.2};
  yacht.crew = {"L. Marchetti", "J. Lindqvist", "S. Duarte", "A. Novak"};
  yacht.without = kMotorYachtWithout;
  yacht.notAboard = kNotOnLargeYachts;
  yacht.share = 92;
  return yacht;
}

Yacht halcyon() {
  Yacht yacht;
  yacht.vessel.name = "S/Y Halcyon Wind";
  yacht.vessel.type = "Sailing yacht, ketch";
  yacht.vessel.lengthFeet = 78.7;
  yacht.vessel.engineHours = 2366.8;
  yacht.vessel.generator1Hours = 3415.2;
  yacht.vessel.numberOfEngines = 1;
  yacht.vessel.hasGenerator = true;
  yacht.vessel.notes = "Atlantic crossing planned for the end of November. Sails ashore with the loft each February.";
  VesselProfile& profile = yacht.profile;
  profile.flag = "United Kingdom";
  profile.portOfRegistry = "Southampton";
  profile.officialNumber = "918227";
  profile.callSign = "MXHW7";
  profile.mmsi = "235900027";
  profile.hullNumber = "GB-HWY24007F412";
  profile.grossTonnage = 86;
  profile.netTonnage = 71;
  profile.beamFeet = 20.3;
  profile.draftFeet = 9.8;
  profile.airDraftFeet = 104.7;
  profile.builder = "Lymwater Boatbuilders";
  profile.yearBuilt = "2011";
  profile.hullMaterial = "GRP sandwich";
  profile.engineMake = "1 × 6-cylinder diesel, 230 hp; s/n LW-6230-88";
  profile.generatorMake = "1 × 17.5 kW; s/n N17-2209";
  profile.fuelCapacityGallons = 740;
  profile.waterCapacityGallons = 580;
  profile.cruisingSpeedKnots = 8.5;
  profile.maxGuests = 8;
  profile.safeManning = 3;
  profile.owner = "Halcyon Sailing LLP";
  profile.homePort = "Palma de Mallorca";
  profile.timeZone = "Europe/Madrid";
  profile.currency = "EUR";
  yacht.hoursPerDay = {0.9, 0, 0, 2.1, 0, 0};
  yacht.crew = {"M. Keller", "T. Okafor", "I. Serra", "P. Vance"};
  yacht.without = kSailingYachtWithout;
  yacht.notAboard = kOnlyOnLargeYachts;
  yacht.share = 74;
  return yacht;
}

Yacht sirocco() {
  Yacht yacht;
  yacht.vessel.name = "Sirocco";
  yacht.vessel.type = "Sport yacht with tender";
  yacht.vessel.lengthFeet = 88.6;
  yacht.vessel.engineHours = 1184.3;
  yacht.vessel.engine2Hours = 1190.1;
  yacht.vessel.engine3Hours = 1166.7;
  yacht.vessel.generator1Hours = 1932.6;
  yacht.vessel.hydraulicHours = 640.2;
  yacht.vessel.numberOfEngines = 3;
  yacht.vessel.hasGenerator = true;
  yacht.vessel.hasHydraulic = true;
  yacht.vessel.notes = "Day charters from June to September. Tender T/T Sirocco, 6.1 m, in the stern garage.";
  VesselProfile& profile = yacht.profile;
  profile.flag = "Malta";
  profile.portOfRegistry = "Valletta";
  profile.officialNumber = "21904";
  profile.imoNumber = "9990026";
  profile.callSign = "9HXS2";
  profile.mmsi = "248900038";
  profile.hullNumber = "IT-CVL27003L718";
  profile.classSociety = "Commercial yacht, short range";
  profile.grossTonnage = 112;
  profile.netTonnage = 64;
  profile.beamFeet = 20.7;
  profile.draftFeet = 5.2;
  profile.airDraftFeet = 24.9;
  profile.builder = "Cantieri Vela Lunga";
  profile.yearBuilt = "2019";
  profile.hullMaterial = "GRP";
  profile.engineMake = "3 × 6-cylinder diesel with pod drives, 1,000 hp; s/n V-3301 to V-3303";
  profile.generatorMake = "1 × 27 kW; s/n K27-118";
  profile.fuelCapacityGallons = 1850;
  profile.waterCapacityGallons = 320;
  profile.cruisingSpeedKnots = 32;
  profile.maxGuests = 10;
  profile.safeManning = 3;
  profile.owner = "Sirocco Charter Ltd";
  profile.manager = "Blue Quay Yacht Management";
  profile.managerPhone = "+377 0000 0147";
  profile.homePort = "Porto Cervo";
  profile.timeZone = "Europe/Rome";
  profile.currency = "EUR";
  yacht.hoursPerDay = {1.1, 1.1, 1.1, 1.8, 0, 0.6};
  yacht.crew = {"R. Santos", "N. Falzon", "G. Piras", "D. Moreau"};
  yacht.without = kSportYachtWithout;
  yacht.notAboard = kOnlyOnLargeYachts;
  yacht.share = 70;
  return yacht;
}

}  // namespace

std::span<const Yacht> yachts() {
  static const std::array fleet{meridian(), halcyon(), sirocco()};
  return fleet;
}

}  // namespace thalvorn::demo
