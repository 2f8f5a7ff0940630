-- What a hosted project brings before its first migration runs, for a throw-away cluster: roles, the schemas of the
-- sign-in and file services, and the two extensions the migrations and tests use. Applied once, by the superuser
-- `supabase_admin`, to an empty database (scripts/database does so). Names, types and grants are those of the hosted
-- platform as far as a migration, a policy or the gateway can see them.
--
-- psql variables: owner_password, authenticator_password, auth_password, storage_password, and old_grants: when 1, new
-- tables are open to every API role until a migration revokes it, as in projects made before mid 2026.

\set ON_ERROR_STOP on
begin;
set local client_min_messages = warning;

-- Roles -------------------------------------------------------------------------------------------------------------
-- The three that a request can run as. A request without a user's token is `anon`.
create role anon nologin noinherit;
create role authenticated nologin noinherit;
create role service_role nologin noinherit bypassrls;
-- The one that the table interface connects as; it has no rights but to become one of the three.
create role authenticator login noinherit password :'authenticator_password';
grant anon, authenticated, service_role to authenticator;
-- The owners of the sign-in service's and of the file service's tables; the services connect as these.
create role supabase_auth_admin login noinherit createrole password :'auth_password';
create role supabase_storage_admin login noinherit password :'storage_password';
grant anon, authenticated, service_role to supabase_storage_admin;
-- The owner that applies migrations: not a superuser, but as hosted it passes row-level security by.
create role postgres login inherit createdb createrole bypassrls password :'owner_password';
grant anon, authenticated, service_role to postgres with admin option;

-- A request may not run longer than this. `set role` does not apply it: the gateway reads it from pg_roles.rolconfig.
alter role anon set statement_timeout = '3s';
alter role authenticated set statement_timeout = '8s';
alter role authenticator set statement_timeout = '8s';
alter role supabase_auth_admin set idle_in_transaction_session_timeout = '60s';
alter role supabase_auth_admin set search_path = auth;
alter role supabase_storage_admin set search_path = storage;
alter role postgres set search_path = "$user", public, extensions;

-- Schemas and extensions ----------------------------------------------------------------------------------------------
create schema extensions;
create schema auth authorization supabase_auth_admin;
create schema storage;
grant usage on schema extensions to public;
grant usage on schema auth, storage to anon, authenticated, service_role, postgres;
grant usage on schema storage to supabase_storage_admin;
select format('grant create, connect, temporary on database %I to postgres', current_database()) \gexec
grant all on schema public, extensions to postgres with grant option;
grant usage on schema public to anon, authenticated, service_role;
revoke create on schema public from public;

create extension pgcrypto with schema extensions;
create extension pgtap with schema extensions;

\if :old_grants
alter default privileges for role postgres in schema public
  grant all on tables to anon, authenticated, service_role;
alter default privileges for role postgres in schema public
  grant all on sequences to anon, authenticated, service_role;
\endif
-- Functions are open to every API role in both: PostgreSQL's own default for PUBLIC, and this one beside it.
alter default privileges for role postgres in schema public
  grant all on functions to anon, authenticated, service_role;

-- Sign-in service -----------------------------------------------------------------------------------------------------
set local role supabase_auth_admin;

