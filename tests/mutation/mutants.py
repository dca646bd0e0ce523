"""The declared mutants (mutants/*.txt), and sources that hold all of them.

A line with a path names the file of the mutants that follow it, of which each is a line
    KIND `OLD` -> `NEW`            OLD stands once in the file; without NEW a statement is left out
    KIND `OLD` -> `NEW` in `TEXT`  OLD stands once in TEXT, and TEXT once in the file
A line "survives: REASON" below a mutant explains why no test can, or need, see it. # begins a comment.
"""

import os
import re
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
HEADER = os.path.join(HERE, "Mutant.h")
STATEMENT = re.compile(r"(if|for|while|switch|return)\b")
KINDS = ("operator", "condition", "boundary", "off-by-one", "left-out", "key", "text", "level", "code", "value")
LINE = re.compile(r"^(?P<kind>[a-z-]+) +`(?P<old>[^`]+)`(?: -> `(?P<new>[^`]+)`)?(?: in `(?P<within>[^`]+)`)?$")
MOST = 1 << 22  # as in Mutant.h


class ListError(Exception):
    """The list of mutants is wrong."""


class Mutant:
    def __init__(self, file, kind, old, new, within):
        self.file, self.kind, self.old, self.new, self.within = file, kind, old, new, within
        self.reason = None
        self.number = 0
        self.place = None
        self.is_in_constexpr_function = False

    def __str__(self):
        return "%s: %s `%s`%s%s" % (self.file, self.kind, self.old, " -> `%s`" % self.new if self.new else "",
                                    " in `%s`" % self.within if self.within else "")

    def find(self, source):
        """Where it is in its file: (begin, end)."""
        outer = self.within or self.old
        if source.count(outer) != 1 or outer.count(self.old) != 1:
            raise ListError("stands %d times in the file: %s" % (source.count(outer) * outer.count(self.old), self))
        begin = source.index(outer) + outer.index(self.old)
        self.place = (begin, begin + len(self.old))


def read(root, lost=None):
    """All mutants, each with its place and a number that stays its own when others come and go. What has no place in
    the sources any more goes to the list `lost`, if there is one."""
    folder = os.path.join(root, "tests", "mutation", "mutants")
    mutants, numbers, sources = [], {0}, {}
    for name in sorted(os.listdir(folder)):
        file = None
        with open(os.path.join(folder, name), encoding="utf-8") as lines:
            for count, line in enumerate(lines, 1):
                line = line.strip()
                match = LINE.match(line)
                if not line or line.startswith("#"):
                    continue
                if match and match["kind"] != "left-out" and STATEMENT.match(match["old"]):
                    raise ListError("%s:%d: is no expression: %s" % (name, count, line))
                if match and file and match["kind"] in KINDS:
                    mutants.append(Mutant(file, match["kind"], match["old"], match["new"], match["within"]))
                elif line.startswith("survives: ") and mutants:
                    mutants[-1].reason = line[len("survives: "):]
                elif re.fullmatch(r"[\w./-]+\.(cpp|h)", line):
                    file = line
                    with open(os.path.join(root, file), encoding="ascii") as source:
                        sources[file] = source.read()
                else:
                    raise ListError("%s:%d: cannot be read: %s" % (name, count, line))
    for mutant in list(mutants):
        try:
            mutant.find(sources[mutant.file])
        except ListError:
            if lost is None:
                raise
            lost.append(mutant)
            mutants.remove(mutant)
            continue
        number = zlib.crc32(str(mutant).encode()) % MOST
        while number in numbers:
            number = (number + 1) % MOST
        numbers.add(number)
        mutant.number = number
    if len({str(mutant) for mutant in mutants}) != len(mutants):
        raise ListError("there is a mutant twice")
    return mutants


def _with_mutants(text, begin, places):
    """The text, which begins at that offset, with all that lies within it in place."""
    made, at = "", begin
    for (first, last), mutants in places:
        if first < at:
            continue  # within the one before, which has it
        if last > begin + len(text):
            raise ListError("overlaps another: %s" % mutants[0])
        inner = [place for place in places if place[0] != (first, last) and first <= place[0][0] and place[0][1] <= last]
        old = _with_mutants(text[first - begin:last - begin], first, inner)
        made += text[at - begin:first - begin] + _choice(mutants, old)
        at = last
    return made + text[at - begin:]


def _choice(mutants, old):
    if isinstance(mutants, str):
        return mutants
    # What stands in a condition may be a pointer, or may hold a value or none.
    as_it_is = "static_cast<bool>(%s)" if any(one.kind == "condition" and "?" not in one.old for one in mutants) else "(%s)"
    made = ""
    for mutant in mutants:
        condition = "mutation::%s(%d)" % ("at" if mutant.is_in_constexpr_function else "isChosen", mutant.number)
        made += "if (%s) { %s } else " % (condition, mutant.new or "") if old.endswith(";") else "%s ? %s : " % (condition, as_it_is % mutant.new)
    return made + "{ %s }" % old if old.endswith(";") else "(%s%s)" % (made, as_it_is % old)


def _look_at_constants(source, mutants):
    """What replaces the word "constexpr" of constants with mutants: in the compiler nothing is chosen yet."""
    replaced = {}
    for mutant in mutants:
        begin = mutant.place[0]
        for match in re.finditer(r"^( *)((inline |static )?constexpr) ", source[:begin], re.MULTILINE):
            between = source[match.end():begin]
            body = re.search(r"\)\s*(const |noexcept )*\{", between)
            if body and ";" not in between[:body.start()]:
                mutant.is_in_constexpr_function |= "\n%s}" % match[1] not in between
            elif ";" not in between:
                replaced[match.span(2)] = {None: "static", "inline ": "inline", "static ": "static inline"}[match[3]]
    return replaced


def mutated(source, mutants):
    """The source of a file with all of its mutants, each of which is asleep until the environment names it."""
    places = _look_at_constants(source, mutants)
    for mutant in mutants:
        places.setdefault(mutant.place, []).append(mutant)
    ordered = sorted(places.items(), key=lambda place: (place[0][0], -place[0][1]))
    return '#include "%s"\n#line 1\n' % HEADER + _with_mutants(source, 0, ordered)
