"""Whole jobs of script/bench: that they run with the krige there is, on the options that it knows.

    jobs_test.py SOURCE_DIR KRIGE
"""

import os
import sys
import tempfile
import unittest

SOURCE_DIR = os.path.abspath(sys.argv.pop(1))
KRIGE = os.path.abspath(sys.argv.pop(1))
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(SOURCE_DIR, "benchmarks"))

import jobs  # noqa: E402

HELP = """Options:
  -o,--output FILE
        File to write; see --exact.
  --threads N
        Threads.
"""


class OptionsTest(unittest.TestCase):
    def test_an_option_is_known_by_either_name(self):
        self.assertTrue(jobs.has_option(HELP, "-o"))
        self.assertTrue(jobs.has_option(HELP, "--output"))
        self.assertTrue(jobs.has_option(HELP, "--threads"))

    def test_an_option_that_is_only_mentioned_is_not_known(self):
        self.assertFalse(jobs.has_option(HELP, "--exact"))

    def test_a_part_of_a_name_is_not_known(self):
        self.assertFalse(jobs.has_option(HELP, "--thread"))


class JobTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.bench = jobs.Bench(KRIGE, self.folder, repeats=2, with_peers=False)

    def test_every_job_is_one_that_this_krige_takes(self):
        for job in jobs.all_jobs():
            if not self.bench.can_run(job):
                continue
            small = jobs.Job(job.name, job.case, job.arguments, (40, job.samples[1]), job.targets and 5, job.cores)
            if "--grid" in small.arguments:
                small.arguments = ["3x3" if text == "1000x1000" else text for text in small.arguments]
            with self.subTest(job=f"{job.name}, {job.case}"):
                row = self.bench.measure(small)
                self.assertEqual(len(row["who"]["krige"]), 2)

    def test_estimates_are_written_for_all_targets(self):
        self.bench.measure(jobs.Job("", "", ["predict", "--drift", "1"], (40, 2), 5))

        self.assertEqual(len(jobs.read_column(f"{self.folder}/krige.csv", "z")), 5)

    def test_a_job_with_an_option_that_krige_does_not_know_is_left_out(self):
        self.assertFalse(self.bench.can_run(jobs.Job("", "", ["predict"], (40, 2), 5, needs=["--no-such-option"])))

    def test_every_input_has_the_same_range(self):
        samples = jobs.make_samples(self.folder, 30, 3)

        for name in jobs.INPUTS:
            column = jobs.read_column(samples, name)
            self.assertEqual((min(column), max(column)), (0.0, 1.0))


class FastestPeersTest(unittest.TestCase):
    def test_at_each_n_the_least_median_is_kept(self):
        slow = {"n": 1, "who": "a", "seconds": [1, 9, 9]}
        fast = {"n": 1, "who": "b", "seconds": [2, 3, 4]}
        other = {"n": 2, "who": "a", "seconds": [7]}

        self.assertEqual(jobs.fastest_peers([slow, fast, other]), [fast, other])


if __name__ == "__main__":
    unittest.main()
