#!/usr/bin/env python3
"""Fills an empty curve database with generated series, for the refit benchmark.

    pelmora init curves.db && bench/refit_series.py curves.db 10000
    pelmora refit curves.db --all --jobs 1

Each series has one raw part of 60 points, Roshko 40 to 6300 evenly in the logarithm, Strouhal a smooth curve with a
noise of 0.02 per cent. The same numbers give the same series.

SPDX-License-Identifier: MIT
"""
import math
import random
import sqlite3
import sys

POINTS = 60
NAMES = ("Rotor A", "Rotor B", "Rotor Sum", "Extra")


def raw_points(rng):
    level, fall, wave = rng.uniform(1200, 1400), rng.uniform(-30, -10), rng.uniform(2, 6)
    for i in range(POINTS):
        x = 40 * 10 ** (2.2 * i / (POINTS - 1))
        y = level + fall / math.log(x) + wave * math.sin(math.log(x))
        yield x, y * (1 + rng.gauss(0, 2e-4))


def main():
    path, count = sys.argv[1], int(sys.argv[2])
    rng = random.Random(1)
    with sqlite3.connect(path) as database:
        for series in range(count):
            meter = series // len(NAMES) + 1
            if series % len(NAMES) == 0:
                serial = f"G{meter:05d}"
                database.execute("INSERT INTO meter VALUES (?, ?, ?, 0)", (meter, serial, serial))
            database.execute("INSERT INTO series VALUES (?, ?, ?)", (series + 1, NAMES[series % len(NAMES)], meter))
            rows = [(series + 1, x, y) for x, y in raw_points(rng)]
            database.executemany("INSERT INTO raw1 VALUES (?, ?, ?)", rows)


main()
