"""Pickles, other processes, threads and Ctrl-C."""

import copy
import multiprocessing
import pickle
import signal
import subprocess
import sys
import textwrap
import threading
import time

import joblib
import numpy as np
import pytest
from conftest import assert_same_bits
from sklearn.base import clone
from sklearn.compose import TransformedTargetRegressor
from sklearn.ensemble import BaggingRegressor
from sklearn.model_selection import GridSearchCV
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import StandardScaler

from krige import KrigingError, KrigingRegressor, KrigingRegressorCV, SingularSystemError

FORMS = [{}, {"exact": True, "n_jobs": 2}, {"n_neighbors": 8, "n_jobs": 2}, {"transform": "log"}]


@pytest.fixture(params=FORMS, ids=repr)
def model(request, samples):
    return KrigingRegressor(**request.param).fit(samples[0], samples[1] + 3.0)


def run_python(code, *arguments):
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(code), *map(str, arguments)], capture_output=True, text=True, timeout=300
    )


def test_pickles_answer_alike_in_a_new_process(samples, tmp_path):
    models = [KrigingRegressor(**form).fit(samples[0], samples[1] + 3.0) for form in FORMS]
    targets = samples[0] + 0.01
    expected = [np.stack(model.predict(targets, return_std=True)) for model in models]
    (tmp_path / "models.pickle").write_bytes(pickle.dumps(models))
    np.save(tmp_path / "targets.npy", targets)

    done = run_python(
        """
        import pickle, sys
        import numpy as np
        models = pickle.load(open(sys.argv[1] + "/models.pickle", "rb"))
        targets = np.load(sys.argv[1] + "/targets.npy")
        for model in models:
            assert not model.X_train_.flags.writeable and not model.model_._samples.X.flags.writeable
        answers = [np.stack(model.predict(targets, return_std=True)) for model in models]
        np.save(sys.argv[1] + "/answers.npy", answers)
        """,
        tmp_path,
    )

    assert done.returncode == 0, done.stderr
    assert_same_bits(np.load(tmp_path / "answers.npy"), np.stack(expected))


def test_pickles_hold_samples_and_no_factor():
    X = np.random.RandomState(0).uniform(size=(1000, 2))
    model = KrigingRegressor().fit(X, X[:, 0])

    assert len(pickle.dumps(model)) < 3 * X.nbytes


def test_copies_and_clones(model, samples):
    targets = samples[0] + 0.01
    for other in (copy.copy(model), copy.deepcopy(model), clone(model).fit(model.X_train_, model.y_train_)):
        assert_same_bits(other.predict(targets), model.predict(targets))


def test_a_fork_after_use_answers_alike(model, samples):
    targets = samples[0] + 0.01
    expected = model.predict(targets)
    context = multiprocessing.get_context("fork")
    answers = context.SimpleQueue()

    def answer():
        answers.put(model.predict(targets))

    child = context.Process(target=answer)
    child.start()
    child.join(60)

    assert child.exitcode == 0
    assert_same_bits(answers.get(), expected)
    assert_same_bits(model.predict(targets), expected)


def _fail(error):
    raise error


@pytest.mark.parametrize("error", [KrigingError("a"), SingularSystemError("b")])
def test_errors_come_back_from_other_processes(error):
    with pytest.raises(type(error), match=str(error)):
        joblib.Parallel(n_jobs=2, backend="loky")(joblib.delayed(_fail)(error) for _ in range(2))
    assert repr(pickle.loads(pickle.dumps(error))) == repr(error)


def test_loky_answers_alike(model, samples):
    targets = samples[0] + 0.01
    parts = joblib.Parallel(n_jobs=2, backend="loky")(
        joblib.delayed(model.predict)(targets[i : i + 10]) for i in range(0, 40, 10)
    )
    assert_same_bits(np.concatenate(parts), model.predict(targets))


