"""The regressor."""

from __future__ import annotations

import dataclasses
import os
from pathlib import Path
from typing import TYPE_CHECKING, Any

import numpy as np
from sklearn.base import BaseEstimator, RegressorMixin
from sklearn.utils.validation import check_array, check_consistent_length, check_is_fitted

from krige import _compat
from krige._arrays import is_dask, names_of_outputs, read_only, unmasked
from krige._config import read_settings, write_settings
from krige._errors import KrigingError
from krige._grid import check_axes, targets_of, to_dataset
from krige._model import Model
from krige._parameters import Parameters, check_parameters, show
from krige._results import LeaveOneOut, Semivariogram
from krige._types import Array, FloatArray

if TYPE_CHECKING:
    import xarray


class _TransformParameter:
    """The parameter `transform`, which an estimator without one does not show as an attribute.

    DELIBERATE: scikit-learn takes whatever has an attribute `transform` for a transformer. What reads the parameter
    goes through `get_params`. Test: test_estimator_keeps_the_conventions
    """

    def __get__(self, estimator: Any, owner: Any = None) -> Any:
        value = None if estimator is None else estimator.__dict__.get("transform")
        if value is None:
            raise AttributeError("transform")
        return value

    def __set__(self, estimator: Any, value: Any) -> None:
        estimator.__dict__["transform"] = value


