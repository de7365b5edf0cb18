"""Contexts files, and the label that they give a path in an image."""

import re

import tree

POLICY = tree.ROOT / "sepolicy"
PLATFORM = tree.ROOT / "tests/device/platform"
META = frozenset(".^$?*+|[({")
FILE_TYPES = {"-b", "-c", "-d", "-p", "-l", "-s", "--"}


def rows_of(text):
    """The rows of a contexts file, split into words."""
    lines = (line.split("#")[0].split() for line in text.splitlines())
    return [words for words in lines if words]


def rows(name):
    return rows_of((POLICY / name).read_text(encoding="utf-8"))


def type_of(context):
    user, role, kind, level = context.split(":")
    assert (user, role, level) == ("u", "object_r", "s0"), context
    return kind


class Row:
    """A row of file_contexts."""

    def __init__(self, pattern, *rest):
        self.pattern = pattern
        self.file_type = rest[0] if len(rest) == 2 else None
        self.kind = type_of(rest[-1])
        assert len(rest) == 1 or self.file_type in FILE_TYPES, (pattern, rest)

    def order(self):
        """The sort key of the image builder's fc_sort, smaller for less specific rows. It compares in this order.

        Rows with meta characters before those without; the shorter text before the first meta
        character (the stem) first; the shorter whole first; a row for one type of file last.
        """
        characters = re.findall(r"\\.|.", self.pattern)
        stem = next((i for i, each in enumerate(characters) if each in META), len(characters))
        return (stem == len(characters), stem, len(characters), self.file_type is not None)


def image_rows(ours=None):
    """The platform's rows and ours (or the given ones) in the order in which an image uses them."""
    platform = rows_of((PLATFORM / "file_contexts").read_text(encoding="utf-8"))
    ours = rows("file_contexts") if ours is None else ours
    return sorted((Row(*words) for words in platform + ours), key=Row.order)


def label(path, ours=None):
    """The type of a file in an image: of the rows that fit, the last counts; None without one."""
    fitting = [row.kind for row in image_rows(ours) if re.fullmatch(row.pattern, path)]
    return fitting[-1] if fitting else None
