#include "core/demo_tables.h"

namespace thalvorn::demo {
namespace {

constexpr std::string_view kMeridian = "M/Y Meridian";
constexpr std::string_view kHalcyon = "S/Y Halcyon Wind";
constexpr std::string_view kSirocco = "Sirocco";

constexpr auto kPlanned = HourSource::engine;

}  // namespace

std::span<const SetJob> setJobs() {
  static constexpr std::array<SetJob, 48> jobs{{
      {kMeridian, "Fire extinguisher inspection", 49},
      {kMeridian, "Generator oil & filter change", 42},
      {kMeridian, "Seacocks exercise", 37},
      {kMeridian, "Chart & publication updates", 10},
      {kMeridian, "Shower heads descale & flush", 104},
      {kMeridian, "Machinery space oil leak inspection", 34},
      {kMeridian, "Raw water impeller replacement", 205},
      {kMeridian, "Fuel filter replacement", 101},
      {kMeridian, "Life raft service", 361},
      {kMeridian, "VHF radio check & DSC test", 4},
      {kMeridian, "General alarm & PA test", 2},
      {kMeridian, "Bilge high water alarm test", 5},
      {kMeridian, "Emergency lighting test", 26},
      {kMeridian, "Engine oil & filter change", 88},
      {kMeridian, "Engine 2 oil & filter change", 86},
      {kMeridian, "Zincs / anodes replacement", 346},
      {kMeridian, "Annual survey preparation", 343},
      {kMeridian, "Fixed fire suppression inspection", 347},
      {kMeridian, "EPIRB battery & registration check", 369, 10},
      {kMeridian, "Topsides wash & wax", 95, 21},
      {kMeridian, "Hydraulic oil & filter change", 290},

      {kHalcyon, "Standing rigging inspection", 380},
      {kHalcyon, "Winch & furler service", 377},
      {kHalcyon, "First aid kit restock", 96},
      {kHalcyon, "Mast & spreader check aloft", 176},
      {kHalcyon, "Flare kit expiry check", 177},
      {kHalcyon, "Generator oil & filter change", 93},
      {kHalcyon, "Bilge pump & float switch test", 4},
      {kHalcyon, "Running rigging inspection", 162},
      {kHalcyon, "Life raft service", 350},
      {kHalcyon, "Engine oil & filter change", 252},
      {kHalcyon, "Sail stitching & chafe inspection", 155},
      {kHalcyon, "Autopilot & rudder feedback check", 186, 14},
      {kHalcyon, "Anchor chain inspection", 160},

      {kSirocco, "Engine 3 oil & filter change", 229},
      {kSirocco, "Tender engine annual service", 373},
      {kSirocco, "Fire extinguisher inspection", 35},
      {kSirocco, "Engine oil & filter change", 222},
      {kSirocco, "Engine 2 oil & filter change", 222},
      {kSirocco, "Tender safety equipment check", 26},
      {kSirocco, "Lifejackets & lights inspection", 85},
      {kSirocco, "Air conditioning sea strainer clean", 10},
      {kSirocco, "Passerelle, crane & platform function test", 74},
      {kSirocco, "Zincs / anodes replacement", 349},
      {kSirocco, "Stainless steel polish", 14},
      {kSirocco, "Jet ski service", 190, 30},
      {kSirocco, "Bow thruster service", 344},
      {kSirocco, "Nav & anchor lights test", 12},
  }};
  return jobs;
}

std::span<const OwnJob> ownJobs() {
  static constexpr std::array<OwnJob, 9> jobs{{
      {kMeridian, "Guest lift emergency lowering test", TaskCategory::generalMechanical, kPlanned, 90, 0, 71,
       "Lower by hand from deck 3; note the time it takes"},
      {kMeridian, "Generator 2 oil & filter change", TaskCategory::generator, HourSource::generator2, 365, 200, 34,
       "Use manufacturer-specified grade"},
      {kMeridian, "Spa pool water treatment", TaskCategory::plumbing, kPlanned, 7, 0, 3,
       "pH 7.2 to 7.6; log the chlorine reading"},
      {kMeridian, "Helm chair bolts torque check", TaskCategory::carpentry, kPlanned, 365, 0, 120,
       "45 Nm, blue thread lock"},
      {kHalcyon, "Lifting keel ram & seals inspection", TaskCategory::generalMechanical, kPlanned, 365, 0, 352,
       "From the trunk inspection cover, keel down"},
      {kHalcyon, "Solar panel output check", TaskCategory::electrical, kPlanned, 90, 0, 40,
       "Each string at noon; clean the glass first"},
      {kSirocco, "Pod drive oil sample", TaskCategory::engine, HourSource::engine, 180, 200, 172,
       "All three pods; water content above 0.2 % means a seal"},
      {kSirocco, "Stern garage door seals & hinges", TaskCategory::generalMechanical, kPlanned, 90, 0, 79,
       "Silicone grease on the seal, marine grease on the hinges"},
      {kSirocco, "T/T Sirocco trailer wheel bearings", TaskCategory::tenders, kPlanned, 365, 0, 214,
       "Repack before lay-up"},
  }};
  return jobs;
}

std::span<const Defect> defects() {
  using enum TaskCategory;
  constexpr auto squawk = TaskKind::deficiencySquawk;
  constexpr auto warranty = TaskKind::warranty;
  constexpr auto low = TaskPriority::low;
  constexpr auto medium = TaskPriority::medium;
  constexpr auto high = TaskPriority::high;
  static constexpr std::array<Defect, 24> items{{
      {kMeridian, "Port shaft seal weeping", generalMechanical, squawk, high, -2, 0,
       "About 20 drops a minute alongside, more under way. Cooling feed is clear.", "", "", 0},
      {kMeridian, "Sun deck fridge not cooling", appliance, squawk, medium, 3, 0,
       "Compressor runs, evaporator does not frost. Suspect gas.", "", "", 0},
      {kMeridian, "VIP cabin air handler rattles", hvac, squawk, low, 18, 0, "Fan housing, aft side. Guests noticed.",
       "", "", 0},
      {kMeridian, "Bridge wing camera picture flickers", avIt, squawk, low, 45, 0,
       "Starboard only, worse in the rain: water in the connector?", "", "", 0},
      {kMeridian, "Generator 2 soft-start controller", generator, warranty, medium, 26, 0,
       "Trips on the first start of the day. Claim number 4471-22, maker sends a new board.", "", "", 0},
      {kMeridian, "Teak seams lifting, starboard side deck", carpentry, warranty, medium, 60, 0,
       "Four seams between frames 18 and 21. Photos sent to the yard.", "", "", 0},
      {kMeridian, "Passerelle handrail wobbles", hydraulic, squawk, high, 5, 31, "Lower hinge pin worn.",
       "New bronze pin turned ashore, fitted and greased. Load tested with three people.", "Antibes Fine Mechanics",
       340},
      {kMeridian, "Grey water pump 1 trips", plumbing, squawk, medium, 3, 74, "Thermal overload after ten minutes.",
       "Hair and a cloth in the impeller. Cleared, amps back to 3.1.", "", 0},
      {kMeridian, "Starboard navigation light housing cracked", electronicsNav, squawk, high, 2, 133, "",
       "Housing and gasket renewed, lamp checked from the quay.", "", 0},
      {kMeridian, "Stabiliser fin sensor drift", hydraulic, warranty, medium, 20, 188,
       "Port fin reads 2 degrees at rest.", "Sensor exchanged under warranty, zero set alongside.",
       "Fin Control Services", 0},
      {kMeridian, "Crew mess oven door spring broken", appliance, squawk, low, 14, 246, "",
       "Spring kit fitted, both sides.", "", 0},
      {kHalcyon, "Mizzen halyard sheave squeaks", rigging, squawk, medium, -4, 0,
       "Heard at night under load. Needs a trip aloft before the crossing.", "", "", 0},
      {kHalcyon, "Port aft cabin hatch drips", generalMechanical, squawk, medium, 6, 0,
       "Hinge side, only with spray. New seal ordered, part 3851.", "", "", 0},
      {kHalcyon, "Chart plotter restarts in heavy rain", electronicsNav, warranty, high, 12, 0,
       "Twice in October. Log files sent to the dealer.", "", "", 0},
      {kHalcyon, "Genoa leech line cleat missing", sails, squawk, low, 24, 0, "Loft to bring one with the sails.", "",
       "", 0},
      {kHalcyon, "Watermaker brine overboard hose chafed", waterMaker, squawk, high, 2, 58, "",
       "Hose renewed, rerouted clear of the frame and clipped.", "", 0},
      {kHalcyon, "Boom vang seal weeping", rigging, squawk, medium, 14, 141, "",
       "Seal kit fitted ashore, pumped to 200 bar for an hour, dry.", "Palma Rig & Hydraulics", 465},
      {kHalcyon, "House battery 3 low voltage", electrical, warranty, high, 10, 209, "Drops below 12.1 V overnight.",
       "Battery exchanged under warranty, bank balanced over two days.", "Volta Náutica", 0},
      {kSirocco, "Starboard pod steering fault alarm", engine3, squawk, high, -3, 0,
       "Code 184, clears after a restart. Do not leave port until read out.", "", "", 0},
      {kSirocco, "Swim platform light out", electrical, squawk, low, 4, 0, "Second from port.", "", "", 0},
      {kSirocco, "Flybridge upholstery seam open", upholsteryCanvas, warranty, low, 22, 0,
       "Helm seat, left side. Maker collects in November.", "", "", 0},
      {kSirocco, "Gelcoat chip at the port quarter", cosmetic, squawk, low, 35, 0, "5 cm, from the fuel dock.", "", "",
       0},
      {kSirocco, "Tender bilge pump runs dry", tenders, squawk, medium, 2, 47, "",
       "Float switch swapped, spare ordered.", "", 0},
      {kSirocco, "Salon door actuator jams", generalMechanical, warranty, medium, 20, 163,
       "Stops half way when the boat lists.", "Actuator and guide rail exchanged under warranty.",
       "Cantieri Vela Lunga", 0},
  }};
  return items;
}

}  // namespace thalvorn::demo
