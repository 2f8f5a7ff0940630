-- Who wrote what, and when it was read, is told by the server, not by the client.

-- A row names who wrote it last; the conflict history and ties between two edits rest on that. Posts keep their author. What
-- the platform and the procedures write keeps the person it names.
create or replace function private.name_writer() returns trigger
language plpgsql set search_path = '' as $$
begin
  if current_user = 'authenticated' then
    new.user_id := auth.uid();
  end if;
  return new;
end
$$;

do $$
declare
  register text;
begin
  for register in select table_name from private.registers where table_name <> 'crew_board_posts' loop
    execute format('drop trigger if exists b_name_writer on public.%I', register);
    execute format('create trigger b_name_writer before insert or update on public.%I
      for each row execute function private.name_writer()', register);
  end loop;
end
$$;

-- Whether the account has this post; it then stays until the caller's transaction ends.
create or replace function private.hold_post(account uuid, post uuid) returns boolean
language plpgsql volatile security definer set search_path = '' as $$
begin
  perform from public.crew_board_posts where account_id = account and id = post for key share;
  return found;
end
$$;

-- An acknowledgment of a post that is gone is skipped without an error, as rows that were deleted are: its author learns of
-- the post's end when he reads it back. One that arrives twice keeps its first time.
create or replace function private.guard_acknowledgment() returns trigger
language plpgsql set search_path = '' as $$
begin
  if current_user = 'authenticated' then
    if tg_op = 'UPDATE' then
      if (new.post_id, new.user_id, new.account_id) <> (old.post_id, old.user_id, old.account_id) then
        raise exception 'An acknowledgment belongs to its post.' using errcode = '42501';
      end if;
    elsif new.account_id in (select private.accounts_to_read()) and not private.hold_post(new.account_id, new.post_id) then
      return null;
    else
      new.acknowledged_at := now();
    end if;
  end if;
  return new;
end
$$;
drop trigger if exists guard_acknowledgment on public.crew_board_acknowledgments;
create trigger guard_acknowledgment before insert or update on public.crew_board_acknowledgments
  for each row execute function private.guard_acknowledgment();

revoke execute on function private.name_writer(), private.hold_post(uuid, uuid), private.guard_acknowledgment() from public;
grant execute on function private.hold_post(uuid, uuid) to authenticated, service_role;
