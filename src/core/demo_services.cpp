#include "core/demo_tables.h"

namespace thalvorn::demo {

std::span<const WorkNote> workNotes() {
  static constexpr std::array<WorkNote, 34> notes{{
      {"raw water impeller replacement",
       {"Replaced impeller and cover gasket. Housing polished, no scoring.",
        "Replaced; one vane missing, found in the cooler inlet. Cooler flushed.",
        "Replaced at season start. Old one still good, kept as emergency spare."}},
      {"gearbox oil & filter change",
       {"Oil and filter changed. Magnet clean, a little grey paste.", "Changed, 9.5 l. No water, no metal.",
        "Changed after sample showed rising copper; watch the next sample."}},
      {"hydraulic oil & filter change",
       {"System drained, filters renewed, filled through the 10 micron cart.",
        "Sample first: 17/15/12. Filters only, oil still good.",
        "Oil and all three filters. Bled fins and thrusters."}},
      {"pump oil change",
       {"Oil changed, seals dry.", "Milky: water past the seal. Seal kit fitted, changed twice.",
        "Changed, 1.1 l. Pump quiet."}},
      {"oil & filter change",
       {"Changed warm. Filter cut open: no metal. Level rechecked after ten minutes running.",
        "Oil and filter changed, drain plug washer renewed. No leaks.",
        "Changed before the guest trip. Old oil black but no fuel smell; sample sent."}},
      {"fuel filter replacement",
       {"Primary and secondary renewed, bled, ran up without hunting.",
        "Renewed. Primary had some black slime: tank sample taken.", "Renewed both. Vacuum 2 inHg at full load."}},
      {"drive belt inspection",
       {"Tension right, 12 mm under thumb. No cracks.", "Retensioned; black dust on the guard cleaned.",
        "Belt glazed: renewed, spare reordered."}},
      {"coolant check",
       {"Level at mark, inhibitor strip in the green.", "Topped up 0.6 l. Looked for a leak: hose clip tightened.",
        "Level and colour good."}},
      {"Gearbox oil level check", {"At mark, clean.", "Topped up 0.3 l.", "At mark. Breather cleaned."}},
      {"alarms & shutdown test",
       {"Low oil pressure, high temperature and overspeed all tripped. Reset.",
        "High temperature sender slow; exchanged and tested in hot water.",
        "All alarms heard on bridge and in crew mess."}},
      {"Zincs / anodes replacement",
       {"All renewed on the slip. About half left after 11 months.",
        "Shaft and rudder anodes by diver, hull anodes 70 % left.",
        "Renewed. Port shaft anode almost gone: bonding checked."}},
      {"Antifouling bottom paint",
       {"Two coats, three at waterline and leading edges. Launched same week.",
        "Washed, sanded, two coats. No blisters.", "One coat and touch-up, film still thick."}},
      {"Seacocks exercise",
       {"All worked. Number 7 stiff, grease nipple cleared.", "All opened and closed. Plugs in place.", "All free."}},
      {"Seacocks & thru-hulls service",
       {"Stripped, lapped and greased in the yard. Two handles renewed.", "All serviced, tap test good.",
        "Galley discharge valve renewed, the rest greased."}},
      {"Standing rigging inspection",
       {"Rigger aloft. No broken strands, two split pins renewed.", "Checked and tuned. Cap shrouds half a turn.",
        "Backstay insulator cracked: renewed."}},
      {"Winch & furler service",
       {"Primaries stripped, pawl springs renewed.", "All winches cleaned. Furler bearing flushed.",
        "Port primary had sand in it. Light oil on pawls only."}},
      {"Sail wash & valet",
       {"Washed and repaired at the loft.", "Rinsed, UV strip restitched.",
        "Valet at the loft, batten pocket patched."}},
      {"Fire extinguisher inspection",
       {"All in place, pressure green, pins sealed.", "Lazarette one low: swapped for the spare, sent for refill.",
        "Checked, tags signed."}},
      {"Fire extinguisher annual service",
       {"Serviced ashore, certificates filed.", "All serviced, two foam units refilled.",
        "Serviced aboard by the agent."}},
      {"Life raft service",
       {"Serviced, certificate on file. Painter made fast, release unit in date.",
        "Serviced. Flares and water renewed.", "Serviced ashore; loan raft aboard meanwhile."}},
      {"EPIRB & SART self-test",
       {"Self-test good.", "Both good, SART answered on radar.", "Self-test good, seals intact."}},
      {"VHF radio check & DSC test",
       {"Test call answered by the coast station.", "Radio check good, DSC test call acknowledged.",
        "Fixed set and both handhelds checked."}},
      {"Nav & anchor lights test",
       {"All lamps burn, alarm panel tested.", "Stern light lamp renewed.", "All good; anchor light lens cleaned."}},
      {"Chart & publication updates",
       {"Weekly corrections loaded.", "Corrections loaded, permits renewed for a year.", "Loaded and logged."}},
      {"Bilge pump & float switch test",
       {"Every float lifted, flow overboard seen.", "Forward float sticky: cleaned.",
        "All pumps run, strainers clear."}},
      {"high water alarm test",
       {"Each sensor wetted, alarm on bridge.", "Tested, all zones.", "Tested. Engine room sensor bracket tightened."}},
      {"General alarm & PA test",
       {"Heard in all zones.", "Heard everywhere; garage speaker faint.", "Tested at 10:00."}},
      {"sea strainer clean",
       {"Basket cleaned, weed and two small crabs.", "Cleaned, seal greased.",
        "Cleaned; anode in the strainer renewed."}},
      {"Windlass service",
       {"Gearbox oil changed, gypsy greased, brake adjusted.", "Stripped, brushes checked, 8 mm left.",
        "Oil and grease. Foot switch cover renewed."}},
      {"Anchor chain inspection",
       {"Ranged on deck. 3 % wear in the first ten metres, marks repainted.", "End for end, swivel renewed.",
        "Washed and measured, bitter end lashing renewed."}},
      {"Tender engine annual service",
       {"Oil, filters, plugs, impeller. Compression even.", "Annual service, gear oil clean.",
        "Serviced; propeller dressed."}},
      {"Stainless steel polish",
       {"Rails and stanchions done.", "All polished; tea stains at the bow passivated.",
        "Rinsed and polished aft of midships."}},
      {"First aid kit restock",
       {"Dressings and burn gel renewed.", "Complete, inventory signed.", "Seasickness tablets restocked."}},
      {"anode check", {"Half left.", "Renewed, threads cleaned.", "Two thirds left."}},
  }};
  return notes;
}

std::span<const std::string_view> notesOf(TaskCategory category) {
  using Notes = std::array<std::string_view, 3>;
  static constexpr Notes machineryWork{"Done as per the maker's manual. Ran up afterwards, no leaks.",
                                       "Checked and cleaned, readings noted in the engine room book.",
                                       "Done alongside. Nothing unusual found."};
  static constexpr Notes hullWork{"Inspected and photographed, no change since last time.",
                                  "Done; small touch-ups only.", "Checked, in good order."};
  static constexpr Notes rigWork{"Checked aloft and on deck, nothing worn.",
                                 "Washed with fresh water, one shackle renewed.",
                                 "Chafe at the exit box: line turned end for end."};
  static constexpr Notes electricWork{"Tested, values within limits and noted.",
                                      "Terminals cleaned and tightened, tested again.",
                                      "Tested with the service tool. Firmware is current."};
  static constexpr Notes domesticWork{"Cleaned and run for half an hour.", "Filters washed, seals wiped with silicone.",
                                      "Done before the guests came aboard."};
  static constexpr Notes finishWork{"Washed, done and rinsed.", "Done section by section over two days.",
                                    "Touched up; the rest is holding well."};
  static constexpr Notes safetyWork{"Tested and signed off, next date on the tag.", "In order, inventory complete.",
                                    "Checked with the crew as part of the drill."};
  static constexpr Notes generalWork{"Done, nothing to report.", "Checked, all free and greased.",
                                     "Done. Spare used from stock and reordered."};
  using enum TaskCategory;
  switch (category) {
    case engine:
    case engine2:
    case engine3:
    case generator:
    case fuel:
    case hydraulic:
    case waterMaker:
      return machineryWork;
    case hull:
    case hullMachinery:
    case dockLines:
      return hullWork;
    case rigging:
    case sails:
      return rigWork;
    case electrical:
    case electronicsNav:
    case avIt:
      return electricWork;
    case appliance:
    case hvac:
    case plumbing:
      return domesticWork;
    case cosmetic:
    case brightwork:
    case upholsteryCanvas:
    case carpentry:
      return finishWork;
    case safety:
    case medical:
    case bilge:
      return safetyWork;
    case generalMechanical:
    case tenders:
    case other:
      return generalWork;
  }
  return generalWork;
}

std::span<const JobPart> jobParts() {
  static constexpr std::array<JobPart, 30> parts{{
      {"raw water impeller replacement", "Impeller kit", 1, "09-1027B-9", 92.40},
      {"raw water impeller replacement", "Cover gasket", 1, "890-0031", 6.10},
      {"gearbox oil & filter change", "Gearbox oil, l", 9.5, "ATF-D3", 78.85},
      {"gearbox oil & filter change", "Gearbox filter", 1, "GF-3312", 41.20},
      {"hydraulic oil & filter change", "Hydraulic oil, l", 60, "HLP-46", 312.00},
      {"hydraulic oil & filter change", "Return filter element", 2, "HF-7741", 118.60},
      {"pump oil change", "Pump oil, l", 1.1, "WM-OIL-1", 18.70},
      {"oil & filter change", "Oil filter", 1, "LF-16035", 34.50},
      {"oil & filter change", "Engine oil 15W-40, l", 22, "15W40-BULK", 129.80},
      {"fuel filter replacement", "Primary element", 1, "PF-1000-10", 46.90},
      {"fuel filter replacement", "Secondary filter", 1, "SF-5488", 38.20},
      {"Change primary fuel filter", "Primary element", 1, "PF-1000-10", 46.90},
      {"Replace air filter", "Air filter element", 1, "AF-2236", 88.00},
      {"coolant flush & replacement", "Coolant concentrate, l", 20, "CC-OAT", 146.00},
      {"pencil anodes check", "Pencil anode", 4, "PZ-12", 27.60},
      {"anode check", "Pencil anode", 1, "PZ-10", 7.40},
      {"Zincs / anodes replacement", "Shaft anode", 2, "SA-60", 64.00},
      {"Zincs / anodes replacement", "Hull plate anode", 6, "HP-180", 222.00},
      {"Zincs / anodes replacement", "Rudder anode", 2, "RA-140", 58.00},
      {"Antifouling bottom paint", "Antifouling, 5 l", 4, "AF-RED-5", 1180.00},
      {"Fresh water filters change", "Sediment cartridge 20 in", 2, "SED-20", 24.80},
      {"Fresh water filters change", "Carbon cartridge 20 in", 2, "CAR-20", 36.40},
      {"Watermaker pre-filters change", "Pre-filter 5 micron", 2, "WM-05", 31.00},
      {"Watermaker pre-filters change", "Pre-filter 20 micron", 2, "WM-20", 29.00},
      {"Winch & furler service", "Pawl and spring kit", 3, "WPK-8", 54.00},
      {"Windlass service", "Gear oil, l", 0.75, "EP-90", 9.75},
      {"Tender engine annual service", "Service kit", 1, "OB-115-SK", 142.00},
      {"Jet ski service", "Service kit", 1, "PWC-SK", 96.00},
      {"First aid kit restock", "Dressings and consumables", 1, "FA-REFILL", 48.50},
      {"Hydrostatic release unit replacement", "Release unit", 2, "HRU-20", 158.00},
  }};
  return parts;
}

std::span<const Contractor> contractors() {
  static constexpr std::array<Contractor, 14> firms{{
      {"Life raft service", "Riviera Raft Station", 890},
      {"Fire extinguisher annual service", "Guardian Fire Marine", 640},
      {"Inflatable lifejackets annual service", "Riviera Raft Station", 410},
      {"Antifouling bottom paint", "Porto Azzurro Yard", 7400},
      {"Zincs / anodes replacement", "Porto Azzurro Yard", 420},
      {"Seacocks & thru-hulls service", "Porto Azzurro Yard", 1350},
      {"Standing rigging inspection", "Palma Rig & Hydraulics", 780},
      {"Sail wash & valet", "Loft Ventura", 1260},
      {"Switchboard thermal scan", "Côte Marine Electrics", 560},
      {"Insulation resistance test", "Côte Marine Electrics", 480},
      {"Radar calibration check", "Harbour Navtronics", 390},
      {"Fixed fire suppression inspection", "Guardian Fire Marine", 720},
      {"Potable water lab test", "Laboratoire du Port", 145},
      {"Tender engine annual service", "Outboard Centre Golfe", 380},
  }};
  return firms;
}

Role roleFor(TaskCategory category) {
  using enum TaskCategory;
  switch (category) {
    case hull:
    case rigging:
    case sails:
    case safety:
    case dockLines:
    case tenders:
    case brightwork:
    case cosmetic:
    case upholsteryCanvas:
      return Role::deck;
    case appliance:
    case medical:
      return Role::interior;
    case electronicsNav:
    case hullMachinery:
    case other:
      return Role::master;
    default:
      return Role::engineer;
  }
}

}  // namespace thalvorn::demo
