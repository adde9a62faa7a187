"""
Settings that suit the samples
==============================

Rainfall with a search for range, nugget and drift, judged by leaving whole blocks of the country out.
"""

from pathlib import Path

import matplotlib.pyplot as plt
import pandas as pd
from sklearn.model_selection import cross_val_score

from krige import KrigingRegressor, KrigingRegressorCV, SemivariogramDisplay
from krige.model_selection import BlockKFold

here = Path(__file__).parent if "__file__" in globals() else Path.cwd()
samples = pd.read_csv(here.parent / "rainfall" / "samples.csv")
X, y = samples[["x", "y"]], samples["rainfall"]

search = KrigingRegressorCV(KrigingRegressor(scale="raw"), fix=("scale",), max_trials=60).fit(X, y)
print("found:", search.best_params_)

blocks = BlockKFold(5, shape=4)
for name, model in (("defaults", KrigingRegressor(scale="raw")), ("tuned", search.best_estimator_)):
    print(f"{name}: R2 over blocks {cross_val_score(model, X, y, cv=blocks).mean():.3f}")

SemivariogramDisplay.from_estimator(search.best_estimator_)
plt.show()
