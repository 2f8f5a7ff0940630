"""The table interface on the wire: what a client must be able to rely on, and what it must be able to bear."""

import time
import unittest
import urllib.parse

from backend import shared

TABLES = """
create table public.probe (id uuid primary key default gen_random_uuid(), name text not null default 'unnamed', note text,
  amount numeric, hours bigint, place float8, done boolean, at timestamptz, extra jsonb, kept json, email text unique);
create table public.plain (id int, name text);
create table public.guarded (id int primary key, owner uuid, name text);
alter table public.guarded enable row level security;
create policy own on public.guarded to authenticated using (owner = (select auth.uid())) with check (owner = (select auth.uid()));
create table public.parent (id int primary key);
create table public.child (id int primary key, parent int constraint child_parent_fkey references public.parent (id));
grant select, insert, update, delete on public.probe, public.plain, public.guarded, public.parent, public.child to authenticated;
insert into public.plain select n, case n % 5 when 0 then null else 'row ' || n end from generate_series(1, 15) n;
create function public.context() returns json language sql as $$ select json_build_object('role', current_user,
  'sub', auth.uid(), 'method', current_setting('request.method'), 'path', current_setting('request.path'),
  'agent', current_setting('request.headers')::json ->> 'user-agent',
  'timeout', current_setting('statement_timeout'), 'search_path', current_setting('search_path')) $$;
create function public.twice(number int) returns int language sql stable as $$ select number * 2 $$;
create function public.numbers(up_to int) returns setof int language sql stable as $$ select generate_series(1, up_to) $$;
create function public.plains(lowest int default 0) returns setof public.plain language sql stable as $$
  select * from public.plain where id >= lowest $$;
create function public.first_plain() returns public.plain language sql stable as $$ select * from public.plain where id = 1 $$;
create function public.write_plain() returns void language sql as $$ insert into public.plain values (99, 'called'); delete from public.plain where id = 99 $$;
create function public.either(a int) returns int language sql as $$ select 1 $$;
create function public.either(a text) returns int language sql as $$ select 2 $$;
create function public.fail(code text, message text, detail text default '') returns void language plpgsql as $$
  begin raise exception using errcode = code, message = message, detail = detail; end $$;
"""

ID = "0b9c1c52-7f3e-4b56-9a9e-5c1f6f1f0001"
OTHER = "0b9c1c52-7f3e-4b56-9a9e-5c1f6f1f0002"
MERGE = "resolution=merge-duplicates,return=minimal"


def setUpModule():
    global backend, token
    backend = shared()
    backend.sql(TABLES)
    token = backend.sign_in().json["access_token"]


class RestTest(unittest.TestCase):
    def rest(self, method, path, body=None, **headers):
        return backend.send(method, "/rest/v1/" + path, body, **{"token": token, **headers})

    def refused(self, reply, status, code, message=None):
        self.assertEqual((reply.status, reply.json["code"]), (status, code), reply.text)
        self.assertEqual(sorted(reply.json), ["code", "details", "hint", "message"])
        self.assertEqual(reply.headers["Proxy-Status"], "PostgREST; error=" + code)
        if message:
            self.assertIn(message, reply.json["message"])

    def setUp(self):
        backend.sql("truncate public.probe, public.guarded, public.child, public.parent")