-- One row per person who can sign in. E-mail addresses are stored in lower case. The *_token columns hold the hashed
-- token of a mail under way, '' when none is; the same hash stands in one_time_tokens, which is what links are looked up in.
create table auth.users (
  instance_id uuid,
  id uuid not null primary key,
  aud varchar(255),                    -- 'authenticated'
  role varchar(255),                   -- the database role of the person's requests: 'authenticated'
  email varchar(255),
  encrypted_password varchar(255),     -- bcrypt; extensions.crypt(password, extensions.gen_salt('bf', 10))
  email_confirmed_at timestamptz,      -- null until the address is confirmed, or set at sign-up under auto-confirm
  invited_at timestamptz,
  confirmation_token varchar(255) default '',
  confirmation_sent_at timestamptz,
  recovery_token varchar(255) default '',
  recovery_sent_at timestamptz,
  email_change_token_new varchar(255) default '',
  email_change varchar(255) default '',  -- the new address (`new_email` in replies) until it is confirmed
  email_change_sent_at timestamptz,
  last_sign_in_at timestamptz,
  raw_app_meta_data jsonb,             -- {"provider": "email", "providers": ["email"]}; only the service writes it
  raw_user_meta_data jsonb,            -- the person may write it: no right may rest on it
  is_super_admin boolean,
  created_at timestamptz default now(),
  updated_at timestamptz default now(),
  phone text unique default null,
  phone_confirmed_at timestamptz,
  phone_change text default '',
  phone_change_token varchar(255) default '',
  phone_change_sent_at timestamptz,
  confirmed_at timestamptz generated always as (least(email_confirmed_at, phone_confirmed_at)) stored,
  email_change_token_current varchar(255) default '',
  email_change_confirm_status smallint default 0 check (email_change_confirm_status between 0 and 2),
  banned_until timestamptz,
  reauthentication_token varchar(255) default '',
  reauthentication_sent_at timestamptz,
  is_sso_user boolean not null default false,
  deleted_at timestamptz,
  is_anonymous boolean not null default false
);
create unique index users_email_partial_key on auth.users (email) where not is_sso_user;
create index users_instance_id_email_idx on auth.users (instance_id, lower(email));
create unique index confirmation_token_idx on auth.users (confirmation_token) where confirmation_token !~ '^[0-9 ]*$';
create unique index recovery_token_idx on auth.users (recovery_token) where recovery_token !~ '^[0-9 ]*$';

-- The ways a person can sign in; here always one row with provider 'email' and provider_id = the user's id.
create table auth.identities (
  provider_id text not null,
  user_id uuid not null references auth.users (id) on delete cascade,
  identity_data jsonb not null,        -- {"sub", "email", "email_verified", "phone_verified"}
  provider text not null,
  last_sign_in_at timestamptz,
  created_at timestamptz,
  updated_at timestamptz,
  email text generated always as (lower(identity_data ->> 'email')) stored,
  id uuid not null default gen_random_uuid() primary key,
  unique (provider_id, provider)
);
create index identities_user_id_idx on auth.identities (user_id);

create type auth.aal_level as enum ('aal1', 'aal2', 'aal3');

-- One row per sign-in on one device; its id is the token's claim session_id. Deleting it signs that device out.
create table auth.sessions (
  id uuid not null primary key,
  user_id uuid not null references auth.users (id) on delete cascade,
  created_at timestamptz,
  updated_at timestamptz,
  factor_id uuid,
  aal auth.aal_level,
  not_after timestamptz,               -- null: the session does not end by time
  refreshed_at timestamp,              -- UTC
  user_agent text,
  ip inet,
  tag text
);
create index sessions_user_id_idx on auth.sessions (user_id);
create index user_id_created_at_idx on auth.sessions (user_id, created_at);

-- How a session was authenticated, for the claim amr: 'password', 'otp', 'recovery'.
create table auth.mfa_amr_claims (
  session_id uuid not null references auth.sessions (id) on delete cascade,
  created_at timestamptz not null,
  updated_at timestamptz not null,
  authentication_method text not null,
  id uuid not null primary key,
  unique (session_id, authentication_method)
);

-- Refresh tokens of a session, newest unrevoked one active; parent is the token it was exchanged for. A revoked token that
-- comes again outside the reuse interval, and that is not the active one's parent, revokes the whole session.
create table auth.refresh_tokens (
  instance_id uuid,
  id bigserial primary key,
  token varchar(255) unique,
  user_id varchar(255),                -- the user's id as text, without a foreign key
  revoked boolean,
  created_at timestamptz,
  updated_at timestamptz,              -- when it was spent, once revoked
  parent varchar(255),
  session_id uuid references auth.sessions (id) on delete cascade
);
create index refresh_tokens_parent_idx on auth.refresh_tokens (parent);
create index refresh_tokens_session_id_revoked_idx on auth.refresh_tokens (session_id, revoked);
create index refresh_tokens_instance_id_user_id_idx on auth.refresh_tokens (instance_id, user_id);

