-- What the catalogue says: nothing is open by omission.
begin;
set local search_path = public, extensions;
select no_plan();

select is_empty($$ select relname from pg_class where relnamespace in ('public'::regnamespace, 'private'::regnamespace)
                   and relkind in ('r', 'p') and not relrowsecurity $$, 'row-level security holds on every table');
select is_empty($$ select relname from pg_class where relnamespace = 'public'::regnamespace and relkind not in ('r', 'i', 'p') $$,
                'no view, materialised or not, goes around the policies');
select is_empty($$ select table_name, privilege_type from information_schema.role_table_grants
                   where table_schema in ('public', 'private') and grantee in ('anon', 'PUBLIC') $$, 'tables: nothing for anon');
select is_empty($$ select table_name, column_name from information_schema.column_privileges
                   where table_schema in ('public', 'private') and grantee in ('anon', 'PUBLIC') $$, 'columns: nothing for anon');
select is_empty($$ select proname from pg_proc where pronamespace in ('public'::regnamespace, 'private'::regnamespace)
                   and has_function_privilege('anon', oid, 'execute') $$, 'functions: nothing for anon');
select is_empty($$ select relname from pg_class where relkind = 'S' and relnamespace in ('public'::regnamespace, 'private'::regnamespace)
                   and (has_sequence_privilege('anon', oid, 'usage') or has_sequence_privilege('authenticated', oid, 'usage')) $$,
                'sequences: nothing for anon or a person');
select ok(not has_schema_privilege('anon', 'private', 'usage'), 'anon does not enter the private schema');
select is_empty($$ select schemaname, tablename, policyname from pg_policies
                   where schemaname in ('public', 'storage') and roles <> '{authenticated}' $$, 'policies are for signed-in people alone');
select is_empty($$ select tablename, cmd from pg_policies where schemaname in ('public', 'storage')
                   group by tablename, cmd having count(*) > 1 or cmd = 'ALL' $$, 'one policy for each table and action');
select is_empty($$ select relname from pg_class c where relnamespace = 'private'::regnamespace and relkind = 'r'
                   and has_table_privilege('authenticated', oid, 'select, insert, update, delete, truncate') $$,
                'private tables: nothing for a person');
select is_empty($$ select relname from pg_class c where relnamespace = 'public'::regnamespace and relkind = 'r'
                   and has_table_privilege('authenticated', oid, 'truncate, references, trigger') $$,
                'tables: a person reads and writes rows and does no more');
select is_empty($$ select proname from pg_proc where pronamespace in ('public'::regnamespace, 'private'::regnamespace)
                   and (proconfig is null or not proconfig @> array['search_path=""']) $$,
                'every function names what it means, whatever the search path');
select is_empty($$ select conrelid::regclass, confrelid::regclass from pg_constraint
                   where contype = 'f' and connamespace = 'public'::regnamespace
                   and confrelid not in ('public.accounts'::regclass, 'auth.users'::regclass)
                   and not (confrelid in ('public.vessels'::regclass, 'public.yard_periods'::regclass) and confdeltype = 'c'
                            and conkey[1] = (select attnum from pg_attribute where attrelid = conrelid and attname = 'account_id')) $$,
                'history hangs on nothing but accounts, people, vessels and yard periods');
select is_empty($$ select conrelid::regclass from pg_constraint where contype = 'c' and connamespace = 'public'::regnamespace
                   and conname <> 'account_members_module_overrides_check' $$, 'no list of values is fixed');
select is_empty($$ select c.oid::regclass from pg_class c where c.relnamespace = 'public'::regnamespace and c.relkind = 'r'
                   and exists (select from pg_attribute a where a.attrelid = c.oid and a.attname = 'account_id')
                   and not exists (select from pg_index i where i.indrelid = c.oid and i.indkey[0] =
                     (select attnum from pg_attribute a where a.attrelid = c.oid and a.attname = 'account_id')) $$,
                'every table is found by account through an index');

select * from finish();
rollback;
