-- Every register × everybody × every operation, in the own account and in a foreign one.
begin;
\ir support/world.psql
select no_plan();

-- What happened, by operation: rows touched, or the SQLSTATE.
create function test.outcomes(register text, who text) returns jsonb language plpgsql as $$
declare
  own jsonb := test.row(register, 'A', test.thing('A ' || register));
  fresh jsonb := test.row(register, 'A', gen_random_uuid());
  foreign_fresh jsonb := test.row(register, 'B', gen_random_uuid());
  foreign_row jsonb := test.row(register, 'B', test.thing('B ' || register));
  moved jsonb := foreign_row || jsonb_build_object('id', test.thing('A ' || register));
  at_id text := format(' where id = %L', test.thing('A ' || register));
  at_foreign text := format(' where id = %L', test.thing('B ' || register));
  tried record;
  outcomes jsonb := '{}';
begin
  for tried in values
    ('select', format('select from public.%I', register) || at_id, null::jsonb),
    ('select all', format('select from public.%I', register), null),
    ('insert', test.insert_sql(register, fresh), fresh),
    ('upsert new', test.upsert_sql(register, fresh), fresh),
    ('upsert', test.upsert_sql(register, own), own),
    ('update', format('update public.%I set updated_at = now()', register) || at_id, null),
    ('update all', format('update public.%I set updated_at = now()', register), null),
    ('delete', format('delete from public.%I', register) || at_id, null),
    ('delete all', format('delete from public.%I', register), null),
    ('foreign select', format('select from public.%I', register) || at_foreign, null),
    ('foreign insert', test.insert_sql(register, foreign_fresh), foreign_fresh),
    ('foreign upsert', test.upsert_sql(register, foreign_row), foreign_row),
    ('foreign update', format('update public.%I set updated_at = now()', register) || at_foreign, null),
    ('foreign delete', format('delete from public.%I', register) || at_foreign, null),
    ('seize', test.upsert_sql(register, foreign_row), foreign_row || jsonb_build_object('account_id', test.thing('A'))),
    ('give away', test.upsert_sql(register, moved), moved),
    ('truncate', format('truncate public.%I cascade', register), null)
  loop
    outcomes := outcomes || jsonb_build_object(tried.column1, test.try(who, tried.column2, tried.column3));
  end loop;
  return outcomes;
end
$$;

-- Who may read and write: the rule itself, put down without the schema's help.
create function test.expected(module text, who text) returns jsonb language sql as $$
  select case
    when who = 'anon' then (
      select jsonb_object_agg(operation, '42501') from unnest(array['select', 'select all', 'insert', 'upsert new', 'upsert',
        'update', 'update all', 'delete', 'delete all', 'foreign select', 'foreign insert', 'foreign upsert',
        'foreign update', 'foreign delete', 'seize', 'give away', 'truncate']) operation)
    else jsonb_build_object(
      'select', readable, 'select all', readable,
      'insert', case writable when '1' then '1' else '42501' end, 'upsert new', case writable when '1' then '1' else '42501' end,
      'upsert', case writable when '1' then '1' else '42501' end, 'update', writable, 'update all', writable,
      'delete', writable, 'delete all', writable,
      'foreign select', '0', 'foreign insert', '42501', 'foreign upsert', '42501', 'foreign update', '0', 'foreign delete', '0',
      'seize', '42501', 'give away', '42501', 'truncate', '42501')
    end
  from (select case when who in ('owner', 'admin', 'editor', 'viewer', 'newer', 'readonly') or who = 'hidden' and module is null
                    then '1' else '0' end as readable,
               case when who in ('owner', 'admin', 'editor') or who in ('hidden', 'readonly') and module is null
                    then '1' else '0' end as writable) rights
$$;

select is(test.outcomes(r.table_name, p.who), test.expected(r.module, p.who), r.table_name || ' in the hands of ' || p.who)
from private.registers r cross join test.people p
where p.who <> 'stranger'
order by r.table_name, p.who;

-- The stranger owns B: to him A is the foreign account.
select is(test.try('stranger', format('select from public.%I', table_name)), '1', table_name || ': a stranger sees his own rows only'),
       is(test.try('stranger', format('delete from public.%I where account_id = %L', table_name, test.thing('A'))), '0',
          table_name || ': a stranger deletes nothing of others')
