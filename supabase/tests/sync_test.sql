-- Versions, the guard against stale and revived rows, tombstones, and change stamps.
begin;
\ir support/world.psql
select no_plan();

create function test.vessel(changes jsonb default '{}') returns jsonb language sql stable as $$
  select test.row('vessels', 'A', test.thing('A vessels')) || changes
$$;
create function test.send(register text, sent jsonb) returns bigint language plpgsql as $$
declare
  rows bigint;
begin
  execute test.upsert_sql(register, sent) using sent;
  get diagnostics rows = row_count;
  return rows;
end
$$;
create function test.version() returns bigint language sql stable as $$
  select server_version from public.vessels where id = test.thing('A vessels')
$$;
create function test.name() returns text language sql stable as $$
  select name from public.vessels where id = test.thing('A vessels')
$$;
create function test.stamp(changed text, account text default 'A') returns bigint language sql stable security definer as $$
  select coalesce((select version from public.account_changes where account_id = test.thing(account) and table_name = changed), 0)
$$;
create table test.stamps as select * from public.account_changes with no data;
grant all on test.stamps to public;
grant execute on all functions in schema test to public;

-- The guard.
select test.become('editor');
select test.version() as v1 \gset
select isnt(:'v1'::text, '', 'an inserted row has a version');
select is(test.send('vessels', test.vessel(format('{"name": "One", "seen_version": %s, "server_version": 1}', :'v1')::jsonb)), 1::bigint, 'what was seen last may be changed');
select test.version() as v2 \gset
select ok(:v2 > :v1, 'the server gives a new version, whatever was sent');
select is(test.send('vessels', test.vessel(format('{"name": "Late", "seen_version": %s}', :'v1')::jsonb)), 0::bigint, 'a stale row is skipped');
select is(test.name(), 'One', 'and changes nothing'), is(test.version(), :v2::bigint, 'not even the version');
select is(test.send('vessels', test.vessel('{"name": "Old client", "seen_version": null}')), 1::bigint, 'a writer without versions is accepted'),
       is(test.send('vessels', test.vessel('{"name": "Older client"}')), 1::bigint, 'also one that does not know the column');
select is((select seen_version from public.vessels where id = test.thing('A vessels')), null, 'what was seen is not kept');
update public.vessels set name = 'Patched', seen_version = 1 where id = test.thing('A vessels');
select is(test.name(), 'Older client', 'the guard holds for a patch');
select is(test.send('vessels', test.vessel('{"updated_at": "2026-01-31T08:00:00Z"}')), 1::bigint, 'a time of the client''s');
select is(updated_at, '2026-01-31T08:00:00Z'::timestamptz, 'is kept as sent') from public.vessels where id = test.thing('A vessels');

-- One stale row does not hold back the rest of a batch.
select test.version() as v3 \gset
insert into public.vessels (id, account_id, name, seen_version) values
  (test.thing('A vessels'), test.thing('A'), 'Stale', 1), ('5f0c7d1e-0000-4000-8000-000000000002', test.thing('A'), 'New', 7)
on conflict (id) do update set name = excluded.name, seen_version = excluded.seen_version;
select results_eq('select name, seen_version from public.vessels order by name',
  $$values ('New', null::bigint), ('Older client', null)$$, 'the new row is in, the stale one unchanged');
update public.vessels set name = 'Newer' where id = '5f0c7d1e-0000-4000-8000-000000000002';
select is(name, 'Newer', 'the new row takes later changes') from public.vessels where id = '5f0c7d1e-0000-4000-8000-000000000002';

-- Tombstones.
select test.row('maintenance_tasks', 'A', test.thing('A maintenance_tasks')) as task \gset
delete from public.maintenance_tasks where id = test.thing('A maintenance_tasks');
select results_eq('select account_id, table_name, record_id, deleted_by from public.deleted_records',
  $$select test.thing('A'), 'maintenance_tasks', test.thing('A maintenance_tasks'), auth.uid()$$, 'a deletion leaves what, who and when');
