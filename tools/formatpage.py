#!/usr/bin/env python3
"""Writes the manual page of a file format, in section 5, from the sections of docs/formats.md and
docs/items.md that describe it.

    tools/formatpage.py NAME VERSION > NAME.5    NAME as in PAGES
    tools/formatpage.py --list                   prints the names

What the documents use of Markdown is understood: paragraphs, lists, tables, fenced blocks, `code`,
**bold**, *emphasis* and [links](target).
"""

import re
import sys
from dataclasses import dataclass
from pathlib import Path

from manpage import roff

DOCS = Path(__file__).resolve().parents[1] / "docs"
FORMATS = "formats.md"
ITEMS = "items.md"


@dataclass
class Page:
    summary: str
    files: list  # where the format is found, each with what it is
    limits: list  # the first cells of its rows in the table of limits
    sections: list  # pairs of document and heading
    rows: str = ""  # of tables of items.md with a column "file": those whose file this matches


PAGES = {
    "mlk-customer": Page(
        "customer and system file of a line of televisions",
        [("/tvconfigs/customer.ini", "the customer file"),
         ("/tvconfigs/system/*.ini", "the system file, which the customer file names: the list of models")],
        ["`customer.ini`, system file"],
        [(FORMATS, "Customer and system file"), (ITEMS, "Customer, system and identity files")],
        "customer|system"),
    "mlk-project": Page(
        "model and board file of a line of televisions",
        [("/tvconfigs/model/*.ini", "models, which the system file names"),
         ("/tvconfigs/board/*.ini", "boards, which board_id.bin names")],
        ["project file, board file"],
        [(FORMATS, "Project and board file"), (ITEMS, "Values"), (ITEMS, "Project and board files")]),
    "mlk-identity": Page(
        "identity of a television: model, board and country",
        [("/impdata/project_id.bin", "the index of the model"),
         ("/impdata/board_id.bin", "the path of the board file"),
         ("/tvdata/tvsysmap/country_id.bin", "the country, which the service writes")],
        ["`board_id.bin`, `country_id.bin`"],
        [(FORMATS, "Identity files"), (ITEMS, "Customer, system and identity files")],
        "_id.bin"),
    "mlk-auxiliary": Page(
        "sound delays, karaoke, keys and DDC/CI of a television",
        [("/tvconfigs/audio/*.ini, /tvconfigs/karaoke/*.ini, ...", "files that the model names"),
         ("/tvconfigs/audio/audio_HARDWARE.ini", "the file of the property ro.hardware")],
        ["audio, karaoke, key, DDC/CI file"],
        [(FORMATS, "Auxiliary files"), (ITEMS, "Auxiliary files")]),
    "mlk-tvfeatures": Page(
        "TV features of a television",
        [("/tvconfigs/tv.config", "the file of a set whose model names none"),
         ("/tvconfigs/tv/*.config", "files that models and countries name")],
        ["TV feature file"],
        [(FORMATS, "TV feature file"), (ITEMS, "TV features")]),
    "mlk-lists": Page(
        "countries and languages of a television",
        [("/tvconfigs/country/*.txt, /tvconfigs/language/*.txt", "files that the model names")],
        ["country list, language list"],
        [(FORMATS, "Country and language lists"), (ITEMS, "Countries")]),
    "mlk-tvsystems": Page(
        "TV systems and country map of a line of televisions",
        [("/tvconfigs/tvsysmap/*.xml", "the TV system file, which the model names, and the map that it names")],
        [],
        [(FORMATS, "TV system file and country map"), (ITEMS, "XML files")],
        "TV system|country map"),
    "mlk-plan": Page(
        "channel plans of a line of televisions",
        [("/tvconfigs/freqtables/country_freq_map.xml", "the map that gives each country its plans"),
         ("/tvconfigs/freqtables/dtv/*", "plans of digital channels"),
         ("/tvconfigs/freqtables/atv/*", "plans of analogue channels")],
        ["channel plan"],
        [(FORMATS, "Map of channel plans"), (FORMATS, "Channel plans"), (ITEMS, "XML files"),
         (ITEMS, "Modulations")],
        "map of channel plans"),
    "mlk-properties": Page(
        "system properties that the configuration service reads",
        [("data/property/*", "on a workstation: one file a property, which holds the value and no line end")],
        [],
        [(ITEMS, "Properties"), (ITEMS, "Values")]),
}

