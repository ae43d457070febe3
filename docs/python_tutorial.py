# %% [markdown]
# # A calibration in Python
#
# The cells of this script run in a notebook too (Jupyter and most editors read the `# %%` marks). It takes the examples
# of Pelmora's source, or the folder that you name, and writes into the current folder.
# SPDX-License-Identifier: MIT

# %%
import pathlib
import sys

import numpy as np
import pandas as pd

import pelmora

DATA = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else "examples/data")

# %% [markdown]
# ## From a frame to a curve
#
# Twelve flows of a turbine meter, one of them without a reading. `fit` refuses the frame as it is and says what to do.

# %%
roshko = np.array([45.0, 70, 110, 180, 300, 480, 760, 1200, 1900, 3000, 4200, 5800])
strouhal = 2.5 * (1 - 4 / roshko) * (1 + 1e-4 * np.random.default_rng(4).standard_normal(12))
frame = pd.DataFrame({"roshko": roshko, "strouhal": strouhal})
frame.loc[3, "strouhal"] = np.nan

try:
    pelmora.fit(frame["roshko"], frame["strouhal"])
except pelmora.BadData as error:
    print(error)

# %%
frame = frame.dropna()
fit = pelmora.fit(frame["roshko"], frame["strouhal"])
print(fit.fit_report())

# %% [markdown]
# A curve takes numbers, arrays and Series, and gives back what it was given. Outside its range it refuses.

# %%
curve = fit.curve
print(curve(120.0), "+/-", curve.eval_uncertainty(120.0, k=2))
frame["deviation_percent"] = (frame["strouhal"] / curve(frame["roshko"]) - 1) * 100
print(frame)

try:
    curve(10.0)
except ValueError as outside:
    print(outside)

# %% [markdown]
# What was tried, from best to worst:

# %%
print(fit.equations.to_frame()[["name", "verdict", "aicc", "worst_percent"]])

# %% [markdown]
# The curve with its uncertainty; in a notebook, `fit` alone in a cell shows the plot of the report.

# %%
ax = fit.plot()
ax.set_title("Strouhal of the meter")
ax.figure.savefig("k.png", dpi=150)
fit.plot(deviations=True)  # the band is wide enough to see

# %% [markdown]
# ## A calibration from a stand
#
# Two runs of the stand, each in its own fluid, become four series; each is fitted and stored.

# %%
path = pathlib.Path("curves.db")
path.unlink(missing_ok=True)
db = pelmora.create(path, user="Ada")
done = db.calibrate("M1", stand=DATA / "stand-dual-rotor.csv", runs=[("1001", "Mineral spirit"), ("1002", "Glycol mix")],
                    operator="Ada")
print(pelmora.to_frame(done.meter.runs)[["fluid", "points", "operator"]])
for name, series in done.meter.series.items():
    print(f"{name:<10} {series.curve.name:<32} Roshko {series.curve.range[0]:.0f} to {series.curve.range[1]:.0f}")

# %% [markdown]
# ## A point that does not belong
#
# `points` lists every raw point with its residual and with how far it is off all others. An excluded point stays in the
# database with its reason, and the curve is stale until the series is fitted again.

# %%
rotor = done.meter.series["Rotor A"]
worst = max(rotor.points, key=lambda point: abs(point.loo_sigma or 0))
print(worst.part, worst.number, worst.loo_sigma)
rotor.exclude(part=worst.part, number=worst.number, reason="air in the line")
print(rotor.curve.stale)
rotor.fit()
print(rotor.curve.stale, rotor.points.to_frame().query("state == 'excluded'"))

# %% [markdown]
# ## Back again
#
# Everything that was replaced is in the history.

# %%
print(db.history().to_frame()[["id", "command", "series", "user"]].head(3))
rotor.include(part=worst.part, number=worst.number)
rotor.fit()

# %% [markdown]
# ## The report

# %%
done.meter.report("m1.html")
db.close()
