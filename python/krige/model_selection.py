"""Ways to cut samples into folds, for scikit-learn's cross-validation."""

from __future__ import annotations

import numbers
from collections.abc import Iterator
from typing import Any

import numpy as np
from sklearn.utils.validation import check_array

from krige import _core
from krige._errors import KrigingError
from krige._parameters import show
from krige._types import Array

__all__ = ["BlockKFold", "SeededKFold"]


class _KFold:
    n_splits: int

    def get_n_splits(self, X: Any = None, y: Any = None, groups: Any = None) -> int:
        """The number of folds; with samples, those that their places allow."""
        if X is None:
            return self.n_splits
        return len(set(self._folds(X).tolist()))

    def split(self, X: Any, y: Any = None, groups: Any = None) -> Iterator[tuple[Array, Array]]:
        """Yields the samples outside and inside each fold.

        Parameters
        ----------
        X : array-like of shape (n_samples, n_inputs)
            Coordinates of the samples.
        y, groups : object
            Not looked at.

        Yields
        ------
        train, test : ndarray of int
            Ascending numbers of samples.
        """
        folds = self._folds(X)
        for fold in range(int(folds.max()) + 1):
            inside = folds == fold
            if inside.any():
                yield np.flatnonzero(~inside), np.flatnonzero(inside)

    def _folds(self, X: Any) -> Array:
        raise NotImplementedError


def _check_whole(name: str, value: Any, low: int) -> int:
    if not isinstance(value, numbers.Integral) or isinstance(value, bool) or value < low:
        raise KrigingError(f"{name} must be a whole number of at least {low}, not {show(value)}")
    return int(value)


class SeededKFold(_KFold):
    """The random folds of ``krige validate``: samples of one place stand in one fold.

    Parameters
    ----------
    n_splits : int, default=10
        Number of folds; of fewer places, each is a fold.
    seed : int, default=1
        The same seed gives the same folds, on every machine.
    duplicate_tolerance : float, default=0.0
        Samples whose inputs differ by at most this fraction of each input's range lie at one place.
    """

    def __init__(self, n_splits: int = 10, *, seed: int = 1, duplicate_tolerance: float = 0.0) -> None:
        self.n_splits = _check_whole("n_splits", n_splits, 2)
        self.seed = _check_whole("seed", seed, 0)
        if not isinstance(duplicate_tolerance, numbers.Real) or not duplicate_tolerance >= 0.0:
            raise KrigingError(f"duplicate_tolerance must be a number of at least 0, not {show(duplicate_tolerance)}")
        self.duplicate_tolerance: float = float(duplicate_tolerance)

    def _folds(self, X: Any) -> Array:
        inputs = check_array(X, dtype=np.float64, ensure_min_samples=2)
        n_splits = min(self.n_splits, len(inputs))
        try:
            folds = _core.assign_folds(inputs, self.duplicate_tolerance, n_splits, self.seed)
        except ValueError as error:
            raise KrigingError(str(error)) from None
        # With fewer places than folds the last folds are empty: as many as there are places, as the program has it.
        n_used = len(np.unique(folds))
        if n_used < n_splits:
            folds = _core.assign_folds(inputs, self.duplicate_tolerance, max(n_used, 2), self.seed)
        return folds


class BlockKFold(_KFold):
    """Folds of whole blocks of space, so that samples are estimated from others that are not next to them.

    Each input's range is cut into equal parts, blocks without a sample are left out, and the others are dealt to the
    folds at random, the fullest first to the fold that holds the fewest samples.

    Parameters
    ----------
    n_splits : int, default=10
        Number of folds, at most the number of blocks that hold a sample.
    shape : int or sequence of int, default=5
        Number of parts of each input.
    seed : int, default=1
        Of the order in which equally full blocks are dealt.

    References
    ----------
    .. [1] D. R. Roberts et al., "Cross-validation strategies for data with temporal, spatial, hierarchical, or
       phylogenetic structure", Ecography 40, 2017.
    """

    def __init__(self, n_splits: int = 10, *, shape: Any = 5, seed: int = 1) -> None:
        self.n_splits = _check_whole("n_splits", n_splits, 2)
        parts = [shape] if isinstance(shape, numbers.Integral) else list(shape)
        self.shape = [_check_whole("shape", part, 1) for part in parts]
        self.seed = _check_whole("seed", seed, 0)

    def _folds(self, X: Any) -> Array:
        inputs = check_array(X, dtype=np.float64, ensure_min_samples=2)
        blocks = self._blocks(inputs)
        _, block_of, counts = np.unique(blocks, return_inverse=True, return_counts=True)
        if len(counts) < self.n_splits:
            raise KrigingError(f"{len(counts)} blocks hold samples, too few for {self.n_splits} folds; raise shape")
        order = np.random.RandomState(self.seed).permutation(len(counts))
        order = order[np.argsort(-counts[order], kind="stable")]
        fold_of = np.empty(len(counts), dtype=np.int64)
        filled = np.zeros(self.n_splits, dtype=np.int64)
        for block in order:
            fold_of[block] = int(np.argmin(filled))
            filled[fold_of[block]] += counts[block]
        folds: Array = fold_of[block_of.ravel()]
        return folds

    def _blocks(self, inputs: Array) -> Array:
        n_inputs = inputs.shape[1]
        parts = self.shape * n_inputs if len(self.shape) == 1 else self.shape
        if len(parts) != n_inputs:
            raise KrigingError(f"shape has {len(parts)} numbers for {n_inputs} inputs; give one each, or one for all")
        low = inputs.min(axis=0)
        width = np.ptp(inputs, axis=0)
        blocks = np.zeros(len(inputs), dtype=np.int64)
        for v, count in enumerate(parts):
            share = (inputs[:, v] - low[v]) / width[v] if width[v] > 0.0 else np.zeros(len(inputs))
            blocks = blocks * count + np.minimum((share * count).astype(np.int64), count - 1)
        return blocks
