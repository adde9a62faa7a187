"""The conventions of scikit-learn, by its own checks."""

import pytest
from sklearn.utils.estimator_checks import check_dataframe_column_names_consistency, parametrize_with_checks

from krige import KrigingRegressor, KrigingRegressorCV

ESTIMATORS = [
    KrigingRegressor(),
    KrigingRegressor(n_neighbors=16),
    KrigingRegressor(drift_order=1, nugget=0.1),
    KrigingRegressor(n_jobs=2),
    KrigingRegressor(missing="skip"),
    KrigingRegressorCV(max_trials=6),
]


@parametrize_with_checks(ESTIMATORS)
def test_estimator_keeps_the_conventions(estimator, check):
    check(estimator)


@pytest.mark.parametrize("estimator", ESTIMATORS, ids=repr)
def test_names_of_columns_are_kept_and_compared(estimator):
    check_dataframe_column_names_consistency(type(estimator).__name__, estimator)
