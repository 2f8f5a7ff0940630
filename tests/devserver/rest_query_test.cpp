#include "devserver/rest_query.h"

#include <gmock/gmock.h>

namespace thalvorn::devserver {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Written {
  std::string sql;
  std::vector<std::string> values;
};

Written whereOf(std::string_view query) {
  const auto parsed = parseRestQuery(query, false);
  if (!parsed) return {.sql = parsed.error().code, .values = {}};
  Statement sql;
  appendWhere(sql, "t", parsed->where);
  Written out{.sql = sql.text(), .values = {}};
  for (const auto& value : sql.parameters()) out.values.push_back(value.value_or("NULL"));
  return out;
}

TEST(RestQuery, FiltersBecomeConditionsWithParameters) {
  struct Case {
    std::string_view query;
    std::string_view sql;
    std::vector<std::string> values;
  };
  const std::vector<Case> cases{
      {"id=eq.a.b,c", R"( WHERE (t."id" = $1))", {"a.b,c"}},
      {"a=not.like.x*&b=is.null", R"( WHERE NOT (t."a" LIKE $1) AND (t."b" IS null))", {"x%"}},
      {R"(a=in.("x,\"y\"",z,%22%22))", R"( WHERE (t."a" = ANY ($1)))", {R"({"x,\"y\"","z",""})"}},
      {"or=(a.eq.1,not.and(b.gt.2,c.in.(3,4)))",
       R"( WHERE ((t."a" = $1) OR NOT ((t."b" > $2) AND (t."c" = ANY ($3)))))",
       {"1", "2", R"({"3","4"})"}},
      {"a->b->>0=eq.1", R"( WHERE (to_jsonb(t."a")->'b'->>0 = $1))", {"1"}},
      {R"(a%22%20or%20true--=eq.1)", "PGRST100", {}},
      {R"(%22a%5C%22;drop%22=eq.1)", R"( WHERE (t."a"";drop" = $1))", {"1"}},
      {"a->'b=eq.1", "PGRST100", {}},
      {R"(a-%3E%22it's%22=eq.1)", R"( WHERE (to_jsonb(t."a")->'it''s' = $1))", {"1"}},
      {"two-words=eq.1", R"( WHERE (t."two-words" = $1))", {"1"}},
      {"a=is.7", "PGRST100", {}},
      {"a=eq", "PGRST100", {}},
      {"or=()", "PGRST100", {}},
  };
  for (const auto& [query, sql, values] : cases) {
    const auto written = whereOf(query);
    EXPECT_EQ(written.sql, sql) << query;
    EXPECT_EQ(written.values, values) << query;
  }
}

TEST(RestQuery, SelectAndOrderNameColumnsSafely) {
  const auto parsed = parseRestQuery("select=*,short:name,at::date,j->>k&order=a.desc.nullslast,b,c.nullsfirst", false);
  ASSERT_TRUE(parsed.has_value());
  Statement sql;
  appendSelect(sql, "t", parsed->select);
  EXPECT_EQ(sql.text(), R"(t.*, t."name" AS "short", CAST(t."at" AS date) AS "at", to_jsonb(t."j")->>'k' AS "k")");
  Statement order;
  appendOrder(order, "t", parsed->order);
  EXPECT_EQ(order.text(), R"( ORDER BY t."a" DESC NULLS LAST, t."b" ASC, t."c" ASC NULLS FIRST)");
  for (const auto* query : {"select=a::int)--", "select=a,b(c)", "order=a.desc.desc", "order=a;", "order="}) {
    EXPECT_FALSE(parseRestQuery(query, false).has_value()) << query;
  }
}

TEST(RestQuery, ArgumentsOfACallAreWhatNamesNoOperator) {
  const auto call = parseRestQuery("p_email=a@b.example&name=eq.x&limit=3", true);
  ASSERT_TRUE(call.has_value());
  EXPECT_THAT(call->arguments, ElementsAre(std::pair<std::string, std::string>("p_email", "a@b.example")));
  EXPECT_EQ(call->where.size(), 1U);
  EXPECT_EQ(call->limit, 3);
}

TEST(RestQuery, RangesAreCutWithEachOther) {
  const auto range = [](std::string_view query, std::optional<std::string_view> header) {
    return rowRange(*parseRestQuery(query, false), header).value_or(RowRange{.offset = -1, .limit = -1});
  };
  EXPECT_EQ(range("limit=10&offset=5", "0-7").offset, 5);
  EXPECT_EQ(range("limit=10&offset=5", "0-7").limit, 3);
  EXPECT_EQ(range("", "20-").offset, 20);
  EXPECT_EQ(range("", "20-").limit, std::nullopt);
  EXPECT_EQ(range("limit=2", "5-9").limit, 0);
  EXPECT_EQ(range("limit=2", "-9").limit, 2) << "another form is no range";
  EXPECT_EQ(range("", "9-5").offset, -1) << "refused";
}

TEST(RestError, StatusFollowsTheSqlState) {
  struct Case {
    std::string_view state;
    int status;
  };
  for (const auto& [state, status] :
       {Case{"23503", 409}, Case{"23505", 409}, Case{"23502", 400}, Case{"23514", 400}, Case{"42P01", 404},
        Case{"42883", 404}, Case{"42703", 400}, Case{"42P10", 400}, Case{"42P17", 500}, Case{"25006", 405},
        Case{"28000", 403}, Case{"0LP01", 403}, Case{"0P000", 403}, Case{"53300", 503}, Case{"08006", 503},
        Case{"57P01", 503}, Case{"57014", 500}, Case{"40001", 500}, Case{"40P01", 500}, Case{"54000", 500},
        Case{"55P03", 500}, Case{"58000", 500}, Case{"XX000", 500}, Case{"21000", 500}, Case{"P0001", 400},
        Case{"P0002", 500}, Case{"22P02", 400}, Case{"PT418", 418}}) {
    EXPECT_EQ(statusOfSqlState(state, "", true), status) << state;
  }
  EXPECT_EQ(statusOfSqlState("42501", "", true), 403);
  EXPECT_EQ(statusOfSqlState("42501", "", false), 401);
  EXPECT_EQ(statusOfSqlState("21000", "DELETE requires a WHERE clause", true), 400);
  EXPECT_EQ(statusOfSqlState("22023", "role \"x\" does not exist", true), 401);
}

TEST(Message, DecodesWhatIsEncodedAndKeepsTheRest) {
  EXPECT_EQ(percentDecoded("a%2Bb+c%zz%4", true), "a+b c%zz%4");
  EXPECT_EQ(percentDecoded("a+b%20c%41", false), "a+b cA");
  EXPECT_THAT(split("", ','), IsEmpty());
  EXPECT_THAT(split("a,,b,", ','), ElementsAre("a", "", "b", ""));
}

}  // namespace
}  // namespace thalvorn::devserver
