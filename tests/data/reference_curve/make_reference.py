"""Reference curves by dense linear algebra, for tests/solver/reference. Prints reference.json.

Nothing here is a filter: covariance matrices of all points are formed and factored in 60 decimal
digits (mpmath numbers in NumPy arrays), offsets of fluids are part of the covariance, points left
out are left out and everything is computed again, and the average over hyperparameters visits all
of the grid. Student's factor is from scipy.special.betaincinv.

With z = ln y (y / unit on the absolute scale), t = ln x, X = [1, t], noise variance 1 at the
largest flow, V = amplitude^2 Matern(length) + noise + offsets^2 [same fluid] + drag^2 g g' with
g = smallest x / x:
  b = (X'V^-1 X)^-1 X'V^-1 z, squares = (z - Xb)'V^-1 (z - Xb) + d s^2,
  log weight = -(ln|V| + ln|X'V^-1 X| + (n - 2 + d) ln squares + (ln(length / 2) / 0.8)^2) / 2,
with d = 1 and s = 0.0005 from the prior of the noise.
Source: Rasmussen, Williams: Gaussian Processes for Machine Learning, MIT Press (2006), sections
2.7 and 4.2.

SPDX-License-Identifier: MIT
"""
import itertools
import json

import mpmath
import numpy as np
import scipy
from mpmath import mpf
from scipy.special import betaincinv

mpmath.mp.dps = 60
PRIOR_LENGTH, PRIOR_SPREAD, PRIOR_NOISE, PRIOR_DEGREES = mpf(2), mpf('0.8'), mpf('0.0005'), 1
log = np.frompyfunc(mpmath.log, 1, 1)
exp = np.frompyfunc(mpmath.exp, 1, 1)
sqrt = np.frompyfunc(mpmath.sqrt, 1, 1)
exact = np.frompyfunc(lambda v: mpf(float(v)), 1, 1)


def cholesky(a):
    a = a.copy()
    n = len(a)
    for k in range(n):
        a[k, k] = mpmath.sqrt(a[k, k])
        a[k + 1:, k] /= a[k, k]
        for j in range(k + 1, n):
            a[j:, j] -= a[j:, k] * a[j, k]
    return np.tril(a)


def solve_lower(l, b):
    b = b.copy()
    for k in range(len(l)):
        b[k] = b[k] / l[k, k]
        if k + 1 < len(l):
            b[k + 1:] -= np.multiply.outer(l[k + 1:, k], b[k]) if b.ndim > 1 else l[k + 1:, k] * b[k]
    return b


def matern(r):
    return (1 + r + r * r / 3) * exp(-r)


def matern_slope(distance, rate):
    """d/dt* of the covariance; distance = t* - t."""
    r = np.abs(distance) * rate
    return -rate * rate * distance * (1 + r) / 3 * exp(-r)


