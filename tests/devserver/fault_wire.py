"""Faults on order, and the life of the backend as a process."""

import email.utils
import http.client
import os
import signal
import socket
import subprocess
import sys
import time
import unittest

from backend import ROOT, Backend, shared


def setUpModule():
    global backend, token
    backend = shared()
    backend.sql("create table public.marks (n int); grant all on public.marks to authenticated")
    token = backend.sign_in().json["access_token"]


class Faults(unittest.TestCase):
    def post(self):
        return backend.send("POST", "/rest/v1/marks", {"n": 1}, token=token)

    def marks(self):
        return int(backend.sql("select count(*) from public.marks"))

    def test_lost_requests_lost_replies_and_doubled_ones(self):
        with backend.settings(faults=["drop-request x1 @POST @/rest/v1/marks"]):
            self.assertRaises(http.client.HTTPException, self.post)
            self.assertEqual((self.marks(), self.post().status), (0, 201), "it strikes once")
        for fault, error in (("drop-reply", http.client.RemoteDisconnected), ("duplicate", None)):
            before = self.marks()
            with backend.settings(faults=[fault + " x1"]):
                if error:
                    self.assertRaises(error, self.post)
                    backend.connection.close()
                else:
                    self.assertEqual(self.post().status, 201)
            self.assertEqual(self.marks() - before, 1 if error else 2)
        with backend.settings(faults=["cut-reply x1"]):
            with self.assertRaises(http.client.IncompleteRead):
                backend.send("GET", "/rest/v1/marks", token=token)
        backend.connection.close()

    def test_replies_of_services_in_trouble(self):
        cases = [("429", "/auth/v1/user", 429), ("503", "/rest/v1/marks", 503), ("500", "/rest/v1/marks", 500), ("540", "/rest/v1/marks", 540),
                 ("409", "/auth/v1/user", 409), ("544", "/storage/v1/object/open/a", 544), ("401", "/rest/v1/marks", 401),
                 ("401", "/storage/v1/object/open/a", 400), ("html-520", "/rest/v1/marks", 520)]
        for fault, path, status in cases:
            with backend.settings(faults=[fault + "@GET@" + path]):
                reply = backend.send("GET", path, token=token)
                self.assertEqual(reply.status, status, fault)
                self.assertEqual(reply.text.startswith("<!DOCTYPE html>"), fault == "html-520")
                if fault == "503":
                    self.assertEqual((reply.headers["Retry-After"], reply.json["code"]), ("1", "PGRST002"))
                if fault == "500":
                    self.assertEqual(reply.json["code"], "40001")
        with backend.settings(faults=["delay=150"]):
            begun = time.monotonic()
            self.assertEqual(backend.send("GET", "/rest/v1/marks", token=token).status, 200)
            self.assertGreaterEqual(time.monotonic() - begun, 0.15)
        unknown = backend.bare("PATCH", "/dev/settings", '{"faults":["drop-everything"]}')
        self.assertEqual((unknown.status, unknown.json["message"]), (400, 'there is no fault "drop-everything"'))

    def test_requests_that_are_none_or_too_long(self):
        long = backend.bare("GET", "/rest/v1/marks", headers={"apikey": "x" * 20000})
        self.assertEqual((long.status, long.headers["Connection"]), (431, "close"))
        huge = backend.send("POST", "/storage/v1/object/task_photos/a", b"", token=token, content_length=str(300 << 20))
        self.assertEqual((huge.status, huge.json["statusCode"], huge.headers["Connection"]), (400, "413", "close"))
        with socket.create_connection(backend.host.split(":")) as raw:
            raw.sendall(b"nonsense\r\n\r\n")
            self.assertTrue(raw.makefile("rb").read().startswith(b"HTTP/1.1 400 "))

    def test_a_server_with_another_clock(self):
        with backend.settings(clockOffset=86400):
            reply = backend.sign_in()
            date = email.utils.parsedate_to_datetime(reply.headers["Date"]).timestamp()
            self.assertAlmostEqual(date - time.time(), 86400, delta=60)
            self.assertAlmostEqual(reply.json["expires_at"] - time.time(), 86400 + 3600, delta=60)


class Life(unittest.TestCase):
    def gone(self, backend_):
        """The backend's output ends when the last of its processes has cleaned up."""
        backend_.connection.close()
        backend_.process.stdout.read()
        backend_.process.stdout.close()
        backend_.process.wait(timeout=60)
        self.assertEqual(os.listdir(self.folder), [])

    def setUp(self):
        self.folder = os.path.join(os.environ.get("TMPDIR", "/tmp"), f"thalvorn-life-{os.getpid()}")
        os.mkdir(self.folder, 0o711)
        os.chmod(self.folder, 0o1777)
        self.addCleanup(os.rmdir, self.folder)
        self.environment = dict(os.environ, TMPDIR=self.folder)

    def test_options_reach_the_server_and_a_signal_ends_it(self):
        one = Backend("--until", "0", "--max-rows", "7", "--confirm-email", "--token-lifetime", "9", "--fault", "503 @/rest",
                      "--fault", "clock-offset=5", env=self.environment)
        settings = one.bare("GET", "/dev/settings").json
        self.assertEqual((settings["maxRows"], settings["confirmEmail"], settings["tokenLifetime"], settings["clockOffset"],
                          settings["faults"]), (7, True, 9, 5, ["503"]))
        self.assertEqual(sorted(one.ready), ["accounts", "anonKey", "databaseUrl", "url"])
        self.assertEqual(one.sign_in().json["expires_in"], 9, "the two owners can sign in although addresses are to be confirmed")
        self.assertEqual(one.send("GET", "/rest/v1/vessels").status, 503, "the fault")
        one.bare("PATCH", "/dev/settings", '{"faults":[],"clockOffset":0}')
        self.assertEqual(one.send("GET", "/rest/v1/vessels").json["code"], "PGRST205")
        subprocess.run([ROOT / "scripts/database", "migrate", settings["databaseFolder"]], check=True, env=self.environment)
        self.assertEqual(one.send("GET", "/rest/v1/vessels").json["code"], "42501", "the new schema is found")
        one.process.send_signal(signal.SIGTERM)
        self.gone(one)
        self.assertEqual(one.process.returncode, 0)

    def test_a_killed_server_leaves_nothing(self):
        one = Backend("--until", "0", env=self.environment)
        one.process.kill()
        self.gone(one)

    def test_it_ends_with_its_caller(self):
        caller = subprocess.Popen([sys.executable, "-B", "-c",
                                   "import sys, backend; one = backend.Backend('--until', '0'); print('up', flush=True); sys.stdin.read(); "
                                   "print(one.process.stdout.fileno(), flush=True); import os; os._exit(0)"],
                                  cwd=ROOT / "tests/devserver", env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE)
        self.assertEqual(caller.stdout.readline(), b"up\n")
        caller.kill()
        caller.stdin.close()
        caller.stdout.close()
        caller.stderr.read()  # inherited by the backend: ends with its last process
        caller.stderr.close()
        caller.wait(timeout=60)
        self.assertEqual(os.listdir(self.folder), [])

    def test_options_that_make_no_sense_are_refused(self):
        for options, message in ((["--max-rows", "0"], "--max-rows takes a number from 1 on"), (["--wild", "1"], "--wild is unknown"),
                                 (["--fault", "rain"], 'there is no fault "rain"')):
            done = subprocess.run([ROOT / "scripts/backend", "--program", os.environ["THALVORN_DEVSERVER"], "--until", "0", *options],
                                  capture_output=True, text=True, env=self.environment)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn(message, done.stderr)
        self.assertEqual(os.listdir(self.folder), [])
