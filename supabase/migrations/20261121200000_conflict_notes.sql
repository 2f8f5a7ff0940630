-- What was not taken when two people changed one record at the same time: written by the program that brought the two
-- together, seen by everybody who may see the record, and kept after the record is gone.
create table public.conflict_notes (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid,
  table_name text not null default '',
  record_id uuid not null,
  record_name text not null default '',
  fields_json text not null default '[]',
  deleted boolean not null default false,
  kept_by text not null default '',    -- user id as text: a person may be gone, what he wrote stays told
  kept_at timestamptz not null,
  other_by text not null default '',
  other_at timestamptz not null,
  other text not null default '',            -- the whole record, as JSON
  settled boolean not null default false,
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now(),
  extra_json text,
  server_version bigint,
  seen_version bigint
);
create index conflict_notes_account_id_idx on public.conflict_notes (account_id, created_at desc, id);
create index conflict_notes_user_id_idx on public.conflict_notes (user_id);
alter table public.conflict_notes enable row level security;
insert into private.registers (table_name, module) values ('conflict_notes', null);

create trigger a_before_insert before insert on public.conflict_notes
  for each row execute function private.register_before_insert();
create trigger a_before_update before update on public.conflict_notes
  for each row execute function private.register_before_update();
create trigger after_insert after insert on public.conflict_notes referencing new table as changed
  for each statement execute function private.register_after_insert();
create trigger after_update after update on public.conflict_notes referencing new table as changed
  for each statement execute function private.register_after_update();
create trigger after_delete after delete on public.conflict_notes referencing old table as changed
  for each statement execute function private.register_after_delete();

-- A note holds a whole record, so it is hidden with the record's module.
revoke all on public.conflict_notes from anon, authenticated, public;
grant select, insert, update, delete on public.conflict_notes to authenticated, service_role;
create policy member_select on public.conflict_notes for select to authenticated
  using (account_id = any (array (select private.accounts_to_read()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())));
create policy member_insert on public.conflict_notes for insert to authenticated
  with check (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())));
create policy member_update on public.conflict_notes for update to authenticated
  using (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())))
  with check (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())));
create policy member_delete on public.conflict_notes for delete to authenticated
  using (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.hidden_registers())));
