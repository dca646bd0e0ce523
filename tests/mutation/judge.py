"""Runs tests with and without a mutant."""

import os
import resource
import signal
import subprocess
import tempfile
import time

from mutants import MOST

SLOWEST = 60.0  # a test that takes longer is left out
LEAST_LIMIT = float(os.environ.get("MUTATE_LIMIT", "20"))  # of a test with a mutant
TIMES = 10  # that a test may take of its own time with a mutant
MOST_SECONDS = 60.0  # of tests, those first that reach its file and little else; who is not seen by then has survived


def _end(process, folder, mutant):
    """With all that it has started, also in sessions of their own: the folder or the mutant is in what they were given."""
    marks = [folder.encode()] + ([b"MUTANT=" + mutant.encode() + b"\0"] if mutant != "0" else [])
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    for number in filter(str.isdigit, os.listdir("/proc")):
        for what in ("environ", "cmdline"):
            try:
                with open("/proc/%s/%s" % (number, what), "rb") as file:
                    given = file.read()
                    if any(mark in given for mark in marks):
                        os.kill(int(number), signal.SIGKILL)
            except OSError:  # it is gone
                pass


def run(test, limit, **variables):
    """"passed", "failed" or "hung"."""
    environment = {**os.environ, **test.environment, **variables}
    with tempfile.TemporaryDirectory(prefix="mutate-") as folder:
        environment["TMPDIR"] = folder
        process = subprocess.Popen(test.command, cwd=test.folder or folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                                   preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CORE, (0, 0)))
        try:
            state = "failed" if process.wait(limit) != 0 else "passed"
        except subprocess.TimeoutExpired:
            state = "hung"
        if state != "passed":
            _end(process, folder, variables["MUTANT"])
            process.wait()
    return state


def measure(test):
    """Runs it without a mutant: what it takes, and which mutants it can see. As run() says; a second try is given."""
    for _ in range(2):
        with tempfile.NamedTemporaryFile(prefix="mutate-") as seen:
            seen.truncate(MOST)
            begin = time.monotonic()
            state = run(test, SLOWEST, MUTANTS_REACHED=seen.name, MUTANT="0")
            test.seconds = time.monotonic() - begin
            content = seen.read()
        if state != "failed":
            break
    at = content.find(1)
    while at != -1:
        test.reached.append(at)
        at = content.find(1, at + 1)
    return state


def judge(mutant, tests, neighbours):
    """("killed" or "hung", the test that saw it) or ("survived" or "not reached", None). The neighbours are the numbers
    of the mutants of its file: one in a constant is reached by every test."""
    seeing = sorted((test for test in tests if mutant.number in test.reached),
                    key=lambda test: (test.seconds > 2, -len(neighbours & set(test.reached)) / len(test.reached), test.seconds))
    end = time.monotonic() + MOST_SECONDS
    for test in seeing:
        if time.monotonic() > end:
            break
        state = run(test, max(LEAST_LIMIT, TIMES * test.seconds), MUTANT=str(mutant.number))
        # One that fails without the mutant too has not seen it.
        if state != "passed" and run(test, 120, MUTANT="0") == "passed":
            return ("killed" if state == "failed" else "hung"), test.name
    return ("survived" if seeing else "not reached"), None
