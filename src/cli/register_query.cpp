#include "cli/register_query.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/search_text.h"
#include "cli/period.h"

namespace thalvorn::cli {
namespace {

/// The stored text of the case that is meant.
std::expected<std::string, CommandResult> caseNamed(std::string_view written, const ColumnFacts& column) {
  std::vector<std::string_view> names;
  for (const EnumText& text : column.cases) {
    if (equalIgnoringCase(written, text.raw) || equalIgnoringCase(written, text.display)) return std::string(text.raw);
    names.push_back(text.display);
  }
  return std::unexpected(
      misused(fmt::format("“{}” is no value of {}; the values are {}.", written, column.key, fmt::join(names, ", "))));
}

}  // namespace

std::expected<RegisterQuery, CommandResult> commonQuery(const CommandContext& context, const Arguments& arguments) {
  const auto period = readPeriod(context, arguments);
  if (!period) return std::unexpected(period.error());
  RegisterQuery query{.search = arguments.value("--search").value_or(""),
                      .from = period->first,
                      .descending = !arguments.has("--oldest-first")};
  if (period->last) query.until = *period->last + std::chrono::seconds(1);
  return query;
}

std::expected<std::vector<Uuid>, CommandResult> namedRecords(const Arguments& arguments) {
  std::vector<Uuid> ids;
  for (const std::string& written : arguments.values("--id")) {
    const auto id = Uuid::parse(written);
    if (!id) return std::unexpected(refused(fmt::format("“{}” is not an identifier.", written)));
    ids.push_back(*id);
  }
  return ids;
}

std::expected<void, CommandResult> addFilter(RegisterQuery& query, std::string_view written,
                                             const std::vector<const ColumnFacts*>& columns) {
  const auto equals = written.find('=');
  const std::string_view key = written.substr(0, equals);
  std::vector<std::string_view> keys;
  for (const ColumnFacts* column : columns) {
    if (column->filter == ColumnFilter::none) continue;
    keys.push_back(column->key);
    if (equals == std::string_view::npos || !equalIgnoringCase(key, column->key)) continue;
    std::string value(written.substr(equals + 1));
    if (column->filter != ColumnFilter::text) {
      auto stored = caseNamed(value, *column);
      if (!stored) return std::unexpected(stored.error());
      value = *std::move(stored);
    }
    auto narrowing = std::ranges::find(query.narrowings, column->key, &RegisterQuery::Narrowing::column);
    if (narrowing == query.narrowings.end())
      narrowing = query.narrowings.insert(narrowing, {.column = std::string(column->key), .values = {}});
    if (column->filter == ColumnFilter::choices) {
      narrowing->values.push_back(std::move(value));
    } else {
      narrowing->values = {std::move(value)};
    }
    return {};
  }
  return std::unexpected(
      misused(fmt::format("“{}” is not a filter; write COLUMN=VALUE with one of {}.", written, fmt::join(keys, ", "))));
}

}  // namespace thalvorn::cli
