"""A PostgreSQL server of the tests' own, on a socket in a temporary folder, that asks for passwords."""
# SPDX-License-Identifier: MIT
import ctypes
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import tempfile
import time
from urllib.parse import quote

USER, PASSWORD = "lab", "hush/hush@4711"
_READY_LINE, _READY = 7, "ready"


def _programs():
    """The folder of the newest server; Debian keeps them out of PATH."""
    return max(pathlib.Path("/usr/lib/postgresql").glob("*/bin/initdb"), default=pathlib.Path()).parent


def lack():
    """What is missing to start one; empty if nothing is."""
    if not (_programs() / "initdb").is_file():
        return "no PostgreSQL server is installed"
    if not (pathlib.Path(os.environ.get("PELMORA_BUILD", "")) / "libpelmora-postgresql.so").exists():
        return "the module for PostgreSQL is not built"
    return ""


class Server:
    """Starts with the object and ends with the process at the latest."""

    def __init__(self):
        # Not one of pytest's, into which only their owner can look.
        self._temporary = tempfile.TemporaryDirectory(prefix="pelmora-")
        self._folder, self._databases = pathlib.Path(self._temporary.name), 0
        (self._folder / "password").write_text(PASSWORD)
        self._owner = pwd.getpwnam("postgres") if os.geteuid() == 0 else None  # a server does not run as root
        if self._owner:
            for path in (self._folder, self._folder / "password"):
                shutil.chown(path, self._owner.pw_uid, self._owner.pw_gid)
        made = self._start("initdb", "-D", self._data, "-A", "scram-sha-256", f"--pwfile={self._folder}/password", "-U",
                           USER, "-E", "UTF8", "--locale=C", "-N")
        assert made.wait() == 0, (self._folder / "log").read_text()
        self._process = self._start("postgres", "-D", self._data, "-k", self._folder, "-c", "listen_addresses=", "-c",
                                    "fsync=off", "-c", "full_page_writes=off", "-c", "shared_buffers=16MB")
        while not self._is_ready():
            assert self._process.poll() is None, (self._folder / "log").read_text()
            time.sleep(0.02)

    @property
    def _data(self):
        return self._folder / "data"

    def _start(self, program, *arguments):
        # Ends with this process, however that ends.
        as_owner = {"user": self._owner.pw_uid, "group": self._owner.pw_gid, "extra_groups": []} if self._owner else {}
        death_signal = 1
        with open(self._folder / "log", "ab") as log:
            return subprocess.Popen([_programs() / program, *arguments], stdout=log, stderr=log, cwd="/",
                                    preexec_fn=lambda: ctypes.CDLL(None).prctl(death_signal, signal.SIGQUIT), **as_owner)

    def _is_ready(self):
        try:
            lines = (self._data / "postmaster.pid").read_text().splitlines()
        except FileNotFoundError:
            return False
        return len(lines) > _READY_LINE and lines[_READY_LINE].startswith(_READY)

    def address(self, database, password=PASSWORD):
        """Of a database, with the password in it."""
        return f"postgresql://{USER}:{quote(password, safe='')}@/{database}?host={self._folder}"

    def new_database(self):
        """The address of a new, empty database."""
        self._databases += 1
        name = f"lab{self._databases}"
        subprocess.run([_programs() / "psql", "-Xq", "-d", self.address("postgres"), "-c", f"CREATE DATABASE {name}"],
                       check=True, capture_output=True)
        return self.address(name)

    def stop(self):
        """Ends the server at once and removes its folder."""
        self._process.send_signal(signal.SIGQUIT)
        self._process.wait()
        self._temporary.cleanup()
