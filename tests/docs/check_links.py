"""Every link of the manual leads to a file of the checkout, and its anchor to a heading. Links to other sites are not
followed. Usage: check_links.py [ROOT]
"""

import os
import re
import sys

from manual import ROOT, blocks_and_prose, pages

LINK = re.compile(r"!?\[(?:[^\]\[]|\[[^\]]*\])*\]\(\s*<?([^)\s>]+)>?(?:\s+\"[^\"]*\")?\s*\)")
CODE = re.compile(r"`+[^`]*`+")
HEADING = re.compile(r"^#{1,6}\s+(.*?)\s*#*\s*$")
ELSEWHERE = re.compile(r"^[a-z][a-z0-9+.-]*:", re.IGNORECASE)


def anchor_of(heading):
    """The anchor that viewers of Markdown give a heading."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "").lower()
    return re.sub(r"[^\w\- ]", "", text).replace(" ", "-")


def anchors(path):
    with open(path, encoding="utf-8") as file:
        _, prose = blocks_and_prose(file.read())
    found = {}
    for _, line in prose:
        match = HEADING.match(line)
        if match:
            anchor = anchor_of(match.group(1))
            count = found.get(anchor, 0)
            found[anchor] = count + 1
            if count:
                found[f"{anchor}-{count}"] = 1
    return found


def problem_of(link, page, root):
    """What is wrong with a link; None when nothing is."""
    if ELSEWHERE.match(link):
        return None
    target, _, anchor = link.partition("#")
    path = os.path.normpath(os.path.join(os.path.dirname(page), target)) if target else page
    if not path.startswith(root + os.sep):
        return f"{link} leads out of the checkout"
    if not os.path.exists(path):
        return f"{link}: no such file"
    if anchor and (not path.endswith(".md") or anchor not in anchors(path)):
        return f"{link}: no such heading"
    return None


def links(page):
    with open(page, encoding="utf-8") as file:
        _, prose = blocks_and_prose(file.read())
    for number, line in prose:
        for match in LINK.finditer(CODE.sub("", line)):
            yield number, match.group(1)


def main(root):
    problems, checked, reached = [], 0, set()
    for page in pages(root):
        for number, link in links(page):
            checked += 1
            reached.add(os.path.normpath(os.path.join(os.path.dirname(page), link.partition("#")[0])))
            problem = problem_of(link, page, root)
            if problem:
                problems.append(f"{os.path.relpath(page, root)}:{number}: {problem}")
    entry = os.path.join(root, "docs", "index.md") if not os.path.exists(os.path.join(root, "README.md")) else None
    for page in pages(root):
        if page not in reached and os.path.dirname(page) != root and page != entry:
            problems.append(f"{os.path.relpath(page, root)}: no link leads to this page")
    print("\n".join(problems) if problems else f"{checked} links hold")
    return 1 if problems or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]) if len(sys.argv) > 1 else ROOT))
