"""Runs thalvorn-cli on a store of its own and looks at standard output, standard error and exit status together."""

import json
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

PROGRAM = os.environ["THALVORN_CLI"]


class CliTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.store = self.folder / "fleet.db"
        self.environment = {**os.environ, "XDG_DATA_HOME": str(self.folder / "data"),
                            "XDG_RUNTIME_DIR": str(self.folder / "run")}
        (self.folder / "run").mkdir(mode=0o700)

    def start(self, *words, **options):
        pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
        command = [PROGRAM, "--store", self.store, *(word if isinstance(word, bytes) else str(word) for word in words)]
        return subprocess.Popen(command, cwd=self.folder, env=self.environment, **{**pipes, **options})

    def run_cli(self, *words, input=b""):
        """(exit status, standard output, standard error) of a command."""
        process = self.start(*words)
        out, err = process.communicate(input if isinstance(input, bytes) else json.dumps(input).encode())
        return process.returncode, out.decode(), err.decode()

    def done(self, *words, input=b""):
        """What a command that must succeed prints, read as JSON when it is."""
        status, out, err = self.run_cli(*words, input=input)
        self.assertEqual(status, 0, err)
        return json.loads(out) if out[:1] in ("{", "[") else out

    def fails(self, status, *words, input=b"", says):
        """The command ends with `status`, prints nothing, and says why."""
        got, out, err = self.run_cli(*words, input=input)
        self.assertEqual((got, out), (status, ""), err)
        self.assertIn(says, err)
        self.assertRegex(err, "(?m)^thalvorn-cli: ")
        self.assertEqual("usage: thalvorn-cli" in err, status == 2, err)

    def put(self, collection, record):
        return self.done("put", collection, input=record)

    def vessel(self, name="M/Y Meridian", **fields):
        return self.put("vessels", {"name": name, **fields})

    def task(self, vessel, title="Oil change", **fields):
        return self.put("tasks", {"vesselID": vessel["id"], "title": title, **fields})

    def board(self, *words):
        return self.done("board", "--json", *words)
