#include "devserver/rest_query.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace thalvorn::devserver {
namespace {

struct Operator {
  std::string_view name;
  std::string_view sql;
  bool quantifiable;
};

constexpr std::array kOperators{
    Operator{"eq", "=", true},      Operator{"neq", "<>", false},
    Operator{"gt", ">", true},      Operator{"gte", ">=", true},
    Operator{"lt", "<", true},      Operator{"lte", "<=", true},
    Operator{"like", "LIKE", true}, Operator{"ilike", "ILIKE", true},
    Operator{"match", "~", true},   Operator{"imatch", "~*", true},
    Operator{"cs", "@>", false},    Operator{"cd", "<@", false},
    Operator{"ov", "&&", false},    Operator{"in", "= ANY", false},
    Operator{"is", "IS", false},    Operator{"isdistinct", "IS DISTINCT FROM", false},
};

const Operator* findOperator(std::string_view name) {
  const auto found = std::ranges::find(kOperators, name, &Operator::name);
  return found == kOperators.end() ? nullptr : &*found;
}

/// Reads a text from left to right; a fault is thrown as its place and kept within this file.
class Reader {
 public:
  struct Fault {
    std::size_t column;
    std::string details;
  };

  explicit Reader(std::string_view text) : text_(text) {}

  bool atEnd() const { return at_ == text_.size(); }
  char peek() const { return atEnd() ? '\0' : text_[at_]; }
  bool take(std::string_view expected) {
    if (!text_.substr(at_).starts_with(expected)) return false;
    at_ += expected.size();
    return true;
  }
  void expect(std::string_view expected) {
    if (!take(expected)) fail(fmt::format("expecting \"{}\"", expected));
  }
  std::string_view takeRest() { return text_.substr(std::exchange(at_, text_.size())); }

  template <class Accept>
  std::string_view takeWhile(Accept accept) {
    const auto begin = at_;
    while (!atEnd() && accept(text_[at_])) ++at_;
    return text_.substr(begin, at_ - begin);
  }

  /// Text in double quotes, in which a backslash takes the next character as it is.
  std::string quoted() {
    expect("\"");
    std::string out;
    while (!atEnd() && peek() != '"') {
      if (peek() == '\\' && at_ + 1 < text_.size()) ++at_;
      out += text_[at_++];
    }
    expect("\"");
    return out;
  }

