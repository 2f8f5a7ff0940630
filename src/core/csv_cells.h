#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "base/csv.h"
#include "base/enums.h"
#include "base/number_format.h"
#include "base/search_text.h"

/// Reading the cells of CSV files that we or a spreadsheet wrote.
namespace thalvorn {

/// A row or a cell that was left out, and why.
struct CsvProblem {
  std::size_t line = 0;  ///< of the file, 1 for the first
  std::string message;
};

/// How a file with this separator writes numbers: one with semicolons has decimal commas.
NumberLocale numbersOf(CsvSeparator separator);

/// Reads a number cell exactly as CsvWriter wrote it, else as a person writes numbers. The error is a sentence.
std::expected<double, std::string> numberCell(std::string_view cell, const NumberLocale& numbers);

/// The case with this stored or shown text, in whatever case of letters; an unknown text is kept.
template <class E>
Choice<E> choiceNamed(std::string_view cell) {
  if (const auto known = caseFromRaw<E>(cell)) return *known;
  const auto& table = EnumTexts<E>::table;
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (equalIgnoringCase(cell, table[i].raw) || equalIgnoringCase(cell, table[i].display)) return static_cast<E>(i);
  }
  return Choice<E>::fromRaw(cell);
}

}  // namespace thalvorn
