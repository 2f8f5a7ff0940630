#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "devserver/database.h"
#include "devserver/rest_error.h"

namespace thalvorn::devserver {

/// A column, or a place inside a JSON column: `profile->engines->0->>hours`.
struct FieldPath {
  struct Step {
    std::string key;
    bool asText = false;
    friend bool operator==(const Step&, const Step&) = default;
  };
  std::string column;
  std::vector<Step> steps;
  friend bool operator==(const FieldPath&, const FieldPath&) = default;
};

/// `column=not.in.(a,b)`, or a group of conditions: `or=(a.eq.1,and(b.gt.2,c.is.null))`.
struct Condition {
  enum class Kind { comparison, all, any };
  Kind kind = Kind::comparison;
  bool negated = false;
  std::vector<Condition> parts;  ///< of a group

  FieldPath field;
  std::string operation;            ///< as in the URL: eq, gt, in, is, like, …
  std::string quantifier;           ///< any, all, or empty
  std::string value;                ///< for operators of one value
  std::vector<std::string> values;  ///< for `in` and quantified operators
};

struct OrderTerm {
  FieldPath field;
  bool descending = false;
  std::optional<bool> nullsFirst;
};

struct SelectItem {
  FieldPath field;  ///< the column "*" is all columns
  std::string alias;
  std::string cast;
};

/// The query of a request to a table or function.
struct RestQuery {
  std::vector<SelectItem> select;
  std::vector<Condition> where;
  std::vector<OrderTerm> order;
  std::optional<long long> limit;
  long long offset = 0;
  std::optional<std::vector<std::string>> columns;
  std::optional<std::vector<std::string>> onConflict;
  std::vector<std::pair<std::string, std::string>> arguments;  ///< of a function called by GET
};

/// Reads the query of a URL. With `isCall`, parameters whose value names no operator are arguments of the function.
/// Errors have the code PGRST100, a negative limit PGRST103.
std::expected<RestQuery, RestError> parseRestQuery(std::string_view query, bool isCall);

/// The rows asked for, counted from 0.
struct RowRange {
  long long offset = 0;
  std::optional<long long> limit;
};

/// The range of the query cut with the header `Range: 0-99`, which other forms than these are not. PGRST103 when the
/// header's end lies before its begin.
std::expected<RowRange, RestError> rowRange(const RestQuery& query, std::optional<std::string_view> rangeHeader);

/// An SQL text that grows together with its parameters.
class Statement {
 public:
  Statement& operator<<(std::string_view sql);
  /// Appends the placeholder of a new parameter.
  Statement& bind(std::string value);
  const std::string& text() const { return text_; }
  const Parameters& parameters() const { return parameters_; }

 private:
  std::string text_;
  Parameters parameters_;
};

/// Each appends a clause with its keyword to `sql`, or nothing when there is nothing to say. `relation` is the quoted
/// name by which columns are qualified.
void appendSelect(Statement& sql, const std::string& relation, const std::vector<SelectItem>& items);
void appendWhere(Statement& sql, const std::string& relation, const std::vector<Condition>& conditions);
void appendOrder(Statement& sql, const std::string& relation, const std::vector<OrderTerm>& terms);

}  // namespace thalvorn::devserver