class Keys(RestTest):
    def test_requests_without_a_valid_key_stop_at_the_edge(self):
        for headers in ({}, {"apikey": "sb_publishable_wrong"}):
            reply = backend.bare("GET", "/rest/v1/plain", headers=headers)
            self.assertEqual(reply.status, 401)
            self.assertEqual(sorted(reply.json), ["hint", "message"])
        self.assertEqual(backend.send("GET", "/elsewhere").status, 404)

    def test_both_forms_of_key_act_as_anon_and_carry_a_users_token(self):
        opaque = backend.bare("GET", "/dev/settings").json["publishableKey"]
        for key in (backend.ready["anonKey"], opaque):
            for headers in ({"apikey": key}, {"apikey": key, "Authorization": "Bearer " + key}):
                self.refused(backend.bare("GET", "/rest/v1/plain", headers=headers), 401, "42501", "permission denied")
            signed_in = backend.bare("GET", "/rest/v1/plain", headers={"apikey": key, "Authorization": "Bearer " + token})
            self.assertEqual(signed_in.status, 200)

    def test_tokens_that_do_not_hold_are_told_apart(self):
        session = backend.sign_in().json
        until_expiry = session["expires_at"] - int(time.time())
        with backend.settings(clockOffset=until_expiry + 10):
            self.assertEqual(self.rest("GET", "plain", token=session["access_token"]).status, 200, "half a minute of leeway")
        with backend.settings(clockOffset=until_expiry + 40):
            late = self.rest("GET", "plain", token=session["access_token"])
            self.refused(late, 401, "PGRST303", "JWT expired")
            self.assertEqual(late.headers["WWW-Authenticate"],
                             'Bearer error="invalid_token", error_description="JWT expired"')
        with backend.settings(clockOffset=-3600):
            self.refused(self.rest("GET", "plain"), 401, "PGRST303", "JWT issued at future")
        self.refused(self.rest("GET", "plain", token=token[:-4] + "AAAA"), 401, "PGRST301")
        self.refused(self.rest("GET", "plain", token="nonsense"), 401, "PGRST301", "Expected 3 parts in JWT")
        backend.sign_up("ghost@rest.example")
        backend.sql("update auth.users set role = 'ghost' where email = 'ghost@rest.example'")
        ghost = backend.sign_in({"email": "ghost@rest.example", "password": "correct horse"}).json["access_token"]
        self.refused(self.rest("GET", "plain", token=ghost), 401, "22023", 'role "ghost" does not exist')


