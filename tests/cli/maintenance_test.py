"""The maintenance programme: board, complete, snooze, meters, templates, import, history, report."""

import json
import unittest
from datetime import datetime, timedelta, timezone

from driver import CliTest

NOW = datetime(2026, 2, 10, 12, tzinfo=timezone.utc)


def iso(moment):
    return moment.strftime("%Y-%m-%dT%H:%M:%SZ")


class BoardTest(CliTest):
    def at(self, now, *words):
        return self.done("--at", iso(now), "--json", *words)

    def test_status_by_date_and_hours_as_of_any_moment(self):
        vessel = self.vessel(engineHours=1000, generator1Hours=5)
        by_date = [(timedelta(hours=-25), "overdue"), (timedelta(hours=-24), "overdue"), (timedelta(hours=-23), "dueSoon"),
                   (timedelta(0), "dueSoon"), (timedelta(days=7, hours=23), "dueSoon"), (timedelta(days=8), "onTrack"),
                   (timedelta(days=30, hours=23), "onTrack"), (timedelta(days=31), None)]
        by_hours = [(1000, "overdue"), (999, "overdue"), (1000.5, "dueSoon"), (1010, "dueSoon"), (1010.5, "onTrack"),
                    (1050, "onTrack"), (1050.1, None)]
        tasks = [{"title": f"{off}", "dueDate": iso(NOW + off)} for off, _ in by_date]
        tasks += [{"title": f"{target}", "dueAtEngineHours": target, "triggerType": "date"} for target, _ in by_hours]
        tasks += [{"title": "worst of both", "dueDate": iso(NOW + timedelta(days=40)), "dueAtEngineHours": 1005},
                  {"title": "meter she lacks", "hourSource": "engine3", "dueAtEngineHours": 5},
                  {"title": "other meter", "hourSource": "generator1", "dueAtEngineHours": 5}, {"title": "no trigger"},
                  {"title": "done", "isCompleted": True, "dueDate": iso(NOW)}]
        self.put("tasks", [{"vesselID": vessel["id"], **task} for task in tasks])
        board = self.at(NOW, "board")
        wanted = {f"{key}": status for key, status in by_date + by_hours if status}
        wanted |= {"worst of both": "dueSoon", "meter she lacks": "dueSoon", "other meter": "overdue"}
        self.assertEqual({task["title"]: task["status"] for task in board["tasks"]}, wanted)
        self.assertEqual(list(board), ["overdue", "dueSoon", "onTrack", "beyondHorizon", "completed", "tasks"])
        self.assertEqual([board[key] for key in list(board)[:5]], [5, 7, 4, 3, 1])
        order = ["overdue", "dueSoon", "onTrack"]
        self.assertEqual([task["status"] for task in board["tasks"]],
                         sorted((task["status"] for task in board["tasks"]), key=order.index))

    def test_days_follow_the_clock_on_the_wall(self):
        # The night of 29 March 2026 has 23 hours in Rome: noon to noon is a full day all the same.
        vessel = self.vessel()
        self.task(vessel, dueDate="2026-03-28T11:00:00Z")
        self.assertEqual(self.at(datetime(2026, 3, 29, 9, 59, 59, tzinfo=timezone.utc), "board")["dueSoon"], 1)
        self.assertEqual(self.at(datetime(2026, 3, 29, 10, tzinfo=timezone.utc), "board")["overdue"], 1)
        self.assertEqual(self.done("--json", "--at", "2026-03-29 12:00", "board")["overdue"], 1)
        self.assertEqual(self.done("--json", "--at", "2026-03-29", "board")["overdue"], 0)

    def test_order_filters_and_snooze(self):
        meridian, aurora = self.vessel(), self.vessel("Aurora")
        late = self.task(meridian, "B late", dueDate=iso(NOW - timedelta(days=3)), category="Sails")
        soon = self.task(meridian, "C soon", dueDate=iso(NOW + timedelta(days=1)), kind="squawk", category="Hull")
        other = self.task(aurora, "A other", dueDate=iso(NOW + timedelta(days=9)), kind="warranty", category="Rigging")
        titles = lambda *words: [task["title"] for task in self.at(NOW, "board", *words)["tasks"]]
        for words, wanted in [([], "BCA"), (["--sort", "name"], "ABC"), (["--sort=name", "--descending"], "CBA"),
                              (["--sort", "category"], "CAB"), (["--sort", "due"], "BCA"), (["--vessel", "mer"], "BC"),
                              (["--kind", "squawk"], "C"), (["--kind", "plannedMaintenance"], "B"), (["--kind", "Warranty"], "A")]:
            self.assertEqual("".join(title[0] for title in titles(*words)), wanted, words)
        self.assertEqual(self.at(NOW, "board", "--kind", "squawk")["overdue"], 0)

        self.fails(1, "--at", iso(NOW), "snooze", late["id"], "--until", "2020-01-01", says="")
        snoozed = self.at(NOW, "snooze", late["id"], "--until", "2026-03-01")
        self.assertEqual(snoozed["snoozedUntil"], "2026-02-28T23:00:00Z")
        board = self.at(NOW, "board")
        self.assertEqual((board["overdue"], board["dueSoon"], board["onTrack"]), (0, 1, 1))
        self.assertEqual([(task["status"], task["snoozed"], task["vesselName"]) for task in board["tasks"]],
                         [("overdue", True, "M/Y Meridian"), ("dueSoon", False, "M/Y Meridian"), ("onTrack", False, "Aurora")])
        self.assertEqual(self.at(NOW + timedelta(days=30), "board")["overdue"], 3)
        self.assertNotIn("snoozedUntil", self.at(NOW, "unsnooze", late["id"]))
        self.assertEqual(self.at(NOW, "board")["overdue"], 1)
        table = self.done("--at", iso(NOW), "board").splitlines()
        self.assertEqual(table[1], "1 overdue, 1 due soon, 1 on track, 0 beyond the horizon, 0 completed")
        self.assertEqual([line.split()[-1] for line in table[4:]], [late["id"], soon["id"], other["id"]])


