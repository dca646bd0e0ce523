"""scripts/mutate finds what no test sees, in a small project of its own, and says what is wrong with a list."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

import mutants

PROJECT = {
    "CMakeLists.txt": """
cmake_minimum_required(VERSION 3.25)
project(Small CXX)
enable_testing()
add_executable(small_test src/small.cpp tests/build/test.cpp)
add_test(NAME small COMMAND small_test)
""",
    "src/small.cpp": """
static constexpr const char* KEY = "KEY";

int clamped(int value, int most)
{
    constexpr int STEPS = 3;
    int steps = 0;
    for (int i = 0; i < 3; ++i) {
        ++steps;
    }
    return KEY[0] == 'K' && steps == STEPS && value > most ? most : value;
}

int unused()
{
    return 1;
}
""",
    "tests/build/test.cpp": """
int clamped(int value, int most);

int main()
{
    return clamped(7, 5) == 5 && clamped(4, 5) == 4 ? 0 : 1;
}
""",
    "tests/mutation/programs.txt": "src/: small_test\n",
}

LIST = """
# What is in it.
src/small.cpp
  operator   `value > most` -> `value < most`
  boundary   `value > most` -> `value >= most`
    survives: the greatest value is itself
  key        `"KEY"` -> `"XKEY"`
  left-out   `++i` -> `i += 0`
  left-out   `++steps;`
  value      `3` -> `4` in `STEPS = 3`
  off-by-one `0` -> `1` in `int i = 0`
"""


class Command(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tessel-mutation-")
        self.addCleanup(folder.cleanup)
        self.root = folder.name

    def mutate(self, mutants_text, *arguments):
        for name, content in {**PROJECT, "tests/mutation/mutants/small.txt": mutants_text}.items():
            path = os.path.join(self.root, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="ascii") as file:
                file.write(content)
        ended = subprocess.run([sys.executable, "-B", os.path.join(mutants.HERE, "mutate.py"), "--root", self.root, *arguments],
                               capture_output=True, text=True, check=False)
        return ended.returncode, ended.stdout + ended.stderr

    def test_killsNamesAndExplains(self):
        status, said = self.mutate(LIST, "--kills")
        self.assertEqual(status, 0, said)
        self.assertRegex(said, r"\nall +7 +6 +1 +1\n")
        self.assertRegex(said, r"hung +\d+ src/small.cpp: left-out `\+\+i`")
        self.assertRegex(said, r"killed +\d+ src/small.cpp: key `\"KEY\"`.*  by small\n")
        self.assertIn("the greatest value is itself", said)

        unexplained = LIST.replace("    survives: the greatest value is itself\n", "") + "  value `1` -> `2` in `return 1`\n"
        unexplained = unexplained.replace("  left-out   `++i` -> `i += 0`\n", "")
        status, said = self.mutate(unexplained)
        self.assertEqual(status, 1, said)
        self.assertRegex(said, r"survived: \d+ src/small.cpp: boundary `value > most` -> `value >= most`\n  NOT EXPLAINED")
        self.assertRegex(said, r"not reached: \d+ src/small.cpp: value `1` -> `2`")

        status, said = self.mutate(LIST.replace("value < most", "value < less"))
        self.assertEqual(status, 2, said)
        self.assertIn("cannot be built", said)

    def test_aListThatIsWrongIsRefused(self):
        for wrong, reason in ((LIST.replace("`++steps;`", "`++stop;`"), "stands 0 times in the file"),
                              (LIST.replace(" in `int i = 0`", ""), r"stands \d+ times in the file"),
                              (LIST + "  left-out `++steps;`\n", "twice"),
                              (LIST + "  steps `0` -> `1`\n", "cannot be read"),
                              (LIST + "  condition `if (true)` -> `if (false)`\n", "is no expression")):
            status, said = self.mutate(wrong)
            self.assertEqual(status, 2, said)
            self.assertRegex(said, reason)


class Declared(unittest.TestCase):
    def test_haveTheirPlaceInTheSources(self):
        lost = []
        declared = mutants.read(os.path.dirname(os.path.dirname(mutants.HERE)), lost)
        self.assertLess(len(lost), len(declared) / 10, "\n".join(map(str, lost)))  # scripts/mutate refuses each of them
        self.assertGreaterEqual(len(declared), 300)
        self.assertEqual({re.match(r"\w+", one.file).group() for one in declared}, {"src", "platform", "cli", "simulator"})
        self.assertEqual({one.kind for one in declared}, set(mutants.KINDS))


if __name__ == "__main__":
    unittest.main()
