-- Accounts and their members: who owns what, and the answers to "which accounts may the caller read, write, administer",
-- on which every policy rests.

-- What the table interface must not offer lies in this schema. Signed-in users may use it because policies call its
-- functions in their name.
create schema private;
revoke all on schema private from public;
grant usage on schema private to authenticated, service_role;

-- Identifiers travel as UUID texts in lower case, which is how the type uuid is written out; with text columns two spellings
-- of one identifier would be two rows.
create table public.accounts (
  id uuid primary key default gen_random_uuid(),
  name text not null default '',
  plan text not null default 'none',
  additional_seats bigint,             -- bought beyond those of the plan
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);
alter table public.accounts enable row level security;

create table public.account_members (
  id uuid primary key default gen_random_uuid(),
  account_id uuid not null references public.accounts (id) on delete cascade,
  user_id uuid references auth.users (id) on delete cascade,  -- null while the invitation is pending
  invited_email text,                  -- lower case
  name text not null default '',
  role text not null default 'viewOnly',
  is_owner boolean not null default false,
  is_active boolean not null default true,
  module_overrides jsonb not null default '{}' check (jsonb_typeof(module_overrides) = 'object'),
  created_at timestamptz not null default now(),
  unique (account_id, user_id)
);
create unique index account_members_owner_key on public.account_members (account_id) where is_owner;
create unique index account_members_invited_email_key on public.account_members (account_id, lower(invited_email));
create index account_members_user_id_idx on public.account_members (user_id) include (account_id);
create index account_members_pending_idx on public.account_members (lower(invited_email)) where user_id is null;
alter table public.account_members enable row level security;

-- Seats that a plan includes; a plan this schema does not know includes one.
create function private.seats_of(plan text, additional_seats bigint) returns bigint
language sql immutable set search_path = '' as $$
  select case plan when 'captain' then 3 when 'fleet' then 10 when 'superyacht' then 25 else 1 end
    + greatest(coalesce(additional_seats, 0), 0)
$$;

-- The helpers below run with the owner's rights, since policies on account_members must not read account_members through
-- themselves. Call them in a policy as `account_id = any (array (select private.accounts_to_read('tasks')))`: one answer
-- per statement, to which an index on account_id applies.
--
-- Membership is looked up in the table, not in the token: access ends with the membership, not when the token expires.

-- Accounts in which the caller is an active member and none of `modules` is hidden from him.
create function private.accounts_to_read(variadic modules text[] default '{}') returns setof uuid
language sql stable security definer set search_path = '' as $$
  select m.account_id from public.account_members m
  where m.user_id = (select auth.uid()) and m.is_active
    and not exists (select from unnest(modules) module where m.module_overrides ->> module = 'hidden')
$$;

-- Accounts in which the caller may write, in all of `modules`. A role of a newer program reads only, and so does an
-- override other than "inherit".
create function private.accounts_to_write(variadic modules text[] default '{}') returns setof uuid
language sql stable security definer set search_path = '' as $$
  select m.account_id from public.account_members m
  where m.user_id = (select auth.uid()) and m.is_active and (m.is_owner or m.role in ('admin', 'editor'))
    and not exists (select from unnest(modules) module where coalesce(m.module_overrides ->> module, 'inherit') <> 'inherit')
$$;

-- Accounts whose members and invitations the caller may see, and, when `writing`, change. No override shuts the owner out.
create function private.accounts_to_administer(writing boolean) returns setof uuid
language sql stable security definer set search_path = '' as $$
  select m.account_id from public.account_members m
  where m.user_id = (select auth.uid()) and m.is_active
    and (m.is_owner or m.role = 'admin' and case coalesce(m.module_overrides ->> 'admin', 'inherit')
      when 'inherit' then true when 'readOnly' then not writing else false end)
$$;

revoke execute on all functions in schema private from public;
grant execute on all functions in schema private to authenticated, service_role;