def test_threads_ask_one_model(model, samples):
    targets = samples[0] + 0.01
    expected = model.predict(targets)
    fresh = pickle.loads(pickle.dumps(model))
    answers = [None] * 8

    def answer(k):
        answers[k] = [fresh.predict(targets[i : i + 1 + k]) for i in range(0, 40 - k, 1 + k)]

    threads = [threading.Thread(target=answer, args=(k,)) for k in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()

    for k, answered in enumerate(answers):
        joined = np.concatenate(answered)
        assert_same_bits(joined, expected[: len(joined)])


def test_the_lock_is_released_while_the_library_works():
    X = np.random.RandomState(0).uniform(size=(1500, 2))
    model = KrigingRegressor(exact=True).fit(X, X[:, 0])
    ticks = []
    done = threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(None)
            time.sleep(0.001)

    thread = threading.Thread(target=tick)
    thread.start()
    model.predict(X, return_variance=True)
    done.set()
    thread.join()

    assert len(ticks) > 2  # 0 or 1 where the lock is held


INTERRUPTED = {
    "predict": "model.predict(np.random.RandomState(1).uniform(size=(2_000_000, 2)), return_std=True)",
    "leave one out": "[model.leave_one_out() for _ in range(1000)]",
    "tuning": "KrigingRegressorCV(max_trials=100_000, objective='crps').fit(X[:900], X[:900, 0])",
}


@pytest.mark.parametrize("case", INTERRUPTED)
def test_control_c_ends_long_work_and_the_model_answers_as_before(case):
    code = f"""
        import sys, time
        import numpy as np
        from krige import KrigingRegressor, KrigingRegressorCV
        X = np.random.RandomState(0).uniform(size=(1200, 2))
        model = KrigingRegressor().fit(X, X[:, 0])
        before = model.predict(X[:50] + 0.01)
        print("ready", flush=True)
        try:
            {INTERRUPTED[case]}
        except KeyboardInterrupt:
            assert (model.predict(X[:50] + 0.01) == before).all()
            print("interrupted", flush=True)
    """
    with subprocess.Popen(
        [sys.executable, "-c", textwrap.dedent(code)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
    ) as child:
        assert child.stdout.readline() == "ready\n"
        time.sleep(0.5)
        child.send_signal(signal.SIGINT)
        out, err = child.communicate(timeout=120)
    assert out == "interrupted\n", err
    assert child.returncode == 0


def test_no_references_are_leaked(samples):
    model = KrigingRegressor().fit(*samples)
    out = np.empty(40)
    counts = []
    for _ in range(3):
        for _ in range(200):
            model.model_.predict(samples[0], out=out)
            with pytest.raises(KrigingError):
                model.model_.predict(samples[0], out=np.empty(3))
        counts.append((sys.getrefcount(samples[0]), sys.getrefcount(out), sys.getrefcount(model.model_)))
    assert counts[0] == counts[1] == counts[2]


def test_in_the_company_of_scikit_learn(samples):
    X, y = samples
    search = GridSearchCV(KrigingRegressor(), {"nugget": [0.0, 0.1], "drift_order": [0, 1]}, cv=3).fit(X, y)
    assert search.best_score_ > 0.8
    assert make_pipeline(StandardScaler(), KrigingRegressor()).fit(X, y).score(X, y) == pytest.approx(1.0)
    assert BaggingRegressor(KrigingRegressor(), n_estimators=4, random_state=0).fit(X, y).score(X, y) > 0.9
    logs = TransformedTargetRegressor(KrigingRegressor(), func=np.log, inverse_func=np.exp).fit(X, y + 3.0)
    assert logs.score(X, y + 3.0) == pytest.approx(1.0)
    found = KrigingRegressorCV(max_trials=5).fit(X, y)
    assert_same_bits(pickle.loads(pickle.dumps(found)).predict(X), found.predict(X))


def test_bootstraps_repeat_rows_and_are_merged(samples):
    X, y = samples
    chosen = np.random.RandomState(0).randint(40, size=40)

    model = KrigingRegressor().fit(X[chosen], y[chosen])

    assert model.n_points_ == len(set(chosen.tolist()))
