"""What run-all makes of programs that fail, of old files and of its options."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = Path(__file__).resolve().parents[1] / "run-all"

WRITES = """#!/bin/sh
for argument; do
    case $argument in
        --benchmark_out=*) echo new > "${argument#--benchmark_out=}" ;;
    esac
done
"""


class RunAll(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.out = self.folder / "out"
        self.out.mkdir()
        (self.folder / "bin").mkdir()

    def add_program(self, name, text=WRITES):
        path = self.folder / "bin" / name
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_program(self, *arguments):
        return subprocess.run([sys.executable, "-B", str(PROGRAM), str(self.out),
                               "--build", str(self.folder), *arguments],
                              capture_output=True, text=True, check=False)

    def files(self):
        return {path.name: path.read_text(encoding="utf-8") for path in self.out.iterdir()}

    def test_writes_a_file_per_program(self):
        self.add_program("OneBench")
        self.add_program("TwoBench")
        self.assertEqual(self.run_program().returncode, 0)
        self.assertEqual(self.files(), {"OneBench.json": "new\n", "TwoBench.json": "new\n"})

    def test_runs_the_others_when_a_program_fails_and_fails_at_the_end(self):
        self.add_program("OneBench", WRITES + "exit 3")
        self.add_program("TwoBench", "#!/bin/sh\nexit 1")
        self.add_program("ZooBench")
        for name in ("OneBench", "TwoBench", "ZooBench", "OtherBench"):
            (self.out / f"{name}.json").write_text("old", encoding="utf-8")
        result = self.run_program()
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr.splitlines()[-1], "run-all: OneBench, TwoBench failed.")
        # What a program wrote before it failed is no run.
        self.assertEqual(self.files(), {"ZooBench.json": "new\n", "OtherBench.json": "old"})

    def test_a_program_that_cannot_be_run_has_failed(self):
        self.add_program("OneBench", "#!/there/is/no/such/interpreter")
        self.add_program("TwoBench")
        result = self.run_program()
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr.splitlines()[-1], "run-all: OneBench failed.")
        self.assertEqual(self.files(), {"TwoBench.json": "new\n"})

    def test_refuses_what_is_no_regular_expression_in_one_sentence(self):
        self.add_program("OneBench")
        result = self.run_program("--only", "(")
        self.assertEqual(result.returncode, 2)
        self.assertIn("--only needs a regular expression, not \"(\"", result.stderr)
        self.assertEqual(result.stderr.count("\n"), 1)
        self.assertEqual(self.files(), {})


if __name__ == "__main__":
    unittest.main()
