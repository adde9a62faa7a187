"""Lazy estimates: the model is one task of the graph, which each worker builds once."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np
from sklearn.utils.validation import check_array

from krige._compat import finite_option
from krige._errors import KrigingError
from krige._grid import targets_of
from krige._types import FloatArray

if TYPE_CHECKING:
    from krige._estimator import KrigingRegressor


def _predict_block(block: FloatArray, model: KrigingRegressor, options: dict[str, Any]) -> FloatArray:
    """One array for all that is asked for: estimates, then std or variance, one column each."""
    # Names of columns are gone by now: they were those of the whole.
    targets = check_array(
        block, dtype=np.float64, ensure_min_samples=0, **finite_option(model._parameters.skips_missing)
    )
    answer = model._answer(targets, **options)
    parts = answer if isinstance(answer, tuple) else (answer,)
    return np.column_stack(parts)


def _column_counts(model: KrigingRegressor, options: dict[str, Any]) -> list[int]:
    n_outputs = len(model.output_names_)
    if options.get("return_std"):
        return [n_outputs, n_outputs]
    return [n_outputs, 1] if options.get("return_variance") else [n_outputs]


def predict_lazily(model: KrigingRegressor, X: Any, options: dict[str, Any]) -> Any:
    """As ``KrigingRegressor.predict`` for a dask array, or the values of a dask DataFrame."""
    import dask
    import dask.array

    targets = X if hasattr(X, "rechunk") else X.to_dask_array()
    targets = targets.rechunk({1: -1}) if targets.ndim == 2 else targets
    if targets.ndim != 2 or targets.shape[1] != model.n_features_in_:
        raise KrigingError(f"X must have shape (n, {model.n_features_in_}), not {targets.shape}")
    counts = _column_counts(model, options)
    joined = targets.map_blocks(
        _predict_block,
        model=dask.delayed(model, pure=True),
        options=options,
        dtype=np.float64,
        chunks=(targets.chunks[0], (sum(counts),)),
        meta=np.empty((0, 0), dtype=np.float64),
    )
    is_flat = model.y_train_.ndim == 1
    mean = joined[:, 0] if is_flat else joined[:, : counts[0]]
    if len(counts) == 1:
        return mean
    beside = joined[:, counts[0] :]
    return mean, beside[:, 0] if is_flat or options.get("return_variance") else beside


def _grid_block(*corner: FloatArray, model: KrigingRegressor, options: dict[str, Any]) -> FloatArray:
    """Estimates over one block of the grid, of these nodes of each axis: quantity first, then reversed inputs."""
    axes = [np.ravel(axis) for axis in corner]
    columns = _predict_block(targets_of(axes), model, options)
    return np.ascontiguousarray(columns.T).reshape(columns.shape[1], *(axis.size for axis in reversed(axes)))


def grid_lazily(model: KrigingRegressor, axes: list[FloatArray], chunks: Any, options: dict[str, Any]) -> list[Any]:
    """One dask array per column of ``_predict_block``, over the reversed inputs."""
    import dask
    import dask.array

    n_inputs = len(axes)
    n_columns = sum(_column_counts(model, options))
    sizes = tuple(axis.size for axis in reversed(axes))
    normalized = dask.array.core.normalize_chunks(chunks, shape=sizes, dtype=np.float64)
    quantity = n_inputs
    arguments: list[Any] = []
    for v, axis in enumerate(axes):
        place = n_inputs - 1 - v
        arguments += [dask.array.from_array(axis, chunks=(normalized[place],)), (place,)]
    joined = dask.array.blockwise(
        _grid_block,
        (quantity, *range(n_inputs)),
        *arguments,
        new_axes={quantity: n_columns},
        model=dask.delayed(model, pure=True),
        options=options,
        dtype=np.float64,
        meta=np.empty((0,) * (n_inputs + 1), dtype=np.float64),
    )
    return [joined[c] for c in range(n_columns)]
