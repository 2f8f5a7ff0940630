-- The registers: one table per kind of record, its columns in the order in which rows are written. Identifiers of records that may be gone while their history stays (a service log's task, an ISM
-- record's check) point nowhere by constraint, and no list of values is fixed: a newer program may know more.

-- `module` is the key of account_members.module_overrides that narrows a member's access to the table; without one, the
-- table belongs to every member.
create table private.registers (
  table_name text primary key,
  module text
);
alter table private.registers enable row level security;

create table public.vessels (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  name text not null default '',
  type text not null default '',
  length_feet double precision not null default 0,
  engine_hours double precision not null default 0,
  engine2_hours double precision not null default 0,
  engine3_hours double precision not null default 0,
  generator1_hours double precision not null default 0,
  generator2_hours double precision not null default 0,
  hydraulic_hours double precision not null default 0,
  use_ism boolean,
  sort_order bigint,
  engine_hours_updated_at timestamptz,
  number_of_engines bigint,
  has_generator boolean,
  number_of_generators bigint,
  has_hydraulic boolean,
  updated_at timestamptz not null default now()
);

create table public.vessel_profiles (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  profile_json text not null default '{}',
  photo_path text,
  updated_at timestamptz not null default now()
);

create table public.maintenance_tasks (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  title text not null default '',
  notes text not null default '',
  category text not null default '',
  trigger_type text not null default '',
  is_completed boolean not null default false,
  due_date timestamptz,
  recurring_days bigint,
  due_at_engine_hours double precision,
  recurring_engine_hours double precision,
  photo_paths_json text,
  priority text,
  snoozed_until timestamptz,
  kind text,
  updated_at timestamptz not null default now()
);

create table public.service_logs (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  task_id uuid not null,
  vessel_id uuid not null,
  task_title text not null default '',
  category text not null default '',
  completed_date timestamptz not null,
  engine_hours_at_service double precision not null default 0,
  technician_notes text not null default '',
  cost double precision,
  completed_by text,
  equipment_id uuid,
  parts_used text,
  kind text,
  updated_at timestamptz not null default now()
);

create table public.ships_log (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  date timestamptz not null,
  engine_hours double precision not null default 0,
  hours_underway double precision,
  departure_port text not null default '',
  arrival_port text not null default '',
  distance_nm double precision,
  fuel_used_gallons double precision,
  weather text not null default '',
  sea_state text not null default '',
  crew_count bigint not null default 0,
  notes text not null default '',
  skipper text not null default '',
  guests text,
  crew_roster text,
  trip_log text,
  wind_speed_knots double precision,
  wind_direction text,
  wave_height_feet double precision,
  updated_at timestamptz not null default now()
);

create table public.bunkering_records (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  vessel_name text not null default '',
  date timestamptz not null,
  supplier_name text not null default '',
  port text not null default '',
  location text not null default '',
  fuel_type text not null default '',
  quantity_gallons double precision not null default 0,
  price_per_gallon double precision not null default 0,
  total_charge double precision not null default 0,
  currency text not null default '',
  invoice_number text not null default '',
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.ship_documents (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  title text not null default '',
  category text not null default '',
  document_number text not null default '',
  issuing_authority text not null default '',
  issue_date timestamptz,
  expiry_date timestamptz,
  notes text not null default '',
  file_name text,
  file_type text,
  file_path text,
  updated_at timestamptz not null default now()
);

create table public.ship_contacts (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  first_name text not null default '',
  last_name text not null default '',
  company text not null default '',
  role text not null default '',
  phone text not null default '',
  mobile text not null default '',
  email text not null default '',
  vhf_channel text not null default '',
  port text not null default '',
  country text not null default '',
  notes text not null default '',
  compliance_documents_json text,
  is_authorized_dealer boolean,
  updated_at timestamptz not null default now()
);

create table public.equipment (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  component text not null default '',
  make text not null default '',
  model text not null default '',
  serial_number text not null default '',
  system text not null default '',
  is_critical boolean not null default false,
  location text not null default '',
  year_installed text not null default '',
  notes text not null default '',
  warranty_start timestamptz,
  warranty_expiry timestamptz,
  warranty_notes text,
  document_ids_json text,
  updated_at timestamptz not null default now()
);

create table public.voyage_plans (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  plan_name text not null default '',
  date_created timestamptz not null default now(),
  plan_json text not null default '{}',
  updated_at timestamptz not null default now()
);

create table public.saved_waypoints (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  name text not null default '',
  latitude double precision not null default 0,
  longitude double precision not null default 0,
  notes text not null default '',
  category text not null default '',
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);

create table public.crew_members (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  first_name text not null default '',
  last_name text not null default '',
  role text not null default '',
  nationality text not null default '',
  phone text not null default '',
  email text not null default '',
  emergency_name text not null default '',
  emergency_phone text not null default '',
  embark_date timestamptz,
  disembark_date timestamptz,
  is_active boolean not null default true,
  notes text not null default '',
  certifications_json text not null default '[]',
  extended_json text not null default '{}',
  updated_at timestamptz not null default now()
);

create table public.guest_profiles (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  first_name text not null default '',
  last_name text not null default '',
  title text not null default '',
  nationality text not null default '',
  date_of_birth timestamptz,
  phone text not null default '',
  email text not null default '',
  passport_number text,
  passport_country text,
  passport_expiry timestamptz,
  is_vip boolean not null default false,
  party_group text not null default '',
  likes text not null default '',
  dislikes text not null default '',
  notes text not null default '',
  medical text not null default '',
  food_json text not null default '[]',
  allergies_json text not null default '[]',
  watersports_json text not null default '[]',
  sundries_json text not null default '[]',
  beverages_json text not null default '[]',
  photo_path text,
  documents_json text,
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);

create table public.calendar_events (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  title text not null default '',
  start_date timestamptz not null,
  end_date timestamptz,
  is_all_day boolean not null default false,
  location text not null default '',
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.ism_records (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  check_definition_id uuid,
  check_title text not null default '',
  check_category text not null default '',
  check_icon text not null default '',
  completed_date timestamptz not null,
  completed_by text not null default '',
  crew_present text not null default '',
  location text not null default '',
  notes text not null default '',
  passed boolean not null default false,
  corrective_action text not null default '',
  next_due_date timestamptz,
  check_type text,
  custom_title text not null default '',
  updated_at timestamptz not null default now()
);

create table public.ism_check_definitions (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  title text not null default '',
  category text not null default '',
  icon text not null default '',
  interval_days bigint not null default 0,
  is_enabled boolean not null default true,
  is_built_in boolean not null default false,
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.marpol_records (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  record_type text not null default '',
  date timestamptz not null,
  operation_category text not null default '',
  quantity text not null default '',
  disposal_method text not null default '',
  port text not null default '',
  latitude text not null default '',
  longitude text not null default '',
  receipt_number text not null default '',
  signed_by text not null default '',
  notes text not null default '',
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);

create table public.gmdss_test_logs (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  test_type text not null default '',
  date timestamptz not null,
  result text not null default '',
  performed_by text not null default '',
  notes text not null default '',
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);

create table public.yard_periods (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  name text not null default '',
  yard_name text not null default '',
  location text not null default '',
  status text not null default '',
  start_date timestamptz,
  end_date timestamptz,
  estimated_cost double precision,
  actual_cost double precision,
  currency text not null default '',
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.work_orders (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  yard_period_id uuid not null,
  title text not null default '',
  trade text not null default '',
  contractor text not null default '',
  description text not null default '',
  status text not null default '',
  priority text not null default '',
  quoted_cost double precision,
  actual_cost double precision,
  currency text not null default '',
  start_date timestamptz,
  completion_date timestamptz,
  photo_paths_json text not null default '[]',
  document_paths_json text,
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.punch_list_items (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  yard_period_id uuid not null,
  title text not null default '',
  description text not null default '',
  assigned_to text not null default '',
  trade text not null default '',
  priority text not null default '',
  is_resolved boolean not null default false,
  resolved_date timestamptz,
  resolved_notes text not null default '',
  photo_paths_json text,
  document_paths_json text,
  updated_at timestamptz not null default now()
);

create table public.yard_log_entries (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid not null,
  yard_period_id uuid not null,
  timestamp timestamptz not null,
  author text not null default '',
  category text not null default '',
  title text not null default '',
  notes text not null default '',
  updated_at timestamptz not null default now()
);

create table public.user_settings (
  user_id uuid primary key default auth.uid() references auth.users (id) on delete cascade,
  selected_vessel_id uuid,
  weather_location text,
  tide_station_id text,
  tide_station_name text,
  onboarding_complete boolean not null default false,
  display_name text,
  app_version text,
  updated_at timestamptz not null default now()
);
alter table public.user_settings enable row level security;

create table public.subscription_accounts (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),
  account_id uuid not null references public.accounts (id) on delete cascade,
  vessel_id uuid,
  service_name text not null default '',
  provider text not null default '',
  category text not null default '',
  username text not null default '',
  account_number text not null default '',
  login_url text not null default '',
  recovery_email text not null default '',
  mfa_notes text not null default '',
  monthly_cost double precision,
  currency text not null default '',
  billing_cycle text not null default '',
  renewal_date timestamptz,
  contact_phone text not null default '',
  notes text not null default '',
  is_archived boolean not null default false,
  updated_at timestamptz not null default now()
);

create table public.crew_board_posts (
  id uuid primary key,
  user_id uuid not null default auth.uid() references auth.users (id),  -- the author
  account_id uuid not null references public.accounts (id) on delete cascade,
  author_name text not null default '',
  type text not null default '',
  department text not null default '',
  priority text not null default '',
  title text not null default '',
  body text not null default '',
  is_pinned boolean not null default false,
  expires_at timestamptz,
  requires_acknowledgment boolean not null default false,
  photo_paths_json text,
  document_paths_json text,
  created_at timestamptz not null default now(),
  updated_at timestamptz not null default now()
);

-- Who has read a post that asks for it. Rows are added, never changed.
create table public.crew_board_acknowledgments (
  post_id uuid not null,
  user_id uuid not null default auth.uid() references auth.users (id) on delete cascade,
  account_id uuid not null references public.accounts (id) on delete cascade,
  acknowledged_at timestamptz not null default now(),
  primary key (post_id, user_id)
);
create index crew_board_acknowledgments_account_idx on public.crew_board_acknowledgments (account_id, post_id, user_id);
create index crew_board_acknowledgments_user_idx on public.crew_board_acknowledgments (user_id);
alter table public.crew_board_acknowledgments enable row level security;

insert into private.registers (table_name, module) values
  ('vessels', 'tasks'), ('vessel_profiles', 'tasks'), ('maintenance_tasks', 'tasks'), ('service_logs', 'tasks'),
  ('ships_log', 'shipslog'), ('bunkering_records', 'bunkering'), ('ship_documents', 'documents'),
  ('ship_contacts', 'contacts'), ('equipment', 'equipment'), ('voyage_plans', 'voyage'), ('saved_waypoints', 'voyage'),
  ('crew_members', 'crew'), ('guest_profiles', 'guests'), ('calendar_events', 'calendar'), ('ism_records', 'ism'),
  ('ism_check_definitions', 'ism'), ('marpol_records', 'marpol'), ('gmdss_test_logs', 'gmdss'),
  ('yard_periods', 'yardRefit'), ('work_orders', 'yardRefit'), ('punch_list_items', 'yardRefit'),
  ('yard_log_entries', 'yardRefit'), ('subscription_accounts', 'subscriptions'), ('crew_board_posts', null);

-- The targets of composite foreign keys.
alter table public.vessels add unique (account_id, id);
alter table public.yard_periods add unique (account_id, id);

-- What every register has besides: an index to read an account's rows by page, and vessels and yard periods referenced together with the account, so that no row hangs on another account's vessel.
-- user_id has no index: it is searched only when a person is deleted.
do $$
declare
  register text;
begin
  for register in select table_name from private.registers loop
    execute format('alter table public.%I enable row level security', register);
    if register not in ('vessels', 'yard_periods') then
      execute format('create index %I on public.%I (account_id, id)', register || '_account_idx', register);
    end if;
    if exists (select from pg_attribute where attrelid = format('public.%I', register)::regclass and attname = 'vessel_id') then
      execute format('alter table public.%I add constraint %I foreign key (account_id, vessel_id)
        references public.vessels (account_id, id) on delete cascade', register, register || '_vessel_fkey');
      execute format('create index %I on public.%I (account_id, vessel_id)', register || '_vessel_idx', register);
    end if;
    if exists (select from pg_attribute where attrelid = format('public.%I', register)::regclass and attname = 'yard_period_id') then
      execute format('alter table public.%I add constraint %I foreign key (account_id, yard_period_id)
        references public.yard_periods (account_id, id) on delete cascade', register, register || '_yard_period_fkey');
      execute format('create index %I on public.%I (account_id, yard_period_id)', register || '_yard_period_idx', register);
    end if;
  end loop;
end
$$;