class Reading(RestTest):
    def test_pages_status_and_content_range(self):
        cases = [  # query, Prefer, Range, status, Content-Range
            ("", None, None, 200, "0-14/*"),
            ("", "count=exact", None, 200, "0-14/15"),
            ("limit=5", "count=exact", None, 206, "0-4/15"),
            ("limit=5&offset=10", "count=exact", None, 206, "10-14/15"),
            ("offset=15", "count=exact", None, 206, "*/15"),
            ("offset=100", None, None, 200, "*/*"),
            ("limit=0", None, None, 200, "*/*"),
            ("offset=-3", None, None, 200, "0-14/*"),
            ("", None, "0-4", 200, "0-4/*"),
            ("limit=10&offset=2", None, "4-6", 200, "4-6/*"),
            ("", None, "bytes=0-4", 200, "0-14/*"),
            ("id=gt.99", "count=exact", None, 200, "*/0"),
        ]
        for query, prefer, page, status, content_range in cases:
            reply = self.rest("GET", "plain?" + query, prefer=prefer, range=page)
            self.assertEqual((reply.status, reply.headers["Content-Range"]), (status, content_range), query)
        beyond = self.rest("GET", "plain?offset=100", prefer="count=exact")
        self.refused(beyond, 416, "PGRST103", "Requested range not satisfiable")
        self.assertEqual(beyond.json["details"], "An offset of 100 was requested, but there are only 15 rows.")
        self.refused(self.rest("GET", "plain?limit=-1"), 416, "PGRST103")
        self.refused(self.rest("GET", "plain", range="5-2"), 416, "PGRST103")

    def test_the_row_limit_cuts_silently(self):
        with backend.settings(maxRows=3):
            reply = self.rest("GET", "plain?limit=10")
            self.assertEqual((reply.status, len(reply.json), reply.headers["Content-Range"]), (200, 3, "0-2/*"))
            self.assertEqual(self.rest("GET", "plain", prefer="count=exact").status, 206)
            self.assertEqual(len(self.rest("POST", "rpc/plains", {}).json), 3)
            rows = [{"id": n, "name": "written"} for n in range(100, 105)]
            self.assertEqual(len(self.rest("POST", "plain", rows, prefer="return=representation").json), 5)
        self.assertEqual(self.rest("DELETE", "plain?id=gte.100", prefer="count=exact").headers["Content-Range"], "*/5")

    def test_headers_and_head(self):
        reply = self.rest("GET", "plain?select=id&limit=1")
        self.assertEqual(reply.headers["Content-Type"], "application/json; charset=utf-8")
        self.assertEqual(reply.headers["Content-Location"], "/plain?select=id&limit=1")
        self.assertTrue(reply.headers["Date"].endswith(" GMT"))
        head = self.rest("HEAD", "plain?select=id&limit=1", prefer="count=exact")
        self.assertEqual((head.status, head.body, head.headers["Content-Range"]), (206, b"", "0-0/15"))
        self.assertEqual(head.headers["Content-Length"], str(len(reply.body)))
        self.assertIn(b"}, \n {", self.rest("GET", "plain?limit=2").body)

    def test_order_puts_nulls_where_postgresql_does(self):
        def nulls(order):
            return [row["name"] is None for row in self.rest("GET", f"plain?select=name&order={order}").json]
        self.assertEqual(nulls("name.asc")[-3:], [True] * 3)
        self.assertEqual(nulls("name.desc")[:3], [True] * 3)
        self.assertEqual(nulls("name.desc.nullslast")[-3:], [True] * 3)
        self.assertEqual(nulls("name.nullsfirst,id.desc")[:3], [True] * 3)

    def test_filters(self):
        names = {1: 'say "hi", (you)', 2: "a+b", 3: "100%_x", 4: "comma,dot.", 5: None}
        backend.sql("create table public.words (id int primary key, name text, extra jsonb);"
                    "grant all on public.words to authenticated;")
        rows = [{"id": key, "name": name, "extra": {"n": key, "tag": "t%d" % key}} for key, name in names.items()]
        self.assertEqual(self.rest("POST", "words", rows).status, 201)
        quote = urllib.parse.quote
        cases = [
            ("name=eq." + quote(names[1]), [1]), ("name=eq.a%2Bb", [2]), ("name=eq.a+b", []),
            ("name=in." + quote(r'("say \"hi\", (you)",a+b)'), [1, 2]), ("id=in.()", []),
            ("name=is.null", [5]), ("name=not.is.null&id=lt.3", [1, 2]), ("name=eq.null", []),
            ("name=like.*com*", [4]), ("name=ilike.COMMA*", [4]), ("id=neq.1&id=gte.4", [4, 5]), ("id=not.in.(1,2,3)", [4, 5]),
            ("or=(id.eq.1,and(id.gt.2,id.lt.5))", [1, 3, 4]), ("and=(id.gt.1,not.or(id.eq.2,name.is.null))", [3, 4]),
            ("or=(name.eq." + quote('"comma,dot."') + ",id.eq.2)", [2, 4]), ("not.or=(id.lte.3,id.eq.5)", [4]),
            ("extra->>tag=eq.t3", [3]), ("extra->n=gt.3", [4, 5]), ("id=eq(any).{1,5}", [1, 5]), ("extra=cs." + quote('{"n":2}'), [2]),
        ]
        for query, expected in cases:
            reply = self.rest("GET", "words?select=id&order=id&" + query)
            self.assertEqual([row["id"] for row in reply.json], expected, query + " " + reply.text)
        chosen = self.rest("GET", "words?id=eq.3&select=label:name,key:id::text,extra->>tag").json
        self.assertEqual(chosen, [{"label": "100%_x", "key": "3", "tag": "t3"}])
        for bad in ("id=equals.3", "id=3", "or=(id.eq.1", "order=id.up", "select=(id)"):
            self.refused(self.rest("GET", "words?" + bad), 400, "PGRST100", "failed to parse")
        self.refused(self.rest("GET", "probe?id=eq.abc"), 400, "22P02", "invalid input syntax for type uuid")
        self.refused(self.rest("GET", "probe?at=gt.2026-01-31T08:00:00+00:00"), 400, "22007")
        self.refused(self.rest("GET", "probe?missing=eq.1"), 400, "42703")

    def test_what_is_not_there(self):
        self.refused(self.rest("GET", "nothing"), 404, "PGRST205", "Could not find the table 'public.nothing'")
        self.refused(self.rest("GET", "plain/1"), 404, "PGRST125")
        self.refused(self.rest("GET", "plain", accept="text/csv"), 406, "PGRST107")
        self.refused(self.rest("GET", "plain", accept_profile="private"), 406, "PGRST106")
        single = "application/vnd.pgrst.object+json"
        self.refused(self.rest("GET", "plain", accept=single), 406, "PGRST116")
        one = self.rest("GET", "plain?id=eq.1", accept=single)
        self.assertEqual((one.json["id"], one.headers["Content-Type"]), (1, single + "; charset=utf-8"))
        backend.sql("create table public.late (id int); grant select on public.late to authenticated")
        self.assertEqual(self.rest("GET", "late").json, [], "a table made meanwhile is found")

    def test_values_as_postgresql_writes_them(self):
        sent = {"id": ID.upper(), "amount": "12.50", "hours": 9007199254740993, "place": "NaN", "at": "2026-01-31T10:00:00.120400+02:00",
                "extra": {"b": 1e2, "a": 1}, "done": "yes"}
        self.assertEqual(self.rest("POST", "probe", sent).status, 201)
        text = self.rest("GET", "probe?select=id,amount,hours,place,at,extra,done").text
        for part in (f'"id":"{ID}"', '"amount":12.50', '"hours":9007199254740993', '"place":"NaN"',
                     '"at":"2026-01-31T08:00:00.1204+00:00"', '"extra":{"a": 1, "b": 100', '"done":true'):
            self.assertIn(part, text)
        with backend.settings(timeZone="Asia/Kolkata"):
            self.assertIn("T13:30:00.1204+05:30", self.rest("GET", "probe?select=at").text)
        zoned = self.rest("GET", "probe?select=at", prefer="timezone=America/New_York")
        self.assertIn("T03:00:00.1204-05:00", zoned.text)
        self.assertEqual(zoned.headers["Preference-Applied"], "timezone=America/New_York")


