-- How people come into an account and what nobody may do to a membership: the rules that policies cannot see, because they
-- compare a row with what it was.

-- Refuses when no seat is free for one more active member. Locks the account's row, so that two invitations at once count
-- each other; references from other tables to the account are not held up.
create function private.take_seat(account uuid, member uuid) returns void
language plpgsql security definer set search_path = '' as $$
declare
  seats bigint;
  taken bigint;
begin
  select private.seats_of(plan, additional_seats) into seats from public.accounts where id = account for no key update;
  select count(*) into taken from public.account_members where account_id = account and is_active and id <> member;
  if taken >= seats then
    raise exception '% of % seats on your plan. Add a seat to invite another user.', taken, seats
      using hint = 'Deactivating or removing a member frees a seat.';
  end if;
end
$$;

create function private.is_member_row(member uuid) returns boolean
language sql stable security definer set search_path = '' as $$
  select exists (select from public.account_members where id = member)
$$;

-- `current_user` is the API's role for what a person does himself, and the owner of the procedures inside them: the latter,
-- cascades and the service role are bound by seats only.
create function private.guard_member() returns trigger
language plpgsql set search_path = '' as $$
declare
  by_person boolean := current_user = 'authenticated';
begin
  if tg_op = 'DELETE' then
    if by_person and old.is_owner then
      raise exception 'The owner cannot be removed from the account.' using errcode = '42501';
    end if;
    return old;
  end if;

  new.invited_email := nullif(lower(btrim(new.invited_email)), '');
  if tg_op = 'INSERT' then
    if private.is_member_row(new.id) then
      return new;                      -- an upsert: the update that follows is judged
    end if;
    if by_person and (new.user_id is not null or new.is_owner or new.invited_email is null) then
      raise exception 'A member joins by an invitation to an e-mail address.' using errcode = '42501';
    end if;
    if new.is_active then
      perform private.take_seat(new.account_id, new.id);
    end if;
    return new;
  end if;

  if by_person then
    new.created_at := old.created_at;
    if (new.id, new.account_id, new.is_owner) <> (old.id, old.account_id, old.is_owner) or new.user_id is distinct from old.user_id then
      raise exception 'A membership keeps its account, its person and its owner.' using errcode = '42501';
    end if;
    if old.user_id is not null and new.invited_email is distinct from old.invited_email then
      raise exception 'The address of an invitation that was taken up cannot be changed.' using errcode = '42501';
    end if;
    if (new.role, new.is_active, new.module_overrides) <> (old.role, old.is_active, old.module_overrides) then
      if old.is_owner then
        raise exception 'The rights of the account''s owner cannot be changed.' using errcode = '42501';
      elsif old.user_id = auth.uid() then
        raise exception 'You cannot change your own rights.' using errcode = '42501';
      end if;
    end if;
  end if;
  if new.is_active and not old.is_active then
    perform private.take_seat(new.account_id, new.id);
  end if;
  return new;
end
$$;
create trigger guard_member before insert or update or delete on public.account_members
  for each row execute function private.guard_member();

-- A person who is deleted leaves his records to the account's owner. An owner stays until his account is deleted.
create function private.hand_over_records() returns trigger
language plpgsql security definer set search_path = '' as $$
declare
  register text;
