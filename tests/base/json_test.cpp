#include "base/json.h"

#include <gtest/gtest.h>

#include <map>

#include "base/json_codec.h"

namespace thalvorn {

enum class Colour : std::uint8_t { red, seaGreen };
template <>
struct EnumTexts<Colour> {
  static constexpr std::array table{EnumText{"red", "Red"}, EnumText{"Sea & Green"}};
};

struct Part {
  std::string name;
  double quantity = 1;
  friend bool operator==(const Part&, const Part&) = default;
};
BOOST_DESCRIBE_STRUCT(Part, (), (name, quantity))

struct Sample {
  Uuid id;
  Uuid vesselID;
  std::string title;
  Choice<Colour> colour;
  std::optional<Timestamp> dueDate;
  std::int64_t sortOrder = 7;
  double hours = 0;
  bool done = false;
  std::vector<Part> parts;
  std::vector<Bytes> photos;
  std::map<Choice<Colour>, std::string> byColour;
  std::string priority = "medium";
  friend bool operator==(const Sample&, const Sample&) = default;
};
BOOST_DESCRIBE_STRUCT(Sample, (),
                      (id, vesselID, title, colour, dueDate, sortOrder, hours, done, parts, photos, byColour, priority))
template <>
struct JsonForm<Sample> {
  static constexpr std::array<std::string_view, 1> extra{"priority"};
};

struct Snake {
  Uuid id;
  double fuelTankGallons = 0;
  double engineBurnGPH = 0;
  double distanceNM = 0;
};
BOOST_DESCRIBE_STRUCT(Snake, (), (id, fuelTankGallons, engineBurnGPH, distanceNM))
template <>
struct JsonForm<Snake> {
  static constexpr bool snakeCase = true;
};

THALVORN_JSON_INSTANTIATE(Sample);
THALVORN_JSON_INSTANTIATE(Snake);

namespace {

constexpr std::string_view kId = "0f0e0d0c-0b0a-4908-8706-050403020100";

Sample sample() {
  Sample s;
  s.id = s.vesselID = *Uuid::parse(kId);
  s.title = "Dock \"Lines\" \\ ⚓ \u0001\n";
  s.colour = Colour::seaGreen;
  s.dueDate = parseTimestamp("2026-01-31T08:00:00Z");
  s.hours = 4812.4;
  s.parts = {{"Impeller", 1.5}};
  s.photos = {Bytes{{0, 255, 16}}, Bytes{}};
  s.byColour[Colour::red] = "x";
  s.priority = "high";
  return s;
}

TEST(Json, WritesKeysInFieldOrderAndLeavesOutWhatTheFormLeavesOut) {
  const std::string id(kId);
  EXPECT_EQ(toJson(sample()),
            R"({"id":")" + id + R"(","vesselID":")" + id +
                R"(","title":"Dock \"Lines\" \\ ⚓ \u0001\n","colour":"Sea & Green","dueDate":"2026-01-31T08:00:00Z",)"
                R"("sortOrder":7,"hours":4812.4,"done":false,"parts":[{"name":"Impeller","quantity":1.5}],)"
                R"("photos":["AP8Q",""],"byColour":{"red":"x"}})");
  EXPECT_EQ(toJson(sample(), JsonFields::extra), R"({"id":")" + id + R"(","priority":"high"})");
  Sample undated = sample();
  undated.dueDate.reset();
  EXPECT_EQ(toJson(undated).find("dueDate"), std::string::npos);
  EXPECT_EQ(toJson(Snake{.id = *Uuid::parse(kId), .fuelTankGallons = 1, .engineBurnGPH = 2, .distanceNM = 3}),
            R"({"id":")" + id + R"(","fuel_tank_gallons":1,"engine_burn_gph":2,"distance_nm":3})");
}

TEST(Json, ReadsBackWhatItWroteAndKeepsExtrasOutOfTheOwnForm) {
  EXPECT_EQ(recordFromJson<Sample>(toJson(sample(), JsonFields::full)), sample());
  const std::string full = "[" + toJson(sample(), JsonFields::full) + "]";
  EXPECT_EQ(listFromJson<Sample>(full)->records.at(0).priority, "medium");
  EXPECT_EQ(listFromJson<Sample>(full, JsonFields::full)->records.at(0).priority, "high");
}

