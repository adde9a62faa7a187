#!/usr/bin/python3
"""Keeps what script/bench measured and renders docs/performance.md and the data of its picture.

    performance.py collect FACTS BARS [JOBS]   prints one run as JSON
    performance.py render RUN...               prints the page, one processor after another
    performance.py curve RUN                   prints times against n for gnuplot

FACTS has lines "name: text" about the run. BARS has the lines "BAR | ..." of the benchmark programs, of any number of
runs of each (benchmarks/support/Bars.h). JOBS is what jobs.py printed.
"""

import json
import re
import statistics
import sys

FACTS = ["processor", "cores", "instruction sets", "compiler", "flags", "OpenBLAS", "peers", "commit", "date", "command"]
WAYS = {"exact": "exact", "covariance": "covariance form", "local": "local, 32 nearest", "peer": "fastest peer"}


# Collecting


def read_bar_line(line):
    """A row with one or more values, or None where the line is not one of Bars.h."""
    cells = [cell.strip() for cell in line.split("|")]
    if cells[0] != "BAR":
        return None
    path, case, measured, bar = cells[1:5]
    figure, _, unit = measured.partition(" ")
    every = cells[6].split() if len(cells) > 6 else []
    values = [float(value) for value in every or [figure]]
    return {"path": path, "case": case, "unit": unit, "bar": bar, "values": values}


def collect_bars(lines):
    """The rows in the order of their first lines, each with the values of all its lines."""
    rows = {}
    for line in lines:
        row = read_bar_line(line)
        if row is None:
            continue
        key = (row["path"], row["case"])
        if key in rows:
            rows[key]["values"] += row["values"]
        else:
            rows[key] = row
    return list(rows.values())


def collect(facts_path, bars_path, jobs_path=None):
    run = {"facts": {}, "bars": [], "jobs": [], "curve": []}
    with open(facts_path) as file:
        for line in file:
            name, _, text = line.strip().partition(": ")
            run["facts"][name] = text
    with open(bars_path) as file:
        run["bars"] = collect_bars(file)
    if jobs_path:
        with open(jobs_path) as file:
            measured = json.load(file)
        if measured["openblas kernels"]:
            run["facts"]["peers"] += f"; on OpenBLAS's {measured['openblas kernels']} kernels, one thread"
        run["jobs"], run["curve"] = measured["jobs"], measured["curve"]
    return run


def run_text(run):
    """JSON with one row to a line, for readable differences."""
    parts = ['"facts": ' + json.dumps(run["facts"], indent=1)]
    for name in ("bars", "jobs", "curve"):
        rows = ",\n ".join(json.dumps(row) for row in run[name])
        parts.append(f'"{name}": [\n {rows}\n]' if rows else f'"{name}": []')
    return "{\n" + ",\n".join(parts) + "\n}\n"


# Figures


def number_text(value):
    return f"{value:.0f}" if abs(value) >= 1000 else f"{value:.4g}"


def spread_text(values):
    """Largest less smallest value, in per cent of the median."""
    median = statistics.median(values)
    if len(values) < 2 or median == 0:
        return "-"
    return f"{100 * (max(values) - min(values)) / abs(median):.2g} %"


def verdict(median, bar):
    match = re.fullmatch(r"(>=|<=) (\S+)", bar)
    if match is None:
        return ""
    limit = float(match[2])
    return "yes" if (median >= limit if match[1] == ">=" else median <= limit) else "**no**"


def in_one_direction(row):
    """Ratios of times read "times as fast": one that is to stay below a bar becomes its reciprocal above one."""
    path, _, yardstick = row["path"].partition(", beside ")
    if row["unit"] != "x":
        return row
    bar, values = row["bar"], row["values"]
    if bar.startswith("<="):
        bar = ">= " + number_text(1 / float(bar[3:]))
        values = [1 / value for value in values]
    unit = "times as fast" + (" as " + yardstick if yardstick else "")
    return {"path": path, "case": row["case"], "unit": unit, "bar": bar, "values": values}


# The page


def table(heading, rows):
    lines = ["| " + " | ".join(cells) + " |" for cells in [heading, ["---"] * len(heading), *rows]]
    return "\n".join(lines) + "\n"


def facts_table(facts):
    known = [name for name in FACTS if facts.get(name)]
    return table(["", ""], [[name, facts[name]] for name in known])


OF_PEAK = "of the peak rounded apart"


def is_beyond_peak(row, peak_fractions):
    """Whether a bar beside OpenBLAS, which rounds products and sums together, asks for more than this processor can do
    when it rounds them apart: the fraction of that peak that was measured tells."""
    fraction = peak_fractions.get((row["path"], row["case"]))
    if fraction is None or "`dgetr" not in row["unit"]:
        return False
    limit = float(row["bar"].split()[1]) if row["bar"].startswith(">=") else 0.0
    return limit / statistics.median(row["values"]) * fraction > 1.0


def bars_table(bars):
    rows = []
    turned = [in_one_direction(row) for row in bars]
    peak_fractions = {(row["path"], row["case"]): statistics.median(row["values"]) for row in turned
                      if row["unit"] == OF_PEAK}
    for row in turned:
        median = statistics.median(row["values"])
        bar = "" if row["bar"] == "none" else row["bar"]
        met = "beyond the peak" if is_beyond_peak(row, peak_fractions) else verdict(median, row["bar"])
        rows.append([row["path"], row["case"], f"{number_text(median)} {row['unit']}", spread_text(row["values"]), bar,
                     met])
    return table(["Path", "Case", "Measured", "Spread", "Bar", "Met"], rows)


