"""The report as a picture: ratios on top, growth below.

Plain SVG without scripts; colours follow the reader's light or dark theme.
"""

from math import log10
from xml.sax.saxutils import escape

import growth as growth_of
from quantity import decimals, quantity

WIDTH = 860
MARGIN = 24
LETTER = 6.1  # about the width of a letter of the small size

# class: property, light, dark
COLOURS = (
    ("page", "fill", "#ffffff", "#0d1117"),
    ("halo", "stroke", "#ffffff", "#0d1117"),
    ("text", "fill", "#1f2328", "#f0f6fc"),
    ("muted", "fill", "#59636e", "#9198a1"),
    ("grid", "stroke", "#d1d9e0", "#30363d"),
    ("least", "stroke", "#59636e", "#9198a1"),
    ("goal", "fill", "#d3f2da", "#15391f"),
    ("peer", "fill", "#8c959f", "#7d8590"),
    ("lead", "stroke", "#afb8c1", "#484f58"),
    ("yes", "fill", "#0969da", "#4493f8"),
    ("no", "fill", "#bc4c00", "#f0883e"),
    ("line0", "stroke", "#0969da", "#4493f8"),
    ("line1", "stroke", "#8250df", "#ab7df8"),
    ("line2", "stroke", "#bc4c00", "#f0883e"),
    ("line3", "stroke", "#1a7f37", "#3fb950"),
)

ROWS = {  # name: label
    "parse-5000": ("Reading a project file", "5,000 lines into the ordered store"),
    "parse-100000": ("", "100,000 lines"),
    "lookup-5000": ("One item", "of 5,000"),
    "call": ("A getter over IPC", "on one core, median"),
    "calls-4": ("", "4 clients, time a call"),
    "calls-16": ("", "16 clients, ten threads"),
    "calls-64": ("", "64 clients, ten threads"),
    "start-500": ("Start-up", "500 items, 200 countries"),
    "start-5000": ("", "5,000 items"),
    "resident-5000": ("Memory", "resident, 5,000 items"),
}

LINES = {  # family: class of its line, title, dashes
    "growth-parse": ("line0", "reading a project file", ""),
    "growth-models": ("line0", "reading 500 items", "5 4"),
    "growth-lookup": ("line1", "one item", ""),
    "growth-start": ("line2", "start-up", ""),
    "growth-start-models": ("line2", "start-up with 500 items", "5 4"),
    "growth-start-countries": ("line2", "start-up with 500 items", "2 3"),
    "growth-check-models": ("line1", "a check, by models", "5 4"),
    "growth-check-countries": ("line1", "a check, by countries", "2 3"),
    "growth-calls": ("line3", "a call", ""),
}


def style():
    """The colours of both themes, and the fonts."""
    def rules(theme):
        return "".join(f".{colour[0]}{{{colour[1]}:{colour[theme]}}}" for colour in COLOURS)
    return ("<style>text{font:12px system-ui,-apple-system,'Segoe UI',sans-serif}"
            ".small{font-size:11px}.head{font-size:15px;font-weight:600}.bold{font-weight:600}"
            ".stroke{fill:none;stroke-width:2}"
            ".halo{stroke-width:4px;stroke-linejoin:round;paint-order:stroke}" + rules(2) +
            "@media(prefers-color-scheme:dark){" + rules(3) + "}</style>")


def text(x, y, words, classes="text", anchor="start"):
    return f'<text x="{x:.1f}" y="{y:.1f}" class="{classes}" text-anchor="{anchor}">' \
           f"{escape(words)}</text>"


def line(x1, y1, x2, y2, classes, more=""):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" class="{classes}"' \
           f"{more}/>"


def dot(x, y, radius, classes):
    return f'<circle cx="{x:.1f}" cy="{y:.1f}" r="{radius}" class="{classes}"/>'


class Axis:
    """A logarithmic axis: maps values to positions."""

    def __init__(self, low, high, start, end):
        self.low, self.start = low, start
        self.scale = (end - start) / (log10(high) - log10(low))

    def __call__(self, value):
        return self.start + (log10(value) - log10(self.low)) * self.scale


