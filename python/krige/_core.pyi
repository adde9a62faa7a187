from typing import Any

from numpy.typing import NDArray

__version__: str

class LibraryError(RuntimeError): ...
class MemoryShortage(MemoryError): ...

class Settings:
    def __init__(
        self,
        *,
        duplicate_tolerance: float = ...,
        scale_factors: list[float] = ...,
        drift_order: int = ...,
        range_fraction: float = ...,
        range_in_units: float | None = ...,
        nugget: float = ...,
        n_neighbors: int = ...,
        sills: list[Any] = ...,
        anisotropy: tuple[float, float] | None = ...,
        log: bool = ...,
        clamp: tuple[float, float] = ...,
    ) -> None: ...
    @property
    def duplicate_tolerance(self) -> float: ...
    @property
    def scale_factors(self) -> list[float]: ...
    @property
    def drift_order(self) -> int: ...
    @property
    def range_fraction(self) -> float: ...
    @property
    def range_in_units(self) -> float | None: ...
    @property
    def nugget(self) -> float: ...
    @property
    def n_neighbors(self) -> int: ...
    @property
    def sills(self) -> list[Any]: ...
    @property
    def anisotropy(self) -> tuple[float, float] | None: ...

class Model:
    def __init__(
        self,
        X: NDArray[Any],
        y: NDArray[Any],
        settings: Settings,
        include: NDArray[Any] | None = ...,
        *,
        n_threads: int = ...,
        exact: bool = ...,
        tell_apart: bool = ...,
    ) -> None: ...
    def estimate(
        self, X: NDArray[Any], out: NDArray[Any] | None = ..., variance_out: NDArray[Any] | None = ...
    ) -> NDArray[Any]: ...
    def predict(
        self,
        X: NDArray[Any],
        out: NDArray[Any],
        variance_out: NDArray[Any] | None = ...,
        std_out: NDArray[Any] | None = ...,
        lower_out: NDArray[Any] | None = ...,
        upper_out: NDArray[Any] | None = ...,
        coverage: float = ...,
    ) -> None: ...
    @property
    def report(self) -> dict[str, Any]: ...
    @property
    def sills(self) -> list[float]: ...
    @property
    def output_variances(self) -> list[float]: ...
    @property
    def ranges(self) -> list[float]: ...
    @property
    def n_points(self) -> int: ...
    @property
    def merged(self) -> list[list[int]]: ...

def assign_folds(X: NDArray[Any], duplicate_tolerance: float, n_folds: int, seed: int) -> NDArray[Any]: ...
def find_nearest_pair(
    X: NDArray[Any], y: NDArray[Any], settings: Settings, include: NDArray[Any] | None, is_unsolvable: bool
) -> dict[str, Any] | None: ...
def leave_one_out(model: Model) -> dict[str, Any]: ...
def semivariogram(model: Model, n_lags: int, max_lag: float | None, in_units: bool, output: int) -> dict[str, Any]: ...
def spherical(lags: NDArray[Any], sill: float, nugget: float, range: float) -> NDArray[Any]: ...
def tune(
    X: NDArray[Any],
    y: NDArray[Any],
    settings: Settings,
    include: NDArray[Any] | None = ...,
    *,
    kept: set[str],
    least_nugget: float,
    objective: str,
    n_folds: int | None,
    n_repeats: int,
    seed: int,
    max_trials: int,
    held_out: float,
    n_threads: int,
    exact: bool,
    tell_apart: bool,
    search_anisotropy: bool = ...,
) -> dict[str, Any]: ...
