"""What the estimator promises beyond the conventions of scikit-learn."""

import numpy as np
import pandas as pd
import pytest
from conftest import assert_same_bits

from krige import KrigingError, KrigingRegressor, SingularSystemError


def test_several_outputs_have_the_bits_of_each_alone(samples):
    X, y = samples
    both = KrigingRegressor(drift_order=1).fit(X, np.stack([y, 3.0 - y**2], axis=1))
    targets = X[:7] + 0.01

    mean, std = both.predict(targets, return_std=True)

    for w, values in enumerate((y, 3.0 - y**2)):
        alone = KrigingRegressor(drift_order=1).fit(X, values).predict(targets, return_std=True)
        assert_same_bits(mean[:, w], alone[0])
        assert_same_bits(std[:, w], alone[1])


def test_samples_that_are_not_included_count_for_range_and_scales_only(samples):
    X, y = samples
    far = np.vstack([X, [[50.0, 70.0]]])
    flags = np.array([True] * len(X) + [False])

    model = KrigingRegressor(range_fraction=0.5).fit(far, np.append(y, 1e9), include=flags)

    assert model.n_points_ == len(X)
    assert_same_bits(model.ranges_, KrigingRegressor(range_fraction=0.5).fit(far, np.append(y, 0.0)).ranges_)
    assert np.abs(model.predict(X[:3]) - y[:3]).max() < 1e-9


def test_repeated_samples_are_merged_unless_asked_otherwise(samples):
    X, y = samples
    repeated = np.vstack([X, X[:5]]), np.append(y, y[:5] + 1.0)

    model = KrigingRegressor().fit(*repeated)

    assert model.n_points_ == len(X)
    assert sorted(model.merged_) == [[i, len(X) + i] for i in range(5)]
    assert np.abs(model.predict(X[:1]) - (y[0] + 0.5)).max() < 1e-9
    with pytest.raises(SingularSystemError, match="samples 0 and 40; set duplicates='merge'"):
        KrigingRegressor(duplicates="error").fit(*repeated)
    assert KrigingRegressor(duplicates="error", nugget=0.1).fit(*repeated).n_points_ == len(X) + 5


def test_points_too_near_to_be_told_apart_are_an_error_that_says_how_to_merge_them(samples):
    X, y = samples
    near = np.vstack([X, X[:1] + 1e-16]), np.append(y, y[0] + 1.0)
    assert (near[0][-1] != near[0][0]).any() or np.allclose(near[0][-1], near[0][0])
    near[0][-1] = np.nextafter(X[0], 2.0)

    with pytest.raises(SingularSystemError, match="Ill-conditioned matrix: .*duplicate_tolerance"):
        KrigingRegressor().fit(*near)
    with pytest.raises(np.linalg.LinAlgError):
        KrigingRegressor().fit(*near)
    assert KrigingRegressor(duplicate_tolerance=1e-9).fit(*near).n_points_ == len(X)


def test_missing_values_are_skipped_where_asked(samples):
    X, y = samples
    X, y = X.copy(), y.copy()
    X[3, 1], y[8] = np.nan, np.nan

    model = KrigingRegressor(missing="skip").fit(X, y)
    kept = np.delete(np.arange(40), [3, 8])

    assert model.n_missing_ == 2
    assert_same_bits(model.X_train_, X[kept])
    expected = KrigingRegressor().fit(X[kept], y[kept]).predict(X[kept] + 0.01)
    targets = np.vstack([[[np.nan, 0.5]], X[kept] + 0.01])
    mean, std = model.predict(targets, return_std=True)
    assert np.isnan(mean[0]) and np.isnan(std[0])
    assert_same_bits(mean[1:], expected)
    with pytest.raises(ValueError, match="infinity"):
        model.predict([[np.inf, 0.5]])
    with pytest.raises(ValueError, match="NaN"):
        KrigingRegressor().fit(X, y)


def test_masked_values_are_missing(samples):
    X, y = samples
    masked = np.ma.masked_array(X, mask=np.zeros(X.shape, dtype=bool))
    masked[3, 1] = np.ma.masked

    assert KrigingRegressor(missing="skip").fit(masked, y).n_missing_ == 1
    with pytest.raises(ValueError, match="NaN"):
        KrigingRegressor().fit(masked, y)


def test_intervals_are_the_estimate_with_standard_errors_on_both_sides(samples):
    model = KrigingRegressor(nugget=0.2).fit(*samples)
    targets = samples[0] + 0.01

    mean, std = model.predict(targets, return_std=True)
    lower, upper = model.predict_interval(targets, coverage=0.95)

    np.testing.assert_allclose(upper - mean, 1.959963984540054 * std, rtol=1e-12)
    np.testing.assert_allclose(mean - lower, 1.959963984540054 * std, rtol=1e-12)
    for coverage in (0.0, 1.0, "0.9", np.nan):
        with pytest.raises(KrigingError, match="coverage"):
            model.predict_interval(targets, coverage=coverage)


