#include "operations/demo_voyages.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include "core/demo_dice.h"
#include "core/demo_tables.h"
#include "operations/bunkering.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using demo::Dice;
using demo::Role;

/// From the port before to this one.
struct Leg {
  std::string_view port;
  double miles;
};

/// Round trips that begin and end at the home port.
constexpr std::array<Leg, 9> kMeridianRound{{{"Monaco", 13.2},
                                             {"Portofino", 84.6},
                                             {"Portoferraio", 88.4},
                                             {"Porto Cervo", 98.7},
                                             {"Bonifacio", 31.5},
                                             {"Porto-Vecchio", 24.3},
                                             {"Calvi", 108.2},
                                             {"Saint-Tropez", 96.9},
                                             {"Antibes", 38.1}}};
constexpr std::array<Leg, 8> kHalcyonRound{{{"Port de Sóller", 37.4},
                                            {"Barcelona", 104.8},
                                            {"Mahón", 133.0},
                                            {"Ciutadella", 28.6},
                                            {"Cala Ratjada", 27.9},
                                            {"Porto Colom", 31.2},
                                            {"Ibiza", 92.5},
                                            {"Palma de Mallorca", 71.3}}};
constexpr std::array<Leg, 6> kSiroccoRound{{{"Cala di Volpe", 8.4},
                                            {"Bonifacio", 29.8},
                                            {"La Maddalena", 17.6},
                                            {"Santa Teresa Gallura", 13.1},
                                            {"Poltu Quatu", 16.8},
                                            {"Porto Cervo", 3.9}}};

struct Guest {
  std::string_view name;
  std::string_view note;
};
using Party = std::array<Guest, 4>;
constexpr std::array<Party, 4> kParties{{{{{"Mr Edmund Farrow", "Charterer"},
                                           {"Mrs Helen Farrow", "Coeliac: galley informed"},
                                           {"Miss Ivy Farrow", "Age 9, wears a lifejacket on deck"},
                                           {"Master Otto Farrow", "Age 6, wears a lifejacket on deck"}}},
                                         {{{"Dr Amélie Rousset", "Owner’s party"},
                                           {"Mr Jean Rousset", "Owner’s party"},
                                           {"Ms Noor Haddad", ""},
                                           {"", "Joins at the next port; name to follow from the broker"}}},
                                         {{{"Mr Kenji Morita", "VIP"},
                                           {"Mrs Aiko Morita", "VIP"},
                                           {"Mr Paul Okonkwo", ""},
                                           {"Ms Grace Okonkwo", "Vegetarian"}}},
                                         {{{"Sra. Inés Carvalho", "Owner’s guest"},
                                           {"Sr. Rui Carvalho", ""},
                                           {"Ms Lena Voss", "Certified diver"},
                                           {"Mr Tomas Voss", "Certified diver"}}}}};

constexpr std::array<std::string_view, 10> kNotes{
    "Light airs in the morning, sea breeze from noon. Anchored off the beach for lunch.",
    "Head sea past the cape; slowed for two hours so that lunch could be served.",
    "Stern-to at the town quay, shore power connected. Port dues paid to the end of the week.",
    "Motored all the way over a glassy sea. Watermaker run on passage.",
    "Stabilisers off after breakfast in flat water. Dolphins on the bow for half an hour.",
    "Swell on the beam; tender lashed with a second strap before departure.",
    "Traffic busy near the strait, two ferries passed ahead. Arrived ahead of time.",
    "Guests ashore by tender at 1600. Anchor held well in 22 ft, sand.",
    "Squall line seen on radar and passed astern. Deck washed down on arrival.",
    ""};

struct Remark {
  TripLogCategory category;
  std::string_view text;
};
constexpr std::array<Remark, 12> kRemarks{
    {{TripLogCategory::engine, "Engine room round: all temperatures and pressures normal, bilges dry."},
     {TripLogCategory::weather, "Barometer 1016 hPa, steady. Wind as forecast."},
     {TripLogCategory::observation, "Fishing vessel with nets out, passed half a mile clear to the south."},
     {TripLogCategory::communication, "Marina called on VHF 9: berth confirmed, stern-to, two lines ashore."},
     {TripLogCategory::navigation, "Cape abeam to port, 1.5 nm. Course altered for the next waypoint."},
     {TripLogCategory::safety, "Guest safety briefing held: lifejackets, muster point, man overboard."},
     {TripLogCategory::engine, "Fuel moved from the wing tanks to the day tank."},
     {TripLogCategory::weather, "Wind freshening, 4 ft sea on the quarter. Speed reduced by one knot."},
     {TripLogCategory::observation, "Pod of fin whales a mile off, course altered to keep clear."},
     {TripLogCategory::communication, "Position report sent to the owner’s office."},
     {TripLogCategory::safety, "Man overboard drill with the tender, recovery in 4 minutes."},
     {TripLogCategory::other, "Passerelle remote has a weak battery; spare fitted."}}};