  [[noreturn]] void fail(const std::string& expecting) const {
    const auto found = atEnd() ? std::string("end of input") : fmt::format("\"{}\"", text_[at_]);
    throw Fault{.column = at_ + 1, .details = fmt::format("unexpected {} {}", found, expecting)};
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == ' ' ||
         c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

std::string readName(Reader& in) {
  if (in.peek() == '"') return in.quoted();
  std::string name(in.takeWhile(isNameCharacter));
  while (in.peek() == '-') {  // a name may hold '-', but "->" begins a path
    Reader ahead = in;
    ahead.take("-");
    if (ahead.peek() == '>') break;
    in = ahead;
    name += '-';
    name += in.takeWhile(isNameCharacter);
  }
  name = std::string(trimmed(name));
  if (name.empty()) in.fail("expecting field name (* or [a..z0..9_$])");
  return name;
}

FieldPath readField(Reader& in) {
  FieldPath field{.column = readName(in), .steps = {}};
  for (;;) {
    const bool asText = in.take("->>");
    if (!asText && !in.take("->")) return field;
    field.steps.push_back({.key = readName(in), .asText = asText});
  }
}

std::string readListItem(Reader& in, std::string_view close) {
  if (in.peek() == '"') return in.quoted();
  return std::string(in.takeWhile([&](char c) { return c != ',' && c != close.front(); }));
}

std::vector<std::string> readList(Reader& in, std::string_view open, std::string_view close) {
  std::vector<std::string> items;
  in.expect(open);
  if (in.take(close)) return items;
  do {
    items.push_back(readListItem(in, close));
  } while (in.take(","));
  in.expect(close);
  return items;
}

/// A value inside a group ends at ',' or ')'; an array in braces is whole.
std::string readGroupedValue(Reader& in) {
  if (in.peek() == '{') {
    const auto inner = in.takeWhile([](char c) { return c != '}'; });
    in.expect("}");
    return std::string(inner) + "}";
  }
  return readListItem(in, ")");
}

constexpr std::array<std::string_view, 5> kIsValues{"null", "not_null", "true", "false", "unknown"};

void readComparison(Reader& in, Condition& out, bool grouped) {
  out.negated = in.take("not.");
  out.operation = in.takeWhile([](char c) { return c >= 'a' && c <= 'z'; });
  const auto* operation = findOperator(out.operation);
  if (!operation) in.fail("expecting operator (eq, gt, ...)");
  if (operation->quantifiable && in.take("(")) {
    out.quantifier = in.takeWhile([](char c) { return c >= 'a' && c <= 'z'; });
    if (out.quantifier != "any" && out.quantifier != "all") in.fail("expecting any or all");
    in.expect(")");
  }
  in.expect(".");
  if (out.operation == "in") {
    out.values = readList(in, "(", ")");
  } else if (!out.quantifier.empty()) {
    out.values = readList(in, "{", "}");
  } else {
    out.value = grouped ? readGroupedValue(in) : std::string(in.takeRest());
  }
  if (out.operation == "is") {
    std::ranges::transform(out.value, out.value.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    if (std::ranges::find(kIsValues, out.value) == kIsValues.end()) {
      in.fail("expecting null or trilean value (unknown, true, false)");
    }
  }
}

Condition readGroup(Reader& in, bool any);

Condition readGroupPart(Reader& in) {
  Reader ahead = in;
  const bool negated = ahead.take("not.");
  for (const bool any : {true, false}) {
    if (!ahead.take(any ? "or(" : "and(")) continue;
    in.expect(negated ? (any ? "not.or" : "not.and") : (any ? "or" : "and"));
    auto group = readGroup(in, any);
    group.negated = negated;
    return group;
  }
  Condition condition;
  condition.field = readField(in);
  in.expect(".");
  readComparison(in, condition, true);
  return condition;
}

Condition readGroup(Reader& in, bool any) {
  Condition group;
  group.kind = any ? Condition::Kind::any : Condition::Kind::all;
  in.expect("(");
  do {
    group.parts.push_back(readGroupPart(in));
  } while (in.take(","));
  in.expect(")");
  return group;
}

std::vector<SelectItem> readSelect(Reader& in) {
  std::vector<SelectItem> items;
  while (!in.atEnd()) {
    SelectItem item;
    if (in.take("*")) {
      item.field.column = "*";
    } else {
      item.field = readField(in);
      if (in.peek() == ':') {
        Reader ahead = in;
        ahead.take(":");
        if (ahead.peek() != ':') {
          if (!item.field.steps.empty()) in.fail("expecting a cast");
          in = ahead;
          item.alias = std::exchange(item.field, readField(in)).column;
        }
      }
      if (in.take("::")) {
        item.cast = in.takeWhile([](char c) { return isNameCharacter(c) && static_cast<unsigned char>(c) < 0x80; });
        if (item.cast.empty()) in.fail("expecting a type name");
      }
    }
    items.push_back(std::move(item));
    if (in.atEnd()) break;
    in.expect(",");
  }
  return items;
}

std::vector<OrderTerm> readOrder(Reader& in) {
  std::vector<OrderTerm> terms;
  do {
    OrderTerm term{.field = readField(in), .descending = false, .nullsFirst = {}};
    bool directed = false;
    while (in.take(".")) {
      if (term.nullsFirst) in.fail("expecting end of input");
      if (in.take("nullsfirst")) {
        term.nullsFirst = true;
      } else if (in.take("nullslast")) {
        term.nullsFirst = false;
      } else if (!directed && in.take("asc")) {
        directed = true;
      } else if (!directed && in.take("desc")) {
        directed = term.descending = true;
      } else {
        in.fail("expecting asc, desc, nullsfirst or nullslast");
      }
    }
    terms.push_back(std::move(term));
  } while (in.take(","));
  return terms;
}

std::vector<std::string> readNames(Reader& in) {
  std::vector<std::string> names;
  do {
    names.push_back(readName(in));
  } while (in.take(","));
  return names;
}

RestError parseError(std::string_view what, std::string_view text, const Reader::Fault& fault) {
  return {.status = 400,
          .code = "PGRST100",
          .message = fmt::format("\"failed to parse {} ({})\" (line 1, column {})", what, text, fault.column),
          .details = fault.details,
          .hint = {},
          .headers = {}};
}

template <class Read>
auto readWhole(std::string_view what, std::string_view text, Read read)
    -> std::expected<decltype(read(std::declval<Reader&>())), RestError> {
  try {
    Reader in(text);
    auto result = read(in);
    if (!in.atEnd()) in.fail("expecting end of input");
    return result;
  } catch (const Reader::Fault& fault) {
    return std::unexpected(parseError(what, text, fault));
  }
}

std::optional<long long> wholeNumber(std::string_view text) {
  long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

RestError rangeError(std::string details) {
  return {.status = 416,
          .code = "PGRST103",
          .message = "Requested range not satisfiable",
          .details = std::move(details),
          .hint = {},
          .headers = {}};
}

bool namesOperator(std::string_view value) {
  if (value.starts_with("not.")) value.remove_prefix(4);
  return findOperator(value.substr(0, value.find_first_of(".("))) != nullptr && value.find('.') != value.npos;
}

}  // namespace

std::expected<RestQuery, RestError> parseRestQuery(std::string_view query, bool isCall) {
  RestQuery out;
  for (const auto& [name, value] : queryPairs(query)) {
    std::optional<RestError> fault;
    const auto keep = [&](auto& target, auto&& result) {
      if (result) {
        target = std::move(*result);
      } else {
        fault = std::move(result.error());
      }
    };
    const bool negatedGroup = name == "not.and" || name == "not.or";
    if (name == "select") {
      keep(out.select, readWhole("select parameter", value, readSelect));
    } else if (name == "order") {
      keep(out.order, readWhole("order", value, readOrder));
    } else if (name == "columns") {
      keep(out.columns, readWhole("columns parameter", value, readNames));
    } else if (name == "on_conflict") {
      keep(out.onConflict, readWhole("on_conflict parameter", value, readNames));
    } else if (name == "limit") {
      if (const auto number = wholeNumber(value)) {
        if (*number < 0) return std::unexpected(rangeError("Limit should be greater than or equal to zero."));
        out.limit = number;
      }
    } else if (name == "offset") {
      out.offset = std::max(0LL, wholeNumber(value).value_or(0));
    } else if (name == "and" || name == "or" || negatedGroup) {
      const bool any = name.ends_with("or");
      Condition group;
      keep(group, readWhole("logic tree", value, [any](Reader& in) { return readGroup(in, any); }));
      group.negated = negatedGroup;
      out.where.push_back(std::move(group));
    } else if (isCall && !namesOperator(value)) {
      out.arguments.emplace_back(name, value);
    } else {
      Condition condition;
      keep(condition.field, readWhole("field", name, readField));
      if (!fault) {
        auto field = std::move(condition.field);
        keep(condition, readWhole("filter", value, [](Reader& in) {
               Condition comparison;
               readComparison(in, comparison, false);
               return comparison;
             }));
        condition.field = std::move(field);
      }
      out.where.push_back(std::move(condition));
    }
    if (fault) return std::unexpected(std::move(*fault));
  }
  return out;
}

std::expected<RowRange, RestError> rowRange(const RestQuery& query, std::optional<std::string_view> rangeHeader) {
  RowRange range{.offset = query.offset, .limit = query.limit};
  if (!rangeHeader) return range;
  const auto text = trimmed(*rangeHeader);
  const auto dash = text.find('-');
  if (dash == std::string_view::npos) return range;
  const auto isDigits = [](std::string_view part) {
    return std::ranges::all_of(part, [](char c) { return c >= '0' && c <= '9'; });
  };
  const auto first = wholeNumber(text.substr(0, dash));
  const auto last = wholeNumber(text.substr(dash + 1));
  if (!first || !isDigits(text.substr(0, dash)) || !isDigits(text.substr(dash + 1))) return range;
  if (last && *last < *first) {
    return std::unexpected(
        rangeError("The lower boundary must be lower than or equal to the upper boundary in the Range header."));
  }
  const auto offset = std::max(range.offset, *first);
  std::optional<long long> end;
  if (range.limit) end = range.offset + *range.limit;
  if (last) end = std::min(end.value_or(*last + 1), *last + 1);
  range.offset = offset;
  if (end) range.limit = std::max(0LL, *end - offset);
  return range;
}

Statement& Statement::operator<<(std::string_view sql) {
  text_ += sql;
  return *this;
}

Statement& Statement::bind(std::string value) {
  parameters_.emplace_back(std::move(value));
  text_ += fmt::format("${}", parameters_.size());
  return *this;
}

namespace {

void appendField(Statement& sql, const std::string& relation, const FieldPath& field) {
  if (field.steps.empty()) {
    sql << relation << "." << identifier(field.column);
    return;
  }
  sql << "to_jsonb(" << relation << "." << identifier(field.column) << ")";
  for (const auto& step : field.steps) {
    sql << (step.asText ? "->>" : "->") << (wholeNumber(step.key) ? step.key : textLiteral(step.key));
  }
}

std::string arrayText(const std::vector<std::string>& values) {
  std::string out = "{";
  for (const auto& value : values) {
    out += out.size() > 1 ? ",\"" : "\"";
    for (const char c : value) {
      if (c == '"' || c == '\\') out += '\\';
      out += c;
    }
    out += '"';
  }
  return out + "}";
}

std::string patternOf(const Condition& condition, std::string value) {
  if (condition.operation == "like" || condition.operation == "ilike") std::ranges::replace(value, '*', '%');
  return value;
}

void appendCondition(Statement& sql, const std::string& relation, const Condition& condition) {
  if (condition.negated) sql << "NOT ";
  if (condition.kind != Condition::Kind::comparison) {
    sql << "(";
    for (const auto& part : condition.parts) {
      if (&part != &condition.parts.front()) sql << (condition.kind == Condition::Kind::any ? " OR " : " AND ");
      appendCondition(sql, relation, part);
    }
    sql << ")";
    return;
  }
  sql << "(";
  appendField(sql, relation, condition.field);
  const auto* operation = findOperator(condition.operation);
  sql << " " << operation->sql << " ";
  if (condition.operation == "is") {
    sql << (condition.value == "not_null" ? "NOT NULL" : condition.value);
  } else if (condition.operation == "in") {
    sql << "(";
    sql.bind(arrayText(condition.values)) << ")";
  } else if (!condition.quantifier.empty()) {
    auto patterns = condition.values;
    for (auto& pattern : patterns) pattern = patternOf(condition, pattern);
    sql << condition.quantifier << "(";
    sql.bind(arrayText(patterns)) << ")";
  } else {
    sql.bind(patternOf(condition, condition.value));
  }
  sql << ")";
}

}  // namespace

void appendSelect(Statement& sql, const std::string& relation, const std::vector<SelectItem>& items) {
  if (items.empty()) sql << relation << ".*";
  for (const auto& item : items) {
    if (&item != &items.front()) sql << ", ";
    if (item.field.column == "*") {
      sql << relation << ".*";
      continue;
    }
    if (!item.cast.empty()) sql << "CAST(";
    appendField(sql, relation, item.field);
    if (!item.cast.empty()) sql << " AS " << item.cast << ")";
    std::string name = item.alias;
    for (const auto& step : item.field.steps) {
      if (item.alias.empty() && !wholeNumber(step.key)) name = step.key;
    }
    if (name.empty()) name = item.field.column;
    sql << " AS " << identifier(name);
  }
}

void appendWhere(Statement& sql, const std::string& relation, const std::vector<Condition>& conditions) {
  for (const auto& condition : conditions) {
    sql << (&condition == &conditions.front() ? " WHERE " : " AND ");
    appendCondition(sql, relation, condition);
  }
}

void appendOrder(Statement& sql, const std::string& relation, const std::vector<OrderTerm>& terms) {
  for (const auto& term : terms) {
    sql << (&term == &terms.front() ? " ORDER BY " : ", ");
    appendField(sql, relation, term.field);
    sql << (term.descending ? " DESC" : " ASC");
    if (term.nullsFirst) sql << (*term.nullsFirst ? " NULLS FIRST" : " NULLS LAST");
  }
}

}  // namespace thalvorn::devserver
