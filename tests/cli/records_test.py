"""list, put and delete, and how a command line is read."""

import json
import unittest
import uuid

from driver import CliTest

OWN_KEYS = ["id", "vesselID", "title", "notes", "category", "triggerType", "hourSource", "isCompleted", "photoData",
            "photoPaths"]


class LineTest(CliTest):
    def test_options_stand_anywhere_and_mistakes_are_answered_with_the_usage(self):
        self.vessel()
        at = "2026-03-01T08:00:00Z"
        wanted = self.board("--at", at)
        for words in (["--json", "--at", at, "board"], ["--at=" + at, "board", "--json"],
                      ["board", "--json", f"--at={at}"]):
            self.assertEqual(self.done(*words), wanted)
        self.assertIn("1 vessel", self.done("board"))
        for words, says in [([], "Which command?"), (["frobnicate"], "no command “frobnicate”"),
                            (["board", "--what"], "--what"), (["board", "--sort"], "--sort needs a value"),
                            (["board", "--sort", "age"], "“age” is no order"), (["board", "--kind", "x"], "kind “x”"),
                            (["board", "--at", "soon"], "“soon” is not a time"), (["board", "extra"], "“extra” is too much"),
                            (["board", "--at", "2026-02-30"], "not a time"), (["board", "--json=1"], "takes no value"),
                            (["board", "--vessel=a", "--vessel=b"], "twice"), (["snooze", "x"], "--until"),
                            (["complete"], "TASKID"), (["list", "boats"], "vessels, tasks, logs"),
                            (["board", "--user", ""], "--user is empty"), ([b"list\xff"], "not UTF-8")]:
            with self.subTest(words=words):
                self.fails(2, *words, says=says)

    def test_help_names_every_command_and_needs_no_store(self):
        overview = self.done("--help")
        listed = overview.split("Commands:")[1].split("Options,")[0]
        names = [line.split()[0] for line in listed.splitlines() if line.strip()]
        self.assertIn("import-tasks", names)
        for name in names[:-1]:
            self.assertTrue(self.done("help", name).startswith(f"usage: thalvorn-cli {name}"))
            self.assertEqual(self.done(name, "--help"), self.done("help", name))

    def test_where_no_store_is_reading_finds_nothing_and_leaves_nothing(self):
        self.assertIn("Bleed diesel system", self.done("templates"))
        status, out, err = self.run_cli("list", "crewMembers")
        self.assertEqual((status, out), (0, "[]\n"))
        self.assertIn(f"There is no store {self.store} yet.", err)
        self.assertEqual(self.board()["tasks"], [])
        for words in [("check",), ("backup", "copy.db"), ("delete", "vessels", "11111111-0000-4000-8000-000000000001")]:
            self.fails(1, *words, says="There is no store")
        self.store = self.folder / "mistyped" / "fleet.db"
        self.fails(1, "list", "vessels", says="There is no store")
        self.assertEqual([path.name for path in self.folder.iterdir()], ["run"])


