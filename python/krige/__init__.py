"""Kriging with the habits of scikit-learn, to the bits of the command line ``krige``.

`KrigingRegressor` estimates, `KrigingRegressorCV` also chooses the settings, `SemivariogramDisplay` draws the
semivariogram, `model_selection` cuts samples into folds, and `Model` is the thin core under all of them.
"""

from krige import model_selection
from krige._cv import KrigingRegressorCV
from krige._display import SemivariogramDisplay
from krige._errors import KrigingError, SingularSystemError
from krige._estimator import KrigingRegressor
from krige._model import Model
from krige._results import LeaveOneOut, Semivariogram
from krige._version import __version__

__all__ = [
    "KrigingError",
    "KrigingRegressor",
    "KrigingRegressorCV",
    "LeaveOneOut",
    "Model",
    "Semivariogram",
    "SemivariogramDisplay",
    "SingularSystemError",
    "__version__",
    "model_selection",
]