class Writing(RestTest):
    def test_minimal_replies_have_no_body_and_no_type(self):
        for prefer in (None, "return=minimal"):
            reply = self.rest("POST", "plain", {"id": 50}, prefer=prefer)
            self.assertEqual((reply.status, reply.body, reply.headers["Content-Length"]), (201, b"", "0"))
            self.assertIsNone(reply.headers["Content-Type"])
            self.assertEqual(reply.headers["Content-Range"], "*/*")
        self.assertEqual(self.rest("PATCH", "plain?id=eq.50", {"name": "x"}).status, 204)
        counted = self.rest("DELETE", "plain?id=eq.50", prefer="count=exact, return=representation")
        self.assertEqual((counted.status, len(counted.json), counted.headers["Content-Range"]), (200, 2, "*/2"))
        again = self.rest("DELETE", "plain?id=eq.50")
        self.assertEqual((again.status, again.body, again.headers["Content-Type"]), (204, b"", None))
        self.assertEqual(self.rest("PATCH", "plain?id=eq.50", {}, prefer="count=exact").headers["Content-Range"], "*/0")

    def test_preferences(self):
        reply = self.rest("POST", "probe", [{"id": ID}], prefer="count=exact, return=representation, wild=1, return=minimal,"
                          " missing=default, resolution=merge-duplicates, handling=lenient")
        self.assertEqual(reply.headers["Preference-Applied"], "resolution=merge-duplicates, missing=default, "
                         "return=representation, count=exact, handling=lenient")
        strict = self.rest("GET", "plain", prefer="handling=strict, wild=1")
        self.refused(strict, 400, "PGRST122")
        self.assertEqual(strict.json["details"], "Invalid preferences: wild=1")
        limited = "handling=strict, max-affected=1"
        self.refused(self.rest("PATCH", "plain?id=lt.4", {"name": "x"}, prefer=limited), 400, "PGRST124")
        self.assertEqual(self.rest("GET", "plain?id=lt.4&name=eq.x").json, [], "nothing was changed")
        ignored = self.rest("POST", "plain", [{"id": 70}], prefer=MERGE)
        self.assertEqual((ignored.status, ignored.headers["Preference-Applied"]), (201, "return=minimal"))
        self.rest("DELETE", "plain?id=eq.70")

    def test_upserts_tell_inserts_from_updates(self):
        row = {"id": ID, "name": "first", "note": "kept"}
        self.assertEqual(self.rest("POST", "probe", [row], prefer=MERGE).status, 201)
        again = self.rest("POST", "probe", [{"id": ID, "name": "second"}], prefer=MERGE)
        self.assertEqual((again.status, again.headers["Preference-Applied"]), (200, "resolution=merge-duplicates, return=minimal"))
        self.assertEqual(self.rest("GET", "probe?select=name,note").json, [{"name": "second", "note": "kept"}])
        mixed = [{"id": ID, "note": None}, {"id": OTHER, "note": "new"}]
        self.assertEqual(self.rest("POST", "probe", mixed, prefer=MERGE).status, 201)
        self.assertEqual(self.rest("GET", "probe?order=id&select=name,note").json,
                         [{"name": "second", "note": None}, {"name": "unnamed", "note": "new"}])
        skipped = self.rest("POST", "probe", [{"id": ID, "name": "third"}], prefer="resolution=ignore-duplicates,return=representation")
        self.assertEqual((skipped.status, skipped.json), (201, []))
        self.assertEqual((self.rest("POST", "probe", [], prefer=MERGE).status, self.rest("POST", "probe", []).status), (200, 201))
        with backend.settings(olderErrors=True):
            self.assertEqual(self.rest("POST", "probe", [{"id": ID}], prefer=MERGE).status, 201)

    def test_conflict_targets(self):
        by_email = "probe?on_conflict=email"
        self.assertEqual(self.rest("POST", by_email, [{"email": "a@b", "name": "one"}], prefer=MERGE).status, 201)
        self.assertEqual(self.rest("POST", by_email, [{"email": "a@b", "name": "two"}], prefer=MERGE).status, 200)
        self.refused(self.rest("POST", "probe", [{"email": "a@b"}], prefer=MERGE), 409, "23505")
        self.refused(self.rest("POST", "probe?on_conflict=name", [{"name": "x"}], prefer=MERGE), 400, "42P10")
        twice = [{"id": ID}, {"id": ID}]
        self.refused(self.rest("POST", "probe", twice, prefer=MERGE), 500, "21000", "cannot affect row a second time")

    def test_bodies_that_are_refused_leave_nothing_behind(self):
        for body in ("", "{", "nonsense", '[1]', '"text"', '{"id":1} {"id":2}'):
            reply = self.rest("POST", "plain", body, content_type="application/json")
            self.refused(reply, 400, "PGRST102", "Empty or invalid json")
        self.refused(self.rest("POST", "plain", [{"id": 1}, {"name": "x"}]), 400, "PGRST102", "All object keys must match")
        self.refused(self.rest("POST", "plain", "id=1", content_type="text/plain"), 400, "PGRST102", "Content-Type not acceptable")
        self.refused(self.rest("POST", "plain", [{"id": 1, "colour": 2}]), 400, "PGRST204",
                     "Could not find the 'colour' column of 'plain' in the schema cache")
        self.refused(self.rest("POST", "probe", [{"id": ID, "hours": "7"}, {"id": OTHER, "hours": "1.0"}]), 400, "22P02")
        self.refused(self.rest("POST", "probe", '[{"note":"\\u0000"}]'), 400, "22P05")
        self.refused(self.rest("POST", "probe", '[{"note":"\\ud800"}]'), 400, "22P02")
        self.refused(self.rest("POST", "probe", [{"at": ""}]), 400, "22007")
        self.refused(self.rest("POST", "probe", [{"name": None}]), 400, "23502")
        self.assertEqual(self.rest("GET", "probe").json, [])

    def test_chosen_columns(self):
        rows = [{"id": ID, "note": "a", "stray": 1}, {"id": OTHER}]
        self.assertEqual(self.rest("POST", "probe?columns=id,note", rows).status, 201)
        backend.sql("truncate public.probe")
        self.refused(self.rest("POST", "probe?columns=id,name", rows), 400, "23502")
        self.assertEqual(self.rest("POST", "probe?columns=id,name", rows, prefer="missing=default").status, 201)
        self.assertEqual(self.rest("GET", "probe?select=name").json, [{"name": "unnamed"}] * 2)
        backend.sql("truncate public.probe")
        self.assertEqual(self.rest("POST", "probe", {}).status, 201)
        self.assertEqual(self.rest("GET", "probe?select=name").json, [{"name": "unnamed"}])

    def test_references_and_missing_filters(self):
        orphan = self.rest("POST", "child", {"id": 1, "parent": 7})
        self.refused(orphan, 409, "23503", "child_parent_fkey")
        self.assertEqual(orphan.json["details"], 'Key (parent)=(7) is not present in table "parent".')
        self.refused(self.rest("DELETE", "plain"), 400, "21000", "DELETE requires a WHERE clause")
        self.refused(self.rest("PATCH", "plain", {"name": "x"}), 400, "21000", "UPDATE requires a WHERE clause")
        self.refused(self.rest("PUT", "plain?id=eq.1", {"id": 1}), 405, "PGRST117")

    def test_rights_show_as_401_403_or_silence(self):
        me = self.rest("POST", "rpc/context", {}).json["sub"]
        self.assertEqual(self.rest("POST", "guarded", {"id": 1, "owner": me}).status, 201)
        self.refused(self.rest("POST", "guarded", {"id": 2, "owner": OTHER}), 403, "42501", 'policy for table "guarded"')
        self.refused(self.rest("POST", "guarded", {"id": 2}, token=None), 401, "42501", "permission denied")
        backend.sql(f"insert into public.guarded values (3, '{OTHER}', 'hidden')")
        hidden = self.rest("PATCH", "guarded?id=eq.3", {"name": "x"}, prefer="count=exact")
        self.assertEqual((hidden.status, hidden.headers["Content-Range"]), (204, "*/0"))
        self.assertEqual(len(self.rest("GET", "guarded").json), 1)
        self.refused(self.rest("POST", "guarded", [{"id": 3, "owner": me}], prefer=MERGE), 403, "42501", "USING expression")