class Fit:
    def __init__(self, case, h, keep=None):
        n = len(case['x'])
        keep = list(range(n)) if keep is None else keep
        x = exact(np.array(case['x']))
        y = exact(np.array(case['y']))
        fluid = np.array(case['fluid'])
        top = {f: max(x[fluid == f]) for f in set(case['fluid'])}
        u = np.array([x[i] / top[fluid[i]] for i in range(n)])
        length, amplitude, growth = (mpf(v) for v in h)
        self.rate = mpmath.sqrt(5) / length
        self.amplitude2 = amplitude * amplitude
        noise = 1 + growth**2 * (1 / (u * u) - 1)
        z = log(y) if case['relative'] else y / mpf(case['unit'])
        t = log(x)
        x, self.t, self.z, self.noise, fluid = x[keep], t[keep], z[keep], noise[keep], fluid[keep]
        n = len(keep)
        v = self.amplitude2 * matern(np.abs(np.subtract.outer(self.t, self.t)) * self.rate)
        v = v + np.diag(self.noise)
        self.fluid = fluid
        self.offsets2 = mpf(case['offsets'])**2 if len(top) > 1 else mpf(0)
        if self.offsets2:
            v = v + self.offsets2 * np.equal.outer(fluid, fluid).astype(int)
        self.lowest = mpmath.log(min(mpf(float(v)) for v in case['x']))
        self.drag2 = mpf(case['drag'])**2
        self.g = exp(self.lowest - self.t)
        v = v + self.drag2 * np.multiply.outer(self.g, self.g)
        self.l = cholesky(v)
        self.design = np.array([[mpf(1), s] for s in self.t], dtype=object)
        self.wx = solve_lower(self.l, self.design)
        self.wz = solve_lower(self.l, self.z)
        gram = self.wx.T.dot(self.wx)
        det = gram[0, 0] * gram[1, 1] - gram[0, 1]**2
        self.c = np.array([[gram[1, 1], -gram[0, 1]], [-gram[0, 1], gram[0, 0]]]) / det
        self.b = self.c.dot(self.wx.T.dot(self.wz))
        self.rest = self.wz - self.wx.dot(self.b)
        self.squares = self.rest.dot(self.rest) + PRIOR_DEGREES * PRIOR_NOISE**2
        self.freedom = n - 2 + PRIOR_DEGREES
        determinant = 2 * sum(log(np.diag(self.l))) + mpmath.log(det)
        off = mpmath.log(length / PRIOR_LENGTH) / PRIOR_SPREAD
        self.log_weight = -(determinant + self.freedom * mpmath.log(self.squares) + off**2) / 2

    def at(self, t, fluid=None):
        """Curve, slope and variance at t; with a fluid, its offset included."""
        k = self.amplitude2 * matern(np.abs(t - self.t) * self.rate)
        prior = self.amplitude2
        if fluid is not None and self.offsets2:
            k = k + self.offsets2 * np.equal(self.fluid, fluid).astype(int)
            prior = prior + self.offsets2
        g = mpmath.exp(self.lowest - t)
        k = k + self.drag2 * g * self.g
        prior = prior + self.drag2 * g * g
        k = solve_lower(self.l, k)
        dk = solve_lower(self.l, self.amplitude2 * matern_slope(t - self.t, self.rate)
                         - self.drag2 * g * self.g)
        h, dh = np.array([mpf(1), t]), np.array([mpf(0), mpf(1)])
        mean = k.dot(self.rest) + h.dot(self.b)
        slope = dk.dot(self.rest) + dh.dot(self.b)
        c = h - self.wx.T.dot(k)
        return mean, slope, prior - k.dot(k) + c.dot(self.c).dot(c)

    def left_out(self):
        """error, variance of each point left out, by the inverse of the whole matrix."""
        inverse = solve_lower(self.l, np.array([[mpf(int(i == j)) for j in range(len(self.z))]
                                                for i in range(len(self.z))], dtype=object))
        wm = inverse - self.wx.dot(self.c).dot(self.wx.T.dot(inverse))
        own = np.array([wm[:, i].dot(wm[:, i]) for i in range(len(self.z))])
        u = np.array([wm[:, i].dot(self.rest) for i in range(len(self.z))])
        return u / own, 1 / own


def student_factor(freedom):
    tail = 0.045500263896358
    share = betaincinv(freedom / 2, 0.5, tail)
    return mpf(float((freedom * (1 - share) / share)**0.5)) / 2


def flow_fraction(case, place):
    """Of the fluids whose points lie nearest, the smallest share of the largest flow."""
    found = []
    for f in set(case['fluid']):
        own = [v for v, g in zip(case['x'], case['fluid']) if g == f]
        away = max(0.0, np.log(min(own) / place), np.log(place / max(own)))
        found.append((away, min(mpf(1), mpf(place) / mpf(max(own)))))
    return min(found)[1]


def numbers(values):
    return [float(v) for v in values]


