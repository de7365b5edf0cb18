"""The tables of planted bugs: one text file a folder of the tree, in bugs/.

A table has a part for each source file and in it a row for each bug:

    == regional/FreqTableParser.cpp

    long-piece: a piece may have 50 characters
        constexpr size_t kPieceSize = [[49 => 50]];

The indented lines are text of the file; in [[OLD => NEW]] the bug changes OLD into NEW. They
have to fit exactly one place of the file. White space in them stands for any white space, so that a
line that is broken elsewhere still fits; around the change it stands for the braces of a block too. A line that begins with "#" is a remark. Lines that begin
with "@" between the two say more:

    @unseen REASON    no test can notice this bug, and why
    @constant         the place belongs to a constexpr, which is const while bugs are planted
    @threads FILTER   it takes the thread sanitizer, and those tests (a filter of GoogleTest's)
"""

import os
import re
import zlib
from dataclasses import dataclass

_SPACE = r"(?:\s|\\\n)+"
_SPACE_OR_BRACE = r"(?:[\s{}]|\\\n)+"
_ROW = re.compile(r"([a-z0-9][a-z0-9-]*): (\S.*)")


class TableError(Exception):
    """An error in a table, or in the place that a row names."""


@dataclass
class Bug:
    """One row. `number` is what MLK_MUTANT names it by, never 0."""

    folder: str
    file: str
    name: str
    what: str
    before: str = ""
    old: str = ""
    new: str = ""
    after: str = ""
    unseen: str = ""
    constant: bool = False
    threads: str = ""
    number: int = 0
    where: str = ""  # of the table

    @property
    def id(self):
        """The name of the bug on the command line and in the learned results."""
        return f"{self.folder}:{self.name}"

    def place(self, text):
        """Returns the begin and the end of OLD in the text of its file."""
        pattern = (_flexible(self.before, _SPACE_OR_BRACE) + "(" + _flexible(self.old, _SPACE) + ")"
                   + _flexible(self.after, _SPACE_OR_BRACE))
        found = list(re.finditer(pattern, text))
        if len(found) != 1:
            raise TableError(f"{self.where}: {self.name}: fits {len(found)} places of {self.file}")
        return found[0].span(1)


def _flexible(text, space):
    words = re.split(r"(\s+)", text)
    return "".join(space if word.isspace() else re.escape(word) for word in words)


def _directive(bug, line):
    word, _, rest = line.strip().partition(" ")
    if word == "@unseen" and rest:
        bug.unseen = rest
    elif word == "@constant" and not rest:
        bug.constant = True
    elif word == "@threads" and rest:
        bug.threads = rest
    else:
        raise TableError(f"{bug.where}: {bug.name}: no directive: {line.strip()}")


def _take_code(bug, lines):
    code = "\n".join(line.strip() for line in lines)
    before, opening, rest = code.partition("[[")
    change, closing, after = rest.rpartition("]]")
    old, arrow, new = change.partition("=>")
    if not (opening and closing and arrow) or old.strip() == new.strip():
        raise TableError(f"{bug.where}: {bug.name}: no [[OLD => NEW]]")
    bug.before, bug.old, bug.new, bug.after = before, old.strip(), new.strip(), after


def read_table(folder, text, name):
    """Reads the rows of one table; `name` is for messages."""
    bugs = []
    file = None
    code = []
    for number, line in enumerate(text.splitlines() + ["== end"], 1):
        where = f"{name}:{number}"
        if not line.strip() or line.startswith("#"):
            continue
        if line[0].isspace():
            if not bugs or file is None:
                raise TableError(f"{where}: code without a row")
            if line.strip().startswith("@") and not code:
                _directive(bugs[-1], line)
            else:
                code.append(line)
            continue
        if bugs and not bugs[-1].old + bugs[-1].new:
            _take_code(bugs[-1], code)
        code = []
        if line.startswith("== "):
            file = line[3:].strip()
            continue
        row = _ROW.fullmatch(line.rstrip())
        if row is None or file is None:
            raise TableError(f"{where}: neither a row nor a file: {line}")
        bugs.append(Bug(folder, file, row[1], row[2], where=where))
    return bugs


def read_tables(folder):
    """Reads all tables of a folder. A bug keeps its number if others are added or removed."""
    bugs = []
    for name in sorted(os.listdir(folder)):
        if name.endswith(".txt"):
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                # "host-hidl.txt" is the table of host/hidl.
                bugs += read_table(name[:-4].replace("-", "/"), file.read(), name)
    numbers = set()
    for bug in bugs:
        bug.number = zlib.crc32(bug.id.encode()) >> 4 | 1
        if bug.number in numbers:
            raise TableError(f"{bug.where}: {bug.id} is there twice, or needs another name")
        numbers.add(bug.number)
    return bugs
