"""The ratios in the report of ./run bench: the rows, and how to compute them from measurements.

Measurements are a dict from a benchmark's name, "FAMILY/CONTESTANT/SIZE", to its numbers, one a
round. The contestant "limit" is the least that the job takes, "ours" is the product; all others of
a family and size are peers, shown in their own column.
"""

from dataclasses import dataclass
from statistics import median, quantiles
from typing import Optional

import growth
from quantity import quantity


@dataclass(frozen=True)
class Row:
    """A row with its goal: the ratio of `ours` to `limit` at one size, or of what `over` names."""

    name: str
    title: str
    family: str
    size: str
    goal: Optional[float]  # None: shown for what it explains
    more_is_better: bool = False
    over: str = ""  # another benchmark in place of the family's limit
    against_peers: bool = False  # the ratio is the best peer's time over ours


ROWS = (
    Row("parse-5000", "project INI of 5,000 lines into the ordered store", "parse", "5000", 7),
    Row("update-5000", "the same, its order not asked for", "update", "5000", None,
        over="parse/limit/5000"),
    Row("parse-5000-peers", "5,000 lines: times as fast as the best peer", "parse", "5000", 2,
        more_is_better=True, against_peers=True),
    Row("parse-100000", "project INI of 100,000 lines into the ordered store", "parse", "100000",
        6),
    Row("update-100000", "the same, its order not asked for", "update", "100000", None,
        over="parse/limit/100000"),
    Row("parse-100000-peers", "100,000 lines: times as fast as the best peer", "parse", "100000", 2,
        more_is_better=True, against_peers=True),
    Row("reparse-5000", "5,000 lines again, over the first time", "reparse", "5000", 1.05,
        over="parse/ours/5000"),
    Row("lookup-5000", "getInfo of one of 5,000 items", "lookup", "5000", 5),
    Row("call", "getter over IPC, both ends on one core, p50", "call", "1", 1.0),
    Row("calls-4", "getter over IPC, 4 clients, calls a second", "calls", "4", 1.0,
        more_is_better=True),
    Row("calls-16", "getter over IPC, 16 clients, ten threads", "calls-crowded", "16", 0.9,
        more_is_better=True),
    Row("calls-64", "getter over IPC, 64 clients, ten threads", "calls-crowded", "64", 0.9,
        more_is_better=True),
    Row("start-500", "exec to third registration, 500 items", "start", "500", 1.5),
    Row("start-5000", "exec to third registration, 5,000 items", "start", "5000", 1.35),
    Row("resident-5000", "resident size, 5,000 items", "resident", "5000", 1.2),
    Row("check-500", "check of 500 models, 4 boards, 60 countries", "check", "500", 25),
    Row("report-500", "report of the same, over check", "report", "500", 4,
        over="check/ours/500"),
    Row("snapshot-500", "snapshot of the same, over its check", "snapshot", "500", 2,
        over="check/ours/500"),
    Row("matrix-500", "matrix of the same, over its check", "matrix", "500", None,
        over="check/ours/500"),
)

UNITS = {"calls": "/s", "calls-crowded": "/s", "resident": "bytes"}  # of a family; the others are times in ns


def ratio(numbers, basis):
    """The median of the rounds' ratios; disturbances of a whole round cancel out."""
    return median(number / base for number, base in zip(numbers, basis))


def spread(numbers):
    """The noise of the machine: the distance of the quartiles divided by the median."""
    if len(numbers) < 2:
        return 0.0
    low, _, high = quantiles(numbers, n=4, method="inclusive")
    return (high - low) / median(numbers)


def peers_of(measured, row):
    """The names of the peers measured for a row."""
    names = []
    for name in measured:
        family, contestant, size = name.split("/")
        if family == row.family and size == row.size and contestant not in ("ours", "limit"):
            names.append(contestant)
    return names


def evaluate(measured, row):
    """One row of the report as a dict; None if it was not measured."""
    ours = measured.get(f"{row.family}/ours/{row.size}")
    basis_name = row.over or f"{row.family}/limit/{row.size}"
    basis = measured.get(basis_name)
    if not ours or not basis:
        return None
    peers = {
        peer: ratio(measured[f"{row.family}/{peer}/{row.size}"], basis)
        for peer in peers_of(measured, row)
    }
    value = ratio(ours, basis)
    if row.against_peers:
        if not peers:
            return None
        best = (max if UNITS.get(row.family) == "/s" else min)(peers, key=peers.get)
        value = ratio(measured[f"{row.family}/{best}/{row.size}"], ours)
        peers = {best: value}
    return {
        "name": row.name,
        "title": row.title,
        "ratio": round(value, 3),
        "goal": row.goal,
        "better": "more" if row.more_is_better else "less",
        "reached": None if row.goal is None else
                   value >= row.goal if row.more_is_better else value <= row.goal,
        "ours": round(median(ours), 1),
        "limit": round(median(basis), 1),
        "unit": UNITS.get(row.family, "ns"),
        "noise": round(spread(basis), 3),
        "peers": {name: round(r, 3) for name, r in peers.items()},
    }


def report(measured, rounds, machine):
    """The whole report as one object for JSON."""
    rows = [evaluate(measured, row) for row in ROWS]
    return {
        "machine": machine,
        "rounds": rounds,
        "rows": [row for row in rows if row],
        "growth": growth.evaluate(measured),
    }


def cells(row):
    """A row of the table as texts."""
    peers = sorted(row["peers"].items(), key=lambda peer: peer[1],
                   reverse=row["better"] == "more")
    sign = ">=" if row["better"] == "more" else "<="
    return (
        row["title"],
        f"{row['ratio']:.2f}",
        "" if row["goal"] is None else f"{sign} {row['goal']:g}",
        {None: "", True: "yes", False: "NO"}[row["reached"]],
        quantity(row["limit"], row["unit"]),
        f"{row['noise'] * 100:.0f} %",
        ", ".join(f"{name} {value:.2f}" for name, value in peers),
    )


HEADINGS = ("measured", "ratio", "goal", "reached", "limit", "noise", "peers' ratios")


def aligned(lines, left):
    """A table of texts with a rule under the first line; `left` are the left-aligned columns."""
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    lines.insert(1, tuple("-" * width for width in widths))
    return ["  ".join(cell.ljust(width) if i in left else cell.rjust(width)
                      for i, (cell, width) in enumerate(zip(line, widths))).rstrip()
            for line in lines]


def table(full):
    """The report as text for people."""
    lines = []
    if full["rows"]:
        lines += aligned([HEADINGS] + [cells(row) for row in full["rows"]], (0, 6)) + [""]
    if full["growth"]:
        lines += aligned([growth.HEADINGS] + [growth.cells(one) for one in full["growth"]],
                         (0, 1)) + [""]
    machine = full["machine"]
    lines.append(f"Medians of {full['rounds']} interleaved rounds; noise is the distance of the "
                 "quartiles of the limit's own rounds.")
    lines.append(f"{machine['cores']} cores, {machine['processor']}, Linux {machine['kernel']}, "
                 f"{machine['date']}.")
    return "\n".join(lines)