/// How a yacht travels and where she takes her fuel.
struct Cruising {
  std::string_view vessel;
  std::span<const Leg> round;
  int passages = 0;
  int daysBetween = 0;  ///< on average
  double knots = 0;
  double gallonsPerHour = 0;
  bool logsLitres = false;  ///< fuel is entered in litres
  std::int64_t crew = 0;
  double fillGallons = 0;  ///< taken on at a time, about
};
constexpr std::array<Cruising, 3> kCruising{{{"M/Y Meridian", kMeridianRound, 34, 5, 12.4, 78, false, 7, 2100},
                                             {"S/Y Halcyon Wind", kHalcyonRound, 28, 6, 7.6, 2.4, true, 4, 85},
                                             {"Sirocco", kSiroccoRound, 30, 5, 26.5, 118, false, 4, 320}}};

struct Supplier {
  std::string_view name;
  std::string_view contact;
  std::string_view berth;
  std::string_view currency;
  double pricePerGallon;
  double fee;  ///< taxes and delivery, as a share of the price
  std::string_view invoice;
};
constexpr std::array<Supplier, 4> kSuppliers{
    {{"Quai Est Carburants", "+33 0 0000 0118, avitaillement@quai-est.example", "Fuel dock, Quai Est", "EUR", 6.214,
      0.035, "QE"},
     {"Isola Marine Fuels", "+39 000 0000 264", "Berth 12, by truck", "EUR", 6.482, 0.052, "IMF/"},
     {"Transocean Yacht Bunkers", "ops@tyb.example", "Outer anchorage, by barge", "USD", 3.968, 0.024, "TYB-"},
     {"Balear Suministros", "+34 000 000 371", "Dique del Oeste", "EUR", 5.937, 0.041, "BS-"}}};

double tenths(double value) { return std::round(value * 10) / 10; }
double cents(double value) { return std::round(value * 100) / 100; }

SeaState seaFor(double wind) {
  using enum SeaState;
  return wind < 6 ? calm : wind < 12 ? slight : wind < 19 ? moderate : wind < 26 ? rough : veryRough;
}

class VoyageBuilder {
 public:
  VoyageBuilder(const DemoFleet& fleet, Timestamp now, const Calendar& calendar)
      : fleet_(fleet), today_(calendar.startOfDay(now) + 12h), calendar_(calendar) {}

  DemoVoyages build() {
    for (const Cruising& cruising : kCruising) {
      const auto vessel = std::ranges::find(fleet_.vessels, cruising.vessel, &Vessel::name);
      const auto yacht = std::ranges::find(demo::yachts(), cruising.vessel,
                                           [](const demo::Yacht& one) { return std::string_view(one.vessel.name); });
      if (vessel != fleet_.vessels.end() && yacht != demo::yachts().end()) cruise(cruising, *vessel, *yacht);
    }
    const auto latestFirst = [](const auto& a, const auto& b) {
      return a.date != b.date ? a.date > b.date : a.id < b.id;
    };
    std::ranges::sort(made_.shipsLog, latestFirst);
    std::ranges::sort(made_.bunkering, latestFirst);
    return std::move(made_);
  }

