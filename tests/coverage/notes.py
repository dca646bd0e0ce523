"""What only an exception on its way executes: read from the graphs of the functions that the compiler notes (.gcno)."""

import collections
import struct

FUNCTION, BLOCKS, ARCS, LINES = 0x01000000, 0x01410000, 0x01430000, 0x01450000
FAKE, FALLTHROUGH = 2, 4  # of an arc; a fake one is for a call that may not come back
ENTRY, EXIT = 0, 1


class Reader:
    """Numbers and texts of a file of notes, of GCC 12 and later (lengths are in bytes)."""

    def __init__(self, data):
        self.data, self.at = data, 0

    def number(self):
        self.at += 4
        return struct.unpack_from("<I", self.data, self.at - 4)[0]

    def text(self):
        length = self.number()
        self.at += length
        return self.data[self.at - length:self.at].rstrip(b"\0").decode()


class Function:
    def __init__(self, name):
        self.name = name
        self.arcs = collections.defaultdict(list)  # of a block: (where to, flags)
        self.lines = collections.defaultdict(list)  # of a block: (file, line)

    def is_throw(self, block, flags):
        return any(other & FAKE for _, other in self.arcs[block]) and not flags & (FAKE | FALLTHROUGH)

    def reached(self, start, arcs):
        found, waiting = {start}, [start]
        while waiting:
            more = arcs(waiting.pop()) - found
            found |= more
            waiting += more
        return found

    def on_the_way_of_an_exception(self):
        """Blocks that are reached by exceptions alone, and come back to no caller."""
        normal = self.reached(ENTRY, lambda block: {
            to for to, flags in self.arcs[block] if not flags & FAKE and not self.is_throw(block, flags)})
        before = collections.defaultdict(set)
        for block, arcs in list(self.arcs.items()):
            for to, flags in arcs:
                if not flags & FAKE:
                    before[to].add(block)
        return set(self.arcs) - normal - self.reached(EXIT, lambda block: before[block])

    def branches(self, passing):
        """{(file, line): [(is for an exception, is decided by something in the source)...]} in the order of gcov. A call
        that may throw is a pair of branches, and neither is; nor is what only an exception on its way comes to."""
        found = collections.defaultdict(list)
        for block in sorted(self.lines):
            arcs = sorted((arc for arc in self.arcs[block] if not arc[1] & FAKE), key=lambda arc: arc[0])
            throws = [self.is_throw(block, flags) for _, flags in arcs]
            counts = [not throw and to not in passing for throw, (to, _) in zip(throws, arcs)]
            is_decision = block not in passing and sum(counts) > 1
            name = self.lines[block][-1][0]
            place = max(line for line in self.lines[block] if line[0] == name)
            if len(arcs) > 1:
                found[place] += [(throw, count and is_decision) for throw, count in zip(throws, counts)]
        return found


def functions_of(path):
    with open(path, "rb") as file:
        reader = Reader(file.read())
    reader.at = 16
    reader.text()  # the folder of the compiler
    reader.number()
    functions = []
    while reader.at + 8 <= len(reader.data):
        tag, length = reader.number(), reader.number()
        end = reader.at + length
        if tag == FUNCTION:
            reader.at += 12
            functions.append(Function(reader.text()))
        elif tag == ARCS:
            block = reader.number()
            while reader.at < end:
                functions[-1].arcs[block].append((reader.number(), reader.number()))
        elif tag == LINES:
            block, name = reader.number(), ""
            while reader.at < end:
                line = reader.number()
                if line:
                    functions[-1].lines[block].append((name, line))
                else:
                    name = reader.text() or name
        reader.at = end
    return functions


def read(path):
    """Of an object: the branches by function, file and line, those by file and line of all functions, and the lines that
    something else than an exception on its way comes to."""
    own, together, ordinary = {}, collections.defaultdict(list), set()
    for function in functions_of(path):
        passing = function.on_the_way_of_an_exception()
        ordinary.update(*(lines for block, lines in function.lines.items() if block not in passing))
        for place, branches in function.branches(passing).items():
            own[(function.name,) + place] = branches
            together[place] += branches
    return own, together, ordinary