# The table of limits, and what holds for all formats.
LIMITS = "Limits"
# The first column of a table of traps.
TRAP = "trap"
# The first column of a table of lines and what the service makes of them.
LINE = "line"
# Columns that together name a row.
NAMES = {"section", "in", "element", "key", "property", "word"}
# Columns of a terminal of 80 without the indentation.
TABLE_WIDTH = 70
TOKEN = re.compile(r"`(?P<code>[^`]+)`|\*\*(?P<bold>[^*]+)\*\*|(?<![\w*])\*(?P<emphasis>[^*\s][^*]*)\*"
                   r"|\[(?P<link>[^]]+)\]\((?P<target>[^)]+)\)")


def section_of(document, heading):
    """The lines of a section of a document, without its heading."""
    text = (DOCS / document).read_text(encoding="utf-8")
    found = re.search(rf"^## {re.escape(heading)}\n(.*?)(?=^## |\Z)", text, re.MULTILINE | re.DOTALL)
    if not found:
        raise LookupError(f"docs/{document} has no section {heading!r}")
    return found[1].splitlines()


class Writer:
    """Writes the roff of one page."""

    def __init__(self, page):
        self.page = page
        self.headings = {self.anchor(heading): heading for _, heading in page.sections}

    @staticmethod
    def anchor(heading):
        return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")

    def linked(self, text, target):
        """What a link becomes: the name of a section of this page, or the link's own text."""
        heading = self.headings.get(target.partition("#")[2])
        if heading and (text.endswith(".md") or target.startswith("#")):
            return f"{heading.upper()} below"
        return text.replace("`", "")

    def inline(self, text):
        out = ""
        end = 0
        for token in TOKEN.finditer(text):
            out += plain(text[end:token.start()])
            end = token.end()
            if token["code"]:
                out += f"\\fB{plain(token['code'])}\\fR"
            elif token["link"]:
                out += plain(self.linked(token["link"], token["target"]))
            else:
                strong = (token["bold"] or token["emphasis"]).replace("`", "")
                out += f"\\fI{plain(strong)}\\fR"
        return guarded(out + plain(text[end:]))

    def table(self, lines):
        head, _, *body = (cells_of(line) for line in lines)
        if self.page.rows and head[0] == "file":
            body = [row for row in body if re.search(self.page.rows, row[0])]
        if not body:
            return []
        if head[0] == TRAP:
            return self.traps(head, body)
        # A column that no row fills says nothing.
        filled = [i for i in range(len(head)) if any(row[i] for row in body)]
        rows = [[row[i] for i in filled] for row in [head, *body]]
        wide = [any(len(row[i]) > 24 and " " in row[i] for row in rows) for i in range(len(filled))]
        return self.columns(rows, wide) if len(body) > 1 and fits(rows, wide) else self.entries(rows[0], rows[1:])

    def columns(self, rows, wide):
        """A table. The wide columns share what the others leave of a line."""
        page = [".PP", ".TS", "tab(\x1f);", " ".join("lBx" if is_wide else "lB" for is_wide in wide),
                " ".join("lx" if is_wide else "l" for is_wide in wide) + "."]
        for row in rows:
            page.append("\x1f".join(f"T{{\n{self.inline(cell)}\nT}}" if is_wide and cell else self.inline(cell)
                                    for cell, is_wide in zip(row, wide)))
        return [*page, ".TE"]

    def entries(self, head, body):
        """A table that is too wide for a page: each row as its name, and the other cells below."""
        named = [i for i, name in enumerate(head) if name in NAMES and head[0] != LINE] or [0]
        page = []
        for row in body:
            page += [".TP", " ".join(self.inline(row[i]) for i in named if row[i])]
            cells = [f"{self.inline(head[i])}: {self.inline(row[i])}" for i in range(len(row))
                     if row[i] and i not in named]
            page.append("\n.br\n".join(cells))
        return page

    def traps(self, head, body):
        """Traps, each with the rule of `mlktree check` that finds it."""
        page = [".PP", "Traps:"]
        for row in body:
            rules = [self.inline(cell) for name, cell in zip(head[1:], row[1:]) if cell]
            page += [".IP \\(bu 2", " ".join([self.inline(row[0]), *(f"[{rule}]" for rule in rules)])]
        return page

    def items(self, lines):
        page = []
        for line in lines:
            if line.startswith("- "):
                page += [".IP \\(bu 2", self.inline(line[2:])]
            else:
                page.append(self.inline(line.strip()))
        return page

    def section(self, lines):
        page = []
        lines = list(lines)
        while lines:
            line = lines[0]
            if not line.strip():
                del lines[0]
            elif line.startswith("```"):
                end = lines.index("```", 1)
                page += [".PP", ".RS 4", ".EX", *(guarded(plain(text)) for text in lines[1:end]), ".EE", ".RE"]
                del lines[:end + 1]
            else:
                kind = kind_of(line)
                count = next((i for i, other in enumerate(lines) if not other.strip() or
                              (kind_of(other) != kind and not (kind == "item" and other[0] == " "))), len(lines))
                group, lines = lines[:count], lines[count:]
                page += {"table": self.table, "item": self.items}.get(kind, self.paragraph)(group)
        return page

    def paragraph(self, lines):
        # A list of links to the sections of a document leads nowhere here.
        if all(line.startswith("- [") or line.startswith("[") for line in lines):
            return []
        return [".PP", *self.inline(" ".join(lines)).split("\n")]


