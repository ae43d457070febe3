"""Monte Carlo of whole calibrations with NumPy: what the budget of a curve has to agree with.

Each trial disturbs the stand's flow, viscosity, temperature and frequency for all points of a
calibration at once, derives Roshko and Strouhal numbers again, fits the equation again, adds the
scatter of the fit from its covariance, and reads the curve. Writes reference.json.
"""
# SPDX-License-Identifier: MIT
import json
import math

import numpy as np
import scipy
import scipy.optimize

TRIALS = 40_000
PROBABILITY = math.erf(math.sqrt(2))
rng = np.random.default_rng(20260214)

STAND = """
[stand]
name = Stand 3
[flow: master meter]
expanded = 0.06 %
k = 2
[flow: temperature of the standard]
half-width = 0.03 %
distribution = rectangular
[viscosity]
half-width = 0.8 %
distribution = triangular
[temperature]
half-width = 0.3 C
distribution = U-shaped
viscosity change = 2.1 %/C
[frequency]
standard = 20 ppm
[reproducibility]
standard = 0.02 %
type = A
degrees of freedom = 30
"""


def draw(n):
    """Relative errors, and the temperature's in degrees F."""
    t = 0.3 * 9 / 5 * np.cos(2 * np.pi * rng.random(n))
    return {
        "flow": 0.0003 * rng.standard_normal(n) + 0.0003 * (2 * rng.random(n) - 1),
        "viscosity": 0.008 * (rng.random(n) + rng.random(n) - 1),
        "temperature": t,
        "of_temperature": 0.021 / 1.8 * t,
        "frequency": 20e-6 * rng.standard_normal(n),
    }


def moved(x, y, e, i, temperature):
    grow = temperature + e["temperature"][i] - 70
    was = temperature - 70
    f, q, v = e["frequency"][i], e["flow"][i], e["viscosity"][i]
    x = x * (1 + f) / ((1 + v) * (1 + e["of_temperature"][i])) * (1 + 1.92e-5 * grow) / (1 + 1.92e-5 * was)
    y = y * (1 + f) / (1 + q) * (1 + 2.88e-5 * grow) / (1 + 2.88e-5 * was)
    return x, y


def half_width(values):
    low, high = np.quantile(values, [(1 - PROBABILITY) / 2, (1 + PROBABILITY) / 2])
    return (high - low) / 2


def student(n, degrees):
    return rng.standard_normal(n) * np.sqrt(degrees / rng.chisquare(degrees, n))


class Linear:
    def __init__(self, columns):
        self.columns = columns

    def fit(self, x, y):
        a = self.columns(x)
        size = np.abs(a).max(axis=0)
        c, *_ = np.linalg.lstsq(a / size, y, rcond=None)
        return c / size

    def at(self, c, x):
        return self.columns(np.atleast_1d(x)) @ c

    def scatter(self, x, y, at):
        """Standard error of the curve and its degrees of freedom."""
        a = self.columns(x)
        c = self.fit(x, y)
        degrees = len(x) - a.shape[1]
        s2 = np.sum((y - a @ c) ** 2) / degrees
        _, r = np.linalg.qr(a)
        g = np.linalg.solve(r.T, self.columns(np.atleast_1d(at))[0])
        return math.sqrt(s2 * (g @ g)), degrees


class Exponential:
    """y = a - b exp(-c x^0.5), nonlinear."""

    def fit(self, x, y, start=(1300.0, 300.0, 0.3)):
        return scipy.optimize.curve_fit(lambda x, a, b, c: a - b * np.exp(-c * np.sqrt(x)), x, y, start)[0]

    def at(self, p, x):
        return p[0] - p[1] * np.exp(-p[2] * np.sqrt(np.atleast_1d(x)))

    def scatter(self, x, y, at):
        p = self.fit(x, y)

        def gradient(x):
            e = np.exp(-p[2] * np.sqrt(x))
            return np.stack([np.ones_like(x), -e, p[1] * np.sqrt(x) * e], axis=-1)

        a = gradient(x)
        degrees = len(x) - 3
        s2 = np.sum((y - self.at(p, x)) ** 2) / degrees
        g = gradient(np.atleast_1d(float(at)))[0]
        return math.sqrt(s2 * g @ np.linalg.inv(a.T @ a) @ g), degrees


