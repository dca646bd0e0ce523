"""The manual's tables of messages and the sources agree: every message of the sources stands in docs/errors.md or
docs/logs.md, and every message in the first column of their tables stands in the sources. Usage: check_messages.py [ROOT]
"""

import os
import re
import sys

from manual import ROOT, blocks_and_prose

PAGES = ("errors.md", "logs.md")
SOURCES = ("src", os.path.join("include", "tessel"), os.path.join("platform", "rest"), os.path.join("platform", "log"))
LITERAL = re.compile(r'"(?:[^"\\\n]|\\.)*"(?:\s*"(?:[^"\\\n]|\\.)*")*')
NO_MESSAGE = re.compile(r"""
    ^Shows\ disks\ to\ one\ host # a description
    | ^\s*(ls|lsscsi|echo|timeout|kxRescan|which|rescan-scsi-bus\.sh|multipathd?|dmsetup|udevadm)\b[^!]*$   # commands
    | ^\ \|\ grep | ^\ 0\ fail_if_no_path$ | ^\ 2?>/dev/null | ^\$\(timeout | esac;\ exit | ^;\ case | kxRescan\ 2> | ^%Y | ^Content-Type | ^:\ $ | ^\ and\ $ | ^enter\ $ | ^leave\ $ | ^(enter\ )?%s%s?\ successfully
    | ^%s\ \[%s\]$ | ^(libcurl|OpenSSL)\ (lacks|cannot) | ^DELETE\ \ HTTP # never written""", re.VERBOSE)
MADE_OF_PARTS = re.compile(r"^(the|add) (lun|snapshot)(?= )")


def literals(root):
    """The texts of the sources, and where the first of each stands."""
    found = {}
    for top in SOURCES:
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                if not name.endswith((".cpp", ".h")):
                    continue
                path = os.path.join(directory, name)
                with open(path, encoding="utf-8") as file:
                    source = file.read()
                source = re.sub(r"^\s*#include.*$|//[^\n]*", "", source, flags=re.MULTILINE)
                source = re.sub(r"/\*.*?\*/", "", source, flags=re.DOTALL)
                for match in LITERAL.finditer(source):
                    text = "".join(re.findall(r'"((?:[^"\\\n]|\\.)*)"', match.group(0))).replace('\\"', '"')
                    found.setdefault(text, os.path.relpath(path, root))
    return found


def is_message(text):
    """Several words, or an exclamation mark."""
    return re.search(r"\w.* |: |!", text) and not NO_MESSAGE.search(text)


def fragments(text, placeholder):
    return [part.strip(' "[') for part in re.split(placeholder, text) if re.search(r"\w{2}", part)]


def spans_of_first_cells(root):
    for page in PAGES:
        with open(os.path.join(root, "docs", page), encoding="utf-8") as file:
            _, prose = blocks_and_prose(file.read())
        heading = ""
        for number, line in prose:
            cells = line.split(" | ")
            if line.startswith(("| message", "| line")):
                heading = "messages"
            elif not line.startswith("|"):
                heading = ""
            elif heading:
                for span in re.findall(r"`([^`]+)`", cells[0]):
                    yield f"docs/{page}:{number}", span


def main(root):
    sources = literals(root)
    manual = ""
    for page in PAGES:
        with open(os.path.join(root, "docs", page), encoding="utf-8") as file:
            manual += file.read()
    problems = []
    messages = {text: path for text, path in sources.items() if is_message(text)}
    for text, path in messages.items():
        for part in fragments(text, r"%[sdu]"):
            if part not in manual:
                problems.append(f"{path}: the manual does not have '{part}'")
    everything = re.sub("%[sdu]", "\n", "\n".join(sources))
    spans = list(spans_of_first_cells(root))
    for place, span in spans:
        for part in fragments(span, r"<[^>]*>"):
            if part not in everything and MADE_OF_PARTS.sub("", part) not in everything:
                problems.append(f"{place}: no source has '{part}'")
    print("\n".join(problems) if problems else f"{len(messages)} texts of the sources and {len(spans)} messages of the manual agree")
    return 1 if problems or not spans else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ROOT))
