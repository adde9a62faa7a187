"""What estimators hand out beside arrays."""

from __future__ import annotations

import dataclasses
from typing import Any

from krige._types import FloatArray


@dataclasses.dataclass(frozen=True)
class LeaveOneOut:
    """Each point of a model estimated from the others.

    Attributes
    ----------
    estimates, std, truths : ndarray of shape (n_points,) or (n_points, n_outputs)
        Estimates, standard errors (those of the logarithm with ``transform="log"``) and observations, in the units of
        `y`. A point that the others do not determine has nan.
    members : list of ndarray of int
        Per point the samples, numbered as in ``X_train_``, that it stands for: one, or those merged.
    statistics : dict or list of dict
        Of the output, or of each: ``rmse``, ``mae``, ``bias``, ``r2``, ``worst_error``, ``msse`` (mean squared
        standardised error, near 1 when standard errors are right), ``crps`` and ``coverage`` (nominal fraction of an
        interval: the one that it held).
    """

    estimates: FloatArray
    std: FloatArray
    truths: FloatArray
    members: list[Any]
    statistics: Any


@dataclasses.dataclass(frozen=True)
class Semivariogram:
    """The empirical semivariogram of one output beside the model's, a bin per entry.

    Attributes
    ----------
    lower_lag, upper_lag, mean_lag : ndarray of shape (n_bins,)
        Lags in the inputs' unit where they share one scale (`in_units`), otherwise between normalised inputs.
    semivariance, model : ndarray of shape (n_bins,)
        Half the mean squared difference of pairs of points, and the mean of the model's semivariogram over them, in
        squared units of the output.
    n_pairs : ndarray of shape (n_bins,) of int
        Pairs of points in each bin, never 0.
    sill : float
        Of the model, squared units of the output.
    nugget : float
        Of the model, as a fraction of the sill.
    range : float
        Of the model, in the unit of the lags.
    in_units : bool
        Whether lags are in the inputs' unit.
    """

    lower_lag: FloatArray
    upper_lag: FloatArray
    mean_lag: FloatArray
    semivariance: FloatArray
    model: FloatArray
    n_pairs: FloatArray
    sill: float
    nugget: float
    range: float
    in_units: bool
