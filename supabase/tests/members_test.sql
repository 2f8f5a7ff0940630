-- Accounts, memberships, settings and acknowledgments: who sees and changes what, and what nobody may do to himself.
begin;
\ir support/world.psql
select no_plan();

create function test.member(who text) returns uuid language sql stable as
  'select id from public.account_members where user_id = test.person(who)';
insert into public.account_members (account_id, invited_email, name, role) values
  (test.thing('A'), ' Pending@Example.com ', 'Pending', 'editor');
insert into test.things values ('pending', (select id from public.account_members where invited_email = 'pending@example.com'));
insert into public.user_settings (user_id) select id from test.people where who not in ('anon', 'newcomer');
insert into public.crew_board_acknowledgments (post_id, user_id, account_id)
select test.thing('A crew_board_posts'), test.person('admin'), test.thing('A') union all
select test.thing('B crew_board_posts'), test.person('stranger'), test.thing('B');

-- Everything a person can ask of these tables, in one look at each.
select is(test.try(who, 'select from public.accounts'), seen, who || ' sees accounts: ' || seen),
       is(test.try(who, 'update public.accounts set name = ''x'''), changed, who || ' renames accounts: ' || changed),
       is(test.try(who, 'select from public.account_members'), members, who || ' sees members: ' || members),
       is(test.try(who, format('update public.account_members set name = ''x'' where id = %L', test.member('viewer'))), changed,
          who || ' renames a member: ' || changed),
       is(test.try(who, format('delete from public.account_members where id = %L', test.member('viewer'))), changed,
          who || ' removes a member: ' || changed),
       is(test.try(who, format('insert into public.account_members (account_id, invited_email, name, role)
            values (%L, ''new@example.com'', ''New'', ''editor'')', test.thing('A'))),
          case changed when '1' then '1' else '42501' end, who || ' invites: ' || changed),
       is(test.try(who, 'select from public.user_settings'), own, who || ' sees settings: ' || own),
       is(test.try(who, 'update public.user_settings set onboarding_complete = true'), own, who || ' changes settings: ' || own),
       is(test.try(who, 'select from public.crew_board_acknowledgments'), own, who || ' sees acknowledgments: ' || own),
       is(test.try(who, 'select from public.account_changes where account_id = (select id from test.things where what = ''A'') limit 1'),
          own, who || ' sees change stamps: ' || own)
from (values ('owner', '1', '1', '9', '1'), ('admin', '1', '1', '9', '1'), ('editor', '1', '0', '1', '1'),
  ('viewer', '1', '0', '1', '1'), ('newer', '1', '0', '1', '1'), ('readonly', '1', '0', '1', '1'), ('hidden', '0', '0', '1', '1'),
  ('inactive', '0', '0', '0', '0'), ('newcomer', '0', '0', '0', '0'), ('anon', '42501', '42501', '42501', '42501'))
  rights (who, seen, changed, members, own);
select is(test.try('stranger', 'select from public.account_members'), '1', 'a stranger sees his own account''s members'),
       is(test.try('stranger', format('delete from public.account_members where account_id = %L', test.thing('A'))), '0',
          'a stranger removes nobody'),
       is(test.try('stranger', format('insert into public.account_members (account_id, invited_email) values (%L, ''x@y'')', test.thing('A'))),
          '42501', 'a stranger does not invite into another account'),
       is(test.try('stranger', format('select from public.account_changes where account_id = %L', test.thing('A'))), '0',
          'a stranger sees no stamps of others');

-- An administrator with an exception in administration.
update public.account_members set module_overrides = '{"admin": "readOnly"}' where user_id = test.person('admin');
select is(test.try('admin', 'select from public.account_members'), '9', 'read-only administration sees the members'),
       is(test.try('admin', format('update public.account_members set name = ''x'' where id = %L', test.member('viewer'))), '0',
          'read-only administration changes none'),
       is(test.try('admin', $$select public.invite_team_member('a@b.com', 'A', 'editor')$$), '42501',
          'read-only administration invites nobody');
update public.account_members set module_overrides = '{"admin": "hidden"}' where user_id in (test.person('admin'), test.person('owner'));
select is(test.try('admin', 'select from public.account_members'), '1', 'hidden administration leaves the own membership'),
       is(test.try('owner', 'select from public.account_members'), '9', 'nothing shuts the owner out');
update public.account_members set module_overrides = '{}' where user_id in (test.person('admin'), test.person('owner'));

-- What only the platform sets.
select is(test.try('owner', format('update public.accounts set %s', change)), '42501', 'the owner does not ' || change)
from (values ('plan = ''superyacht'''), ('additional_seats = 99'), ('id = gen_random_uuid()')) changes (change);
select is(test.try('owner', statement), '42501', statement)
from (values ('delete from public.accounts'), ('insert into public.accounts (name) values (''mine'')')) statements (statement);

-- Nobody raises himself, the owner stays, a membership keeps its person and account.
select is(test.try(who, format('update public.account_members set %s where id = %L', change, test.member(whom))), outcome,
          format('%s: %s of %s', who, change, whom))
from (values
  ('editor', 'role = ''admin''', 'editor', '0'), ('viewer', 'role = ''editor''', 'viewer', '0'),
  ('readonly', 'module_overrides = ''{}''', 'readonly', '0'), ('inactive', 'is_active = true', 'inactive', '0'),
  ('admin', 'role = ''viewOnly''', 'admin', '42501'), ('admin', 'is_active = false', 'admin', '42501'),
  ('admin', 'module_overrides = ''{"crew": "hidden"}''', 'admin', '42501'), ('admin', 'is_owner = true', 'admin', '42501'),
  ('admin', 'name = ''Anne''', 'admin', '1'), ('owner', 'role = ''viewOnly''', 'owner', '42501'),
  ('admin', 'role = ''viewOnly''', 'owner', '42501'), ('admin', 'is_active = false', 'owner', '42501'),
  ('admin', 'module_overrides = ''{"admin": "hidden"}''', 'owner', '42501'), ('admin', 'is_owner = false', 'owner', '42501'),
  ('admin', 'user_id = auth.uid()', 'owner', '42501'), ('admin', 'role = ''admin''', 'editor', '1'),
  ('admin', 'user_id = null', 'editor', '42501'), ('admin', 'id = gen_random_uuid()', 'editor', '42501'),
  ('admin', 'invited_email = ''x@y.com''', 'editor', '42501'),
  ('admin', 'account_id = (select id from test.things where what = ''B'')', 'editor', '42501'),
  ('admin', 'created_at = ''2020-01-01''', 'editor', '1'), ('admin', 'is_active = true', 'inactive', '1'),
  ('admin', 'module_overrides = ''{"crew": "hidden"}''', 'editor', '1'), ('owner', 'is_active = false', 'admin', '1'))
  changes (who, change, whom, outcome);
select is(test.try(who, format('update public.account_members set module_overrides = %L where id = %L', overrides, test.member('editor'))), outcome,
          who || ' setting ' || overrides)
from (values ('admin', '{"crew": "of a newer program"}', '1'), ('admin', '{"crew": {"x": 1}}', '22023'), ('admin', '{"crew": null}', '22023'),
  ('admin', '{"crew": ["hidden"]}', '22023'), ('admin', '[]', '23514'), ('service_role', '{"crew": 1}', '22023')) changes (who, overrides, outcome);
select is(test.try('admin', format('delete from public.account_members where id = %L', test.member('owner'))), '42501',
          'the owner is not removed'),
       is(test.try('owner', format('delete from public.account_members where id = %L', test.member('owner'))), '42501',
          'not even by himself'),
       is(test.try('admin', format('delete from public.account_members where id = %L', test.thing('pending'))), '1',
          'an invitation is withdrawn'),
       is(test.try('admin', format('insert into public.account_members (account_id, user_id, role) values (%L, %L, ''admin'')',
          test.thing('A'), test.person('newcomer'))), '42501', 'nobody is made a member without accepting'),
       is(test.try('admin', format('update public.account_members set invited_email = ''Other@Example.com'' where id = %L', test.thing('pending'))),
          '1', 'an invitation''s address is corrected');

select is(test.try('service_role', format('update public.account_members set role = ''editor'' where id = %L', test.member('owner'))), '1',
          'the platform''s own key is bound by none of this'),
       is(test.try('service_role', 'update public.accounts set plan = ''none'''), '2', 'and sets plans');

-- Members written as whole rows merge with what is there.
create function test.upsert_member(who text, changes jsonb) returns text language sql as $$
  select test.try(who, test.upsert_sql('account_members', sent), sent)
  from (select to_jsonb(m) || '{"created_at": "2026-05-01T08:00:00Z"}' || changes
        from public.account_members m where m.id = test.member('editor')) as rows (sent)
$$;
select is(test.upsert_member('admin', '{"name": "Eve", "role": "viewOnly"}'), '1', 'an administrator upserts a member'),
       is(test.upsert_member('admin', '{"is_owner": true}'), '42501', 'no owner is made by upsert'),
       is(test.upsert_member('editor', '{"role": "admin"}'), '42501', 'no editor raises himself by upsert');

-- Settings and acknowledgments belong to one person.
select is(test.try('viewer', format('insert into public.user_settings (user_id) values (%L)', test.person('newcomer'))), '42501',
          'nobody writes another''s settings'),
       is(test.try('newcomer', 'insert into public.user_settings default values'), '42501', 'no settings without an account');
create function test.acknowledge(who text, whose text, account text) returns text language sql as $$
  select test.try(who, format('insert into public.crew_board_acknowledgments (post_id, user_id, account_id) values (%L, %L, %L)
    on conflict (post_id, user_id) do update set post_id = excluded.post_id, user_id = excluded.user_id, account_id = excluded.account_id',
    test.thing(account || ' crew_board_posts'), test.person(whose), test.thing(account)))
$$;
select is(test.acknowledge('viewer', 'viewer', 'A'), '1', 'everybody acknowledges'),
       is(test.acknowledge('admin', 'admin', 'A'), '1', 'twice, too'),
       is(test.acknowledge('viewer', 'admin', 'A'), '42501', 'nobody acknowledges for another'),
       is(test.acknowledge('viewer', 'viewer', 'B'), '42501', 'nor in another account'),
       is(test.acknowledge('inactive', 'inactive', 'A'), '42501', 'nor after leaving'),
       is(test.try('viewer', 'delete from public.crew_board_acknowledgments'), '0', 'nobody takes another''s acknowledgment back');

-- The author of a post is who added it.
select test.become('editor');
insert into public.crew_board_posts (id, user_id, account_id) values
  ('5f0c7d1e-0000-4000-8000-000000000001', test.person('owner'), test.thing('A'));
update public.crew_board_posts set user_id = test.person('owner') where id = '5f0c7d1e-0000-4000-8000-000000000001';
select is(user_id, test.person('editor'), 'nobody posts in another''s name') from public.crew_board_posts
where id = '5f0c7d1e-0000-4000-8000-000000000001';
update public.crew_board_posts set is_pinned = true, user_id = auth.uid() where id = test.thing('A crew_board_posts');
select is(user_id, test.person('owner'), 'pinning does not change the author') from public.crew_board_posts
where id = test.thing('A crew_board_posts');
select test.become('postgres');

-- Certificates, leave and travel documents of the crew.
create function test.crew(who text, part text, changes jsonb) returns text language plpgsql as $$
declare
  outcome text;
  sent jsonb := test.row('crew_members', 'A', test.thing('A crew_members')) || changes;
begin
  update public.account_members set module_overrides = jsonb_build_object(part, 'readOnly') where user_id = test.person(who);
  outcome := test.try(who, test.upsert_sql('crew_members', sent), sent);
  update public.account_members set module_overrides = '{}' where user_id = test.person(who);
  return outcome;
end
$$;
update public.crew_members set certifications_json = '[{"id":"1","notes":null}]',
  extended_json = '{"passportNumber":"P1","employmentStatus":"active","bankIban":""}' where id = test.thing('A crew_members');
select is(test.crew('editor', part, changes::jsonb), outcome, format('without %s: %s', part, changes))
from (values
  ('crewCerts', '{"certifications_json": "[]"}', '42501'), ('crewCerts', '{"certifications_json": "no list"}', '42501'),
  ('crewCerts', '{"certifications_json": "[ {\"id\": \"1\"} ]", "phone": "1"}', '1'), ('crewLeave', '{"certifications_json": "[]"}', '1'),
  ('crewLeave', '{"extended_json": "{\"passportNumber\":\"P1\",\"employmentStatus\":\"onLeave\"}"}', '42501'),
  ('crewLeave', '{"extended_json": "{\"passportNumber\":\"P2\",\"employmentStatus\":\"active\"}"}', '1'),
  ('crewDocs', '{"extended_json": "{\"passportNumber\":\"P2\",\"employmentStatus\":\"active\"}"}', '42501'),
  ('crewDocs', '{"extended_json": "{\"passportNumber\":\"P1\",\"employmentStatus\":\"onLeave\",\"bankIban\":\"X\"}"}', '1'),
  ('crewDocs', '{"extended_json": "{broken"}', '42501'), ('crewCerts', '{"extended_json": "{broken"}', '1'),
  -- Of two values for one key, however it is spelt, some readers take the first.
  ('crewDocs', '{"extended_json": "{\"passportNumber\":\"X\",\"employmentStatus\":\"active\",\"passportNumbe\\u0072\":\"P1\"}"}', '42501'),
  ('crewLeave', '{"extended_json": "{\"passportNumber\":\"P1\",\"bank\":{\"iban\":\"1\",\"iban\":\"2\"}}"}', '42501'),
  ('crewCerts', '{"certifications_json": "[{\"id\":\"2\",\"id\":\"1\"}]"}', '42501'),
  ('crewLeave', '{"certifications_json": "[{\"id\":\"2\",\"id\":\"1\"}]"}', '1'))
  changes (part, changes, outcome);
update public.crew_members set extended_json = '{"passportNumber":"12","employmentStatus":"active"}' where id = test.thing('A crew_members');
select is(test.crew('editor', 'crewDocs', '{"extended_json": "{\"passportNumber\":12,\"employmentStatus\":\"active\"}"}'), '42501',
  'a number is not the text of its digits');
update public.crew_members set extended_json = '{"passportNumber":"P1","employmentStatus":"active"}' where id = test.thing('A crew_members');
-- A new crew member: nothing may stand in the closed part.
create function test.new_crew(part text, changes jsonb) returns text language plpgsql as $$
begin
  insert into test.things (what) values ('new crew') on conflict do nothing;
  return test.crew('editor', part, changes || jsonb_build_object('id', test.thing('new crew')));
end
$$;
select is(test.new_crew('crewCerts', '{"certifications_json": "[{}]"}'), '42501', 'no new crew member with certificates'),
       is(test.new_crew('crewDocs', '{"extended_json": "{\"passportNumber\":\"\",\"employmentStatus\":\"active\"}"}'), '1',
          'an empty part is no change');

-- Who may not write what hangs on a record does not delete it with the record.
create function test.without(overrides jsonb, statement text) returns text language plpgsql as $$
declare
  outcome text;
begin
  update public.account_members set module_overrides = overrides where user_id = test.person('editor');
  outcome := test.try('editor', statement);
  update public.account_members set module_overrides = '{}' where user_id = test.person('editor');
  return outcome;
end
$$;
select is(test.without(overrides, format('delete from public.crew_members where id = %L', test.thing('A crew_members'))), outcome,
          format('deleting a crew member with %s', overrides))
from (values ('{}'::jsonb, '1'), ('{"crewCerts": "readOnly"}', '42501'), ('{"crewDocs": "hidden"}', '42501'), ('{"crewLeave": "readOnly"}', '1'),
  ('{"guests": "hidden"}', '1')) people (overrides, outcome);
select is(test.without(jsonb_build_object(module, access), format('delete from public.vessels where id = %L', test.thing('A vessels'))), outcome,
          format('deleting a vessel with %s %s', module, access))
from (values ('guests', 'hidden', '42501'), ('marpol', 'readOnly', '42501'), ('ism', 'readOnly', '42501'), ('voyage', 'of a newer program', '42501'),
  ('subscriptions', 'hidden', '1'), ('crewCerts', 'readOnly', '42501'), ('crewDocs', 'readOnly', '42501'), ('crewLeave', 'readOnly', '1'),
  ('admin', 'hidden', '1'), ('guests', 'inherit', '1')) people (module, access, outcome);
update public.subscription_accounts set vessel_id = test.thing('A vessels') where account_id = test.thing('A');
select is(test.without('{"subscriptions": "hidden"}', format('delete from public.vessels where id = %L', test.thing('A vessels'))), '42501',
          'also where a record may do without a vessel');
update public.subscription_accounts set vessel_id = null;
delete from public.guest_profiles where account_id = test.thing('A');
select is(test.without('{"guests": "hidden"}', format('delete from public.vessels where id = %L', test.thing('A vessels'))), '1',
          'a vessel without any such record goes'),
       is(test.without('{"guests": "hidden"}', 'delete from public.vessels'), '1', 'as one of all');

-- Taking back: what others deleted may have held more than this person may write.
delete from public.crew_members where account_id = test.thing('A');
create function test.taken_back(overrides jsonb) returns text language sql as $$
  select test.without(overrides, format('select from generate_series(1, public.undelete_records(%L, ''crew_members'', %L))',
    test.thing('A'), array[test.thing('A crew_members')]))
$$;
select is(test.taken_back('{"crewCerts": "readOnly"}'), '0', 'a crew member whom another deleted is left to who may write all of him'),
       is(test.taken_back('{}'), '1', 'who takes him back');
update public.deleted_records set deleted_by = test.person('editor') where record_id = test.thing('A crew_members');
select is(test.taken_back('{"crewCerts": "readOnly"}'), '1', 'who deleted a crew member takes him back');

-- A person who goes leaves his records to the owner; an owner stays.
update public.vessels set user_id = test.person('editor') where account_id = test.thing('A');
delete from auth.users where id = test.person('editor');
select is(user_id, test.person('owner'), 'records pass to the owner') from public.vessels where account_id = test.thing('A');
select throws_ok(format('delete from auth.users where id = %L', test.person('owner')), '23503', null, 'the owner of an account stays');
select lives_ok(format('delete from public.accounts where id = %L', test.thing('A')), 'an account goes with all it holds');
select is_empty(format('select from public.account_members where account_id = %L union all select from public.maintenance_tasks where account_id = %1$L
  union all select from public.deleted_records where account_id = %1$L', test.thing('A')), 'nothing of it stays');

select * from finish();
rollback;
