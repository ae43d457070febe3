"""A job in an array of Slurm tasks, on a controller and a node of the test's own; tasks are killed in the middle.

every_series_once_in_a_slurm_array.py PELMORA

SPDX-License-Identifier: MIT
"""
import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

import shared_curves

SERIES, RANGE, TASKS = 600, 20, 4
SOURCE = pathlib.Path(os.environ["PELMORA_SOURCE"])

CONFIGURATION = """
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SlurmctldPort={controller_port}
SlurmdPort={node_port}
ReturnToService=2
NodeName={host} NodeAddr=127.0.0.1 CPUs={cpus} State=UNKNOWN
PartitionName=p Nodes={host} Default=YES State=UP
"""


def free_port():
    with contextlib.closing(socket.socket()) as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def wait_for(condition, what, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            sys.exit(f"{what} does not come about within {seconds} s")
        time.sleep(0.1)


@contextlib.contextmanager
def cluster():
    """The environment in which Slurm's commands reach a controller and a node of our own."""
    with tempfile.TemporaryDirectory() as name, contextlib.ExitStack() as ends:
        folder = pathlib.Path(name)
        os.chmod(folder, 0o755)
        key = folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o600)
        for part in ("state", "spool"):
            (folder / part).mkdir()
        host = socket.gethostname().split(".")[0]
        (folder / "slurm.conf").write_text(CONFIGURATION.format(
            host=host, folder=folder, controller_port=free_port(), node_port=free_port(), cpus=os.cpu_count()))
        environment = {**os.environ, "SLURM_CONF": str(folder / "slurm.conf")}

        def start(*command):
            process = subprocess.Popen([str(part) for part in command], env=environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            ends.callback(stop, process)

        start("munged", "--foreground", "--force", f"--key-file={key}", f"--socket={folder}/munge.socket",
              f"--pid-file={folder}/munged.pid", f"--log-file={folder}/munged.log", f"--seed-file={folder}/munged.seed",
              "--num-threads=2")
        wait_for((folder / "munge.socket").exists, "munged")
        start("slurmctld", "-D")
        start("slurmd", "-D")
        wait_for(lambda: "idle" in output(environment, "sinfo", "-h", "-o", "%T"), "a node that is idle")
        yield environment


def stop(process):
    process.terminate()
    try:
        process.wait(20)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def output(environment, *command):
    return subprocess.run(command, env=environment, capture_output=True, text=True, check=False).stdout


def ranges_done(address):
    return shared_curves.ask(address, "SELECT count(*) FROM pelmora_fleet_range WHERE \"State\" = 2")


def workers(address):
    """The process ids of the workers that have a range now; they are named by host and process."""
    rows = subprocess.run(["psql", "-AtqX", "-d", address, "-c",
                           "SELECT DISTINCT \"Worker\" FROM pelmora_fleet_range WHERE \"State\" = 1"],
                          check=True, capture_output=True, text=True).stdout.split()
    return [int(name.split(":")[1].split(".")[0]) for name in rows]


def main():
    program = sys.argv[1]
    if os.getuid() != 0:
        shared_curves.skip("a Slurm node needs to be started as root")
    for needed in ("slurmctld", "slurmd", "sbatch", "munged"):
        if shutil.which(needed) is None:
            shared_curves.skip(f"{needed} is not installed: slurm-wlm, munge")
    with shared_curves.server() as address, cluster() as environment:
        shared_curves.make(program, address, SERIES)
        shared_curves.run(program, "fleet", "start", address, "--range", RANGE, "--fit-min", "12")
        environment["PELMORA"] = program
        log = str(pathlib.Path(environment["SLURM_CONF"]).parent / "task-%a.log")
        subprocess.run(["sbatch", f"--array=1-{TASKS}", f"--output={log}", "--chdir=/",
                        SOURCE / "examples/fleet/refit.sbatch", address, "--lease", "2"],
                       env=environment, check=True, stdout=subprocess.DEVNULL)
        killed = 0
        while killed < TASKS - 1 and ranges_done(address) < SERIES // RANGE:
            # One after the other, each somewhere in its work: the last one does the rest.
            try:
                wait_for(lambda: ranges_done(address) > 3 * killed, "the next range")
            except SystemExit:
                print(output(environment, "squeue"), output(environment, "scontrol", "show", "job"))
                for file in sorted(pathlib.Path(log).parent.glob("*.log")):
                    print(file.name, file.read_text(errors="replace")[-3000:])
                raise
            for worker in workers(address)[:1]:
                with contextlib.suppress(ProcessLookupError):
                    os.kill(worker, signal.SIGKILL)
                    killed += 1
        is_running = lambda: output(environment, "squeue", "-h").strip() != ""
        wait_for(lambda: not is_running(), "the end of the array", 200)
        print(f"{killed} tasks were killed")
        if killed == 0:
            sys.exit("the array was done before a task could be killed")
        shared_curves.run(program, "worker", address)  # ends at once if the array has done all
        shared_curves.require_every_series_once(address, SERIES)


main()
