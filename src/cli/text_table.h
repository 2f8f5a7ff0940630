#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace thalvorn::cli {

/// Text in aligned columns for people to read in a terminal.
class TextTable {
 public:
  enum class Align { left, right };

  TextTable() = default;
  explicit TextTable(std::vector<Align> columns) : aligns_(std::move(columns)) {}

  /// Cells are made printable: control characters, which could steer the terminal, become blanks.
  TextTable& row(std::vector<std::string> cells);
  bool empty() const { return rows_.empty(); }

  /// One line per row, columns two blanks apart, no blanks at the end.
  std::string take();

 private:
  std::vector<Align> aligns_;
  std::vector<std::vector<std::string>> rows_;
};

/// `text` without control characters.
std::string printable(std::string_view text);

/// "1 task", "3 tasks".
std::string counted(std::size_t count, std::string_view singular, std::string_view plural);

}  // namespace thalvorn::cli
