"""scripts/mutate: lets each of the declared mutants work, runs the tests that reach it, and tells who was not seen."""

import argparse
import collections
import concurrent.futures
import json
import os
import sys
import time

import judge
import mutants
import tree

ROOT = os.path.dirname(os.path.dirname(mutants.HERE))


def programs_for(root, paths):
    """The test programs of the folders that these files are in."""
    programs = []
    with open(os.path.join(root, "tests", "mutation", "programs.txt"), encoding="utf-8") as lines:
        for folder, _, names in (line.partition(": ") for line in lines if not line.startswith("#")):
            if any(path.startswith(folder) for path in paths):
                programs += [name for name in names.split() if name not in programs]
    return programs


def folder_of(mutant):
    parts = mutant.file.split("/")
    return parts[0] if parts[0] in ("cli", "simulator") else "/".join(parts[:2])


def is_selected(mutant, selection):
    return not selection or any(mutant.file.startswith(one) or str(mutant.number) == one for one in selection)


def table(results, key, title):
    rows = collections.defaultdict(collections.Counter)
    for mutant, state, _ in results:
        rows[key(mutant)][state if state in ("killed", "hung") else "survived"] += 1
    print("\n%-20s %8s %8s %8s %8s" % (title, "mutants", "killed", "of them", "survived"))
    print("%-20s %8s %8s %8s %8s" % ("", "", "", "hung", ""))
    for name, row in sorted(rows.items()) + [("all", sum(rows.values(), collections.Counter()))]:
        print("%-20s %8d %8d %8d %8d" % (name, sum(row.values()), row["killed"] + row["hung"], row["hung"], row["survived"]))


def report(results):
    """Prints what came of them. True when every survivor is explained."""
    survivors = [result for result in results if result[1] not in ("killed", "hung")]
    table(results, lambda mutant: mutant.kind, "kind")
    table(results, folder_of, "folder")
    for mutant, state, _ in survivors:
        print("\n%s: %d %s\n  %s" % (state, mutant.number, mutant, mutant.reason or "NOT EXPLAINED"))
    for mutant, _, test in results:
        if test and mutant.reason:
            print("\nexplained, and killed by %s: %s" % (test, mutant))
    killed = len(results) - len(survivors)
    print("\n%d mutants, %d killed (%.1f %%), %d survived, of them %d explained" %
          (len(results), killed, 100 * killed / len(results), len(survivors),
           sum(1 for result in survivors if result[0].reason)))
    return all(result[0].reason for result in survivors)


def measured(tests, output, pool):
    """The tests that pass without a mutant, with what each can see; of what was not built anew it is known."""
    path = output + ".reached.json"
    known = {}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            known = json.load(file)
    new = [test for test in tests if known.get(test.name, [0])[0] != tree.stamp(output, test)]
    for test, state in zip(new, pool.map(judge.measure, new)):
        known[test.name] = [tree.stamp(output, test), state, test.seconds, test.reached]
    with open(path, "w", encoding="utf-8") as file:
        json.dump({name: one for name, one in known.items() if one[1] != "failed"}, file)
    for test in tests:
        _, state, test.seconds, test.reached = known[test.name]
        if state == "failed":
            raise tree.BuildError("does not pass without a mutant: %s" % test.name)
        if state == "hung":
            print("mutate: takes too long, and is left out: %s" % test.name)
    return [test for test in tests if known[test.name][1] == "passed"]


def main():
    parser = argparse.ArgumentParser(prog="mutate", description=__doc__)
    parser.add_argument("selection", nargs="*", help="beginnings of paths, or numbers of mutants")
    parser.add_argument("--list", action="store_true", help="print the mutants with their numbers")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--kills", action="store_true", help="print which test killed which")
    parser.add_argument("--root", default=ROOT, help=argparse.SUPPRESS)
    options = parser.parse_args()
    declared = mutants.read(options.root)
    chosen = [mutant for mutant in declared if is_selected(mutant, options.selection)]
    if options.list or not chosen:
        print("\n".join("%7d %s" % (mutant.number, mutant) for mutant in chosen) or "mutate: there is no such mutant")
        return 0 if chosen else 2

    begin = time.monotonic()
    folder = os.path.join(options.root, "build", "mutate")
    copy, output = os.path.join(folder, "tree"), os.path.join(folder, "out")
    programs = programs_for(options.root, {mutant.file for mutant in chosen})
    tree.copy(options.root, copy, declared)
    print("mutate: building %d programs (the first time takes some minutes)" % len(programs), flush=True)
    tree.build(copy, output, programs, options.jobs)
    tests = tree.tests_of(output, programs)
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        print("mutate: %d s; running %d tests without a mutant" % (time.monotonic() - begin, len(tests)), flush=True)
        tests = measured(tests, output, pool)
        print("mutate: %d s; trying %d mutants" % (time.monotonic() - begin, len(chosen)), flush=True)
        neighbours = collections.defaultdict(set)
        for mutant in declared:
            neighbours[mutant.file].add(mutant.number)
        results = []
        for mutant, (state, test) in zip(chosen, pool.map(lambda one: judge.judge(one, tests, neighbours[one.file]), chosen)):
            results.append((mutant, state, test))
            if options.kills or not test:
                print("%-11s %7d %s%s" % (state, mutant.number, mutant, "  by " + test if test else ""), flush=True)
    explained = report(results)
    print("mutate: took %d s" % (time.monotonic() - begin))
    return 0 if explained else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (mutants.ListError, tree.BuildError) as error:
        print("mutate: %s" % error, file=sys.stderr)
        sys.exit(2)
