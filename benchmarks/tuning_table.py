#!/usr/bin/env python3
"""The table of docs/tuning.md from what TuningExperiment prints.

    TuningExperiment 100 >fields.csv
    benchmarks/tuning_table.py fields.csv

Errors and scores are ratios to those of the true model, averaged as geometric means; intervals and times are plain
means. A field that some objective has no row for is left out of all rows.
"""

import csv
import math
import sys
from collections import defaultdict

OBJECTIVES = ["defaults", "likelihood", "rmse", "mae", "crps"]
GROUPS = [
    ("all fields", lambda row: True),
    ("50 to 149 samples", lambda row: int(row["samples"]) < 150),
    ("150 to 399 samples", lambda row: 150 <= int(row["samples"]) < 400),
    ("400 to 1000 samples", lambda row: int(row["samples"]) >= 400),
    ("2 inputs", lambda row: int(row["inputs"]) == 2),
    ("3 inputs", lambda row: int(row["inputs"]) == 3),
    ("4 and 6 inputs", lambda row: int(row["inputs"]) > 3),
    ("random", lambda row: row["pattern"] == "random"),
    ("clustered", lambda row: row["pattern"] == "clustered"),
    ("regular", lambda row: row["pattern"] == "regular"),
    ("nugget 0 or 0.05", lambda row: float(row["nugget"]) < 0.1),
    ("nugget 0.2 or 0.5", lambda row: 0.1 < float(row["nugget"]) < 0.7),
    ("nugget 0.9", lambda row: float(row["nugget"]) > 0.7),
    ("with a linear trend", lambda row: row["trend"] == "1"),
]


def geometric_mean(values):
    return math.exp(sum(math.log(value) for value in values) / len(values))


def complete_fields(rows):
    """The rows of fields that have one for the truth and for every objective."""
    fields = defaultdict(list)
    for row in rows:
        fields[row["field"]].append(row)
    return [row for field in fields.values() if len(field) == len(OBJECTIVES) + 1 for row in field]


def table(rows):
    """Markdown: a line per objective over all fields, then errors and coverage by group."""
    rows = complete_fields(rows)
    by_objective = defaultdict(list)
    for row in rows:
        by_objective[row["objective"]].append(row)
    lines = [
        "| objective | RMSE / best | worst of 20 | CRPS / best | in 95 % | least of 20 | CPU s |",
        "|---|---|---|---|---|---|---|",
    ]
    for objective in ["truth"] + OBJECTIVES:
        chosen = by_objective[objective]
        ratios = sorted(float(row["rmse_ratio"]) for row in chosen)
        covered = sorted(float(row["coverage"]) for row in chosen)
        nth = len(chosen) // 20
        lines.append(
            "| {} | {:.3f} | {:.3f} | {:.3f} | {:.1f} | {:.1f} | {} |".format(
                objective,
                geometric_mean(ratios),
                ratios[-1 - nth],
                geometric_mean([float(row["crps_ratio"]) for row in chosen]),
                100.0 * sum(covered) / len(covered),
                100.0 * covered[nth],
                "-" if objective in ("truth", "defaults") else "{:.2f}".format(
                    sum(float(row["seconds"]) for row in chosen) / len(chosen)),
            ))
    lines += ["", "| fields | number | " + " | ".join(OBJECTIVES) + " |", "|---|---|" + "---|" * len(OBJECTIVES)]
    for name, belongs in GROUPS:
        cells = []
        number = 0
        for objective in OBJECTIVES:
            chosen = [row for row in by_objective[objective] if belongs(row)]
            number = len(chosen)
            if chosen:
                cells.append("{:.3f}, {:.1f} %".format(
                    geometric_mean([float(row["rmse_ratio"]) for row in chosen]),
                    100.0 * sum(float(row["coverage"]) for row in chosen) / number))
        if number:
            lines.append("| {} | {} | {} |".format(name, number, " | ".join(cells)))
    return "\n".join(lines)


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    with open(sys.argv[1], newline="", encoding="utf-8") as file:
        print(table(list(csv.DictReader(file))))
    return 0


if __name__ == "__main__":
    sys.exit(main())
