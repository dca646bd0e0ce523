"""scripts/coverage: what the tests executed, by folder, against floors; and whether what they did not is explained."""

import argparse
import os
import re
import sys

import gcov

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
FOLDERS = ("src/", "platform/", "cli/", "simulator/", "include/")


def declared(folder, name):
    """The lines of a declared file that say something."""
    with open(os.path.join(folder, name), encoding="utf-8") as lines:
        return [line.rstrip("\n") for line in lines if line.strip() and not line.startswith("#")]


def text_of(root, name):
    with open(os.path.join(root, name), encoding="utf-8") as lines:
        return [""] + [line.strip() for line in lines]


def is_missing(line):
    count, branches = line
    return count == 0 or 0 in branches


def gaps_of(lines):
    """Runs of lines that nothing executed, and lines with a branch that nothing took: [[line...]...]."""
    gaps, is_running = [], False
    for number in sorted(lines):
        if lines[number][0] == 0 and is_running:
            gaps[-1].append(number)
        elif is_missing(lines[number]):
            gaps.append([number])
        is_running = lines[number][0] == 0
    return gaps


def check_reasons(root, files, told):
    """What the list of reasons says that is not so; and the gaps, each with its reason, or none."""
    gaps = {(name, gap[0]): [gap, None] for name in files for gap in gaps_of(files[name])}
    wrong, reason = [], ""
    for line in told:
        if not line.startswith(" "):
            reason = line
            continue
        name, text = re.fullmatch(r" +(\S+): `(.*)`", line).groups()
        places = [number for number, own in enumerate(text_of(root, name)) if own == text] if name in files else []
        explained = [place for place in places if (name, place) in gaps]
        for place in explained:
            gaps[name, place][1] = reason
        if not explained:
            wrong.append("%s: `%s` %s" % (name, text, "is covered" if places else "is not there"))
    return gaps, wrong


def figures_of(files, folder):
    """(lines, executed ones, branches, taken ones) of a folder."""
    lines = [line for name in files if name.startswith(folder + "/") for line in files[name].values()]
    branches = [count for _, counts in lines for count in counts]
    return len(lines), sum(1 for count, _ in lines if count), len(branches), sum(1 for count in branches if count)


def share(part, whole):
    return 100.0 * part / whole if whole else 100.0


def check_floors(files, floors):
    """Prints a table. Which folders are below their floors."""
    below = []
    print("%-20s %7s %7s %7s %6s   %8s %7s %7s %6s" %
          ("folder", "lines", "%", "floor", "aim", "branches", "%", "floor", "aim"))
    for row in floors:
        folder, *bounds = row.split()
        line_floor, branch_floor, line_aim, branch_aim = map(float, bounds)
        lines, executed, branches, taken = figures_of(files, folder)
        print("%-20s %7d %7.2f %7.1f %6.0f   %8d %7.2f %7.1f %6.0f" %
              (folder, lines, share(executed, lines), line_floor, line_aim,
               branches, share(taken, branches), branch_floor, branch_aim))
        if not lines or share(executed, lines) < line_floor or share(taken, branches) < branch_floor:
            below.append(folder)
    return below


def main():
    parser = argparse.ArgumentParser(prog="coverage")
    parser.add_argument("--missing", metavar="PATH", help="print what is not covered below it, and not explained")
    parser.add_argument("--root", default=ROOT, help=argparse.SUPPRESS)
    parser.add_argument("--declared", default=HERE, help=argparse.SUPPRESS)
    parser.add_argument("builds", nargs="+")
    options = parser.parse_args()
    files = gcov.read(options.root, options.builds, FOLDERS)
    gaps, wrong = check_reasons(options.root, files, declared(options.declared, "unreached"))
    below = check_floors(files, declared(options.declared, "floors"))
    unexplained = [(name, gap) for (name, _), (gap, reason) in sorted(gaps.items()) if not reason]
    for name, gap in unexplained:
        if options.missing and name.startswith(options.missing):
            count, branches = files[name][gap[0]]
            what = "never" if count == 0 else "%d of %d branches" % (sum(map(bool, branches)), len(branches))
            print("%s:%d: %s: %s" % (name, gap[0], what, text_of(options.root, name)[gap[0]]) +
                  (" (%d lines)" % len(gap) if len(gap) > 1 else ""))
    print("%d places are not covered; %d of them are explained in tests/coverage/unreached" %
          (len(gaps), len(gaps) - len(unexplained)))
    for fault in wrong:
        print("coverage: tests/coverage/unreached: %s" % fault, file=sys.stderr)
    for folder in below:
        print("coverage: %s is below its floor" % folder, file=sys.stderr)
    return 1 if wrong or below else 0


if __name__ == "__main__":
    sys.exit(main())