def test_the_callers_arrays_are_never_looked_at_again(samples):
    X, y = samples[0].copy(), samples[1].copy()
    model = KrigingRegressor(n_neighbors=8).fit(X, y)
    targets = X + 0.01
    expected = model.predict(targets)

    X[:], y[:] = 0.0, np.nan

    assert_same_bits(model.predict(targets), expected)
    with pytest.raises(ValueError, match="read-only"):
        model.X_train_[0] = 0.0


def test_a_grid_carries_names_and_engine(samples):
    X, y = samples
    table = pd.DataFrame(X, columns=["east", "north"])

    grid = KrigingRegressor().fit(table, pd.Series(y, name="height")).grid((3, 2), region=(0, 1, 0, 2), return_std=True)

    assert grid["height"].dims == ("north", "east")
    assert grid["east"].values.tolist() == [0.0, 0.5, 1.0]
    assert set(grid.data_vars) == {"height", "height_stderr", "variance"}
    assert grid.attrs["engine"] == "covariance form"


@pytest.mark.parametrize(
    "shape, region",
    [((3,), None), (3, None), ((3, 0), None), ((3, 2.5), None), ((3, 2), (0, 1)), ((3, 2), (1, 0, 0, 1))],
)
def test_what_is_no_grid_is_refused(samples, shape, region):
    model = KrigingRegressor().fit(*samples)

    with pytest.raises(KrigingError, match="shape|region"):
        model.grid(shape, region=region)


def test_engines_say_what_they_are(samples):
    assert KrigingRegressor().fit(*samples).engine_ == "covariance form"
    assert 0.0 < KrigingRegressor().fit(*samples).error_bound_ < 1e-9
    assert KrigingRegressor(exact=True).fit(*samples).engine_ == "exact"
    assert KrigingRegressor(exact=True).fit(*samples).error_bound_ == 0.0
    assert KrigingRegressor(n_neighbors=8).fit(*samples).engine_ == "local"
    assert not hasattr(KrigingRegressor(), "engine_")


def test_leave_one_out_tells_errors_in_the_units_of_the_output(samples):
    model = KrigingRegressor(nugget=0.01).fit(*samples)

    left = model.leave_one_out()

    others = KrigingRegressor(nugget=0.01).fit(*samples, include=np.arange(40) != 3)
    np.testing.assert_allclose(left.estimates[3], others.predict(samples[0][3:4])[0], rtol=1e-10)
    assert_same_bits(left.truths, samples[1])
    assert left.statistics["rmse"] == pytest.approx(np.sqrt(np.mean((left.estimates - left.truths) ** 2)))
    assert [list(members) for members in left.members[:2]] == [[0], [1]]


def test_a_semivariogram_has_the_models_beside_the_pairs(samples):
    X, y = samples
    model = KrigingRegressor(scale="raw", range_fraction="0.5u", nugget=0.1).fit(X, y)

    table = model.semivariogram(n_lags=5, max_lag="0.8u")

    assert table.in_units and table.range == pytest.approx(0.5) and table.sill == model.sill_[0]
    lags = np.linalg.norm(X[:, None] - X[None], axis=2)[np.triu_indices(40, 1)]
    assert table.n_pairs.sum() == (lags <= 0.8).sum()
    for wrong in (0, -1, "2", "xu", np.nan):
        with pytest.raises(KrigingError, match="max_lag"):
            model.semivariogram(max_lag=wrong)
    with pytest.raises(KrigingError, match="n_lags"):
        model.semivariogram(n_lags=0)
    with pytest.raises(KrigingError, match="output"):
        model.semivariogram(output="w")


def test_a_model_that_does_not_fit_into_memory_is_refused_with_figures():
    X = np.random.RandomState(1).uniform(size=(400_000, 2))

    with pytest.raises(MemoryError, match=r"all 400000 points takes .* GB of memory and there are .*n_neighbors"):
        KrigingRegressor().fit(X, X[:, 0])


def test_variances_and_standard_errors_at_once_are_refused(samples):
    with pytest.raises(KrigingError, match="one of return_std and return_variance"):
        KrigingRegressor().fit(*samples).predict(samples[0], return_std=True, return_variance=True)


def test_no_targets_give_no_estimates(samples):
    mean, std = KrigingRegressor().fit(*samples).predict(np.empty((0, 2)), return_std=True)

    assert mean.shape == std.shape == (0,)


def test_estimators_without_a_transform_are_no_transformers(samples):
    assert not hasattr(KrigingRegressor(), "transform")
    model = KrigingRegressor(transform="log")
    assert model.transform == "log" and model.get_params()["transform"] == "log"
    assert KrigingRegressor().get_params()["transform"] is None
    with pytest.raises(KrigingError, match="that of sample .* is not"):
        model.fit(samples[0], -np.abs(samples[1]))
