"""A job on a Dask cluster of several worker processes, which are killed in the middle.

every_series_once_on_a_dask_cluster.py PELMORA

SPDX-License-Identifier: MIT
"""
import os
import signal
import sys
import threading

import shared_curves

try:
    import distributed
except ImportError:
    shared_curves.skip("Dask distributed is not installed: python3-distributed")

import pelmora.fleet

SERIES, RANGE, KILLS = 400, 20, 4


def kill_workers(cluster, address, is_over):
    """Kills a worker process of Dask with everything that it runs each time that some more ranges are done."""
    for kill in range(KILLS):
        done = (kill + 1) * SERIES // RANGE // (KILLS + 2)
        while not is_over.wait(0.05):
            try:
                if shared_curves.ask(address, "SELECT count(*) FROM pelmora_fleet_range WHERE \"State\" = 2") >= done:
                    break
            except Exception:
                continue
        nannies = [worker for worker in cluster.workers.values() if worker.process and worker.process.pid]
        if nannies:
            victim = nannies[kill % len(nannies)].process.pid
            for child in children_of(victim):
                os.kill(child, signal.SIGKILL)
            os.kill(victim, signal.SIGKILL)
            print(f"killed worker process {victim}", flush=True)


def children_of(process):
    try:
        with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as file:
            return [int(child) for child in file.read().split()]
    except OSError:
        return []


def main():
    program = sys.argv[1]
    with shared_curves.server() as address:
        shared_curves.make(program, address, SERIES)
        seen = []
        with distributed.LocalCluster(n_workers=3, threads_per_worker=1, dashboard_address=None) as cluster, \
                distributed.Client(cluster) as client:
            is_over = threading.Event()
            killer = threading.Thread(target=kill_workers, args=(cluster, address, is_over))
            killer.start()
            job = pelmora.fleet.refit(client, address, options=["--range", str(RANGE), "--fit-min", "12"], lease=2,
                                      program=program, progress=lambda done, of: seen.append((done, of)))
            is_over.set()
            killer.join()
        assert job["state"] == "done", job
        assert seen and all(of == SERIES // RANGE for _, of in seen), seen
        shared_curves.require_every_series_once(address, SERIES)


if __name__ == "__main__":  # the cluster's processes import this file
    main()
