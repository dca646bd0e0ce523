"""What the checks of the manual share: its pages, and how a page is read."""

import os
import re

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FENCE = re.compile(r"^(`{3,})\s*([^`\s]*)\s*$")


def pages(root=ROOT):
    """Paths of the pages: docs/*.md and the README, which is not installed with them."""
    docs, readme = os.path.join(root, "docs"), os.path.join(root, "README.md")
    return [os.path.join(docs, name) for name in sorted(os.listdir(docs)) if name.endswith(".md")] + \
        [readme] * os.path.exists(readme)


class Block:
    """A fenced block: its language, its lines, the line number of its fence and the line above."""

    def __init__(self, language, number, above):
        self.language, self.number, self.above, self.lines = language, number, above, []


def blocks_and_prose(text):
    """The fenced blocks of a page, and its other lines as (number, line)."""
    blocks, prose, fence = [], [], None
    for number, line in enumerate(text.splitlines(), 1):
        match = FENCE.match(line)
        if fence:
            if match and match.group(1) == fence and not match.group(2):
                fence = None
            else:
                blocks[-1].lines.append(line)
        elif match:
            fence = match.group(1)
            blocks.append(Block(match.group(2), number, prose[-1][1] if prose else ""))
        else:
            prose.append((number, line))
    if fence:
        raise ValueError(f"line {blocks[-1].number}: the block is not closed")
    return blocks, prose
