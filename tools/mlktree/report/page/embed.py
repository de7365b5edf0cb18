#!/usr/bin/env python3
"""Writes the page of a report as a C++ source.

    embed.py OUT FILE...

One FILE is page.html; the others are the style sheets and scripts that it refers to. Their texts take
the place of the references, and a policy that allows these texts alone takes the place of @POLICY@. The
pieces between @SUMMARY@ and @DATA@ become constants of PageText.h.
"""

import base64
import hashlib
import re
import sys
import textwrap
from pathlib import Path

SHEET = re.compile(r'^ *<link rel="stylesheet" href="([\w.]+)">\n', re.MULTILINE)
SCRIPT = re.compile(r'^ *<script src="([\w.]+)"></script>\n', re.MULTILINE)
NAMES = ("kPageBegin", "kPageMiddle", "kPageEnd")


def hash_of(text):
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode("utf-8")).digest()).decode("ascii") + "'"


def policy(style, script):
    """Nothing but the page's own style and script; no network, and no text can become markup."""
    return "; ".join((
        "default-src 'none'",
        f"style-src {hash_of(style)}",
        f"script-src {hash_of(script)}",
        "base-uri 'none'",
        "form-action 'none'",
        "require-trusted-types-for 'script'",
        "trusted-types 'none'",
    ))


def joined(page, pattern, texts, used):
    """The page with its first reference replaced by a mark and the others removed, and their texts."""
    names = pattern.findall(page)
    used.update(names)
    page = pattern.sub("@HERE@\n", page, count=1)
    return pattern.sub("", page), "".join(texts[name] for name in names)


def page_of(texts):
    """The whole page, with @SUMMARY@ and @DATA@ in it."""
    used = {"page.html"}
    page, style = joined(texts["page.html"], SHEET, texts, used)
    style = "\n" + style
    page = page.replace("@HERE@\n", f"<style>{style}</style>\n")
    page, script = joined(page, SCRIPT, texts, used)
    # One scope for all files, which nothing outside of the page's script reaches.
    script = '\n"use strict";\n(() => {\n' + script + "})();\n"
    if used != set(texts):
        raise SystemExit(f"embed.py: page.html and the command line differ in {used ^ set(texts)}")
    if "</" in script or "<!--" in script or "</" in style:
        raise SystemExit("embed.py: a script or style sheet would end its element")
    page = page.replace("@HERE@\n", f"<script>{script}</script>\n")
    return page.replace("@POLICY@", policy(style, script))


def constant(name, text):
    """The text as numbers: compilers need not take a literal of more than 65,536 bytes."""
    numbers = textwrap.fill(", ".join(str(ord(c)) for c in text), 100)
    return (f"static constexpr char {name}Text[] = {{\n{numbers}}};\n"
            f"const std::string_view {name}({name}Text, sizeof({name}Text));\n")


def source_of(page):
    pieces = re.split("@SUMMARY@|@DATA@", page)
    if len(pieces) != len(NAMES):
        raise SystemExit("embed.py: page.html needs @SUMMARY@ and @DATA@, each once")
    constants = "\n".join(constant(name, piece) for name, piece in zip(NAMES, pieces))
    return ('// Written by embed.py from the files of report/page.\n#include "tools/mlktree/report/PageText.h"\n\n'
            f"namespace mlk::tree {{\n\n{constants}\n}}  // namespace mlk::tree\n")


def main():
    out, *files = sys.argv[1:]
    texts = {Path(name).name: Path(name).read_text(encoding="utf-8") for name in files}
    if not all(ord(c) < 128 for text in texts.values() for c in text):
        raise SystemExit("embed.py: the page's files are ASCII; write other characters as escapes")
    Path(out).write_text(source_of(page_of(texts)), encoding="utf-8")


if __name__ == "__main__":
    main()