class KrigingRegressor(_compat.Tags, RegressorMixin, BaseEstimator):  # type: ignore[misc]
    """Universal Kriging with a spherical semivariogram and a polynomial drift.

    With the same settings, engines included, estimates have the bits of the command line ``krige``.

    Parameters
    ----------
    drift_order : int, default=0
        Degree of the polynomial drift, 0 (a constant mean) to 4.
    range_fraction : float or str, default=1.0
        Range of the semivariogram as a fraction of the diagonal of the samples' normalised box, above 0, to 10; or a
        text such as ``"900u"`` for a range in the units of inputs that share one scale.
    nugget : float, default=0.0
        Nugget as a fraction of the sill, 0 to 1; above 0 it smooths noisy samples.
    n_neighbors : int, optional
        Estimate each target from so many nearest samples; None: from all.
    scale : sequence of float, "raw" or None, default=None
        One factor per input: ``-k`` scales its range in the samples to 2k, a positive factor is the weight of its raw
        values beside those of the other inputs. ``"raw"``: equal factors. None: every input counts alike.
    duplicates : {"merge", "error", "keep"}, default="merge"
        What to do with samples at one place, or nearer to each other than a model can tell apart: average them, raise
        `SingularSystemError`, or go on all the same. With a nugget they are repeated measurements and no error.
    duplicate_tolerance : float, default=0.0
        Of ``"merge"``: samples whose inputs differ by at most this fraction of each input's range are one point.
    anisotropy : (float, float), optional
        For two inputs of one unit, in place of `scale`: ratio of the longer range over the shorter one, and the angle
        of the longer one in degrees anticlockwise from the axis of the first input.
    transform : {"log"}, optional
        Model the natural logarithms of the outputs and give unbiased estimates in the data's units. Standard errors
        stay those of the logarithms.
    clamp : (float or None, float or None), optional
        Limits that estimates and ends of intervals are brought into, in the data's units.
    missing : {"error", "skip"}, default="error"
        ``"skip"``: samples with NaN are left out, targets with NaN give nan. Infinities are errors either way.
    sill : "auto", "sample", float or sequence of these, default="auto"
        Of each output, which its standard errors take: estimated from the points, the variance of the points, or a
        number above 0 in squared units of the output.
    exact : bool, default=False
        False: the engine that ``krige predict`` chooses. True: the bits that a host gets from the plug-in.
    n_jobs : int, optional
        Threads; None: 1, -1: all cores. Results do not depend on it.

    Attributes
    ----------
    n_features_in_ : int
        Number of inputs.
    feature_names_in_ : ndarray of str of shape (n_features_in_,)
        Names of the inputs; there when `fit` was given names that are all strings.
    output_names_ : list of str
        Names of the outputs: those of a Series or DataFrame, otherwise ``z``, or ``z0``, ``z1`` and so on.
    X_train_, y_train_ : ndarray
        The samples of the model, those with NaN left out; read-only copies.
    model_ : Model
        The thin core.
    n_points_ : int
        Points of the model, after merging.
    merged_ : list of list of int
        Per averaged point the samples, numbered as in `X_train_`, that it stands for.
    n_missing_ : int
        Samples left out for a NaN.
    output_variances_ : ndarray of shape (n_outputs,)
        Sample variance of each output over the points, in its squared units.
    ranges_ : ndarray of shape (n_features_in_,)
        Distance along each input, in its unit, at which the sill is reached; with `anisotropy` along the longer range
        and across it.
    sill_ : ndarray of shape (n_outputs,)
        The sill that standard errors take, in squared units of the output. Worked out when it is first asked for.
    engine_ : str
        Which engine answers: ``"exact"``, ``"covariance form"`` or ``"local"``.
    error_bound_ : float
        Proven bound of the difference to exact estimates over all targets so far, in standard deviations of the
        output; 0 for the exact engine.

    Notes
    -----
    The weights :math:`\\lambda` of the observations solve the universal Kriging system

    .. math:: \\Gamma \\lambda + F \\mu = \\gamma, \\qquad F^T \\lambda = f

    of semivariogram values and drift terms; the variance for a sill of 1 is :math:`\\lambda^T \\gamma + \\mu^T f`.

    A model of all samples keeps n^2 / 2 numbers (n^2 with ``exact=True``). Where they do not fit into memory, `fit`
    raises MemoryError before anything is allocated. Pickles hold settings and samples only. A factorisation runs to
    its end; prediction, leave-one-out and tuning end within a second of Ctrl-C, and the model answers as before.

    References
    ----------
    .. [1] G. Matheron, "Le krigeage universel", 1969.
    .. [2] N. Cressie, "Statistics for Spatial Data", Wiley, 1993, chapter 3.

    Examples
    --------
    >>> import numpy as np
    >>> from krige import KrigingRegressor
    >>> X = np.array([[0.0, 0.0], [1.0, 0.0], [0.0, 1.0], [1.0, 1.0], [0.5, 0.5]])
    >>> model = KrigingRegressor().fit(X, X[:, 0] + X[:, 1])
    >>> mean, std = model.predict([[0.5, 0.5], [0.25, 0.5]], return_std=True)
    >>> print(f"{mean[0]:.2f} {std[0]:.2f}, {mean[1]:.2f}")
    1.00 0.00, 0.74
    """

    transform: Any = _TransformParameter()

    def __init__(
        self,
        *,
        drift_order: int = 0,
        range_fraction: float | str = 1.0,
        nugget: float = 0.0,
        n_neighbors: int | None = None,
        scale: Any = None,
        duplicates: str = "merge",
        duplicate_tolerance: float = 0.0,
        anisotropy: tuple[float, float] | None = None,
        transform: str | None = None,
        clamp: tuple[float | None, float | None] | None = None,
        missing: str = "error",
        sill: Any = "auto",
        exact: bool = False,
        n_jobs: int | None = None,
    ) -> None:
        self.drift_order = drift_order
        self.range_fraction = range_fraction
        self.nugget = nugget
        self.n_neighbors = n_neighbors
        self.scale = scale
        self.duplicates = duplicates
        self.duplicate_tolerance = duplicate_tolerance
        self.anisotropy = anisotropy
        self.transform = transform
        self.clamp = clamp
        self.missing = missing
        self.sill = sill
        self.exact = exact
        self.n_jobs = n_jobs

    def fit(self, X: Any, y: Any, include: Any = None) -> KrigingRegressor:
        """Builds the model of samples.

        Parameters
        ----------
        X : array-like of shape (n_samples, n_inputs)
            Coordinates of the samples. Copied once.
        y : array-like of shape (n_samples,) or (n_samples, n_outputs)
            Observations, likewise. All outputs share one factorisation.
        include : array-like of bool of shape (n_samples,), optional
            Samples without a flag count for normalisation and range, but stand in no system.

        Returns
        -------
        KrigingRegressor
            This estimator.

        Raises
        ------
        KrigingError
            For parameters and samples that no model can be made of; `SingularSystemError` where the samples do not
            determine the estimates or lie too near to each other.
        MemoryError
            Where the model does not fit into memory.
        """
        samples = check_samples(self, X, y, include, self)
        parameters = check_parameters(self.get_params(), samples.X.shape[1], samples.n_outputs)
        model = Model(samples.X, samples.y, parameters, samples.include, samples.input_names)
        core = model.core
        self._set_fitted(samples, model)
        self.n_points_ = int(core.n_points)
        self.merged_ = [list(group) for group in core.merged]
        self.output_variances_ = np.asarray(core.output_variances)
        self.ranges_ = np.asarray(core.ranges)
        return self

    def get_params(self, deep: bool = True) -> dict[str, Any]:
        """The parameters of this estimator.

        Parameters
        ----------
        deep : bool, default=True
            Means nothing here: no parameter is an estimator.

        Returns
        -------
        dict
            Values by names.
        """
        return {name: self.__dict__[name] for name in self._get_param_names()}

    def _set_fitted(self, samples: CheckedSamples, model: Model) -> None:
        self.X_train_ = samples.X
        self.y_train_: FloatArray = samples.y
        self.n_missing_ = samples.n_missing
        self.output_names_: list[str] = samples.output_names
        self.model_ = model

    def __setstate__(self, state: dict[str, Any]) -> None:
        super().__setstate__(state)
        for name in ("X_train_", "y_train_"):
            if name in self.__dict__:
                self.__dict__[name].setflags(write=False)

    def __dask_tokenize__(self) -> Any:
        from dask.base import normalize_token

        fitted = self.__dict__.get("model_")
        return normalize_token((type(self).__name__, repr(self.get_params(deep=False)), fitted))

    @property
    def _parameters(self) -> Parameters:
        return self.model_._samples.parameters

    @property
    def sill_(self) -> FloatArray:
        """The sill of each output, in its squared units."""
        return np.asarray(self._fitted_model("sill_").sills)

    @property
    def engine_(self) -> str:
        """The engine that answers."""
        return str(self._fitted_model("engine_").core.report["engine"])

    @property
    def error_bound_(self) -> float:
        """Proven bound over all targets so far, in standard deviations of the output."""
        return float(self._fitted_model("error_bound_").core.report["bound"])

    def _fitted_model(self, name: str) -> Model:
        model = self.__dict__.get("model_")
        if model is None:
            raise AttributeError(f"{type(self).__name__} has no {name} before fit")
        assert isinstance(model, Model)
        return model

    def predict(self, X: Any, return_std: bool = False, return_variance: bool = False) -> Any:
        """Estimates at targets.

        Parameters
        ----------
        X : array-like of shape (n_targets, n_inputs)
            Targets. Float64 arrays of any strides are read in place; other types are converted once. A dask array
            gives dask arrays.
        return_std : bool, default=False
            Whether standard errors of new observations, nugget included, are wanted: in the units of `y`, shaped like
            the estimates. nan where the variance is not a number of 0 or above.
        return_variance : bool, default=False
            Whether the Kriging variances for a sill of 1 are wanted, shape (n_targets,). One of the two at most.

        Returns
        -------
        ndarray of shape (n_targets,) or (n_targets, n_outputs), or a tuple of two arrays
            Estimates, and what is wanted beside them.

        Raises
        ------
        KrigingError
            For both of the two; `SingularSystemError` where a target has no solution.
        ValueError
            For targets of another shape, with infinities, or with NaN unless ``missing="skip"``.
        """
        check_is_fitted(self)
        if return_std and return_variance:
            raise KrigingError("ask for one of return_std and return_variance")
        if is_dask(X):
            from krige._dask import predict_lazily

            return predict_lazily(self, X, {"return_std": return_std, "return_variance": return_variance})
        return self._answer(self._check_targets(X), return_std, return_variance)

    def _answer(self, targets: FloatArray, return_std: bool = False, return_variance: bool = False) -> Any:
        """As `predict`, of targets that have been checked."""
        results: dict[str, Any] = {"out": self._empty(len(targets))}
        if return_std:
            results["std_out"] = self._empty(len(targets))
        if return_variance:
            results["variance_out"] = np.empty(len(targets))
        self.model_.request(targets, results)
        return tuple(results.values()) if len(results) > 1 else results["out"]

    def predict_interval(self, X: Any, coverage: float = 0.95) -> tuple[FloatArray, FloatArray]:
        """The interval at each target that holds a fraction of new observations, if the errors are normal.

        Parameters
        ----------
        X : array-like of shape (n_targets, n_inputs)
            Targets.
        coverage : float, default=0.95
            The fraction, above 0 and below 1.

        Returns
        -------
        lower, upper : ndarray of shape (n_targets,) or (n_targets, n_outputs)
            Ends of the intervals, in the units of `y`.

        Raises
        ------
        KrigingError
            For another coverage, and as `predict`.
        """
        check_is_fitted(self)
        if not isinstance(coverage, (float, int, np.floating)) or not 0.0 < coverage < 1.0:
            raise KrigingError(f"coverage must be above 0 and below 1, not {show(coverage)}")
        targets = self._check_targets(X)
        lower, upper = self._empty(len(targets)), self._empty(len(targets))
        out = self._empty(len(targets))
        self.model_.request(targets, {"out": out, "lower_out": lower, "upper_out": upper, "coverage": float(coverage)})
        return lower, upper

    def _empty(self, n_targets: int) -> FloatArray:
        return np.empty((n_targets, *self.y_train_.shape[1:]))

    def _check_targets(self, X: Any) -> FloatArray:
        targets: FloatArray = _compat.validate_data(
            self,
            unmasked(X),
            self._parameters.skips_missing,
            reset=False,
            dtype=np.float64,
            ensure_min_samples=0,
        )
        return targets

    def leave_one_out(self) -> LeaveOneOut:
        """Estimates each point of the model from all others, or from the nearest of them.

        With the normalisation, range and merged points of the whole model; for a model of all samples from its one
        factorisation instead of n.

        Returns
        -------
        LeaveOneOut
            Estimates, standard errors, observations, samples of each point, and figures.

        References
        ----------
        .. [1] O. Dubrule, "Cross validation of kriging in a unique neighborhood", Mathematical Geology 15, 1983.
        """
        check_is_fitted(self)
        left = self.model_.leave_one_out()
        columns: Any = 0 if self.y_train_.ndim == 1 else slice(None)
        return LeaveOneOut(
            estimates=left["estimates"][:, columns],
            std=left["std"][:, columns],
            truths=left["truths"][:, columns],
            members=left["members"],
            statistics=left["statistics"][columns],
        )

    def semivariogram(self, n_lags: int = 15, max_lag: Any = None, output: int | str = 0) -> Semivariogram:
        """The empirical semivariogram of the points beside the model's.

        Parameters
        ----------
        n_lags : int, default=15
            Number of bins of equal width.
        max_lag : float or str, optional
            Largest lag between normalised inputs, or a text such as ``"900u"`` in the unit of inputs that share one
            scale. None: half the diagonal of the samples' box.
        output : int or str, default=0
            Which output, by number or name.

        Returns
        -------
        Semivariogram
            A bin per entry; bins without a pair are left out.

        Raises
        ------
        KrigingError
            For bins that there cannot be.

        References
        ----------
        .. [1] N. Cressie, "Statistics for Spatial Data", Wiley, 1993, section 2.4.
        """
        check_is_fitted(self)
        if not isinstance(n_lags, (int, np.integer)) or isinstance(n_lags, bool) or not 1 <= n_lags <= 1_000_000:
            raise KrigingError(f"n_lags must be a whole number from 1 to 1000000, not {show(n_lags)}")
        lag, in_units = _check_max_lag(max_lag)
        table = self.model_.semivariogram(int(n_lags), lag, in_units, self._find_output(output))
        names = [field.name for field in dataclasses.fields(Semivariogram) if field.name != "nugget"]
        return Semivariogram(nugget=self._parameters.nugget, **{name: table[name] for name in names})

    def _find_output(self, output: Any) -> int:
        if isinstance(output, str) and output in self.output_names_:
            return self.output_names_.index(output)
        is_number = isinstance(output, (int, np.integer)) and not isinstance(output, bool)
        if not is_number or not 0 <= output < len(self.output_names_):
            raise KrigingError(f"output must be one of {self.output_names_} or its number, not {show(output)}")
        return int(output)

    def grid(self, shape: Any, region: Any = None, return_std: bool = False, chunks: Any = None) -> xarray.Dataset:
        """Estimates on a grid.

        Parameters
        ----------
        shape : sequence of int
            Number of nodes along each input, in the order of the inputs.
        region : sequence of float, optional
            Lower and upper bound of each input in turn, both nodes; None: the samples' box.
        return_std : bool, default=False
            Whether ``NAME_stderr`` of each output and ``variance``, for a sill of 1, are wanted too.
        chunks : int, tuple or dict-free dask chunks, optional
            Make the variables dask arrays in these chunks, over the reversed inputs. None: compute now.

        Returns
        -------
        xarray.Dataset
            A variable per output under its name; dimensions are the inputs reversed (``y``, ``x``), so that values
            flatten to the rows of ``krige predict --grid``.

        Raises
        ------
        KrigingError
            For a shape or a region that is no grid, and as `predict`.
        ImportError
            Without xarray.
        """
        check_is_fitted(self)
        axes = check_axes(shape, region, self.X_train_)
        names = self._grid_names()
        sizes = tuple(axis.size for axis in reversed(axes))
        outputs = self.output_names_
        if chunks is not None:
            from krige._dask import grid_lazily

            columns = grid_lazily(self, axes, chunks, {"return_std": return_std})
            variables = dict(zip(outputs, columns))
            if return_std:
                variables.update(zip([f"{name}_stderr" for name in outputs], columns[len(outputs) :]))
                variables["variance"] = grid_lazily(self, axes, chunks, {"return_variance": True})[-1]
        else:
            targets = targets_of(axes)
            shape_of_results = (len(targets), len(outputs))
            results: dict[str, Any] = {"out": np.empty(shape_of_results)}
            if return_std:
                results["std_out"] = np.empty(shape_of_results)
                results["variance_out"] = np.empty(len(targets))
            self.model_.request(targets, results)
            variables = {name: results["out"][:, w].reshape(sizes) for w, name in enumerate(outputs)}
            if return_std:
                for w, name in enumerate(outputs):
                    variables[f"{name}_stderr"] = results["std_out"][:, w].reshape(sizes)
                variables["variance"] = results["variance_out"].reshape(sizes)
        return to_dataset(variables, axes, names, {"engine": self.engine_})

    def _grid_names(self) -> list[str]:
        names = [str(name) for name in getattr(self, "feature_names_in_", _default_names(self.n_features_in_))]
        variables = [*self.output_names_, *(f"{name}_stderr" for name in self.output_names_), "variance"]
        doubled = sorted({name for name in names + variables if (names + variables).count(name) > 1})
        if doubled:
            raise KrigingError(f"the grid would have two of {doubled[0]!r}; rename an input or an output")
        return names

    def _count_inputs(self) -> int:
        """The number of inputs, or before fit one that the parameters allow."""
        if "n_features_in_" in self.__dict__:
            return int(self.n_features_in_)
        if isinstance(self.scale, str):
            raise KrigingError("scale='raw' has one factor per input; call fit first")
        if self.scale is not None:
            return len(self.scale)
        return 2 if self.anisotropy is not None else 1

    @classmethod
    def from_config(cls, path: str | os.PathLike[str], **parameters: Any) -> KrigingRegressor:
        """An estimator with the settings of a file, as ``krige tune`` writes it and ``krige --config`` reads it.

        Parameters
        ----------
        path : str or path-like
            The file.
        **parameters
            Parameters that the file does not hold, or that win over it.

        Returns
        -------
        KrigingRegressor
            Not fitted.

        Raises
        ------
        KrigingError
            For anything but known settings, each once; file and line are named.
        """
        text = Path(path).read_text(encoding="utf-8")
        return cls(**{**read_settings(text, os.fspath(path)), **parameters})

    def to_config(self, path: str | os.PathLike[str] | None = None) -> str:
        """The settings as the text of a file for ``krige --config``.

        Parameters
        ----------
        path : str or path-like, optional
            File to write.

        Returns
        -------
        str
            The text.

        Raises
        ------
        KrigingError
            For parameters that no model can be made of.
        """
        n_outputs = 1 if isinstance(self.sill, (str, float, int)) else len(self.sill)
        text = write_settings(check_parameters(self.get_params(), self._count_inputs(), n_outputs))
        if path is not None:
            Path(path).write_text(text, encoding="utf-8")
        return text


