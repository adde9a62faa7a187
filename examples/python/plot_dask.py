"""
A grid in chunks
================

A lazy grid: blocks are estimated when they are asked for, by as many threads or workers as dask has.
"""

from pathlib import Path

import matplotlib.pyplot as plt
import pandas as pd

from krige import KrigingRegressor

here = Path(__file__).parent if "__file__" in globals() else Path.cwd()
samples = pd.read_csv(here.parent / "volcano" / "samples.csv")

model = KrigingRegressor(n_neighbors=24).fit(samples[["x", "y"]], samples["elevation"])
grid = model.grid((400, 280), chunks=(140, 200))
print(grid["elevation"].data)

east = grid["elevation"].sel(x=slice(430, None))  # of these blocks alone
east.plot(cmap="terrain", cbar_kwargs={"label": "elevation (m)"})
plt.gca().set_aspect("equal")
plt.show()
