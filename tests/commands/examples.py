"""The examples of documents and of help, and how their output is compared.

In a document, the language of a fenced block says what it is:

    console         a session at the top of the tree: "$ COMMAND", then what it prints. It is run on
                    the sample. If a document shows no output, examples.txt has it.
    console device  a session that needs a television
    console build   a session that builds or tests the whole tree, or measures
    usage           commands with explanations; their options are looked up
    ...             anything else is no command line

In output, "..." stands for any text, and a line of it for any lines; empty lines and the width of
blanks do not count. A last line "^C" means that the command runs until it is interrupted.

In help, the indented lines under "Examples:" are commands. In the sentences of a document, calls
in backquotes are.
"""

import re
from dataclasses import dataclass, field

KINDS = {"console", "console device", "console build", "usage"}
FENCE = re.compile(r"^(?P<indent> *)```(?P<kind>[^\n`]*)\n(?P<text>.*?)^(?P=indent)```$",
                   re.DOTALL | re.MULTILINE)
# What a block of commands begins its lines with.
COMMAND = re.compile(r"(?:\$ .*|(?:\./run|\./test|\.ci/run|mlkctl|mlktree|cmake|cpack|ctest|adb|lshal|getprop"
                     r"|setprop|logcat|atest|m)(?: .*)?)$")
STATUS = "[exit status {}]"
ANY = "..."
INTERRUPT = "^C"


@dataclass
class Block:
    """A fenced block of a document."""

    where: str  # document and line
    kind: str
    lines: list

    def looks_like_commands(self):
        return any(COMMAND.match(line) for line in self.lines)


@dataclass
class Example:
    """A command, and the lines it prints: None if they are not said."""

    command: str
    output: list = None

    @property
    def is_endless(self):
        return bool(self.output) and self.output[-1] == INTERRUPT


@dataclass
class Sessions:
    """Recorded examples: those of each place, by the name of the place."""

    places: dict = field(default_factory=dict)

    def find(self, place, command):
        return next((example for example in self.places.get(place, []) if example.command == command), None)


def blocks(name, text):
    for match in FENCE.finditer(text):
        indent = match["indent"]
        lines = [line.removeprefix(indent) for line in match["text"].splitlines()]
        number = text.count("\n", 0, match.start()) + 1
        yield Block(f"{name}:{number}", match["kind"].strip(), lines)


def spans(text):
    """The code in backquotes outside of fenced blocks, as it is meant: in a table, "|" has a backslash."""
    text = FENCE.sub("", text)
    for match in re.finditer(r"(?<!`)`([^`\n]+)`(?!`)", text):
        yield match[1].replace("\\|", "|")


def session(lines):
    """The examples of a session. A command goes on after a backslash at the end of its line."""
    found = []
    lines = iter(lines)
    for line in lines:
        if line.startswith("$ "):
            command = line[2:]
            while command.endswith("\\"):
                command = command[:-1] + next(lines).lstrip()
            found.append(Example(command))
        elif not found:
            raise ValueError(f"output before the first command: {line}")
        else:
            example = found[-1]
            example.output = (example.output or []) + [line.rstrip()]
    for example in found:
        while example.output and not example.output[-1]:
            example.output.pop()
        example.output = example.output or None
    return found


def of_help(text):
    """The commands of the examples in a help text."""
    part = re.search(r"^Examples?:\n((?:  .*\n?)+)", text, re.MULTILINE)
    return [line.strip() for line in part[1].splitlines()] if part else []


def commands_of(text):
    """The commands that a help text lists."""
    part = re.search(r"^Commands:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  (\S+)", part[1], re.MULTILINE) if part else []


def plain(line):
    return " ".join(line.split())


def matches(expected, printed):
    """Whether printed lines are as expected."""
    pattern = ""
    for line in filter(str.strip, expected):
        if line.strip() == ANY:
            pattern += r"(?:[^\n]*\n)*?"
        else:
            pieces = plain(line).split(ANY)
            pattern += "[^\n]*".join(re.escape(piece) for piece in pieces) + "\n"
    return re.fullmatch(pattern, "".join(plain(line) + "\n" for line in printed if line.strip())) is not None


def read_sessions(text):
    """A file of recorded sessions: "== PLACE" and its session, again and again. "#" begins a remark."""
    sessions = Sessions()
    place = None
    parts = {}
    for line in text.splitlines():
        if line.startswith("== "):
            place = line[3:]
            parts[place] = []
        elif place is not None:
            parts[place].append(line)
    for name, lines in parts.items():
        sessions.places[name] = session([line for line in lines if line.strip()])
        for example in sessions.places[name]:
            example.output = example.output or []
    return sessions


def write_sessions(sessions, head):
    text = head
    for place, examples in sessions.places.items():
        text += f"\n== {place}\n"
        for example in examples:
            text += "".join(f"{line}\n" for line in [f"$ {example.command}", *example.output])
    return text


def shortened(lines):
    """What is worth recording of long output."""
    lines = [line if len(line) <= 1000 else f"{line[:400]}{ANY}{line[-100:]}" for line in lines if line.strip()]
    return lines if len(lines) <= 60 else [*lines[:20], ANY, *lines[-5:]]
