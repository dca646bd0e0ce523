"""What gcov tells of the objects of a build: lines and decisions of this project's files, of all objects together."""

import collections
import concurrent.futures
import json
import os
import subprocess

import notes

AT_ONCE = 8  # objects for one gcov


def notes_below(folder):
    for path, _, names in os.walk(folder):
        yield from (os.path.join(path, name) for name in names if name.endswith(".gcno"))


def told_by_gcov(root, objects):
    """What gcov says of these objects; one that never ran counts as well, with zeros."""
    command = ["gcov", "--json-format", "--stdout", "--branch-probabilities"] + objects
    told = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, cwd=root).stdout
    return [json.loads(line) for line in told.splitlines() if line.strip()]


def lines_of(root, objects, folders):
    """{(file, line): [count, {(place of the function, number of branches): [count...]}]} of some objects."""
    found = {}
    for told in told_by_gcov(root, objects):
        own, together, ordinary = notes.read(os.path.splitext(told["data_file"])[0] + ".gcno")
        for source in told["files"]:
            path = os.path.normpath(os.path.join(told["current_working_directory"], source["file"]))
            name = os.path.relpath(path, root)
            if not name.startswith(folders):
                continue
            places = {function["name"]: (function["start_line"], function["start_column"], function["end_line"],
                                         function["end_column"]) for function in source["functions"]}
            for line in source["lines"]:
                place, function = (source["file"], line["line_number"]), line.get("function_name")
                if place not in ordinary:
                    continue
                throws = [branch["throw"] for branch in line["branches"]]
                noted = [(throw, not throw) for throw in throws]  # in the rare case that gcov has another order
                for candidate in (own.get((function,) + place, []), together.get(place, [])):
                    if [throw for throw, _ in candidate] == throws:
                        noted = candidate
                counts = [branch["count"] for branch, (_, is_decided) in zip(line["branches"], noted) if is_decided]
                merge(found, (name, line["line_number"]), line["count"],
                      {(places.get(function), len(counts)): counts} if counts else {})
    return found


def merge(found, place, count, branches):
    """Adds what another object, or another instantiation of a template, has of a line."""
    line = found.setdefault(place, [0, {}])
    line[0] += count
    for key, counts in branches.items():
        line[1][key] = [sum(both) for both in zip(counts, line[1].get(key, [0] * len(counts)))]


def read(root, builds, folders):
    """{file: {line: (count, [count of a branch...])}} of all objects below the folders of builds."""
    objects = sorted(note for build in builds for note in notes_below(build))
    parts = [objects[first:first + AT_ONCE] for first in range(0, len(objects), AT_ONCE)]
    found = {}
    with concurrent.futures.ProcessPoolExecutor(os.cpu_count()) as pool:
        for part in pool.map(lines_of, [root] * len(parts), parts, [folders] * len(parts)):
            for place, (count, branches) in part.items():
                merge(found, place, count, branches)
    files = collections.defaultdict(dict)
    for (name, line), (count, branches) in found.items():
        files[name][line] = (count, [one for counts in branches.values() for one in counts])
    return files
