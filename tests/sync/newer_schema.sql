-- A server one version ahead of this program: a column, a register and texts of enumerations that it does not know, and a newer
-- program that writes them. What it wrote must outlive every edit that an older program makes of the same rows.

alter table public.maintenance_tasks add column risk_class text not null default 'unrated';
alter table public.service_logs add column supervisor text;

create table public.spare_parts (
  id uuid primary key,
  account_id uuid not null references public.accounts (id) on delete cascade,
  name text not null default ''
);
alter table public.spare_parts enable row level security;

create schema newer;
create table newer.written (vessel_id uuid not null, task_id uuid not null, primary key (vessel_id, task_id));

-- The newer program changes one of a vessel's tasks: the column, a field of its own in extra_json and a kind that are new.
create function newer.write_task(vessel uuid, draw integer) returns void
language plpgsql as $$
declare
  task public.maintenance_tasks;
begin
  select * into task from public.maintenance_tasks t where t.vessel_id = vessel
  order by t.id offset (select draw % greatest(count(*), 1) from public.maintenance_tasks where vessel_id = vessel) limit 1;
  if task.id is null then
    return;
  end if;
  update public.maintenance_tasks set
    risk_class = 'severe',
    kind = 'retrofit',
    extra_json = (coalesce(nullif(extra_json, ''), '{}')::jsonb || '{"hazards": ["paint", "heights"]}')::text,
    updated_at = now()
  where id = task.id;
  insert into newer.written values (vessel, task.id) on conflict do nothing;
  insert into public.spare_parts values (gen_random_uuid(), task.account_id, 'Impeller');
  perform private.stamp('spare_parts', array[task.account_id]);
end
$$;

create function newer.check_kept(vessel uuid) returns void
language plpgsql as $$
declare
  task record;
begin
  for task in
    select t.* from public.maintenance_tasks t join newer.written w on w.task_id = t.id and w.vessel_id = vessel
    where t.risk_class <> 'severe'
      -- Where two had made the row before either heard of the other, the kind may be in the history instead.
      or t.kind is distinct from 'retrofit'
        and not exists (select from public.conflict_notes n where n.record_id = t.id and n.other like '%"retrofit"%')
      or t.extra_json::jsonb -> 'hazards' is distinct from '["paint", "heights"]'
  loop
    raise exception 'task %: %, %, %', task.id, task.risk_class, task.kind, task.extra_json;
  end loop;
end
$$;
