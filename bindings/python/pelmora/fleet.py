"""Refit all series of a shared curve database on a Dask cluster.

    from dask.distributed import Client, LocalCluster
    import pelmora.fleet

    with LocalCluster(n_workers=4, threads_per_worker=1) as cluster, Client(cluster) as client:
        pelmora.fleet.refit(client, "postgresql://db.lab.example/curves")

Each task runs the program ``pelmora worker`` for one range of series, on the machine of a Dask worker. The ranges are
leased in the database, so that a task that is killed or run twice stores nothing twice; what it had leased is done
again by another one.
"""
# SPDX-License-Identifier: MIT
from __future__ import annotations

import importlib
import json
import subprocess
from collections.abc import Callable, Sequence
from typing import Any, Optional

from .errors import BadData, Unusable

#: Rounds of tasks in which no range is finished, after which a fleet is given up.
_MOST_IDLE_ROUNDS = 5


def refit(client: Any, database: str, *, options: Sequence[str] = (), lease: int = 120, program: str = "pelmora",
          progress: Optional[Callable[[int, int], object]] = None) -> dict[str, Any]:
    """Refit every series of the database, and return the status of the job as ``pelmora fleet status --json`` has it.

    A job that has not ended is continued, for example one whose script was killed; otherwise a new one is started.

    :param client: A ``distributed.Client``. Its workers need the package and the program.
    :param database: The address or file; without a password, which the workers take from PGPASSWORD or ``~/.pgpass``.
    :param options: For ``pelmora fleet start``, for example ``["--choose", "trusted", "--range", "500"]``.
    :param lease: Seconds after which another task takes over what a silent worker had leased.
    :param program: The command line, as the workers call it.
    :param progress: Called with the numbers of finished and of all ranges.
    """
    if not _is_open(_status(program, database)):
        _run(program, "fleet", "start", database, *options)
    idle_rounds = 0
    while True:
        before = _status(program, database)
        if not _is_open(before):
            return before
        left = _ranges(before, "all") - _ranges(before, "done")
        _run_tasks(client, left, (program, database, lease), progress, before)
        after = _status(program, database)
        idle_rounds = idle_rounds + 1 if _ranges(after, "done") == _ranges(before, "done") else 0
        if idle_rounds == _MOST_IDLE_ROUNDS:
            raise Unusable(f"the tasks finish no range of the job in '{database}'", where=database,
                           remedy=f"look at what 'pelmora worker {database}' says on a worker")


def _run_tasks(client: Any, count: int, arguments: tuple[str, str, int],
               progress: Optional[Callable[[int, int], object]], status: dict[str, Any]) -> None:
    """As many tasks as there are ranges. One that fails is no failure of the job: its range is done in a later round."""
    distributed: Any = importlib.import_module("distributed")
    program, database, lease = arguments
    done, of = _ranges(status, "done"), _ranges(status, "all")
    tasks = [client.submit(work_on_one_range, database, lease, program, pure=False, retries=2)
             for _ in range(count)]
    for task in distributed.as_completed(tasks):
        if task.status == "finished" and progress is not None:
            done = min(of, done + task.result()["ranges"])
            progress(done, of)


def work_on_one_range(database: str, lease: int = 120, program: str = "pelmora") -> dict[str, Any]:
    """What one task does: fit and store a range of the job of the database, if there is one."""
    return _run(program, "worker", database, "--ranges", "1", "--lease", str(lease))


def _status(program: str, database: str) -> dict[str, Any]:
    jobs = _run(program, "fleet", "status", database)["jobs"]
    return dict(jobs[0]) if jobs else {}


def _is_open(status: dict[str, Any]) -> bool:
    return status.get("state") in ("running", "paused")


def _ranges(status: dict[str, Any], which: str) -> int:
    return int(status["ranges"][which])


def _run(program: str, *arguments: str) -> dict[str, Any]:
    try:
        ended = subprocess.run([program, *arguments, "--json"], capture_output=True, text=True, check=False)
    except FileNotFoundError:
        raise BadData(f"there is no program '{program}'", where="program",
                      remedy="install it, or pass its path") from None
    if ended.returncode != 0:
        said = ended.stderr.strip() or f"it ended with {ended.returncode}"
        raise Unusable(f"'{program} {' '.join(arguments)}' failed: {said}", where=program, remedy="")
    return dict(json.loads(ended.stdout))
