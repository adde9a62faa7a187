"""What differs between the releases of scikit-learn from 1.2 on: 1.6 gave several of its ways new names."""

from __future__ import annotations

from typing import Any

import sklearn

try:
    from sklearn.utils.validation import validate_data as _validate_data
except ImportError:  # before 1.6
    _validate_data = None

_HAS_ALL_FINITE = tuple(int(part) for part in sklearn.__version__.split(".")[:2]) >= (1, 6)
_ALL_FINITE = "ensure_all_finite" if _HAS_ALL_FINITE else "force_all_finite"


def finite_option(allows_nan: bool) -> dict[str, Any]:
    """The keyword of check_array and its kin that says whether NaN is let through."""
    return {_ALL_FINITE: "allow-nan" if allows_nan else True}


def validate_data(estimator: Any, X: Any, allows_nan: bool, **options: Any) -> Any:
    """Checks X as scikit-learn does, together with the number and names of its columns."""
    options.update(finite_option(allows_nan))
    if _validate_data is not None:
        return _validate_data(estimator, X, **options)
    return estimator._validate_data(X, **options)


class Tags:
    """Tells scikit-learn, in the way of every release, whether an estimator takes NaN and several outputs."""

    missing: str

    def _more_tags(self) -> dict[str, Any]:
        return {"allow_nan": self._takes_nan(), "multioutput": True}

    def __sklearn_tags__(self) -> Any:
        tags = super().__sklearn_tags__()  # type: ignore[misc]
        tags.input_tags.allow_nan = self._takes_nan()
        tags.target_tags.multi_output = True
        return tags

    def _takes_nan(self) -> bool:
        return isinstance(self.missing, str) and self.missing == "skip"
