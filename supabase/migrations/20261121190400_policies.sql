-- Who may do what. Grants first: nothing for anon, so that a request without a user's token fails instead of answering with
-- an empty list that a client could take for "all deleted". Policies last, as they hold up the other services until commit.

revoke all on all tables in schema public from anon, authenticated, public;
revoke all on all functions in schema public from anon, public;
revoke all on all sequences in schema public from anon, authenticated, public;
revoke all on all tables in schema private from anon, authenticated, public;

grant select, insert, update, delete on all tables in schema public to service_role;
grant select on public.accounts to authenticated;
grant update (name, updated_at) on public.accounts to authenticated;  -- plan and seats are bought, not set
grant select, insert, update, delete on public.account_members, public.user_settings to authenticated;
grant select, insert, delete on public.crew_board_acknowledgments to authenticated;
-- An acknowledgment that arrives twice is an upsert, which needs the right to update the columns it names.
grant update (post_id, user_id, account_id) on public.crew_board_acknowledgments to authenticated;
grant execute on function public.claim_pending_invite(), public.bootstrap_own_account(),
  public.invite_team_member(text, text, text, uuid), public.account_people() to authenticated, service_role;

-- Registers: read by every active member from whom the module is not hidden, written by admins and editors without an
-- exception for it.
do $$
declare
  register record;
  readable text;
  writable text;
begin
  for register in select table_name, coalesce(quote_literal(module), '') as module from private.registers loop
    execute format('grant select, insert, update, delete on public.%I to authenticated', register.table_name);
    readable := format('account_id = any (array (select private.accounts_to_read(%s)))', register.module);
    writable := format('account_id = any (array (select private.accounts_to_write(%s)))', register.module);
    execute format('create policy member_select on public.%I for select to authenticated using (%s)',
                   register.table_name, readable);
    execute format('create policy member_insert on public.%I for insert to authenticated with check (%s)',
                   register.table_name, writable);
    execute format('create policy member_update on public.%I for update to authenticated using (%s) with check (%s)',
                   register.table_name, writable, writable);
    execute format('create policy member_delete on public.%I for delete to authenticated using (%s)',
                   register.table_name, writable);
  end loop;
end
$$;

create policy member_select on public.accounts for select to authenticated
  using (id = any (array (select private.accounts_to_read('admin'))));
create policy admin_update on public.accounts for update to authenticated
  using (id = any (array (select private.accounts_to_administer(true))))
  with check (id = any (array (select private.accounts_to_administer(true))));

-- Everybody finds his own membership; the others', and invitations, are for those who administer the account.
create policy member_select on public.account_members for select to authenticated
  using (user_id = (select auth.uid()) and is_active
    or account_id = any (array (select private.accounts_to_administer(false))));
create policy admin_insert on public.account_members for insert to authenticated
  with check (account_id = any (array (select private.accounts_to_administer(true))));
create policy admin_update on public.account_members for update to authenticated
  using (account_id = any (array (select private.accounts_to_administer(true))))
  with check (account_id = any (array (select private.accounts_to_administer(true))));
create policy admin_delete on public.account_members for delete to authenticated
  using (account_id = any (array (select private.accounts_to_administer(true))));

-- Own settings, while there is an account to use them in.
create policy own_select on public.user_settings for select to authenticated
  using (user_id = (select auth.uid()) and exists (select private.accounts_to_read()));
create policy own_insert on public.user_settings for insert to authenticated
  with check (user_id = (select auth.uid()) and exists (select private.accounts_to_read()));
create policy own_update on public.user_settings for update to authenticated
  using (user_id = (select auth.uid()) and exists (select private.accounts_to_read()))
  with check (user_id = (select auth.uid()) and exists (select private.accounts_to_read()));
create policy own_delete on public.user_settings for delete to authenticated
  using (user_id = (select auth.uid()) and exists (select private.accounts_to_read()));

create policy member_select on public.crew_board_acknowledgments for select to authenticated
  using (account_id = any (array (select private.accounts_to_read())));
create policy own_insert on public.crew_board_acknowledgments for insert to authenticated
  with check (user_id = (select auth.uid()) and account_id = any (array (select private.accounts_to_read())));
create policy own_update on public.crew_board_acknowledgments for update to authenticated
  using (user_id = (select auth.uid()) and account_id = any (array (select private.accounts_to_read())))
  with check (user_id = (select auth.uid()) and account_id = any (array (select private.accounts_to_read())));
create policy own_delete on public.crew_board_acknowledgments for delete to authenticated
  using (user_id = (select auth.uid()) and account_id = any (array (select private.accounts_to_read())));

create policy thalvorn_select on storage.objects for select to authenticated
  using (bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(false))));
create policy thalvorn_insert on storage.objects for insert to authenticated
  with check (bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
create policy thalvorn_update on storage.objects for update to authenticated
  using (bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))))
  with check (bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
create policy thalvorn_delete on storage.objects for delete to authenticated
  using (bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
