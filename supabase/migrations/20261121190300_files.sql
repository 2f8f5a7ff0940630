-- The buckets. A path begins with the identifier of the account, or of one of its vessels, in lower case:
-- "<account>/<record>/photo.jpg", "<vessel>/photo.jpg". Rights follow the module whose records name the files.

create table private.buckets (
  bucket_id text primary key,
  modules text[] not null              -- the caller needs all of them
);
alter table private.buckets enable row level security;

insert into private.buckets (bucket_id, modules) values
  ('vessel_photos', '{tasks}'), ('task_photos', '{tasks}'), ('ship_documents', '{documents}'),
  ('cert_attachments', '{crew,crewCerts}'), ('guest_documents', '{guests}'), ('guest-documents', '{guests}'),
  ('guest_photos', '{guests}'), ('vendor_compliance', '{contacts}'), ('yard_photos', '{yardRefit}'),
  ('yard_docs', '{yardRefit}'), ('crew_board_docs', '{}');

insert into storage.buckets (id, name, public, file_size_limit)
select bucket_id, bucket_id, false, 50 * 1024 * 1024 from private.buckets
on conflict (id) do nothing;

-- "bucket/first folder" for all the caller may read or write.
create function private.folders(writing boolean) returns setof text
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
  ) f
$$;

revoke execute on function private.folders(boolean) from public;
grant execute on function private.folders(boolean) to authenticated, service_role;
