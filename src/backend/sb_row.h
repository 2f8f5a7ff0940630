#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/describe.h"
#include "base/json.h"

namespace thalvorn {

/// A row of a table of the backend. The fields of a row are its columns: snake case on the wire, in the table's order,
/// null where a value is absent, so that all rows of one request have the same keys. Reading passes over columns that
/// only a newer server has and leaves those of an older one at their initial value.
struct SBRow {
  friend bool operator==(const SBRow&, const SBRow&) = default;
};

/// A row of a register, with the columns that only servers of our own schema have.
struct RegisterRow : SBRow {
  std::optional<std::string> extraJson;       ///< fields of the record that have no column, as a JSON object
  std::optional<std::int64_t> serverVersion;  ///< given by the server at every write; never sent
  std::optional<std::int64_t> seenVersion;    ///< the version that a writer has seen; an older one writes nothing
  friend bool operator==(const RegisterRow&, const RegisterRow&) = default;
};
BOOST_DESCRIBE_STRUCT(RegisterRow, (), (extraJson, serverVersion, seenVersion))

template <class T>
concept TableRow = std::derived_from<T, SBRow>;
template <class T>
concept TableRegisterRow = TableRow<T> && std::derived_from<T, RegisterRow>;

template <TableRow T>
struct JsonForm<T> {
  static constexpr bool snakeCase = true;
  static constexpr bool nulls = true;
};

template <TableRegisterRow T>
struct JsonForm<T> {
  static constexpr bool snakeCase = true;
  static constexpr bool nulls = true;
  static constexpr std::array<std::string_view, 3> extra{"extraJson", "serverVersion", "seenVersion"};
};

}  // namespace thalvorn
