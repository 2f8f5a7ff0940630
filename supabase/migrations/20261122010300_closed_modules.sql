-- What a member may not write he may not get rid of either: by a text read in two ways, by deleting the record it stands in,
-- with a vessel, or in the history of conflicts.

-- Registers that the caller may not write though he is an active member, as "account/table". hidden_registers() are among them.
create or replace function private.closed_registers() returns setof text
language sql stable security definer set search_path = '' as $$
  select m.account_id || '/' || r.table_name
  from public.account_members m
  join private.registers r on coalesce(m.module_overrides ->> r.module, 'inherit') <> 'inherit'
  where m.user_id = (select auth.uid()) and m.is_active
$$;

-- Crew members -----------------------------------------------------------------------------------------------------------

-- Whether an object in this document has a key twice; readers differ in which of the two they take.
create or replace function private.repeats_key(document json) returns boolean
language plpgsql immutable set search_path = '' as $$
begin
  case json_typeof(document)
    when 'object' then
      return exists (select from json_each(document) entry group by entry.key having count(*) > 1)
        or exists (select from json_each(document) entry where private.repeats_key(entry.value));
    when 'array' then
      return exists (select from json_array_elements(document) entry where private.repeats_key(entry.value));
    else
      return false;
  end case;
end
$$;

-- The JSON in a text without its nulls, or null when there is none that everybody reads alike.
create or replace function private.json_of(document text) returns jsonb
language plpgsql immutable set search_path = '' as $$
begin
  return case when not private.repeats_key(document::json) then jsonb_strip_nulls(document::jsonb) end;
exception when others then
  return null;
end
$$;

-- The parts that a crew row holds, by their names in module_overrides.
create or replace function private.crew_parts(certifications text, extended text) returns text[]
language sql immutable set search_path = '' as $$
  select private.changed_crew_parts('[]', certifications, '{}', extended)
$$;

-- A new row brings its parts and a deleted one takes them away; rows that go with their vessel are judged there. Runs after the
-- row was written, so that an upsert is judged as the insert or the update that it became.
create or replace function private.guard_crew_parts() returns trigger
language plpgsql set search_path = '' as $$
declare
  parts text[];
  part text;
begin
  if current_user = 'authenticated' then
    parts := case tg_op
      when 'INSERT' then private.crew_parts(new.certifications_json, new.extended_json)
      when 'DELETE' then private.crew_parts(old.certifications_json, old.extended_json)
      else private.changed_crew_parts(old.certifications_json, new.certifications_json, old.extended_json, new.extended_json)
    end;
    foreach part in array parts loop
      if coalesce(new.account_id, old.account_id) not in (select private.accounts_to_write(part)) then
        raise exception 'You may not change % of the crew.', case part
          when 'crewCerts' then 'the certifications' when 'crewLeave' then 'the leave' else 'the travel documents' end
          using errcode = '42501';
      end if;
    end loop;
  end if;
  return null;
end
$$;
drop trigger if exists crew_parts on public.crew_members;
create trigger crew_parts after insert or update or delete on public.crew_members
  for each row execute function private.guard_crew_parts();

-- What a deleted crew member held is not known any more. Who may not write all of it takes back what he deleted himself, and
-- leaves what others deleted to those who may.
create or replace function public.undelete_records(p_account_id uuid, p_table_name text, p_record_ids uuid[]) returns integer
language plpgsql security definer set search_path = '' as $$
declare
  register private.registers;
  others_too boolean := true;
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
  if p_table_name = 'crew_members' then
    others_too := p_account_id in (select private.accounts_to_write('crewCerts', 'crewLeave', 'crewDocs'));
  end if;
  delete from public.deleted_records
  where account_id = p_account_id and table_name = p_table_name and record_id = any (p_record_ids)
    and (others_too or deleted_by = auth.uid());
  get diagnostics taken_back = row_count;
  return taken_back;
end
$$;

-- Vessels ----------------------------------------------------------------------------------------------------------------

-- Whether something would go with a vessel that the caller may not write. No register is read for who has no exceptions.
create or replace function private.holds_closed_records(account uuid, vessel uuid) returns boolean
language plpgsql stable security definer set search_path = '' as $$
declare
  register text;
  held boolean;
begin
  for register in
    select r.table_name from private.registers r
    where account || '/' || r.table_name = any (array (select private.closed_registers()))
      and exists (select from pg_catalog.pg_constraint c
                  where c.contype = 'f' and c.confrelid = 'public.vessels'::regclass and c.confdeltype = 'c'
                    and c.conrelid = format('public.%I', r.table_name)::regclass)
  loop
    execute format('select exists (select from public.%I where account_id = $1 and vessel_id = $2)', register)
      into held using account, vessel;
    if held then
      return true;
    end if;
  end loop;
  if account in (select private.accounts_to_write('crewCerts', 'crewLeave', 'crewDocs')) then
    return false;
  end if;
  return exists (
    select from public.crew_members c cross join unnest(private.crew_parts(c.certifications_json, c.extended_json)) part
    where c.account_id = account and c.vessel_id = vessel and account not in (select private.accounts_to_write(part)));
end
$$;

-- The vessel is locked when this runs, so nothing more comes to hang on her until she is gone.
create or replace function private.guard_vessel_deletion() returns trigger
language plpgsql set search_path = '' as $$
begin
  if current_user = 'authenticated' and private.holds_closed_records(old.account_id, old.id) then
    raise exception 'Records that you may not change would be deleted with this vessel.'
      using errcode = '42501', hint = 'Ask an administrator of the account to delete it.';
  end if;
  return old;
end
$$;
drop trigger if exists guard_deletion on public.vessels;
create trigger guard_deletion before delete on public.vessels
  for each row execute function private.guard_vessel_deletion();

revoke execute on function private.closed_registers(), private.repeats_key(json), private.crew_parts(text, text),
  private.holds_closed_records(uuid, uuid), private.guard_vessel_deletion() from public;
grant execute on function private.closed_registers(), private.repeats_key(json), private.crew_parts(text, text),
  private.holds_closed_records(uuid, uuid) to authenticated, service_role;

-- The history of conflicts --------------------------------------------------------------------------------------------------

-- A note is written by those who may write the record, and read by all who may read it.
alter policy member_insert on public.conflict_notes
  with check (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.closed_registers())));
alter policy member_update on public.conflict_notes
  using (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.closed_registers())))
  with check (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.closed_registers())));
alter policy member_delete on public.conflict_notes
  using (account_id = any (array (select private.accounts_to_write()))
    and account_id || '/' || table_name <> all (array (select private.closed_registers())));