def fixed(case, h, brute):
    fit = Fit(case, h)
    places = [mpmath.log(mpf(v)) for v in case['at']]
    smoothed = [fit.at(t) for t in places]
    n = len(case['x'])
    if brute:
        errors, scales = [], []
        for i in range(n):
            other = Fit(case, h, [k for k in range(n) if k != i])
            mean, _, variance = other.at(fit.t[i], case['fluid'][i])
            errors.append(fit.z[i] - mean)
            scales.append(mpmath.sqrt(other.squares / other.freedom * (variance + fit.noise[i])))
    else:
        errors, variances = fit.left_out()
        scales = [mpmath.sqrt((fit.squares - e * e / v) / (fit.freedom - 1) * v)
                  for e, v in zip(errors, variances)]
    return {'length': h[0], 'amplitude': h[1], 'growth': h[2], 'log_weight': float(fit.log_weight),
            'squares': float(fit.squares), 'mean': numbers(s[0] for s in smoothed),
            'slope': numbers(s[1] for s in smoothed), 'variance': numbers(s[2] for s in smoothed),
            'left_out': numbers(errors), 'left_out_scale': numbers(scales)}


def grid_average(case, grid):
    nodes = [Fit(case, h) for h in itertools.product(*grid)]
    best = max(f.log_weight for f in nodes)
    shares = [mpmath.exp(f.log_weight - best) for f in nodes]
    total = sum(shares)
    shares = [s / total for s in shares]
    freedom = nodes[0].freedom
    factor2 = student_factor(freedom)**2
    result = {'lengths': grid[0], 'amplitudes': grid[1], 'growths': grid[2], 'value': [],
              'derivative': [], 'curve_sd': [], 'new_point_sd': []}
    for place in case['at']:
        t = mpmath.log(mpf(place))
        at = [f.at(t) for f in nodes]
        mean = sum(s * a[0] for s, a in zip(shares, at))
        slope = sum(s * a[1] for s, a in zip(shares, at))
        between = sum(s * (a[0] - mean)**2 for s, a in zip(shares, at))
        variance = between + sum(s * factor2 * f.squares / freedom * a[2]
                                 for s, a, f in zip(shares, at, nodes))
        u = flow_fraction(case, place)
        noise = sum(s * factor2 * f.squares / freedom * (1 + mpf(h[2])**2 * (1 / u**2 - 1))
                    for s, f, h in zip(shares, nodes, itertools.product(*grid)))
        value = mpmath.exp(mean) if case['relative'] else mpf(case['unit']) * mean
        unit = value if case['relative'] else mpf(case['unit'])
        result['value'].append(float(value))
        result['derivative'].append(float(unit * slope / mpf(place)))
        result['curve_sd'].append(float(unit * mpmath.sqrt(variance)))
        result['new_point_sd'].append(float(unit * mpmath.sqrt(variance + noise)))
    left_factor = student_factor(freedom - 1)
    result['left_out'], result['left_out_sd'] = [], []
    n = len(case['x'])
    for i in range(n):
        error, square, spread, total = mpf(0), mpf(0), mpf(0), mpf(0)
        weights, errors, scales = [], [], []
        for f, (e, v) in zip(nodes, left_outs(nodes)):
            squares = f.squares - e[i]**2 / v[i]
            # -1/2 (ln|M_ii| + ...): what the likelihood of the others is.
            weights.append(f.log_weight + (f.freedom * mpmath.log(f.squares) - (f.freedom - 1)
                                           * mpmath.log(squares) + mpmath.log(v[i])) / 2)
            errors.append(e[i])
            scales.append(squares / (f.freedom - 1) * v[i])
        if case.get('check_deletion') and i == 0:  # the same by leaving the point out
            for f, h, w in zip(nodes, itertools.product(*grid), weights):
                other = Fit(case, h, [k for k in range(n) if k != 0])
                assert abs(other.log_weight - w) < mpf('1e-40'), (other.log_weight, w)
        top_weight = max(weights)
        w = [mpmath.exp(v - top_weight) for v in weights]
        total = sum(w)
        error = sum(a * b for a, b in zip(w, errors)) / total
        spread = sum(a * (s + (e - error)**2) for a, s, e in zip(w, scales, errors)) / total
        unit = mpf(1) if case['relative'] else mpf(case['unit'])
        result['left_out'].append(float(mpmath.expm1(error)) if case['relative']
                                  else float(unit * error))
        result['left_out_sd'].append(float(unit * left_factor * mpmath.sqrt(spread)))
    return result