log_polynomial = Linear(lambda x: np.stack([np.log10(x) ** k for k in range(7)], axis=-1))
reciprocal = Linear(
    lambda x: np.stack(
        [np.log(x) ** k for k in range(5)] + [np.log(x) ** -k for k in range(1, 5)], axis=-1
    )
)
POLYNOMIAL = "a+" + "+".join(f"{p}*log(x)^{k}" for k, p in enumerate("bcdefg", 1)).replace("^1+", "+")
RECIPROCAL = (
    "a+b*ln(x)+c*ln(x)^2+d*ln(x)^3+e*ln(x)^4+f/ln(x)+g/ln(x)^2+h/ln(x)^3+i/ln(x)^4"
)


def series(low, high, n, k=1318.0, bend=0.9, noise=0.0003):
    x = np.geomspace(low, high, n)
    y = k * (1 - bend / (x + 6) - 0.006 * np.exp(-((np.log(x / 60) / 0.9) ** 2)))
    return x, y * (1 + noise * rng.standard_normal(n))


def rotor_case(name, kind, expression, low, high, n, places, temperature=72.5):
    x, y = series(low, high, n)
    made = []
    e = draw(TRIALS)
    at = np.array(places)
    curves = np.empty((TRIALS, len(places)))
    for i in range(TRIALS):
        curves[i] = kind.at(kind.fit(*moved(x, y, e, i, temperature)), at)
    for j, place in enumerate(places):
        u, degrees = kind.scatter(x, y, place)
        value = curves[:, j] + u * student(TRIALS, degrees)
        value = value * (1 + 0.0002 * student(TRIALS, 30))
        made.append({"roshko": place, "u": half_width(value), "fit": u, "degrees": degrees})
    return {"name": name, "expression": expression, "temperature": temperature,
            "x": x.tolist(), "y": y.tolist(), "places": made}


def ratio_case(temperature=69.0):
    """Strouhal B over Strouhal A, both fitted; what the rotors share cancels."""
    kind = log_polynomial
    a, b = series(8, 900, 24), series(8, 900, 24, k=1352.0, bend=0.7)
    places, made = [12.0, 70.0, 500.0], []
    e = draw(TRIALS)
    at = np.array(places)
    ratios = np.empty((TRIALS, len(places)))
    curves = np.empty((2, TRIALS, len(places)))
    for i in range(TRIALS):
        for r, (x, y) in enumerate((a, b)):
            curves[r, i] = kind.at(kind.fit(*moved(x, y, e, i, temperature)), at)
    for j, place in enumerate(places):
        pair = []
        for r, (x, y) in enumerate((a, b)):
            u, degrees = kind.scatter(x, y, place)
            value = curves[r, :, j] + u * student(TRIALS, degrees)
            pair.append(value * (1 + 0.0002 * student(TRIALS, 30)))
        made.append({"roshko": place, "quotient": half_width(pair[1] / pair[0]),
                     "sum": half_width(pair[0] + pair[1]), "a": half_width(pair[0])})
    return {"expression": POLYNOMIAL, "temperature": temperature, "xa": a[0].tolist(), "ya": a[1].tolist(),
            "xb": b[0].tolist(), "yb": b[1].tolist(), "places": made}


def rotor_quotient_case(temperature=71.0):
    """fA/fB over the sum of both Roshko numbers: no flow, and one counter for both."""
    kind = log_polynomial
    x = np.geomspace(20, 1500, 24)
    y = 0.97 - 0.5 / (x + 8) + 0.00015 * rng.standard_normal(24)
    places, made = [30.0, 120.0, 1000.0], []
    e = draw(TRIALS)
    at = np.array(places)
    curves = np.empty((TRIALS, len(places)))
    for i in range(TRIALS):
        # Both frequencies are off by the same factor: the quotient is not.
        curves[i] = kind.at(kind.fit(moved(x, y, e, i, temperature)[0], y), at)
    for j, place in enumerate(places):
        u, degrees = kind.scatter(x, y, place)
        value = curves[:, j] + u * student(TRIALS, degrees)
        value *= (1 + 0.0002 * student(TRIALS, 30)) / (1 + 0.0002 * student(TRIALS, 30))
        made.append({"roshko": place, "u": half_width(value)})
    return {"expression": POLYNOMIAL, "temperature": temperature, "x": x.tolist(), "y": y.tolist(),
            "places": made}


