"""check-layers on small trees: what it refuses, and what it lets pass."""
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "check-layers")
ORDER = """`scripts/check-layers` reads this list:

```
lib/low: Contract
lib/low/inner  lib/low/other
lib/low
lib/high
application/cli
```
"""


class CheckLayers(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as root:
            for path, text in {"docs/architecture.md": ORDER, **files}.items():
                path = os.path.join(root, path)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
            return subprocess.run([sys.executable, "-B", SCRIPT, root], capture_output=True, text=True, check=False)

    def assert_refused(self, files, sentence):
        result = self.check(files)
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn(sentence, result.stdout)

    def test_includes_that_point_down_pass(self):
        result = self.check({"lib/high/A.cpp": "#include <low/B.h>", "lib/low/B.h": "#include <low/inner/C.h>",
                             "lib/low/inner/C.h": "#include <low/Contract.h>\n#include <vector>",
                             "lib/low/Contract.h": ""})
        self.assertEqual((result.returncode, result.stdout), (0, "4 files, 5 rooms: all includes point down\n"))

    def test_an_include_of_a_room_above_is_refused(self):
        self.assert_refused({"lib/low/B.h": "#include <high/A.h>", "lib/high/A.h": ""},
                            "lib/low/B.h (lib/low) includes lib/high/A.h (lib/high), which is not below it")

    def test_rooms_of_one_line_do_not_know_each_other(self):
        self.assert_refused({"lib/low/inner/C.h": "#include <low/other/D.h>", "lib/low/other/D.h": ""}, "lib/low/inner/C.h (lib/low/inner)")

    def test_two_units_that_need_each_other_are_a_cycle(self):
        self.assert_refused({"lib/high/A.cpp": '#include "high/B.h"', "lib/high/A.h": "", "lib/high/B.h": "#include <high/A.h>"},
                            "A cycle: lib/high/A -> lib/high/B -> lib/high/A")

    def test_the_private_state_of_a_class_belongs_to_its_unit(self):
        self.assertEqual(self.check({"lib/high/A.cpp": '#include "high/AImpl.h"', "lib/high/A.h": "",
                                     "lib/high/AImpl.h": "#include <high/A.h>"}).returncode, 0)

    def test_a_folder_that_is_not_listed_belongs_to_the_one_around_it(self):
        self.assert_refused({"lib/low/new/E.h": "", "lib/low/inner/H.h": "#include <low/new/E.h>"},
                            "lib/low/inner/H.h (lib/low/inner) includes lib/low/new/E.h (lib/low)")

    def test_options_of_the_program_stand_in_no_string_below_it(self):
        for text in ('"name one (--inputs)"', '"choose " + "-m"', '"a \\"b\\" --terms T"'):
            self.assert_refused({"lib/high/A.cpp": f"const char* const a = {text};"}, "lib/high/A.cpp: a string holds the option -")
        for text in ('/* "--inputs" */', '// "-x"', '"<!--a-->" "all-terms" "a - b" "-1" "-->"'):
            self.assertEqual(self.check({"lib/high/A.cpp": text}).returncode, 0, text)
        self.assertEqual(self.check({"application/cli/A.cpp": '"--inputs"', "lib/high/tests/A.cpp": '"--inputs"'}).returncode, 0)

    def test_tests_may_use_everything_of_their_component_but_nothing_above(self):
        self.assertEqual(self.check({"lib/low/inner/tests/CTest.cpp": "#include <low/B.h>", "lib/low/B.h": ""}).returncode, 0)
        self.assert_refused({"lib/low/inner/tests/CTest.cpp": "#include <high/A.h>", "lib/high/A.h": ""}, "includes lib/high/A.h (lib/high)")

    def test_files_of_tests_are_for_tests(self):
        self.assert_refused({"lib/high/A.h": "#include <high/tests/B.h>", "lib/high/tests/B.h": ""}, "a file of tests")


if __name__ == "__main__":
    unittest.main()
