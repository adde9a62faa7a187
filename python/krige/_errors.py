"""The package's errors, and the library's messages in words that name the parameter to change."""

from __future__ import annotations

import contextlib
from collections.abc import Iterator
from typing import TYPE_CHECKING

import numpy as np

from krige import _core

if TYPE_CHECKING:
    from krige._parameters import Parameters
    from krige._types import Array


class KrigingError(ValueError):
    """Samples, targets or parameters that no model can be made of or asked for."""


class SingularSystemError(KrigingError, np.linalg.LinAlgError):
    """The samples do not determine the estimates, or points lie too near to each other to be told apart."""


_UNDETERMINED = ("Singular matrix", "Ill-conditioned matrix", "Value overflow")


class Samples:
    """What the texts of errors are about: samples, their names and the parameters of their model."""

    def __init__(
        self, X: Array, y: Array, include: Array | None, parameters: Parameters, names: list[str] | None = None
    ) -> None:
        self.X = X
        self.y = y
        self.include = include
        self.parameters = parameters
        self.names = names or [f"x{i}" for i in range(X.shape[1])]


@contextlib.contextmanager
def explained(samples: Samples) -> Iterator[None]:
    """Turns what the library throws into the package's errors."""
    try:
        yield
    except _core.LibraryError as error:
        raise explain(str(error), samples) from None
    except _core.MemoryShortage as error:
        raise MemoryError(str(error)) from None
    except KrigingError:
        raise
    except ValueError as error:
        raise KrigingError(str(error)) from None


def explain(message: str, samples: Samples) -> KrigingError:
    """The error for a message of the library."""
    if message in _UNDETERMINED:
        return SingularSystemError(f"{message}: {_why_undetermined(message, samples)}")
    return KrigingError(f"{message.rstrip('.')}: {_why(message, samples)}")


def _why(message: str, samples: Samples) -> str:
    n_samples, n_inputs = samples.X.shape
    order = samples.parameters.drift_order
    n_neighbors = samples.parameters.n_neighbors
    are_local = n_neighbors is not None and n_neighbors < n_samples
    given = f"n_neighbors={n_neighbors}" if are_local else f"{n_samples} samples"
    if message.startswith("Not enough source points for kriging"):
        more = "raise n_neighbors" if are_local else "add samples or use fewer inputs"
        return f"{given} are too few for {n_inputs} inputs, at least {n_inputs + 1} are needed; {more}"
    if message.startswith("Not enough source points to calculate drift"):
        more = "raise n_neighbors" if are_local else "add samples"
        return f"{given} are too few for drift_order={order} with {n_inputs} inputs; lower drift_order or {more}"
    if message.startswith("Value range too small"):
        ranges = np.ptp(samples.X, axis=0)
        flat = [name for name, width in zip(samples.names, ranges) if not width > 1e-150]
        which = f"the input {flat[0]!r} has one value in all samples" if flat else "an input does not vary"
        return f"{which}; leave it out, or set scale='raw' or a positive factor for it"
    if message.startswith("Scaling factor"):
        return "the factors of scale must lie between 1e-150 and 1e150 in magnitude; change scale"
    return "change the parameters or the samples"


def _why_undetermined(message: str, samples: Samples) -> str:
    parameters = samples.parameters
    pair = _core.find_nearest_pair(samples.X, samples.y, parameters.to_settings(), samples.include, True)
    if pair is not None:
        first, second = pair["first"], pair["second"]
        if pair["are_repeated"]:
            return (
                f"samples share their place with another, for instance samples {first} and {second}; set "
                "duplicates='merge' to average them, or nugget=0.1 to take them as repeated measurements"
            )
        return (
            f"samples lie nearer to another than a model can tell apart, for instance samples {first} and {second}; "
            "set duplicates='merge' with a larger duplicate_tolerance to average them, nugget=0.1 to take them as "
            "repeated measurements, or duplicates='keep' to go on all the same"
        )
    if parameters.drift_order > 0:
        return (
            "the samples may lie on a line or on too few different places for "
            f"drift_order={parameters.drift_order}; lower drift_order"
        )
    return "some samples lie too close together; set nugget=0.01, or a larger duplicate_tolerance"
