-- Every bucket × everybody × every operation.
begin;
\ir support/world.psql
select no_plan();

insert into storage.objects (bucket_id, name)
select b.bucket_id, f.folder || '/record/file.jpg' from private.buckets b
cross join (values (test.thing('A')::text), (test.thing('A vessels')::text), (test.thing('B')::text), (test.thing('B vessels')::text)) f (folder);
-- The file service deletes rows in this way, after their bytes.
set local storage.allow_delete_query = 'true';

create function test.outcomes(bucket text, who text) returns jsonb language plpgsql as $$
declare
  own text := test.thing('A') || '/record/file.jpg';
  of_vessel text := test.thing('A vessels') || '/record/file.jpg';
  foreign_file text := test.thing('B') || '/record/file.jpg';
  tried record;
  outcomes jsonb := '{}';
begin
  for tried in values
    ('select', format('select from storage.objects where bucket_id = %L', bucket)),
    ('foreign select', format('select from storage.objects where bucket_id = %L and name = %L', bucket, foreign_file)),
    ('insert', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/record/new.jpg')),
    ('insert for vessel', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A vessels') || '/photo.jpg')),
    ('upsert', format('insert into storage.objects (bucket_id, name) values (%L, %L) on conflict (bucket_id, name) do update set version = ''2''', bucket, own)),
    ('foreign upsert', format('insert into storage.objects (bucket_id, name) values (%L, %L) on conflict (bucket_id, name) do update set version = ''2''', bucket, foreign_file)),
    ('foreign insert', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('B vessels') || '/photo.jpg')),
    ('without folder', format('insert into storage.objects (bucket_id, name) values (%L, ''photo.jpg'')', bucket)),
    ('up and down', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/../' || foreign_file)),
    ('two slashes', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '//photo.jpg')),
    ('dot', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/./photo.jpg')),
    ('two dots', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/record/..')),
    ('no file', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/record/')),
    ('dots in a name', format('insert into storage.objects (bucket_id, name) values (%L, %L)', bucket, test.thing('A') || '/record/..a. b..jpg')),
    ('upwards', format('update storage.objects set name = %L where bucket_id = %L and name = %L', test.thing('A') || '/../' || foreign_file, bucket, own)),
    ('no such bucket', format('update storage.objects set bucket_id = ''another'' where bucket_id = %L and name = %L', bucket, own)),
    ('wrong folder', format('insert into storage.objects (bucket_id, name) values (%L, ''no-uuid/photo.jpg'')', bucket)),
    ('update', format('update storage.objects set version = ''2'' where bucket_id = %L', bucket)),
    ('give away', format('update storage.objects set name = %L where bucket_id = %L and name = %L', test.thing('B') || '/record/given.jpg', bucket, own)),
    ('delete', format('delete from storage.objects where bucket_id = %L and name = %L', bucket, of_vessel)),
    ('foreign delete', format('delete from storage.objects where bucket_id = %L and name = %L', bucket, foreign_file))
  loop
    outcomes := outcomes || jsonb_build_object(tried.column1, test.try(who, tried.column2));
  end loop;
  return outcomes;
end
$$;
create function test.expected(modules text[], who text) returns jsonb language sql as $$
  select jsonb_build_object('select', case when readable then '2' else '0' end, 'foreign select', '0', 'insert', added,
    'insert for vessel', added, 'upsert', added, 'foreign upsert', '42501', 'foreign insert', '42501', 'without folder', '42501',
    'wrong folder', '42501', 'up and down', '42501', 'two slashes', '42501', 'dot', '42501', 'two dots', '42501', 'no file', '42501',
    'dots in a name', added, 'upwards', case when writable then '42501' else '0' end, 'no such bucket', case when writable then '42501' else '0' end, 'update', case when writable then '2' else '0' end,
    'give away', case when writable then '42501' else '0' end,
    'delete', case when writable then '1' else '0' end, 'foreign delete', '0')
  from (select who in ('owner', 'admin', 'editor', 'viewer', 'newer', 'readonly') or who = 'hidden' and modules = '{}' as readable,
               who in ('owner', 'admin', 'editor') or who in ('hidden', 'readonly') and modules = '{}' as writable) rights,
       lateral (select case when writable then '1' else '42501' end as added) a
$$;
select is(test.outcomes(b.bucket_id, p.who), test.expected(b.modules, p.who), b.bucket_id || ' in the hands of ' || p.who)
from private.buckets b cross join test.people p where p.who <> 'stranger'
order by b.bucket_id, p.who;

select results_eq('select id, public, file_size_limit from storage.buckets order by id collate "C"', $$values
  ('cert_attachments', false, 52428800::bigint), ('crew_board_docs', false, 52428800), ('guest-documents', false, 52428800),
  ('guest_documents', false, 52428800), ('guest_photos', false, 52428800), ('ship_documents', false, 52428800),
  ('task_photos', false, 52428800), ('vendor_compliance', false, 52428800), ('vessel_photos', false, 52428800),
  ('yard_docs', false, 52428800), ('yard_photos', false, 52428800)$$, 'the buckets are private and limited');

-- Certificates need both rights; which module rules which bucket.
create function test.buckets_closed_by(module text) returns text[] language plpgsql as $$
declare
  bucket text;
  closed text[] := '{}';
begin
  update public.account_members set module_overrides = jsonb_build_object(module, 'hidden') where user_id = test.person('editor');
  for bucket in select bucket_id from private.buckets order by bucket_id collate "C" loop
    if test.try('editor', format('select from storage.objects where bucket_id = %L', bucket)) = '0' then
      closed := array_append(closed, bucket);
    end if;
  end loop;
  update public.account_members set module_overrides = '{}' where user_id = test.person('editor');
  return closed;
end
$$;
select is(test.buckets_closed_by(module), buckets::text[], module || ' closes its buckets') from (values
  ('tasks', '{task_photos,vessel_photos}'), ('crew', '{cert_attachments}'), ('crewCerts', '{cert_attachments}'),
  ('documents', '{ship_documents}'), ('guests', '{guest-documents,guest_documents,guest_photos}'),
  ('contacts', '{vendor_compliance}'), ('yardRefit', '{yard_docs,yard_photos}'), ('admin', '{}')) mapping (module, buckets);

-- A deleted vessel's files can still be removed.
select test.become('editor');
delete from public.vessels where account_id = test.thing('A');
select is(test.try('editor', format('delete from storage.objects where bucket_id = ''vessel_photos'' and name like %L', test.thing('A vessels') || '/%')), '1',
  'files of a deleted vessel');
-- A vessel opens no folder but her own: not an account's, and none that has been another account's, now or before.
select test.become('postgres');
create function test.add_vessel(who text, id uuid, account text default 'A') returns text language sql as $$
  select test.try(who, test.insert_sql('vessels', sent), sent) from (select test.row('vessels', account, id)) as rows (sent)
$$;
select test.become('stranger');
insert into public.vessels (id, account_id) values ('5f0c7d1e-0000-4000-8000-000000000003', test.thing('B'));
delete from public.vessels where id = '5f0c7d1e-0000-4000-8000-000000000003';
select is(test.add_vessel('editor', test.thing('B')), '23505', 'no vessel with the identifier of another account'),
       is(test.add_vessel('editor', test.thing('A')), '1', 'one with that of the own account takes nothing'),
       is(test.add_vessel('editor', test.thing('B vessels')), '23505', 'none with that of another account''s vessel'),
       is(test.add_vessel('editor', '5f0c7d1e-0000-4000-8000-000000000003'), '23505', 'nor when the vessel is gone'),
       is(test.add_vessel('editor', gen_random_uuid()), '1', 'a new one is her account''s'),
       is(test.try('service_role', format('insert into public.accounts (id) values (%L)', test.thing('B vessels'))), '23505',
          'no account with the identifier of a vessel');
select test.become('postgres');
alter table public.vessels disable trigger take_folder;
insert into public.vessels (id, account_id, user_id) values (test.thing('B'), test.thing('A'), test.person('editor'));
alter table public.vessels enable trigger take_folder;
select is(test.try('editor', format('select from storage.objects where name like %L', test.thing('B') || '/%')), '0',
  'a vessel that has had such an identifier from before shows nothing');

-- Without the file service nothing is deleted.
select test.become('postgres');
set local storage.allow_delete_query = 'false';
select is(test.try('editor', 'delete from storage.objects'), '42501', 'rows go only with their bytes');

select * from finish();
rollback;