begin
  if exists (select from public.account_members where user_id = old.id and is_owner) then
    raise exception 'This person owns an account; delete the account first.' using errcode = '23503';
  end if;
  for register in select table_name from private.registers loop
    execute format('update public.%I r set user_id = o.user_id from public.account_members o
      where r.user_id = $1 and o.account_id = r.account_id and o.is_owner', register) using old.id;
  end loop;
  return old;
end
$$;
create trigger hand_over_records before delete on auth.users
  for each row execute function private.hand_over_records();

-- Certificates, leave and travel documents of a crew row have rights of their own. A member without one of them may change
-- the rest of the row, if that part stays what it was.

-- The JSON in a text without its nulls, or null when there is none to read.
create function private.json_of(document text) returns jsonb
language plpgsql immutable set search_path = '' as $$
begin
  return jsonb_strip_nulls(document::jsonb);
exception when others then
  return null;
end
$$;

-- The parts of two crew rows, given by their JSON texts, that differ; a text that cannot be read differs in all it may hold.
create function private.changed_crew_parts(old_certifications text, certifications text, old_extended text, extended text)
returns text[] language plpgsql immutable set search_path = '' as $$
declare
  before jsonb := private.json_of(old_extended);
  after jsonb := private.json_of(extended);
  travel constant text[] := array['passportCountry', 'passportNumber', 'passportExpiry', 'driverLicenseNumber',
    'driverLicenseState', 'driverLicenseExpiry', 'seafarerIdNumber', 'seafarerIdExpiry'];
  parts text[] := '{}';
begin
  if old_certifications <> certifications and
     coalesce(private.json_of(old_certifications) <> private.json_of(certifications), true) then
    parts := array_append(parts, 'crewCerts');
  end if;
  if old_extended <> extended then
    if before is null or after is null then
      return parts || array['crewLeave', 'crewDocs'];
    end if;
    if coalesce(before ->> 'employmentStatus', 'active') <> coalesce(after ->> 'employmentStatus', 'active') then
      parts := array_append(parts, 'crewLeave');
    end if;
    if exists (select from unnest(travel) field where coalesce(before ->> field, '') <> coalesce(after ->> field, '')) then
      parts := array_append(parts, 'crewDocs');
    end if;
  end if;
  return parts;
end
$$;

-- Runs after the row was written, so that an upsert is judged as the insert or the update that it became.
create function private.guard_crew_parts() returns trigger
language plpgsql set search_path = '' as $$
declare
  part text;
begin
  if current_user = 'authenticated' then
    if tg_op = 'INSERT' then
      old := new;
      old.certifications_json := '[]';
      old.extended_json := '{}';
    end if;
    foreach part in array private.changed_crew_parts(old.certifications_json, new.certifications_json,
                                                     old.extended_json, new.extended_json) loop
      if new.account_id not in (select private.accounts_to_write(part)) then
        raise exception 'You may not change % of the crew.', case part
          when 'crewCerts' then 'the certifications' when 'crewLeave' then 'the leave' else 'the travel documents' end
          using errcode = '42501';
      end if;
    end loop;
  end if;
  return null;
end
$$;
create trigger crew_parts after insert or update on public.crew_members
  for each row execute function private.guard_crew_parts();

-- Acknowledgments go with their post.
create function private.forget_acknowledgments() returns trigger
language plpgsql security definer set search_path = '' as $$
begin
  delete from public.crew_board_acknowledgments a using changed c where a.account_id = c.account_id and a.post_id = c.id;
  return null;
end
$$;
create trigger after_delete_acknowledgments after delete on public.crew_board_posts referencing old table as changed
  for each statement execute function private.forget_acknowledgments();

-- The author of a post is who added it, whoever edits it later.
create function private.keep_author() returns trigger
language plpgsql set search_path = '' as $$
begin
  if current_user = 'authenticated' then
    new.user_id := case tg_op when 'INSERT' then auth.uid() else old.user_id end;
  end if;
  return new;
end
$$;
create trigger b_keep_author before insert or update on public.crew_board_posts
  for each row execute function private.keep_author();

-- Procedures ----------------------------------------------------------------------------------------------------------
-- All may arrive twice, from two devices at once: each answers the second time what it answered the first.

-- The caller's confirmed address, or null. Without e-mail confirmation the project lets anybody sign up under any address, and
-- an invitation is then worth no more than knowing the address.
create function private.confirmed_email() returns text
language sql stable security definer set search_path = '' as $$
  select lower(email) from auth.users where id = auth.uid() and email_confirmed_at is not null
$$;

create function private.require_user() returns uuid
language plpgsql stable security definer set search_path = '' as $$
begin
  if not exists (select from auth.users where id = auth.uid()) then
    raise exception 'Sign in first.' using errcode = '42501';
  end if;
  return auth.uid();
end
$$;

-- Makes the caller a member wherever his confirmed address was invited, and answers the account of the newest invitation that
-- he has taken up, now or before: {"accountId": uuid or null, "claimed": boolean}.
create function public.claim_pending_invite() returns json
language plpgsql security definer set search_path = '' as $$
declare
  person uuid := private.require_user();
  address text := private.confirmed_email();
  account uuid;
begin
  if address is not null then
    perform pg_advisory_xact_lock(hashtextextended('membership of ' || person, 0));
    -- An invitation to somebody who is a member already would hold a seat for nobody.
    delete from public.account_members p
    where p.user_id is null and lower(p.invited_email) = address
      and exists (select from public.account_members m where m.account_id = p.account_id and m.user_id = person);
    update public.account_members set user_id = person
    where user_id is null and is_active and lower(invited_email) = address;
    select account_id into account from public.account_members
    where user_id = person and is_active and not is_owner and lower(invited_email) = address
    order by created_at desc, id limit 1;
  end if;
  return json_build_object('accountId', account, 'claimed', account is not null);
end
$$;

-- The account of a caller without any membership, made with him as its owner; answers {"accountId": uuid}. A caller who is a
-- member gets his own account, else the one he is in. Access that was switched off is told, not replaced by an empty account.
create function public.bootstrap_own_account() returns json
language plpgsql security definer set search_path = '' as $$
declare
  person uuid := private.require_user();
  account uuid;
  called text;
begin
  perform pg_advisory_xact_lock(hashtextextended('membership of ' || person, 0));
  select account_id into account from public.account_members where user_id = person and is_active
  order by is_owner desc, created_at, id limit 1;
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

-- A pending membership for an address, as its row. The account is the caller's own, or the one he administers, unless it is
-- given. An address that was invited before keeps its row: while the invitation is pending it takes the new name and role.
create function public.invite_team_member(p_email text, p_name text, p_role text, p_account_id uuid default null)
returns public.account_members
language plpgsql security definer set search_path = '' as $$
declare
  person uuid := private.require_user();
  address text := lower(btrim(p_email));
  account uuid;
  member public.account_members;
begin
  select m.account_id into account from public.account_members m
  where m.user_id = person and m.account_id in (select private.accounts_to_administer(true))
    and m.account_id = coalesce(p_account_id, m.account_id)
  order by m.is_owner desc, m.created_at, m.id limit 1;
  if account is null then
    raise exception 'Only an administrator of the account can invite.' using errcode = '42501';
  end if;
  if address is null or address !~ '^[^@[:space:]]+@[^@[:space:]]+$' or length(address) > 254 then
    raise exception 'This is not an e-mail address.' using errcode = '22023';
  end if;
  if p_role is null or p_role not in ('admin', 'editor', 'viewOnly') then
    raise exception 'There is no role named %.', coalesce(p_role, 'null') using errcode = '22023';
  end if;

  perform from public.accounts where id = account for no key update;
  select m.* into member from public.account_members m left join auth.users u on u.id = m.user_id
  where m.account_id = account and (lower(m.invited_email) = address or lower(u.email) = address)
  order by m.user_id is null limit 1;
  if member.id is null then
    insert into public.account_members (account_id, invited_email, name, role)
    values (account, address, coalesce(nullif(btrim(p_name), ''), split_part(address, '@', 1)), p_role)
    returning * into member;
  elsif member.user_id is null then
    update public.account_members set name = coalesce(nullif(btrim(p_name), ''), name), role = p_role, is_active = true
    where id = member.id returning * into member;
  end if;
  return member;
end
$$;

-- Who is in the caller's accounts, by name: what the crew board shows to members who do not administer the account.
create function public.account_people() returns table (account_id uuid, user_id uuid, name text)
language sql stable security definer set search_path = '' as $$
  select m.account_id, m.user_id, m.name from public.account_members m
  where m.account_id = any (array (select private.accounts_to_read())) and m.user_id is not null
  order by m.account_id, m.name, m.user_id
$$;

revoke execute on all functions in schema private from public;
grant execute on function private.is_member_row(uuid), private.take_seat(uuid, uuid),
  private.changed_crew_parts(text, text, text, text), private.json_of(text) to authenticated, service_role;
