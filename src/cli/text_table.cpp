#include "cli/text_table.h"

#include <fmt/format.h>

#include <algorithm>

namespace thalvorn::cli {
namespace {

/// How many places the text takes in a terminal.
std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  for (const char c : text) width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
  return width;
}

}  // namespace

TextTable& TextTable::row(std::vector<std::string> cells) {
  for (std::string& cell : cells) cell = printable(cell);
  rows_.push_back(std::move(cells));
  return *this;
}

std::string TextTable::take() {
  std::vector<std::size_t> widths;
  for (const auto& cells : rows_) {
    widths.resize(std::max(widths.size(), cells.size()));
    for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], displayWidth(cells[i]));
  }
  std::string out;
  for (const auto& cells : rows_) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string gap(widths[i] - displayWidth(cells[i]), ' ');
      const bool right = i < aligns_.size() && aligns_[i] == Align::right;
      if (i > 0) line += "  ";
      line += right ? gap + cells[i] : cells[i] + gap;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out += line + "\n";
  }
  rows_.clear();
  return out;
}

std::string printable(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    // U+0080 to U+009F are control characters too.
    const bool wideControl = c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    if (wideControl) ++i;
    clean.push_back(c < 0x20 || c == 0x7F || wideControl ? ' ' : text[i]);
  }
  return clean;
}

std::string counted(std::size_t count, std::string_view singular, std::string_view plural) {
  return fmt::format("{} {}", count, count == 1 ? singular : plural);
}

}  // namespace thalvorn::cli
