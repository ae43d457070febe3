"""The panels of a report's picture, read back from SVG, against the numbers of its JSON."""
# SPDX-License-Identifier: MIT
import math
import re

from expectations import expect, expect_equal

# How points are marked by their state.
MARKS = {"raw": ("used", "outside range"), "cut": ("cut",), "dis": ("distrusted",), "out": ("excluded",)}
PIXEL = 0.051 + 1e-6  # places are tenths of a pixel


def places(path):
    """Absolute places of path data: M x y l dx dy ..."""
    numbers = [float(n) for n in re.findall(r"-?(?:\d+\.?\d*|\.\d+)", path)]
    x = y = 0.0
    for dx, dy in zip(numbers[::2], numbers[1::2]):
        x, y = x + dx, y + dy
        yield x, y


class Panel:
    def __init__(self, group):
        data = lambda name: float(group.get("data-" + name))
        self.name = group.get("data-name")
        self.x, self.y = (data("x0"), data("x1")), (data("y0"), data("y1"))
        self.left, self.top, self.width, self.height = data("left"), data("top"), data("width"), data("height")
        self.is_log = group.get("data-log") == "1"
        self.paths = {}
        for path in group:
            if path.tag.endswith("path"):
                key = path.get("class").replace("dots ", "").replace("line ", "")
                self.paths.setdefault(key, []).append(list(places(path.get("d"))))

    def place(self, x, y):
        low, high = self.x
        share = math.log(x / low) / math.log(high / low) if self.is_log else (x - low) / (high - low)
        return self.left + share * self.width, self.top + (1 - (y - self.y[0]) / (self.y[1] - self.y[0])) * self.height

    def expect_marks(self, key, points):
        wanted = [self.place(x, y) for x, y in points if y is not None and self.y[0] <= y <= self.y[1]]
        found = self.paths.get(key, [[]])[0]
        expect_equal(len(found), len(wanted), f"{self.name}: marks {key}")
        for (x, y), (a, b) in zip(found, wanted):
            expect(abs(x - a) <= PIXEL and abs(y - b) <= PIXEL, f"{self.name} {key}: ({x}, {y}) is not at ({a}, {b})")

    def expect_line(self, line, points, key):
        """Every point lies on the line, to what nobody sees."""
        for x, y in points:
            a, b = self.place(x, min(max(y, self.y[0]), self.y[1]))
            near = min(distance(a, b, p, q) for p, q in zip(line, line[1:]))
            expect(near <= 0.3, f"{self.name} {key}: ({x}, {y}) is {near} px off")


def distance(x, y, p, q):
    dx, dy = q[0] - p[0], q[1] - p[1]
    length = dx * dx + dy * dy
    share = 0 if length == 0 else min(max(((x - p[0]) * dx + (y - p[1]) * dy) / length, 0), 1)
    return math.hypot(x - p[0] - share * dx, y - p[1] - share * dy)


def compare_panels(panels, model):
    for series in model["series"]:
        for name in ("strouhal", "percent"):
            panel = panels.pop(0)
            expect_equal(panel.name, name, series["name"])
            inPercent = name == "percent"
            value = "deviationPercent" if inPercent else "strouhal"
            pairs = lambda points: [(p["roshko"], p[value]) for p in points]
            for part in {point["part"] for point in series["rawPoints"]}:
                for key, states in MARKS.items():
                    panel.expect_marks(f"{key}{part}", pairs(p for p in series["rawPoints"]
                                                             if p["part"] == part and p["state"] in states))
            panel.expect_marks("merged", pairs(series["merged"]))
            middle = lambda p: 0 if inPercent else p["strouhal"]
            unit = lambda p: 100 / abs(p["strouhal"]) if inPercent else 1
            share = series["settings"]["bandPercent"] / 100
            half = {"conf": lambda p: p["confidenceHalfWidth"], "pred": lambda p: p["predictionHalfWidth"],
                    "band": lambda p: share * abs(p["strouhal"]), "curve": lambda p: 0}
            for key, width in half.items():
                line = sum(panel.paths[key], [])
                for sign in (1, -1):
                    panel.expect_line(line, [(p["roshko"], middle(p) + sign * width(p) * unit(p)) for p in series["curve"]], key)
        if series["previous"]:
            panel = panels.pop(0)
            panel.expect_line(panel.paths["shift"][0], [(s["roshko"], s["percent"]) for s in series["previous"]["shifts"]], "shift")
    expect_equal(panels, [], "panels left")
