"""The program's answers, to the bit."""

import numpy as np
import pytest
from conftest import assert_same_bits, read
from sklearn.model_selection import cross_val_predict

from krige import KrigingRegressor, KrigingRegressorCV
from krige.model_selection import SeededKFold

# Options of the program, and the parameters that mean the same.
SETTINGS = {
    "defaults": ((), {}),
    "exact": (("--exact",), {"exact": True}),
    "drift": (
        ("--drift", 1, "--nugget", 0.1, "--range", 0.4),
        {"drift_order": 1, "nugget": 0.1, "range_fraction": 0.4},
    ),
    "local": (("--nearest", 12), {"n_neighbors": 12}),
    "local exact": (("--nearest", 12, "--exact"), {"n_neighbors": 12, "exact": True}),
    "log": (("--transform", "log", "--clamp", "0:900"), {"transform": "log", "clamp": (0, 900)}),
    "sample sill": (("--sill", "sample", "--nugget", 0.3), {"sill": "sample", "nugget": 0.3}),
}
PLANE_SETTINGS = {
    "raw": (("--scale", "1,1", "--range", "400u"), {"scale": "raw", "range_fraction": "400u"}),
    "factors": (("--scale", "-1,-2.5"), {"scale": [-1, -2.5]}),
    "anisotropy": (("--anisotropy", "2,30"), {"anisotropy": (2, 30)}),
}


def columns(table, names):
    values = table[names].to_numpy()
    return values[:, 0] if len(names) == 1 else values


def positive(data):
    return (data.samples[data.outputs] > 0).all().all()


@pytest.mark.parametrize("case, n_jobs", [*((case, 1) for case in SETTINGS), ("exact", 2), ("drift", 2), ("local", 2)])
def test_estimates_variances_and_standard_errors(krige, data, case, n_jobs):
    options, parameters = SETTINGS[case]
    if case == "log" and not positive(data):
        options, parameters = ("--clamp", "0:"), {"clamp": (0, None)}
    table = krige("predict", data, "--at", data.truth_path, "--variance", "--interval", 90, *options)
    model = KrigingRegressor(n_jobs=n_jobs, **parameters).fit(data.X, data.y)
    targets = data.truth[data.inputs]

    mean, std = model.predict(targets, return_std=True)
    assert_same_bits(mean, columns(table, data.outputs))
    assert_same_bits(std, columns(table, [f"{name}_stderr" for name in data.outputs]))
    assert_same_bits(model.predict(targets, return_variance=True)[1], table["variance"])
    lower, upper = model.predict_interval(targets, coverage=0.9)
    assert_same_bits(lower, columns(table, [f"{name}_lo" for name in data.outputs]))
    assert_same_bits(upper, columns(table, [f"{name}_hi" for name in data.outputs]))


@pytest.mark.parametrize("case", PLANE_SETTINGS)
def test_forms_of_the_inputs(krige, volcano, case):
    options, parameters = PLANE_SETTINGS[case]
    table = krige("predict", volcano, "--at", volcano.truth_path, "--variance", *options)
    model = KrigingRegressor(**parameters).fit(volcano.X, volcano.y)

    mean, std = model.predict(volcano.truth[volcano.inputs], return_std=True)

    assert_same_bits(mean, table["elevation"])
    assert_same_bits(std, table["elevation_stderr"])


def test_grids(krige, data):
    shape = (7, 5, 3)[: len(data.inputs)]
    table = krige("predict", data, "--grid", "x".join(map(str, shape)), "--variance")

    grid = KrigingRegressor().fit(data.X, data.y).grid(shape, return_std=True)

    assert list(grid[data.outputs[0]].dims) == data.inputs[::-1]
    for name in [*data.outputs, *(f"{name}_stderr" for name in data.outputs), "variance"]:
        assert_same_bits(grid[name].values.ravel(), table[name])
    broadcast = np.meshgrid(*(grid[name].values for name in grid[data.outputs[0]].dims), indexing="ij")
    for name, coordinates in zip(data.inputs[::-1], broadcast):
        assert_same_bits(coordinates.ravel(), table[name])


