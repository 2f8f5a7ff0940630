"""A backend of its own for a test program, and a client that shows replies as they came."""

import atexit
import contextlib
import http.client
import json
import os
import subprocess
import urllib.parse
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = os.environ["THALVORN_DEVSERVER"]


class Reply:
    def __init__(self, response):
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()

    @property
    def json(self):
        return json.loads(self.body)

    @property
    def text(self):
        return self.body.decode()


class Backend:
    """scripts/backend as a process; `url`, `anonKey`, `databaseUrl` and `accounts` are what it printed."""

    def __init__(self, *options, **popen):
        self.process = subprocess.Popen([ROOT / "scripts/backend", "--program", PROGRAM, *options],
                                        stdout=subprocess.PIPE, **popen)
        self.ready = json.loads(self.process.stdout.readline())
        self.host = urllib.parse.urlsplit(self.ready["url"]).netloc
        self.connection = http.client.HTTPConnection(self.host, timeout=60)

    def stop(self):
        self.connection.close()
        self.process.terminate()
        self.process.stdout.read()
        self.process.stdout.close()
        return self.process.wait(timeout=60)

    def bare(self, method, path, body=None, headers=None):
        """A request with no header but these."""
        self.connection.request(method, path, body, headers or {})
        return Reply(self.connection.getresponse())

    def send(self, method, path, body=None, token=None, **headers):
        """A request with the public key; `content_type=…` becomes the header Content-Type, None leaves it out."""
        named = {"apikey": self.ready["anonKey"]}
        if token:
            named["Authorization"] = "Bearer " + token
        if body is not None and not isinstance(body, (bytes, str)):
            body = json.dumps(body)
            named["content-type"] = "application/json"
        named.update({name.replace("_", "-"): value for name, value in headers.items()})
        return self.bare(method, path, body, {name: value for name, value in named.items() if value is not None})

    def sign_in(self, person=None):
        person = person or self.ready["accounts"][0]
        return self.send("POST", "/auth/v1/token?grant_type=password", person)

    def sign_up(self, email, password="correct horse"):
        return self.send("POST", "/auth/v1/signup", {"email": email, "password": password})

    def mails(self, to):
        return self.bare("GET", "/dev/mails?to=" + urllib.parse.quote(to)).json

    @contextlib.contextmanager
    def settings(self, **changes):
        before = self.bare("GET", "/dev/settings").json
        changed = self.bare("PATCH", "/dev/settings", json.dumps(changes))
        assert changed.status == 200, changed.text
        try:
            yield
        finally:
            self.bare("PATCH", "/dev/settings", json.dumps(before))

    def sql(self, text):
        """Runs SQL as the superuser and returns what it prints, unaligned."""
        address = urllib.parse.urlsplit(self.ready["databaseUrl"])
        environment = dict(os.environ, PGHOST=address.hostname, PGPORT=str(address.port), PGUSER=address.username,
                           PGPASSWORD=address.password, PGDATABASE=address.path[1:])
        done = subprocess.run(["psql", "-XqAt", "-v", "ON_ERROR_STOP=1", "-f", "-"], input=text, text=True,
                              capture_output=True, env=environment)
        if done.returncode:
            raise RuntimeError(done.stderr)
        return done.stdout.strip()


_shared = []


def shared():
    """The one backend of this test program."""
    if not _shared:
        _shared.append(Backend())
        atexit.register(_shared[0].stop)
    return _shared[0]
