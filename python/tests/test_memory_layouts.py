"""Where targets and results lie in memory changes no bit."""

import numpy as np
import pandas as pd
import pytest
from conftest import assert_same_bits

from krige import KrigingRegressor

LAYOUTS = {
    "rows": lambda X: np.ascontiguousarray(X),
    "columns": lambda X: np.asfortranarray(X),
    "every other row": lambda X: np.repeat(X, 2, axis=0)[::2],
    "backwards": lambda X: np.ascontiguousarray(X[::-1])[::-1],
    "columns of a wider table": lambda X: np.hstack([X[:, :1], np.full_like(X, np.nan), X[:, 1:]])[:, [0, -1]],
    "view of a wider table": lambda X: np.hstack([X, np.full_like(X, np.nan)])[:, :2],
    "big endian": lambda X: X.astype(">f8"),
    "read-only": lambda X: np.frombuffer(X.tobytes()).reshape(X.shape),
    "list": lambda X: X.tolist(),
    "table": lambda X: pd.DataFrame(X),
    "wider floats": lambda X: X.astype(np.longdouble),
    "records": lambda X: _from_records(X),
}


def _from_records(X):
    records = np.zeros(len(X), dtype=[("flag", "i1"), ("place", "f8", (2,))])
    records["place"] = X
    return records["place"]


@pytest.mark.parametrize("n_neighbors", [None, 8])
@pytest.mark.parametrize("layout", LAYOUTS)
def test_of_targets_and_samples(samples, layout, n_neighbors):
    X, y = samples
    targets = X + 0.01
    model = KrigingRegressor(n_neighbors=n_neighbors).fit(X, y)
    expected = model.predict(targets, return_std=True)

    for actual, wanted in zip(model.predict(LAYOUTS[layout](targets), return_std=True), expected):
        assert_same_bits(actual, wanted)
    assert_same_bits(KrigingRegressor(n_neighbors=n_neighbors).fit(LAYOUTS[layout](X), y).predict(targets), expected[0])


def test_single_precision_is_widened_once(samples):
    model = KrigingRegressor().fit(*samples)
    targets = samples[0].astype(np.float32)

    assert_same_bits(model.predict(targets), model.predict(targets.astype(np.float64)))
    assert_same_bits(model.model_.predict(targets), model.predict(targets))


def test_of_results(samples):
    X, y = samples
    model = KrigingRegressor().fit(X, np.stack([y, -y], axis=1)).model_
    targets = X + 0.01
    expected = model.predict(targets)
    for out in (np.empty((40, 2)), np.empty((40, 2), order="F"), np.empty((80, 4))[::2, ::2], np.empty((40, 2))[::-1]):
        variances = np.empty(120)[::3]
        assert model.predict(targets, out=out, variance_out=variances) is out
        assert_same_bits(np.ascontiguousarray(out), expected)
        assert np.isfinite(variances).all()


def test_results_may_take_the_place_of_targets(samples):
    X, y = samples
    model = KrigingRegressor().fit(X, np.stack([y, -y], axis=1)).model_
    targets = X + 0.01
    expected = model.predict(targets)

    assert_same_bits(model.predict(targets, out=targets), expected)


def test_of_a_memory_map(samples, tmp_path):
    targets = np.memmap(tmp_path / "targets", dtype=np.float64, mode="w+", shape=(30_000, 2))
    targets[:] = np.random.RandomState(0).uniform(size=targets.shape)
    targets.flush()
    out = np.memmap(tmp_path / "out", dtype=np.float64, mode="w+", shape=(30_000,))
    model = KrigingRegressor(n_neighbors=8).fit(*samples)

    model.model_.predict(np.memmap(tmp_path / "targets", dtype=np.float64, mode="r", shape=(30_000, 2)), out=out)

    assert_same_bits(np.asarray(out), model.predict(np.array(targets)))


def test_nan_gives_nan_in_the_thin_model(samples):
    model = KrigingRegressor().fit(*samples).model_

    assert np.isnan(model.predict(np.array([[0.1, np.nan], [np.inf, 0.1], [0.1, 0.1]]))).tolist() == [True, True, False]
