"""The fuzz targets: what each is fed with, how long, and what came of it."""
# SPDX-License-Identifier: MIT
import concurrent.futures
import os
import pathlib
import re

from running import Meter, run

dictionaries = {"dialect": "dialect", "equation": "equation", "equation_file": "equation", "points_csv": "csv",
                "stand_csv": "csv", "result_file": "csv", "stand_uncertainty": "stand_uncertainty",
                "certificate": "certificate"}


def targets():
    return sorted(path.name.removesuffix("_fuzz.cpp") for path in pathlib.Path("fuzz").glob("*_fuzz.cpp"))


class Outcome:
    def __init__(self, target, code, output):
        self.target, self.code = target, code
        found = re.search(r"stat::number_of_executed_units:\s*(\d+)", output)
        self.runs = int(found[1]) if found else 0
        # A run without an end of its own is a finding too; one that never ran anything is no pass.
        self.is_clean = code == 0 and self.runs > 0
        self.last_lines = "\n".join(output.splitlines()[-40:])


def run_target(folder, target, seconds, meter):
    corpus, findings = folder / "corpus" / target, folder / "findings"
    for made in (corpus, findings):
        made.mkdir(parents=True, exist_ok=True)
    command = [str(folder / "fuzz" / f"{target}_fuzz"), str(corpus), f"fuzz/seeds/{target}",
               f"-max_total_time={seconds}", "-timeout=60", "-rss_limit_mb=2048", "-max_len=4096",
               "-print_final_stats=1", f"-artifact_prefix={findings}/{target}-"]
    if target in dictionaries:
        command.append(f"-dict=fuzz/dictionaries/{dictionaries[target]}.dict")
    log = folder / f"{target}.log"
    log.unlink(missing_ok=True)
    code = run(command, log, meter)
    return Outcome(target, code, log.read_text(errors="replace"))


def run_targets(folder, chosen, seconds, jobs=None, meter=None):
    """Each target of a build folder for as many seconds, one per processor at a time; `meter` adds up what they take."""
    meter = meter or Meter()
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs or os.cpu_count()) as runners:
        return list(runners.map(lambda target: run_target(folder, target, seconds, meter), chosen))
