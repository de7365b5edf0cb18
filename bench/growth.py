"""The growth part of the report of ./run bench: cost by size, and the exponent that fits best.

A cost proportional to size^e is a line of slope e on logarithmic axes: 1 is linear, 0 is constant, and
a logarithm over sizes from 500 to 50,000 gives about 0.1.
"""

from dataclasses import dataclass
from math import log
from statistics import linear_regression

from quantity import decimals, quantity


@dataclass(frozen=True)
class Series:
    """A family measured at several sizes, for the limit and ours."""

    family: str
    title: str
    by: str
    unit: str = "ns"


SERIES = (
    Series("growth-parse", "project INI into the ordered store", "items"),
    Series("growth-models", "the same, 500 items", "models"),
    Series("growth-lookup", "getInfo", "items"),
    Series("growth-start", "exec to third registration", "items"),
    Series("growth-start-models", "the same, 500 items", "models"),
    Series("growth-start-countries", "the same, 500 items", "countries"),
    Series("growth-check-models", "check, 60 countries", "models"),
    Series("growth-check-countries", "check, 100 models", "countries"),
    Series("growth-calls", "getter over IPC", "clients", "/s"),
)


def exponent(sizes, costs):
    """The slope of the regression line through the logarithms."""
    slope = linear_regression([log(size) for size in sizes], [log(cost) for cost in costs])[0]
    return round(slope, 3) + 0.0  # never -0.0


def costs(values, unit):
    """Converts answers per second to their inverse, a cost."""
    return [1 / value for value in values] if unit == "/s" else values


def of_contestant(measured, series, contestant):
    """The sizes in ascending order, each with the value of the least disturbed round.

    Different sizes are measured at different times, so that disturbances do not cancel out as
    they do in a ratio."""
    best = max if series.unit == "/s" else min
    points = sorted((int(name.split("/")[2]), best(numbers)) for name, numbers in measured.items()
                    if name.split("/")[:2] == [series.family, contestant])
    return [size for size, _ in points], [value for _, value in points]


def evaluate(measured):
    """One dict for each series measured at two or more sizes."""
    found = []
    for series in SERIES:
        sizes, ours = of_contestant(measured, series, "ours")
        limit_sizes, limit = of_contestant(measured, series, "limit")
        if len(sizes) < 2 or limit_sizes != sizes:
            continue
        found.append({
            "name": series.family,
            "title": series.title,
            "by": series.by,
            "unit": series.unit,
            "sizes": sizes,
            "ours": [round(value, 1) for value in ours],
            "limit": [round(value, 1) for value in limit],
            "exponent": exponent(sizes, costs(ours, series.unit)),
            "limit_exponent": exponent(sizes, costs(limit, series.unit)),
        })
    return found


HEADINGS = ("growth", "sizes", "at the smallest", "at the largest", "exponent", "limit's")


def cells(series):
    """A row of the table as texts."""
    return (
        series["title"],
        f"{series['sizes'][0]:,} to {series['sizes'][-1]:,} {series['by']}",
        quantity(series["ours"][0], series["unit"]),
        quantity(series["ours"][-1], series["unit"]),
        decimals(series["exponent"]),
        decimals(series["limit_exponent"]),
    )
