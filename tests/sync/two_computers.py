"""Two computers share a fleet: the command line on two stores, against a backend of its own."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
CLI = os.environ["THALVORN_CLI"]
DEVSERVER = os.environ["THALVORN_DEVSERVER"]


class Backend:
    def __init__(self, *options):
        self.process = subprocess.Popen(
            [os.path.join(SOURCE, "scripts", "backend"), "--program", DEVSERVER, *options],
            stdout=subprocess.PIPE, text=True)
        self.facts = json.loads(self.process.stdout.readline())

    def stop(self):
        self.process.terminate()
        self.process.wait(60)
        self.process.stdout.close()


class TwoComputers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.backend = Backend()
        cls.addClassCleanup(cls.backend.stop)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.stores = [os.path.join(folder.name, name, "thalvorn.db") for name in ("bridge", "engine-room")]
        for store in self.stores:
            os.mkdir(os.path.dirname(store))
        self.heard = ""

    def run_on(self, computer, *words, text="", status=0, online=True):
        url = self.backend.facts["url"] if online else "http://127.0.0.1:9"
        done = subprocess.run(
            [CLI, "--store", self.stores[computer], "--backend", url, "--key", self.backend.facts["anonKey"], *words],
            input=text, capture_output=True, text=True, check=False)
        self.heard += done.stdout + done.stderr
        self.assertEqual(done.returncode, status, f"{words}: {done.stdout}{done.stderr}")
        return done.stdout

    def put(self, computer, collection, record):
        return json.loads(self.run_on(computer, "put", collection, text=json.dumps(record)))

    def listed(self, computer, collection):
        return {record["id"]: record for record in json.loads(self.run_on(computer, "list", collection))}

    def test_both_work_offline_and_nothing_is_lost(self):
        owner = self.backend.facts["accounts"][0]
        for computer in (0, 1):
            self.run_on(computer, "sign-in", owner["email"], text=owner["password"] + "\n")
        vessel = self.put(0, "vessels", {"name": "M/Y Meridian", "engineHours": 1200})
        vessel = vessel[0] if isinstance(vessel, list) else vessel
        task = self.put(0, "tasks", {"vesselID": vessel["id"], "title": "Impeller", "notes": "port engine"})
        task = task[0] if isinstance(task, list) else task
        self.run_on(0, "sync")
        self.run_on(1, "sync")
        self.assertIn(task["id"], self.listed(1, "tasks"))

        # Without the network each goes on: different fields, one field by both, a meter by both.
        self.run_on(0, "sync", status=1, online=False)
        self.put(0, "tasks", {**task, "title": "Impeller, raw water", "notes": "bridge says port"})
        self.run_on(0, "meters", vessel["id"], "engine=1210")
        self.put(1, "tasks", {**task, "notes": "engine room says starboard", "priority": "high"})
        self.run_on(1, "meters", vessel["id"], "engine=1260.5")
        log = self.put(1, "logs", {"vesselID": vessel["id"], "taskID": task["id"], "taskTitle": "Impeller",
                                   "completedDate": "2026-11-20T10:00:00Z", "technicianNotes": "replaced"})
        log = log[0] if isinstance(log, list) else log
        waiting = json.loads(self.run_on(1, "status", "--json"))["waiting"]
        self.assertEqual(waiting, {"vessels": 1, "maintenance_tasks": 1, "service_logs": 1})
        for computer in (0, 1, 0, 1):
            self.run_on(computer, "sync")

        for computer in (0, 1):
            now = self.listed(computer, "tasks")[task["id"]]
            self.assertEqual(now["title"], "Impeller, raw water")
            self.assertEqual(now["priority"], "high")
            self.assertIn(log["id"], self.listed(computer, "logs"))
            self.assertEqual(self.listed(computer, "vessels")[vessel["id"]]["engineHours"], 1260.5)
            conflicts = json.loads(self.run_on(computer, "conflicts", "--json"))
            texts = {now["notes"]} | {json.loads(note["other"])["notes"] for note in conflicts}
            self.assertEqual(texts, {"bridge says port", "engine room says starboard"})
            self.assertEqual(json.loads(self.run_on(computer, "status", "--json"))["waiting"], {})

        # What was not taken can be taken back, and a deletion travels.
        lost = json.loads(self.run_on(0, "conflicts", "--json"))[0]
        self.run_on(0, "conflicts", "--take-back", lost["id"])
        self.run_on(1, "delete", "logs", log["id"])
        for computer in (0, 1, 0):
            self.run_on(computer, "sync")
        self.assertEqual(self.listed(1, "tasks")[task["id"]]["notes"], json.loads(lost["other"])["notes"])
        self.assertNotIn(log["id"], self.listed(0, "logs"))

        # The other account sees none of it, and nothing secret was said.
        stranger = self.backend.facts["accounts"][1]
        self.run_on(1, "sign-out")
        self.run_on(1, "sign-in", stranger["email"], text=stranger["password"] + "\n")
        self.assertNotIn(task["id"], self.listed(1, "tasks"))
        for secret in (owner["password"], stranger["password"], "eyJ"):
            self.assertNotIn(secret, self.heard)

    def test_refuses_what_it_cannot_do_and_says_why(self):
        owner = self.backend.facts["accounts"][0]
        self.run_on(0, "sync", status=1)
        self.run_on(0, "sign-in", owner["email"], text="not the password\n", status=1)
        self.run_on(0, "sign-in", owner["email"], text=owner["password"], status=1, online=False)
        self.run_on(0, "sign-in", owner["email"], text=owner["password"])
        self.run_on(0, "invite", "mate@example.com", "--name", "Mate", "--role", "captain", status=2)
        self.run_on(0, "invite", "mate@example.com", "--name", "Mate", "--role", "editor")
        members = json.loads(self.run_on(0, "account", "--json"))["members"]
        self.assertIn("mate@example.com", [member.get("invitedEmail") for member in members])
        # A photo that could not go up is told, and holds up the sign-out like any other work.
        own = next(member for member in members if member.get("userId"))
        with open(os.path.join(os.path.dirname(self.stores[0]), "transfers.json"), "w", encoding="utf-8") as waiting:
            json.dump([{"id": "11111111-1111-4111-8111-111111111111", "userID": own["userId"],
                        "accountID": own["accountId"], "bucket": "task_photos", "path": "a/b.jpg",
                        "localFile": "/nowhere/b.jpg", "problem": "It is not there any more.", "isParked": True,
                        "name": "Impeller"}], waiting)
        self.assertEqual(json.loads(self.run_on(0, "status", "--json"))["filesFailed"], 1)
        self.assertIn("Task photo “Impeller” could not go up: It is not there any more.", self.run_on(0, "status"))
        self.run_on(0, "sign-out", status=1)
        os.remove(os.path.join(os.path.dirname(self.stores[0]), "transfers.json"))
        self.put(0, "vessels", {"name": "Unsent"})
        self.run_on(0, "sign-out", status=1)
        self.run_on(0, "sign-out", "--force")


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