def reference_case():
    """The smooth reference curve, its value, slope and variance from dense linear algebra."""
    with open("../reference_curve/reference.json", encoding="utf-8") as file:
        case = next(c for c in json.load(file)["cases"] if c["name"] == "six flows five times")
    average, made = case["average"], []
    for j in (1, 4, 5):
        place, value = case["at"][j], average["value"][j]
        e = draw(TRIALS * 10)
        n = TRIALS * 10
        x, factor = moved(place, 1.0, e, slice(None), 70.0)
        drawn = value + average["derivative"][j] * (x - place) + average["curve_sd"][j] * rng.standard_normal(n)
        drawn = drawn / factor * (1 + 0.0002 * student(n, 30))
        made.append({"roshko": place, "value": value, "slope": average["derivative"][j],
                     "curve_sd": average["curve_sd"][j], "u": half_width(drawn)})
    return {"places": made}


def table_case(temperature=70.0):
    """A curve read from twelve evenly spaced points: the reading error joins the budget."""
    kind = log_polynomial
    x, y = series(8, 900, 24)
    knots = np.geomspace(8, 900, 12)
    c = kind.fit(x, y)
    fine = np.geomspace(8, 900, 100_001)
    read = np.interp(fine, knots, kind.at(c, knots))
    error = np.max(np.abs(read / kind.at(c, fine) - 1))
    place, n = 40.0, TRIALS * 10
    e = draw(n)
    u, degrees = kind.scatter(x, y, place)
    moved_x, factor = moved(place, 1.0, e, slice(None), temperature)
    value = (kind.at(c, moved_x) + u * student(n, degrees)) / factor
    value = value * (1 + 0.0002 * student(n, 30)) * (1 + error * (2 * rng.random(n) - 1))
    return {"expression": POLYNOMIAL, "temperature": temperature, "x": x.tolist(), "y": y.tolist(),
            "knots": knots.tolist(), "reading_error": error, "roshko": place, "u": half_width(value)}


def main():
    result = {
        "numpy": np.__version__,
        "scipy": scipy.__version__,
        "trials": TRIALS,
        "probability": PROBABILITY,
        "stand": STAND,
        "rotors": [
            rotor_case("polynomial in log(x)", log_polynomial, POLYNOMIAL, 8, 900, 24, [10.0, 60.0, 700.0]),
            rotor_case("powers of ln(x) and 1/ln(x)", reciprocal, RECIPROCAL, 8, 900, 30, [11.0, 100.0, 800.0]),
        ],
        "ratio": ratio_case(),
        "rotor_quotient": rotor_quotient_case(),
        "reference": reference_case(),
        "table": table_case(),
    }
    x, y = series(8, 900, 24)
    result["rotors"].append(nonlinear_case(x))
    with open("reference.json", "w", encoding="utf-8") as file:
        json.dump(result, file, indent=1)
        file.write("\n")


def nonlinear_case(x, temperature=75.0, trials=8_000):
    kind = Exponential()
    y = 1310 - 260 * np.exp(-0.28 * np.sqrt(x))
    y = y * (1 + 0.0003 * rng.standard_normal(len(x)))
    p = kind.fit(x, y)
    places, made = [10.0, 60.0, 700.0], []
    e = draw(trials)
    at = np.array(places)
    curves = np.array([kind.at(kind.fit(*moved(x, y, e, i, temperature), p), at) for i in range(trials)])
    for j, place in enumerate(places):
        u, degrees = kind.scatter(x, y, place)
        # Each refitted curve serves with many draws of the fit's own scatter.
        value = np.repeat(curves[:, j], 20) + u * student(20 * trials, degrees)
        value = value * (1 + 0.0002 * student(20 * trials, 30))
        made.append({"roshko": place, "u": half_width(value), "fit": u, "degrees": degrees})
    return {"name": "exponential", "expression": "a-b*exp(-c*x^0.5)", "temperature": temperature,
            "x": x.tolist(), "y": y.tolist(), "places": made}


if __name__ == "__main__":
    main()