class CheckedSamples:
    """Samples that a model can be tried of, and what came with them."""

    def __init__(
        self,
        X: FloatArray,
        y: FloatArray,
        include: Array | None,
        n_missing: int,
        input_names: list[str],
        output_names: list[str],
    ) -> None:
        self.X = X
        self.y = y
        self.include = include
        self.n_missing = n_missing
        self.input_names = input_names
        self.output_names = output_names

    @property
    def n_outputs(self) -> int:
        return 1 if self.y.ndim == 1 else int(self.y.shape[1])


def check_samples(estimator: Any, X: Any, y: Any, include: Any, rules: KrigingRegressor) -> CheckedSamples:
    """Checks and copies what `fit` was given, by the parameters of `rules`.

    Sets the number and names of the inputs on the estimator.
    """
    allows_nan = isinstance(rules.missing, str) and rules.missing == "skip"
    if y is None:
        raise KrigingError(f"{type(estimator).__name__} requires y to be passed, but the target y is None")
    output_names = names_of_outputs(y)
    inputs = _compat.validate_data(
        estimator, unmasked(X), allows_nan, reset=True, dtype=np.float64, ensure_min_samples=2
    )
    outputs = _check_outputs(y, allows_nan)
    check_consistent_length(inputs, outputs)
    flags = _check_include(include, len(inputs))
    kept = ~(np.isnan(inputs).any(axis=1) | np.isnan(outputs.reshape(len(outputs), -1)).any(axis=1))
    n_missing = int(len(kept) - kept.sum())
    if n_missing:
        inputs, outputs = inputs[kept], outputs[kept]
        flags = None if flags is None else flags[kept]
        if len(inputs) < 2:
            raise KrigingError(f"{len(inputs)} samples are left without {n_missing} that have a NaN; add samples")
    n_outputs = 1 if outputs.ndim == 1 else outputs.shape[1]
    if output_names is None or len(output_names) != n_outputs:
        output_names = ["z"] if n_outputs == 1 else [f"z{w}" for w in range(n_outputs)]
    _check_logarithms(rules.get_params()["transform"], outputs)
    names = getattr(estimator, "feature_names_in_", None)
    return CheckedSamples(
        read_only(inputs),
        read_only(outputs),
        flags,
        n_missing,
        _default_names(inputs.shape[1]) if names is None else [str(name) for name in names],
        output_names,
    )


