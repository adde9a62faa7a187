"""Lazy estimates, and workers that die."""

import os
import signal

import numpy as np
import pytest
from conftest import assert_same_bits

from krige import KrigingError, KrigingRegressor

dask = pytest.importorskip("dask")
da = pytest.importorskip("dask.array")


@pytest.fixture
def targets():
    return np.random.RandomState(3).uniform(size=(500, 2))


@pytest.mark.parametrize("beside", [{}, {"return_std": True}, {"return_variance": True}])
@pytest.mark.parametrize("n_outputs", [1, 2])
def test_estimates_of_dask_arrays_are_lazy_and_alike(samples, targets, beside, n_outputs):
    X, y = samples
    model = KrigingRegressor().fit(X, y if n_outputs == 1 else np.stack([y, -y], axis=1))
    expected = model.predict(targets, **beside)

    lazy = model.predict(da.from_array(targets, chunks=(99, 1)), **beside)

    for actual, wanted in zip(lazy if beside else [lazy], expected if beside else [expected]):
        assert isinstance(actual, da.Array)
        assert actual.shape == wanted.shape
        assert_same_bits(np.ascontiguousarray(actual.compute(scheduler="threads")), wanted)


def test_the_model_is_one_task_of_the_graph(samples, targets):
    model = KrigingRegressor().fit(*samples)
    lazy = model.predict(da.from_array(targets, chunks=(50, 2)))

    holders = [key for key, task in dict(lazy.dask).items() if "KrigingRegressor" in str(key) or task is model]

    assert len(holders) == 1
    assert all(model is not part for task in dict(lazy.dask).values() if isinstance(task, tuple) for part in task)
    assert dask.base.tokenize(model) == dask.base.tokenize(KrigingRegressor().fit(*samples))
    assert dask.base.tokenize(model) != dask.base.tokenize(KrigingRegressor(nugget=0.1).fit(*samples))


def test_grids_in_chunks_are_lazy_and_alike(samples):
    model = KrigingRegressor().fit(samples[0], np.stack([samples[1], -samples[1]], axis=1))
    expected = model.grid((17, 11), return_std=True)

    lazy = model.grid((17, 11), return_std=True, chunks=(4, 5))

    assert set(lazy) == set(expected)
    assert lazy["z0"].chunks == ((4, 4, 3), (5, 5, 5, 2))
    computed = lazy.compute(scheduler="threads")
    for name in expected:
        assert_same_bits(np.ascontiguousarray(computed[name].values), expected[name].values)


def test_grids_of_three_inputs_in_chunks():
    X = np.random.RandomState(0).uniform(size=(30, 3))
    model = KrigingRegressor().fit(X, X.sum(axis=1))

    lazy = model.grid((3, 4, 5), chunks=2).compute(scheduler="threads")

    assert_same_bits(np.ascontiguousarray(lazy["z"].values), model.grid((3, 4, 5))["z"].values)


def test_wrong_dask_arrays_are_refused(samples):
    model = KrigingRegressor().fit(*samples)
    with pytest.raises(KrigingError, match="shape"):
        model.predict(da.zeros((10, 3)))


class _Counting:
    """Counts, in files, how often a process builds a model."""

    def __init__(self, folder):
        self.folder = folder

    def __call__(self, dask_worker=None):
        import krige

        folder = self.folder
        build = krige.Model._build

        def counted(model):
            with open(f"{folder}/{os.getpid()}", "a", encoding="utf-8") as file:
                file.write("built\n")
            return build(model)

        krige.Model._build = counted


def test_each_worker_builds_once_and_killed_workers_change_no_bit(samples, targets, tmp_path):
    distributed = pytest.importorskip("distributed")
    many = np.vstack([targets] * 8)
    model = KrigingRegressor(exact=True).fit(*samples)
    expected = model.predict(many)
    cluster = distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, host="127.0.0.1", dashboard_address=None, local_directory=str(tmp_path)
    )
    with cluster, distributed.Client(cluster) as client:
        folder = tmp_path / "builds"
        folder.mkdir()
        client.run(_Counting(str(folder)))
        lazy = model.predict(da.from_array(many, chunks=(100, 2)))
        assert_same_bits(np.ascontiguousarray(client.compute(lazy).result(timeout=120)), expected)
        builds = [path.read_text(encoding="utf-8").count("built") for path in folder.iterdir()]
        assert builds and set(builds) == {1}

        for n_killed in (1, 2):
            blocks = client.compute(model.predict(da.from_array(many + 0.0, chunks=(40, 2))).to_delayed().tolist())
            distributed.wait(blocks, return_when="FIRST_COMPLETED", timeout=120)
            for pid in list(client.run(os.getpid).values())[:n_killed]:
                os.kill(pid, signal.SIGKILL)
            answers = client.gather(blocks)
            assert_same_bits(np.concatenate([np.ravel(block) for block in answers]), expected)
