"""Estimates on a grid, as an xarray Dataset."""

from __future__ import annotations

import math
import numbers
from collections.abc import Sequence
from typing import TYPE_CHECKING, Any

import numpy as np

from krige._errors import KrigingError
from krige._parameters import show
from krige._types import FloatArray

if TYPE_CHECKING:
    import xarray


def nodes(low: float, high: float, count: int) -> FloatArray:
    """Equally spaced nodes, the last one exactly `high`; a single one is `low`. As `krige predict --grid` has them."""
    step = (high - low) / (count - 1) if count > 1 else 0.0
    axis = low + np.arange(count, dtype=np.float64) * step
    axis[-1] = high if count > 1 else low
    return axis


def check_axes(shape: Any, region: Any, X: FloatArray) -> list[FloatArray]:
    """The nodes of each input, for a shape and a region as `KrigingRegressor.grid` takes them."""
    n_inputs = X.shape[1]
    if isinstance(shape, (str, bytes)) or not isinstance(shape, Sequence) or len(shape) != n_inputs:
        raise KrigingError(f"shape must hold one number of nodes per input, {n_inputs}, not {show(shape)}")
    for count in shape:
        if not isinstance(count, numbers.Integral) or isinstance(count, bool) or count < 1:
            raise KrigingError(f"shape must hold whole numbers of at least 1, not {show(count)}")
    if region is None:
        region = [bound for v in range(n_inputs) for bound in (X[:, v].min(), X[:, v].max())]
    if isinstance(region, (str, bytes)) or not hasattr(region, "__len__") or len(region) != 2 * n_inputs:
        raise KrigingError(f"region must hold a lower and an upper bound per input, not {show(region)}")
    bounds = []
    for bound in region:
        if not isinstance(bound, numbers.Real) or not math.isfinite(bound):
            raise KrigingError(f"region must hold finite numbers, not {show(bound)}")
        bounds.append(float(bound))
    axes = []
    for v, count in enumerate(shape):
        low, high = bounds[2 * v], bounds[2 * v + 1]
        if high < low or math.isinf(high - low):
            raise KrigingError(f"region: input {v} must end above where it begins, not go from {low!r} to {high!r}")
        axes.append(nodes(low, high, int(count)))
    return axes


def targets_of(axes: list[FloatArray]) -> FloatArray:
    """The targets of a grid as rows, the first input running fastest."""
    mesh = np.meshgrid(*reversed(axes), indexing="ij")
    return np.stack([coordinates.ravel() for coordinates in reversed(mesh)], axis=1)


def to_dataset(
    values: dict[str, Any], axes: list[FloatArray], input_names: list[str], attributes: dict[str, Any]
) -> xarray.Dataset:
    """A Dataset of variables over the grid; dimensions are the inputs reversed."""
    try:
        import xarray
    except ImportError as error:
        raise ImportError("grid needs the package xarray") from error
    dimensions = tuple(reversed(input_names))
    return xarray.Dataset(
        {name: (dimensions, grid) for name, grid in values.items()},
        coords=dict(zip(input_names, axes)),
        attrs=attributes,
    )
