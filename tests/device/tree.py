"""The source tree for the device's tests: its folders, its sources and their content."""

import functools
import itertools
import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

TOKEN = re.compile(
    r"""//[^\n]*|/\*.*?\*/                        # a comment
      | R"(?P<mark>\w*)\((?P<raw>.*?)\)(?P=mark)" # a raw string
      | (?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'       # a character
      | "(?P<text>(?:\\.|[^"\\\n])*)"             # a string""",
    re.DOTALL | re.VERBOSE,
)
INCLUDE = re.compile(r'^\s*#\s*include\s+(?P<name><[^>]+>|"[^"]+")', re.MULTILINE)


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


def table(document, heading):
    """The first table after a text at the start of a line, a list of rows, each a list of the texts in backquotes."""
    lines = read(document).split(f"\n{heading}", maxsplit=1)[1].splitlines()
    start = next(number for number, line in enumerate(lines) if line.startswith("|--"))
    rows = itertools.takewhile(lambda line: line.startswith("|"), lines[start + 1 :])
    return [[re.findall(r"`([^`]+)`", cell) for cell in row.split("|")[1:-1]] for row in rows]


def arrows(heading):
    """The folders of a table of docs/architecture.md, each with those that it may include."""
    return {folder[0]: set(others) for folder, others in table("docs/architecture.md", heading)}


def product_sources():
    """Every source and header of the product, tests left out, by its name in the tree."""
    return sorted(
        str(path.relative_to(ROOT))
        for folder in ARROWS
        for path in (ROOT / folder).glob("*")
        if path.suffix in {".cpp", ".h"}
    )


ARROWS = arrows("## Who may include whom")


@functools.cache
def includes(name):
    return [match["name"] for match in INCLUDE.finditer(read(name))]


def code(name):
    """A source without comments, includes and log messages, which have no effect."""
    text = INCLUDE.sub("", read(name))
    text = TOKEN.sub(lambda m: m[0] if m["text"] is not None or m[0][0] in "'R" else " ", text)
    return re.sub(r'\b(?:__android_log_\w+|ALOG[DEIW]|LOG_PRI)\((?:[^;"]|"(?:\\.|[^"\\\n])*")*;', ";", text)


def literals_in(text):
    for match in TOKEN.finditer(text):
        if match["text"] is not None:
            yield match["text"]


def literals(name):
    """The strings that a source uses for more than a log message."""
    return set(literals_in(code(name)))


def all_literals():
    return set().union(*(literals(name) for name in product_sources()))


def properties():
    """Every system property that the product names."""
    name = re.compile(r"(?:persist\.|ro\.)?[a-z]+(?:\.\w+)+")
    roots = ("persist.", "ro.", "vendor.", "sys.", "debug.", "init.")
    return {
        text
        for text in all_literals()
        if name.fullmatch(text) and text.startswith(roots)
    }


def framework_items():
    """(getter, kind, property) of every switch that is read from a property."""
    return re.findall(
        r'\{"(\w+)",\s*FrameworkItemKind::(\w+),\s*"([^"]+)"[,}]', code("frameworkconfigs/FrameworkItems.h")
    )


def written_properties():
    """Those of them that it sets: the features, and the switches that have a setter."""
    features = {text for text in literals("tvconfigs/TvConfigItems.h") if text in properties()}
    items = {method: name for method, _, name in framework_items()}
    setters = re.findall(r'write\(frameworkItem\("(\w+)"\),', code("frameworkconfigs/FrameworkSwitches.cpp"))
    return features | {items[setter] for setter in setters}


def run(*command, text=None):
    """Runs a program. Returns its exit status and its whole output."""
    done = subprocess.run(
        [str(word) for word in command],
        input=text,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
        env={**os.environ, "LC_ALL": "C"},
    )
    return done.returncode, done.stdout


def targets():
    """CMake's targets, a list of (folder, target, type, sources)."""
    rows = []
    for line in Path(targets.file).read_text(encoding="utf-8").splitlines():
        folder, target, kind, *sources = line.split()
        rows.append((folder, target, kind, sources))
    return rows


def main():
    """Runs the tests of the calling script; its first argument is the file of CMake's targets."""
    targets.file = sys.argv.pop(1)
    # Shows the compiler's messages in full.
    unittest.TestCase.maxDiff = None
    unittest.main(verbosity=2)
