"""The regressor that chooses its settings."""

from __future__ import annotations

import numbers
import warnings
from typing import Any

import numpy as np
from sklearn.base import BaseEstimator, MetaEstimatorMixin, RegressorMixin, clone
from sklearn.exceptions import FitFailedWarning
from sklearn.utils.validation import check_is_fitted

from krige import _compat, _core
from krige._errors import KrigingError, Samples, explain, explained
from krige._estimator import CheckedSamples, KrigingRegressor, check_samples
from krige._parameters import Parameters, check_parameters, show
from krige._types import FloatArray

_LEAST_NUGGET_OF_REPLICATES = 0.001  # small beside any measurement's error, and large enough for any system
_SEARCHED = ("drift_order", "range_fraction", "nugget", "n_neighbors", "scale")
_OBJECTIVES = ("likelihood", "rmse", "mae", "crps")


class KrigingRegressorCV(_compat.Tags, RegressorMixin, MetaEstimatorMixin, BaseEstimator):  # type: ignore[misc]
    """Kriging with settings that a search chose: the trials and the winner of ``krige tune``.

    Parameters
    ----------
    estimator : KrigingRegressor, optional
        Where the search starts, with the parameters that it does not change; None: ``KrigingRegressor()``.
    fix : sequence of str, default=()
        Parameters that the search does not change: any of ``drift_order``, ``range_fraction``, ``nugget``,
        ``n_neighbors`` and ``scale``.
    objective : {"likelihood", "rmse", "mae", "crps"}, default="likelihood"
        What the search minimises: the deviance of the restricted likelihood, or errors in cross-validation. Of local
        models, which have no likelihood, ``"likelihood"`` means ``"crps"``.
    n_folds : int, optional
        Parts of the cross-validation; None: 10, or the number of samples where they are fewer.
    n_repeats : int, default=0
        Cross-validations, each with folds of its own; 0: until 300 samples have been estimated, up to 3.
    seed : int, default=1
        Of the held-out samples and the folds.
    max_trials : int, default=300
        Settings to try at most.
    held_out : float, default=0.0
        Share of the samples that the search never sees, at least 0 and below 1.
    search_anisotropy : bool, default=False
        Of two inputs of one unit, search the ratio and the angle of a longer range in place of factors of `scale`.

    Attributes
    ----------
    best_params_ : dict
        The parameters that won.
    best_estimator_ : KrigingRegressor
        Fitted with them to all samples.
    best_index_ : int
        The winner's place in `cv_results_`.
    best_score_ : float
        Its cross-validated error over the standard deviation of the output: that of the objective, CRPS for
        likelihood; lower is better.
    cv_results_ : dict
        One entry per trial in each list: ``params``, ``criterion`` (what was minimised), ``penalised_criterion``,
        ``score`` (nan where it was not called for), ``has_deviance`` and ``failure``.
    held_out_score_ : float
        As `best_score_`, of the held-out samples; nan without.
    held_out_statistics_ : list of dict or None
        Figures of the held-out samples, per output.
    n_features_in_ : int
        Number of inputs.
    feature_names_in_ : ndarray of str of shape (n_features_in_,)
        Names of the inputs; there when `fit` was given names that are all strings.

    Notes
    -----
    Ctrl-C ends the search after the trial that runs. Where samples lie too near to each other for a model without a
    nugget and are not merged, no nugget below 0.001 is tried.

    Examples
    --------
    >>> import numpy as np
    >>> from krige import KrigingRegressorCV
    >>> X = np.random.RandomState(0).uniform(size=(40, 2))
    >>> search = KrigingRegressorCV(max_trials=10).fit(X, np.sin(5 * X[:, 0]) + X[:, 1])
    >>> sorted(search.best_params_)
    ['anisotropy', 'drift_order', 'n_neighbors', 'nugget', 'range_fraction', 'scale']
    """

    def __init__(
        self,
        estimator: KrigingRegressor | None = None,
        *,
        fix: Any = (),
        objective: str = "likelihood",
        n_folds: int | None = None,
        n_repeats: int = 0,
        seed: int = 1,
        max_trials: int = 300,
        held_out: float = 0.0,
        search_anisotropy: bool = False,
    ) -> None:
        self.estimator = estimator
        self.fix = fix
        self.objective = objective
        self.n_folds = n_folds
        self.n_repeats = n_repeats
        self.seed = seed
        self.max_trials = max_trials
        self.held_out = held_out
        self.search_anisotropy = search_anisotropy

    @property
    def missing(self) -> str:  # type: ignore[override]
        """That of the estimator."""
        return "error" if self.estimator is None else str(self.estimator.missing)

    def fit(self, X: Any, y: Any, include: Any = None) -> KrigingRegressorCV:
        """Searches settings and fits the best to all samples.

        Parameters
        ----------
        X, y, include
            As for ``KrigingRegressor.fit``.

        Returns
        -------
        KrigingRegressorCV
            This estimator.

        Raises
        ------
        KrigingError
            As ``KrigingRegressor.fit``, and for the parameters of the search.

        Warns
        -----
        FitFailedWarning
            Where every trial failed, mostly for too few samples; the best estimator is then that of the start.
        """
        start = KrigingRegressor() if self.estimator is None else clone(self.estimator)
        if not isinstance(start, KrigingRegressor):
            raise KrigingError(f"estimator must be None or a KrigingRegressor, not {show(start)}")
        if self.search_anisotropy:
            start.set_params(anisotropy=None, scale="raw")
        samples = check_samples(self, X, y, include, start)
        parameters = check_parameters(start.get_params(), samples.X.shape[1], samples.n_outputs)
        options = self._check_search(samples.X.shape[0], samples.X.shape[1])
        context = Samples(samples.X, samples.y, samples.include, parameters, samples.input_names)
        least_nugget = self._choose_least_nugget(samples, parameters, context)
        with explained(context):
            found = _core.tune(
                samples.X,
                samples.y,
                parameters.to_settings(),
                samples.include,
                least_nugget=least_nugget,
                n_threads=parameters.n_threads,
                exact=parameters.exact,
                tell_apart=parameters.tells_apart,
                **options,
            )
        self._keep(found, parameters.anisotropy)
        self.best_params_ = self.cv_results_["params"][self.best_index_]
        failure = found["trials"][self.best_index_]["failure"]
        if failure:  # what is left: the settings started from, if they make a model of all samples
            why = explain(failure, context)
            warnings.warn(
                f"all {len(found['trials'])} trials failed, the first one so: {why}", FitFailedWarning, stacklevel=2
            )
        self.best_estimator_ = start.set_params(**self.best_params_).fit(X, y, include)
        return self

    def _check_search(self, n_samples: int, n_inputs: int) -> dict[str, Any]:
        fixed = [self.fix] if isinstance(self.fix, str) else list(self.fix)
        for name in fixed:
            if name not in _SEARCHED:
                raise KrigingError(f"fix must hold names of {', '.join(_SEARCHED)}, not {show(name)}")
        if self.objective not in _OBJECTIVES:
            raise KrigingError(f"objective must be one of {', '.join(_OBJECTIVES)}, not {show(self.objective)}")
        if not isinstance(self.search_anisotropy, (bool, np.bool_)):
            raise KrigingError(f"search_anisotropy must be True or False, not {show(self.search_anisotropy)}")
        if self.search_anisotropy and n_inputs != 2:
            raise KrigingError(f"search_anisotropy: there is an angle with two inputs only, but there are {n_inputs}")
        if self.search_anisotropy and "scale" in fixed:
            raise KrigingError("search_anisotropy takes the place of scale, which fix keeps; leave one of them out")
        is_share = isinstance(self.held_out, numbers.Real) and 0.0 <= self.held_out < 1.0
        if not is_share:
            raise KrigingError(f"held_out must be at least 0 and below 1, not {show(self.held_out)}")
        n_tuned = n_samples - int(np.floor(self.held_out * n_samples))
        if n_tuned < 2:
            raise KrigingError("the search needs at least 2 samples that are not held out; lower held_out")
        for name, low, high in (
            ("n_folds", 2, n_tuned),
            ("n_repeats", 0, 1000),
            ("seed", 0, 2**64 - 1),
            ("max_trials", 1, 2**63 - 1),
        ):
            value: Any = getattr(self, name)
            if name == "n_folds" and value is None:
                continue
            is_whole = isinstance(value, (int, np.integer)) and not isinstance(value, bool)
            if not is_whole or not low <= value <= high:
                raise KrigingError(f"{name} must be a whole number from {low} to {high}, not {show(value)}")
        return {
            "kept": set(fixed),
            "objective": self.objective,
            "n_folds": self.n_folds,
            "n_repeats": self.n_repeats,
            "seed": self.seed,
            "max_trials": self.max_trials,
            "held_out": float(self.held_out),
            "search_anisotropy": bool(self.search_anisotropy),
        }

    def _choose_least_nugget(self, samples: CheckedSamples, parameters: Parameters, context: Samples) -> float:
        """With a nugget repeats are replicates: where there are any, the search leaves settings without one out."""
        if not parameters.tells_apart:
            return 0.0
        settings = check_parameters_without_nugget(parameters)
        with explained(context):
            pair = _core.find_nearest_pair(samples.X, samples.y, settings, samples.include, False)
        if pair is None:
            return 0.0
        if "nugget" not in self.fix:
            return _LEAST_NUGGET_OF_REPLICATES
        if parameters.nugget == 0.0:
            raise explain("Ill-conditioned matrix", context)
        return 0.0

    def _keep(self, found: dict[str, Any], given: tuple[float, float] | None) -> None:
        trials = found["trials"]
        self.best_index_ = int(found["winner"])
        self.cv_results_: dict[str, Any] = {
            "params": [_params_of(trial["settings"], given) for trial in trials],
            "criterion": np.array([trial["criterion"] for trial in trials]),
            "penalised_criterion": np.array([trial["penalised_criterion"] for trial in trials]),
            "score": np.array([trial["score"] for trial in trials]),
            "has_deviance": np.array([trial["has_deviance"] for trial in trials]),
            "failure": [trial["failure"] for trial in trials],
        }
        assessed = found["winner_cross_validated"]
        self.best_score_ = float("nan") if assessed is None else float(assessed["score"])
        held_out = found["winner_held_out"]
        self.held_out_score_ = float("nan") if held_out is None else float(held_out["score"])
        self.held_out_statistics_ = None if held_out is None else held_out["statistics"]

    def predict(self, X: Any, return_std: bool = False, return_variance: bool = False) -> Any:
        """Estimates of the best estimator; see ``KrigingRegressor.predict``.

        Parameters
        ----------
        X : array-like of shape (n_targets, n_inputs)
            Targets.
        return_std, return_variance : bool, default=False
            What is wanted beside the estimates; one of the two at most.

        Returns
        -------
        ndarray of shape (n_targets,) or (n_targets, n_outputs), or a tuple of two arrays
            Estimates, and what is wanted beside them.
        """
        check_is_fitted(self)
        return self.best_estimator_.predict(X, return_std=return_std, return_variance=return_variance)

    def predict_interval(self, X: Any, coverage: float = 0.95) -> tuple[FloatArray, FloatArray]:
        """Intervals of the best estimator; see ``KrigingRegressor.predict_interval``.

        Parameters
        ----------
        X : array-like of shape (n_targets, n_inputs)
            Targets.
        coverage : float, default=0.95
            The fraction of new observations to hold.

        Returns
        -------
        lower, upper : ndarray of shape (n_targets,) or (n_targets, n_outputs)
            Ends of the intervals.
        """
        check_is_fitted(self)
        interval: tuple[FloatArray, FloatArray] = self.best_estimator_.predict_interval(X, coverage)
        return interval


def check_parameters_without_nugget(parameters: Parameters) -> _core.Settings:
    """The settings with a nugget of 0."""
    import dataclasses

    return dataclasses.replace(parameters, nugget=0.0).to_settings()


def _params_of(settings: _core.Settings, given: tuple[float, float] | None) -> dict[str, Any]:
    """Parameters of a trial. given: the anisotropy of all trials; it takes the place of scale, as a found one does."""
    anisotropy = given or settings.anisotropy
    return {
        "drift_order": settings.drift_order,
        "range_fraction": settings.range_fraction,
        "nugget": settings.nugget,
        "n_neighbors": settings.n_neighbors or None,
        "scale": tuple(settings.scale_factors) or None if anisotropy is None else None,
        "anisotropy": anisotropy,
    }
