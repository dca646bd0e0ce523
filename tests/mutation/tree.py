"""A copy of this checkout with every mutant in it, and the programs and tests that are built of it."""

import glob
import json
import os
import re
import shutil
import subprocess

from mutants import mutated


class BuildError(Exception):
    """The copy cannot be built: a mutant does not compile, or the checkout does not."""


def _write(path, content):
    """Leaves alone what is as it should be: the build looks at times."""
    if os.path.exists(path):
        with open(path, "rb") as file:
            if file.read() == content:
                return
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def _files(root):
    """What is not built, nor git's; a folder below the first may be called build."""
    for directory, folders, names in os.walk(root):
        others = r"build|\.git$" if directory == root else r"__pycache__$"
        folders[:] = [name for name in folders if not re.match(others, name)]
        for name in names:
            yield os.path.relpath(os.path.join(directory, name), root)


def copy(root, tree, mutants):
    """Makes the tree the checkout as it is, with these mutants."""
    of_file = {}
    for mutant in mutants:
        of_file.setdefault(mutant.file, []).append(mutant)
    names = [name for name in _files(root) if os.path.isfile(os.path.join(root, name))]
    for name in names:
        source = os.path.join(root, name)
        with open(source, "rb") as file:
            content = file.read()
        if name in of_file:
            content = mutated(content.decode("ascii"), of_file[name]).encode("ascii")
        _write(os.path.join(tree, name), content)
        shutil.copymode(source, os.path.join(tree, name))
    known = {os.path.join(tree, name) for name in names}
    for name in [name for name in _files(tree) if os.path.join(tree, name) not in known]:
        os.remove(os.path.join(tree, name))


def build(tree, output, targets, jobs):
    """Unoptimised, and with the assertions of the product; warnings are no errors: a mutant may leave something unused."""
    commands = []
    if not os.path.exists(os.path.join(output, "build.ninja")):
        linker = "-fuse-ld=lld"
        commands.append(["cmake", "-S", tree, "-B", output, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                         "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -D_GLIBCXX_ASSERTIONS", "-DTESSEL_UNITY=TESTS",
                         "-DCMAKE_EXE_LINKER_FLAGS=" + linker, "-DCMAKE_SHARED_LINKER_FLAGS=" + linker])
    commands.append(["cmake", "--build", output, "-j", str(jobs), "--target"] + targets)
    with open(output + ".log", "w", encoding="utf-8") as log:
        for command in commands:
            if subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, check=False).returncode != 0:
                raise BuildError("the copy cannot be built: see %s.log" % output)


class Test:
    def __init__(self, entry):
        self.name = entry["name"]
        self.command = entry["command"]
        properties = {one["name"]: one["value"] for one in entry.get("properties", [])}
        self.folder = properties.get("WORKING_DIRECTORY")
        self.environment = dict(one.split("=", 1) for one in properties.get("ENVIRONMENT", []))
        self.seconds = 0.0  # as it was measured without a mutant
        self.reached = []  # numbers of mutants


def _time_of(path):
    return os.stat(path).st_mtime_ns if os.path.isfile(path) else 0


def stamp(output, test):
    """Changes when what the test runs is built anew."""
    libraries = glob.glob(os.path.join(output, "lib", "*.so*"))
    programs = [os.path.join(output, "bin", name) for name in ("tesselctl", "tessel-arraysim")]
    return max(map(_time_of, libraries + programs + [part for part in test.command if part.startswith(output)]), default=0)


def tests_of(output, targets):
    """What ctest would run of these programs."""
    shown = subprocess.run(["ctest", "--test-dir", output, "--show-only=json-v1"], check=True, capture_output=True,
                           text=True).stdout
    return [Test(entry) for entry in json.loads(shown)["tests"]
            if any(os.path.basename(part) in targets for part in entry.get("command", []))]
