"""A PostgreSQL server with a curve database of generated series, and an independent count of what was refitted.

SPDX-License-Identifier: MIT
"""
import contextlib
import glob
import math
import os
import pathlib
import pwd
import random
import sqlite3
import subprocess
import sys
import tempfile

POINTS = 15


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(77)


def as_user(name):
    """Arguments for subprocess with which a program runs as this user, if this process may choose."""
    return {"user": name, "group": pwd.getpwnam(name).pw_gid, "extra_groups": []} if os.getuid() == 0 else {}


@contextlib.contextmanager
def server(fsync="off"):
    """The address of an empty database on a server that lives as long as the context. fsync: whether it waits for the
    disk, which a test of killed workers need not."""
    programs = sorted(glob.glob("/usr/lib/postgresql/*/bin"))
    if not programs:
        skip("no PostgreSQL server is installed")
    if os.getuid() == 0 and "postgres" not in [user.pw_name for user in pwd.getpwall()]:
        skip("there is no user postgres")
    user, bin_ = as_user("postgres"), programs[-1]
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o777)
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, "cwd": "/", "check": True, **user}
        subprocess.run([f"{bin_}/initdb", "-D", f"{folder}/data", "-A", "trust", "-U", "lab", "-E", "UTF8",
                        "--locale=C", "-N"], **quiet)
        control = [f"{bin_}/pg_ctl", "-D", f"{folder}/data", "-w", "-s", "-l", f"{folder}/data/log"]
        subprocess.run([*control, "-o", f"-k {folder} -c listen_addresses= -c fsync={fsync}", "start"], **quiet)
        try:
            subprocess.run([f"{bin_}/createdb", "-h", folder, "-U", "lab", "curves"], **quiet)
            yield f"postgresql://lab@/curves?host={folder}"
        finally:
            subprocess.run([*control, "-m", "immediate", "stop"], **{**quiet, "check": False})


def ask(address, question):
    """The whole number that SQL delivers, by the plain client."""
    return int(subprocess.run(["psql", "-AtqX", "-d", address, "-c", question], check=True, capture_output=True,
                              text=True).stdout)


def make(pelmora, address, count):
    """Fills the database with `count` series that all have a curve, and starts a job that replaces each of them."""
    rng = random.Random(1)
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "curves.db"
        run(pelmora, "init", path)
        with contextlib.closing(sqlite3.connect(path)) as file, file:
            file.execute("INSERT INTO meter VALUES (1, 'M', 'M', 0)")
            for series in range(1, count + 1):
                file.execute("INSERT INTO series VALUES (?, ?, 1)", (series, f"S{series}"))
                for i in range(POINTS):
                    x = 10 * 100 ** (i / (POINTS - 1))
                    y = (1300 + 20 * math.log10(x) - 4 * math.log10(x) ** 2) * (1 + rng.gauss(0, 1e-4))
                    file.execute("INSERT INTO raw1 VALUES (?, ?, ?)", (series, x, y))
        run(pelmora, "refit", path, "--all", "--choose", "adjusted-r2")
        run(pelmora, "init", address)
        run(pelmora, "copy", path, address)


def run(*command):
    subprocess.run([str(part) for part in command], check=True, stdout=subprocess.DEVNULL)


def require_every_series_once(address, count):
    """What the history and the tables of the fleet say, without the program."""
    kept = "pelmora_history_entry WHERE \"Command\" = 'fleet'"
    found = {
        "curves kept in the history": ask(address, f"SELECT count(*) FROM {kept}"),
        "series among them": ask(address, f"SELECT count(DISTINCT \"SeriesID\") FROM {kept}"),
        "results": ask(address, "SELECT count(*) FROM pelmora_fleet_result"),
        "series among these": ask(address, "SELECT count(DISTINCT \"SeriesID\") FROM pelmora_fleet_result"),
        "whole curves": ask(address, "SELECT count(*) FROM (SELECT \"seriesID\" FROM curve GROUP BY 1 HAVING "
                                     "count(*) = 40) AS c"),
        "settings": ask(address, "SELECT count(*) FROM pelmora_fit_settings"),
    }
    wrong = {name: number for name, number in found.items() if number != count}
    if wrong:
        sys.exit(f"of {count} series: {wrong}")
    left = ask(address, "SELECT count(*) FROM pelmora_fleet_range WHERE \"State\" <> 2")
    taken_over = ask(address, "SELECT count(*) FROM pelmora_fleet_range WHERE \"Token\" > 1")
    if left:
        sys.exit(f"{left} ranges are not done")
    print(f"{count} series refitted once each; {taken_over} ranges were taken over from workers that were killed")
