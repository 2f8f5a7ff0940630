#include "base/search_text.h"

#include <gtest/gtest.h>

namespace thalvorn {
namespace {

TEST(SearchText, FoldsCaseAndAccentsOfEuropeanAlphabets) {
  const struct {
    std::string_view text, folded;
  } cases[] = {{"Engine Oil & FILTER", "engine oil & filter"},
               {"Révision du Mât", "revision du mat"},
               {"Señal Ångström Straße ŒUVRE", "senal angstrom strasse oeuvre"},
               {"Łódź ĲSSELMEER", "lodz ijsselmeer"},
               {"e\u0301tai", "etai"},
               {"Άγκυρα ΣΚΆΦΟΣ", "αγκυρα σκαφοσ"},
               {"Якорь ЁЛКА", "якорь елка"},
               {"日本 ⚓ 50×2", "日本 ⚓ 50×2"}};
  for (const auto& [text, folded] : cases) EXPECT_EQ(foldText(text), folded);
}

TEST(SearchText, KeepsBytesThatAreNotUtf8) {
  for (const std::string_view text : {"\xC3", "\xC3(", "\xFF\xC3", "a\x80z"}) EXPECT_EQ(foldText(text), text);
}

TEST(SearchText, EveryWordMustOccurInSomeText) {
  SearchWords words("  OIL  gener ");
  EXPECT_TRUE(words.matches({"Generator service", "Change the oil"}));
  EXPECT_FALSE(words.matches({"Generator service", "Impeller"}));
  EXPECT_FALSE(words.matches({"Oil, gen", "erator"})) << "words do not run on from one text into the next";
  EXPECT_TRUE(SearchWords(" \t").matches({"anything"}));
}

}  // namespace
}  // namespace thalvorn
