// The preview of a CSV file of 100,000 lines, beside a naive split at commas and QString::split.

#include <QList>
#include <QString>

#include "base/csv.h"
#include "core/task_csv_import.h"
#include "figures.h"
#include "tasks.h"

using namespace thalvorn;

int main() {
  const auto tasks = bench::makeTasks(100'000, Uuid::named(Uuid{}, "vessel"), parseTimestamp("2026-11-21").value());
  std::string text = "title,category,triggerType,recurringDays,dueAtHours,recurringHours,hourSource,notes\r\n";
  std::size_t line = 0;
  for (const MaintenanceTask& task : tasks) {
    // One line in ten is quoted, as in files that people make.
    const std::string quote = ++line % 10 == 0 ? "\"" : "";
    text += quote + task.title + quote + ',' + std::string(task.category.raw()) + ",both," +
            std::to_string(task.recurringDays.value_or(0)) + ',' +
            std::to_string(static_cast<int>(task.dueAtEngineHours.value_or(0))) + ",250,Engine 1,Check level\r\n";
  }
  const auto naive = [&] {
    std::size_t cells = 0;
    std::vector<std::string_view> row;
    std::string_view rest = text;
    while (!rest.empty()) {
      const auto end = rest.find('\n');
      std::string_view current = rest.substr(0, end);
      row.clear();
      for (std::size_t comma; (comma = current.find(',')) != std::string_view::npos; current.remove_prefix(comma + 1))
        row.push_back(current.substr(0, comma));
      row.push_back(current);
      cells += row.size();
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    bench::keep(cells);
  };
  const auto split = [&] {
    std::size_t cells = 0;
    readCsv(openCsv(text), [&](const CsvRow& row) { cells += row.cells.size(); });
    bench::keep(cells);
  };
  const auto splitting = bench::inTurn(9, split, naive);
  splitting.atMost("split a CSV file of 100,000 lines", "a naive comma split", 3);

  const QString unicode = QString::fromStdString(text);
  const auto parsing = bench::inTurn(
      9, [&] { bench::keep(previewTaskCsv(text, Calendar::utc()).rows.size()); },
      [&] {
        qsizetype cells = 0;
        for (const QString& row : unicode.split(QLatin1Char('\n'))) cells += row.split(QLatin1Char(',')).size();
        bench::keep(cells);
      });
  parsing.atMost("parse all rows for the preview", "QString::split splitting them", 1);
}