select is(test.send('maintenance_tasks', :'task'), 0::bigint, 'a deleted record is not brought back by an upsert');
select is_empty('select from public.maintenance_tasks', 'it stays away');
insert into public.vessels (id, account_id, name) values
  (test.thing('A maintenance_tasks'), test.thing('A'), 'Same identifier, other table');
select is(test.name(), 'Older client', 'a tombstone counts for its table only');

-- A live row is not eaten by a tombstone of its own.
select test.become('postgres');
insert into public.deleted_records (account_id, table_name, record_id) values (test.thing('A'), 'vessels', test.thing('A vessels'));
select test.become('editor');
select is(test.send('vessels', test.vessel('{"name": "Alive"}')), 1::bigint, 'a live row is updated whatever the tombstones say');
select test.become('postgres');
delete from public.deleted_records where record_id = test.thing('A vessels');

-- Taking back.
select is(test.try(who, format('select public.undelete_records(%L, ''maintenance_tasks'', %L)', test.thing('A'), array[test.thing('A maintenance_tasks')])),
          outcome, 'taking back by ' || who)
from (values ('viewer', '42501'), ('hidden', '42501'), ('readonly', '42501'), ('inactive', '42501'), ('stranger', '42501'),
  ('anon', '42501'), ('editor', '1')) people (who, outcome);
select is(test.refusal('editor', format('select public.undelete_records(%L, %L, ''{}'')', test.thing('A'), register)), 'There is no register named ' || register || '.', 'no register: ' || register)
from unnest(array['accounts', 'pg_class']) register;
select test.become('editor');
select is(public.undelete_records(test.thing('A'), 'maintenance_tasks', array[test.thing('A maintenance_tasks')]), 1, 'a tombstone is taken back'),
       is(public.undelete_records(test.thing('A'), 'maintenance_tasks', array[test.thing('A maintenance_tasks')]), 0, 'once');
select is(test.send('maintenance_tasks', :'task'::jsonb || '{"seen_version": 3}'), 1::bigint, 'then the record comes back'),
       is(test.send('maintenance_tasks', :'task'::jsonb || '{"title": "Oil"}'), 1::bigint, 'and is an ordinary one');

-- Who sees tombstones.
delete from public.saved_waypoints where id = test.thing('A saved_waypoints');
delete from public.crew_board_posts where id = test.thing('A crew_board_posts');
select is(test.try(who, 'select from public.deleted_records'), outcome, who || ' sees tombstones: ' || outcome)
from (values ('viewer', '2'), ('readonly', '2'), ('hidden', '1'), ('inactive', '0'), ('stranger', '0'), ('anon', '42501')) people (who, outcome);

-- A conflict note holds a whole record of another register, and is hidden with it.
update public.conflict_notes set table_name = 'guest_profiles' where account_id = test.thing('A');
select is(test.try(who, $$select from public.conflict_notes where account_id = test.thing('A')$$), outcome,
          'conflict notes of a register are seen as the register is: ' || who)
from (values ('viewer', '1'), ('readonly', '1'), ('hidden', '0'), ('inactive', '0'), ('stranger', '0'), ('anon', '42501')) people (who, outcome);
-- It is written by who may write that register, whatever the note was about before.
select test.become('postgres');
create function test.notes_written(register text, overrides jsonb) returns text[] language plpgsql as $$
declare
  sent jsonb := test.row('conflict_notes', 'A', gen_random_uuid()) || jsonb_build_object('table_name', register);
  outcomes text[];
begin
  update public.account_members set module_overrides = overrides where user_id = test.person('editor');
  update public.conflict_notes set table_name = register where account_id = test.thing('A');
  outcomes := array[test.try('editor', test.insert_sql('conflict_notes', sent), sent), test.try('editor', 'update public.conflict_notes set settled = true'),
    test.try('editor', 'delete from public.conflict_notes')];
  update public.conflict_notes set table_name = 'equipment' where account_id = test.thing('A');
  outcomes := outcomes || test.try('editor', format('update public.conflict_notes set table_name = %L', register));
  update public.account_members set module_overrides = '{}' where user_id = test.person('editor');
  return outcomes;
