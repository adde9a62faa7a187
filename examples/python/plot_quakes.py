"""
Three inputs and two outputs
============================

Magnitudes and reporting stations of earthquakes by longitude, latitude and depth, with intervals.
"""

from pathlib import Path

import matplotlib.pyplot as plt
import pandas as pd

from krige import KrigingRegressor

here = Path(__file__).parent if "__file__" in globals() else Path.cwd()
samples = pd.read_csv(here.parent / "quakes" / "samples.csv")
truth = pd.read_csv(here.parent / "quakes" / "truth.csv")
inputs, outputs = ["long", "lat", "depth"], ["mag", "stations"]

model = KrigingRegressor(range_fraction=0.5, nugget=0.5, n_neighbors=40, clamp=(0, None))
model.fit(samples[inputs], samples[outputs])
mean = model.predict(truth[inputs])
lower, upper = model.predict_interval(truth[inputs], coverage=0.9)

figure, axes = plt.subplots(1, 2, figsize=(10, 4.5), constrained_layout=True)
for w, (ax, name) in enumerate(zip(axes, outputs)):
    held = ((lower[:, w] <= truth[name]) & (truth[name] <= upper[:, w])).mean()
    errors = [mean[:, w] - lower[:, w], upper[:, w] - mean[:, w]]
    ax.errorbar(truth[name], mean[:, w], yerr=errors, fmt=".", elinewidth=0.4, alpha=0.6)
    ax.axline((truth[name].mean(),) * 2, slope=1.0, color="0.4", linewidth=0.8)
    ax.set(xlabel=f"{name}, measured", ylabel=f"{name}, estimated", title=f"90 % intervals hold {100 * held:.0f} %")
plt.show()
