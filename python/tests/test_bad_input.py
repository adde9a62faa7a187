"""Input that no model can be made of or asked for: a clear error, never a crash."""

import warnings

import numpy as np
import pytest
import scipy.sparse
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays
from conftest import assert_same_bits

from krige import KrigingError, KrigingRegressor, Model
from krige._parameters import check_parameters

WRONG_PARAMETERS = {
    "drift_order": [-1, 5, 1.0, "1", True, None],
    "range_fraction": [0, -0.5, 10.1, np.nan, np.inf, "900", "u", "-1u", "nanu", None, [1.0], True],
    "nugget": [-0.1, 1.1, np.nan, "0.1", None, 1j],
    "n_neighbors": [0, -3, 2.5, "16", True],
    "scale": ["raws", 1.0, [1.0], [1.0, np.nan], [1.0, "1"], [1.0, 2.0, 3.0], {1.0, 2.0}],
    "duplicates": ["Merge", None, 1, ["merge"]],
    "duplicate_tolerance": [-0.1, np.nan, np.inf, "0", None],
    "anisotropy": [2.0, (2.0,), (0.5, 30.0), (2.0, np.nan), "2,30", (2.0, 30.0, 1.0)],
    "transform": ["ln", 1, False],
    "clamp": [5.0, (1.0,), (2.0, 1.0), "0:1", (np.nan, 1.0), ("0", 1.0)],
    "missing": ["ignore", None, np.nan],
    "sill": ["REML", 0.0, -1.0, np.nan, np.inf, None, [1.0, 2.0], []],
    "exact": [1, None, "yes"],
    "n_jobs": [0, 1.5, "2", True],
}


@pytest.mark.parametrize(
    "name, value", [(name, value) for name in WRONG_PARAMETERS for value in WRONG_PARAMETERS[name]]
)
def test_wrong_parameters_are_named_by_fit(samples, name, value):
    with pytest.raises(KrigingError, match=name):
        KrigingRegressor(**{name: value}).fit(*samples)


def test_messages_do_not_print_whole_arrays(samples):
    with pytest.raises(KrigingError) as error:
        KrigingRegressor(scale=np.zeros(10_000), range_fraction=np.zeros(10_000)).fit(*samples)

    assert len(str(error.value)) < 300


WRONG_SAMPLES = {
    "one dimension": [0.0, 1.0, 2.0],
    "ragged": [[0.0, 1.0], [2.0]],
    "no rows": np.empty((0, 2)),
    "no columns": np.empty((40, 0)),
    "sparse": scipy.sparse.eye(40, 2, format="csr"),
    "complex": np.full((40, 2), 1j),
    "text": np.full((40, 2), "a"),
    "objects": np.full((40, 2), object()),
    "three dimensions": np.zeros((40, 2, 2)),
    "infinity": np.full((40, 2), np.inf),
    "nan": np.full((40, 2), np.nan),
    "none": None,
    "one sample": np.zeros((1, 2)),
    "one place": np.zeros((40, 2)),
}


@pytest.mark.filterwarnings("ignore")
@pytest.mark.parametrize("case", WRONG_SAMPLES)
def test_wrong_samples_and_targets_are_refused(samples, case):
    X = WRONG_SAMPLES[case]
    with pytest.raises((ValueError, TypeError)):
        KrigingRegressor().fit(X, samples[1])
    if case in ("no rows", "one sample", "one place"):
        return
    with pytest.raises((ValueError, TypeError)):
        KrigingRegressor().fit(*samples).predict(X)


@pytest.mark.parametrize("y", [np.zeros(39), np.zeros((40, 0)), np.zeros((40, 2, 2)), np.full(40, np.inf), None, "a"])
def test_wrong_outputs_are_refused(samples, y):
    with pytest.raises(ValueError):
        KrigingRegressor().fit(samples[0], y)


@pytest.mark.parametrize("include", [np.ones(39, bool), np.ones(40), "yes", np.ones((40, 1), bool), np.zeros(40, bool)])
def test_wrong_flags_are_refused(samples, include):
    with pytest.raises(KrigingError):
        KrigingRegressor().fit(*samples, include=include)


def test_the_thin_model_refuses_arrays_of_other_shapes(samples):
    model = KrigingRegressor().fit(*samples).model_
    targets = np.zeros((5, 2))
    for wrong in (np.zeros((5, 3)), np.zeros(5), np.zeros((1, 5, 2)), np.full((5, 2), "a"), 3.0, None):
        with pytest.raises(KrigingError):
            model.predict(wrong)
    read_only = np.zeros(5)
    read_only.setflags(write=False)
    for wrong in (np.zeros(4), np.zeros((5, 2)), np.zeros(5, np.float32), read_only, [0.0] * 5):
        with pytest.raises(KrigingError):
            model.predict(targets, out=wrong)
        with pytest.raises(KrigingError):
            model.predict(targets, variance_out=wrong)


FINITE = st.floats(-1e6, 1e6, allow_subnormal=False)
PARAMETERS = st.fixed_dictionaries(
    {
        "drift_order": st.integers(0, 2),
        "range_fraction": st.floats(0.05, 3.0),
        "nugget": st.sampled_from([0.0, 0.1, 1.0]),
        "n_neighbors": st.sampled_from([None, 4, 9]),
        "scale": st.sampled_from([None, "raw"]),
        "duplicates": st.sampled_from(["merge", "keep", "error"]),
        "exact": st.booleans(),
    }
)


@settings(max_examples=60, deadline=None, suppress_health_check=list(HealthCheck))
@given(
    table=arrays.arrays(np.float64, st.tuples(st.integers(2, 25), st.just(3)), elements=FINITE),
    parameters=PARAMETERS,
    seed=st.integers(0, 2**32 - 1),
)
def test_any_samples_give_an_error_of_ours_or_bits_that_form_and_order_do_not_change(table, parameters, seed):
    model = KrigingRegressor(**parameters)
    generator = np.random.RandomState(seed)
    targets = generator.uniform(-1e6, 1e6, size=(11, 2))
    try:
        model.fit(table[:, :2], table[:, 2])
        mean, variance = model.predict(targets, return_variance=True)
    except KrigingError:
        return
    order = generator.permutation(11)
    assert_same_bits(model.predict(targets[order]), mean[order])
    assert_same_bits(model.predict(np.asfortranarray(targets)), mean)
    assert_same_bits(np.concatenate([model.predict(targets[i : i + 1]) for i in range(11)]), mean)
    threaded = KrigingRegressor(n_jobs=2, **parameters).fit(table[:, :2], table[:, 2])
    assert_same_bits(threaded.predict(targets, return_variance=True)[1], variance)


JUNK = st.one_of(
    st.none(), st.booleans(), st.integers(), st.floats(), st.text(max_size=5), st.lists(st.floats(), max_size=3)
)


@settings(max_examples=200, deadline=None)
@given(name=st.sampled_from(sorted(WRONG_PARAMETERS)), value=JUNK)
def test_any_value_of_a_parameter_is_taken_or_an_error_of_ours(name, value):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            check_parameters({**KrigingRegressor().get_params(), name: value}, 2, 1)
        except KrigingError as error:
            assert len(str(error)) < 400


def test_the_thin_model_is_exported():
    assert Model.__name__ == "Model"
