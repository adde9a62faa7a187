"""
A surface with its standard errors
==================================

Heights of a volcano, estimated on a grid from 300 samples; beside them how far off they can be.
"""

from pathlib import Path

import matplotlib.pyplot as plt
import pandas as pd

from krige import KrigingRegressor

here = Path(__file__).parent if "__file__" in globals() else Path.cwd()
samples = pd.read_csv(here.parent / "volcano" / "samples.csv")
truth = pd.read_csv(here.parent / "volcano" / "truth.csv")

model = KrigingRegressor().fit(samples[["x", "y"]], samples["elevation"])
grid = model.grid((175, 121), return_std=True)

figure, axes = plt.subplots(1, 2, figsize=(11, 4), constrained_layout=True)
grid["elevation"].plot(ax=axes[0], cmap="terrain", cbar_kwargs={"label": "elevation (m)"})
grid["elevation_stderr"].plot(ax=axes[1], cmap="magma", cbar_kwargs={"label": "standard error (m)"})
for ax in axes:
    ax.plot(samples["x"], samples["y"], "k.", markersize=2)
    ax.set(aspect="equal", xlabel="x (m)", ylabel="y (m)")

print(f"R2 at {len(truth)} places left out: {model.score(truth[['x', 'y']], truth['elevation']):.4f}")
plt.show()