def lanes(labels):
    """Places labels, (x, words), side by side if they fit, else below each other.

    Their words end above x, and of labels that would overlap the one further right is lower, so that
    the line from x down to the words crosses no others. Returns (x, words, lane) for each."""
    placed = []
    for x, words in sorted(labels):
        begin = x - len(words) * LETTER
        below = [lane for other, _, lane in placed if other + 10 > begin]
        placed.append((x, words, max(below, default=-1) + 1))
    return placed


def as_cost(row, value):
    """A ratio as a multiple of the limit's time or memory, for any unit."""
    return 1 / value if row["better"] == "more" else value


def ratio_row(row, axis, y):
    """One row with its dots at y: its elements, and the y of the next row."""
    out = []
    title, detail = ROWS[row["name"]]
    if title:
        out.append(text(MARGIN, y - 4, title, "text bold"))
    out.append(text(MARGIN, y + (11 if title else 4), detail, "muted small"))
    goal = axis(as_cost(row, row["goal"]))
    out.append(f'<rect x="{axis(1):.1f}" y="{y - 9}" width="{goal - axis(1):.1f}" height="18" '
               'rx="2" class="goal"/>')
    peers = [(axis(as_cost(row, ratio)), f"{name} {as_cost(row, ratio):.3g}")
             for name, ratio in row["peers"].items()]
    deepest = 0
    for x, words, lane in reversed(lanes(peers)):
        below = y + 21 + 14 * lane
        out.append(line(x, y, x, below - 3, "lead"))
        out.append(dot(x, y, 4, "peer"))
        out.append(text(x - 3, below, words, "muted small halo", "end"))
        deepest = max(deepest, 14 * (lane + 1))
    x = axis(as_cost(row, row["ratio"]))
    reached = "yes" if row["reached"] else "no"
    out.append(dot(x, y, 6, reached))
    out.append(text(x, y - 10, f"{as_cost(row, row['ratio']):.3g}", f"{reached} bold", "middle"))
    return out, y + max(deepest, 6) + 38


def ratios(full, top):
    """The panel of ratios: elements and its end."""
    rows = [row for row in full["rows"] if row["name"] in ROWS]
    values = [as_cost(row, value) for row in rows
              for value in (row["ratio"], row["goal"], *row["peers"].values())]
    left, right = 236, WIDTH - MARGIN
    axis = Axis(min([0.9, *values]), max([10, *values]) * 1.1, left, right)
    out = []
    y = top + 96
    for row in rows:
        elements, y = ratio_row(row, axis, y)
        out += elements
    bottom = y - 30
    back = [text(MARGIN, top + 14, "Cost, as a multiple of the least that the same job takes here",
                 "text head"),
            dot(MARGIN + 5, top + 34, 5, "yes"), text(MARGIN + 16, top + 38, "goal reached"),
            dot(MARGIN + 113, top + 34, 5, "no"), text(MARGIN + 124, top + 38, "not reached"),
            f'<rect x="{MARGIN + 210}" y="{top + 25}" width="22" height="18" rx="2" '
            'class="goal"/>', text(MARGIN + 238, top + 38, "up to the goal"),
            dot(MARGIN + 340, top + 34, 4, "peer"),
            text(MARGIN + 350, top + 38, "what one might use in its place")]
    for tick in (1, 2, 5, 10, 20, 50, 100, 200):
        if tick <= axis.low * 10 ** ((right - left) / axis.scale):
            back.append(line(axis(tick), top + 70, axis(tick), bottom,
                             "least" if tick == 1 else "grid"))
            back.append(text(axis(tick), top + 64, str(tick), "muted small", "middle"))
    return back + out, bottom


def apart(places, distance, low, high):
    """Moves positions apart to a minimum distance within two bounds; keeps their order."""
    order = sorted(range(len(places)), key=places.__getitem__)
    moved = list(places)
    for before, after in zip(order, order[1:]):
        moved[after] = max(moved[after], moved[before] + distance)
    limit = high
    for i in reversed(order):
        moved[i] = min(moved[i], limit)
        limit = moved[i] - distance
    shift = max(0, low - min(moved)) if moved else 0
    return [place + shift for place in moved]


