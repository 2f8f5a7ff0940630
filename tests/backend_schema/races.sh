#!/usr/bin/env bash
# What two people do to the same rows at the same moment: the first one's transaction is open while the second one's statement
# arrives, waits, and goes on when the first has committed.
#   races.sh CHECKOUT
# shellcheck source=tests/backend_schema/cluster.sh
. "$(dirname "$0")/cluster.sh" "$1"
start_cluster "${@:2}"
quiet=(psql -X -q -A -t -v VERBOSITY=terse)

account=a0000000-0000-4000-8000-000000000001
vessel=b0000000-0000-4000-8000-000000000001
task=c0000000-0000-4000-8000-000000000001
owner=d0000000-0000-4000-8000-000000000001
newcomer=d0000000-0000-4000-8000-000000000002
member=e0000000-0000-4000-8000-000000000001
post=f0000000-0000-4000-8000-000000000001
mate=d0000000-0000-4000-8000-000000000003
"${quiet[@]}" -v ON_ERROR_STOP=1 <<SQL
insert into auth.users (id, email, email_confirmed_at) values ('$owner', 'owner@example.com', now()), ('$newcomer', 'newcomer@example.com', now()),
  ('$mate', 'mate@example.com', now());
insert into public.accounts (id, name, plan) values ('$account', 'A', 'captain');
insert into public.account_members (account_id, user_id, name, role, is_owner) values ('$account', '$owner', 'Owner', 'admin', true);
insert into public.vessels (id, user_id, account_id) values ('$vessel', '$owner', '$account');
insert into public.account_members (id, account_id, invited_email) values ('$member', '$account', 'one@example.com');
insert into public.crew_board_posts (id, user_id, account_id) values ('$post', '$owner', '$account');
SQL

# A request of this person, until the session ends.
as() {
  printf "set role authenticated; set application_name = '%s'; set request.jwt.claims = '{\"sub\": \"%s\", \"role\": \"authenticated\"}';\n" "$2" "$1"
}

failed=0
# race WHAT PERSON FIRST SECOND QUESTION ANSWER: runs FIRST and SECOND against each other; ANSWER is what SECOND printed, then what
# QUESTION says afterwards, on one line.
race() {
  local what=$1 person=$2 first=$3 second=$4 question=$5 answer=$6 outcome
  coproc FIRST { "${quiet[@]}" 2>&1; }
  local first_process=$FIRST_PID first_out=${FIRST[0]} first_in=${FIRST[1]}
  { as "$person" first; printf 'begin;\n%s;\n\\echo ready\n' "$first"; } >&"$first_in"
  while read -r line <&"$first_out" && [ "$line" != ready ]; do :; done
  { as "$person" second; printf '%s;\n' "$second"; } | "${quiet[@]}" >"$scratch/second" 2>&1 &
  local second_process=$!
  # The wait ends with an error when the second never comes to wait for the first.
  "${quiet[@]}" -v ON_ERROR_STOP=1 -c "set statement_timeout = '30s'" -c "do \$\$ begin
    while not exists (select from pg_stat_activity where application_name = 'second' and wait_event_type = 'Lock') loop
      perform pg_stat_clear_snapshot();
    end loop; end \$\$" || failed=1
  printf 'commit;\n\\q\n' >&"$first_in"
  wait "$second_process" || true
  wait "$first_process" || true
  outcome=$(sed 's/ *$//' "$scratch/second" | tr '\n' ' ')$("${quiet[@]}" -c "$question" | tr '\n' ' ')
  if [ "${outcome% }" = "$answer" ]; then
    echo "ok: $what"
  else
    printf 'FAILED: %s\n  have: %s\n  want: %s\n' "$what" "$outcome" "$answer"
    failed=1
  fi
}
upsert() {
  printf "insert into public.maintenance_tasks (id, account_id, vessel_id, title, seen_version) values ('%s', '%s', '%s', '%s', %s)
    on conflict (id) do update set title = excluded.title, seen_version = excluded.seen_version returning title" "$task" "$account" "$vessel" "$1" "$2"
}

race 'one of two new rows with one identifier the later is an update' "$owner" "$(upsert First null)" "$(upsert Second null)" \
  'select title, seen_version is null from public.maintenance_tasks' 'Second Second|t'
seen=$("${quiet[@]}" -c 'select server_version from public.maintenance_tasks')
race 'of two edits of the same version the first stands' "$owner" "$(upsert First "$seen")" "$(upsert Second "$seen")" \
  'select title from public.maintenance_tasks' 'First'
race 'an edit does not undo a deletion under way' "$owner" "delete from public.maintenance_tasks where id = '$task'" "$(upsert Late null)" \
  'select count(*) from public.maintenance_tasks union all select count(*) from public.deleted_records' 'Late 0 1'
race 'two invitations do not share the last seat' "$owner" "select public.invite_team_member('two@example.com', 'Two', 'editor')" \
  "select public.invite_team_member('three@example.com', 'Three', 'editor')" 'select count(*) from public.account_members' \
  'ERROR:  3 of 3 seats on your plan. Add a seat to invite another user. 3'
race 'one person gets one account' "$newcomer" 'select public.bootstrap_own_account()' \
  "select public.bootstrap_own_account() ->> 'accountId' is not null" "select count(*) from public.account_members where user_id = '$newcomer'" 't 1'
race 'nobody slips in by the identifier of a member who is being removed' "$owner" \
  "delete from public.account_members where id = '$member'" \
  "insert into public.account_members (id, account_id, user_id, role) values ('$member', '$account', '$newcomer', 'admin')" \
  "select count(*) from public.account_members where account_id = '$account'" \
  'ERROR:  A member joins by an invitation to an e-mail address. 2'
race 'no acknowledgment outlives its post' "$owner" "delete from public.crew_board_posts where id = '$post'" \
  "insert into public.crew_board_acknowledgments (post_id, account_id) values ('$post', '$account')" \
  'select count(*) from public.crew_board_acknowledgments' '0'
# By now there is a seat for him.
"${quiet[@]}" -v ON_ERROR_STOP=1 -c "insert into public.account_members (account_id, user_id, role, module_overrides)
  values ('$account', '$mate', 'editor', '{\"guests\": \"hidden\"}')"
race 'a guest who is just being added stays with her vessel' "$mate" \
  "set local request.jwt.claims = '{\"sub\": \"$owner\", \"role\": \"authenticated\"}';
   insert into public.guest_profiles (id, account_id, vessel_id) values (gen_random_uuid(), '$account', '$vessel')" \
  "delete from public.vessels where id = '$vessel'" 'select count(*) from public.vessels union all select count(*) from public.guest_profiles' \
  'ERROR:  Records that you may not change would be deleted with this vessel. 1 1'
exit "$failed"
