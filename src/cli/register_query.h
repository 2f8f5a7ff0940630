#pragma once

#include <expected>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/store_use.h"
#include "core/register.h"

/// What of a register a command is asked for: `--from`, `--to`, `--search`, `--filter`, `--id` and `--oldest-first`.
namespace thalvorn::cli {

/// Everything of the query but its filters.
std::expected<RegisterQuery, CommandResult> commonQuery(const CommandContext& context, const Arguments& arguments);

/// The identities that `--id` names.
std::expected<std::vector<Uuid>, CommandResult> namedRecords(const Arguments& arguments);

/// Adds "COLUMN=VALUE" to the query; a value of an enumeration goes by its stored or shown text. `columns` are those of
/// the register.
std::expected<void, CommandResult> addFilter(RegisterQuery& query, std::string_view written,
                                             const std::vector<const ColumnFacts*>& columns);

template <HasRegister T>
std::expected<RegisterQuery, CommandResult> registerQuery(const CommandContext& context, const Arguments& arguments) {
  auto query = commonQuery(context, arguments);
  if (!query) return query;
  std::vector<const ColumnFacts*> columns;
  for (const auto& column : Register<T>::columns) columns.push_back(&column);
  for (const std::string& filter : arguments.values("--filter"))
    if (const auto added = addFilter(*query, filter, columns); !added) return std::unexpected(added.error());
  return query;
}

/// The records that are asked for, in the order asked for.
template <HasRegister T>
std::expected<std::vector<T>, CommandResult> selectedRecords(const AppViewModel& store, const RegisterQuery& query,
                                                             const Arguments& arguments) {
  const auto named = namedRecords(arguments);
  if (!named) return std::unexpected(named.error());
  const auto all = store.collection<T>().records();
  for (const Uuid& id : *named)
    if (store.collection<T>().find(id) == nullptr)
      return std::unexpected(
          refused("There is no " + std::string(Register<T>::facts.singular) + " " + id.toString() + "."));
  std::vector<T> records;
  for (const std::uint32_t position : selectRecords<T>(all, query))
    if (named->empty() || std::ranges::count(*named, all[position].id) > 0) records.push_back(all[position]);
  return records;
}

}  // namespace thalvorn::cli
