-- Memberships: an insert is judged also while the row of its identifier is being deleted, overrides hold words and nothing
-- else, and the procedures agree on which account is meant and tell when nobody was invited.

-- Whether this is an upsert of a member that is there. Waits for whoever is deleting the row, and holds it until the update.
create or replace function private.is_member_row(member uuid) returns boolean
language plpgsql volatile security definer set search_path = '' as $$
begin
  perform from public.account_members where id = member for update;
  return found;
end
$$;

-- A client reads overrides as texts and sets a row aside that has anything else there.
create or replace function private.check_overrides() returns trigger
language plpgsql set search_path = '' as $$
begin
  if exists (select from jsonb_each(new.module_overrides) entry where jsonb_typeof(entry.value) <> 'string') then
    raise exception 'What a member may do in a module is told by a word, such as "readOnly".' using errcode = '22023';
  end if;
  return new;
end
$$;
-- An override of another kind has taken writing all along; null was none.
update public.account_members set module_overrides = (
  select coalesce(jsonb_object_agg(entry.key, case jsonb_typeof(entry.value) when 'string' then entry.value else '"readOnly"' end), '{}')
  from jsonb_each(module_overrides) entry where jsonb_typeof(entry.value) <> 'null')
where exists (select from jsonb_each(module_overrides) entry where jsonb_typeof(entry.value) <> 'string');
-- What is no object at all is left to the table's own constraint.
drop trigger if exists overrides on public.account_members;
create trigger overrides before insert or update of module_overrides on public.account_members
  for each row when (jsonb_typeof(new.module_overrides) = 'object') execute function private.check_overrides();

-- Where a person is in several accounts and none is named, all procedures mean the same: his own, else the newest.
create or replace function public.bootstrap_own_account() returns json
language plpgsql security definer set search_path = '' as $$
declare
  person uuid := private.require_user();
  account uuid;
  called text;
begin
  perform pg_advisory_xact_lock(hashtextextended('membership of ' || person, 0));
  select account_id into account from public.account_members where user_id = person and is_active
  order by is_owner desc, created_at desc, id limit 1;
  if account is null then
    if exists (select from public.account_members where user_id = person) then
      raise exception 'Your access has been switched off. Ask the owner of the account.' using errcode = '42501';
    end if;
    select coalesce(nullif(btrim(raw_user_meta_data ->> 'name'), ''), split_part(email, '@', 1), '') into called
    from auth.users where id = person;
    insert into public.accounts (name) values (called) returning id into account;
    insert into public.account_members (account_id, user_id, name, role, is_owner)
    values (account, person, called, 'admin', true);
  end if;
  return json_build_object('accountId', account);
end
$$;

-- A pending membership for an address, as its row. An address that was invited before keeps its row, which takes the new name
-- and role. A member whose access was switched off is let in again with that role, when a seat is free; one who is active is
-- told of, so that nobody believes to have changed him. A role that only a newer program knows is kept as it is: until this
-- schema knows it, it reads and does no more.
create or replace function public.invite_team_member(p_email text, p_name text, p_role text, p_account_id uuid default null)
returns public.account_members
language plpgsql security definer set search_path = '' as $$
declare
  person uuid := private.require_user();
  address text := lower(btrim(p_email));
  called text := nullif(btrim(p_name), '');
  account uuid;
  member public.account_members;
begin
  select m.account_id into account from public.account_members m
  where m.user_id = person and m.account_id in (select private.accounts_to_administer(true))
    and m.account_id = coalesce(p_account_id, m.account_id)
  order by m.is_owner desc, m.created_at desc, m.id limit 1;
  if account is null then
    raise exception 'Only an administrator of the account can invite.' using errcode = '42501';
  end if;
  if address is null or address !~ '^[^@[:space:]]+@[^@[:space:]]+$' or length(address) > 254 then
    raise exception 'This is not an e-mail address.' using errcode = '22023';
  end if;
  if p_role is null or p_role !~ '^[A-Za-z][A-Za-z0-9]{0,39}$' or lower(p_role) = 'owner' then
    raise exception 'There is no role named %.', coalesce(p_role, 'null') using errcode = '22023';
  end if;

  perform from public.accounts where id = account for no key update;
  select m.* into member from public.account_members m left join auth.users u on u.id = m.user_id
  where m.account_id = account and (lower(m.invited_email) = address or lower(u.email) = address)
  order by m.user_id is null limit 1;
  if member.id is null then
    insert into public.account_members (account_id, invited_email, name, role)
    values (account, address, coalesce(called, split_part(address, '@', 1)), p_role)
    returning * into member;
  elsif member.user_id is not null and (member.is_active or member.is_owner) then
    raise exception '% is a member of this account already.', coalesce(nullif(member.name, ''), address)
      using hint = 'Roles and access are changed in the list of members.';
  else
    update public.account_members set name = coalesce(called, name), role = p_role, is_active = true
    where id = member.id returning * into member;
  end if;
  return member;
end
$$;

revoke execute on function private.check_overrides() from public;
