#include "devserver/schema_cache.h"

namespace thalvorn::devserver {
namespace {

constexpr auto* kColumns = R"(
  select c.relname, a.attname, format_type(a.atttypid, a.atttypmod),
         case when a.attgenerated = '' then pg_get_expr(d.adbin, d.adrelid) end,
         coalesce(array_position(i.indkey::int2[], a.attnum), -1)
    from pg_class c
    join pg_attribute a on a.attrelid = c.oid and a.attnum > 0 and not a.attisdropped
    left join pg_attrdef d on d.adrelid = c.oid and d.adnum = a.attnum
    left join pg_index i on i.indrelid = c.oid and i.indisprimary
   where c.relnamespace = 'public'::regnamespace and c.relkind in ('r', 'v', 'm', 'f', 'p')
   order by c.relname, 5, a.attnum)";

constexpr auto* kFunctions = R"(
  select p.oid, p.proname, p.proretset, t.typtype not in ('c') and p.prorettype <> 'record'::regtype,
         p.prorettype = 'void'::regtype, a.name, format_type(a.type, null), a.place > p.pronargs - p.pronargdefaults
    from pg_proc p
    join pg_type t on t.oid = p.prorettype
    left join lateral unnest(p.proargtypes::oid[], p.proargnames[1:p.pronargs]) with ordinality as a(type, name, place)
           on true
   where p.pronamespace = 'public'::regnamespace and p.prokind = 'f' and p.prorettype <> 'trigger'::regtype
   order by p.oid, a.place)";

constexpr auto* kRoleSettings = R"(
  select rolname, split_part(setting, '=', 1), substr(setting, strpos(setting, '=') + 1)
    from pg_roles, unnest(rolconfig) as setting
   where pg_has_role(current_user, oid, 'member') and split_part(setting, '=', 1) <> 'search_path')";

void readColumns(const Rows& rows, Schema& schema) {
  for (int row = 0; row < rows.size(); ++row) {
    auto& table = schema.tables[std::string(rows.text(row, 0))];
    ColumnFacts column{.type = std::string(rows.text(row, 2)), .defaultValue = {}};
    if (!rows.isNull(row, 3)) column.defaultValue = rows.text(row, 3);
    if (rows.number(row, 4) >= 0) table.primaryKey.emplace_back(rows.text(row, 1));
    table.columns.emplace(rows.text(row, 1), std::move(column));
  }
}

void readFunctions(const Rows& rows, Schema& schema) {
  std::string previous;
  FunctionFacts* function = nullptr;
  for (int row = 0; row < rows.size(); ++row) {
    if (rows.text(row, 0) != previous) {
      previous = rows.text(row, 0);
      function = &schema.functions
                      .emplace(rows.text(row, 1), FunctionFacts{.arguments = {},
                                                                .returnsSet = rows.text(row, 2) == "t",
                                                                .returnsScalar = rows.text(row, 3) == "t",
                                                                .returnsVoid = rows.text(row, 4) == "t"})
                      ->second;
    }
    if (rows.isNull(row, 6)) continue;
    function->arguments.push_back({.name = std::string(rows.text(row, 5)),
                                   .type = std::string(rows.text(row, 6)),
                                   .optional = rows.text(row, 7) == "t"});
  }
}

}  // namespace

const TableFacts* Schema::table(std::string_view name) const {
  const auto found = tables.find(name);
  return found == tables.end() ? nullptr : &found->second;
}

Answer<std::shared_ptr<const Schema>> SchemaCache::current() {
  {
    const std::lock_guard lock(mutex_);
    if (schema_) return schema_;
  }
  return reread();
}

Answer<std::shared_ptr<const Schema>> SchemaCache::reread() {
  auto session = pool_.borrow();
  if (!session) return std::unexpected(session.error());
  auto schema = std::make_shared<Schema>();
  const auto columns = session->query(kColumns);
  if (!columns) return std::unexpected(columns.error());
  readColumns(*columns, *schema);
  const auto functions = session->query(kFunctions);
  if (!functions) return std::unexpected(functions.error());
  readFunctions(*functions, *schema);
  const auto settings = session->query(kRoleSettings);
  if (!settings) return std::unexpected(settings.error());
  for (int row = 0; row < settings->size(); ++row) {
    schema->roleSettings[std::string(settings->text(row, 0))].emplace_back(settings->text(row, 1),
                                                                           settings->text(row, 2));
  }
  const std::lock_guard lock(mutex_);
  schema_ = schema;
  return schema;
}

}  // namespace thalvorn::devserver