 private:
  /// From the latest passage back: the meter's reading today is known.
  void cruise(const Cruising& cruising, const Vessel& vessel, const demo::Yacht& yacht) {
    int daysAgo = 2;
    double reading = vessel.engineHours - 1.3;
    double burned = 0;
    int fills = 0;
    for (int back = 0; back < cruising.passages; ++back) {
      const int number = cruising.passages - 1 - back;
      Dice dice(Uuid::named(vessel.id, fmt::format("passage {}", number)));
      // Once in a while she lies at anchor with guests aboard, and the log has an entry for the day all the same.
      const bool underWay = number % 9 != 5;
      ShipsLogEntry entry = passage(cruising, vessel, yacht, number, underWay, daysAgo, dice);
      entry.engineHours = tenths(reading);
      reading -= entry.hoursUnderway.value_or(0) + 0.4;
      burned += entry.hoursUnderway.value_or(0) * cruising.gallonsPerHour;
      if (burned > cruising.fillGallons) {
        addDelivery(cruising, vessel, entry, fills++, dice);
        burned = 0;
      }
      daysAgo += 1 + static_cast<int>(dice.below(static_cast<unsigned>(2 * cruising.daysBetween - 1)));
      made_.shipsLog.push_back(std::move(entry));
    }
  }

  Timestamp morning(int daysAgo, Dice& dice) const {
    const Timestamp day = calendar_.addDays(today_, -daysAgo).value_or(today_);
    return calendar_.startOfDay(day) + 7h + std::chrono::minutes(5 * dice.below(40));
  }

