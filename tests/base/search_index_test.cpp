#include "base/search_index.h"

#include <gtest/gtest.h>

namespace thalvorn {
namespace {

using Positions = std::vector<std::uint32_t>;

Positions found(const SearchIndex& index, std::string_view query) { return index.find(SearchWords(query)); }

TEST(SearchIndex, FindsRecordsInWhichEveryWordOccurs) {
  SearchIndex index;
  index.append("Porto Cervo\nBonifacio\nA. Rossi");
  index.append("Saint-Tropez\nPorquerolles\nJ. Müller");
  index.append("");
  index.append("Bonifacio\nPorto Cervo\nA. Rossi\nPORTO again, porto");
  EXPECT_EQ(found(index, "porto"), (Positions{0, 3}));
  EXPECT_EQ(found(index, "ROSSI bonif"), (Positions{0, 3}));
  EXPECT_EQ(found(index, "muller saint"), Positions{1});
  EXPECT_EQ(found(index, "rossi tropez"), Positions{});
  EXPECT_EQ(found(index, "cervobonifacio"), Positions{}) << "a word does not run on into the next text";
  EXPECT_EQ(found(index, "rossisaint"), Positions{}) << "nor into the next record";
  EXPECT_EQ(found(index, " \t"), (Positions{0, 1, 2, 3}));
  EXPECT_EQ(index.find(SearchWords("porto"), 1), Positions{0});
  EXPECT_EQ(index.find(SearchWords(""), 2), (Positions{0, 1}));
  EXPECT_EQ(found(SearchIndex(), "porto"), Positions{});
}

/// Holds the index to a plain list through changes at every place, over several chunks.
TEST(SearchIndex, FollowsTheListThroughChanges) {
  SearchIndex index;
  std::vector<std::string> list;
  std::uint64_t state = 7;
  const auto next = [&](std::size_t below) {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::size_t>(state >> 33) % below;
  };
  const auto text = [&] { return std::string(next(9), 'x') + "\nnumber " + std::to_string(next(40)) + "\nLÓG"; };
  const auto compare = [&](std::string_view query) {
    Positions expected;
    SearchWords words(query);
    for (std::uint32_t i = 0; i < list.size(); ++i)
      if (words.matches({list[i]})) expected.push_back(i);
    EXPECT_EQ(found(index, query), expected) << query;
  };
  for (int i = 0; i < 1300; ++i) index.append(list.emplace_back(text()));
  for (int i = 0; i < 900; ++i) {
    const std::size_t at = next(list.size());
    if (i % 3 == 0) {
      list[at] = text();
      index.replace(at, list[at]);
    } else {
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(at));
      index.remove(at);
    }
  }
  for (int i = 0; i < 40; ++i) index.append(list.emplace_back(text()));
  ASSERT_EQ(index.size(), list.size());
  for (const std::string_view query : {"log", "number 17", "xxxxx log", "17 xx", "nothing"}) compare(query);
  while (index.size() > 0) index.remove(next(index.size()));
  EXPECT_EQ(found(index, "log"), Positions{});
  index.append("log");
  EXPECT_EQ(found(index, "log"), Positions{0});
}

}  // namespace
}  // namespace thalvorn
