-- A number is not the text of its digits: a reader who expects a text finds none. The parts of two crew rows are compared as
-- the JSON they are.
create or replace function private.changed_crew_parts(old_certifications text, certifications text, old_extended text, extended text)
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
    if coalesce(before -> 'employmentStatus', '"active"') <> coalesce(after -> 'employmentStatus', '"active"') then
      parts := array_append(parts, 'crewLeave');
    end if;
    if exists (select from unnest(travel) field where coalesce(before -> field, '""') <> coalesce(after -> field, '""')) then
      parts := array_append(parts, 'crewDocs');
    end if;
  end if;
  return parts;
end
$$;
