#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/search_text.h"

namespace thalvorn {

/// The texts of a list of records, folded once and kept in the order of the list, so that a long list is searched again
/// at every key stroke. Records stand in chunks of some hundred, each one run of bytes; a change touches one chunk.
class SearchIndex {
 public:
  void clear();

  /// Adds a record at the end. Its texts are joined by line feeds; no word matches across them.
  void append(std::string_view texts);
  /// `i` is below `size()`.
  void replace(std::size_t i, std::string_view texts);
  /// The records behind `i` move up by one.
  void remove(std::size_t i);
  std::size_t size() const { return size_; }

  /// Positions of the records in which every word occurs, ascending; all of them when there is no word. Stops when
  /// `most` are found.
  std::vector<std::uint32_t> find(const SearchWords& words, std::size_t most = SIZE_MAX) const;

 private:
  struct Chunk {
    std::string text;                 ///< folded, each record closed by a line feed
    std::vector<std::uint32_t> ends;  ///< of the records, behind their line feed

    std::size_t begin(std::size_t record) const { return record == 0 ? 0 : ends[record - 1]; }
    /// Puts `record` between two ends, or takes it out, and moves the ends behind it.
    void write(std::size_t record, std::string_view folded);
  };
  struct Place {
    std::size_t chunk = 0;
    std::size_t record = 0;
  };

  Place placeOf(std::size_t i) const;

  std::vector<Chunk> chunks_;
  std::size_t size_ = 0;
  std::string folded_;
};

}  // namespace thalvorn
