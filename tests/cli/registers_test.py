"""The registers' reports on paper and as spreadsheets, and importing them again."""

import json
import subprocess
import unittest

from driver import CliTest


class RegisterReportTest(CliTest):
    def setUp(self):
        super().setUp()
        self.meridian = self.vessel()
        self.put("vesselProfiles", {"vesselID": self.meridian["id"], "timeZone": "Europe/Athens"})
        self.entry("2026-05-01T22:30:00Z", "Antibes", "Calvi", skipper="A. Novak", weather="Storm", distanceNM=92.4,
                   guests=[{"name": "", "note": "VIP"}], tripLog=[{"timestamp": "2026-05-01T23:00:00Z", "text": "Let go"}])
        self.entry("2026-05-20T06:00:00Z", "Calvi", "Bonifacio", skipper="Íñigo Vela", notes="=HYPERLINK(1)")
        self.taken = self.put("bunkeringRecords", {"vesselID": self.meridian["id"], "date": "2026-05-02T08:00:00Z",
                                                   "port": "Calvi", "quantityGallons": 100, "pricePerGallon": 4.5,
                                                   "totalCharge": 512.25, "currency": "USD", "fuelType": "MGO"})

        self.radio = self.put("gmdssTestLogs", {"vesselID": self.meridian["id"], "date": "2026-05-03T08:00:00Z",
                                                "testType": "weeklyDSCTest", "result": "fail", "notes": "No reply",
                                                "createdAt": "2026-05-03T08:10:00Z"})

    def entry(self, date, departure, arrival, vessel=None, **fields):
        for kind in ("guests", "tripLog"):
            for number, line in enumerate(fields.get(kind, [])):
                line["id"] = f"00000000-0000-4000-8000-{number:012}"
        return self.put("shipsLog", {"vesselID": (vessel or self.meridian)["id"], "date": date, "departurePort": departure,
                                     "arrivalPort": arrival, **fields})

    def text(self, *words):
        """The report as text, runs of blanks as one."""
        self.done("report", *words, "--pdf", "report.pdf")
        pages = subprocess.run(["pdftotext", "-layout", self.folder / "report.pdf", "-"], capture_output=True, check=True)
        return " ".join(pages.stdout.decode().split())

    def test_reports_hold_what_is_asked_for_in_the_time_aboard(self):
        log = self.text("ship-log")
        self.assertIn("2 May 2026 01:30 Antibes → Calvi 92.4", log)
        self.assertLess(log.index("Calvi → Bonifacio"), log.index("Antibes → Calvi"))
        oldest_first = self.text("ship-log", "--oldest-first")
        self.assertGreater(oldest_first.index("Calvi → Bonifacio"), oldest_first.index("Antibes → Calvi"))
        for words, passages in [(["--search", "calvi"], 2), (["--search", "bonif vela"], 1), (["--to", "2026-05-19"], 1),
                                (["--from", "2026-05-02", "--to", "2026-05-02"], 1),
                                (["--from", "2026-05-03", "--to", "2026-05-04"], 0), (["--filter", "weather=storm"], 1),
                                (["--filter", "weather=Storm", "--filter", "weather=Calm"], None),
                                (["--filter", "weather=Storm", "--filter", "weather=Sunny"], 2),
                                (["--filter", "skipper=inigo"], 1)]:
            if passages is None:
                self.fails(2, "report", "ship-log", *words, "--pdf", "x.pdf", says="“Calm” is no value of weather")
            else:
                self.assertIn(f"Passages: {passages} ", self.text("ship-log", *words), words)
        trips = self.text("trip-reports", "--search", "antibes")
        self.assertIn("Ship's Log Entry — 2 May 2026", trips)
        self.assertIn("Unnamed guest VIP", trips)
        self.assertIn("Total Fuel Cost: USD 512.25", self.text("bunkering", "--filter", "fuelType=MGO"))
        self.assertIn("Calculated total USD 450.00", self.text("bunkering-record", "--id", self.taken["id"]))

        self.put("equipment", {"vesselID": self.meridian["id"], "component": "", "system": "communications"})
        radio = self.text("gmdss", "--filter", "testType=Weekly DSC Test Call")
        self.assertIn("3 May 2026 11:00 Weekly DSC Test Call Fail", radio)
        self.assertIn("Unnamed Component", radio)
        self.assertIn("GMDSS Compliance Entry — M/Y Meridian", self.text("gmdss-entry", "--id", self.radio["id"]))

        aurora = self.vessel("S/Y Aurora")
        self.entry("2026-06-01T06:00:00Z", "Calvi", "Nice", aurora)
        found = self.text("ship-log-search", "--search", "calvi")
        self.assertIn("Vessel: M/Y Meridian, S/Y Aurora · Passages: 3", found)
        self.assertIn("Vessel: S/Y Aurora · Passages: 1", self.text("ship-log-search", "--vessel", "aur"))
        self.fails(2, "report", "ship-log", "--pdf", "x.pdf", says="several vessels")
        self.fails(1, "report", "bunkering-record", "--vessel", "aur", "--pdf", "x.pdf", says="no such bunkering record")

    def test_words_that_do_not_fit_are_explained(self):
        for words, status, says in [(["nothing"], 2, "trip-reports"), (["ship-log"], 2, "--pdf FILE"),
                                    (["work-list", "--search", "x"], 2, "it belongs to ship-log"),
                                    (["ship-log", "--detailed"], 2, "service-history"),
                                    (["ship-log", "--filter", "notes=x"], 2, "seaState, weather, skipper"),
                                    (["ship-log", "--from", "May"], 2, "is not a time"),
                                    (["ship-log", "--from", "2026-06-02", "--to", "2026-06-01"], 2, "after --to"),
                                    (["ship-log", "--id", "x"], 1, "is not an identifier"),
                                    (["ship-log", "--id", self.taken["id"]], 1, "There is no log entry")]:
            self.fails(status, "report", *words, *([] if says == "--pdf FILE" else ["--pdf", "x.pdf"]), says=says)

    def test_files_in_a_folder_have_the_reports_own_names(self):
        self.done("--at", "2026-11-21T07:40:05Z", "report", "bunkering", "--pdf", ".", "--csv", ".")
        self.done("report", "ship-log", "--pdf", ".")
        names = {file.name for file in self.folder.iterdir() if file.suffix in (".pdf", ".csv")}
        self.assertEqual(names, {"BunkeringReport_20261121_094005.pdf", "BunkeringReport_20261121_094005.csv",
                                 "M Y Meridian Ships Log.pdf"})

    def test_what_a_report_wrote_is_imported_unchanged(self):
        for report, collection in [("ship-log", "shipsLog"), ("bunkering", "bunkeringRecords"),
                                   ("gmdss", "gmdssTestLogs")]:
            records = self.done("list", collection)
            self.done("report", report, "--csv", "r.csv")
            lost = records[-1]
            self.done("delete", collection, lost["id"])
            words = ["import", collection, "r.csv", "--vessel", "mer"]
            known = {"new": 1, "known": len(records) - 1, "skipped": 0, "records": [lost]}
            self.assertEqual(self.done(*words, "--dry-run"), known)
            self.assertEqual(self.done(*words), known)
            self.assertEqual(self.done(*words)["known"], len(records))
            self.assertCountEqual(self.done("list", collection), records)
        self.assertIn("'=HYPERLINK(1)", (self.folder / "r.csv").read_text("utf-8-sig") + self.csv("ship-log"))

        # Rows of several vessels stand each by the clock aboard.
        aurora = self.vessel("S/Y Aurora")
        self.put("vesselProfiles", {"vesselID": aurora["id"], "timeZone": "America/New_York"})
        self.entry("2026-06-01T02:00:00Z", "Newport", "Nantucket", aurora)
        entries = self.done("list", "shipsLog")
        self.assertIn("S/Y Aurora,2026-05-31 22:00", self.csv("ship-log-search"))
        for entry in entries:
            self.done("delete", "shipsLog", entry["id"])
        self.assertEqual(self.done("import", "shipsLog", "again.csv", "--vessel", "mer")["new"], 3)
        self.assertCountEqual(self.done("list", "shipsLog"), entries)

        sheet = b"Date;Port;Quantity (Gal);Colour\n2026-06-01;Nice;1.250,5;red\nsoon;Nice;1;\n"
        status, out, err = self.run_cli("import", "bunkeringrecords", "-", "--vessel", "mer", input=sheet)
        self.assertEqual((status, [json.loads(out)[key] for key in ("new", "known", "skipped")]), (0, [1, 0, 1]), err)
        self.assertEqual(json.loads(out)["records"][0]["quantityGallons"], 1250.5)
        self.assertIn("The column “Colour” is not known", err)
        self.assertIn("Line 3: Skipped: “soon” is not a date", err)
        self.assertEqual(self.done("import", "bunkeringRecords", "-", "--vessel", "mer", input=sheet)["known"], 1)
        self.fails(2, "import", "tasks", "-", "--vessel", "mer", input=sheet, says="shipsLog, bunkeringRecords, gmdssTestLogs")
        self.fails(1, "import", "shipsLog", "-", "--vessel", "mer", input=b"a,b\n1,2\n", says="“Date & time” is missing")

    def csv(self, report):
        self.done("report", report, "--csv", "again.csv")
        return (self.folder / "again.csv").read_text("utf-8-sig")


if __name__ == "__main__":
    unittest.main()
