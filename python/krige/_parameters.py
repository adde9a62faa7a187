"""The parameters of a model: checked before anything is computed, and as the settings that the library takes."""

from __future__ import annotations

import dataclasses
import math
import numbers
from typing import Any

import numpy as np

from krige import _core
from krige._errors import KrigingError

_MAX_DRIFT_ORDER = 4
_LARGEST_RANGE_FRACTION = 10.0  # a line across the box long before: a larger one is meant in the inputs' units
_MOST_THREADS = 4096  # as of the program: more is a slip of the finger
_INFINITY = math.inf


@dataclasses.dataclass(frozen=True)
class Parameters:
    """Checked parameters; those that may be given in several forms have one."""

    drift_order: int = 0
    range_fraction: float = 1.0
    range_in_units: float | None = None
    nugget: float = 0.0
    n_neighbors: int | None = None
    scale_factors: tuple[float, ...] = ()
    duplicates: str = "merge"
    duplicate_tolerance: float = 0.0
    anisotropy: tuple[float, float] | None = None
    log: bool = False
    clamp: tuple[float, float] = (-_INFINITY, _INFINITY)
    skips_missing: bool = False
    sills: tuple[str | float, ...] = ("auto",)
    exact: bool = False
    n_threads: int = 1

    def to_settings(self) -> _core.Settings:
        return _core.Settings(
            duplicate_tolerance=self.duplicate_tolerance if self.duplicates == "merge" else -1.0,
            scale_factors=list(self.scale_factors),
            drift_order=self.drift_order,
            range_fraction=self.range_fraction,
            range_in_units=self.range_in_units,
            nugget=self.nugget,
            n_neighbors=self.n_neighbors or 0,
            sills=list(self.sills),
            anisotropy=self.anisotropy,
            log=self.log,
            clamp=self.clamp,
        )

    @property
    def tells_apart(self) -> bool:
        return self.duplicates != "keep"


def check_parameters(given: dict[str, Any], n_inputs: int, n_outputs: int) -> Parameters:
    """Checks parameters under their public names for samples of so many inputs and outputs.

    Raises
    ------
    KrigingError
        That names the parameter, its value and what it may be.
    """
    range_fraction, range_in_units = _check_range(given["range_fraction"])
    anisotropy = _check_anisotropy(given["anisotropy"], n_inputs)
    scale_factors = _check_scale(given["scale"], n_inputs)
    if anisotropy is not None:
        if given["scale"] is not None:
            raise KrigingError("anisotropy takes the place of scale; leave one of them out")
        scale_factors = (1.0, 1.0)
    if range_in_units is not None and not _has_one_scale(scale_factors, n_inputs):
        raise KrigingError(
            f"range_fraction={given['range_fraction']!r} needs inputs of one scale; set scale='raw' (by default each "
            "input is stretched to the same width)"
        )
    return Parameters(
        drift_order=_check_count("drift_order", given["drift_order"], 0, _MAX_DRIFT_ORDER),
        range_fraction=range_fraction,
        range_in_units=range_in_units,
        nugget=_check_number("nugget", given["nugget"], 0.0, 1.0),
        n_neighbors=(
            None if given["n_neighbors"] is None else _check_count("n_neighbors", given["n_neighbors"], 1, 2**31 - 1)
        ),
        scale_factors=scale_factors,
        duplicates=_check_word("duplicates", given["duplicates"], ("merge", "error", "keep")),
        duplicate_tolerance=_check_number("duplicate_tolerance", given["duplicate_tolerance"], 0.0, _INFINITY),
        anisotropy=anisotropy,
        log=given["transform"] is not None and _check_word("transform", given["transform"], ("log",)) == "log",
        clamp=_check_clamp(given["clamp"]),
        skips_missing=_check_word("missing", given["missing"], ("error", "skip")) == "skip",
        sills=_check_sill(given["sill"], n_outputs),
        exact=_check_flag("exact", given["exact"]),
        n_threads=_check_jobs(given["n_jobs"]),
    )


def show(value: object) -> str:
    """A value for a message, however long it is."""
    text = repr(value)
    return text if len(text) <= 60 else text[:57] + "..."


def _is_number(value: object) -> bool:
    return isinstance(value, numbers.Real) and not isinstance(value, (bool, np.bool_))


def _check_number(name: str, value: Any, low: float, high: float) -> float:
    if not _is_number(value) or not math.isfinite(value) or not low <= value <= high:
        bounds = f"at least {low:g}" if math.isinf(high) else f"between {low:g} and {high:g}"
        raise KrigingError(f"{name} must be a number {bounds}, not {show(value)}")
    return float(value)


def _check_count(name: str, value: Any, low: int, high: int) -> int:
    is_whole = isinstance(value, numbers.Integral) and not isinstance(value, (bool, np.bool_))
    if not is_whole or not low <= value <= high:
        bounds = f"of at least {low}" if high == 2**31 - 1 else f"from {low} to {high}"
        raise KrigingError(f"{name} must be a whole number {bounds}, not {show(value)}")
    return int(value)


