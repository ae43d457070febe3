"""Bands and Student quantiles by SciPy, for tests/solver/bands_test.cpp. Prints reference.json.

Formulas: the textbook ones for linear regression, as R's predict.lm documents them for interval =
"confidence" and "prediction": fit +- t(0.975, n - p) s sqrt(h) and s sqrt(1 + h), h = v' (X'X)^-1 v.
(X'X)^-1 is formed in rational arithmetic, t by
scipy.special.betaincinv: t^2 / (f + t^2) has the distribution B(1/2, f/2). (scipy.stats.t.ppf of this version
agrees to 9 digits only, also with the closed forms of f = 1 and 2.)

SPDX-License-Identifier: MIT
"""
import json
from fractions import Fraction

import scipy
from scipy.special import betaincinv


def student(q, f):
    share = betaincinv(0.5, f / 2, q)
    return float((f * share / (1 - share))**0.5)


def inverse(a):
    n = len(a)
    rows = [list(r) + [Fraction(int(i == j)) for j in range(n)] for i, r in enumerate(a)]
    for k in range(n):
        pivot = next(i for i in range(k, n) if rows[i][k] != 0)
        rows[k], rows[pivot] = rows[pivot], rows[k]
        rows[k] = [v / rows[k][k] for v in rows[k]]
        for i in range(n):
            if i != k and rows[i][k] != 0:
                rows[i] = [v - rows[i][k] * w for v, w in zip(rows[i], rows[k])]
    return [r[n:] for r in rows]


def bands(name, expression, powers, x, y, at):
    fx, fy = [Fraction(v) for v in x], [Fraction(v) for v in y]
    design = [[v**p for p in powers] for v in fx]
    p, n = len(powers), len(x)
    gram = inverse([[sum(r[i] * r[j] for r in design) for j in range(p)] for i in range(p)])
    right = [sum(r[i] * v for r, v in zip(design, fy)) for i in range(p)]
    beta = [sum(gram[i][j] * right[j] for j in range(p)) for i in range(p)]
    rss = sum((v - sum(b * c for b, c in zip(beta, r)))**2 for r, v in zip(design, fy))
    s2 = rss / (n - p)
    quantile = student(0.95, n - p)
    result = dict(name=name, expression=expression, x=x, y=y, at=at, curve=[], confidence=[], prediction=[])
    for v in at:
        row = [Fraction(v)**k for k in powers]
        h = sum(row[i] * gram[i][j] * row[j] for i in range(p) for j in range(p))
        result["curve"].append(float(sum(b * c for b, c in zip(beta, row))))
        result["confidence"].append(quantile * float(s2 * h)**0.5)
        result["prediction"].append(quantile * float(s2 * (1 + h))**0.5)
    return result


xs = [0.5, 1.0, 1.75, 2.5, 3.0, 4.25, 5.0, 6.5, 7.0, 8.25, 9.0, 10.0]
ys = [2.125, 2.75, 3.5, 3.375, 4.5, 5.25, 5.125, 6.0, 6.75, 6.5, 7.25, 7.125]
grid = [0.5, 2.0, 5.5, 9.75, 10.0]
quantiles = [dict(probability=q, freedom=f, t=student(q, f))
             for q in (0.5, 0.9, 0.95, 0.99, 0.999) for f in (1, 2, 3, 5, 10, 39, 120, 1000, 31989)]
print(json.dumps(dict(scipy=scipy.__version__, quantiles=quantiles, fits=[
    bands("line", "a+b*x", (0, 1), xs, ys, grid),
    bands("cubic", "a+b*x+c*x^2+d*x^3", (0, 1, 2, 3), xs, ys, grid),
    bands("reciprocal", "a+b*x+c/x", (0, 1, -1), xs, ys, grid),
]), indent=1))
