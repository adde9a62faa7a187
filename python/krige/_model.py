"""The thin core: samples and parameters in, estimates out."""

from __future__ import annotations

import os
import threading
import weakref
from typing import Any

import numpy as np

from krige import _core
from krige._errors import Samples, explained
from krige._parameters import Parameters
from krige._types import Array, FloatArray

_models: weakref.WeakSet[Model] = weakref.WeakSet()


class Model:
    """A Kriging model over samples, without the checks and conventions of `KrigingRegressor`.

    For programs that ask often for few targets, or for more than fits into memory. Made by
    ``KrigingRegressor.fit`` (its attribute ``model_``).

    Parameters
    ----------
    X : ndarray of shape (n_samples, n_inputs)
        Coordinates of the samples, float64, finite. Kept, not copied: they must not change.
    y : ndarray of shape (n_samples,) or (n_samples, n_outputs)
        Their observations, likewise.
    parameters : Parameters
        Checked parameters.
    include : ndarray of shape (n_samples,), optional
        Flags; a sample without one counts for normalisation and range, and stands in no system.
    names : list of str, optional
        Names of the inputs, for messages.

    Notes
    -----
    Pickles hold samples and parameters, never the factor of n^2 numbers: the model is built again when it is first
    used, once for all threads. So it is in a process that was forked, which has none of the model's threads.

    Any number of threads may ask; requests are answered one after the other, each on the model's own threads.
    """

    def __init__(
        self,
        X: FloatArray,
        y: FloatArray,
        parameters: Parameters,
        include: Array | None = None,
        names: list[str] | None = None,
    ) -> None:
        self._samples = Samples(X, y, include, parameters, names)
        self._core: _core.Model | None = None
        self._begin_process()

    def _begin_process(self) -> None:
        self._lock = threading.Lock()
        _models.add(self)

    def _forget_parent(self) -> None:
        # Never taken down here: its threads stayed with the parent. See CoreModel.
        self._core = None
        self._lock = threading.Lock()

    def __getstate__(self) -> dict[str, Any]:
        return {"samples": self._samples}

    def __setstate__(self, state: dict[str, Any]) -> None:
        self._samples = state["samples"]
        for array in (self._samples.X, self._samples.y):
            array.setflags(write=False)
        self._core = None
        self._begin_process()

    def __dask_tokenize__(self) -> Any:
        from dask.base import normalize_token

        samples = self._samples
        return normalize_token(("krige.Model", samples.X, samples.y, samples.include, repr(samples.parameters)))

    @property
    def core(self) -> _core.Model:
        """The library's model, built at the first use."""
        if self._core is None:
            with self._lock:
                if self._core is None:
                    self._core = self._build()
        return self._core

    def _build(self) -> _core.Model:
        samples = self._samples
        parameters = samples.parameters
        with explained(samples):
            return _core.Model(
                samples.X,
                samples.y,
                parameters.to_settings(),
                samples.include,
                n_threads=parameters.n_threads,
                exact=parameters.exact,
                tell_apart=parameters.tells_apart,
            )

    def predict(self, X: Array, out: FloatArray | None = None, variance_out: FloatArray | None = None) -> FloatArray:
        """Estimates at targets.

        Parameters
        ----------
        X : ndarray of shape (n_targets, n_inputs)
            Targets. Float64 of any strides is read in place, a piece at a time, so that a memory map of any size may
            be given; other types are converted once.
        out : ndarray of shape (n_targets,) or (n_targets, n_outputs), optional
            Float64, where the estimates go; for one output the first of these.
        variance_out : ndarray of shape (n_targets,), optional
            Float64, where the Kriging variances for a sill of 1 go.

        Returns
        -------
        ndarray
            `out`, or a new array of its shape. A target with a coordinate that is not finite gets nan.

        Raises
        ------
        KrigingError
            For arrays of other shapes, and `SingularSystemError` where targets have no solution.
        """
        for results in (out, variance_out):
            if results is not None and isinstance(X, np.ndarray) and np.may_share_memory(X, results):
                X = X.copy()
        try:
            return self.core.estimate(X, out, variance_out)
        except (_core.LibraryError, ValueError) as error:
            with explained(self._samples):
                raise error

    def request(self, X: FloatArray, results: dict[str, Any]) -> None:
        """Fills arrays with all that the library gives; see ``_core.Model.predict``."""
        with explained(self._samples):
            self.core.predict(X, **results)

    @property
    def sills(self) -> list[float]:
        """The sill of each output, worked out once."""
        with explained(self._samples):
            return self.core.sills

    def leave_one_out(self) -> dict[str, Any]:
        """See ``KrigingRegressor.leave_one_out``."""
        with explained(self._samples):
            return _core.leave_one_out(self.core)

    def semivariogram(self, n_lags: int, max_lag: float | None, in_units: bool, output: int) -> dict[str, Any]:
        """See ``KrigingRegressor.semivariogram``."""
        with explained(self._samples):
            return _core.semivariogram(self.core, n_lags, max_lag, in_units, output)


def _forget_parents_models() -> None:
    for model in list(_models):
        model._forget_parent()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_forget_parents_models)
