"""A picture of the semivariogram."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np
from sklearn.utils.validation import check_is_fitted

from krige import _core
from krige._results import Semivariogram

if TYPE_CHECKING:
    from krige._estimator import KrigingRegressor


class SemivariogramDisplay:
    """The empirical semivariogram of one output and the model's curve.

    Made by `from_estimator`, like the displays of scikit-learn.

    Parameters
    ----------
    semivariogram : Semivariogram
        What is drawn.
    output_name : str, optional
        Of the output, for the axis.

    Attributes
    ----------
    ax_ : matplotlib.axes.Axes
        Where it was drawn.
    figure_ : matplotlib.figure.Figure
        The figure of it.
    points_ : matplotlib.collections.PathCollection
        The bins; larger marks hold more pairs.
    line_ : matplotlib.lines.Line2D
        The model's curve.
    """

    def __init__(self, semivariogram: Semivariogram, *, output_name: str | None = None) -> None:
        self.semivariogram = semivariogram
        self.output_name = output_name

    @classmethod
    def from_estimator(
        cls,
        estimator: KrigingRegressor,
        *,
        n_lags: int = 15,
        max_lag: Any = None,
        output: int | str = 0,
        ax: Any = None,
        **kwargs: Any,
    ) -> SemivariogramDisplay:
        """Draws the semivariogram of a fitted estimator.

        Parameters
        ----------
        estimator : KrigingRegressor
            Fitted.
        n_lags, max_lag, output
            As for ``KrigingRegressor.semivariogram``.
        ax : matplotlib.axes.Axes, optional
            Where to draw; None: in a new figure.
        **kwargs
            For the marks of the bins, as ``Axes.scatter`` takes them.

        Returns
        -------
        SemivariogramDisplay
            With the picture.
        """
        check_is_fitted(estimator)
        table = estimator.semivariogram(n_lags=n_lags, max_lag=max_lag, output=output)
        name = estimator.output_names_[estimator._find_output(output)]
        return cls(table, output_name=name).plot(ax=ax, **kwargs)

    def plot(self, ax: Any = None, **kwargs: Any) -> SemivariogramDisplay:
        """Draws it.

        Parameters
        ----------
        ax : matplotlib.axes.Axes, optional
            Where to draw; None: in a new figure.
        **kwargs
            For the marks of the bins, as ``Axes.scatter`` takes them.

        Returns
        -------
        SemivariogramDisplay
            This display.
        """
        try:
            import matplotlib.pyplot as plt
        except ImportError as error:
            raise ImportError("SemivariogramDisplay needs the package matplotlib") from error
        if ax is None:
            _, ax = plt.subplots()
        table = self.semivariogram
        sizes = 15.0 + 60.0 * table.n_pairs / table.n_pairs.max()
        self.points_ = ax.scatter(table.mean_lag, table.semivariance, **{"s": sizes, "label": "pairs", **kwargs})
        lags = np.linspace(0.0, table.upper_lag.max(), 201)
        curve = _core.spherical(lags, table.sill, table.nugget, table.range)
        (self.line_,) = ax.plot(lags[1:], curve[1:], color="C1", label="model")
        ax.axhline(table.sill, color="0.6", linewidth=0.8, linestyle="--", zorder=0)
        ax.set_xlim(left=0.0)
        ax.set_ylim(bottom=0.0)
        ax.set_xlabel("lag" if table.in_units else "lag (normalised)")
        name = "" if self.output_name is None else f" of {self.output_name}"
        ax.set_ylabel(f"semivariance{name}")
        ax.legend(loc="lower right")
        self.ax_ = ax
        self.figure_ = ax.figure
        return self
