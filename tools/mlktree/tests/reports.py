"""What the tests of the page of mlktree report share: one browser, product lines, and their pages."""

import atexit
import contextlib
import functools
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import biglines
from browser import Page, browser

HERE = Path(__file__).resolve().parent
SAMPLE = biglines.SAMPLE
RULES = (HERE / "page_rules.js").read_text(encoding="utf-8")
MLKTREE = Path(os.environ["MLK_BIN_DIR"]) / "mlktree"

# A route of each view; a word of a route has characters other than these as ~hex~.
VIEWS = {
    "overview": "#/",
    "findings": "#/findings?severity=allowed",
    "matrix": "#/matrix?text=panel",
    "item": "#/item/~5b~PANEL~5d~/m_pPanelName",
    "set": "#/set/2/skerry_b2.ini/GERMANY",
    "countries": "#/countries",
    "country": "#/country/GERMANY?beside=FRANCE",
    "delays": "#/delays",
    "features": "#/features",
    "files": "#/files",
    "file": "#/file/tvconfigs~2f~customer.ini/10",
    "rule": "#/rule/missing-file",
}

# What all tests of a run share goes with the run: a folder, and one browser.
_run = contextlib.ExitStack()
atexit.register(_run.close)


@functools.cache
def folder():
    return Path(_run.enter_context(tempfile.TemporaryDirectory()))


@functools.cache
def driver():
    return _run.enter_context(browser())


def mlktree(*words):
    done = subprocess.run([MLKTREE, *words], capture_output=True, check=False)
    assert done.returncode in (0, 1), done.stderr
    return done.stdout


@functools.cache
def report(tree, words=()):
    """The page of a tree."""
    path = folder() / f"{Path(tree).name}.html"
    mlktree("report", tree, "-o", path, *words)
    return path


@functools.cache
def broken_line():
    """The sample with mistakes of several kinds."""
    tree = folder() / "broken"
    shutil.copytree(SAMPLE, tree)
    change(tree, "tvconfigs/model/TRQ43_M2_EU.ini", "overscan_uhd.ini", "overscan_UHD.ini")
    change(tree, "tvconfigs/model/TRQ32_S1_EU.ini", "[PANEL]", "[PANEL]\nm_pPanelName = \"FIRST\"")
    change(tree, "tvconfigs/freqtables/dtv/freqtable_eu", "22, 8000000, 482000,", "22, 8000000, 478000,")
    (tree / "tvconfigs/audio/old.ini").write_text("[ARC]\n", encoding="utf-8")
    return tree


MARKUP = '<img src=x onerror="window.hit=1"><script>window.hit=2</script>'


@functools.cache
def hostile_line():
    """A line whose names and values are markup, scripts, and bytes that are no text."""
    tree = folder() / "hostile"
    shutil.copytree(HERE / "rules" / "base", tree)
    model = tree / "tvconfigs/model/first.ini"
    text = model.read_bytes()
    text += ("\n[<b>bold</b>]\n<i>key</i> = " + MARKUP + "\n[X]\nlink = javascript:window.hit=3\n"
             "end = </script><script>window.hit=4</script><!-- \u2028 \u202e turned\npath = /tvconfigs/" + MARKUP + "\n").encode()
    text += b"bytes = \xff\xfe\xed\xa0\x80 end\x07\n"
    model.write_bytes(text)
    name = "<img src=x onerror=window.hit=5>.ini"
    shutil.copy(tree / "tvconfigs/board/b1.ini", tree / "tvconfigs/board" / name)
    (tree / os.fsdecode(b"tvconfigs/audio/<script>window.hit=6<\xff>")).write_bytes(b"x")
    plan = tree / "tvconfigs/freqtables/dtv/freqtable_eu"
    plan.write_text(plan.read_text(encoding="utf-8") + '60, 8000000, 786000, "><b, DVB_AUTO\n', encoding="utf-8")
    return tree


@functools.cache
def long_line():
    tree = folder() / "long"
    biglines.write_line(tree, 500)
    return tree


def change(tree, path, old, new):
    file = Path(tree) / path
    text = file.read_text(encoding="utf-8")
    assert old in text, path
    file.write_text(text.replace(old, new, 1), encoding="utf-8")


def page_of(tree, route="", until="ready", words=()):
    page = Page(driver(), report(tree, words))
    page.media()
    page.size(1100, 800)
    page.console()
    return page.open(route, until)


def shown_facts(text):
    """What mlktree show prints, by group and label."""
    facts, group, last = {}, "", ""
    for line in text.decode().splitlines():
        if line and not line.startswith(" "):
            group = line
        elif line.startswith("  ") and line[2] != " ":
            label, _, value = line[2:].partition("  ")
            label = label.rstrip()
            last = f"{group} {label}"
            facts[last] = value.strip() if value.strip() else line[20:].strip()
        elif line.strip():
            facts[last] += "\n" + line.strip()
    return facts


def squeezed(text):
    """Without what breaking lines adds."""
    return "".join(text.split())
