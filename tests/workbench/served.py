"""A workbench that runs while a test asks it."""
# SPDX-License-Identifier: MIT
import http.client
import json
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import traceback
import types
import urllib.parse

from databases import copied_database, new_database

# How long an answer may take on a machine that does much else.
PATIENCE = 300


class Workbench:
    """with Workbench(program, curves) as bench: bench.get("state")"""

    def __init__(self, program, curves, *options):
        self.process = subprocess.Popen([program, "workbench", curves, "--no-browser", *options], stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True, encoding="utf-8")
        self.address = self.next_address()
        found = re.fullmatch(r"http://127\.0\.0\.1:(\d+)/([0-9a-f]{32})/open\?token=([0-9a-f]{32})", self.address)
        assert found, self.address
        self.port, self.room, self.token = int(found[1]), found[2], found[3]
        self.host = f"127.0.0.1:{self.port}"
        self.origin = f"http://{self.host}"
        self.cookie = None

    def next_address(self):
        """The next address that the program prints."""
        for line in self.process.stdout:
            if line.strip().startswith("http://"):
                return line.strip()
        raise AssertionError("the workbench has ended: " + self.process.stderr.read())

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGINT)
        self.error = self.process.communicate(timeout=PATIENCE)[1]

    def open(self):
        """Exchanges the token; every later request has the cookie."""
        status, headers, _ = self.ask("GET", f"/{self.room}/open?token={self.token}")
        assert status == 200, status
        self.cookie = headers["set-cookie"].split(";")[0]
        return self

    def ask(self, method, path, body=None, headers=None, cookie=True, pause=0):
        """(status, headers, bytes) of one request on a connection of its own; `headers` replace the usual ones, the body is
        sent after a pause of that many seconds."""
        fields = {"Host": self.host}
        if cookie and self.cookie:
            fields["Cookie"] = self.cookie
        if method == "POST":
            fields.update({"Origin": self.origin, "Content-Type": "application/json"})
        fields.update(headers or {})
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
        try:
            connection.putrequest(method, path, skip_host=True, skip_accept_encoding=True)
            for name, value in fields.items():
                if value is not None:
                    connection.putheader(name, value)
            if body is not None:
                connection.putheader("Content-Length", str(len(body)))
            try:
                connection.endheaders(None if pause else body)
                if pause:
                    time.sleep(pause)
                    connection.send(body)
            except ConnectionError:
                pass  # the answer may be there all the same
            answer = connection.getresponse()
            return answer.status, {name.lower(): value for name, value in answer.getheaders()}, answer.read()
        finally:
            connection.close()

    def raw(self, data, seconds=PATIENCE):
        """What comes back for bytes that need not be HTTP; empty if the connection closes without an answer."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=seconds) as connection:
            try:
                connection.sendall(data)
                connection.shutdown(socket.SHUT_WR)
                answer = b""
                while part := connection.recv(65536):
                    answer += part
                return answer
            except (TimeoutError, ConnectionError):
                return b""

    def get(self, path, **query):
        """(status, JSON) of a reading request."""
        words = urllib.parse.urlencode(query)
        status, _, body = self.ask("GET", f"/{self.room}/api/{path}" + (f"?{words}" if words else ""))
        return status, json.loads(body)

    def post(self, path, pause=0, **members):
        status, _, body = self.ask("POST", f"/{self.room}/api/{path}", json.dumps(members).encode(), pause=pause)
        return status, json.loads(body)

    def upload(self, file, name=None):
        with open(file, "rb") as stream:
            words = urllib.parse.urlencode({"name": name or os.path.basename(file)})
            status, _, body = self.ask("POST", f"/{self.room}/api/upload?{words}", stream.read(),
                                       {"Content-Type": "application/octet-stream"})
            return status, json.loads(body)


def calibrated(program, data, curves):
    """A curve database with one meter of two fluids."""
    run = lambda *words: subprocess.run([program, *words], check=True, capture_output=True)
    run("init", curves)
    run("calibrate", curves, "--meter", "M1", "--stand", os.path.join(data, "stand-dual-rotor.csv"), "--job", "1001", "--fluid",
        "Mineral spirit", "--job", "1002", "--fluid", "Glycol mix", "--operator", "Ada")


def cases_of(module):
    """The functions (bench, curves) of a test, by name."""
    return {name: case for name, case in module.items()
            if isinstance(case, types.FunctionType) and case.__code__.co_varnames[:case.__code__.co_argcount] == ("bench", "curves")}


def run_cases(program, data, module, names):
    """Runs the cases with these names, or all of them, each at a workbench and a database of its own. Two at once, because
    some of them wait. Ends the process with 1 if one has failed."""
    left = [(name, case) for name, case in cases_of(module).items() if not names or name in names]
    assert left, names
    failed = []
    with tempfile.TemporaryDirectory() as folder:
        model = new_database(folder, "model")
        calibrated(program, data, model)

        def run(name, case):
            begin = time.monotonic()
            try:
                curves = copied_database(folder, model, name)
                with Workbench(program, curves) as bench:
                    case(bench.open(), curves)
                assert bench.process.returncode == 130, (bench.process.returncode, bench.error)
            except Exception:  # of any kind: the other cases run all the same
                failed.append(name)
                print(f"FAILED {name}\n{traceback.format_exc()}", flush=True)
            print(f"{name}: {time.monotonic() - begin:.1f} s", flush=True)

        def work():
            while left:
                try:
                    run(*left.pop(0))
                except IndexError:
                    return

        threads = [threading.Thread(target=work) for _ in range(2)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    sys.exit(1 if failed else 0)