def kind_of(line):
    return "table" if line.startswith("|") else "item" if line.startswith("- ") else "text"


def fits(rows, wide):
    """Whether a table fits on a terminal of 80 columns if the wide ones are wrapped."""
    left = TABLE_WIDTH - 3 * len(wide)
    word = 0
    for i, is_wide in enumerate(wide):
        if is_wide:
            word = max([word, *(len(text) for row in rows for text in row[i].split())])
        else:
            left -= max(len(row[i]) for row in rows)
    return left >= word * sum(wide)


def cells_of(line):
    cells = re.split(r"(?<!\\)\|", line.strip().strip("|"))
    return [cell.strip().replace("\\|", "|") for cell in cells]


def plain(text):
    return roff(text).removeprefix("\\&")


def guarded(line):
    return "\\&" + line if line.startswith((".", "'")) else line


def limits_of(page, writer):
    """The section of limits: of its table, only the rows of this format."""
    lines = []
    found = set()
    is_table = False  # the table of formats
    for line in section_of(FORMATS, LIMITS):
        is_table = line.startswith("| format |") or (is_table and line.startswith("|"))
        if is_table and not line.startswith(("| format |", "|--")):
            name = cells_of(line)[0]
            if name not in page.limits:
                continue
            found.add(name)
        lines.append(line)
    if found != set(page.limits):
        raise LookupError(f"docs/{FORMATS} has no limits of {set(page.limits) - found}")
    return writer.section(lines)


def page_of(name, version):
    page = PAGES[name]
    writer = Writer(page)
    lines = [
        "'\\\" t", ".nr HY 0", f'.\\" Made by tools/{Path(__file__).name} from docs/{FORMATS} and docs/{ITEMS}.',
        f'.TH {name.upper()} 5 "" "{roff(version)}" "File Formats"', ".ad l",
        ".SH NAME", f"{roff(name)} \\- {roff(page.summary)}", ".SH FILES",
    ]
    for path, what in page.files:
        lines += [".TP", f"\\fB{roff(path)}\\fR", roff(what)]
    for document, heading in page.sections:
        lines += [f'.SH "{roff(heading.upper())}"', *writer.section(section_of(document, heading))]
    if any(document == FORMATS for document, _ in page.sections):
        lines += [".SH LIMITS", *limits_of(page, writer)]
    others = [f"\\fB{roff(other)}\\fR(5)" for other in sorted(PAGES) if other != name]
    lines += [".SH \"SEE ALSO\"",
              ",\n".join(["\\fBmlktree\\fR(1)", "\\fBmlkctl\\fR(1)", "\\fBmlktree.toml\\fR(5)", *others])]
    return "\n".join(lines) + "\n"


def main(words):
    if words == ["--list"]:
        return "".join(f"{name}\n" for name in PAGES)
    name, version = words
    return page_of(name, version)


if __name__ == "__main__":
    sys.stdout.write(main(sys.argv[1:]))
