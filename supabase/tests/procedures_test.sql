-- Invitations, seats, claiming, and the first account; each also when it arrives twice.
begin;
\ir support/world.psql
select no_plan();

insert into test.people (who, email) values ('captain', 'captain@example.com'), ('mate', 'mate@example.com'),
  ('cook', 'cook@example.com');
insert into auth.users (id, email, email_confirmed_at)
select id, email, case when who <> 'cook' then now() end from test.people where who in ('captain', 'mate', 'cook');
create function test.seats(account_plan text, additional bigint) returns void language sql security definer as $$
  update public.accounts set plan = account_plan, additional_seats = additional where name = 'captain'
$$;
grant execute on all functions in schema test to public;

-- The first account.
select test.become('captain');
select public.bootstrap_own_account() ->> 'accountId' as c \gset
select is(public.bootstrap_own_account() ->> 'accountId', :'c', 'the first account is made once');
select results_eq('select account_id, name, role, is_owner, is_active, module_overrides, invited_email from public.account_members',
  format($$values (%L::uuid, 'captain', 'admin', true, true, '{}'::jsonb, null::text)$$, :'c'), 'its maker owns it');
select results_eq('select plan, additional_seats from public.accounts', $$values ('none', null::bigint)$$, 'it has no plan');
select is(public.claim_pending_invite()::jsonb, '{"accountId": null, "claimed": false}', 'there is nothing to claim');

-- Seats.
select is(test.refusal('captain', $$select public.invite_team_member('mate@example.com', 'Mate', 'editor')$$),
  '1 of 1 seats on your plan. Add a seat to invite another user.', 'without a plan the owner is alone');
select test.seats('none', 1);
select results_eq($$select account_id, user_id, invited_email, name, role, is_owner, is_active, module_overrides
                    from public.invite_team_member(' Mate@Example.com', 'Mate', 'editor')$$,
  format($$values (%L::uuid, null::uuid, 'mate@example.com', 'Mate', 'editor', false, true, '{}'::jsonb)$$, :'c'), 'an invitation is a pending member');
select is((public.invite_team_member('MATE@example.com', 'First mate', 'viewOnly')).role, 'viewOnly', 'a second one corrects the first');
select results_eq('select name, role from public.account_members where user_id is null', $$values ('First mate', 'viewOnly')$$,
  'and takes no seat more');
select is(test.refusal('captain', $$select public.invite_team_member('cook@example.com', 'Cook', 'editor')$$),
  '2 of 2 seats on your plan. Add a seat to invite another user.', 'an invitation holds a seat');
select is(test.refusal('captain', format($$insert into public.account_members (account_id, invited_email) values (%L, 'cook@example.com')$$, :'c')),
  '2 of 2 seats on your plan. Add a seat to invite another user.', 'there is no way around the seats');
update public.account_members set is_active = false where user_id is null;
select lives_ok($$select public.invite_team_member('cook@example.com', 'Cook', 'editor')$$, 'an inactive member holds none');
select is(test.refusal('captain', $$update public.account_members set is_active = true where invited_email = 'mate@example.com'$$),
  '2 of 2 seats on your plan. Add a seat to invite another user.', 'coming back takes one');
select test.become('postgres');
select is(private.seats_of(plan, more), seats, format('%s with %s has %s seats', plan, more, seats)) from (values
  ('none', null, 1::bigint), ('captain', 0, 3), ('fleet', null, 10), ('superyacht', 2::bigint, 27), ('of next year', null, 1), ('none', -3, 1)) plans (plan, more, seats);
select test.seats('captain', 0);
select test.become('captain');
update public.account_members set is_active = true where invited_email = 'mate@example.com';
select is((select count(*) from public.account_members where is_active), 3::bigint, 'the captain''s plan seats three');

-- What is no invitation.
select is(test.refusal('captain', format('select public.invite_team_member(%L, ''X'', %L)', address, role)), message, message)
from (values ('mate', 'editor', 'This is not an e-mail address.'), ('a b@c.com', 'editor', 'This is not an e-mail address.'),
  (null, 'editor', 'This is not an e-mail address.'), ('x@y.com', 'Owner', 'There is no role named Owner.'), ('x@y.com', 'a b', 'There is no role named a b.'),
  ('x@y.com', null, 'There is no role named null.')) invitations (address, role, message);
select is(test.try(who, $$select public.invite_team_member('x@y.com', 'X', 'viewOnly')$$), outcome, who || ' inviting: ' || outcome)
from (values ('owner', '1'), ('admin', '1'), ('editor', '42501'), ('viewer', '42501'), ('hidden', '42501'), ('readonly', '42501'),
  ('inactive', '42501'), ('newcomer', '42501'), ('anon', '42501')) invitations (who, outcome);
select is(test.try('owner', format($$select public.invite_team_member('x@y.com', 'X', 'viewOnly', %L)$$, test.thing('B'))), '42501',
  'no invitation into another account');
-- Who is in already.
select is(test.refusal('owner', $$select public.invite_team_member('Editor@Example.com', 'Eve', 'admin')$$), 'editor is a member of this account already.',
  'a member is not invited again'),
       is(test.refusal('admin', $$select public.invite_team_member('owner@example.com', 'Me', 'editor')$$), 'owner is a member of this account already.',
  'nor is the owner');
select test.become('owner');
select results_eq($$select user_id, name, role, is_active from public.invite_team_member('inactive@example.com', ' ', 'editor')$$,
  $$select test.person('inactive'), 'inactive', 'editor', true$$, 'who was switched off is let in again');
