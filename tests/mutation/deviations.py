"""The list of deviations: one text file per part of the sources, see README.md."""

import hashlib
import re
from dataclasses import dataclass, field
from pathlib import Path

folder = Path(__file__).resolve().parent

default_tests = {"analysis": ["analysis"], "estimation": ["estimation"], "host": ["host"]}


class ListError(Exception):
    """A list that cannot be read, or does not fit the sources."""


@dataclass
class Deviation:
    name: str
    file: str
    what: str
    place: str  # in the list, for messages
    original: list = field(default_factory=list)
    replacement: list = field(default_factory=list)
    tests: list = field(default_factory=list)
    equivalent: str = ""

    def text(self):
        return "\n".join(self.original)

    def apply(self, source):
        """The source with the deviation planted. The original must stand in it exactly once."""
        count = source.count(self.text())
        if count != 1:
            raise ListError(f"{self.place}: {self.name}: the original stands {count} times in {self.file}")
        return source.replace(self.text(), "\n".join(self.replacement))

    def key(self, source):
        """Changes with the deviation, the source that it is planted in and the tests that are to catch it."""
        parts = [self.file, self.text(), "\n".join(self.replacement), " ".join(self.tests), source]
        return hashlib.sha256("\0".join(parts).encode()).hexdigest()


def read_list(path):
    deviations = []
    file = ""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        place = f"{path.name}:{number}"
        if not line.strip() or line.startswith("#"):
            continue
        if section := re.fullmatch(r"\[(\S+)\]", line):
            file = section[1]
            continue
        if line[:2] in ("- ", "+ ", "-", "+"):
            if not deviations:
                raise ListError(f"{place}: a line of a deviation that has no name")
            deviation = deviations[-1]
            (deviation.original if line[0] == "-" else deviation.replacement).append(line[2:])
            continue
        entry = re.fullmatch(r"([a-z][a-z0-9-]*): (.+)", line)
        if not entry:
            raise ListError(f"{place}: neither a [file], a name or option with its text, nor a line of a deviation")
        if entry[1] == "tests":
            deviations[-1].tests = entry[2].split()
        elif entry[1] == "equivalent":
            deviations[-1].equivalent = entry[2]
        else:
            tests = default_tests.get(file.split("/")[0], ["library"])
            deviations.append(Deviation(entry[1], file, entry[2], place, tests=tests))
    return deviations


def read_lists():
    deviations = [deviation for path in sorted(folder.glob("*.txt")) for deviation in read_list(path)]
    names = set()
    for deviation in deviations:
        if not deviation.file or not deviation.original or deviation.original == deviation.replacement:
            raise ListError(f"{deviation.place}: {deviation.name}: no file, no original, or nothing changes")
        if deviation.name in names:
            raise ListError(f"{deviation.place}: a second deviation named {deviation.name}")
        names.add(deviation.name)
    return deviations