class Calling(RestTest):
    def test_results_take_the_functions_shape(self):
        self.assertEqual(self.rest("POST", "rpc/twice", {"number": 21}).text, "42")
        self.assertEqual(self.rest("GET", "rpc/twice?number=4").text, "8")
        self.assertEqual(self.rest("POST", "rpc/numbers", {"up_to": 3}).json, [1, 2, 3])
        self.assertEqual(self.rest("POST", "rpc/first_plain", {}).json, {"id": 1, "name": "row 1"})
        some = self.rest("POST", "rpc/plains?select=id&id=lt.12&order=id.desc&limit=2", {"lowest": 10}, prefer="count=exact")
        self.assertEqual((some.json, some.status, some.headers["Content-Range"]), ([{"id": 11}, {"id": 10}], 200, "0-1/2"))
        nothing = self.rest("POST", "rpc/write_plain", "", content_type=None)
        self.assertEqual((nothing.status, nothing.body), (204, b""))

    def test_calls_that_fit_no_function_or_several(self):
        unknown = self.rest("POST", "rpc/twice", {"numbr": 1})
        self.refused(unknown, 404, "PGRST202", "Could not find the function public.twice(numbr) in the schema cache")
        self.refused(self.rest("POST", "rpc/nothing", {}), 404, "PGRST202", "without parameters")
        self.refused(self.rest("POST", "rpc/either", {"a": 1}), 300, "PGRST203")
        self.refused(self.rest("GET", "rpc/write_plain"), 405, "25006")
        self.refused(self.rest("DELETE", "rpc/twice"), 405, "PGRST101")

    def test_functions_choose_their_refusals(self):
        def fail(code, message, detail=""):
            return self.rest("POST", "rpc/fail", {"code": code, "message": message, "detail": detail})
        self.refused(fail("P0001", "no seats"), 400, "P0001", "no seats")
        self.refused(fail("PT409", "taken"), 409, "PT409", "taken")
        chosen = fail("PGRST", '{"code":"SEATS","message":"full","details":"d","hint":"h"}', '{"status":418,"headers":{"X-Seats":"0"}}')
        self.refused(chosen, 418, "SEATS", "full")
        self.assertEqual((chosen.headers["X-Seats"], chosen.json["hint"]), ("0", "h"))
        self.refused(fail("PGRST", "no json"), 500, "PGRST121")

    def test_each_request_runs_as_its_caller(self):
        mine = self.rest("POST", "rpc/context", {}, user_agent="thalvorn-test").json
        self.assertEqual((mine["role"], mine["method"], mine["path"]), ("authenticated", "POST", "/rpc/context"))
        self.assertEqual((mine["timeout"], mine["search_path"], mine["agent"]), ("8s", "public, extensions", "thalvorn-test"))
        self.assertEqual(mine["sub"], backend.send("GET", "/auth/v1/user", token=token).json["id"])
        anonymous = self.rest("POST", "rpc/context", {}, token=None).json
        self.assertEqual((anonymous["role"], anonymous["sub"], anonymous["timeout"]), ("anon", None, "3s"))
