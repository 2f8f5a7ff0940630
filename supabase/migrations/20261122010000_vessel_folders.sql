-- Whose folder an identifier names. A file's path begins with the identifier of an account or of a vessel, and a vessel's is
-- chosen by the client: one that carried the identifier of another account would open that account's files. An identifier
-- belongs to the account that used it first, also after the vessel is gone, for as long as there is the account.

create table if not exists private.folder_owners (
  id uuid primary key,
  account_id uuid not null references public.accounts (id) on delete cascade
);
create index if not exists folder_owners_account_idx on private.folder_owners (account_id, id);
alter table private.folder_owners enable row level security;
revoke all on private.folder_owners from anon, authenticated, public;

-- The argument names the column that holds the account. Two who take one identifier at once wait for each other at the key.
create or replace function private.take_folder() returns trigger
language plpgsql security definer set search_path = '' as $$
declare
  account constant uuid := to_jsonb(new) ->> tg_argv[0];
begin
  insert into private.folder_owners (id, account_id) values (new.id, account) on conflict (id) do nothing;
  if account is distinct from (select account_id from private.folder_owners where id = new.id) then
    raise exception 'This identifier was given to something else already.'
      using errcode = '23505', hint = 'Add the record anew, so that it gets an identifier of its own.';
  end if;
  return null;
end
$$;

-- After the row, when policies have judged it: an upsert of a vessel that is there does not come here.
drop trigger if exists take_folder on public.accounts;
create trigger take_folder after insert on public.accounts
  for each row execute function private.take_folder('id');
drop trigger if exists take_folder on public.vessels;
create trigger take_folder after insert on public.vessels
  for each row execute function private.take_folder('account_id');

-- What is there: accounts first, so that a vessel which took one's identifier loses its folder, not the account.
insert into private.folder_owners (id, account_id) select id, id from public.accounts on conflict (id) do nothing;
insert into private.folder_owners (id, account_id) select id, account_id from public.vessels on conflict (id) do nothing;
insert into private.folder_owners (id, account_id)
select record_id, account_id from public.deleted_records where table_name = 'vessels' order by deleted_at, account_id
on conflict (id) do nothing;

create or replace function private.folders(writing boolean) returns setof text
language sql stable security definer set search_path = '' as $$
  select b.bucket_id || '/' || f.id
  from private.buckets b
  cross join lateral (
    select private.accounts_to_read(variadic b.modules) as account where not writing
    union all
    select private.accounts_to_write(variadic b.modules) where writing
  ) a
  join private.folder_owners f on f.account_id = a.account
$$;

revoke execute on function private.take_folder(), private.folders(boolean) from public;

-- A name with an empty part, "." or ".." is shown to be in one folder and may lead to another where the files themselves lie.
alter policy thalvorn_select on storage.objects
  using (name !~ '(^|/)\.{0,2}(/|$)'
    and bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(false))));
alter policy thalvorn_insert on storage.objects
  with check (name !~ '(^|/)\.{0,2}(/|$)'
    and bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
alter policy thalvorn_update on storage.objects
  using (name !~ '(^|/)\.{0,2}(/|$)'
    and bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))))
  with check (name !~ '(^|/)\.{0,2}(/|$)'
    and bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
alter policy thalvorn_delete on storage.objects
  using (name !~ '(^|/)\.{0,2}(/|$)'
    and bucket_id || '/' || (storage.foldername(name))[1] = any (array (select private.folders(true))));
