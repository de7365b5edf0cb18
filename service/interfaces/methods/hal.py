"""Reads interface definitions (.hal files) with their doc comments.

A method's comment has a regular form:

    /**
     * What it answers, as one paragraph: the summary.
     *
     * Any further paragraphs.
     *
     * @param NAME RANGE; text      one for each argument, in declared order
     * @return NAME text            the declared result
     * @noanswer text               when a call gets no answer: "the index is another number"
     * @item [SECTION] KEY...       the item of the project's files; more where an argument chooses
     * @property NAME               the system property
     * @file PATH                   the file
     */

RANGE says which values a method serves: "0 or 1", "0 to 3", "1 or more", "at most 128 bytes" or "a country". Without
one (there is only the text), it serves every value of the type. Any other form is an error.
"""

import re
from dataclasses import dataclass, field
from typing import Optional

NUMBER = r"(-?\d+)"
RANGES = [
    (re.compile(f"{NUMBER} or {NUMBER}"), lambda low, high: (int(low), int(high))),
    (re.compile(f"{NUMBER} to {NUMBER}"), lambda low, high: (int(low), int(high))),
    (re.compile(f"{NUMBER} or more"), lambda low: (int(low), None)),
    (re.compile(r"at most (\d+) bytes"), lambda high: (None, int(high))),
    (re.compile("a country"), lambda: (None, None)),
]
TOKEN = re.compile(
    r"""\s+ | //[^\n]* | /\*\*(?P<doc>.*?)\*/ | /\*.*?\*/
      | (?P<token>[A-Za-z_][\w.]*(?:@[\d.]+)? | -?\d+ | [{}()<>\[\]:;,=])""",
    re.DOTALL | re.VERBOSE,
)


class Error(Exception):
    """An error in a definition. The message begins with file and line."""


@dataclass
class Range:
    """The values of its type that an argument may have; low and high are None if there is no limit."""

    text: str
    low: Optional[int]
    high: Optional[int]

    @property
    def is_country(self):
        return self.text == "a country"


@dataclass
class Argument:
    type: str
    name: str
    range: Optional[Range] = None
    text: str = ""


@dataclass
class Method:
    code: int
    name: str
    arguments: list
    result_type: str
    result_text: str = ""
    summary: str = ""
    details: list = field(default_factory=list)
    no_answer: str = ""
    items: list = field(default_factory=list)  # (section, keys)
    properties: list = field(default_factory=list)
    files: list = field(default_factory=list)


@dataclass
class Member:
    """A struct's field, with its type, or an enumerator, with its value."""

    name: str
    type: str
    value: Optional[int]
    text: str


@dataclass
class Type:
    kind: str  # "struct" or "enum"
    name: str
    text: str
    members: list


@dataclass
class Interface:
    name: str
    paragraphs: list
    methods: list


def paragraphs_of(doc):
    """A comment's paragraphs, each as one line; every tag begins one."""
    found = [[]]
    for line in (re.sub(r"^\s*\*? ?", "", line).strip() for line in doc.strip().splitlines()):
        if line.startswith("@") or (not line and found[-1]):
            found.append([])
        if line:
            found[-1].append(line)
    return [" ".join(lines) for lines in found if lines]


def range_of(text):
    """(range, rest) of the text after an argument's name."""
    head, _, rest = (part.strip() for part in text.partition(";"))
    for form, limits in RANGES:
        match = form.fullmatch(head)
        if match:
            return Range(head, *limits(*match.groups())), rest
    if re.match(r"-?\d|at most\b", text):
        raise ValueError(f'"{head}" is no range')
    return None, text


def describe(method, doc):
    """Stores the content of a method's comment."""
    tags = [paragraph for paragraph in paragraphs_of(doc) if paragraph.startswith("@")]
    method.details = [paragraph for paragraph in paragraphs_of(doc) if not paragraph.startswith("@")]
    if not method.details:
        raise ValueError("there is no summary")
    method.summary = method.details.pop(0)
    parameters = []
    for tag in tags:
        name, _, text = tag.partition(" ")
        first, _, rest = text.partition(" ")
        if not text:
            raise ValueError(f"{name} says nothing")
        if name == "@param":
            parameters.append((first, *range_of(rest)))
        elif name == "@return":
            if first != "result" or method.result_text:
                raise ValueError("@return wants the name of the result, once")
            method.result_text = rest
        elif name == "@noanswer" and not method.no_answer:
            method.no_answer = text
        elif name == "@item" and re.fullmatch(r"\[\w+\]", first) and rest:
            method.items.append((first, rest.split()))
        elif name in {"@property", "@file"} and not rest:
            (method.properties if name == "@property" else method.files).append(first)
        else:
            raise ValueError(f"not understood: {tag}")
    if [name for name, _, _ in parameters] != [argument.name for argument in method.arguments]:
        raise ValueError("the @params are not the arguments")
    for argument, (_, argument.range, argument.text) in zip(method.arguments, parameters):
        if not argument.text:
            raise ValueError(f"@param {argument.name} does not say what it is")
    if not method.result_text:
        raise ValueError("there is no @return")


