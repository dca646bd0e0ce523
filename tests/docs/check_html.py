"""Every link and picture of the pages that doxygen made is there. Usage: check_html.py DIRECTORY"""

import os
import re
import sys
from urllib.parse import unquote

LINK = re.compile(r'(?:href|src|data)="([^"]+)"')
NAME = re.compile(r'(?:id|name)="([^"]+)"')


def read(path, known={}):
    if path not in known:
        with open(path, encoding="utf-8") as file:
            known[path] = file.read()
    return known[path]


def main(directory):
    problems, checked = set(), 0
    pages = [name for name in sorted(os.listdir(directory)) if name.endswith(".html")]
    for name in pages:
        for link in LINK.findall(read(os.path.join(directory, name))):
            if re.match(r"^[a-z]+:", link):
                continue
            checked += 1
            target, _, anchor = unquote(link).partition("#")
            path = os.path.join(directory, target or name)
            if not os.path.exists(path):
                problems.add(f"{name}: {link}: no such file")
            elif anchor and path.endswith(".html") and anchor not in NAME.findall(read(path)):
                problems.add(f"{name}: {link}: no such place")
    print("\n".join(sorted(problems)) if problems else f"{checked} links of {len(pages)} pages hold")
    return 1 if problems or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