def _check_word(name: str, value: Any, words: tuple[str, ...]) -> str:
    if not isinstance(value, str) or value not in words:
        raise KrigingError(f"{name} must be {' or '.join(map(repr, words))}, not {show(value)}")
    return value


def _check_flag(name: str, value: Any) -> bool:
    if not isinstance(value, (bool, np.bool_)):
        raise KrigingError(f"{name} must be True or False, not {show(value)}")
    return bool(value)


def _check_range(value: Any) -> tuple[float, float | None]:
    form = "a fraction above 0, to 10, or a text such as '900u' for a range in the units of the inputs"
    if isinstance(value, str):
        try:
            units = float(value[:-1]) if value.endswith("u") else math.nan
        except ValueError:
            units = math.nan
        if not (units > 0.0 and math.isfinite(units)):
            raise KrigingError(f"range_fraction must be {form}, not {show(value)}")
        return 1.0, units
    if not _is_number(value) or not 0.0 < value <= _LARGEST_RANGE_FRACTION:
        raise KrigingError(f"range_fraction must be {form}, not {show(value)}")
    return float(value), None


def _sequence_of(name: str, value: Any, form: str) -> list[Any]:
    if isinstance(value, (str, bytes)) or not hasattr(value, "__len__") or not hasattr(value, "__getitem__"):
        raise KrigingError(f"{name} must be {form}, not {show(value)}")
    return list(value)


def _check_scale(value: Any, n_inputs: int) -> tuple[float, ...]:
    if value is None:
        return ()
    if isinstance(value, str) and value == "raw":
        return (1.0,) * n_inputs
    factors = _sequence_of("scale", value, "None, 'raw' or one factor per input")
    if len(factors) != n_inputs:
        raise KrigingError(f"scale has {len(factors)} factors for {n_inputs} inputs; give one each")
    for factor in factors:
        if not _is_number(factor) or not math.isfinite(factor):
            raise KrigingError(f"scale must hold finite numbers, not {show(factor)}")
    return tuple(float(factor) for factor in factors)


def _has_one_scale(factors: tuple[float, ...], n_inputs: int) -> bool:
    return n_inputs == 1 or (len(factors) > 0 and factors[0] > 0.0 and all(f == factors[0] for f in factors))


def _check_anisotropy(value: Any, n_inputs: int) -> tuple[float, float] | None:
    if value is None:
        return None
    pair = _sequence_of("anisotropy", value, "None or a ratio and an angle in degrees")
    if len(pair) != 2:
        raise KrigingError(f"anisotropy must be None or a ratio and an angle in degrees, not {show(value)}")
    if n_inputs != 2:
        raise KrigingError(f"anisotropy has an angle with two inputs only, but there are {n_inputs}")
    ratio = _check_number("the ratio of anisotropy", pair[0], 1.0, _INFINITY)
    return ratio, _check_number("the angle of anisotropy", pair[1], -1e15, 1e15)


def _check_clamp(value: Any) -> tuple[float, float]:
    if value is None:
        return -_INFINITY, _INFINITY
    limits = _sequence_of("clamp", value, "None or two limits, of which one may be None")
    if len(limits) != 2:
        raise KrigingError(f"clamp must be None or two limits, of which one may be None, not {show(value)}")
    for limit in limits:
        if limit is not None and (not _is_number(limit) or math.isnan(limit)):
            raise KrigingError(f"clamp must hold numbers or None, not {show(limit)}")
    low = -_INFINITY if limits[0] is None else float(limits[0])
    high = _INFINITY if limits[1] is None else float(limits[1])
    if low > high:
        raise KrigingError(f"clamp ends below where it begins: {show(value)}")
    return low, high


def _check_sill(value: Any, n_outputs: int) -> tuple[str | float, ...]:
    form = "'auto', 'sample' or a number above 0, or one of these per output"
    is_single = isinstance(value, str) or _is_number(value)
    choices = [value] if is_single else _sequence_of("sill", value, form)
    if len(choices) != n_outputs and not (is_single and isinstance(value, str)):
        raise KrigingError(f"sill has {len(choices)} values for {n_outputs} outputs; give one each")
    for choice in choices:
        is_word = isinstance(choice, str) and choice in ("auto", "sample")
        if not is_word and not (_is_number(choice) and 0.0 < choice < _INFINITY):
            raise KrigingError(f"sill must be {form}, not {show(choice)}")
    return tuple(choice if isinstance(choice, str) else float(choice) for choice in choices)


def _check_jobs(value: Any) -> int:
    if value is not None and (not isinstance(value, numbers.Integral) or isinstance(value, bool) or value == 0):
        raise KrigingError(f"n_jobs must be None or a whole number other than 0, not {show(value)}")
    import joblib

    return int(min(joblib.effective_n_jobs(int(value) if value is not None else None), _MOST_THREADS))
