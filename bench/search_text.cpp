// Free-text search over 100,000 log entries as one types, beside memmem over the same text.

#include <cstring>

#include "base/search_index.h"
#include "figures.h"

using namespace thalvorn;

namespace {

std::string logTexts(std::size_t i) {
  constexpr const char* ports[] = {"Porto Cervo", "Bonifacio",   "Saint-Tropez", "Palma de Mallorca",
                                   "Port Mahón",  "Portofino",   "Monaco",       "Antibes",
                                   "Calvi",       "La Spezia",   "Capri",        "Amalfi",
                                   "Lipari",      "Port Andratx"};
  constexpr const char* skippers[] = {"Giulia Marchetti", "Tom Ashdown", "Élise Fournier", "Rune Halvorsen"};
  constexpr const char* remarks[] = {
      "Light airs in the morning, sea breeze from noon. Anchored off the beach for lunch, guests swimming.",
      "Head sea past the cape; slowed to nine knots for two hours. Watermaker run on passage.",
      "Stern-to at the town quay, shore power connected. Customs cleared, papers back by 1700.",
      "Motored all the way. Stabilisers off after breakfast. Dolphins for half an hour."};
  return std::string(ports[i % 14]) + '\n' + ports[(i / 3 + 5) % 14] + '\n' + skippers[i / 90 % 4] + '\n' +
         remarks[i * 7 / 3 % 4] + " Voyage " + std::to_string(i) + '.';
}

/// How often `word` occurs.
std::size_t occurrences(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while ((at = static_cast<const char*>(memmem(at, static_cast<std::size_t>(end - at), word.data(), word.size())))) {
    ++count;
    at += word.size();
  }
  return count;
}

}  // namespace

int main() {
  constexpr std::size_t kEntries = 100'000;
  constexpr std::size_t kPage = 50;
  std::string text;
  SearchIndex index;
  bench::Samples building;
  building.time([&] {
    for (std::size_t i = 0; i < kEntries; ++i) index.append(logTexts(i));
  });
  for (std::size_t i = 0; i < kEntries; ++i) {
    appendFolded(text, logTexts(i));
    text += '\n';
  }

  double slowest = 0;
  for (const std::string_view typed : {"portofino", "voyage 4711", "schooner"}) {
    for (std::size_t letters = 1; letters <= typed.size(); ++letters) {
      bench::Samples pages;
      for (int pass = 0; pass < 5; ++pass) {
        pages.time([&] {
          const auto found = index.find(SearchWords(typed.substr(0, letters)));
          bench::keep(
              std::vector(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(std::min(kPage, found.size()))));
        });
      }
      slowest = std::max(slowest, pages.median());
    }
  }

  const auto typeWord = [&](std::string_view word, const auto& search) {
    for (std::size_t letters = 1; letters <= word.size(); ++letters) search(word.substr(0, letters));
  };
  const auto compare = [&](const std::string& what, std::string_view word) {
    bench::inTurn(
        9, [&] { typeWord(word, [&](auto typed) { bench::keep(index.find(SearchWords(typed)).size()); }); },
        [&] { typeWord(word, [&](auto typed) { bench::keep(occurrences(text, typed)); }); })
        .atMost(what, "memmem counting the same", 3);
  };
  compare("search 100,000 log entries while typing “portofino”", "portofino");
  compare("the same with a word that is nowhere, “schooner”", "schooner");
  bench::inTurn(
      9, [&] { bench::keep(index.find(SearchWords("zzyzx")).size()); },
      [&] { bench::keep(occurrences(text, "zzyzx")); })
      .atMost("one pass for a word that is nowhere", "memmem", 3);
  bench::printFigure("first page of 50 at the slowest key stroke", bench::milliseconds(slowest), "16 ms",
                     slowest / 16'000, 1);
  bench::printReport("fold the texts of 100,000 entries for the search", bench::milliseconds(building.median()), "");
}
