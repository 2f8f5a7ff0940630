#!/usr/bin/env bash
# What row-level security costs: the task list of one account out of 1,000, with 1,000 tasks each, as the table interface asks
# for it, by a member under the policies and by a role they do not apply to. Fails when a plan reads more than the account.
set -euo pipefail
checkout=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d "${TMPDIR:-/tmp}/thalvorn-policies.XXXXXX")
chmod 711 "$scratch"
trap '"$checkout/scripts/database" stop "$scratch/cluster"; rm -rf "$scratch"' EXIT
connection=$("$checkout/scripts/database" start "$scratch/cluster")
PGPASSWORD=${connection#*//supabase_admin:} PGPORT=${connection#*\"port\":}
PGPASSWORD=${PGPASSWORD%%@*} PGPORT=${PGPORT%%,*}
export PGPASSWORD PGPORT PGHOST=127.0.0.1 PGUSER=supabase_admin PGDATABASE=postgres

psql -X -q -A -t -v ON_ERROR_STOP=1 <<'SQL'
-- Rows as they stand after the triggers, which are left out here.
set session_replication_role = replica;
create temp table made as
  select i, gen_random_uuid() as account, gen_random_uuid() as vessel, gen_random_uuid() as owner from generate_series(1, 1000) i;
insert into auth.users (id, email, email_confirmed_at) select owner, i || '@example.com', now() from made;
insert into public.accounts (id, name, plan) select account, 'Account ' || i, 'fleet' from made;
-- Five members each; every owner is a member of the next account as well.
insert into public.account_members (account_id, user_id, name, role, is_owner)
select account, owner, 'Owner', 'admin', true from made union all
select m.account, n.owner, 'Mate', 'editor', false from made m join made n on n.i = m.i % 1000 + 1 union all
select account, gen_random_uuid(), 'Crew', 'viewOnly', false from made, generate_series(1, 3);
insert into public.vessels (id, user_id, account_id, name) select vessel, owner, account, 'Vessel' from made;
insert into public.maintenance_tasks (id, user_id, account_id, vessel_id, title, notes, category, trigger_type, due_date,
  recurring_days, priority, kind, extra_json, server_version)
select gen_random_uuid(), owner, account, vessel, 'Change the oil filter ' || t, 'As the maker says, with new seals', 'engine', 'date',
  now() + t * interval '1 hour', 90, 'medium', 'service', '{"hourSource":"engine1"}', t * 1000 + i
from generate_series(1, 1000) t cross join made;  -- accounts interleaved, as they are written in time
set session_replication_role = origin;
vacuum analyze public.maintenance_tasks, public.account_members, public.vessels;

-- A page of the list, under the rights of a role, as one JSON text.
create temp table timed (how text, milliseconds double precision);
grant select on made to public;
create function pg_temp.page(condition text) returns text language sql as $$
  select format('select json_agg(page)::text from (select * from public.maintenance_tasks %s order by id limit 1000) page', condition)
$$;
create function pg_temp.become(asked_role text, person uuid) returns void language plpgsql as $$
begin
  perform set_config('role', 'none', true),
          set_config('request.jwt.claims', json_build_object('sub', person, 'role', 'authenticated')::text, true),
          set_config('role', asked_role, true);
end
$$;
create function pg_temp.measure(how text, asked_role text, tried made) returns void language plpgsql as $$
declare
  begun timestamptz;
  took interval;
  page text;
begin
  perform pg_temp.become(asked_role, tried.owner);
  begun := clock_timestamp();
  execute pg_temp.page(format('where account_id = %L', tried.account)) into page;
  took := clock_timestamp() - begun;
  perform set_config('role', 'none', true);
  if json_array_length(page::json) <> 1000 then
    raise exception 'A page % policies has % rows.', how, json_array_length(page::json);
  end if;
  insert into timed values (how, extract(epoch from took) * 1000);
end
$$;
do $$
declare
  tried made;
begin
  for tried in select * from made order by md5(i::text) limit 300 loop
    perform pg_temp.measure('first', 'service_role', tried);  -- so that both find the rows in memory
    perform pg_temp.measure('without', 'service_role', tried), pg_temp.measure('with', 'authenticated', tried),
            pg_temp.measure('without', 'service_role', tried);
  end loop;
end
$$;

-- What the plans read: a page by account, a page by vessel (as the yard's tables are read), and, without any filter, what the
-- policies alone leave.
create function pg_temp.plan(person uuid, statement text) returns jsonb language plpgsql as $$
declare
  plan json;
begin
  perform pg_temp.become('authenticated', person);
  execute 'explain (format json) ' || statement into plan;
  perform set_config('role', 'none', true);
  return plan;
end
$$;
do $$
declare
  tried made;
  statement text;
  plan jsonb;
begin
  select * into tried from made where i = 500;
  foreach statement in array array[pg_temp.page(format('where account_id = %L', tried.account)),
      pg_temp.page(format('where vessel_id = %L', tried.vessel)), 'select * from public.maintenance_tasks'] loop
    plan := pg_temp.plan(tried.owner, statement);
    if jsonb_path_exists(plan, '$.**?(@."Node Type" == "Seq Scan" && @."Relation Name" == "maintenance_tasks")')
       or not jsonb_path_exists(plan, '$.**?(@."Index Name" == "maintenance_tasks_account_idx"
                                          || @."Index Name" == "maintenance_tasks_vessel_idx")') then
      raise exception 'The plan reads more than the account: %: %', statement, jsonb_pretty(plan);
    end if;
  end loop;
end
$$;

select format(E'the account''s task list under the policies, 1,000 of 1,000,000 tasks\t%s ms\t%s ms without them\t%s\t≤ 1.3\t%s',
  round(w.median::numeric, 2), round(o.median::numeric, 2), round((w.median / o.median)::numeric, 2),
  case when w.median <= 1.3 * o.median then 'reached' else 'MISSED' end)
from (select percentile_cont(0.5) within group (order by milliseconds) as median from timed where how = 'with') w,
     (select percentile_cont(0.5) within group (order by milliseconds) as median from timed where how = 'without') o;
SQL