  ShipsLogEntry passage(const Cruising& cruising, const Vessel& vessel, const demo::Yacht& yacht, int number,
                        bool underWay, int daysAgo, Dice& dice) const {
    ShipsLogEntry entry{.id = Uuid::named(vessel.id, fmt::format("entry {}", number)),
                        .vesselID = vessel.id,
                        .date = morning(daysAgo, dice)};
    const auto place = static_cast<std::size_t>(number - number / 9 - (number % 9 > 5 ? 1 : 0));
    const Leg& leg = cruising.round[place % cruising.round.size()];
    const std::size_t before = (place + cruising.round.size() - 1) % cruising.round.size();
    entry.departurePort = cruising.round[before].port;
    entry.arrivalPort = underWay ? leg.port : cruising.round[before].port;
    const double wind = 3 + dice.below(22) + (dice.below(9) == 0 ? 8 : 0);
    if (underWay) {
      entry.distanceNM = tenths(leg.miles * (98 + dice.below(7)) / 100);
      entry.hoursUnderway = std::max(0.3, tenths(*entry.distanceNM / cruising.knots * (100 + wind) / 108));
      const double gallons = *entry.hoursUnderway * cruising.gallonsPerHour;
      if (cruising.logsLitres)
        entry.fuelUsedLitres = std::round(gallons * kLitresPerGallon);
      else
        entry.fuelUsedGallons = std::round(gallons);
    }
    constexpr std::array<std::string_view, 8> kDirections{"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    entry.windSpeedKnots = wind;
    entry.windDirection = kDirections[dice.below(kDirections.size())];
    entry.waveHeightFeet = tenths(wind * wind / 90);
    entry.seaState = seaFor(wind);
    constexpr std::array kSkies{WeatherCondition::sunny,     WeatherCondition::sunny,     WeatherCondition::sunny,
                                WeatherCondition::partCloud, WeatherCondition::partCloud, WeatherCondition::overcast,
                                WeatherCondition::rain};
    entry.weather = wind > 27 ? WeatherCondition::storm : kSkies[dice.below(kSkies.size())];
    entry.crewCount = cruising.crew;
    entry.skipper = name(yacht, Role::master);
    entry.notes = underWay ? kNotes[dice.below(kNotes.size())]
                           : "At anchor all day. Tender and toys in use, anchor watch set overnight.";
    addRoster(entry, yacht);
    addGuests(entry, number);
    addJournal(entry, yacht, underWay, dice);
    return entry;
  }

  static std::string name(const demo::Yacht& yacht, Role role) {
    return std::string(yacht.crew[static_cast<std::size_t>(role)]);
  }

  static void addRoster(ShipsLogEntry& entry, const demo::Yacht& yacht) {
    using enum CrewDutyRole;
    const auto add = [&](Role who, CrewDutyRole role, std::string_view watch) {
      entry.crewRoster.push_back({.id = Uuid::named(entry.id, fmt::format("crew {}", entry.crewRoster.size())),
                                  .name = name(yacht, who),
                                  .role = role,
                                  .watch = std::string(watch)});
    };
    add(Role::master, captain, "0800–1200, 2000–2400");
    add(Role::deck, mate, "0400–0800, 1600–2000");
    add(Role::engineer, engineer, "0000–0400, 1200–1600");
    add(Role::interior, stew, "");
  }

  /// Parties stay for some passages, with turnarounds between them.
  static void addGuests(ShipsLogEntry& entry, int number) {
    const int turn = number / 4;
    if (turn % 2 != 0) return;
    const Party& party = kParties[static_cast<std::size_t>(turn / 2) % kParties.size()];
    for (const Guest& guest : party)
      entry.guests.push_back({.id = Uuid::named(entry.id, fmt::format("guest {}", entry.guests.size())),
                              .name = std::string(guest.name),
                              .note = std::string(guest.note)});
  }

  static void addJournal(ShipsLogEntry& entry, const demo::Yacht& yacht, bool underWay, Dice& dice) {
    const auto hours = entry.hoursUnderway.value_or(8);
    const auto add = [&](double share, TripLogCategory category, Role author, std::string text) {
      const auto minutes = static_cast<int>(hours * 60 * share);
      entry.tripLog.push_back({.id = Uuid::named(entry.id, fmt::format("line {}", entry.tripLog.size())),
                               .timestamp = entry.date + std::chrono::minutes(minutes),
                               .category = category,
                               .author = name(yacht, author),
                               .text = std::move(text)});
    };
    if (underWay)
      add(0, TripLogCategory::navigation, Role::master,
          fmt::format("Let go all lines, bound for {}. Draughts and tanks noted, engines tested ahead and astern.",
                      entry.arrivalPort));
    const unsigned first = dice.below(kRemarks.size());
    const unsigned count = 1 + dice.below(4);
    for (unsigned i = 0; i < count; ++i) {
      const Remark& remark = kRemarks[(first + 5 * i) % kRemarks.size()];
      const Role author = remark.category == TripLogCategory::engine ? Role::engineer : Role::deck;
      add((i + 1.0) / (count + 1), remark.category, author, std::string(remark.text));
    }
    if (underWay)
      add(1, TripLogCategory::navigation, Role::master,
          fmt::format("Fast alongside at {}, {:.1f} nm by log. Finished with engines.", entry.arrivalPort,
                      entry.distanceNM.value_or(0)));
  }

  void addDelivery(const Cruising& cruising, const Vessel& vessel, const ShipsLogEntry& before, int number,
                   Dice& dice) {
    const auto profile = std::ranges::find(fleet_.profiles, vessel.id, &VesselProfile::vesselID);
    // The large yacht buys in dollars by barge, duty free, but for every third delivery.
    const bool byBarge = cruising.fillGallons > 1000 && number % 3 != 2;
    const Supplier& supplier = kSuppliers[byBarge ? 2 : cruising.logsLitres ? 3 : static_cast<std::size_t>(number % 2)];
    BunkeringRecord record{.id = Uuid::named(vessel.id, fmt::format("bunkering {}", number)),
                           .vesselID = vessel.id,
                           .vesselName = vessel.name,
                           .vesselIMO = profile != fleet_.profiles.end() ? profile->imoNumber : std::string(),
                           .supplierName = std::string(supplier.name),
                           .supplierContact = std::string(supplier.contact),
                           .date = before.date - 20h,
                           .port = before.departurePort,
                           .location = std::string(supplier.berth),
                           .fuelType = cruising.fillGallons > 1000 ? FuelType::mgo : FuelType::diesel,
                           .currency = std::string(supplier.currency)};
    record.quantityGallons = std::round(cruising.fillGallons * (85 + dice.below(30)) / 100);
    record.pricePerGallon = std::round(supplier.pricePerGallon * (95 + dice.below(11)) * 10) / 1000;
    record.totalCharge = cents(calculatedTotal(record.quantityGallons, record.pricePerGallon) * (1 + supplier.fee));
    record.invoiceNumber = fmt::format("{}{}", supplier.invoice, 10400 + dice.below(9000));
    if (byBarge)
      record.notes = fmt::format("Sample bottle sealed, no. {}. Tanks sounded before and after.", 301 + number);
    made_.bunkering.push_back(std::move(record));
  }

  const DemoFleet& fleet_;
  Timestamp today_;  ///< noon: the voyages are the same at any hour of a day
  const Calendar& calendar_;
  DemoVoyages made_;
};

}  // namespace

DemoVoyages demoVoyages(const DemoFleet& fleet, Timestamp now, const Calendar& calendar) {
  return VoyageBuilder(fleet, now, calendar).build();
}

}  // namespace thalvorn
