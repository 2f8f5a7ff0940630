#include <gtest/gtest.h>
#include <simdjson.h>

#include <map>
#include <set>

#include "compliance/account_member.h"
#include "compliance/crew_board_post.h"
#include "compliance/crew_member.h"
#include "compliance/gmdss_test_log.h"
#include "compliance/ism_record.h"
#include "compliance/marpol_record.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/task_template.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "operations/bunkering_record.h"
#include "operations/saved_waypoint.h"
#include "operations/ships_log_entry.h"
#include "operations/voyage_plan.h"
#include "records/calendar_event.h"
#include "records/equipment_item.h"
#include "records/guest_profile.h"
#include "records/ship_contact.h"
#include "records/ship_document.h"
#include "records/subscription_account.h"
#include "records/yard_period.h"

namespace thalvorn {
namespace {

using AllRecords =
    boost::mp11::mp_list<Vessel, VesselProfile, MaintenanceTask, ServiceLog, TaskTemplate, ShipsLogEntry,
                         BunkeringRecord, VoyagePlan, SavedWaypoint, YardPeriod, EquipmentItem, ShipDocument,
                         ShipContact, GuestProfile, CalendarEvent, SubscriptionAccount, ISMCheckDefinition, ISMRecord,
                         MarpolRecord, GMDSSTestLog, CrewMember, CrewMemberExtended, CrewBoardPost, AccountMember>;

template <class Visitor>
void forEachRecordType(Visitor visit) {
  boost::mp11::mp_for_each<boost::mp11::mp_transform<std::type_identity, AllRecords>>(
      [&](auto type) { visit(typename decltype(type)::type{}); });
}

/// Gives every field of a record, at any depth, a value of its own that is not the initial one; enumeration values get
/// what `onChoice` makes of them.
template <class OnChoice>
class Filler {
 public:
  explicit Filler(OnChoice onChoice) : onChoice_(onChoice) {}

