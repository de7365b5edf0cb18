"""Formats numbers for people."""


def quantity(value, unit):
    """A number with a unit that suits it: "27.3 us". Units: ns, /s, bytes."""
    if unit == "/s":
        return f"{value / 1000:.1f} k/s"
    if unit == "bytes":
        return f"{value / 1e6:.2f} MB"
    for factor, name in ((1e6, "ms"), (1e3, "us")):
        if value >= factor:
            return f"{value / factor:.3g} {name}"
    return f"{value:.3g} ns"


def decimals(value):
    """With two decimals, and nothing as "0.00"."""
    return f"{round(value, 2) + 0.0:.2f}"