def costs_of(series):
    """Sizes and costs as multiples of the smallest size's."""
    costs = growth_of.costs(series["ours"], series["unit"])
    return [(size / series["sizes"][0], cost / costs[0])
            for size, cost in zip(series["sizes"], costs)]


def growth_axes(points, left, top):
    """The axes and their elements; a decade has the same length on both."""
    decade = 150
    highest = max(100, *(cost for _, cost in points)) * 1.1
    lowest = min(1, *(cost for _, cost in points)) / 1.3
    x_of = Axis(1, 10, left, left + decade)
    y_of = Axis(highest, highest / 10, top, top + decade)
    out = []
    for tick in (1, 10, 100):
        out += [line(x_of(tick), top, x_of(tick), y_of(lowest), "grid"),
                line(x_of(1), y_of(tick), x_of(120), y_of(tick), "grid"),
                text(x_of(tick), y_of(lowest) + 16, f"{tick}\u00d7 the size", "muted small",
                     "middle"),
                text(left - 8, y_of(tick) + 4, f"{tick}\u00d7", "muted small", "end")]
    out.append(line(x_of(1), y_of(1), x_of(100), y_of(100), "least", ' stroke-dasharray="1 4"'))
    out.append(text(x_of(22), y_of(20) + 10, "linear", "muted small halo"))
    return x_of, y_of, y_of(lowest), out


def growth(full, top):
    """The panel of growth: elements and its end."""
    series = full["growth"]
    left = MARGIN + 40
    x_of, y_of, bottom, axes = growth_axes([point for one in series for point in costs_of(one)],
                                           left, top + 54)
    out = [text(MARGIN, top + 14, "Growth: the cost against the size, both as multiples of the "
                "smallest measured", "text head"),
           text(MARGIN, top + 34, "The slope is the exponent: 1 is linear, 0 does not depend on "
                "the size.", "muted")] + axes
    ends = []
    for one in series:
        points = [(x_of(size), y_of(cost)) for size, cost in costs_of(one)]
        classes, _, dashes = LINES[one["name"]]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        out.append(f'<polyline points="{path}" class="{classes} stroke"'
                   + (f' stroke-dasharray="{dashes}"' if dashes else "") + "/>")
        out += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.5" class="{classes} stroke"/>'
                for x, y in points]
        ends.append(points[-1])
    words_x = x_of(100) + 100
    # Of lines that end at the same height, the one that ends further right comes first.
    places = apart([y - x / 1000 for x, y in ends], 38, top + 60, bottom - 10)
    for one, (x, y), place in zip(series, ends, places):
        classes, title, dashes = LINES[one["name"]]
        more = f' stroke-dasharray="{dashes}"' if dashes else ""
        out += [line(x + 5, y, words_x - 38, place, "lead"),
                line(words_x - 36, place, words_x - 8, place, f"{classes} stroke", more)]
        size = f"{one['sizes'][0]:,} to {one['sizes'][-1]:,} {one['by']}"
        values = f"{quantity(one['ours'][0], one['unit'])} \u2192 " \
                 f"{quantity(one['ours'][-1], one['unit'])}"
        out.append(text(words_x, place - 2, f"{title}, {size}", "text"))
        out.append(text(words_x, place + 13, f"{values}, exponent {decimals(one['exponent'])} "
                        f"(limit {decimals(one['limit_exponent'])})", "muted small"))
    return out, max(bottom + 16, max(places) + 13)


def picture(full):
    """The report's dict as the text of an SVG file."""
    out, y = [], 16
    for panel, content in ((ratios, full["rows"]), (growth, full["growth"])):
        if content:
            elements, y = panel(full, y)
            out += elements
            y += 30
    machine = full["machine"]
    out.append(text(MARGIN, y, f"./run bench, {machine['date']}, {machine['cores']} cores, "
                    f"{machine['processor']}, medians of {full['rounds']} rounds", "muted small"))
    height = y + 18
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height:.0f}" '
            f'viewBox="0 0 {WIDTH} {height:.0f}" role="img" '
            'aria-label="Costs as multiples of the least, and growth">\n'
            + style() + f'\n<rect width="{WIDTH}" height="{height:.0f}" rx="8" class="page"/>\n'
            + "\n".join(out) + "\n</svg>\n")
