#include "base/search_index.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace thalvorn {
namespace {

constexpr std::size_t kRecordsPerChunk = 512;
/// Ends of records are 32 bits wide.
constexpr std::size_t kBytesPerChunk = std::size_t{1} << 24;

/// How often each byte occurs at the beginning of a text.
class ByteCounts {
 public:
  explicit ByteCounts(std::string_view text) {
    for (const char c : text.substr(0, 1 << 15)) ++counts_[static_cast<unsigned char>(c)];
  }
  std::uint32_t of(char c) const { return counts_[static_cast<unsigned char>(c)]; }

 private:
  std::array<std::uint32_t, 256> counts_{};
};

/// A word that is looked for by its rarest byte, which the C library finds many bytes at a time.
class Needle {
 public:
  Needle(std::string_view word, const ByteCounts& counts) : word_(word) {
    const auto rarest = std::ranges::min_element(word, {}, [&](char c) { return counts.of(c); });
    rare_ = static_cast<std::size_t>(rarest - word.begin());
    frequency_ = counts.of(*rarest);
  }

  std::uint32_t frequency() const { return frequency_; }

  /// Where the word occurs first; null when nowhere.
  const char* in(const char* begin, const char* end) const {
    if (static_cast<std::size_t>(end - begin) < word_.size()) return nullptr;
    const char* const last = end - (word_.size() - rare_);  // where its rare byte may stand at the latest
    for (const char* at = begin + rare_; at <= last; ++at) {
      at = static_cast<const char*>(std::memchr(at, word_[rare_], static_cast<std::size_t>(last - at) + 1));
      if (at == nullptr) return nullptr;
      if (std::memcmp(at - rare_, word_.data(), word_.size()) == 0) return at - rare_;
    }
    return nullptr;
  }

 private:
  std::string_view word_;
  std::size_t rare_ = 0;
  std::uint32_t frequency_ = 0;
};

}  // namespace

void SearchIndex::clear() {
  chunks_.clear();
  size_ = 0;
}

void SearchIndex::Chunk::write(std::size_t record, std::string_view folded) {
  const std::size_t from = begin(record);
  const std::size_t before = ends[record] - from;
  text.replace(from, before, folded);
  for (std::size_t i = record; i < ends.size(); ++i)
    ends[i] = static_cast<std::uint32_t>(ends[i] - before + folded.size());
}

void SearchIndex::append(std::string_view texts) {
  if (chunks_.empty() || chunks_.back().ends.size() >= kRecordsPerChunk || chunks_.back().text.size() > kBytesPerChunk)
    chunks_.emplace_back().ends.reserve(kRecordsPerChunk);
  Chunk& last = chunks_.back();
  appendFolded(last.text, texts);
  last.text += '\n';
  last.ends.push_back(static_cast<std::uint32_t>(last.text.size()));
  ++size_;
}

SearchIndex::Place SearchIndex::placeOf(std::size_t i) const {
  Place place{.record = i};
  while (place.record >= chunks_[place.chunk].ends.size()) place.record -= chunks_[place.chunk++].ends.size();
  return place;
}

void SearchIndex::replace(std::size_t i, std::string_view texts) {
  const Place place = placeOf(i);
  folded_.clear();
  appendFolded(folded_, texts);
  folded_ += '\n';
  chunks_[place.chunk].write(place.record, folded_);
}

void SearchIndex::remove(std::size_t i) {
  const Place place = placeOf(i);
  Chunk& chunk = chunks_[place.chunk];
  chunk.write(place.record, {});
  chunk.ends.erase(chunk.ends.begin() + static_cast<std::ptrdiff_t>(place.record));
  if (chunk.ends.empty()) chunks_.erase(chunks_.begin() + static_cast<std::ptrdiff_t>(place.chunk));
  --size_;
}

std::vector<std::uint32_t> SearchIndex::find(const SearchWords& words, std::size_t most) const {
  std::vector<std::uint32_t> found;
  if (words.empty()) {
    found.resize(std::min(size_, most));
    std::iota(found.begin(), found.end(), 0U);
    return found;
  }
  const ByteCounts counts(chunks_.empty() ? std::string_view() : chunks_.front().text);
  std::vector<Needle> others;
  for (const std::string& word : words.words()) others.emplace_back(word, counts);
  // The rarest word leads; the others are only looked for where it occurs.
  const auto rarest = std::ranges::min_element(others, {}, &Needle::frequency);
  const Needle leading = *rarest;
  others.erase(rarest);

  std::uint32_t first = 0;  // position of the chunk's first record
  for (const Chunk& chunk : chunks_) {
    const char* const begin = chunk.text.data();
    const char* const end = begin + chunk.text.size();
    std::size_t record = 0;
    for (const char* at = begin; (at = leading.in(at, end)) != nullptr;) {
      const auto offset = static_cast<std::uint32_t>(at - begin);
      while (chunk.ends[record] <= offset) ++record;
      const char* const from = begin + chunk.begin(record);
      at = begin + chunk.ends[record];
      if (std::ranges::all_of(others, [&](const Needle& other) { return other.in(from, at) != nullptr; })) {
        found.push_back(first + static_cast<std::uint32_t>(record));
        if (found.size() >= most) return found;
      }
    }
    first += static_cast<std::uint32_t>(chunk.ends.size());
  }
  return found;
}

}  // namespace thalvorn
