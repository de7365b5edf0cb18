#!/usr/bin/env python3
"""Writes the manual page of a command-line tool from the tool's own help.

    tools/manpage.py PROGRAM > PAGE.1

PROGRAM --help begins with "NAME - summary" and lists the commands under "Commands:";
PROGRAM COMMAND --help is the page of one of them. In all of them, a line that ends with a colon and
has no indentation is a heading, "Usage:" begins the synopsis, other lines without indentation are
paragraphs, and indented lines are items ("  --json  what it does", continued by lines that are
indented further) or texts to be shown as they are.
"""

import re
import subprocess
import sys
from pathlib import Path

ITEM = re.compile(r"  (\S+(?: \S+)*)(?:  +(\S.*))?$")
HEADING = re.compile(r"[A-Z][^.]*:$")
# Under these headings lines stand as they are.
LITERAL = {"Example", "Examples"}
# Under this one lines may be sentences, items, or what a command prints.
OUTPUT = "Output"
WORD = re.compile(r"[a-z-]+")
SPECIAL = {"\\": r"\e", "-": r"\-", "'": r"\(aq", "`": r"\(ga", "^": r"\(ha", "~": r"\(ti", '"': r"\(dq"}


def roff(text):
    """A text as the formatter takes it."""
    text = "".join(SPECIAL.get(char, char if char.isascii() else f"\\[u{ord(char):04X}]")
                   for char in text)
    return "\\&" + text if text.startswith((".", "'")) else text


def blocks(lines):
    """Groups of lines without an empty one among them."""
    group = []
    for line in [*lines, ""]:
        if line.strip():
            group.append(line)
        elif group:
            yield group
            group = []


def literal(lines):
    """Lines as they stand, indented as deep as the least indented of them."""
    depth = min(len(line) - len(line.lstrip()) for line in lines)
    return [".PP", ".EX", *(roff(line[depth:]) for line in lines), ".EE"]


def is_prose(lines):
    """Whether indented lines are sentences: no columns, no JSON."""
    texts = [line.strip() for line in lines]
    return not any("  " in text or text[0] in "[{" for text in texts)


def items(lines):
    """Items, each with its text, or None if the lines are no list of items."""
    found = []
    for line in lines:
        start = ITEM.match(line)
        if start:
            found.append((start[1], [start[2]] if start[2] else []))
        elif found and line.startswith("   "):
            found[-1][1].append(line.strip())
        else:
            return None
    return found if all(texts for _, texts in found) else None


def indented(lines, heading):
    listed = None if heading in LITERAL else items(lines)
    # What a command prints may be a table whose first row is no item.
    if listed and (heading != OUTPUT or all(WORD.fullmatch(name) for name, _ in listed)):
        page = []
        for name, texts in listed:
            page += [".TP", f"\\fB{roff(name)}\\fR", *(roff(text) for text in texts)]
        return page
    if heading == OUTPUT and is_prose(lines):
        return [".PP", *(roff(line.strip()) for line in lines)]
    return literal(lines)


def body(lines, heading=""):
    """The text under a heading."""
    page = []
    for group in blocks(lines):
        # An example or a list may stand right below its sentence.
        while group:
            flat = [line for line in group[:first(group, str.startswith)]]
            if flat:
                page += [".PP", *(roff(line) for line in flat)]
            group = group[len(flat):]
            deep = group[:first(group, lambda line, blank: not line.startswith(blank))]
            if deep:
                page += indented(deep, heading)
            group = group[len(deep):]
    return page


def first(lines, is_other):
    """The index of the first line for which is_other(line, " ") holds, else the number of lines."""
    return next((at for at, line in enumerate(lines) if is_other(line, " ")), len(lines))


class Help:
    """The help of a tool or of one of its commands, taken apart."""

    def __init__(self, text):
        lines = text.splitlines()
        self.name, self.summary = lines[0].split(" - ", maxsplit=1)
        self.usage = []
        self.parts = [("", [])]  # headings with their lines
        for line in lines[1:]:
            if line.startswith("Usage: "):
                self.usage.append(line.removeprefix("Usage: "))
            elif self.usage and len(self.parts) == 1 and not self.parts[0][1] and line.startswith("  "):
                self.usage.append(line.strip())
            elif HEADING.match(line) and len(line) < 50:
                self.parts.append((line.rstrip(":"), []))
            elif line or self.parts[-1][1]:
                self.parts[-1][1].append(line)

    def take_commands(self):
        """The names under "Commands:". What follows the list is moved to the description."""
        lines = next((lines for name, lines in self.parts if name == "Commands"), [])
        end = first(lines, lambda line, blank: not line.startswith(blank))
        self.parts[0][1].extend(["", *lines[end:]])
        del lines[end:]
        return [name for name, _ in items(lines) or []]

    def synopsis(self):
        return [".nf", *(f"\\fB{roff(line)}\\fR" for line in self.usage), ".fi"]


def page_of(program):
    def asked(*words):
        return subprocess.run([program, *words], check=True, capture_output=True, text=True).stdout

    general = Help(asked("--help"))
    version = asked("--version").split(",")[0].strip()
    commands = general.take_commands()
    page = [
        f'.\\" Made by tools/manpage.py from the help of {general.name}.',
        f'.TH {general.name.upper()} 1 "" "{roff(version)}" "User Commands"',
        ".nr HY 0", ".ad l",
        ".SH NAME", f"{roff(general.name)} \\- {roff(general.summary)}",
        ".SH SYNOPSIS", *general.synopsis(),
    ]
    for heading, lines in general.parts:
        if lines:
            page += [f'.SH "{roff(heading.upper()) or "DESCRIPTION"}"', *body(lines, heading)]
        if heading == "Commands":
            for command in commands:
                page += section_of(Help(asked(command, "--help")))
    return "\n".join(page) + "\n"


def section_of(command):
    page = [f'.SS "{roff(command.name)}"', *command.synopsis(), ".PP",
            roff(command.summary[0].upper() + command.summary[1:]) + "."]
    for heading, lines in command.parts:
        if heading:
            page += [".PP", f"\\fI{roff(heading)}\\fR"]
        page += body(lines, heading)
    return page


if __name__ == "__main__":
    sys.stdout.write(page_of(Path(sys.argv[1]).resolve()))