create type auth.one_time_token_type as enum ('confirmation_token', 'reauthentication_token', 'recovery_token',
  'email_change_token_new', 'email_change_token_current', 'phone_change_token');

-- The tokens of mailed links, hashed; at most one of a kind per person.
create table auth.one_time_tokens (
  id uuid not null primary key,
  user_id uuid not null references auth.users (id) on delete cascade,
  token_type auth.one_time_token_type not null,
  token_hash text not null check (char_length(token_hash) > 0),
  relates_to text not null,            -- the address the mail went to
  created_at timestamp not null default now(),
  updated_at timestamp not null default now()
);
create unique index one_time_tokens_user_id_token_type_key on auth.one_time_tokens (user_id, token_type);
create index one_time_tokens_token_hash_hash_idx on auth.one_time_tokens using hash (token_hash);

-- Who asks: from the claims that the gateway sets for the transaction (request.jwt.claims, a JSON text; the older form had
-- one setting per claim). An empty setting is as good as none.
create function auth.uid() returns uuid language sql stable as $$
  select coalesce(
    nullif(current_setting('request.jwt.claim.sub', true), ''),
    (nullif(current_setting('request.jwt.claims', true), '')::jsonb ->> 'sub')
  )::uuid
$$;
create function auth.role() returns text language sql stable as $$
  select coalesce(
    nullif(current_setting('request.jwt.claim.role', true), ''),
    (nullif(current_setting('request.jwt.claims', true), '')::jsonb ->> 'role')
  )::text
$$;
create function auth.email() returns text language sql stable as $$
  select coalesce(
    nullif(current_setting('request.jwt.claim.email', true), ''),
    (nullif(current_setting('request.jwt.claims', true), '')::jsonb ->> 'email')
  )::text
$$;
create function auth.jwt() returns jsonb language sql stable as $$
  select coalesce(
    nullif(current_setting('request.jwt.claim', true), ''),
    nullif(current_setting('request.jwt.claims', true), '')
  )::jsonb
$$;

reset role;
set local role supabase_admin;
alter table auth.users enable row level security;
alter table auth.identities enable row level security;
alter table auth.sessions enable row level security;
alter table auth.mfa_amr_claims enable row level security;
alter table auth.refresh_tokens enable row level security;
alter table auth.one_time_tokens enable row level security;
grant all on all tables in schema auth to postgres;
grant all on all sequences in schema auth to postgres;
grant execute on all functions in schema auth to anon, authenticated, service_role, postgres;

-- File service --------------------------------------------------------------------------------------------------------
create table storage.buckets (
  id text not null primary key,
  name text not null,
  owner uuid,
  created_at timestamptz default now(),
  updated_at timestamptz default now(),
  public boolean default false,
  avif_autodetection boolean default false,
  file_size_limit bigint,              -- bytes; null: the service's own limit
  allowed_mime_types text[],           -- null: all; 'image/*' stands for a family
  owner_id text
);
create unique index bname on storage.buckets (name);

-- One row per stored file. The bytes lie outside the database, under bucket, name and version.
create table storage.objects (
  id uuid not null default gen_random_uuid() primary key,
  bucket_id text references storage.buckets (id),
  name text,                           -- path inside the bucket, without a leading '/'
  owner uuid,
  created_at timestamptz default now(),
  updated_at timestamptz default now(),
  last_accessed_at timestamptz default now(),
  metadata jsonb,                      -- {"eTag", "size", "mimetype", "cacheControl", "lastModified", "contentLength", …}
  path_tokens text[] generated always as (string_to_array(name, '/')) stored,
  version text,
  owner_id text,                       -- the uploader's id as text
  user_metadata jsonb
);
create unique index bucketid_objname on storage.objects (bucket_id, name);
create index name_prefix_search on storage.objects (name text_pattern_ops);

