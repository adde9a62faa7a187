"""What the tests share: the program, its data sets, and comparison to the bit."""

import os
import subprocess
from pathlib import Path

import numpy as np
import pandas as pd
import pytest

ROOT = Path(__file__).resolve().parents[2]
DATA_SETS = {
    "volcano": (["x", "y"], ["elevation"]),
    "quakes": (["long", "lat", "depth"], ["mag", "stations"]),
    "rainfall": (["x", "y"], ["rainfall"]),
}


def assert_same_bits(actual, expected):
    """NaN equals NaN, whatever its bits; zeros have their signs."""
    actual, expected = np.asarray(actual, dtype=float), np.asarray(expected, dtype=float)
    assert actual.shape == expected.shape
    same = (actual.view(np.int64) == expected.view(np.int64)) if actual.flags.c_contiguous else None
    if same is None:
        actual = np.ascontiguousarray(actual)
        same = actual.view(np.int64) == np.ascontiguousarray(expected).view(np.int64)
    same |= np.isnan(actual) & np.isnan(expected)
    assert same.all(), f"{(~same).sum()} of {same.size} differ, the first ones {np.argwhere(~same)[:3].tolist()}"


class DataSet:
    """One of the examples."""

    def __init__(self, name):
        self.name = name
        self.inputs, self.outputs = DATA_SETS[name]
        self.samples_path = ROOT / "examples" / name / "samples.csv"
        self.truth_path = ROOT / "examples" / name / "truth.csv"
        self.samples = read(self.samples_path)
        self.truth = read(self.truth_path)
        self.X = self.samples[self.inputs]
        self.y = self.samples[self.outputs[0] if len(self.outputs) == 1 else self.outputs]


def read(path):
    """A table of the program, to the bits that it wrote."""
    return pd.read_csv(path, float_precision="round_trip")


@pytest.fixture(params=DATA_SETS)
def data(request):
    return DataSet(request.param)


@pytest.fixture
def volcano():
    return DataSet("volcano")


@pytest.fixture
def krige(tmp_path):
    """Runs the program on a data set; the table that it wrote."""
    program = os.environ["KRIGE_PROGRAM"]

    def run(command, data, *options):
        output = tmp_path / "output.csv"
        arguments = [program, command, str(data.samples_path), "--inputs", ",".join(data.inputs)]
        arguments += ["--outputs", ",".join(data.outputs), "--duplicates", "merge", *map(str, options)]
        if "-o" not in options:
            arguments += ["-o", str(output)]
        done = subprocess.run(arguments, capture_output=True, text=True, check=False)
        assert done.returncode == 0, done.stderr
        return read(output) if "-o" not in options else done

    return run


@pytest.fixture
def samples():
    """Forty samples of a smooth surface."""
    generator = np.random.RandomState(7)
    X = generator.uniform(size=(40, 2))
    return X, np.sin(5.0 * X[:, 0]) + X[:, 1] ** 2
