#!/usr/bin/python3
"""The catalogue of six equations by SciPy (Debian's python3-scipy): scipy.linalg.lstsq with standard errors,
statistics and 40 predicted points. Prints the median CPU time of 7 rounds in microseconds, and the digits of
the worst parameter of order 10 against a fit in 60 decimal digits.

SPDX-License-Identifier: MIT
"""
import math
import statistics
import time
from decimal import Decimal, getcontext

import numpy as np
from scipy.linalg import lstsq, solve_triangular, qr

getcontext().prec = 60
RECIPROCALS = (0, 1, -1, 2, -2, 3, -3, 4, -4)


def workload(n):
    """The numbers of bench/catalogue_workload.h."""
    state, xs, ys = 12345, [], []
    for k in range(n):
        x = 40 * (6000 / 40) ** (k / (n - 1))
        t = math.log10(x)
        state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
        noise = 1 + 0.0002 * 3.46 * ((state >> 11) * 2.0**-53 - 0.5)
        xs.append(x)
        ys.append(1318 * (1 - 0.06 * math.exp(-0.8 * t) + 0.004 * math.sin(1.7 * t)) * noise)
    return np.array(xs), np.array(ys)


def design(x, order):
    if order:
        return np.vander(np.log10(x), order + 1, increasing=True)
    logarithm = np.log(x)
    return np.stack([logarithm**p for p in RECIPROCALS], axis=1)


def fit(x, y, grid, order):
    columns = design(x, order)
    parameters = lstsq(columns, y, cond=1e-300)[0]
    residuals = y - columns @ parameters
    squares = residuals @ residuals
    n, p = columns.shape
    inverse = solve_triangular(qr(columns, mode="economic")[1], np.eye(p))
    errors = np.sqrt((inverse**2).sum(axis=1) * squares / (n - p))
    r_squared = 1 - squares / ((y - y.mean()) ** 2).sum()
    return parameters, errors, r_squared, design(grid, order) @ parameters


def exact(x, y, order):
    """Parameters by the normal equations in 60 digits."""
    p = order + 1
    sums, right = [Decimal(0)] * (2 * p - 1), [Decimal(0)] * p
    for u, v in zip((Decimal(float(a)).log10() for a in x), (Decimal(float(b)) for b in y)):
        power = Decimal(1)
        for k in range(2 * p - 1):
            sums[k] += power
            if k < p:
                right[k] += power * v
            power *= u
    rows = [[sums[i + j] for j in range(p)] + [right[i]] for i in range(p)]
    for k in range(p):
        rows[k] = [v / rows[k][k] for v in rows[k]]
        for i in range(p):
            if i != k:
                rows[i] = [v - rows[i][k] * w for v, w in zip(rows[i], rows[k])]
    return [row[p] for row in rows]


def main():
    grid = workload(40)[0]
    for n in (50, 500, 5000, 32000):
        x, y = workload(n)
        times = []
        for _ in range(7):
            rounds = max(1, 2000 // n)
            start = time.process_time()
            for _ in range(rounds):
                for order in (0, 10, 9, 8, 7, 6):
                    fit(x, y, grid, order)
            times.append((time.process_time() - start) / rounds)
        found = fit(x, y, grid, 10)[0]
        digits = min(float(-(abs(Decimal(float(a)) - b) / abs(b)).log10()) for a, b in zip(found, exact(x, y, 10)))
        print(f"scipyLstsq/{n:<8} {statistics.median(times) * 1e6:10.0f} us   digits={digits:.2f}")


main()
