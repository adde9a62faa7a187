"""What the Python peers share: arguments, files in and out, and the time of each phase.

    PEER.py SAMPLES TARGETS ESTIMATES [--variance]

SAMPLES and TARGETS are CSV files with a header row; the last column of SAMPLES is the observation, all others are
coordinates. A peer prints one line of JSON: CPU and wall-clock seconds of reading, building, estimating and writing.
The start of the interpreter and its imports are in none of them.
"""

import argparse
import json
import time

import numpy


class Stopwatch:
    """Seconds since the last call, by phase."""

    def __init__(self):
        self.phases = {}
        self.begin = (time.process_time(), time.perf_counter())

    def done(self, phase):
        now = (time.process_time(), time.perf_counter())
        self.phases[phase] = {"cpu": now[0] - self.begin[0], "wall": now[1] - self.begin[1]}
        self.begin = now

    def print(self):
        print(json.dumps(self.phases))


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("samples")
    parser.add_argument("targets")
    parser.add_argument("estimates")
    parser.add_argument("--variance", action="store_true")
    return parser.parse_args()


def read_tables(arguments):
    """Coordinates of samples and targets, normalised as krige does it by default (each input's range to [-1, 1]), and
    observations."""
    samples = numpy.loadtxt(arguments.samples, delimiter=",", skiprows=1, ndmin=2)
    targets = numpy.loadtxt(arguments.targets, delimiter=",", skiprows=1, ndmin=2)
    points, observations = samples[:, :-1], samples[:, -1]
    low, high = points.min(axis=0), points.max(axis=0)
    middle, half = (low + high) / 2, (high - low) / 2
    return (points - middle) / half, observations, (targets - middle) / half


def write_estimates(path, columns):
    """Header and rows, each number so that it reads back to the same bits: numpy.savetxt takes three times as long."""
    with open(path, "w") as file:
        file.write(",".join(columns) + "\n")
        lists = [numpy.asarray(values).ravel().tolist() for values in columns.values()]
        file.write("\n".join(",".join(map(repr, row)) for row in zip(*lists)) + "\n")