-- 'a/b/c.jpg' → {a,b}, 'c.jpg', 'jpg'
create function storage.foldername(name text) returns text[] language plpgsql immutable as $$
declare
  parts text[] := string_to_array(name, '/');
begin
  return parts[1 : array_length(parts, 1) - 1];
end
$$;
create function storage.filename(name text) returns text language plpgsql immutable as $$
declare
  parts text[] := string_to_array(name, '/');
begin
  return parts[array_length(parts, 1)];
end
$$;
create function storage.extension(name text) returns text language plpgsql immutable as $$
declare
  parts text[] := string_to_array(storage.filename(name), '.');
begin
  return parts[array_length(parts, 1)];
end
$$;

-- Rows go away only with their bytes: the file service sets storage.allow_delete_query for its own statement.
create function storage.protect_delete() returns trigger language plpgsql as $$
begin
  if coalesce(current_setting('storage.allow_delete_query', true), 'false') <> 'true' then
    raise exception 'Direct deletion from storage tables is not allowed. Use the Storage API instead.'
      using errcode = '42501', hint = 'This prevents accidental data loss from orphaned objects.';
  end if;
  return null;
end
$$;
create trigger protect_buckets_delete before delete on storage.buckets
  for each statement execute function storage.protect_delete();
create trigger protect_objects_delete before delete on storage.objects
  for each statement execute function storage.protect_delete();

create function storage.update_updated_at_column() returns trigger language plpgsql as $$
begin
  new.updated_at := now();
  return new;
end
$$;
create trigger update_objects_updated_at before update on storage.objects
  for each row execute function storage.update_updated_at_column();

alter table storage.buckets owner to supabase_storage_admin;
alter table storage.objects owner to supabase_storage_admin;
alter table storage.buckets enable row level security;
alter table storage.objects enable row level security;
grant all on storage.buckets, storage.objects to anon, authenticated, service_role, postgres;
grant execute on all functions in schema storage to public;

-- As hosted, the owner of the migrations may make policies on the services' tables and nothing else. PostgreSQL ties
-- policies to ownership, so `postgres` belongs to the owners' roles and this trigger refuses the rest of what they may do.
grant supabase_auth_admin, supabase_storage_admin to postgres;
revoke create on schema auth from supabase_auth_admin;

create function public.keep_out_of_services() returns event_trigger language plpgsql
set search_path = '' as $$
declare
  touched record;
begin
  if session_user <> 'postgres' then
    return;
  end if;
  if tg_event = 'ddl_command_end' then
    for touched in select * from pg_catalog.pg_event_trigger_ddl_commands() loop
      if touched.object_identity ~ '(^| on )(auth|storage)\.' and touched.command_tag not in
         ('CREATE POLICY', 'ALTER POLICY', 'CREATE TRIGGER', 'GRANT', 'REVOKE') then
        raise exception 'must be owner of %', touched.object_identity using errcode = '42501';
      end if;
    end loop;
  else
    for touched in select * from pg_catalog.pg_event_trigger_dropped_objects() loop
      if touched.object_identity ~ '(^| on )(auth|storage)\.' and tg_tag not in ('DROP POLICY', 'DROP TRIGGER') then
        raise exception 'must be owner of %', touched.object_identity using errcode = '42501';
      end if;
    end loop;
  end if;
end
$$;
alter function public.keep_out_of_services() set schema extensions;
create event trigger keep_out_of_services on ddl_command_end execute function extensions.keep_out_of_services();
create event trigger keep_out_of_services_drop on sql_drop execute function extensions.keep_out_of_services();

commit;