class WorkTest(CliTest):
    def test_completing_writes_the_log_raises_meters_and_moves_the_task_on(self):
        vessel = self.vessel(engineHours=100, engine2Hours=200, numberOfEngines=2)
        task = self.task(vessel, "Oil", hourSource="engine2", triggerType="both", recurringDays=30,
                         recurringEngineHours=100, dueDate=iso(NOW), dueAtEngineHours=210, priority="high")
        words = ["--on", iso(NOW - timedelta(days=1)), "--notes", "--json", "--cost", "120.5", "--by", "Ana", "--meter",
                 "engine2=212.5", "--meter", "engine=50", "--part", "Filter;2;1R-0739;38.5", "--part", "Oil"]
        status, out, err = self.run_cli("--at", iso(NOW), "complete", task["id"], *words)
        self.assertEqual(status, 0, err)
        self.assertIn("Engine 1", err)
        done = json.loads(out)
        self.assertEqual(list(done), ["log", "task", "vessel"])
        log = done["log"]
        self.assertEqual([log[key] for key in ("taskID", "taskTitle", "kind", "engineHoursAtService", "technicianNotes",
                                               "cost", "completedBy", "completedDate")],
                         [task["id"], "Oil", "planned", 212.5, "--json", 120.5, "Ana", iso(NOW - timedelta(days=1))])
        self.assertEqual([(part["name"], part["quantity"], part["partNumber"], part.get("cost")) for part in log["partsUsed"]],
                         [("Filter", 2, "1R-0739", 38.5), ("Oil", 1, "", None)])
        self.assertEqual((done["vessel"]["engineHours"], done["vessel"]["engine2Hours"],
                          done["vessel"]["engineHoursUpdatedAt"]), (100, 212.5, iso(NOW)))
        self.assertEqual((done["task"]["dueDate"], done["task"]["dueAtEngineHours"], done["task"]["isCompleted"],
                          done["task"]["priority"]), (iso(NOW + timedelta(days=29)), 312.5, False, "high"))
        self.assertEqual(self.done("list", "logs"), [log])
        self.assertEqual(self.done("list", "vessels"), [done["vessel"]])

        squawk = self.task(vessel, "Door sticks", kind="squawk", recurringDays=30)
        self.assertTrue(self.done("complete", squawk["id"])["task"]["isCompleted"])
        self.fails(1, "complete", squawk["id"], says="already completed")
        for words, says in [(["--cost", "lots"], "the labor cost"), (["--cost", "1e400"], "between"), (["--cost", "-1"], "between"),
                            (["--meter", "engine9=1"], "no meter “engine9”"), (["--meter", "engine"], "engine2=1234.5"),
                            (["--part", ";2"], "NAME;QUANTITY"), (["--part", "x;two"], "“x;two” is not a part"), (["--on", "x"], "not a time")]:
            self.fails(2, "complete", task["id"], *words, says=says)
        self.fails(1, "complete", vessel["id"], says="There is no task")
        self.assertEqual(len(self.done("list", "logs")), 2)

    def test_meters_only_count_up_unless_corrected_or_replaced(self):
        vessel = self.vessel(hasGenerator=True)
        task = self.task(vessel, hourSource="engine", dueAtEngineHours=150)
        show = lambda *words: self.done("--json", "meters", "meridian", *words)["meters"]
        none = dict.fromkeys(["engine", "engine2", "engine3", "generator1", "generator2", "hydraulic"], 0)
        self.assertEqual(show(), none)
        self.assertEqual(show("engine=100", "Gen 1=7.5"), {**none, "engine": 100, "generator1": 7.5})
        status, out, err = self.run_cli("meters", "meridian", "engine=90", "hydraulic=3")
        self.assertEqual((status, err.count("\n")), (0, 2), err)
        self.assertEqual([line.split()[0] for line in out.splitlines()[1:]], ["engine", "generator1", "hydraulic"])
        self.fails(2, "meters", "meridian", "engine=1e9", says="between")
        self.fails(2, "correct-meter", "meridian", "engine=1", says="--reason")
        self.fails(1, "correct-meter", "meridian", "engine=1", "--reason", " ", says="")
        self.assertIn("90.0 hrs", self.done("correct-meter", "meridian", "engine=90", "--reason", "mistyped"))
        self.assertIn("0.0 hrs", self.done("replace-meter", "meridian", "engine=0", "--reason", "new meter"))
        self.assertEqual(self.done("list", "tasks")[0]["dueAtEngineHours"], 60)
        self.assertEqual(self.done("list", "tasks")[0]["id"], task["id"])

    def test_templates_and_csv_fill_the_programme(self):
        self.vessel(engineHours=1000)
        found = self.done("--json", "templates", "--search", "impeller", "--category", "engine")
        self.assertIn("Raw water impeller replacement", [each["title"] for each in found])
        self.assertEqual(self.done("templates", "--search", "no such thing"), "No templates match.\n")
        self.fails(2, "templates", "--category", "e", says="“e” may mean")
        added = self.done("--json", "add-templates", "--vessel", "mer", "--start", "2026-01-01T00:00:00Z",
                          "engine oil & filter change", "Bleed diesel system")
        self.assertEqual(added, self.done("list", "tasks"))
        self.assertEqual(added[0]["dueAtEngineHours"], 1000 + added[0]["recurringEngineHours"])
        self.fails(1, "add-templates", "--vessel", "mer", "Bleed diesel system", "Nope", says="Nothing was added")
        self.assertEqual(len(self.done("list", "tasks")), 2)

        sample = ("TITLE;Category;triggerType;recurringDays;dueAtHours;recurringHours;hourSource;notes\r\n"
                  "Oil;Engine;HOURS;;;100,5;Engine 1;SAE 15W-40\r\n\"Pump; bilge\";Safety;date;30;;;;\r\n;Hull;date;;;;;\r\n")
        (self.folder / "tasks.csv").write_text(sample, encoding="utf-8-sig")
        preview = self.done("import-tasks", "tasks.csv", "--vessel", "mer", "--dry-run")
        self.assertEqual((list(preview), preview["valid"], preview["skipped"]), (["valid", "skipped", "rows"], 2, 1))
        self.assertEqual([(row["title"], row["valid"]) for row in preview["rows"]],
                         [("Oil", True), ("Pump; bilge", True), ("", False)])
        self.assertEqual(len(self.done("list", "tasks")), 2)
        self.assertEqual(self.done("import-tasks", "-", "--vessel", "mer", input=sample.encode())["valid"], 2)
        self.assertEqual([(task["title"], task.get("dueAtEngineHours"), task.get("recurringEngineHours"))
                          for task in self.done("list", "tasks")[2:]], [("Oil", None, 100.5), ("Pump; bilge", None, None)])
        self.fails(1, "import-tasks", "missing.csv", "--vessel", "mer", says="Could not read CSV file.")
        self.fails(1, "import-tasks", ".", "--vessel", "mer", says="Could not read CSV file.")
        self.fails(1, "import-tasks", "-", "--vessel", "mer", input=b"a,b\n1,2\n", says="title")

    def test_history_adds_up_and_reports_are_files(self):
        self.assertIn("3 vessels", self.done("demo"))
        self.assertEqual(self.done("demo"), self.done("demo"))
        history = self.done("--json", "history", "--vessel", "meridian", "--from", "2020-01-01", "--to", "2100-01-01")
        self.assertGreater(len(history["logs"]), 100)
        self.assertAlmostEqual(sum(log.get("totalCost", 0) for log in history["logs"]), sum(history["totals"].values()), 2)
        self.assertEqual(self.done("history", "--to", "2000-01-01"), "No services are logged.\n")
        of_task = self.done("--json", "history", "--task", history["logs"][0]["taskID"])["logs"]
        self.assertEqual({log["taskID"] for log in of_task}, {history["logs"][0]["taskID"]})

        self.fails(2, "report", "work-list", "--pdf", "w.pdf", says="several vessels")
        self.fails(2, "report", "work-list", "--vessel", "mer", says="--pdf FILE")
        self.fails(1, "report", "work-list", "--vessel", "mer", "--pdf", "no/such/folder.pdf", says="folder.pdf")
        for kind in ("work-list", "service-history"):
            self.done("report", kind, "--vessel", "mer", "--pdf", "r.pdf", "--csv", f"{kind}.csv")
            self.assertTrue((self.folder / "r.pdf").read_bytes().startswith(b"%PDF-"))
        again = self.done("import-tasks", "work-list.csv", "--vessel", "mer", "--dry-run")
        self.assertEqual(again["valid"], len(self.board("--vessel", "mer")["tasks"]))

        logs = self.done("list", "logs", "--vessel", "mer")
        lost = logs[1]
        self.done("delete", "logs", lost["id"])
        known = {"new": 1, "known": len(logs) - 1, "skipped": 0, "logs": [lost]}
        words = ["import-history", "service-history.csv", "--vessel", "mer"]
        self.assertEqual(self.done(*words, "--dry-run"), known)
        self.assertEqual(self.done(*words), known)
        self.assertEqual(self.done(*words)["known"], len(logs))
        without_ids = b"taskTitle,completedDate\nOil,2020-01-31\nOil,2020-01-31\n,2020-02-01\n"
        status, out, err = self.run_cli("import-history", "-", "--vessel", "mer", input=without_ids)
        self.assertEqual([json.loads(out)[key] for key in ("new", "known", "skipped")], [1, 1, 1])
        self.assertIn("Line 4: Skipped: the task’s title is missing.", err)
        self.fails(1, "import-history", "-", "--vessel", "mer", input=b"a,b\n1,2\n", says="taskTitle")


if __name__ == "__main__":
    unittest.main()
