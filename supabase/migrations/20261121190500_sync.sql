-- What lets several people work on one fleet without losing anything: versions given by the server, a guard against stale
-- and revived rows, tombstones, and change stamps that tell a client which tables it need not read. A client does without,
-- against a project that has only the migrations before this one: it then reads every table, and the later of two uploads stands.
--
-- Columns of our own on every register:
--   extra_json      fields of the record that have no column, as JSON text; the server never looks inside
--   server_version  given anew at every insert and update; what a client sends is ignored
--   seen_version    sent by a writer: the server_version its row was made from. When the stored row has a higher one, somebody
--                   else wrote meanwhile and the update is skipped: the row stays as it is and the writer reads and merges.
--                   Null (a new record, or a program that does not know the column) is always accepted. Never kept.
-- updated_at stays what the client sent.

create sequence private.row_version;

do $$
declare
  register text;
begin
  for register in select table_name from private.registers union all values ('user_settings') loop
    execute format('alter table public.%I add column extra_json text, add column server_version bigint,
      add column seen_version bigint', register);
    execute format('update public.%I set server_version = nextval(''private.row_version'')', register);
  end loop;
end
$$;

-- The rows that were deleted, kept for good: a yacht may be offline for a season, and its late upsert must not bring a row back.
create table public.deleted_records (
  account_id uuid not null references public.accounts (id) on delete cascade,
  table_name text not null,
  record_id uuid not null,
  deleted_at timestamptz not null default now(),
  deleted_by uuid references auth.users (id) on delete set null,
  primary key (account_id, table_name, record_id)
);
alter table public.deleted_records enable row level security;

-- The version of a table as one account sees it. It grows with every statement that changed a row of the account, and since the
-- row here stays locked until that statement's transaction ends, it never appears before its rows do.
create table public.account_changes (
  account_id uuid not null references public.accounts (id) on delete cascade,
  table_name text not null,
  version bigint not null default 1,
  changed_at timestamptz not null default now(),
  primary key (account_id, table_name)
);
alter table public.account_changes enable row level security;

-- Nothing is noted for an account that is itself being deleted.
create function private.stamp(changed_table text, touched uuid[]) returns void
language sql security definer set search_path = '' as $$
  insert into public.account_changes as stamp (account_id, table_name)
  select id, changed_table from public.accounts where id = any (touched) order by id
  on conflict (account_id, table_name) do update set version = stamp.version + 1, changed_at = now()
$$;

-- Before an insert. An upsert of a live row passes here as well, with what its update will use: only a row that is gone is
-- skipped, and seen_version must stay for the guard below.
create function private.register_before_insert() returns trigger
language plpgsql security definer set search_path = '' as $$
declare
  alive boolean;
begin
  if exists (select from public.deleted_records d
             where d.account_id = new.account_id and d.table_name = tg_table_name and d.record_id = new.id) then
    execute format('select exists (select from public.%I where id = $1)', tg_table_name) into alive using new.id;
    if not alive then
      return null;
    end if;
  end if;
  new.server_version := nextval('private.row_version');
  return new;
end
$$;

create function private.register_before_update() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  if new.seen_version < old.server_version then
    return null;
  end if;
  if new.id <> old.id or new.account_id <> old.account_id then
    raise exception 'A record keeps its identifier and its account.' using errcode = '42501';
  end if;
  new.seen_version := null;
  new.server_version := nextval('private.row_version');
  return new;
end
$$;

-- After an insert. A row whose deletion was under way when the insert began is inserted all the same, since it was alive when
-- the trigger above looked: it goes again here.
create function private.register_after_insert() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  if exists (select from changed c join public.deleted_records d
             on d.account_id = c.account_id and d.table_name = tg_table_name and d.record_id = c.id) then
    execute format('delete from public.%I r using changed c, public.deleted_records d
      where r.id = c.id and d.account_id = c.account_id and d.table_name = $1 and d.record_id = c.id', tg_table_name)
      using tg_table_name;
  end if;
  if exists (select from changed where seen_version is not null) then
    execute format('update public.%I r set seen_version = null from changed c
      where r.id = c.id and c.seen_version is not null', tg_table_name);
  end if;
  perform private.stamp(tg_table_name, array(select distinct account_id from changed));
  return null;
end
$$;

create function private.register_after_update() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  perform private.stamp(tg_table_name, array(select distinct account_id from changed));
  return null;
end
$$;

create function private.register_after_delete() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  insert into public.deleted_records (account_id, table_name, record_id, deleted_by)
  select c.account_id, tg_table_name, c.id, u.id
  from changed c
  join public.accounts a on a.id = c.account_id
  left join auth.users u on u.id = auth.uid()
  on conflict (account_id, table_name, record_id) do nothing;
  perform private.stamp(tg_table_name, array(select distinct account_id from changed));
  return null;
end
$$;

do $$
declare
  register text;
begin
  for register in select table_name from private.registers loop
    execute format('create trigger a_before_insert before insert on public.%I
      for each row execute function private.register_before_insert()', register);
    execute format('create trigger a_before_update before update on public.%I
      for each row execute function private.register_before_update()', register);
    execute format('create trigger after_insert after insert on public.%I referencing new table as changed
      for each statement execute function private.register_after_insert()', register);
    execute format('create trigger after_update after update on public.%I referencing new table as changed
      for each statement execute function private.register_after_update()', register);
    execute format('create trigger after_delete after delete on public.%I referencing old table as changed
      for each statement execute function private.register_after_delete()', register);
  end loop;
end
$$;

-- Settings belong to a person: no tombstones, and the stamp goes to every account he is a member of.
create function private.settings_before_write() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  if tg_op = 'UPDATE' then
    if new.seen_version < old.server_version then
      return null;
    end if;
    new.seen_version := null;
  end if;
  new.server_version := nextval('private.row_version');
  return new;
end
$$;

create function private.settings_after_write() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  if tg_op = 'INSERT' and exists (select from changed where seen_version is not null) then
    update public.user_settings s set seen_version = null from changed c
    where s.user_id = c.user_id and c.seen_version is not null;
  end if;
  perform private.stamp('user_settings', array(
    select m.account_id from public.account_members m join changed c on c.user_id = m.user_id));
  return null;
end
$$;

create trigger a_before_write before insert or update on public.user_settings
  for each row execute function private.settings_before_write();
create trigger after_insert after insert on public.user_settings referencing new table as changed
  for each statement execute function private.settings_after_write();
create trigger after_update after update on public.user_settings referencing new table as changed
  for each statement execute function private.settings_after_write();

-- Members and acknowledgments are read whole, and only stamped.
create function private.stamp_changed() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  perform private.stamp(tg_table_name, array(select distinct account_id from changed));
  return null;
end
$$;

do $$
declare
  stamped text;
begin
  foreach stamped in array array['account_members', 'crew_board_acknowledgments'] loop
    execute format('create trigger after_insert after insert on public.%I referencing new table as changed
      for each statement execute function private.stamp_changed()', stamped);
    execute format('create trigger after_update after update on public.%I referencing new table as changed
      for each statement execute function private.stamp_changed()', stamped);
    execute format('create trigger after_delete after delete on public.%I referencing old table as changed
      for each statement execute function private.stamp_changed()', stamped);
  end loop;
end
$$;

create function private.stamp_accounts() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  perform private.stamp('accounts', array(select id from changed));
  return null;
end
$$;
create trigger after_update after update on public.accounts referencing new table as changed
  for each statement execute function private.stamp_accounts();

-- Registers whose module is hidden from the caller, as "account/table".
create function private.hidden_registers() returns setof text
language sql stable security definer set search_path = '' as $$
  select m.account_id || '/' || r.table_name
  from public.account_members m join private.registers r on m.module_overrides ->> r.module = 'hidden'
  where m.user_id = (select auth.uid()) and m.is_active
$$;

-- Takes back the tombstones of records of one table, so that they can be inserted again; answers how many there were. The
-- caller needs the right to write the table.
create function public.undelete_records(p_account_id uuid, p_table_name text, p_record_ids uuid[]) returns integer
language plpgsql security definer set search_path = '' as $$
declare
  register private.registers;
  taken_back integer;
begin
  select * into register from private.registers where table_name = p_table_name;
  if register.table_name is null then
    raise exception 'There is no register named %.', p_table_name using errcode = '22023';
  end if;
  if p_account_id is null or p_account_id not in (
    select private.accounts_to_write(variadic array_remove(array[register.module], null))) then
    raise exception 'You may not change this register.' using errcode = '42501';
  end if;
  delete from public.deleted_records
  where account_id = p_account_id and table_name = p_table_name and record_id = any (p_record_ids);
  get diagnostics taken_back = row_count;
  return taken_back;
end
$$;

-- A vessel's folder stays within reach after the vessel is deleted, because its files are removed after its row.
create or replace function private.folders(writing boolean) returns setof text
language sql stable security definer set search_path = '' as $$
  select b.bucket_id || '/' || f.folder
  from private.buckets b
  cross join lateral (
    select private.accounts_to_read(variadic b.modules) as account where not writing
    union all
    select private.accounts_to_write(variadic b.modules) where writing
  ) a
  cross join lateral (
    select a.account::text as folder
    union all
    select v.id::text from public.vessels v where v.account_id = a.account
    union all
    select d.record_id::text from public.deleted_records d where d.account_id = a.account and d.table_name = 'vessels'
  ) f
$$;

revoke all on public.deleted_records, public.account_changes from anon, authenticated, public;
revoke all on sequence private.row_version from anon, authenticated, public;
revoke execute on function public.undelete_records(uuid, text, uuid[]) from anon, public;
revoke execute on all functions in schema private from public;
grant select on public.deleted_records, public.account_changes to authenticated;
grant select, insert, update, delete on public.deleted_records, public.account_changes to service_role;
grant usage on sequence private.row_version to service_role;
grant execute on function public.undelete_records(uuid, text, uuid[]) to authenticated, service_role;
grant execute on function private.hidden_registers() to authenticated, service_role;

create policy member_select on public.account_changes for select to authenticated
  using (account_id = any (array (select private.accounts_to_read())));
create policy member_select on public.deleted_records for select to authenticated
  using (account_id = any (array (select private.accounts_to_read()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())));