end
$$;
select is(test.notes_written(register, overrides), outcomes::text[], format('conflict notes of %s with %s', register, overrides))
from (values ('maintenance_tasks', '{"tasks": "readOnly"}'::jsonb, '{42501,0,0,42501}'), ('guest_profiles', '{"guests": "hidden"}', '{42501,0,0,42501}'),
  ('guest_profiles', '{"tasks": "readOnly"}', '{1,1,1,1}'), ('crew_board_posts', '{"tasks": "readOnly"}', '{1,1,1,1}'),
  ('of_a_newer_program', '{"tasks": "readOnly"}', '{1,1,1,1}')) notes (register, overrides, outcomes);
select is(test.try('owner', statement), '42501', statement)
from (values ('delete from public.deleted_records'), ('insert into public.deleted_records values (null)'), ('update public.deleted_records set record_id = null'),
  ('delete from public.account_changes'), ('update public.account_changes set version = 0')) statements (statement);

-- Stamps: each statement that changes an account's rows, and nothing else.
select test.become('postgres');
create function test.grown(statement text, who text default 'editor') returns text[] language plpgsql as $$
declare
  grown text[];
begin
  delete from test.stamps;
  insert into test.stamps select * from public.account_changes;
  perform test.become(who);
  execute statement;
  perform test.become('postgres');
  select array_agg(case c.account_id when test.thing('A') then 'A ' else 'B ' end || c.table_name order by 1) into grown
  from public.account_changes c left join test.stamps s using (account_id, table_name)
  where c.version > coalesce(s.version, 0);
  return coalesce(grown, '{}');
end
$$;
select is(test.grown(statement, who), tables::text[], left(statement, 60)) from (values
  ('update public.equipment set make = ''X''', 'editor', '{A equipment}'),
  ('update public.equipment set make = ''X''', 'viewer', '{}'),
  ('update public.equipment set make = ''X'', seen_version = 0', 'editor', '{}'),
  ('update public.equipment set make = ''X'' where false', 'editor', '{}'),
  ('update public.account_members set name = ''V'' where role = ''viewOnly''', 'admin', '{A account_members}'),
  ('update public.accounts set name = ''A''', 'admin', '{A accounts}'),
  ('insert into public.user_settings default values', 'editor', '{A user_settings}'),
  ('update public.user_settings set app_version = ''2''', 'editor', '{A user_settings}')) statements (statement, who, tables);
select is(test.grown('delete from public.ship_contacts', 'stranger'), '{B ship_contacts}', 'each account has its own stamps');

-- Settings are guarded alike.
select test.become('editor');
select server_version as seen_settings from public.user_settings \gset
update public.user_settings set app_version = '3', seen_version = :seen_settings - 1;
select is(app_version, '2', 'stale settings are skipped') from public.user_settings;
update public.user_settings set app_version = '3', seen_version = :seen_settings;
select is(app_version, '3', 'settings that were seen are changed') from public.user_settings;

-- A vessel takes along what hangs on it, with a tombstone and a stamp each; history without a vessel stays.
select test.become('postgres');
select test.stamp('work_orders') as orders \gset
select test.become('editor');
delete from public.vessels where account_id = test.thing('A');
select test.become('postgres');
select is_empty(format('select from public.%I where account_id = %L', table_name, test.thing('A')), table_name || ' goes with the vessel')
from private.registers where exists (
  select from pg_attribute where attrelid = format('public.%I', table_name)::regclass and attname = 'vessel_id' and attnotnull);
select is((select count(*) from public.deleted_records where table_name in ('work_orders', 'service_logs', 'yard_periods', 'vessels')), 6::bigint, 'tombstones of a cascade'),
       is(test.stamp('work_orders') > :orders, true, 'stamps of a cascade'),
       is((select count(*) from public.ism_check_definitions), 2::bigint, 'what has no vessel stays');
select test.become('editor');
select is(test.try('editor', test.insert_sql('service_logs', late), late), '0', 'a late log of a deleted vessel is skipped, not refused')
from (select test.row('service_logs', 'A', test.thing('A service_logs'))) sent (late);

select test.become('postgres');
select * from finish();
rollback;
