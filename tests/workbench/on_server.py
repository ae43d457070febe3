#!/usr/bin/env python3
"""Runs a test while a PostgreSQL server of its own runs, in a temporary folder, on a socket: on_server.py COMMAND...

COMMAND finds the folder of the socket in PELMORA_TEST_SERVER, and the server's programs in PATH. The exit code is that of
COMMAND; 77, which CTest takes for skipped, if there is no server to start."""
# SPDX-License-Identifier: MIT
import ctypes
import glob
import os
import pwd
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PR_SET_PDEATHSIG = 1


def skip(why):
    print("SKIPPED: " + why)
    sys.exit(77)


def programs():
    """Of the newest server: Debian keeps them out of PATH."""
    found = [os.path.dirname(path) for path in glob.glob("/usr/lib/postgresql/*/bin/initdb")]
    return max(found, key=lambda path: int(path.split("/")[4])) if found else skip("no PostgreSQL server is installed")


def server_user():
    """For Popen. A server refuses to run as root: then it runs as the user that its package made."""
    if os.geteuid() != 0:
        return {}
    try:
        found = pwd.getpwnam("postgres")
    except KeyError:
        skip("there is no user postgres")
    return {"user": found.pw_uid, "group": found.pw_gid, "extra_groups": []}


def ends_with_us():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGQUIT)


def is_ready(data, process):
    try:
        with open(os.path.join(data, "postmaster.pid"), encoding="ascii") as stream:
            lines = stream.read().splitlines()
    except FileNotFoundError:
        return False
    return len(lines) > 7 and lines[0] == str(process.pid) and lines[7].startswith("ready")


def run(command):
    folder, user, path = tempfile.mkdtemp(prefix="pelmora-server-"), server_user(), programs()
    process = None
    try:
        if user:
            os.chown(folder, user["user"], user["group"])
        data, log = os.path.join(folder, "data"), os.path.join(folder, "log")
        with open(log, "w", encoding="utf-8") as stream:
            start = lambda *words: subprocess.Popen(words, stdout=stream, stderr=stream, cwd="/", preexec_fn=ends_with_us, **user)
            made = start(f"{path}/initdb", "-D", data, "-A", "trust", "-U", "lab", "-E", "UTF8", "--locale=C", "-N").wait()
            process = start(f"{path}/postgres", "-D", data, "-k", folder, "-c", "listen_addresses=", "-c", "fsync=off",
                            "-c", "full_page_writes=off", "-c", "shared_buffers=16MB") if made == 0 else None
        while process and process.poll() is None and not is_ready(data, process):
            time.sleep(0.05)
        if not process or process.poll() is not None:
            with open(log, encoding="utf-8") as stream:
                sys.exit("the server cannot be started: " + stream.read()[-2000:])
        return subprocess.run(command, env={**os.environ, "PATH": path + ":" + os.environ["PATH"], "PELMORA_TEST_SERVER": folder}, check=False).returncode
    finally:
        if process and process.poll() is None:
            process.send_signal(signal.SIGINT)
            process.wait()
        shutil.rmtree(folder, ignore_errors=True)


sys.exit(run(sys.argv[1:]))
