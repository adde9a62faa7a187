#!/usr/bin/env python3
"""Holds every DELIBERATE comment to its word: it names tests, and each of them exists.

usage: check_deliberate.py SOURCE_DIR

A comment that says DELIBERATE ends with "Test: Suite.Name" or "Tests: Suite.Name, OtherName, Suite.Name ..."; a name
without a suite belongs to the suite before it. Exit status 1 and a line for each comment that does not hold.
"""

import re
import sys
from pathlib import Path

folders = ["surrogatemodel_common", "surrogatemodel_kriging", "estimation", "analysis", "host", "python"]
suffixes = {".h", ".cpp", ".py"}
comment_mark = re.compile(r"^\s*(?:///?|#)\s?")
test_definition = re.compile(r"\bTEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)")
named_tests = re.compile(r"\bTests?:\s*((?:[\w.]+,\s*)*[\w.]+)")


def comments_of(path):
    """(line number, text) of every comment that is marked; a comment goes on to the first line of code."""
    lines = path.read_text().splitlines()
    for number, line in enumerate(lines, 1):
        marked = re.search(r"(?:///?|#)\s*DELIBERATE\b.*", line)
        if not marked:
            continue
        words = [comment_mark.sub("", marked[0])]
        for following in lines[number:]:
            if not comment_mark.match(following) or "DELIBERATE" in following:
                break
            words.append(comment_mark.sub("", following))
        yield number, " ".join(words)


def faults_of(comment, existing):
    named = named_tests.search(comment)
    if not named:
        yield "names no test"
        return
    suite = None
    for name in re.split(r",\s*", named[1].rstrip(".")):
        if "." in name:
            suite, name = name.split(".", 1)
        if (suite, name) not in existing:
            yield f"there is no test {suite}.{name}"


def main():
    source_dir = Path(sys.argv[1])
    existing = {
        test for path in (source_dir / "tests").rglob("*.cpp") for test in test_definition.findall(path.read_text())
    }
    num_comments, faults = 0, []
    for path in sorted(path for folder in folders for path in (source_dir / folder).rglob("*")):
        if path.suffix not in suffixes:
            continue
        for number, comment in comments_of(path):
            num_comments += 1
            faults += [f"{path.relative_to(source_dir)}:{number}: {fault}" for fault in faults_of(comment, existing)]
    if num_comments == 0:
        faults.append("no DELIBERATE comment was found: this check looks in the wrong place")
    print("\n".join(faults) or f"{num_comments} DELIBERATE comments name tests that exist")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
