"""Curve databases of tests: files or, while on_server.py runs a test, databases on its server."""
# SPDX-License-Identifier: MIT
import contextlib
import hashlib
import itertools
import os
import re
import shutil
import sqlite3
import subprocess

SERVER = os.environ.get("PELMORA_TEST_SERVER")  # the folder of its socket
CLIENT = ["-h", SERVER, "-U", "lab"] if SERVER else []
_numbers = itertools.count(1)


def _made_on_server(*options):
    name = f"case{next(_numbers)}"
    subprocess.run(["createdb", *CLIENT, *options, name], check=True)
    return f"postgresql://lab@/{name}?host={SERVER}"


def _name_of(location):
    return re.fullmatch(r"postgresql://lab@/(\w+)\?.*", location)[1]


def new_database(folder, name):
    """A location at which `pelmora init` can make a curve database."""
    return _made_on_server() if SERVER else os.path.join(folder, name + ".db")


def copied_database(folder, model, name):
    """The location of a copy of the database at `model`, which nobody has opened."""
    if SERVER:
        return _made_on_server("-T", _name_of(model))
    return shutil.copy(model, os.path.join(folder, name + ".db"))


@contextlib.contextmanager
def locked(location):
    """While nobody else can read or change the database."""
    if SERVER:
        lock = """BEGIN; DO $$ DECLARE name text; BEGIN
            FOR name IN SELECT quote_ident(tablename) FROM pg_tables WHERE schemaname = 'public' ORDER BY 1
            LOOP EXECUTE 'LOCK TABLE ' || name; END LOOP; END $$; SELECT 'locked';
            """
        client = subprocess.Popen(["psql", *CLIENT, "-qAt", _name_of(location)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        client.stdin.write(lock)
        client.stdin.flush()
        assert client.stdout.readline() == "locked\n"
        yield
        client.communicate()
        return
    connection = sqlite3.connect(location, isolation_level=None)
    connection.execute("BEGIN EXCLUSIVE")
    yield
    connection.close()


def digest(location):
    """The same as long as nothing has changed in the database."""
    if not SERVER:
        with open(location, "rb") as stream:
            return hashlib.sha256(stream.read()).hexdigest()
    dump = subprocess.run(["pg_dump", *CLIENT, _name_of(location)], check=True, capture_output=True).stdout
    # Each dump has a key of its own against injected commands; a change that was undone leaves gaps between numbers.
    lines = [line for line in dump.splitlines() if not re.match(rb"\\(un)?restrict |SELECT pg_catalog.setval", line)]
    assert len(lines) > 10, lines
    return hashlib.sha256(b"\n".join(lines)).hexdigest()
