#!/usr/bin/env python3
"""Plants single deviations in a copy of the sources, one at a time, and counts those that the tests catch.

The deviations stand in tests/mutation/*.txt; everything is built under build/mutation. Exit status: 0 when each
deviation is caught or listed as equivalent, 1 when one survives or does not build, 2 when the list does not fit the
sources or the tests fail without any deviation.
"""

import argparse
import fnmatch
import json
import os
import queue
import sys
import threading
import time
from pathlib import Path

from deviations import ListError, read_lists
from workshop import Workshop

project = Path(__file__).resolve().parents[2]
folder = project / "build" / "mutation"
results_file = folder / "results.json"
report_file = folder / "report.txt"

caught, survived, equivalent, not_built = "caught", "SURVIVED", "equivalent", "DID NOT BUILD"


def parse_arguments():
    parser = argparse.ArgumentParser(prog="script/mutate", description=__doc__.split("\n\n")[0])
    parser.add_argument("names", nargs="*", metavar="NAME", help="a deviation, or a pattern of names or files")
    parser.add_argument("--resume", action="store_true",
                        help="leave out what was caught before while its file stood as it does now")  # fmt: skip
    parser.add_argument("--check", action="store_true", help="only check that the list fits the sources")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="deviations at a time")
    parser.add_argument("--stall", type=float, default=60.0, metavar="SECONDS",
                        help="tests that print nothing for so long hang (default 60)")  # fmt: skip
    return parser.parse_args()


def select(deviations, names):
    def is_wanted(deviation):
        return any(fnmatch.fnmatch(text, name) for name in names for text in (deviation.name, deviation.file))

    return [deviation for deviation in deviations if not names or is_wanted(deviation)]


def check_fit(deviations):
    misfits = []
    for deviation in deviations:
        try:
            deviation.apply((project / deviation.file).read_text())
        except (ListError, OSError) as error:
            misfits.append(str(error))
    if misfits:
        raise ListError("\n".join(misfits))


def key_of(deviation):
    return deviation.key((project / deviation.file).read_text())


class Run:
    def __init__(self, selected, arguments):
        self.selected = selected
        self.results = json.loads(results_file.read_text()) if results_file.is_file() else {}
        self.lock = threading.Lock()
        self.open = queue.SimpleQueue()
        self.num_open = 0
        for deviation in selected:
            before = self.results.get(deviation.name, {})
            if arguments.resume and before.get("key") == key_of(deviation) and before.get("verdict") == caught:
                continue
            self.open.put(deviation)
            self.num_open += 1
        ccache = folder / "ccache"
        self.workshops = [
            Workshop(project, folder / f"copy{number}", ccache, arguments.stall)
            for number in range(max(1, min(arguments.jobs, self.num_open)))
        ]

    def prepare(self, jobs):
        """All is built, by the first copy for the others' cache too; the tests must pass before any deviation."""
        names = sorted({name for deviation in self.selected for name in deviation.tests})
        first = self.workshops[0]
        for workshop in self.workshops:
            workshop.copy_tree()
            workshop.configure()
            if not workshop.build(names, jobs):
                raise ListError(f"the sources do not build, see {workshop.log}")
            if workshop is first and (failure := workshop.first_failure(names)):
                raise ListError(f"{failure} fails without any deviation, see {workshop.log}")

    def work(self, workshop):
        while True:
            try:
                deviation = self.open.get_nowait()
            except queue.Empty:
                return
            began = time.monotonic()
            verdict, by = self.judge(workshop, deviation)
            seconds = time.monotonic() - began
            with self.lock:
                self.results[deviation.name] = {"key": key_of(deviation), "verdict": verdict, "by": by}
                temporary = results_file.with_suffix(".new")
                temporary.write_text(json.dumps(self.results, indent=1))
                temporary.replace(results_file)
                print(f"{deviation.name}: {verdict} {by} ({seconds:.0f} s)", flush=True)

    def judge(self, workshop, deviation):
        workshop.plant(deviation)
        if not workshop.build(deviation.tests):
            return not_built, ""
        failure = workshop.first_failure(deviation.tests, deviation.file)
        if failure:
            return caught, failure
        return (equivalent, deviation.equivalent) if deviation.equivalent else (survived, "")

    def report(self):
        rows = [("name", "file", "what", "verdict", "first failing test")]
        for deviation in self.selected:
            result = self.results[deviation.name]
            rows.append((deviation.name, deviation.file, deviation.what, result["verdict"], result["by"]))
        widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
        lines = ["  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows]
        report_file.write_text("\n".join(lines) + "\n")
        verdicts = [self.results[deviation.name]["verdict"] for deviation in self.selected]
        counts = {verdict: verdicts.count(verdict) for verdict in (caught, equivalent, survived, not_built)}
        print("\n".join(lines))
        print(f"\n{len(verdicts)} deviations: " + ", ".join(f"{count} {verdict}" for verdict, count in counts.items()))
        return counts[survived] + counts[not_built] == 0


def main():
    arguments = parse_arguments()
    began = time.monotonic()
    try:
        selected = select(read_lists(), arguments.names)
        if not selected:
            raise ListError("no deviation of that name")
        check_fit(selected)
        if arguments.check:
            print(f"{len(selected)} deviations fit the sources")
            return 0
        folder.mkdir(parents=True, exist_ok=True)
        run = Run(selected, arguments)
        if run.num_open:
            run.prepare(arguments.jobs)
    except ListError as error:
        print(f"script/mutate: {error}", file=sys.stderr)
        return 2
    threads = [threading.Thread(target=run.work, args=(workshop,)) for workshop in run.workshops]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    is_clean = run.report()
    print(f"{run.num_open} of them tried now, in {(time.monotonic() - began) / 60:.0f} minutes")
    return 0 if is_clean else 1


if __name__ == "__main__":
    sys.exit(main())
