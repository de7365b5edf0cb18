#!/usr/bin/env python3
"""Prints what the tests covered: coverage.py [--missing] EXPORT, which is llvm-cov's JSON.

The table has lines and branches of each room. A branch is one outcome, true or false, of one
condition; a condition whose outcome the compiler knows ("while (true)") has none. The true of a
"switch" is that no case matched. A template's branch counts as taken when it is in any of its
instances. With --missing, every branch that no test took follows.
"""

import argparse
import bisect
import collections
import json
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]

# Each room with the share of its branches that is to be covered, in percent; 0 for no goal.
ROOMS = {
    "common": 95,
    "projectconfigs": 95,
    "tvconfigs": 95,
    "frameworkconfigs": 95,
    "regional": 95,
    "service": 95,
    "host/hidl": 90,
    "host/log": 0,
    "host/memory": 0,
    "host/partitions": 0,
    "host/properties": 0,
    "tools/mlkctl": 0,
}


def room_of(path):
    """The room of a source; None for tests, generated code and what is not ours."""
    if ROOT not in path.parents:
        return None
    name = path.relative_to(ROOT)
    if "tests" in name.parts:
        return None
    return next((room for room in ROOMS if Path(room) in name.parents), None)


def branches_of(file):
    """Outcomes of the file's conditions: from (line, column, outcome) to how often it was."""
    counts = collections.Counter()
    for line, column, _, _, true, false, *_ in file["branches"]:
        counts[line, column, True] += true
        counts[line, column, False] += false
    segments = sorted((line, column, count) for line, column, count, *_ in file["segments"])

    def runs(line, column):
        """How often the code at that place ran."""
        return segments[bisect.bisect(segments, (line, column, float("inf"))) - 1][2]

    # Counted neither way where the code ran, it is no condition of the program's.
    return {
        (line, column, outcome): count
        for (line, column, outcome), count in counts.items()
        if counts[line, column, not outcome] or count or not runs(line, column)
    }


class Sum:
    """Parts of something, and how many of them are covered."""

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
        room = room_of(path)
        if room is None:
            continue
        counts = branches_of(file)
        lines[room].add(file["summary"]["lines"]["count"], file["summary"]["lines"]["covered"])
        branches[room].add(len(counts), sum(count > 0 for count in counts.values()))
        missing += missing_in(path, counts)
    print(f"{'room':18} {'lines':>27} {'branches':>28}")
    for room, goal in ROOMS.items():
        reached = "" if branches[room].percent() >= goal else f"   below {goal} %"
        print(f"{room:18} {lines[room]} {branches[room]}{reached}")
    if arguments.missing:
        print("\n".join(missing))
    return 0


if __name__ == "__main__":
    sys.exit(main())