_left = {}


def left_outs(nodes):
    key = id(nodes)
    if key not in _left:
        _left.clear()
        _left[key] = [f.left_out() for f in nodes]
    return _left[key]


def series(name, x, noise, seed, fluid=None, relative=True, offsets=0.25, drag=100,
           shape=None):
    random = np.random.default_rng(seed)
    x = np.array(x, dtype=float)
    shape = shape or (lambda v: 1300 * (1 - 0.9 / (v + 3) - 0.01 * np.exp(-np.log(v / 90)**2)))
    clean = shape(x)
    size = clean if relative else np.full(len(x), np.median(np.abs(clean)))
    y = clean + size * noise * random.standard_normal(len(x))
    unit = 1.0 if relative else sorted(abs(v) for v in y)[len(y) // 2]
    low, high = min(x), max(x)
    at = [low / 3, low, low * 1.0001, float(np.sqrt(low * high)), x[len(x) // 3] * 1.01, high,
          high * 2]
    return {'name': name, 'x': x.tolist(), 'y': y.tolist(), 'fluid': fluid or [0] * len(x),
            'relative': relative, 'unit': float(unit), 'offsets': offsets, 'drag': drag,
            'at': [float(v) for v in at]}


def cases():
    random = np.random.default_rng(99)
    usual = [[2.0, 30.0, 0.03], [0.5, 5.0, 0.2], [8.0, 1000.0, 0.0]]
    coarse = [[0.4, 1.024, 2.62144], [1.0, 10.0, 100.0], [0.0, 0.015]]
    yield series('four points', [3, 30, 100, 900], 3e-4, 1), usual, coarse, True
    yield series('six flows five times', np.repeat([4, 11, 35, 120, 400, 1300], 5), 4e-4, 2), \
        usual, coarse, True
    yield series('uneven, repeats, two fluids',
                 np.concatenate([np.geomspace(40, 3000, 9), [40.0, 40.0, 333.3],
                                 np.geomspace(2, 160, 10), [160.0, 40.0]]), 5e-4, 3,
                 [0] * 12 + [1] * 12), usual, coarse, True
    yield series('four decades, exact, long', np.geomspace(0.5, 5000, 15), 1e-7, 4), \
        [[10.0, 10000.0, 0.0], [3.0, 10000.0, 0.01], [0.4, 3.0, 0.2]], None, True
    yield series('errors of both signs', np.geomspace(10, 1000, 11), 2e-2, 5, relative=False,
                 shape=lambda v: 2 - 30 / v - 0.5 * np.log(v / 10)), usual, coarse, False
    close = np.sort(np.concatenate([np.geomspace(20, 2000, 100)] * 3))
    close = close * (1 + 1e-9 * random.standard_normal(300))
    yield series('three hundred, nearly equal in threes', close, 3e-4, 6), \
        [[2.0, 3000.0, 0.02], [1.0, 30.0, 0.1]], None, False


def main():
    result = []
    for case, hyperparameters, grid, brute in cases():
        case['nodes'] = [fixed(case, h, brute) for h in hyperparameters]
        if grid:
            case['check_deletion'] = len(case['x']) < 10
            case['average'] = grid_average(case, grid)
            case.pop('check_deletion')
        result.append(case)
    print(json.dumps({'scipy': scipy.__version__, 'mpmath': mpmath.__version__, 'cases': result},
                     indent=1))


main()