class Reader:
    """The declarations of one file."""

    def __init__(self, name, text):
        self.name = name
        self.text = text
        self.tokens = []  # (token or None, comment or None, position)
        at = 0
        while at < len(text):
            match = TOKEN.match(text, at)
            if match is None:
                raise self.error(f"not understood: {text[at:].split(maxsplit=1)[0]}", at)
            if match["doc"] is not None or match["token"]:
                self.tokens.append((match["token"], match["doc"], at))
            at = match.end()

    def error(self, message, at):
        return Error(f"{self.name}:{self.text.count(chr(10), 0, at) + 1}: {message}")

    def position(self):
        return self.tokens[0][2] if self.tokens else len(self.text)

    def peek(self):
        return self.tokens[0][0] if self.tokens else None

    def doc(self):
        """The comment at this token, unchanged; empty if it has none."""
        text = ""
        while self.tokens and self.tokens[0][0] is None:
            text = self.tokens.pop(0)[1]
        return text

    def take(self, expected=r"[A-Za-z_]\w*"):
        token = self.peek()
        if token is None or not re.fullmatch(expected, token):
            raise self.error(f"{expected} is missing", self.position())
        self.tokens.pop(0)
        return token

    def type(self):
        name = self.take()
        if self.peek() == "<":
            self.take("<")
            name += f"<{self.type()}>"
            self.take(">")
        if self.peek() == "[":
            self.take(r"\[")
            name += f"[{self.take(r'[0-9]+')}]"
            self.take(r"\]")
        return name

    def arguments(self):
        found = []
        self.take(r"\(")
        while self.peek() != ")":
            found.append(Argument(self.type(), self.take()))
            if self.peek() != ")":
                self.take(",")
        self.take(r"\)")
        return found

    def method(self, code):
        doc, at = self.doc(), self.position()
        name = self.take()
        arguments = self.arguments()
        self.take("generates")
        results = self.arguments()
        self.take(";")
        if len(results) != 1 or results[0].name != "result":
            raise self.error(f"{name}: it has one result, named result", at)
        method = Method(code, name, arguments, results[0].type)
        try:
            describe(method, doc)
        except ValueError as error:
            raise self.error(f"{name}: {error}", at) from None
        return method

    def member(self, kind):
        text = " ".join(paragraphs_of(self.doc()))
        if kind == "struct":
            type_name, name = self.type(), self.take()
            self.take(";")
            return Member(name, type_name, None, text)
        name = self.take()
        self.take("=")
        value = int(self.take(r"-?\d+"))
        if self.peek() != "}":
            self.take(",")
        return Member(name, "", value, text)

    def declarations(self):
        self.take("package")
        self.take(r"[\w.]+@[\d.]+")
        self.take(";")
        found = []
        while self.tokens:
            doc = self.doc()
            kind, name = self.take("interface|struct|enum"), self.take()
            if kind == "enum":
                self.take(":")
                self.take()
            self.take("{")
            members = []
            while self.peek() != "}":
                members.append(self.method(len(members) + 1) if kind == "interface" else self.member(kind))
            self.take("}")
            self.take(";")
            paragraphs = paragraphs_of(doc)
            if kind == "interface":
                found.append(Interface(name, paragraphs, members))
            else:
                found.append(Type(kind, name, " ".join(paragraphs), members))
        return found


@dataclass
class Package:
    """Everything that some files declare."""

    interfaces: list
    types: list

    def enumerators(self, type_name):
        """Those of an enumeration; none for any other type."""
        return [m for t in self.types if t.kind == "enum" and t.name == type_name for m in t.members]


def read(texts):
    """The package of some files, given as (name, text); throws Error."""
    found = [declaration for name, text in texts for declaration in Reader(name, text).declarations()]
    return Package(
        [each for each in found if isinstance(each, Interface)], [each for each in found if isinstance(each, Type)]
    )
