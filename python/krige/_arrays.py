"""Arrays as callers give them: masked, sparse, lazy."""

from __future__ import annotations

from typing import Any

import numpy as np

from krige._errors import KrigingError
from krige._types import Array, FloatArray


def unmasked(values: Any) -> Any:
    """A masked array as numbers, with nan where something is masked; anything else as it is."""
    if not isinstance(values, np.ma.MaskedArray):
        return values
    masked: Any = values
    if not np.any(masked.mask):
        return np.asarray(values)
    try:
        return masked.astype(np.float64).filled(np.nan)
    except (TypeError, ValueError):
        raise KrigingError("a masked array must hold numbers") from None


def is_dask(values: Any) -> bool:
    """Whether values are those of dask, which is not imported for the question."""
    return type(values).__module__.startswith("dask.") and hasattr(values, "dask")


def read_only(values: Array) -> FloatArray:
    """A copy that is nobody else's, in rows, that cannot be written to."""
    copy = np.array(values, dtype=np.float64, order="C", copy=True)
    copy.setflags(write=False)
    return copy


def names_of_outputs(y: Any) -> list[str] | None:
    """The names that a Series or a DataFrame brings along."""
    if hasattr(y, "columns"):
        return [str(name) for name in y.columns]
    if hasattr(y, "name") and isinstance(y.name, str):
        return [y.name]
    return None
