// The first sync of an account as a program for Node does it with the services' own client library: every table in pages of
// what the server gives, six at a time, each page into SQLite in one transaction.
import { createClient } from '@supabase/supabase-js'
import Database from 'libsql'
import { mkdtempSync, readFileSync, rmSync } from 'node:fs'
import { tmpdir } from 'node:os'
import { join } from 'node:path'

const pageRows = 1000
const pagesAtOnce = 6
const tables = [
  'vessels', 'vessel_profiles', 'maintenance_tasks', 'service_logs', 'ships_log', 'bunkering_records', 'ship_documents',
  'ship_contacts', 'equipment', 'voyage_plans', 'saved_waypoints', 'crew_members', 'guest_profiles', 'calendar_events',
  'ism_records', 'marpol_records', 'gmdss_test_logs', 'ism_check_definitions', 'yard_periods', 'subscription_accounts',
  'crew_board_posts', 'conflict_notes'
]

const { THALVORN_BACKEND_URL: url, THALVORN_BACKEND_KEY: key, BENCH_EMAIL: email, BENCH_PASSWORD: password } = process.env
const client = createClient(url, key, { auth: { persistSession: false, autoRefreshToken: false } })

function sure({ data, error, count }) {
  if (error) throw new Error(error.message)
  return { data, count }
}

const folder = mkdtempSync(join(tmpdir(), 'first-sync-'))
const database = new Database(join(folder, 'rows.db'))
database.pragma('journal_mode = WAL')
database.pragma('synchronous = FULL')
database.exec('create table row (id text primary key, kind text not null, json text not null)')
const insert = database.prepare('insert or replace into row values (?, ?, ?)')
const keep = database.transaction((table, rows) => {
  for (const row of rows) insert.run(row.id, table, JSON.stringify(row))
})

const session = sure(await client.auth.signInWithPassword({ email, password })).data
const members = sure(await client.from('account_members').select('*').eq('user_id', session.user.id)).data
const account = members[0].account_id

async function page(table, first) {
  const rows = client.from(table).select('*', first === 0 ? { count: 'exact' } : {})
  return sure(await rows.eq('account_id', account).order('id').range(first, first + pageRows - 1))
}

for (const table of tables) {
  const { data, count } = await page(table, 0)
  keep(table, data)
  let next = pageRows
  const fetchOthers = async () => {
    while (next < count) {
      const first = next
      next += pageRows
      keep(table, (await page(table, first)).data)
    }
  }
  await Promise.all(Array.from({ length: pagesAtOnce }, fetchOthers))
}

const { tasks } = database.prepare("select count(*) as tasks from row where kind = 'maintenance_tasks'").get()
database.close()
rmSync(folder, { recursive: true })
console.log(/VmHWM:\s*(\d+)/.exec(readFileSync('/proc/self/status', 'utf8'))[1])
process.exit(tasks === Number(process.env.BENCH_ROWS) ? 0 : 1)
