"""pelmora.fit of 60 points beside the same fit in C++, in turns: bench/python_fits.py BUILD [ROUNDS]

Prints the lowest time of each, in CPU time of all threads, and their ratio.
"""
# SPDX-License-Identifier: MIT
import json
import pathlib
import subprocess
import sys
import time

build = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(build / "python"))

import numpy as np

import pelmora

RULES = {"trusted": "trusted", "adjusted-r2": "adjusted_r2"}


def points():
    i = np.arange(60)
    roshko = 40 * 150.0 ** (i / 59)
    return roshko, 2.5 * (1 - 4 / roshko) * (1 + 1e-4 * (i % 7 - 3.0))


def in_python(choose, seconds=0.5):
    columns, fits = points(), 0
    began = time.process_time()
    while time.process_time() - began < seconds:
        pelmora.fit(*columns, choose=choose).curve
        fits += 1
    return (time.process_time() - began) / fits * 1e6


def in_cpp(name):
    program = build / "bench" / "service_fit_bench"
    printed = subprocess.run([program, f"--benchmark_filter={name}$", "--benchmark_format=json"], check=True,
                             capture_output=True).stdout
    return json.loads(printed)["benchmarks"][0]["cpu_time"]


rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 5
for choose, name in RULES.items():
    ours, theirs = [], []
    for _ in range(rounds):
        ours.append(in_python(choose))
        theirs.append(in_cpp(name))
    print(f"{choose}: Python {min(ours):.0f} us, C++ {min(theirs):.0f} us, ratio {min(ours) / min(theirs):.2f}")
