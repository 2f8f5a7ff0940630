#include <gmock/gmock.h>

#include "backend/filler.h"
#include "backend/row_kind.h"
#include "base/json.h"

namespace thalvorn {
namespace {

using testing::HasSubstr;
using testing::Not;

const Uuid kUser = *Uuid::parse("aaaaaaaa-0000-4000-8000-000000000001");
const Uuid kAccount = *Uuid::parse("aaaaaaaa-0000-4000-8000-000000000002");
const RowContext kContext{kUser, kAccount, Timestamp(std::chrono::seconds(1'800'000'000)), std::nullopt};

template <class T>
T filled() {
  T record{};
  Filler(kAccount).fill(record);
  // The author of a post is a user, known by identity.
  if constexpr (requires { record.acknowledgments; }) record.userID = kUser.toString();
  return record;
}

/// The fields of a kind that other tables hold.
template <class T>
FieldSet elsewhere() {
  FieldSet set = 0;
  if constexpr (requires { RowKind<T>::elsewhere; })
    for (const auto name : RowKind<T>::elsewhere) set |= FieldSet{1} << fieldIndex<T>(name);
  return set;
}

template <class T>
std::string namesOf(FieldSet fields) {
  std::string names;
  for (std::size_t i = 0; i < fieldCount<T>; ++i)
    if (fields >> i & 1) names += std::string(fieldNames<T>[i]) + " ";
  return names;
}

/// As the row comes back from a server.
template <class T>
RowOf<T> sent(const RowOf<T>& row, RowColumns columns) {
  const auto list = listFromJson<RowOf<T>>(rowsToJson<RowOf<T>>({row}, columns), JsonFields::full);
  EXPECT_TRUE(list && list->records.size() == 1) << rowsToJson<RowOf<T>>({row}, columns);
  return list->records.at(0);
}

template <class T>
class RowTest : public testing::Test {};
using Kinds = boost::mp11::mp_rename<RowRecordTypes, testing::Types>;
TYPED_TEST_SUITE(RowTest, Kinds);

TYPED_TEST(RowTest, CarriesEveryField) {
  const auto record = filled<TypeParam>();
  const auto back = recordFromRow<TypeParam>(sent<TypeParam>(rowFromRecord(record, kContext), RowColumns::all));
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->unreadable.empty());
  EXPECT_EQ(namesOf<TypeParam>(changedFields(record, back->record)), namesOf<TypeParam>(elsewhere<TypeParam>()));
}

TYPED_TEST(RowTest, KeepsLocalValuesThatAnOlderServerCannotHold) {
  const auto record = filled<TypeParam>();
  const auto row = sent<TypeParam>(rowFromRecord(record, kContext), RowColumns::standard);
  const auto back = recordFromRow<TypeParam>(row, &record);
  ASSERT_TRUE(back);
  EXPECT_EQ(namesOf<TypeParam>(changedFields(record, back->record)), "");
}

TYPED_TEST(RowTest, EmptyRecordsAndRowsAgreeAndNullsAreSent) {
  const TypeParam empty{};
  const auto row = rowFromRecord(empty, kContext);
  const auto back = recordFromRow<TypeParam>(sent<TypeParam>(row, RowColumns::all));
  ASSERT_TRUE(back);
  if constexpr (
      !requires { empty.updatedAt; } && !requires { empty.acknowledgments; } && !requires { empty.accountId; })
    EXPECT_EQ(namesOf<TypeParam>(changedFields(empty, back->record)), "");
  // A row of an older server with hardly a column gives the same record.
  const auto bare = recordFromJson<RowOf<TypeParam>>(R"({"id":"00000000-0000-0000-0000-000000000000"})");
  ASSERT_TRUE(bare);
  if constexpr (!requires { RowKind<TypeParam>::whole; }) {
    TypeParam expected{};
    if constexpr (std::is_same_v<TypeParam, Vessel>) expected.sortOrder = unordered;
    EXPECT_EQ(recordFromRow<TypeParam>(*bare)->record, expected);
  }

  // Full and empty rows have the same keys, as one request demands.
  const auto keys = [](const std::string& json) {
    std::vector<std::string> names;
    const auto members = splitJsonObject(std::string_view(json).substr(1, json.size() - 2));
    for (const RawMember& member : members.value()) names.push_back(member.name);
    return names;
  };
  for (const auto columns : {RowColumns::standard, RowColumns::all})
    EXPECT_EQ(keys(rowsToJson<RowOf<TypeParam>>({row}, columns)),
              keys(rowsToJson<RowOf<TypeParam>>({rowFromRecord(filled<TypeParam>(), kContext)}, columns)));
}

TEST(RowColumnsTest, AreTheTables) {
  Vessel vessel;
  vessel.id = Uuid::named(kAccount, "v");
  vessel.name = "Meridian";
  vessel.engine2Hours = 12.5;
  vessel.useISM = true;
  vessel.notes = "keys at the mast";
  EXPECT_EQ(rowsToJson<SBVesselRow>({rowFromRecord(vessel, kContext)}, RowColumns::standard),
            R"([{"id":")" + vessel.id.toString() + R"(","user_id":")" + kUser.toString() + R"(","account_id":")" +
                kAccount.toString() +
                R"(","name":"Meridian","type":"","length_feet":0,"engine_hours":0,"engine2_hours":12.5,)"
                R"("engine3_hours":0,"generator1_hours":0,"generator2_hours":0,"hydraulic_hours":0,"use_ism":true,)"
                R"("sort_order":0,"engine_hours_updated_at":null,"number_of_engines":1,"has_generator":false,)"
                R"("number_of_generators":1,"has_hydraulic":false,"updated_at":"2027-01-15T08:00:00Z"}])");
  const std::string all = rowsToJson<SBVesselRow>({rowFromRecord(vessel, kContext)}, RowColumns::all);
  EXPECT_THAT(all, HasSubstr(R"("seen_version":null)"));
  EXPECT_THAT(all, HasSubstr(R"("extra_json":"{\"notes\":\"keys at the mast\",\"meterHistory\":[]}")"));
  EXPECT_THAT(all, Not(HasSubstr("server_version")));

  Vessel unplaced = vessel;
  unplaced.sortOrder = unordered;
  const SBVesselRow without = rowFromRecord(unplaced, kContext);
  EXPECT_EQ(without.sortOrder, std::nullopt);
  EXPECT_EQ(recordFromRow<Vessel>(without, &vessel)->record.sortOrder, unordered);

  EXPECT_EQ(rowsOf<Vessel>(kAccount).order(RowKind<Vessel>::facts.order).path(),
            "/vessels?account_id=eq.aaaaaaaa-0000-4000-8000-000000000002&order=sort_order.asc,name.asc");
  EXPECT_EQ(rowsOf<WorkOrder>(kAccount).path(), "/work_orders?vessel_id=eq.aaaaaaaa-0000-4000-8000-000000000002");
}

TEST(RowColumnsTest, HoldObjectsWhereTheTableDoes) {
  AccountMember member;
  member.moduleOverrides[AppTabPermissionKey::guests] = ModuleAccess::hidden;
  EXPECT_THAT(rowsToJson<SBAccountMemberRow>({rowFromRecord(member, kContext)}, RowColumns::all),
              HasSubstr(R"("module_overrides":{"guests":"hidden"})"));
}

TEST(RowReadingTest, TakesWhatServersWrite) {
  const auto list = listFromJson<SBServiceLogRow>(
      R"([{"id":"AAAAAAAA-0000-4000-8000-00000000000A","vessel_id":"aaaaaaaa-0000-4000-8000-00000000000b",
           "completed_date":"2026-01-31T10:00:00.1204+02:00","updated_at":"2026-01-31T08:00:00.5+00:00",
           "engine_hours_at_service":1e+21,"cost":12.50,"kind":null,"a_newer_column":{"x":[1]},"server_version":9007199254740993}, 
 {"id":"aaaaaaaa-0000-4000-8000-00000000000c","completed_date":"1900-01-01T00:00:00+00:19:32","cost":"NaN"},
 {"id":"aaaaaaaa-0000-4000-8000-00000000000d","completed_date":"infinity"}])",
      JsonFields::full);
  ASSERT_TRUE(list);
  ASSERT_EQ(list->records.size(), 2u);
  const auto first = recordFromRow<ServiceLog>(list->records[0])->record;
  EXPECT_EQ(first.id.toString(), "aaaaaaaa-0000-4000-8000-00000000000a");
  EXPECT_EQ(formatTimestamp(first.completedDate), "2026-01-31T08:00:00Z");
  EXPECT_EQ(first.cost, 12.5);
  EXPECT_EQ(first.kind, ServiceLog{}.kind);
  EXPECT_EQ(list->records[0].serverVersion, 9007199254740993);
  const auto second = recordFromRow<ServiceLog>(list->records[1])->record;
  EXPECT_EQ(formatTimestamp(second.completedDate), "1899-12-31T23:40:28Z");
  EXPECT_EQ(second.cost, std::nullopt);
  ASSERT_EQ(list->setAside.size(), 1u) << "one row alone, named";
  EXPECT_EQ(list->setAside[0].error.field, "completed_date");
}

TEST(RowReadingTest, SetsUnreadableDocumentsAside) {
  SBContactRow row;
  row.complianceDocumentsJson = "[{\"id\":";
  ShipContact known = filled<ShipContact>();
  const auto kept = recordFromRow<ShipContact>(row, &known);
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->record.complianceDocuments, known.complianceDocuments);
  ASSERT_EQ(kept->unreadable.size(), 1u);
  EXPECT_EQ(kept->unreadable[0].field, "compliance_documents_json");
  EXPECT_TRUE(recordFromRow<ShipContact>(row)->record.complianceDocuments.empty());