from private.registers;

-- The platform's own key does everything, under the same triggers.
select is(test.try('service_role', test.upsert_sql(table_name, fresh), fresh), '1', table_name || ': the service writes')
from private.registers, lateral (select test.row(table_name, 'A', gen_random_uuid())) sent (fresh);

-- Whoever a row names as its writer, it is who sends it; a post keeps its author.
create function test.writer(who text, register text, sent jsonb) returns uuid language plpgsql as $$
declare
  writer uuid;
begin
  perform test.become(who);
  execute test.upsert_sql(register, sent) using sent;
  execute format('select user_id from public.%I where id = $1', register) into writer using (sent ->> 'id')::uuid;
  raise sqlstate 'UNDO0' using message = writer;
exception when sqlstate 'UNDO0' then return sqlerrm;
end
$$;
select is(test.writer('editor', table_name, sent || jsonb_build_object('user_id', test.person('stranger'))), test.person('editor'),
          table_name || ': the writer of a new row'),
       is(test.writer('editor', table_name, test.row(table_name, 'A', test.thing('A ' || table_name))),
          test.person(case table_name when 'crew_board_posts' then 'owner' else 'editor' end), table_name || ': the writer of a changed row'),
       is(test.writer('service_role', table_name, sent || jsonb_build_object('user_id', test.person('viewer'))), test.person('viewer'),
          table_name || ': the service names whom it likes')
from private.registers, lateral (select test.row(table_name, 'A', gen_random_uuid())) fresh (sent);

-- Which override rules which table, one module at a time.
create function test.tables_closed_by(module text) returns text[] language plpgsql as $$
declare
  register text;
  closed text[] := '{}';
begin
  update public.account_members set module_overrides = jsonb_build_object(module, 'hidden') where user_id = test.person('editor');
  for register in select table_name from private.registers order by 1 loop
    if test.try('editor', format('select from public.%I', register)) = '0' then
      closed := closed || register;
    end if;
  end loop;
  update public.account_members set module_overrides = '{}' where user_id = test.person('editor');
  return closed;
end
$$;
select is(test.tables_closed_by(module), tables::text[], module || ' closes its tables and no others')
from (values
  ('tasks', '{maintenance_tasks,service_logs,vessel_profiles,vessels}'), ('shipslog', '{ships_log}'),
  ('bunkering', '{bunkering_records}'), ('documents', '{ship_documents}'), ('contacts', '{ship_contacts}'),
  ('equipment', '{equipment}'), ('voyage', '{saved_waypoints,voyage_plans}'), ('crew', '{crew_members}'),
  ('guests', '{guest_profiles}'), ('calendar', '{calendar_events}'), ('ism', '{ism_check_definitions,ism_records}'),
  ('marpol', '{marpol_records}'), ('gmdss', '{gmdss_test_logs}'),
  ('yardRefit', '{punch_list_items,work_orders,yard_log_entries,yard_periods}'), ('subscriptions', '{subscription_accounts}'),
  ('admin', '{}'), ('crewCerts', '{}'), ('crewLeave', '{}'), ('crewDocs', '{}')) mapping (module, tables);

-- An override of the kind only a newer program knows leaves reading and takes writing.
update public.account_members set module_overrides = '{"tasks": "ownOnly"}' where user_id = test.person('editor');
select is(test.try('editor', 'select from public.vessels'), '1', 'an unknown override lets read'),
       is(test.try('editor', 'update public.vessels set name = name'), '0', 'an unknown override does not let write');
update public.account_members set module_overrides = '{"tasks": "inherit"}' where user_id = test.person('editor');
select is(test.try('editor', 'update public.vessels set name = name'), '1', 'inherit is as good as no override');

-- No row hangs on another account's vessel, not even one's own.
select is(test.try('editor', test.insert_sql('maintenance_tasks', fresh), fresh), '23503', 'no task on a foreign vessel')
from (select test.row('maintenance_tasks', 'A', gen_random_uuid()) || jsonb_build_object('vessel_id', test.thing('B vessels')))
  sent (fresh);

select * from finish();
rollback;