select is((public.invite_team_member('pilot@example.com', 'Pilot', 'harbourPilot')).role, 'harbourPilot', 'a role of a newer program is kept');
select test.become('postgres');
update public.account_members set is_active = false, role = 'admin' where user_id = test.person('inactive');
update public.accounts set plan = 'none', additional_seats = (select count(*) from public.account_members where account_id = test.thing('A') and is_active) - 1
where id = test.thing('A');
select matches(test.refusal('owner', $$select public.invite_team_member('inactive@example.com', '', 'editor')$$), 'seats on your plan',
  'when there is a seat for him');
update public.account_members set is_owner = false where user_id = test.person('owner');
update public.account_members set is_owner = true, is_active = false where user_id = test.person('admin');
select is(test.refusal('owner', $$select public.invite_team_member('admin@example.com', '', 'viewOnly')$$), 'admin is a member of this account already.',
  'an owner who was switched off is not lowered by an invitation');
update public.account_members set is_owner = false, is_active = true where user_id = test.person('admin');
update public.account_members set is_owner = true where user_id = test.person('owner');
update public.accounts set plan = 'superyacht', additional_seats = null where id = test.thing('A');

-- Claiming.
select test.become('cook');
select is(public.claim_pending_invite()::jsonb, '{"accountId": null, "claimed": false}', 'an unconfirmed address claims nothing');
select test.become('postgres');
update auth.users set email_confirmed_at = now() where id = test.person('cook');
select test.become('cook');
select is(public.claim_pending_invite()::jsonb, jsonb_build_object('accountId', :'c', 'claimed', true), 'the invited person comes in'),
       is(public.claim_pending_invite()::jsonb, jsonb_build_object('accountId', :'c', 'claimed', true), 'and is told so again'),
       is(public.bootstrap_own_account() ->> 'accountId', :'c', 'and gets no account of his own besides');
select results_eq('select user_id, role, is_owner from public.account_members', $$select auth.uid(), 'editor', false$$,
  'with the role he was given');
select results_eq('select user_id, name from public.account_people()', $$select user_id, name from (values
  (test.person('captain'), 'captain'), (test.person('cook'), 'Cook')) people (user_id, name)$$, 'he sees who is there, not who is invited');

-- Two invitations at once: all are taken up, the newest is told, however often he asks.
select test.become('owner');
select (public.invite_team_member('mate@example.com', 'Mate', 'admin')).id as of_a \gset
select test.become('postgres');
update public.account_members set created_at = now() + interval '1 second' where id = :'of_a';
select test.become('mate');
select is(public.claim_pending_invite() ->> 'accountId', test.thing('A')::text, 'the newest invitation'),
       is(public.claim_pending_invite() ->> 'accountId', test.thing('A')::text, 'the same again');
select set_eq('select account_id from public.account_members where user_id = auth.uid()',
  format('values (%L::uuid), (%L::uuid)', test.thing('A'), :'c'), 'a member of both');

-- Where he administers several, he invites into the newest, and into his own if there is one.
select test.become('postgres');
update public.account_members set role = 'admin' where user_id = test.person('mate');
select test.become('mate');
select is((public.invite_team_member('bosun@example.com', 'Bosun', 'editor')).account_id, test.thing('A'), 'an invitation into the newest account'),
       is(public.bootstrap_own_account() ->> 'accountId', test.thing('A')::text, 'it is the one he is led to');
select test.become('postgres');
update public.account_members set created_at = now() - interval '1 day' where user_id = test.person('captain');
insert into public.account_members (account_id, user_id, name, role) values (test.thing('A'), test.person('captain'), 'captain', 'admin');
select test.become('captain');
select is((public.invite_team_member('purser@example.com', 'Purser', 'editor', test.thing('A'))).account_id, test.thing('A'),
          'into the account that is named');
select test.become('postgres');
select matches(test.refusal('captain', $$select public.invite_team_member('stoker@example.com', 'Stoker', 'editor')$$), '^3 of 3 seats',
          'else into his own, which is full');
select test.become('captain');
select is(public.bootstrap_own_account() ->> 'accountId', :'c', 'an owner is led to his own');

-- An invitation to a second address of a member holds no seat once it is found out.
select test.become('captain');
update public.account_members set is_active = false where user_id = test.person('mate');
select test.become('postgres');
update auth.users set email = 'mate2@example.com' where id = test.person('mate');
insert into public.account_members (account_id, invited_email, name) values (test.thing('A'), 'mate2@example.com', 'Mate');
select test.become('mate');
select is(public.claim_pending_invite()::jsonb, '{"accountId": null, "claimed": false}', 'nothing more to claim');
select test.become('postgres');
select is_empty($$select from public.account_members where invited_email = 'mate2@example.com'$$, 'the second invitation is gone');

-- Access that was switched off.
select test.become('inactive');
select throws_ok('select public.bootstrap_own_account()', '42501', 'Your access has been switched off. Ask the owner of the account.', 'no new account for who was switched off');
select test.become('newcomer');
select isnt(public.bootstrap_own_account() ->> 'accountId', null, 'a newcomer gets an account');

-- Without a person behind the token.
select is(test.try('anon', format('select public.%s()', procedure)), '42501', procedure || ' needs a person')
from unnest(array['claim_pending_invite', 'bootstrap_own_account', 'account_people']) procedure;
select set_config('request.jwt.claims', '{"sub": "00000000-0000-4000-8000-00000000dead", "role": "authenticated"}', true),
       set_config('role', 'authenticated', true);
select throws_ok(format('select public.%s()', procedure), '42501', 'Sign in first.', procedure || ' knows the deleted')
from unnest(array['claim_pending_invite', 'bootstrap_own_account']) procedure;

select test.become('postgres');
select * from finish();
rollback;