def seconds_of(job, who):
    """The times that count: the whole process of krige, a peer's from reading to writing; CPU seconds on one core,
    where the two differ only by what others take of it, else wall-clock seconds."""
    clock = "cpu" if job["cores"] == 1 else "wall"
    return [run[clock] for run in job["who"][who]]


def job_cell(job, who):
    if who not in job["who"]:
        return "-"
    values = seconds_of(job, who)
    text = f"{statistics.median(values):.3g}"
    if len(values) > 1:
        text += f" (spread {spread_text(values)})"
    if who != "krige":
        whole = statistics.median(run["with start"] for run in job["who"][who])
        text += f"; {whole:.3g} with start"
    return text


def job_bar(job):
    """Measured against the bar, the bar and the verdict; the bar is one of seconds, or of times as fast as a peer."""
    bar = job.get("bar")
    if bar is None:
        return ["", "", ""]
    krige = statistics.median(seconds_of(job, "krige"))
    if "seconds" in bar:
        text = f"<= {bar['seconds']:g}"
        return [f"{number_text(krige)} s", text + " s", verdict(krige, text)]
    peer = bar["peer"]
    text = f">= {number_text(bar['times'])}"
    if peer not in job["who"]:
        return ["not measured", f"{text} times as fast as {peer}", ""]
    ratio = statistics.median(seconds_of(job, peer)) / krige
    return [f"{number_text(ratio)} times as fast", f"{text} times as fast as {peer}", verdict(ratio, text)]


def jobs_table(jobs):
    peers = sorted({who for job in jobs for who in job["who"]} - {"krige"})
    rows = []
    for job in jobs:
        cells = [job_cell(job, who) for who in ["krige", *peers]]
        rows.append([job["job"], job["case"], str(job["cores"]), *cells, *job_bar(job)])
    return table(["Job", "Case", "Cores", "`krige` [s]", *[f"{peer} [s]" for peer in peers], "Measured", "Bar", "Met"],
                 rows)


def differences_text(jobs):
    """One sentence on how far estimates of the same model lie apart."""
    worst = {}
    for job in jobs:
        for who, difference in job.get("differences", {}).items():
            worst[who] = max(worst.get(who, 0.0), difference)
    if not worst:
        return ""
    listed = ", ".join(f"{who} {difference:.2g}" for who, difference in sorted(worst.items()))
    return f"\nLargest difference from the estimates of `krige`, in standard deviations of the observations: {listed}.\n"


INTRODUCTION = """# Performance

Measured and written by `script/bench --peers`; one file per run is kept under `docs/performance/`, and this page is
rendered from them. Programs check their results before they time anything.

A figure is the median over all repeats of a run, its spread the largest less the smallest of them in per cent of the
median. Comparisons read "times as fast as" something: 2 is half its time, and more is better. Times are to stay below
their bars, fractions above. `dgetrf` and `dgetrs` are OpenBLAS's on one thread, the fastest of its kernels for each row;
targets are 512 to a request unless said otherwise. They round products and sums together, twice the work in an
instruction; where a bar beside them asks for more than this processor's peak with separate roundings, it says so.

Jobs are whole: reading CSV files, building, estimating, writing. For `krige` the time is that of the whole process; for
peers it runs from reading to writing, and once more with the start of their interpreter. One core: CPU seconds of one
thread. Two cores: wall-clock seconds. The peers (`benchmarks/peers`) read the same files, with normalised inputs and a
linear drift. OpenTURNS and gstat compute the very model of `krige`. SciPy's RBFInterpolator has no spherical kernel: it
takes the linear one, which is as much work, and gives no variances.
"""

PICTURE = """
![Seconds against the number of samples for the ways to answer 10 000 targets](images/performance.png)
"""


def render(runs):
    text = INTRODUCTION
    if any(run["curve"] for run in runs):
        text += PICTURE
    for run in sorted(runs, key=lambda run: run["facts"].get("date", ""), reverse=True):
        text += f"\n## {run['facts']['processor']}\n\n" + facts_table(run["facts"])
        if run["jobs"]:
            text += "\n### Whole jobs\n\n" + jobs_table(run["jobs"]) + differences_text(run["jobs"])
        if run["bars"]:
            text += "\n### Parts\n\n" + bars_table(run["bars"])
    return text


# The picture


def curve_text(curve):
    """One block per way to answer, two empty lines between them: n, median, smallest and largest time, which peer."""
    blocks = []
    for way, title in WAYS.items():
        points = sorted((point for point in curve if point["way"] == way), key=lambda point: point["n"])
        if not points:
            continue
        lines = [f'"{title}"']
        for point in points:
            seconds = point["seconds"]
            who = "" if point["who"] == "krige" else point["who"]
            lines.append(f'{point["n"]} {statistics.median(seconds):.6g} {min(seconds):.6g} {max(seconds):.6g} "{who}"')
        blocks.append("\n".join(lines) + "\n")
    return "\n\n".join(blocks)


def load(path):
    with open(path) as file:
        return json.load(file)


def main(arguments):
    command, *paths = arguments or ["help"]
    if command == "collect" and len(paths) in (2, 3):
        print(run_text(collect(*paths)), end="")
    elif command == "render" and paths:
        print(render([load(path) for path in paths]), end="")
    elif command == "curve" and len(paths) == 1:
        print(curve_text(load(paths[0])["curve"]), end="")
    else:
        print(__doc__, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
