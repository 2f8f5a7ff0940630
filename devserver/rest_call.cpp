#include <fmt/format.h>

#include <algorithm>

#include "devserver/payload.h"
#include "devserver/rest_work.h"

namespace thalvorn::devserver {
namespace {

std::string callText(const std::string& name, const std::vector<std::string>& arguments) {
  return "public." + name +
         (arguments.empty() ? std::string(" without parameters")
                            : "(" + joined(arguments, [](auto& argument) { return argument; }) + ")");
}

Outcome<const FunctionFacts*> chooseFunction(const Schema& schema, const std::string& name,
                                             std::vector<std::string> given) {
  std::vector<const FunctionFacts*> fitting;
  const auto [begin, end] = schema.functions.equal_range(name);
  for (const auto& [key, function] : std::ranges::subrange(begin, end)) {
    const auto& arguments = function.arguments;
    const bool known = std::ranges::all_of(given, [&](const std::string& argument) {
      return std::ranges::find(arguments, argument, &FunctionFacts::Argument::name) != arguments.end();
    });
    const bool complete = std::ranges::all_of(arguments, [&](const FunctionFacts::Argument& argument) {
      return argument.optional || std::ranges::find(given, argument.name) != given.end();
    });
    if (known && complete) fitting.push_back(&function);
  }
  if (fitting.size() == 1) return fitting.front();
  if (fitting.empty()) {
    std::ranges::sort(given);
    const auto searched =
        given.empty()
            ? std::string(" without parameters")
            : fmt::format(" with parameter{} {} or with a single unnamed json/jsonb parameter",
                          given.size() > 1 ? "s" : "", joined(given, [](auto& argument) { return argument; }));
    return std::unexpected(refusal(
        404, "PGRST202", fmt::format("Could not find the function {} in the schema cache", callText(name, given)),
        fmt::format("Searched for the function public.{}{}, but no matches were found in the schema cache.", name,
                    searched)));
  }
  const auto signature = [&](const FunctionFacts* function) {
    const auto arguments =
        joined(function->arguments, [](auto& argument) { return argument.name + " => " + argument.type; });
    return "public." + name + "(" + arguments + ")";
  };
  return std::unexpected(refusal(
      300, "PGRST203", "Could not choose the best candidate function between: " + joined(fitting, signature), {},
      "Try renaming the parameters or the function itself in the database so function overloading can be resolved"));
}

Outcome<Response> callFunction(Session& session, const Work& work, const std::string& name,
                               const FunctionFacts& function, const std::string& arguments,
                               const std::vector<std::string>& given) {
  const auto range = rowRange(work.query, work.request.method == "GET" ? work.request.header("Range") : std::nullopt);
  if (!range) return std::unexpected(range.error());
  const auto call = "\"public\"." + identifier(name) + "(" +
                    joined(given, [](auto& key) { return identifier(key) + " := pgrst_body." + identifier(key); }) +
                    ")";
  Statement sql;
  sql << "WITH pgrst_source AS (SELECT pgrst_call.* FROM ";
  if (!given.empty()) {
    sql << "LATERAL (SELECT * FROM json_to_record(";
    sql.bind(arguments) << "::json) AS _(" << joined(given, [&](const std::string& key) {
      const auto& argument = *std::ranges::find(function.arguments, key, &FunctionFacts::Argument::name);
      return identifier(key) + " " + argument.type;
    }) << ")) pgrst_body, LATERAL ";
  }
  sql << (function.returnsScalar ? "(SELECT " + call + " AS pgrst_scalar)" : call) << " pgrst_call)";
  const std::string relation = "pgrst_source";
  const auto appendSource = [&] {
    sql << " FROM pgrst_source";
    if (!function.returnsScalar) appendWhere(sql, relation, work.query.where);
  };
  sql << " SELECT ";
  if (work.preferences.count) {
    sql << "(SELECT count(*)";
    appendSource();
    sql << "), ";
  } else {
    sql << "NULL::bigint, ";
  }
  const std::string aggregated =
      function.returnsScalar ? "json_agg(_postgrest_t.pgrst_scalar)" : "json_agg(_postgrest_t)";
  sql << "count(_postgrest_t), "
      << (function.returnsSet ? bodyOf(work, aggregated, "[]") : "coalesce(" + aggregated + "->0, 'null')::text")
      << kReplySettings << " FROM (SELECT ";
  if (function.returnsScalar) {
    sql << "*";
  } else {
    appendSelect(sql, relation, work.query.select);
  }
  appendSource();
  if (!function.returnsScalar) appendOrder(sql, relation, work.query.order);
  appendLimit(sql, work, *range);
  sql << ") _postgrest_t";
  auto result = execute(session, work, sql);
  if (!result) return std::unexpected(result.error());
  auto page = pageStatus(range->offset, *result);
  if (!page) return std::unexpected(page.error());

  Response response{.status = function.returnsVoid ? 204 : page->first, .headers = {}, .body = {}};
  response.with("Content-Range", page->second);
  if (!function.returnsVoid) {
    addContentType(work, response);
    response.body = std::move(result->body);
  }
  Preferences applied;
  applied.count = work.preferences.count;
  applied.handling = work.preferences.handling;
  applied.timezone = work.preferences.timezone;
  applied.maxAffected = work.preferences.maxAffected;
  addApplied(applied, response);
  if (auto fault = applyChosenReply(*result, response)) return std::unexpected(std::move(*fault));
  return response;
}

}  // namespace

Outcome<Response> serveCall(Session& session, const Work& work, const std::string& name, const Schema& schema) {
  std::string arguments = work.request.body;
  std::vector<std::string> given;
  if (work.reads()) {
    json::object object;
    for (const auto& [key, value] : work.query.arguments) object[key] = value;
    for (const auto& entry : object) given.emplace_back(entry.key());
    arguments = json::serialize(object);
  } else if (!arguments.empty()) {
    const auto payload = readPayload(arguments, true);
    if (!payload) return std::unexpected(payload.error());
    if (payload->isArray) return std::unexpected(refusal(400, "PGRST102", "Empty or invalid json"));
    given = payload->keys;
  }
  const auto function = chooseFunction(schema, name, given);
  if (!function) return std::unexpected(function.error());
  return callFunction(session, work, name, **function, arguments, given);
}

}  // namespace thalvorn::devserver
