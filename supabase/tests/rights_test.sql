-- What is no register × everybody × every operation, in the own account and a foreign one.
begin;
\ir support/world.psql
select no_plan();

create function test.q(what text) returns text language sql stable as 'select quote_literal(test.thing(what))';
create function test.p(who text) returns text language sql stable as 'select quote_literal(test.person(who))';

-- Outcomes for those who administer, for members of any other kind, and for people without an active membership. A request
-- without a person is refused everything; to the file service's own tables he is one of the others.
create table test.attempts (subject text, operation text, statement text, admins text, members text, others text);
create function test.outcomes() returns setof text language sql as $$
  select is(test.try(p.who, a.statement),
            case when p.who = 'anon' and a.subject <> 'storage.buckets' then '42501' when p.who in ('owner', 'admin') then a.admins
                 when p.who in ('inactive', 'newcomer', 'anon') then a.others else a.members end,
            format('%s: %s by %s', a.subject, a.operation, p.who))
  from test.attempts a cross join test.people p where p.who <> 'stranger'
  order by a.subject, a.operation, p.who
$$;

-- Of settings and acknowledgments everybody makes his own.
insert into test.attempts
select subject, operation, statement, inside, inside, others from (values
  ('user_settings', 'insert', 'insert into public.user_settings default values', '1', '42501'),
  ('crew_board_acknowledgments', 'insert', format('insert into public.crew_board_acknowledgments (post_id, account_id) values (%s, %s)',
    test.q('A crew_board_posts'), test.q('A')), '1', '42501'),
  ('crew_board_acknowledgments', 'foreign insert', format('insert into public.crew_board_acknowledgments (post_id, account_id) values (%s, %s)',
    test.q('B crew_board_posts'), test.q('B')), '42501', '42501'),
  ('crew_board_acknowledgments', 'insert for a post of no account', format('insert into public.crew_board_acknowledgments (post_id, account_id)
    values (gen_random_uuid(), %s)', test.q('A')), '0', '42501'),
  ('crew_board_acknowledgments', 'insert for another account''s post', format('insert into public.crew_board_acknowledgments (post_id, account_id)
    values (%s, %s)', test.q('B crew_board_posts'), test.q('A')), '0', '42501')) attempts (subject, operation, statement, inside, others);
select test.outcomes();
delete from test.attempts;

insert into public.user_settings (user_id) select id from test.people where who <> 'anon';
insert into public.crew_board_acknowledgments (post_id, user_id, account_id, acknowledged_at)
select test.thing(case who when 'stranger' then 'B' else 'A' end || ' crew_board_posts'), id,
  test.thing(case who when 'stranger' then 'B' else 'A' end), '2026-05-01T08:00:00Z' from test.people where who <> 'anon';
insert into test.things (what) values ('another post');
insert into public.crew_board_posts (id, account_id, user_id) values (test.thing('another post'), test.thing('A'), test.person('owner'));

insert into test.attempts
select subject, operation, statement, inside, inside, others from (values
  ('user_settings', 'select', 'select from public.user_settings', '1', '0'),
  ('user_settings', 'upsert', 'insert into public.user_settings default values on conflict (user_id) do update set app_version = ''2''', '1', '42501'),
  ('user_settings', 'upsert another''s', format('insert into public.user_settings (user_id) values (%s)
    on conflict (user_id) do update set app_version = ''2''', test.p('stranger')), '42501', '42501'),
  ('user_settings', 'update all', 'update public.user_settings set app_version = ''2''', '1', '0'),
  ('user_settings', 'give away', format('update public.user_settings set user_id = %s', test.p('stranger')), '42501', '0'),
  ('user_settings', 'delete all', 'delete from public.user_settings', '1', '0'),
  ('user_settings', 'delete another''s', 'delete from public.user_settings where user_id <> auth.uid()', '0', '0'),
  ('crew_board_acknowledgments', 'select', 'select from public.crew_board_acknowledgments', '9', '0'),
  ('crew_board_acknowledgments', 'upsert', format('insert into public.crew_board_acknowledgments (post_id, account_id) values (%s, %s)
    on conflict (post_id, user_id) do update set account_id = excluded.account_id', test.q('A crew_board_posts'), test.q('A')), '1', '42501'),
  ('crew_board_acknowledgments', 'upsert another''s', format('insert into public.crew_board_acknowledgments (post_id, account_id, user_id)
    values (%s, %s, %s) on conflict (post_id, user_id) do update set account_id = excluded.account_id',
    test.q('A crew_board_posts'), test.q('A'), test.p('newcomer')), '42501', '42501'),
  ('crew_board_acknowledgments', 'update of the time', 'update public.crew_board_acknowledgments set acknowledged_at = ''2020-01-01''', '42501', '42501'),
  ('crew_board_acknowledgments', 'update to another post', format('update public.crew_board_acknowledgments set post_id = %s',
    test.q('another post')), '42501', '0'),
  ('crew_board_acknowledgments', 'update of another''s', 'update public.crew_board_acknowledgments set post_id = post_id where user_id <> auth.uid()', '0', '0'),
  ('crew_board_acknowledgments', 'give away', format('update public.crew_board_acknowledgments set user_id = %s', test.p('stranger')), '42501', '0'),
  ('crew_board_acknowledgments', 'delete all', 'delete from public.crew_board_acknowledgments', '1', '0'),
  ('crew_board_acknowledgments', 'delete another''s', 'delete from public.crew_board_acknowledgments where user_id <> auth.uid()', '0', '0'),
  ('accounts', 'insert', 'insert into public.accounts (name) values (''mine'')', '42501', '42501'),
  ('accounts', 'upsert', format('insert into public.accounts (id, name) values (%s, ''mine'')
    on conflict (id) do update set name = excluded.name', test.q('A')), '42501', '42501'),
  ('accounts', 'delete', format('delete from public.accounts where id = %s', test.q('A')), '42501', '42501'),
  ('accounts', 'change of plan', 'update public.accounts set plan = ''superyacht''', '42501', '42501'),
  ('accounts', 'foreign select', format('select from public.accounts where id = %s', test.q('B')), '0', '0'),
  ('accounts', 'foreign update', format('update public.accounts set name = ''mine'' where id = %s', test.q('B')), '0', '0'),
  ('account_members', 'foreign select', format('select from public.account_members where account_id = %s', test.q('B')), '0', '0'),
  ('account_members', 'foreign insert', format('insert into public.account_members (account_id, invited_email) values (%s, ''x@y.com'')', test.q('B')), '42501', '42501'),
  ('account_members', 'foreign update', format('update public.account_members set name = ''x'' where account_id = %s', test.q('B')), '0', '0'),
  ('account_members', 'foreign delete', format('delete from public.account_members where account_id = %s', test.q('B')), '0', '0'),
  ('storage.buckets', 'select', 'select from storage.buckets', '0', '0'),
  ('storage.buckets', 'insert', 'insert into storage.buckets (id, name) values (''mine'', ''mine'')', '42501', '42501'),
  ('storage.buckets', 'update', 'update storage.buckets set public = true', '0', '0')) attempts (subject, operation, statement, inside, others)
union all values
  ('accounts', 'update', 'update public.accounts set name = ''x''', '1', '0', '0'),
  ('account_members', 'insert', format('insert into public.account_members (account_id, invited_email) values (%s, ''x@y.com'')', test.q('A')), '1', '42501', '42501'),
  ('account_members', 'update', format('update public.account_members set name = ''x'' where user_id = %s', test.p('inactive')), '1', '0', '0'),
  ('account_members', 'delete', format('delete from public.account_members where user_id = %s', test.p('inactive')), '1', '0', '0');
-- What the triggers alone write, and what nobody empties.
insert into test.attempts
select subject, operation, statement, '42501', '42501', '42501' from (values
  ('deleted_records', 'record_id', 'gen_random_uuid()'), ('account_changes', 'version', '1000000')) subjects (subject, field, value),
  lateral (values
    ('insert', format('insert into public.%s (account_id, table_name, %s) values (%s, ''vessels'', %s)', subject, field, test.q('A'), value)),
    ('foreign insert', format('insert into public.%s (account_id, table_name, %s) values (%s, ''vessels'', %s)', subject, field, test.q('B'), value)),
    ('update', format('update public.%s set %s = %2$s', subject, field)),
    ('delete', format('delete from public.%s', subject))) attempts (operation, statement)
union all
select subject, 'truncate', format('truncate public.%s cascade', subject), '42501', '42501', '42501'
from unnest(array['accounts', 'account_members', 'user_settings', 'crew_board_acknowledgments', 'deleted_records', 'account_changes']) subject;
select test.outcomes();

-- The time of an acknowledgment is the server's, and of two the first one's.
create function test.acknowledged_at(who text, post text) returns timestamptz language plpgsql as $$
begin
  perform test.become(who);
  insert into public.crew_board_acknowledgments (post_id, account_id, acknowledged_at) values (test.thing(post), test.thing('A'), '2020-01-01')
  on conflict (post_id, user_id) do update set account_id = excluded.account_id;
  perform test.become('postgres');
  return (select acknowledged_at from public.crew_board_acknowledgments where post_id = test.thing(post) and user_id = test.person(who));
end
$$;
select is(test.acknowledged_at('viewer', 'another post'), now(), 'an acknowledgment is not dated back'),
       is(test.acknowledged_at('viewer', 'A crew_board_posts'), '2026-05-01T08:00:00Z', 'one that comes twice keeps its time');

select * from finish();
rollback;