  void fill(std::string& text) { text = "text \"" + std::to_string(++count_) + "\" ⚓"; }
  void fill(bool& flag) { flag = !flag; }
  void fill(double& number) { number = ++count_ + 0.125; }
  void fill(std::int64_t& number) { number = 1000 + ++count_; }
  void fill(Uuid& id) { id = Uuid::named({}, std::to_string(++count_)); }
  void fill(Timestamp& time) { time = Timestamp(std::chrono::seconds(1'700'000'000 + ++count_)); }
  void fill(Bytes& bytes) { bytes.data = {0, static_cast<std::uint8_t>(++count_), 255}; }
  template <class E>
  void fill(Choice<E>& choice) {
    onChoice_(choice);
  }
  template <class T>
  void fill(std::optional<T>& value) {
    fill(value.emplace());
  }
  template <class T>
  void fill(std::vector<T>& list) {
    for (T& element : (list.resize(2), list)) fill(element);
  }
  template <class K, class V>
  void fill(std::map<K, V>& map) {
    K key{};
    fill(key);
    fill(map[key]);
  }
  template <DescribedRecord T>
    requires(!std::is_same_v<T, Bytes> && !std::is_same_v<T, Uuid>)
  void fill(T& record) {
    forEachField(record, [&](std::string_view, auto& field) { fill(field); });
  }

 private:
  OnChoice onChoice_;
  int count_ = 0;
};

constexpr auto nextCase = []<class E>(Choice<E>& choice) {
  choice = static_cast<E>((choice.order() + 1) % caseCount<E>);
};

template <class T, class OnChoice>
T filled(OnChoice onChoice) {
  T record{};
  Filler(onChoice).fill(record);
  return record;
}

/// The keys of a JSON object in order, separated by spaces.
std::string keysOf(const std::string& json) {
  simdjson::dom::parser parser;
  std::string keys;
  for (const auto member : parser.parse(json).get_object()) keys.append(keys.empty() ? "" : " ").append(member.key);
  return keys;
}

template <class T>
std::string ownKeys() {
  return keysOf(toJson(filled<T>(nextCase)));
}

TEST(Records, EveryFieldSurvivesJson) {
  forEachRecordType([]<class T>(T initial) {
    const T record = filled<T>(nextCase);
    constexpr FieldSet all = (FieldSet{1} << fieldCount<T>)-1;
    ASSERT_EQ(changedFields(initial, record), all) << fieldNames<T>[0] << " of " << fieldCount<T>;
    const auto read = recordFromJson<T>(toJson(record, JsonFields::full));
    ASSERT_TRUE(read) << read.error().message();
    EXPECT_EQ(changedFields(record, *read), FieldSet{0}) << toJson(record, JsonFields::full);
  });
}

TEST(Records, KeepTheCasesOfANewerProgram) {
  int choices = 0;
  forEachRecordType([&]<class T>(T) {
    const T record = filled<T>(
        [&]<class E>(Choice<E>& choice) { choice = Choice<E>::fromRaw("Later case " + std::to_string(++choices)); });
    const std::string json = toJson(record, JsonFields::full);
    const auto read = recordFromJson<T>(json, JsonFields::full);
    ASSERT_TRUE(read) << read.error().message();
    EXPECT_EQ(*read, record);
    EXPECT_EQ(toJson(*read, JsonFields::full), json);
  });
  EXPECT_GT(choices, 40);
}

TEST(Records, EnumerationTextsAreDistinct) {
  forEachRecordType([]<class T>(T) {
    filled<T>([]<class E>(Choice<E>& choice) {
      std::set<std::string_view> raw;
      std::set<std::string_view> display;
      for (const EnumText& text : EnumTexts<E>::table) {
        EXPECT_TRUE(!text.raw.empty() && raw.insert(text.raw).second) << text.raw;
        EXPECT_TRUE(!text.display.empty() && display.insert(text.display).second) << text.display;
      }
      nextCase(choice);
    });
  });
}

TEST(Records, KeysStandInTheirFixedOrder) {
  EXPECT_EQ(ownKeys<MaintenanceTask>(),
            "id vesselID title notes category triggerType hourSource dueDate recurringDays dueAtEngineHours "
            "recurringEngineHours isCompleted photoData photoPaths");
  EXPECT_EQ(ownKeys<Vessel>(),
            "id name type lengthFeet engineHours engineHoursUpdatedAt engine2Hours engine3Hours generator1Hours "
            "generator2Hours hydraulicHours notes numberOfEngines hasGenerator numberOfGenerators hasHydraulic useISM "
            "sortOrder");
  EXPECT_EQ(ownKeys<ServiceLog>(),
            "id taskID vesselID equipmentID taskTitle category kind completedDate engineHoursAtService "
            "technicianNotes cost completedBy partsUsed");
  EXPECT_EQ(ownKeys<ISMRecord>(),
            "id vesselID checkDefinitionID checkTitle checkCategory checkIcon completedDate completedBy crewPresent "
            "location notes passed correctiveAction nextDueDate checkType customTitle");
  EXPECT_EQ(ownKeys<MarpolRecord>(),
            "id vesselID recordType date operationCategory quantity disposalMethod port latitude longitude "
            "receiptNumber signedBy notes createdAt");
  EXPECT_EQ(ownKeys<GMDSSTestLog>(), "id vesselID testType date result performedBy notes createdAt");
  EXPECT_EQ(ownKeys<CrewBoardPost>(),
            "id userID authorName type department priority title body isPinned expiresAt requiresAcknowledgment "
            "photoPaths documentPaths createdAt updatedAt acknowledgments");
  constexpr std::string_view kIdentity =
      "id vesselID firstName lastName role nationality dateOfBirth phone email emergencyName emergencyPhone embarkDate "
      "disembarkDate isActive notes certifications";
  const std::string extended =
      " placeOfBirth maritalStatus gender passportCountry passportNumber passportExpiry driverLicenseNumber "
      "driverLicenseState driverLicenseExpiry seafarerIdNumber seafarerIdExpiry taxIdCountry taxIdType taxIdNumber "
      "dateOfHire employmentType employmentStatus dayRate annualSalary currency separationDate separationReason "
      "homeStreet homeCity homeState homePostal homeCountry nokName nokRelationship nokPhone nokEmail nokAddress "
      "bankAccountHolder bankName bankAccountNumber bankRoutingNumber bankSwift bankIban";
  EXPECT_EQ(ownKeys<CrewMember>(), std::string(kIdentity) + extended);
  EXPECT_EQ(ownKeys<CrewMemberExtended>(), "dateOfBirth" + extended);
}

TEST(Records, VoyagePlansAreSnakeCaseAtEveryDepth) {
  const auto plan = filled<VoyagePlan>(nextCase);
  const std::string json = toJson(plan);
  EXPECT_EQ(keysOf(json),
            "id vessel_id plan_name date_created fuel_tank_gallons bladder_gallons unusable_pct contingency_pct "
            "fuel_price_per_gallon default_engine_burn_gph default_generator_gph legs notes");
  simdjson::dom::parser parser;
  const simdjson::dom::element leg = parser.parse(json)["legs"].at(0);
  EXPECT_EQ(keysOf(simdjson::minify(leg)),
            "id leg_number from_port to_port distance_nm speed_knots engine_burn_gph generator_gph fuel_added "
            "depart_date waypoints");
  EXPECT_EQ(keysOf(simdjson::minify(simdjson::dom::element(leg["waypoints"].at(0)))),
            "id name latitude longitude notes");
}

TEST(Records, OnlyRecordsOfAVesselAskForIt) {
  const std::string only_id = R"({"id":"0f0e0d0c-0b0a-4908-8706-050403020100"})";
  EXPECT_TRUE(recordFromJson<SavedWaypoint>(only_id));
  EXPECT_TRUE(recordFromJson<CrewBoardPost>(only_id));
  EXPECT_TRUE(recordFromJson<SubscriptionAccount>(only_id));
  EXPECT_TRUE(recordFromJson<AccountMember>(only_id));
  EXPECT_EQ(recordFromJson<VoyagePlan>(only_id).error().message(), "vessel_id: is missing");
  EXPECT_EQ(recordFromJson<CrewMember>(only_id).error().message(), "vesselID: is missing");
}

TEST(Records, FormFactsAreUsable) {
  forEachRecordType([]<class T>(T) {
    if constexpr (HasFacts<T>) {
      std::set<std::string_view> names;
      for (const FieldFacts& facts : RecordFacts<T>::facts) {
        EXPECT_TRUE(names.insert(facts.name).second) << facts.name << " stands twice";
        EXPECT_FALSE(facts.label.empty()) << facts.name;
        EXPECT_LT(facts.minimum, facts.maximum) << facts.name;
      }
    }
  });
  const auto sensitive = []<class T>(std::type_identity<T>, std::initializer_list<std::string_view> names) {
    for (const auto name : names) {
      const FieldFacts* facts = factsOf<T>(name);
      EXPECT_TRUE(facts != nullptr && facts->sensitive) << name;
    }
  };
  sensitive(std::type_identity<CrewMember>{},
            {"passportNumber", "driverLicenseNumber", "seafarerIdNumber", "taxIdNumber", "bankAccountHolder",
             "bankAccountNumber", "bankRoutingNumber", "bankSwift", "bankIban"});
  sensitive(std::type_identity<GuestProfile>{}, {"passportNumber"});
  sensitive(std::type_identity<SubscriptionAccount>{}, {"username", "accountNumber", "recoveryEmail", "mfaNotes"});
}

TEST(CrewMember, ExtendedParticularsGoOutAndComeBack) {
  auto member = filled<CrewMember>(nextCase);
  member.taxIdType = Choice<CrewTaxIDType>::fromRaw("NIE");
  const auto extended = recordFromJson<CrewMemberExtended>(toJson(extendedOf(member)));
  ASSERT_TRUE(extended) << extended.error().message();
  EXPECT_EQ(extended->maritalStatus, "single");

  CrewMember read;
  static_cast<CrewIdentity&>(read) = member;
  read.dateOfBirth.reset();
  applyExtended(*extended, read);
  EXPECT_EQ(read, member);

  applyExtended(CrewMemberExtended{}, read);
  EXPECT_EQ(read.maritalStatus, CrewMaritalStatus::single);
  EXPECT_EQ(read.bankIban, "");
}

TEST(ISMCheckTypeLegacy, StandsForTheBuiltInCheckAtItsPosition) {
  EXPECT_EQ(displayText(ISMCheckTypeLegacy::fireDrill), "Fire Drill");
  EXPECT_EQ(displayText(ISMCheckTypeLegacy::epirb), "First Aid Kit Inspection");
  EXPECT_EQ(displayText(ISMCheckTypeLegacy::sewagePollution), "Pollution Prevention Check");
  EXPECT_EQ(displayText(ISMCheckTypeLegacy::customCheck), "Custom Check");
  EXPECT_EQ(builtInCheckOf(ISMCheckTypeLegacy::riskAssessment)->intervalDays, 0);
  EXPECT_EQ(builtInCheckOf(ISMCheckTypeLegacy::customCheck), nullptr);
}

}  // namespace
}  // namespace thalvorn
