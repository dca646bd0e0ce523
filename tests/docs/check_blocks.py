"""Every block of C++, shell or CMake in the manual stands word for word in the example that it names:

    <!-- example: examples/first_lun.cpp -->

stands on the line above the block. The block may be indented otherwise, as a whole. Usage: check_blocks.py [ROOT]
"""

import os
import re
import sys

from manual import ROOT, blocks_and_prose, pages

CHECKED = {"cpp", "c++", "sh", "bash", "shell", "cmake"}
FREE = {"", "text", "ini", "json"}
MARKER = re.compile(r"^<!-- example: (\S+) -->$")


def indented(lines, indent):
    return [indent + line if line else line for line in lines]


def is_part(block, lines):
    """True when the lines of the block follow each other in the file, indented more or less as a whole."""
    for first in range(len(lines) - len(block) + 1):
        indent = lines[first][:len(lines[first]) - len(lines[first].lstrip())]
        if indented(block, indent) == lines[first:first + len(block)] or block == lines[first:first + len(block)]:
            return True
    return False


def problem_of(block, root):
    """What is wrong with a block; None when nothing is."""
    if block.language in FREE:
        return None
    if block.language not in CHECKED:
        return f"a block of '{block.language}': tag it with one of {', '.join(sorted(CHECKED | FREE - {''}))}, or not at all"
    match = MARKER.match(block.above)
    if not match:
        return "the line above the block does not name its example: <!-- example: PATH -->"
    path = os.path.normpath(match.group(1))
    if not path.startswith("examples" + os.sep):
        return f"{path} is no file of examples/"
    try:
        with open(os.path.join(root, path), encoding="utf-8") as file:
            lines = file.read().splitlines()
    except OSError as error:
        return f"{path}: {error.strerror}"
    if not [line for line in block.lines if line.strip()]:
        return "the block is empty"
    return None if is_part(block.lines, lines) else f"the block does not stand in {path} as it is here"


def main(root):
    problems, checked = [], 0
    for page in pages(root):
        with open(page, encoding="utf-8") as file:
            blocks, _ = blocks_and_prose(file.read())
        for block in blocks:
            problem = problem_of(block, root)
            checked += block.language in CHECKED
            if problem:
                problems.append(f"{os.path.relpath(page, root)}:{block.number}: {problem}")
    print("\n".join(problems) if problems else f"{checked} blocks are what their examples say")
    return 1 if problems or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ROOT))
