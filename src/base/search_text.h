#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

/// Finding and ordering texts as people do: "Señal" is found by "senal", and case never matters.
namespace thalvorn {

/// The text in lower case with accents taken off, for comparing; never longer than `text`. Covers Latin with its
/// European extensions, Greek and Cyrillic; other characters stay as they are.
std::string foldText(std::string_view text);

/// Appends `foldText(text)` to `out`.
void appendFolded(std::string& out, std::string_view text);

/// Whether two texts are the same but for the case of ASCII letters, as names in files and commands are compared.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// The words of a search field. A record matches when every word occurs somewhere in its texts.
class SearchWords {
 public:
  explicit SearchWords(std::string_view query);

  /// True when nothing was typed; then everything matches.
  bool empty() const { return words_.empty(); }
  bool matches(std::initializer_list<std::string_view> texts);
  /// Folded; none is empty or has a blank in it.
  const std::vector<std::string>& words() const { return words_; }

 private:
  std::vector<std::string> words_;
  std::string folded_;  ///< of the record looked at, kept to spare allocations
};

}  // namespace thalvorn
