"""A copy of the tree that deviations are planted in, its build, and runs of its tests."""

import os
import re
import signal
import subprocess
import time
from dataclasses import dataclass, field

# What is built and run; programs are relative to the build folder, a pattern is ctest's.
@dataclass
class Suite:
    targets: list
    programs: list = field(default_factory=list)
    pattern: str = ""
    is_limited: bool = True  # in memory, so that a deviation cannot take all there is


suites = {
    "library": Suite(
        ["fenn_tests", "fenn_reliability_tests"], ["tests/fenn_tests", "tests/reliability/fenn_reliability_tests"]
    ),
    "analysis": Suite(["fenn_analysis_tests"], ["tests/analysis/fenn_analysis_tests"]),
    "estimation": Suite(
        ["fenn_estimation_tests", "fenn_calling_thread_tests"],
        ["tests/estimation/fenn_estimation_tests", "tests/estimation/fenn_calling_thread_tests"],
    ),
    "accuracy": Suite(["fenn_accuracy_tests"], pattern="^accuracy$"),
    "host": Suite(["fenn_host_tests"], ["tests/host/fenn_host_tests"]),
    # Each in a process of its own: threads that were made once leave memory that no limit counts.
    "threads": Suite(["fenn_no_threads_tests"], pattern="^(NoThreads|MemoryLimit)Test[.]", is_limited=False),
    "boundary": Suite(
        ["fenn_linked_host_tests", "fenn_loaded_host_tests"],
        ["tests/boundary/fenn_linked_host_tests", "tests/boundary/fenn_loaded_host_tests"],
        pattern="^boundary.exported_symbols$",
    ),
    "digest": Suite(["fenn_digest"], pattern="^digest[.]"),
    "shell": Suite(["krige"], pattern="^KrigeShell"),
}

cmake_options = [
    "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DFENN_BUILD_BENCHMARKS=OFF", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
    # Quickly compiled, and no deviation is refused for a warning.
    "-DCMAKE_CXX_FLAGS=-O1 -DNDEBUG -w",
]  # fmt: skip

memory_limit = 4 << 30


def tracked_files(project):
    listing = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=project, check=True, capture_output=True,
    )  # fmt: skip
    return {name for name in listing.stdout.decode().split("\0") if name and (project / name).is_file()}


def filter_of(file):
    """The tests that mirror a source, by name: they are run before all others."""
    stem = os.path.basename(file).split(".")[0].removesuffix("-inl")
    if "/kernels/" in file:
        stem = re.match(r"(?:Scalar)?([A-Z][a-z]+)", stem)[1]
    return f"*{stem}*"


class Workshop:
    def __init__(self, project, folder, ccache, stall_seconds):
        self.project = project
        self.source = folder / "source"
        self.build_folder = folder / "build"
        self.log = folder / "log.txt"
        self.stall_seconds = stall_seconds
        self.planted = None
        self.environment = dict(os.environ, CCACHE_DIR=str(ccache), CCACHE_BASEDIR=str(folder), CCACHE_NOHASHDIR="1")

    def copy_tree(self):
        """Makes the copy like the project; what is the same already keeps its time."""
        wanted = tracked_files(self.project)
        self.source.mkdir(parents=True, exist_ok=True)
        for path in self.source.rglob("*"):
            if path.is_file() and str(path.relative_to(self.source)) not in wanted:
                path.unlink()
        for name in wanted:
            original, copy = self.project / name, self.source / name
            content = original.read_bytes()
            if copy.is_file() and copy.read_bytes() == content:
                continue
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(content)
            copy.chmod(original.stat().st_mode)

    def configure(self):
        command = ["cmake", "-S", self.source, "-B", self.build_folder, *cmake_options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env=self.environment)

    def plant(self, deviation):
        """Puts the deviation planted before right again first."""
        if self.planted:
            self.write(self.planted.file, self.original_of(self.planted))
        self.planted = deviation
        self.write(deviation.file, deviation.apply(self.original_of(deviation)))

    def original_of(self, deviation):
        return (self.project / deviation.file).read_text()

    def write(self, file, text):
        (self.source / file).write_text(text)

    def build(self, names, jobs=1):
        targets = sorted({target for name in names for target in suites[name].targets})
        with open(self.log, "w") as log:
            command = ["ninja", "-C", self.build_folder, f"-j{jobs}", *targets]
            return subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, env=self.environment).returncode == 0

    def first_failure(self, names, file=""):
        """The first test that fails, "" if none does."""
        filters = [filter_of(file)] if file else []
        for name in names:
            suite = suites[name]
            for tests in [*filters, "*"]:
                for program in suite.programs:
                    options = ["--gtest_fail_fast", "--gtest_color=no", f"--gtest_filter={tests}"]
                    if failure := self.run_tests([self.build_folder / program, *options], suite.is_limited):
                        return failure
            if suite.pattern:
                options = ["--stop-on-failure", "--output-on-failure", "-R", suite.pattern]
                if failure := self.run_tests(["ctest", "--test-dir", self.build_folder, *options], suite.is_limited):
                    return failure
        return ""

    def run_tests(self, command, is_limited):
        with open(self.log, "w") as log:
            limits = ["--core=0", f"--as={memory_limit}"] if is_limited else ["--core=0"]
            process = subprocess.Popen(
                ["prlimit", *limits, *command],
                stdout=log, stderr=subprocess.STDOUT, start_new_session=True, env=self.environment,
            )  # fmt: skip
            hangs = self.wait(process)
        output = self.log.read_text(errors="replace")
        if process.returncode == 0 and not hangs:
            return ""
        begun = re.findall(r"^\[ RUN      \] (\S+)|Start\s+\d+: (\S+)", output, re.MULTILINE)
        failed = re.findall(r"^\[  FAILED  \] (\S+?),? .*\(\d+ ms\)$", output, re.MULTILINE)
        last = "".join(begun[-1]) if begun else "the start of the tests"
        if hangs:
            return f"{last} (hangs)"
        if process.returncode < 0:
            return f"{last} ({signal.Signals(-process.returncode).name})"
        return failed[0] if failed else last

    def wait(self, process):
        """Waits for the end, or until nothing has been printed for too long: the process is then ended."""
        size, changed = -1, time.monotonic()
        while process.poll() is None:
            time.sleep(0.02)
            now = os.stat(self.log).st_size
            if now != size:
                size, changed = now, time.monotonic()
            elif time.monotonic() - changed > self.stall_seconds:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                return True
        return False
