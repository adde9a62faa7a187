#!/usr/bin/python3
"""Times whole jobs: krige as a command, and what people would use instead, on the same CSV files.

    jobs.py KRIGE FOLDER [--peers] [--repeats R] [--only PATTERN]... [--curve yes|no|only]

Prints the jobs and the curve of times against n as JSON for performance.py. Files are made in FOLDER. Within a repeat
krige and the peers take turns, so that what slows the machine slows all of them. --only: jobs whose name and case match
the shell pattern. Options that this krige does not know (--exact, --threads) are left out, and the rows that need them.
"""

import argparse
import csv
import fnmatch
import json
import math
import os
import random
import statistics
import subprocess
import sys
import tempfile
import time

PEERS_FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "peers")
# Debian's interpreter, which finds Debian's packages whatever else is on the path.
PYTHON = "/usr/bin/python3"
PEERS = {
    "SciPy": [PYTHON, f"{PEERS_FOLDER}/scipy_rbf.py"],
    "OpenTURNS": [PYTHON, f"{PEERS_FOLDER}/openturns_kriging.py"],
    "gstat": ["Rscript", "--vanilla", f"{PEERS_FOLDER}/gstat_krige.R"],
}
SAME_MODEL = ("OpenTURNS", "gstat")
LARGEST_DIFFERENCE = 1e-6  # in standard deviations of the observations, between two solutions of the same model
SINGLE_THREAD = {name: "1" for name in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS")}
# OpenBLAS takes its oldest kernels on a processor that is newer than it: the fastest of these are chosen instead.
OPENBLAS_KERNELS = ("HASWELL", "SKYLAKEX", "ZEN")
INPUTS = ["x", "y", "w"]


# Files


def make_samples(folder, num_samples, num_inputs):
    """Scattered samples of a smooth surface. Two of them are the corners of the unit cube: every input has the same
    range, so that nearness is the same in raw and in normalised inputs."""
    def observe(point):
        return math.sin(5 * point[0]) + math.cos(7 * point[1]) + point[0] * point[-1]

    numbers = random.Random(1)
    points = [[0.0] * num_inputs, [1.0] * num_inputs]
    points += [[numbers.random() for _ in range(num_inputs)] for _ in range(num_samples - 2)]
    return write_table(f"{folder}/samples-{num_samples}-{num_inputs}.csv", INPUTS[:num_inputs] + ["z"],
                       [point + [observe(point)] for point in points])


def make_targets(folder, num_targets, num_inputs):
    numbers = random.Random(2)
    return write_table(f"{folder}/targets-{num_targets}-{num_inputs}.csv", INPUTS[:num_inputs],
                       [[numbers.random() for _ in range(num_inputs)] for _ in range(num_targets)])


def write_table(path, names, rows):
    with open(path, "w") as file:
        file.write(",".join(names) + "\n")
        file.writelines(",".join(map(repr, row)) + "\n" for row in rows)
    return path


def read_column(path, name):
    with open(path, newline="") as file:
        return [float(row[name]) for row in csv.DictReader(file)]


# Running


def run(command, cores, variables=None):
    """CPU and wall-clock seconds of the whole process, and its standard output. cores: as taskset lists them."""
    environment = {**os.environ, **SINGLE_THREAD, **(variables or {})}
    with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
        begin = time.perf_counter()
        process = subprocess.Popen(["taskset", "-c", cores, *command], stdout=output, stderr=errors, env=environment)
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.perf_counter() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        output.seek(0)
        errors.seek(0)
        if process.returncode != 0:
            raise SystemExit(f"{' '.join(command)}: exit status {process.returncode}\n{errors.read()}")
        return {"cpu": usage.ru_utime + usage.ru_stime, "wall": wall}, output.read()


def run_krige(command, cores):
    return run(command, cores)[0]


def run_peer(command, core, kernels):
    """From reading to writing, as the peer itself measures it, and the whole process; on one core."""
    whole, output = run(command, core, {"OPENBLAS_CORETYPE": kernels} if kernels else None)
    phases = json.loads(output.strip().splitlines()[-1])
    total = {clock: sum(phase[clock] for phase in phases.values()) for clock in ("cpu", "wall")}
    return {**total, "with start": whole["cpu"], "phases": phases}


def is_installed(peer):
    if peer == "gstat":
        command = ["Rscript", "--vanilla", "-e", "library(gstat)"]
    else:
        command = [PYTHON, "-c", f"import {peer.lower()}"]
    try:
        return subprocess.run(command, capture_output=True, check=False).returncode == 0
    except FileNotFoundError:
        return False


# Jobs


class Job:
    """One row: krige and its peers on samples and targets of a size."""

    def __init__(self, name, case, arguments, samples, targets=None, cores=1, peers=(), bar=None, needs=()):
        self.name = name
        self.case = case
        self.arguments = arguments  # of krige, behind the samples and their columns
        self.samples = samples  # (number, inputs)
        self.targets = targets  # number, or None where the arguments say what is asked
        self.cores = cores
        self.peers = peers
        self.bar = bar
        self.needs = needs  # options that krige must know

    def options(self):
        return self.arguments[1:]


def faster(peer, times):
    return {"peer": peer, "times": times}


def within(seconds):
    return {"seconds": seconds}


def all_jobs():
    jobs = []
    predict = ["predict", "--drift", "1"]
    for n, times in ((500, 1 / 0.5), (2000, 1 / 0.6)):
        case = f"n = {n}, 2-D, 10 000 targets"
        jobs.append(Job("global, estimates", case, predict, (n, 2), 10000, peers=("SciPy", "OpenTURNS"),
                        bar=faster("SciPy", times)))
        jobs.append(Job("global, estimates, `--exact`", case, [*predict, "--exact"], (n, 2), 10000,
                        needs=["--exact"]))
    for n, times in ((500, 1 / 0.35), (2000, 1 / 0.7)):
        case = f"n = {n}, 2-D, 10 000 targets"
        jobs.append(Job("global, with variances", case, [*predict, "--variance"], (n, 2), 10000, peers=("OpenTURNS",),
                        bar=faster("OpenTURNS", times)))
        jobs.append(Job("global, with variances, `--exact`", case, [*predict, "--variance", "--exact"], (n, 2), 10000,
                        needs=["--exact"]))
    for n, inputs, nearest in ((10000, 2, 16), (50000, 2, 32), (20000, 3, 24)):
        jobs.append(Job("local, with variances", f"n = {n}, {inputs}-D, {nearest} nearest, 10 000 targets",
                        [*predict, "--variance", "--nearest", str(nearest)], (n, inputs), 10000, peers=("gstat",),
                        bar=faster("gstat", 1 / 0.3)))
    grid = ["--grid", "1000x1000"]
    jobs += [
        Job("10^6 grid nodes, estimates", "n = 2000, 2-D", [*predict, *grid], (2000, 2), bar=within(3)),
        Job("10^6 grid nodes, local", "n = 50000, 2-D, 32 nearest", [*predict, *grid, "--nearest", "32"], (50000, 2),
            cores=2, bar=within(4.5)),
        Job("10^6 grid nodes, local", "n = 10^6, 2-D, 32 nearest", [*predict, *grid, "--nearest", "32"], (1000000, 2),
            cores=2, bar=within(9)),
        Job("large global, with variances", "n = 15000, 2-D, 1600 targets", [*predict, "--variance"], (15000, 2), 1600,
            cores=2, bar=within(33)),
        Job("leave-one-out", "n = 2000, 2-D", ["validate", "--drift", "1", "--leave-one-out"], (2000, 2), cores=2,
            bar=within(0.25)),
        Job("tune", "n = 500, 2-D", ["tune"], (500, 2), cores=2, bar=within(0.7)),
        Job("tune", "n = 2000, 2-D", ["tune"], (2000, 2), cores=2),
        Job("tune, global candidates", "n = 2000, 2-D", ["tune", "--fix", "nearest"], (2000, 2), cores=2,
            bar=within(12)),
    ]
    return jobs


def has_option(help_text, option):
    """Whether a subcommand's help lists the option."""
    return any(option in line.split()[0].split(",") for line in help_text.splitlines() if line.startswith("  -"))


class Bench:
    """Runs jobs on this machine with one krige."""

    def __init__(self, krige, folder, repeats, with_peers):
        self.krige = krige
        self.folder = folder
        self.repeats = repeats
        self.peers = [peer for peer in PEERS if with_peers and is_installed(peer)]
        self.files = {}
        available = sorted(os.sched_getaffinity(0))
        self.cores = {1: str(available[-1]), 2: ",".join(map(str, available[-2:]))}
        self.helps = {}
        self.kernels = self.fastest_kernels() if "SciPy" in self.peers else None

    def fastest_kernels(self):
        """Those of OpenBLAS that solve a system of 1000 rows in the least time."""
        job = Job("choice of kernels", "", ["predict"], (1000, 2), 100)
        seconds = {}
        for kernels in OPENBLAS_KERNELS:
            runs = [run_peer(self.peer_command("SciPy", job), self.cores[1], kernels) for _ in range(3)]
            seconds[kernels] = min(run["phases"]["build"]["cpu"] for run in runs)
        return min(seconds, key=seconds.get)

    def knows(self, subcommand, option):
        if subcommand not in self.helps:
            self.helps[subcommand] = subprocess.run([self.krige, subcommand, "--help"], capture_output=True, text=True,
                                                    check=True).stdout
        return has_option(self.helps[subcommand], option)

    def can_run(self, job):
        return all(self.knows(job.arguments[0], option) for option in job.needs)

    def file(self, make, number, inputs):
        key = (make, number, inputs)
        if key not in self.files:
            self.files[key] = make(self.folder, number, inputs)
        return self.files[key]

    def krige_command(self, job):
        subcommand = job.arguments[0]
        number, inputs = job.samples
        command = [self.krige, subcommand, self.file(make_samples, number, inputs), "--inputs",
                   ",".join(INPUTS[:inputs]), "--outputs", "z", *job.options(), "--quiet"]
        if job.targets:
            command += ["--at", self.file(make_targets, job.targets, inputs)]
        if subcommand == "predict":
            command += ["-o", f"{self.folder}/krige.csv"]
        if self.knows(subcommand, "--threads"):
            command += ["--threads", str(job.cores)]
        return command

    def peer_command(self, peer, job):
        number, inputs = job.samples
        options = job.options()
        command = [*PEERS[peer], self.file(make_samples, number, inputs), self.file(make_targets, job.targets, inputs),
                   f"{self.folder}/{peer}.csv"]
        if peer == "gstat":
            command.append(options[options.index("--nearest") + 1] if "--nearest" in options else "0")
        elif "--variance" in options:
            command.append("--variance")
        return command

    def difference(self, peer, job):
        """Largest difference of two sets of estimates, in standard deviations of the observations."""
        pairs = zip(read_column(f"{self.folder}/krige.csv", "z"), read_column(f"{self.folder}/{peer}.csv", "z"),
                    strict=True)
        unit = statistics.pstdev(read_column(self.file(make_samples, *job.samples), "z"))
        return max(abs(ours - theirs) for ours, theirs in pairs) / unit

    def measure(self, job):
        cores = self.cores[job.cores]
        who = {name: [] for name in ["krige", *[peer for peer in job.peers if peer in self.peers]]}
        for _ in range(self.repeats):
            for name, runs in who.items():
                if name == "krige":
                    runs.append(run_krige(self.krige_command(job), cores))
                else:
                    runs.append(run_peer(self.peer_command(name, job), cores, self.kernels))
        row = {"job": job.name, "case": job.case, "cores": job.cores, "who": who, "differences": {}}
        if job.bar:
            row["bar"] = job.bar
        for peer in who:
            if peer != "krige":
                row["differences"][peer] = self.difference(peer, job)
            if peer in SAME_MODEL and not row["differences"][peer] <= LARGEST_DIFFERENCE:
                raise SystemExit(f"{job.name}, {job.case}: {peer} and krige differ by {row['differences'][peer]:.2g}"
                                 " standard deviations: not the same work")
        return row


# Time against n


CURVE_TARGETS = 10000
CURVE_SIZES = (100, 200, 500, 1000, 2000, 5000, 10000, 20000, 50000, 100000)
LARGEST_OF = {"exact": 5000, "covariance": 10000, "local": 100000, "SciPy": 5000, "OpenTURNS": 2000, "gstat": 100000}


def curve_jobs(bench):
    """(way, job) for every way that answers here; of the peers all, of which the fastest at each n is drawn."""
    predict = ["predict", "--drift", "1"]
    knows_exact = bench.knows("predict", "--exact")
    for n in CURVE_SIZES:
        case = f"n = {n}"
        if n <= LARGEST_OF["exact"]:
            yield "exact", Job("curve", case, [*predict, "--exact"] if knows_exact else predict, (n, 2), CURVE_TARGETS,
                               peers=[peer for peer in ("SciPy", "OpenTURNS") if n <= LARGEST_OF[peer]])
        if knows_exact and n <= LARGEST_OF["covariance"]:
            yield "covariance", Job("curve", case, predict, (n, 2), CURVE_TARGETS)
        if n <= LARGEST_OF["local"]:
            yield "local", Job("curve", case, [*predict, "--nearest", "32"], (n, 2), CURVE_TARGETS,
                               peers=["gstat"] if n <= LARGEST_OF["gstat"] else [])


def fastest_peers(points):
    """Of the points of peers the one with the least median at each n."""
    best = {}
    for point in points:
        n = point["n"]
        if n not in best or statistics.median(point["seconds"]) < statistics.median(best[n]["seconds"]):
            best[n] = point
    return list(best.values())


def measure_curve(bench):
    curve, peers = [], []
    for way, job in curve_jobs(bench):
        row = bench.measure(job)
        for name, runs in row["who"].items():
            point = {"n": job.samples[0], "who": name, "seconds": [run["cpu"] for run in runs]}
            if name == "krige":
                curve.append({"way": way, **point})
            else:
                peers.append({"way": "peer", **point})
        progress(f"{way}, {job.case}", row)
    return curve + fastest_peers(peers)


def progress(name, row):
    """A line on standard error, which is what someone watches."""
    texts = [f"{who} {statistics.median(run['cpu'] for run in runs):.3g} s CPU,"
             f" {statistics.median(run['wall'] for run in runs):.3g} s" for who, runs in row["who"].items()]
    print(f"{name}: {'; '.join(texts)}", file=sys.stderr, flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("krige")
    parser.add_argument("folder")
    parser.add_argument("--peers", action="store_true")
    parser.add_argument("--repeats", type=int, default=5)
    parser.add_argument("--only", action="append", default=[])
    parser.add_argument("--curve", choices=("yes", "no", "only"), default="yes")
    arguments = parser.parse_args()
    os.makedirs(arguments.folder, exist_ok=True)
    bench = Bench(os.path.abspath(arguments.krige), arguments.folder, arguments.repeats, arguments.peers)
    jobs = []
    for job in all_jobs() if arguments.curve != "only" else []:
        name = f"{job.name}, {job.case}"
        if bench.can_run(job) and (not arguments.only or any(fnmatch.fnmatch(name, pattern)
                                                             for pattern in arguments.only)):
            jobs.append(bench.measure(job))
            progress(name, jobs[-1])
    curve = measure_curve(bench) if arguments.curve != "no" else []
    print(json.dumps({"openblas kernels": bench.kernels, "jobs": jobs, "curve": curve}))


if __name__ == "__main__":
    main()
