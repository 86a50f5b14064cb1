"""What compare-runs says about small runs."""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = Path(__file__).resolve().parents[1] / "compare-runs"


def entries(name, times, label="", unit="ns", **more):
    return [{"name": name, "run_name": name, "run_type": "iteration", "repetition_index": i,
             "real_time": 2 * time, "cpu_time": time, "time_unit": unit, "label": label, **more}
            for i, time in enumerate(times)]


REFERENCE = entries("referenceArithmetic", [100, 101, 102])


class CompareRuns(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, benchmarks):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(json.dumps({"context": {}, "benchmarks": benchmarks}), encoding="utf-8")
        return path

    def run_program(self, *arguments):
        return subprocess.run([sys.executable, "-B", str(PROGRAM), *map(str, arguments)],
                              capture_output=True, text=True, check=False)

    def compare(self, before, after, *arguments):
        return self.run_program(self.write("before.json", before), self.write("after.json", after),
                                *arguments)

    def test_equal_runs_are_no_change(self):
        run = REFERENCE + entries("fit/100", [500, 505, 510])
        result = self.compare(run, run)
        self.assertEqual(result.stdout, "1 compared, 0 slower, 0 faster.\n")
        self.assertEqual(result.returncode, 0)

    def test_names_what_became_slower(self):
        result = self.compare(REFERENCE + entries("fit/100", [500, 505, 510]),
                              REFERENCE + entries("fit/100", [1000, 1010, 1020]))
        self.assertEqual(result.returncode, 1)
        self.assertIn("Slower:\n  fit/100: 5 -> 10 x referenceArithmetic, 2.00 times",
                      result.stdout)

    def test_names_what_became_faster_and_succeeds(self):
        result = self.compare(REFERENCE + entries("fit/100", [500, 505, 510]),
                              REFERENCE + entries("fit/100", [250, 255, 260]))
        self.assertEqual(result.returncode, 0)
        self.assertIn("Faster:\n  fit/100: 5 -> 2.5 x", result.stdout)

    def test_a_machine_that_is_slower_as_a_whole_is_no_change(self):
        result = self.compare(REFERENCE + entries("fit", [500, 505, 510]),
                              entries("referenceArithmetic", [300, 303, 306])
                              + entries("fit", [1500, 1505, 1510]))
        self.assertEqual(result.returncode, 0)
        self.assertIn("0 slower, 0 faster", result.stdout)

    def test_scattered_repetitions_are_noise(self):
        result = self.compare(REFERENCE + entries("fit", [500, 600, 700]),
                              REFERENCE + entries("fit", [600, 700, 800]))
        self.assertEqual(result.returncode, 0)

    def test_the_same_step_without_scatter_is_a_change(self):
        result = self.compare(REFERENCE + entries("fit", [500, 501, 502]),
                              REFERENCE + entries("fit", [600, 601, 602]))
        self.assertEqual(result.returncode, 1)

    def test_a_scattered_reference_is_noise_too(self):
        scattered = entries("referenceArithmetic", [100, 130, 140])
        result = self.compare(scattered + entries("fit", [500, 501, 502]),
                              scattered + entries("fit", [600, 601, 602]))
        self.assertEqual(result.returncode, 0)

    def test_single_repetitions_prove_only_large_changes(self):
        before = entries("referenceArithmetic", [100]) + entries("fit", [500])
        doubled = entries("referenceArithmetic", [100]) + entries("fit", [900])
        sevenfold = entries("referenceArithmetic", [100]) + entries("fit", [3500])
        self.assertEqual(self.compare(before, doubled).returncode, 0)
        self.assertEqual(self.compare(before, sevenfold).returncode, 1)

    def test_changes_below_the_tolerance_do_not_count(self):
        before = REFERENCE[:1] * 3 + entries("fit", [500, 500, 500])
        after = REFERENCE[:1] * 3 + entries("fit", [540, 540, 540])
        self.assertEqual(self.compare(before, after).returncode, 1)
        self.assertEqual(self.compare(before, after, "--tolerance", "0.1").returncode, 0)

    def test_the_label_names_another_reference(self):
        def run(copy, fill):
            return (REFERENCE + entries("copyBytes", copy)
                    + entries("fill", fill, label="beside copyBytes"))
        result = self.compare(run([10, 10, 10], [50, 50, 50]), run([20, 20, 20], [100, 100, 100]))
        self.assertNotIn("fill:", result.stdout)
        self.assertIn("copyBytes: 0.1 -> 0.2 x referenceArithmetic", result.stdout)

    def test_of_references_with_arguments_that_with_the_same_counts(self):
        def run(fill):
            return (entries("copy/1", [10, 10, 10]) + entries("copy/2", [20, 20, 20])
                    + entries("fill/2", fill, label="beside copy"))
        result = self.compare(run([40, 40, 40]), run([80, 80, 80]))
        self.assertIn("fill/2: 2 -> 4 x copy/2", result.stdout)

    def test_units_may_differ(self):
        result = self.compare(REFERENCE + entries("fit", [2e6, 2e6, 2e6]),
                              REFERENCE + entries("fit", [2, 2, 2], unit="ms"))
        self.assertIn("0 slower, 0 faster", result.stdout)

    def test_aggregates_and_failed_repetitions_do_not_count(self):
        after = (REFERENCE + entries("fit", [500, 500, 500])
                 + [{**entries("fit", [5000])[0], "run_type": "aggregate", "name": "fit_mean"}]
                 + entries("fit", [0], error_occurred=True))
        result = self.compare(REFERENCE + entries("fit", [500, 500, 500]), after)
        self.assertIn("1 compared, 0 slower, 0 faster", result.stdout)

    def test_without_a_reference_the_times_themselves_count(self):
        result = self.compare(entries("fit", [500, 500, 500], unit="us"),
                              entries("fit", [1000, 1000, 1000], unit="us"))
        self.assertIn("fit: 0.5 -> 1 ms", result.stdout)
        self.assertEqual(result.returncode, 1)

    def test_elapsed_time_on_request(self):
        def run(real):
            return REFERENCE + [{**entry, "real_time": real}
                                for entry in entries("fit", [500, 500, 500])]
        self.assertEqual(self.compare(run(1000), run(9000)).returncode, 0)
        self.assertEqual(self.compare(run(1000), run(9000), "--wall").returncode, 1)

    def test_only_what_was_asked_for(self):
        def run(fit):
            return REFERENCE + entries("fit", fit) + entries("grid", [7, 7, 7])
        result = self.compare(run([500, 500, 500]), run([1000, 1000, 1000]), "--only", "^grid")
        self.assertEqual(result.returncode, 0)
        self.assertIn("1 compared", result.stdout)

    def test_what_the_second_run_lacks_is_named(self):
        result = self.compare(REFERENCE + entries("fit", [5, 5, 5]) + entries("grid", [5, 5, 5]),
                              REFERENCE + entries("fit", [5, 5, 5]))
        self.assertIn("Missing in the second run: grid\n", result.stdout)
        self.assertEqual(result.returncode, 1)

    def test_folders_are_compared_file_by_file(self):
        for folder, time in (("a", 500), ("b", 1500)):
            self.write(f"{folder}/OneBench.json", REFERENCE + entries("fit", [time] * 3))
            self.write(f"{folder}/TwoBench.json", REFERENCE + entries("grid", [7, 7, 7]))
        result = self.run_program(self.folder / "a", self.folder / "b")
        self.assertEqual(result.returncode, 1)
        self.assertIn("2 compared, 1 slower", result.stdout)

    def test_a_file_that_the_second_folder_lacks_is_named_and_no_success(self):
        for folder in ("a", "b"):
            self.write(f"{folder}/OneBench.json", REFERENCE + entries("fit", [500] * 3))
        self.write("a/TwoBench.json", REFERENCE + entries("grid", [7, 7, 7]))
        self.write("b/ThreeBench.json", REFERENCE + entries("read", [7, 7, 7]))
        result = self.run_program(self.folder / "a", self.folder / "b")
        self.assertEqual(result.stdout, "Missing in the second run: TwoBench.json\n"
                                        "1 compared, 0 slower, 0 faster.\n")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(self.run_program(self.folder / "b", self.folder / "a").returncode, 1)

    def test_refuses_options_without_meaning_in_one_sentence(self):
        run = self.write("run.json", REFERENCE + entries("fit", [5, 5, 5]))
        for option, value, message in (
                ("--only", "(", "--only needs a regular expression, not \"(\""),
                ("--tolerance", "nan", "--tolerance needs a fraction from 0 on, not \"nan\""),
                ("--tolerance", "-0.1", "--tolerance needs a fraction from 0 on, not \"-0.1\""),
                ("--tolerance", "inf", "--tolerance needs a fraction from 0 on, not \"inf\""),
                ("--tolerance", "much", "--tolerance needs a fraction from 0 on, not \"much\"")):
            with self.subTest(value):
                result = self.run_program(run, run, f"{option}={value}")
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertIn(message, result.stderr)
                self.assertEqual(result.stderr.count("\n"), 1)

    def test_refuses_what_is_no_run_in_one_sentence(self):
        run = self.write("run.json", REFERENCE + entries("fit", [5, 5, 5]))
        no_json = self.folder / "text.json"
        no_json.write_text("fit 500", encoding="utf-8")
        other = self.write("other.json", REFERENCE + entries("grid", [5, 5, 5]))
        zero = self.write("zero.json", entries("fit", [0]))
        empty = self.folder / "empty"
        empty.mkdir()
        for after, message in (
                (no_json, "has to be a JSON file that Google Benchmark wrote"),
                (self.folder / "none.json", "cannot be read: No such file or directory."),
                (self.write("list.json", [3]), "has to be a JSON file"),
                (zero, "the time of fit has to be positive, not 0.0."),
                (other, "The two runs have no benchmark in common."),
                (empty, "Compare two files or two folders, not one of each.")):
            with self.subTest(message):
                result = self.run_program(run, after)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertIn(message, result.stderr)
                self.assertEqual(result.stderr.count("\n"), 1)
        result = self.run_program(empty, empty)
        self.assertIn("no JSON file of the same name", result.stderr)


if __name__ == "__main__":
    unittest.main()
