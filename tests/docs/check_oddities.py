"""The comments that name an oddity and docs/oddities.md agree: each names a row that is there, and each row has an
anchor that a comment names. Usage: check_oddities.py [ROOT]
"""

import os
import re
import sys

from manual import ROOT

PAGE = os.path.join("docs", "oddities.md")
SOURCES = ("src", "platform", "include", "simulator", "cli")
ROW = re.compile(r"- |\| (?!what \|)")


def named(root):
    """The anchors that comments name, and where."""
    for top in SOURCES:
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if name.endswith((".cpp", ".h")):
                    path = os.path.join(directory, name)
                    with open(path, encoding="utf-8") as file:
                        for number, line in enumerate(file, 1):
                            for anchor in re.findall(r"oddities\.md#([\w-]+)", line):
                                yield anchor, f"{os.path.relpath(path, root)}:{number}"


def main(root):
    with open(os.path.join(root, PAGE), encoding="utf-8") as file:
        rows = [line for line in file if ROW.match(line)]
    problems = [f"{PAGE}: no anchor: {row.strip()}" for row in rows if '<a id="' not in row]
    anchors = [anchor for row in rows for anchor in re.findall(r'<a id="([^"]+)"', row)]
    problems += [f"{PAGE}: '{anchor}' twice" for anchor in sorted(set(anchors)) if anchors.count(anchor) > 1]
    places = list(named(root))
    problems += [f"{place}: no oddity '{anchor}'" for anchor, place in places if anchor not in anchors]
    known = {anchor for anchor, _ in places}
    problems += [f"{PAGE}: no source names '{anchor}'" for anchor in anchors if anchor not in known]
    print("\n".join(problems) if problems else f"{len(anchors)} oddities are named at {len(places)} places")
    return 1 if problems or not anchors else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ROOT))
