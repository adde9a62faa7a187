"""Folds."""

import numpy as np
import pytest
from sklearn.model_selection import cross_val_score

from krige import KrigingError, KrigingRegressor
from krige.model_selection import BlockKFold, SeededKFold


@pytest.mark.parametrize("folds", [SeededKFold(7), BlockKFold(7)])
def test_every_sample_stands_in_one_fold(samples, folds):
    X, y = samples
    tests = [test for _, test in folds.split(X)]

    assert len(tests) == 7 == folds.get_n_splits(X)
    assert sorted(np.concatenate(tests)) == list(range(40))
    for train, test in folds.split(X):
        assert sorted([*train, *test]) == list(range(40))
    assert len(cross_val_score(KrigingRegressor(), X, y, cv=folds)) == 7


def test_samples_of_one_place_stand_in_one_fold(samples):
    X = np.vstack([samples[0], samples[0]])
    for train, test in SeededKFold(5).split(X):
        assert set(test[test < 40]) == set(test[test >= 40] - 40)


def test_fewer_places_than_folds_are_as_many_folds():
    X = np.repeat([[0.0, 0.0], [1.0, 0.0], [0.0, 1.0]], 3, axis=0)

    assert SeededKFold(10).get_n_splits(X) == 3
    assert len(list(SeededKFold(10).split(X))) == 3


def test_a_seed_says_the_folds():
    X = np.random.RandomState(0).uniform(size=(50, 2))

    def folds(seed):
        return [tuple(test) for _, test in SeededKFold(5, seed=seed).split(X)]

    assert folds(1) == folds(1) != folds(2)


def test_blocks_stay_together(samples):
    X = samples[0]
    low, width = X.min(axis=0), np.ptp(X, axis=0)
    blocks = np.minimum(((X - low) / width * 4).astype(int), 3) @ [4, 1]
    for _, test in BlockKFold(3, shape=4).split(X):
        assert not set(blocks[test]) & set(np.delete(blocks, test))


@pytest.mark.parametrize("make", [lambda: SeededKFold(1), lambda: SeededKFold(5, seed=-1), lambda: BlockKFold(0)])
def test_wrong_arguments_are_refused(make):
    with pytest.raises(KrigingError):
        make()


def test_too_few_blocks_are_an_error(samples):
    with pytest.raises(KrigingError, match="too few for 10 folds; raise shape"):
        list(BlockKFold(10, shape=2).split(samples[0]))
    with pytest.raises(KrigingError, match="one for all"):
        list(BlockKFold(2, shape=(2, 2, 2)).split(samples[0]))
