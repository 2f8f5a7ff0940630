"""The store's file: whose records, check, backup and restore, several commands at once, crashes, closed pipes."""

import json
import os
import random
import resource
import signal
import sqlite3
import stat
import subprocess
import unittest
from contextlib import closing
from pathlib import Path

from driver import PROGRAM, CliTest


class StoreTest(CliTest):
    def names(self, *words):
        return [vessel["name"] for vessel in self.done("list", "vessels", *words)]

    def set_preferences(self, **values):
        with closing(sqlite3.connect(self.store)) as database, database:
            database.executemany("INSERT OR REPLACE INTO preference(key, value) VALUES(?, ?)", values.items())

    def test_whose_records_without_being_told(self):
        self.put("vessels", {"name": "Demo"})
        self.assertEqual(self.names("--user", "demo"), ["Demo"])
        self.done("--user", "local", "put", "vessels", input={"name": "Local"})
        self.assertEqual(self.names(), ["Local"])
        self.done("--user", "u1", "put", "vessels", input={"name": "Mine"})
        self.set_preferences(sb_user_id="u1")
        self.assertEqual(self.names(), ["Local"])
        self.set_preferences(sb_access_token="secret")
        self.assertEqual(self.names(), ["Mine"])
        self.assertEqual([self.names("--user", user) for user in ("demo", "u2")], [["Demo"], []])
        self.fails(2, "--user", "u1", "demo", says="works on the user demo only")

    def test_without_a_file_named_the_store_is_in_the_users_folder(self):
        output = subprocess.run([PROGRAM, "put", "vessels"], input=b'{"name":"Home"}', env=self.environment,
                                capture_output=True, check=True).stdout
        listed = subprocess.run([PROGRAM, "list", "vessels"], env=self.environment, capture_output=True, check=True).stdout
        self.assertEqual(json.loads(listed), [json.loads(output)])
        self.assertEqual(stat.S_IMODE((self.folder / "data/thalvorn/thalvorn.db").stat().st_mode), 0o600)

    def test_backup_leaves_session_keys_out_and_restore_keeps_the_old_file(self):
        self.vessel("Before")
        self.set_preferences(sb_user_id="demo", sb_access_token="top-secret-token", sb_refresh_token="more", weather_location="Nice")
        backup = self.folder / "copy.db"
        self.done("backup", "copy.db")
        self.done("backup", "copy.db")
        self.assertEqual(stat.S_IMODE(backup.stat().st_mode), 0o600)
        self.assertNotIn(b"top-secret-token", backup.read_bytes())
        self.assertIn(b"Nice", backup.read_bytes())
        self.vessel("After")
        kept = Path(self.done("--json", "restore", "copy.db")["kept"])
        self.assertEqual(self.names(), ["Before"])
        here, self.store = self.store, kept
        self.assertEqual(self.names(), ["Before", "After"])
        self.store = here

        (self.folder / "letter.txt").write_text("Dear captain, this is no store at all.")
        self.fails(1, "backup", "letter.txt", says="is no backup")
        self.fails(1, "restore", "letter.txt", says="")
        self.fails(1, "restore", "missing.db", says="missing.db")
        self.fails(1, "backup", "no/such/folder/copy.db", says="copy.db")
        self.assertEqual(self.names(), ["Before"])

    def test_check_says_what_it_finds(self):
        self.vessel()
        self.assertIn("sound", self.done("check"))
        self.assertTrue(self.done("check", "--json")["sound"])
        with closing(sqlite3.connect(self.store)) as database, database:
            database.execute("INSERT INTO segment(prefix, suffix, position, json) VALUES('demo', '_tasks', 1, '[{')")
        status, out, err = self.run_cli("check")
        self.assertEqual((status, "demo_tasks" in out, "not sound" in err), (1, True, True), out)
        self.assertEqual(self.names(), ["M/Y Meridian"])
        self.done("demo")
        damaged = bytearray(self.store.read_bytes())
        damaged[100_000:-100_000] = bytes(len(damaged) - 200_000)
        self.store.write_bytes(damaged)
        for words in (["list", "tasks"], ["board"], ["put", "vessels"]):
            self.fails(1, *words, input={"name": "x"}, says="damaged")
        self.assertEqual(self.run_cli("check")[0], 1)
        self.store.write_bytes(b"garbage" * 1000)
        for words in (["check"], ["list", "vessels"], ["put", "vessels"]):
            self.fails(1, *words, input={"name": "x"}, says=str(self.store))
        self.assertEqual(self.store.read_bytes(), b"garbage" * 1000)

    def test_commands_at_once_take_turns(self):
        started = [self.start("put", "vessels") for _ in range(8)]
        for number, process in enumerate(started):
            process.stdin.write(json.dumps({"name": f"Vessel {number}"}).encode())
            process.stdin.close()
        for process in started:
            process.stdin = None
            out, err = process.communicate()
            self.assertEqual(process.returncode, 0, err)
        self.assertEqual(sorted(self.names()), [f"Vessel {number}" for number in range(8)])

    def test_what_was_acknowledged_survives_kills(self):
        vessel = self.vessel()
        rng = random.Random(20260210)
        acknowledged = set()
        for number in range(40):
            record = {"vesselID": vessel["id"], "title": f"Task {number}"}
            process = self.start("put", "tasks")
            try:
                out, _ = process.communicate(json.dumps([record]).encode(), timeout=rng.uniform(0.005, 0.12))
                if process.returncode == 0:
                    acknowledged.add(json.loads(out)[0]["id"])
            except subprocess.TimeoutExpired:
                process.kill()
                process.communicate()
        stored = {task["id"] for task in self.done("list", "tasks")}
        self.assertEqual(acknowledged - stored, set())
        self.assertTrue(self.done("check", "--json")["sound"])

    def test_output_that_nobody_takes_is_no_success(self):
        self.done("demo")
        process = self.start("list", "tasks")
        process.stdout.read(10)
        process.stdout.close()
        self.assertEqual((process.wait(timeout=60), process.stderr.read()), (1, b""))
        process.stderr.close()
        process.stdin.close()
        with open("/dev/full", "wb") as full:
            process = self.start("put", "vessels", stdout=full)
            _, err = process.communicate(b'{"name":"Stored all the same"}')
        self.assertEqual((process.returncode, b"was carried out, but its output" in err), (1, True))
        self.assertIn("Stored all the same", self.names())
        closed = subprocess.run(["sh", "-c", 'exec "$0" --store "$1" put vessels <&-', PROGRAM, self.store],
                                env=self.environment, capture_output=True)
        self.assertEqual((closed.returncode, b"Standard input cannot be read" in closed.stderr), (1, True))

    def test_a_full_disk_refuses_the_edit_and_loses_nothing(self):
        self.vessel("Saved before")

        def on_full_disk(room, *words, input=b""):
            def fill():
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (room, room))

            process = self.start(*words, preexec_fn=fill)
            out, err = process.communicate(input)
            return process.returncode, out, err

        many = json.dumps([{"name": "New", "notes": "x" * 1000}] * 300).encode()
        status, out, err = on_full_disk(100 * 1024, "put", "vessels", input=many)
        self.assertEqual((status, out, b"Nothing was changed" in err), (1, b"", True), err)
        self.assertEqual(self.names(), ["Saved before"])
        status, out, err = on_full_disk(8 * 1024, "list", "vessels")
        self.assertEqual((status, b"Saved before" in out), (0, True), err)
        status, out, err = on_full_disk(8 * 1024, "put", "vessels", input=b'{"name":"New"}')
        self.assertEqual((status, out, b"The disk is full" in err), (1, b"", True), err)
        self.assertEqual(self.names(), ["Saved before"])
        self.assertTrue(self.done("check", "--json")["sound"])

    def test_a_store_that_cannot_be_locked_is_read_and_edits_are_refused(self):
        self.fails(1, "put", "vessels", input=b"", says="empty")
        self.vessel()
        lock = Path(f"{self.store}.lock")
        lock.unlink()
        lock.mkdir()
        self.assertEqual(self.names(), ["M/Y Meridian"])
        self.assertIn("sound", self.done("check"))
        self.fails(1, "put", "vessels", input={"name": "x"}, says="cannot be locked")

    def test_what_is_no_store_is_refused(self):
        folder = self.folder / "a folder"
        folder.mkdir()
        self.store = folder
        self.fails(1, "list", "vessels", says="a folder")
        self.store = folder / "missing" / "fleet.db"
        self.fails(1, "put", "vessels", input={"name": "x"}, says="missing")
        self.assertEqual(os.listdir(folder), [])


if __name__ == "__main__":
    unittest.main()