def _default_names(n_inputs: int) -> list[str]:
    return [f"x{v}" for v in range(n_inputs)]


def _check_outputs(y: Any, allows_nan: bool) -> FloatArray:
    outputs: FloatArray = check_array(
        unmasked(y), dtype=np.float64, ensure_2d=False, input_name="y", **_compat.finite_option(allows_nan)
    )
    if outputs.ndim not in (1, 2) or (outputs.ndim == 2 and outputs.shape[1] == 0):
        raise KrigingError(f"y must have shape (n,) or (n, outputs), not {outputs.shape}")
    return outputs


def _check_include(include: Any, n_samples: int) -> Array | None:
    if include is None:
        return None
    flags = np.asarray(include)
    if flags.shape != (n_samples,) or flags.dtype != np.bool_:
        raise KrigingError(f"include must hold one bool per sample, {n_samples}, not {show(include)}")
    return flags.copy()


def _check_logarithms(transform: Any, outputs: FloatArray) -> None:
    if isinstance(transform, str) and transform == "log" and not (outputs > 0.0).all():
        sample = int(np.argwhere(~(outputs > 0.0))[0][0])
        raise KrigingError(f"transform='log' needs outputs above 0, but that of sample {sample} is not")


def _check_max_lag(value: Any) -> tuple[float | None, bool]:
    if value is None:
        return None, False
    in_units = isinstance(value, str) and value.endswith("u")
    try:
        lag = float(value[:-1]) if in_units else float("nan") if isinstance(value, str) else float(value)
    except (TypeError, ValueError):
        lag = float("nan")
    if not 0.0 < lag < float("inf"):
        raise KrigingError(f"max_lag must be a number above 0 or a text such as '900u', not {show(value)}")
    return lag, in_units
