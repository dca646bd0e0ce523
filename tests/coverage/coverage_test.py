"""scripts/coverage counts what a small program executed, and says what is below a floor or wrongly explained."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest

import figures
import gcov

MAIN = """
#include "twice.h"
#include <unistd.h>

static int least(int a, int b)
{
    return a < b ? a : b;
}

static int unused()
{
    int sum = 1;
    return sum;
}

int main(int argc, char**)
{
    if (fork() == 0) {
        _exit(argc > 9 ? unused() : twice(2));
    }
    return least(1, 2) + twice('a') - 195;
}
"""

TWICE = """
template <typename T> T twice(T value)
{
    if (sizeof(value) == 1 && value > 'z') {
        return value;
    }
    return value + value;
}
"""

THROWING = """
#include <stdexcept>
#include <string>

int number(const std::string& text, bool isKnown)
{
    try {
        return std::stoi((isKnown ? text : "0") + std::string(1, '0') + text);
    } catch (const std::out_of_range&) {
        return text.empty() ? 1 : 2;
    }
}
"""

DYING = """
#include <csignal>
#include <unistd.h>

int main(int argc, char**)
{
    std::signal(SIGTERM, SIG_IGN);
    kill(getpid(), SIGTERM);
    std::raise(SIGTERM);
    const bool isKilled = argc > 1;
    return isKilled ? kill(getpid(), SIGKILL) : std::raise(SIGINT);
}
"""


class CoverageTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = self.folder.name
        os.makedirs(os.path.join(self.root, "src"))
        self.write("src/main.cpp", MAIN)
        self.write("src/twice.h", TWICE)
        self.build("main")
        self.assertEqual(0, subprocess.run("./main", cwd=self.root, check=False).returncode)

    def build(self, name):
        here = os.path.dirname(os.path.abspath(__file__))
        for command in ("g++ --coverage -O0 -c src/%s.cpp -o %s.o" % (name, name), "gcc -c %s/ending.c -o ending.o" % here,
                        "g++ --coverage -Wl,--wrap=_exit,--wrap=kill,--wrap=raise %s.o ending.o -o %s" % (name, name)):
            subprocess.run(command.split(), cwd=self.root, check=True)

    def tearDown(self):
        self.folder.cleanup()

    def write(self, name, text):
        with open(os.path.join(self.root, name), "w", encoding="utf-8") as file:
            file.write(text)

    def run_figures(self, floors, reasons):
        self.write("floors", floors)
        self.write("unreached", reasons)
        ended = subprocess.run([sys.executable, "-B", figures.__file__, "--root", self.root, "--declared", self.root,
                                "--missing", "src", self.root], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               encoding="utf-8", check=False)
        return ended.returncode, ended.stdout

    def lines(self, name):
        text = {"src/main.cpp": MAIN, "src/twice.h": TWICE, "src/dying.cpp": DYING}[name].split("\n")
        found = gcov.read(self.root, [self.root], ("src/",))[name]
        return {text[number - 1].strip(): line for number, line in found.items()}

    def test_lines_and_branches_of_both_processes_and_instantiations_count(self):
        main, twice = self.lines("src/main.cpp"), self.lines("src/twice.h")
        self.assertEqual([True, False], [count > 0 for count in main["return a < b ? a : b;"][1]])
        self.assertEqual([False, True], sorted(count > 0 for count in main["_exit(argc > 9 ? unused() : twice(2));"][1]))
        self.assertEqual(0, main["int sum = 1;"][0])
        self.assertEqual(2, twice["return value + value;"][0])

    def test_what_a_process_does_before_its_own_signal_counts_and_what_it_does_behind_one_that_it_survives(self):
        self.write("src/dying.cpp", DYING)
        self.build("dying")
        for arguments, signal_number in (("", signal.SIGINT), ("x", signal.SIGKILL)):
            command = ["./dying"] + arguments.split()
            self.assertEqual(-signal_number, subprocess.run(command, cwd=self.root, check=False).returncode)
        lines = self.lines("src/dying.cpp")
        self.assertEqual([2, 2], [lines[text][0] for text in ("kill(getpid(), SIGTERM);", "const bool isKilled = argc > 1;")])
        self.assertEqual([1, 1], lines["return isKilled ? kill(getpid(), SIGKILL) : std::raise(SIGINT);"][1])

    def test_what_only_an_exception_decides_does_not_count(self):
        self.write("src/throwing.cpp", THROWING)
        subprocess.run("g++ --coverage -O0 -c src/throwing.cpp -o throwing.o".split(), cwd=self.root, check=True)
        found = gcov.read(self.root, [self.root], ("src/throwing",))["src/throwing.cpp"]
        branches = {THROWING.split("\n")[number - 1].strip(): counts for number, (_, counts) in found.items()}
        self.assertEqual([], branches["} catch (const std::out_of_range&) {"])
        self.assertEqual([0, 0], branches["return text.empty() ? 1 : 2;"])
        self.assertEqual([0, 0], branches["return std::stoi((isKnown ? text : \"0\") + std::string(1, '0') + text);"][:2])

    def test_what_is_below_its_floor_is_named(self):
        status, told = self.run_figures("src 69 62 99 95\n", "")
        self.assertEqual(0, status)
        self.assertRegex(told, r"(?m)^src +13 +69\.23 .* 8 +62\.50 ")
        status, told = self.run_figures("src 69 63 99 95\n", "")
        self.assertEqual(1, status)
        self.assertIn("coverage: src is below its floor", told)
        self.assertIn("coverage: gone is below its floor", self.run_figures("gone 0 0 99 95\n", "")[1])

    def test_what_is_not_covered_is_printed_until_it_is_explained(self):
        self.assertIn("src/main.cpp:10: never: static int unused() (3 lines)", self.run_figures("src 0 0 0 0\n", "")[1])
        status, told = self.run_figures("src 0 0 0 0\n", "nobody asks for it\n  src/main.cpp: `static int unused()`\n")
        self.assertEqual(0, status)
        self.assertNotIn("static int unused()", told)

    def test_a_reason_for_what_is_covered_or_gone_is_an_error(self):
        covered = "none\n  src/main.cpp: `int main(int argc, char**)`\n"
        self.assertIn("`int main(int argc, char**)` is covered", self.run_figures("src 0 0 0 0\n", covered)[1])
        status, told = self.run_figures("src 0 0 0 0\n", "none\n  src/main.cpp: `int other()`\n")
        self.assertEqual(1, status)
        self.assertIn("`int other()` is not there", told)


if __name__ == "__main__":
    unittest.main()