  SBVoyagePlanRow plan = rowFromRecord(filled<VoyagePlan>(), kContext);
  plan.planJson = "{\"legs\":7}";
  const auto refused = recordFromRow<VoyagePlan>(plan);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().field, "plan_json.legs");
}

TEST(RowReadingTest, AClearedExtraFieldIsClearedEverywhere) {
  ShipsLogEntry entry;
  entry.fuelUsedLitres = 40;
  const ShipsLogEntry elsewhere_known = entry;
  entry.fuelUsedLitres.reset();
  EXPECT_EQ(recordFromRow<ShipsLogEntry>(rowFromRecord(entry, kContext), &elsewhere_known)->record.fuelUsedLitres,
            std::nullopt);
}

TEST(RowWritingTest, KeepsTheKeysOfANewerProgram) {
  VoyagePlan plan;
  plan.id = Uuid::named(kAccount, "plan");
  plan.legs.resize(2);
  plan.legs[0].id = Uuid::named(kAccount, "1");
  plan.legs[1].id = Uuid::named(kAccount, "2");
  SBVoyagePlanRow stored = rowFromRecord(plan, kContext);
  const auto plant = [&](const std::string& before, const std::string& added) {
    const auto at = stored.planJson.find(before);
    ASSERT_NE(at, std::string::npos);
    stored.planJson.insert(at, added);
  };
  plant(R"("id":")" + plan.legs[1].id.toString(), R"("pilot":{"n":0.10,"b":9007199254740993},)");
  plant(R"("id":")" + plan.id.toString(), R"("tides":[1e2, "x"],)");
  plan.planName = "Home";
  plan.legs.erase(plan.legs.begin());
  const SBVoyagePlanRow again = rowFromRecord(plan, kContext, &stored);
  EXPECT_THAT(again.planJson, HasSubstr(R"("pilot":{"n":0.10,"b":9007199254740993})"));
  EXPECT_THAT(again.planJson, HasSubstr(R"("tides":[1e2, "x"])"));
  EXPECT_EQ(recordFromRow<VoyagePlan>(again)->record, plan);

  MaintenanceTask task;
  SBTaskRow row = rowFromRecord(task, kContext);
  row.extraJson = R"({"hourSource":"engine2","crane":true})";
  EXPECT_EQ(rowFromRecord(task, kContext, &row).extraJson, R"({"hourSource":"engine","crane":true})");
}

TEST(RowWritingTest, SendsNothingADatabaseRefuses) {
  BunkeringRecord record;
  record.port = std::string("Ne\0w\xED\xA0\x80port\xFF", 12);
  record.totalCharge = std::numeric_limits<double>::quiet_NaN();
  const auto row = rowFromRecord(record, kContext);
  EXPECT_EQ(row.port, "New\uFFFD\uFFFD\uFFFDport\uFFFD");
  EXPECT_EQ(row.totalCharge, 0);
}

TEST(RowWritingTest, NamesTheAuthorAndTheTimeOfTheRecord) {
  CrewBoardPost post;
  EXPECT_EQ(rowFromRecord(post, kContext).userId, kUser);
  post.userID = "BBBBBBBB-0000-4000-8000-000000000001";
  post.updatedAt = Timestamp(std::chrono::seconds(5));
  const auto row = rowFromRecord(post, kContext);
  EXPECT_EQ(row.userId.toString(), "bbbbbbbb-0000-4000-8000-000000000001");
  EXPECT_EQ(row.updatedAt, post.updatedAt);
  EXPECT_EQ(rowFromRecord(WorkOrder{}, kContext).updatedAt, kContext.updatedAt);
}

}  // namespace
}  // namespace thalvorn
