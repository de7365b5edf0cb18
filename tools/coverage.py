#!/usr/bin/env python3
"""Prints what the tests covered: coverage.py [--missing] EXPORT, which is llvm-cov's JSON.

The table has lines and branches of each folder. A branch is one outcome, true or false, of one
condition; a condition whose outcome the compiler knows ("while (true)") has no branch. For a
"switch", true means that no case matched. A template's branch counts as taken if any instance took
it. With --missing, the branches that no test took follow, by file and line.
"""

import argparse
import bisect
import collections
import json
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]

# The goal of each folder: the share of its branches in percent; 0 means no goal.
FOLDERS = {
    "common": 95,
    "projectconfigs": 95,
    "tvconfigs": 95,
    "frameworkconfigs": 95,
    "platform": 95,
    "regional": 95,
    "service": 95,
    "host/hidl": 90,
    "host/log": 0,
    "host/memory": 0,
    "host/partitions": 0,
    "host/properties": 0,
    "host/text": 0,
    "tools/common": 0,
    "tools/mlkctl": 0,
    "tools/mlktree": 0,
}


def folder_of(path):
    """The folder of a source; None for tests, generated code and code that is not ours."""
    if ROOT not in path.parents:
        return None
    name = path.relative_to(ROOT)
    if "tests" in name.parts:
        return None
    return next((folder for folder in FOLDERS if Path(folder) in name.parents), None)


def branches_of(file):
    """Maps each outcome (line, column, true or false) of the file's conditions to its count."""
    counts = collections.Counter()
    for line, column, _, _, true, false, *_ in file["branches"]:
        counts[line, column, True] += true
        counts[line, column, False] += false
    segments = sorted((line, column, count) for line, column, count, *_ in file["segments"])

    def runs(line, column):
        """How often the code at that place ran."""
        return segments[bisect.bisect(segments, (line, column, float("inf"))) - 1][2]

    # A condition that was counted neither way although its code ran is not one of the program's.
    return {
        (line, column, outcome): count
        for (line, column, outcome), count in counts.items()
        if counts[line, column, not outcome] or count or not runs(line, column)
    }


class Sum:
    """A number of parts, and how many of them are covered."""

    def __init__(self):
        self.count = 0
        self.covered = 0

    def add(self, count, covered):
        self.count += count
        self.covered += covered

    def percent(self):
        return 100 * self.covered / self.count if self.count else 100

    def __str__(self):
        return f"{self.covered:6} of {self.count:6} {self.percent():6.1f} %"


def missing_in(path, branches):
    name = path.relative_to(ROOT)
    text = path.read_text(encoding="utf-8").splitlines()
    for (line, column, outcome), count in sorted(branches.items()):
        if count == 0:
            yield f"{name}:{line}:{column}: never {str(outcome).lower()}: {text[line - 1].strip()}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("export", type=Path)
    parser.add_argument("--missing", action="store_true")
    arguments = parser.parse_args()
    lines = collections.defaultdict(Sum)
    branches = collections.defaultdict(Sum)
    missing = []
    for file in json.loads(arguments.export.read_text(encoding="utf-8"))["data"][0]["files"]:
        path = Path(file["filename"]).resolve()
        folder = folder_of(path)
        if folder is None:
            continue
        counts = branches_of(file)
        lines[folder].add(file["summary"]["lines"]["count"], file["summary"]["lines"]["covered"])
        branches[folder].add(len(counts), sum(count > 0 for count in counts.values()))
        missing += missing_in(path, counts)
    print(f"{'folder':18} {'lines':>27} {'branches':>28}")
    for folder, goal in FOLDERS.items():
        reached = "" if branches[folder].percent() >= goal else f"   below {goal} %"
        print(f"{folder:18} {lines[folder]} {branches[folder]}{reached}")
    if arguments.missing:
        print("\n".join(missing))
    return 0


if __name__ == "__main__":
    sys.exit(main())