@pytest.mark.parametrize("case", ["defaults", "drift", "local"])
def test_leave_one_out(krige, data, case):
    options, parameters = SETTINGS[case]
    table = krige("validate", data, "--leave-one-out", *options)

    left = KrigingRegressor(**parameters).fit(data.X, data.y).leave_one_out()

    assert_same_bits(left.estimates, columns(table, [f"{name}_estimate" for name in data.outputs]))
    assert_same_bits(left.std, columns(table, [f"{name}_stderr" for name in data.outputs]))
    assert_same_bits(left.truths, columns(table, data.outputs))


@pytest.mark.parametrize("case", ["defaults", "drift", "local"])
def test_cross_validation(krige, data, case):
    options, parameters = SETTINGS[case]
    table = krige("validate", data, "--folds", 5, "--seed", 3, *options)

    estimates = cross_val_predict(KrigingRegressor(**parameters), data.X, data.y, cv=SeededKFold(5, seed=3))

    assert_same_bits(estimates, columns(table, [f"{name}_estimate" for name in data.outputs]))


@pytest.mark.parametrize("objective", ["likelihood", "crps"])
def test_tuning(krige, data, tmp_path, objective):
    settings, trials = tmp_path / "best.toml", tmp_path / "trials.csv"
    options = ("--trials", trials, "--objective", objective, "--max-trials", 12, "--held-out", 0.2)
    krige("tune", data, "-o", settings, *options)
    table = read(trials)

    search = KrigingRegressorCV(objective=objective, max_trials=12, held_out=0.2).fit(data.X, data.y)

    assert len(search.cv_results_["params"]) == len(table)
    assert_same_bits([p["range_fraction"] for p in search.cv_results_["params"]], table["range"])
    assert_same_bits([p["nugget"] for p in search.cv_results_["params"]], table["nugget"])
    assert [p["drift_order"] for p in search.cv_results_["params"]] == table["drift"].tolist()
    winner = KrigingRegressor.from_config(settings).fit(data.X, data.y)
    targets = data.truth[data.inputs]
    for actual, expected in zip(search.predict(targets, return_std=True), winner.predict(targets, return_std=True)):
        assert_same_bits(actual, expected)


def test_tuning_of_an_anisotropy(krige, volcano, tmp_path):
    settings = tmp_path / "best.toml"
    krige("tune", volcano, "-o", settings, "--max-trials", 40, "--anisotropy", "search", "--fix", "drift,nearest")

    search = KrigingRegressorCV(max_trials=40, search_anisotropy=True, fix=("drift_order", "n_neighbors"))
    search.fit(volcano.X, volcano.y)

    winner = KrigingRegressor.from_config(settings)
    assert search.best_params_["anisotropy"] == winner.anisotropy
    assert search.best_params_["range_fraction"] == winner.range_fraction


def test_tuning_keeps_the_anisotropy_that_is_given(volcano):
    start = KrigingRegressor(anisotropy=(2.0, 30.0))

    search = KrigingRegressorCV(start, max_trials=3).fit(volcano.X, volcano.y)

    assert search.best_estimator_.anisotropy == (2.0, 30.0)
    assert search.best_estimator_.scale is None


def test_settings_files_are_read_by_the_program(krige, volcano, tmp_path):
    model = KrigingRegressor(drift_order=2, range_fraction=1 / 3, nugget=0.1 + 0.2, n_neighbors=20, sill=12.5)
    model.to_config(tmp_path / "model.toml")
    table = krige("predict", volcano, "--at", volcano.truth_path, "--variance", "--config", tmp_path / "model.toml")

    mean, std = model.fit(volcano.X, volcano.y).predict(volcano.truth[volcano.inputs], return_std=True)

    assert_same_bits(mean, table["elevation"])
    assert_same_bits(std, table["elevation_stderr"])