class RecordsTest(CliTest):
    def test_every_collection_comes_back_as_it_was_put(self):
        vessel = self.vessel()
        _, _, message = self.run_cli("list", "?")
        names = message.split("collections are ")[1].split(".")[0].split(", ")
        self.assertEqual(len(names), 23)
        for name in names:
            with self.subTest(collection=name):
                if name != "vessels":
                    first = self.put(name, {"vesselID": vessel["id"], "vessel_id": vessel["id"]})
                    self.assertEqual(uuid.UUID(first["id"]).version, 4)
                before = self.done("list", name)
                self.assertEqual(len(before), 1)
                self.assertEqual(self.put(name, before), before)
                self.assertEqual(self.done("list", name), before)

    def test_a_task_prints_what_its_own_form_leaves_out_and_keeps_it_when_not_mentioned(self):
        vessel = self.vessel()
        until = "2030-01-01T00:00:00Z"
        task = self.task(vessel, priority="high", kind="squawk", snoozedUntil=until, recurringDays=30,
                         category="Dock Lines & Ground Tackle", notes="“Ünïcode” \n 🛥", dueAtEngineHours=1e300)
        self.assertEqual([key for key in task if key in OWN_KEYS], OWN_KEYS)
        replaced = self.put("tasks", {"id": task["id"].upper(), "vesselID": vessel["id"], "title": "Renamed"})
        self.assertEqual((replaced["title"], replaced["priority"], replaced["kind"], replaced["snoozedUntil"]),
                         ("Renamed", "high", "squawk", until))
        self.assertEqual((replaced["notes"], "recurringDays" in replaced, replaced["category"]), ("", False, "Engine"))
        self.assertEqual(self.done("list", "tasks"), [replaced])
        self.assertNotIn("snoozedUntil", self.put("tasks", {**replaced, "snoozedUntil": None}))

    def test_all_or_nothing_and_the_message_names_place_and_field(self):
        vessel = self.vessel()
        good = {"vesselID": vessel["id"], "title": "Fine"}
        stranger = str(uuid.uuid4())
        twin = {**good, "id": stranger}
        for bad, says in [({**good, "title": 7}, "Record 2 of 2: title: is not text"),
                          ({**good, "recurringDays": 1.5}, "recurringDays"),
                          ({**good, "recurringDays": 1e40}, "recurringDays"),
                          ({**good, "dueDate": "soon"}, "dueDate: is not a date"),
                          ({**good, "id": "x"}, "id: is not an identifier"), ({"title": "x"}, "vesselID: is missing"),
                          ([], "is not an object"),
                          ({**good, "vesselID": stranger}, f"there is no vessel {stranger}")]:
            with self.subTest(bad=bad):
                self.fails(1, "put", "tasks", input=[good, bad], says=says)
        self.fails(1, "put", "tasks", input=[twin, good, twin], says="Record 3 of 3: id: is that of record 1")
        self.fails(1, "put", "tasks", input={"title": "x"}, says="vesselID: is missing")
        for text, says in [(b"", "empty"), (b"  \n", "empty"), (b"hello", "not JSON"), (b'{"title":"\xff"}', "UTF-8"),
                           (b'{"title":', "Standard input"), (b"{} {}", "Standard input"), (b"{},{}", "several records"),
                           (b'[{"title":"a"}', "Standard input"), (b'{"dueAtEngineHours":1e999}', "")]:
            with self.subTest(text=text):
                self.fails(1, "put", "tasks", input=text, says=says)
        self.assertEqual(self.done("list", "tasks"), [])
        self.assertEqual(self.put("tasks", b"\xef\xbb\xbf[]"), [])

    def test_odd_values_are_stored_and_told(self):
        vessel = self.vessel(engineHours=100)
        tasks = [{"vesselID": vessel["id"], "title": "Oil", "priority": "urgent", "recurringDays": -3}, {"vesselID": vessel["id"]}]
        status, out, err = self.run_cli("put", "tasks", input=tasks)
        self.assertEqual((status, json.loads(out)), (0, self.done("list", "tasks")), err)
        self.assertEqual(err.splitlines(), ["Record 1 of 2: recurringDays: -3 is not between 0 and 36500; stored as it is.",
                                            "Record 1 of 2: priority: “urgent” is not known here; stored as it is."])
        _, _, err = self.run_cli("put", "tasks", input=tasks[:1] * 30)
        self.assertTrue(err.endswith("… and 40 more.\n"), err)

    def test_vessels_are_found_by_id_name_and_beginning(self):
        meridian, mistral, aurora = self.vessel("M/Y Meridian"), self.vessel("M/Y Mistral"), self.vessel("Aurora")
        for name, vessel in [("aurora", aurora), ("AUR", aurora), ("mist", mistral), (meridian["id"], meridian),
                             ("m/y mer", meridian)]:
            self.assertEqual(self.done("list", "vessels", "--vessel", name), [vessel])
        self.fails(1, "board", "--vessel", "m/y", says="“M/Y Meridian” (" + meridian["id"])
        self.fails(1, "board", "--vessel", "Nope", says="The fleet has “Aurora”, “M/Y Meridian”, “M/Y Mistral”")
        self.fails(2, "list", "crewBoardPosts", "--vessel", "Aurora", says="belong to no vessel")
        task = self.task(mistral)
        self.assertEqual(self.done("list", "tasks", "--vessel", "mis"), [task])
        self.assertEqual(self.done("list", "tasks", "--vessel", "aur"), [])

    def test_a_vessel_goes_with_everything_that_hangs_on_it(self):
        vessel, other = self.vessel(), self.vessel("Other")
        task, kept = self.task(vessel), self.task(other)
        self.put("shipsLog", {"vesselID": vessel["id"]})
        self.done("complete", task["id"])
        self.assertIn("1 task, 1 service log", self.done("delete", "vessels", vessel["id"]))
        self.assertEqual([self.done("list", name) for name in ("logs", "shipsLog")], [[], []])
        self.assertEqual(self.done("list", "tasks"), [kept])
        self.fails(1, "delete", "vessels", vessel["id"], says="There is no vessel")
        self.fails(1, "delete", "tasks", "nonsense", says="not an identifier")
        self.assertEqual(self.done("--json", "delete", "tasks", kept["id"]), {"deleted": kept["id"]})

    def test_a_myriad_of_records_is_one_edit(self):
        vessel = self.vessel()
        tasks = [{"vesselID": vessel["id"], "title": f"Task {i}", "priority": "low"} for i in range(20_000)]
        self.assertEqual(len(self.put("tasks", tasks)), len(tasks))
        self.assertEqual(self.board()["beyondHorizon"], len(tasks))
        stored = self.done("list", "tasks")
        self.assertEqual([task["title"] for task in stored], [task["title"] for task in tasks])
        self.fails(1, "put", "tasks", input=[*stored[:-1], {**stored[-1], "notes": 1}],
                   says="Record 20000 of 20000: notes")


if __name__ == "__main__":
    unittest.main()
