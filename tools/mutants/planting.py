"""Plants all bugs of a file at once. Only the bug that the environment selects takes effect.

An expression becomes a conditional one, a statement a branch. What is planted asks
mlk_mutants::acts(NUMBER), see mutant.h. A part of an expression, such as "&& isOpen()", stands for
the whole expression that it is in.
"""

import re
from dataclasses import dataclass
from typing import Callable

from table import TableError

_LOCK = re.compile(r"(?:const )?std::(lock_guard|shared_lock)<([\w:]+)> (\w+)\(([^;]*)\);")
# Texts that begin or end a part of an expression which is no expression by itself.
_BINARY = r"&&|\|\||==|!=|<=|>=|<|>|[-+*/%?:] "
_PART = re.compile(rf"(?:{_BINARY}).*|.*(?:&&|\|\|)", re.S)
# Literals and comments: a bracket in them does not count. (A quote in a number separates digits.)
_OPAQUE = re.compile(r"""(?<!\w)'(?:\\.|[^'\\])+'|"(?:\\.|[^"\\])*"|//[^\n]*""")
# Macros, which need the brackets after them.
_LOG = re.compile(r"ALOG[VDIWE]")
_CONSTEXPR = re.compile(r"\b(static )?constexpr\b( const\b)?")


@dataclass
class _Edit:
    """Replaces the text between two positions by the result of `make`."""

    begin: int
    end: int
    make: Callable
    name: str


def _is_statement(text):
    return text.endswith(";") or (text.endswith("}") and ";" in text)


def _seen(text):
    return _OPAQUE.sub(lambda found: "x" * len(found[0]), text)


def _whole(text, begin, end):
    """The begin and the end of the expression that contains this part."""
    seen = _seen(text)
    depth = 0
    while begin > 0:
        sign = seen[begin - 1]
        depth += (sign in ")]}") - (sign in "([{")
        if depth < 0 or (depth == 0 and (sign in ",;?}" or re.search(r"\breturn\s$|[^=!<>]= $|[^:]:\s$", seen[:begin]))):
            break
        begin -= 1
    depth = 0
    while end < len(seen):
        sign = seen[end]
        depth += (sign in "([{") - (sign in ")]}")
        if depth < 0 or (depth == 0 and (sign in ",;?" or re.match(r"\s:\s", seen[end:end + 3]))):
            break
        end += 1
    begin += len(text[begin:end]) - len(text[begin:end].lstrip())
    return begin, end


def _extended(text, bug):
    """The begin and the end of the text that a bug changes, and the new text."""
    begin, end = bug.place(text)
    if _LOG.fullmatch(bug.old) and _LOG.fullmatch(bug.new):
        stop = _seen(text).index(";", end) + 1
        return begin, stop, bug.new + text[end:stop]
    if _is_statement(bug.old) or _is_statement(bug.new):
        return begin, end, bug.new
    is_member = text[:begin].endswith((".", "::", "->"))
    parts = [part for part in (bug.old, bug.new) if not part or _PART.fullmatch(part)]
    if not parts and not is_member:
        return begin, end, bug.new
    first, last = _whole(text, begin, end)
    return first, last, f"{text[first:begin]} {bug.new} {text[end:last]}"


def _planted(bug, old, new):
    """The text that takes the place of OLD."""
    acts = f"mlk_mutants::acts({bug.number})"
    new = " ".join(new.split())
    lock = _LOCK.fullmatch(" ".join(old.split()))
    if lock and not new:
        kind, mutex, name, argument = lock.groups()
        shared = "true" if kind == "shared_lock" else "false"
        return f"const mlk_mutants::MaybeLock<{mutex}, {shared}> {name}({argument}, !{acts});"
    if _is_statement(old) or _is_statement(bug.new):
        return f"if ({acts}) {{ {new} }} else {{ {old} }}"
    return f"({acts} ? ({new}) : ({old}))"


def _not_constexpr(text, bug, begin):
    """The edit that makes the constexpr a const to which the text at `begin` belongs."""
    nearest = None
    for found in _CONSTEXPR.finditer(text, 0, begin):
        nearest = found
    if nearest is None:
        raise TableError(f"{bug.where}: {bug.name}: nothing before it is constexpr")
    inline = "inline " if nearest[1] and bug.file.endswith(".h") else ""
    return _Edit(nearest.start(), nearest.end(), lambda _: f"static {inline}const", bug.name)


def _render(text, begin, end, edits):
    """The text from begin to end; the edits are ordered, an outer one before those within it."""
    result = ""
    while edits:
        edit, rest = edits[0], edits[1:]
        for other in rest:
            if other.begin < edit.end < other.end:
                raise TableError(f"{edit.name} and {other.name} overlap")
        # Includes an empty place at the end, but nothing after an empty place.
        inner = [one for one in rest if one.end <= edit.end and one.begin < edit.end] \
            if edit.begin < edit.end else []
        result += text[begin:edit.begin] + edit.make(_render(text, edit.begin, edit.end, inner))
        begin = edit.end
        edits = [one for one in rest if one not in inner]
    return result + text[begin:end]


def plant(text, bugs, header):
    """Gives the text of a source file with all its bugs planted; `header` is mutant.h's path."""
    edits = []
    for bug in bugs:
        begin, end, new = _extended(text, bug)
        edits.append(_Edit(begin, end, lambda old, bug=bug, new=new: _planted(bug, old, new),
                           bug.name))
        if bug.constant:
            edit = _not_constexpr(text, bug, begin)
            if all((edit.begin, edit.end) != (one.begin, one.end) for one in edits):
                edits.append(edit)
    edits.sort(key=lambda edit: (edit.begin, -edit.end))
    return f'#include "{header}"\n#line 1\n' + _render(text, 0, len(text), edits)