TEST(Json, ReadsForeignTexts) {
  const std::string id(kId);
  // Other key order, unknown keys with nested values, upper-case identifier, whole number written as a real, nulls.
  const auto read = recordFromJson<Sample>(
      R"({"later":{"a":[1,{"b":2}]},"hours":3,"vesselID":"0F0E0D0C-0B0A-4908-8706-050403020100","sortOrder":12.0,)"
      R"("title":null,"colour":"Ultramarine","dueDate":"2026-01-31T09:00:00.750+01:00","id":")" +
      id + R"("})");
  ASSERT_TRUE(read) << read.error().message();
  EXPECT_EQ(read->sortOrder, 12);
  EXPECT_EQ(read->dueDate, parseTimestamp("2026-01-31T08:00:00Z"));
  EXPECT_FALSE(read->colour.isKnown());
  EXPECT_EQ(read->colour.display(), "Ultramarine");
  EXPECT_NE(toJson(*read).find(R"("colour":"Ultramarine")"), std::string::npos);
}

TEST(Json, SaysWhatIsWrong) {
  const std::string start = R"({"id":")" + std::string(kId) + R"(","vesselID":")" + std::string(kId) + '"';
  const auto message = [&](const std::string& rest) {
    const auto read = recordFromJson<Sample>(start + rest);
    return read ? std::string("read") : read.error().message();
  };
  EXPECT_EQ(message(R"(,"title":5})"), "title: is not text");
  EXPECT_EQ(message(R"(,"sortOrder":2.5})"), "sortOrder: is not a whole number");
  EXPECT_EQ(message(R"(,"dueDate":"soon"})"), "dueDate: is not a date");
  EXPECT_EQ(message(R"(,"parts":[{"name":"a"},{"quantity":"b"}]})"), "parts.quantity: is not a number");
  EXPECT_EQ(message(R"(,"photos":["*"]})"), "photos: is not base64");
  EXPECT_EQ(message(R"(,"dueDate":nul})"), "dueDate: is not well-formed");
  EXPECT_EQ(message(R"(,"later":"a":"b"})"), "is not well-formed");
  EXPECT_NE(message("} {"), "read");
  EXPECT_NE(message("} 7"), "read");
  EXPECT_EQ(message(",\"title\":\"cut"), "is not JSON");
  EXPECT_EQ(recordFromJson<Sample>(R"({"id":")" + std::string(kId) + "\"}").error().message(), "vesselID: is missing");
}

TEST(Json, SetsAsideOnlyTheRecordsThatCannotBeRead) {
  const std::string good = toJson(sample());
  const std::string bad = R"({"id":"not an id","title":"keep me"})";
  const auto list = listFromJson<Sample>("[" + good + ", " + bad + " ,17," + good + "]");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->records.size(), 2U);
  ASSERT_EQ(list->setAside.size(), 2U);
  EXPECT_EQ(list->setAside[0].bytes, bad);
  EXPECT_EQ(list->setAside[1].bytes, "17");
  EXPECT_FALSE(listFromJson<Sample>("[" + good));
  EXPECT_FALSE(listFromJson<Sample>("{}"));
  EXPECT_FALSE(listFromJson<Sample>(""));
  EXPECT_TRUE(listFromJson<Sample>("[]")->records.empty());
}

TEST(Json, SplitsAListIntoItsBytes) {
  const auto elements = splitJsonList(R"([ {"x":{"id":"inner"},"id":"outer"} , {"a":1},"t", [1, [2]] ] )");
  ASSERT_TRUE(elements);
  ASSERT_EQ(elements->size(), 4U);
  EXPECT_EQ((*elements)[0].bytes, R"({"x":{"id":"inner"},"id":"outer"})");
  EXPECT_EQ((*elements)[0].id, "outer");
  EXPECT_EQ((*elements)[1].bytes, R"({"a":1})");
  EXPECT_EQ((*elements)[2].bytes, R"("t")");
  EXPECT_EQ((*elements)[3].bytes, "[1, [2]]");
  // Broken between the elements: what stands there would be lost.
  EXPECT_FALSE(splitJsonList(R"([{"a":1},"t":[2]])"));
  EXPECT_FALSE(splitJsonList(R"([{"a":1} {"a":2}])"));
}

}  // namespace
}  // namespace thalvorn
