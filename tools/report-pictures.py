#!/usr/bin/python3
"""Draws the pictures of the views of mlktree report that docs/ has.

    tools/report-pictures.py [PROGRAM]

PROGRAM is mlktree, by default that of build/default. The pictures show the sample with a few mistakes, so
that they have something to show. Needs chromium, chromium-driver and python3-selenium, as ./test does.
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tools/mlktree/tests")]
sys.dont_write_bytecode = True

from browser import Page, browser  # noqa: E402
from smallpng import smaller  # noqa: E402

# Name, route, width, height, what is at the top, what is done before.
VIEWS = (
    ("overview", "#/", 900, 760, None, ""),
    ("findings", "#/findings?severity=error", 900, 620, None, ""),
    ("matrix", "#/matrix?text=country&all=yes", 900, 800, None, """
        const name = [...document.querySelectorAll("[role=rowheader]")].find((cell) => cell.textContent === "[COUNTRY] TV_SYSTEM");
        document.querySelector(`[data-row="${name.dataset.row}"][data-column="2"]`).click();"""),
    ("set", "#/set/2/skerry_b2.ini/GERMANY", 900, 760, "What the set is", ""),
    ("chain", "#/set/2/skerry_b2.ini/GERMANY", 760, 1000, "The chain of its files", ""),
    ("spectrum", "#/country/GERMANY?beside=JAPAN,USA&kind=ATV_ANTENNA", 900, 520, "Channel plans", ""),
    ("country", "#/country/GERMANY", 900, 760, "Channel plans", ""),
    ("delays", "#/delays", 900, 640, None, ""),
    ("features", "#/features", 900, 640, None, ""),
    ("files", "#/files", 900, 640, None, ""),
    ("phone", "#/country/GERMANY", 360, 640, "Channel plans", ""),
)

# File, what stands there, what takes its place.
MISTAKES = (
    ("tvconfigs/model/TRQ43_M2_EU.ini", "overscan_uhd.ini", "overscan_UHD.ini"),
    ("tvconfigs/model/TRQ55_C3_CN.ini", "\nDPVR ", "\nDVPR "),
    ("tvconfigs/freqtables/dtv/freqtable_eu", "30, 8000000, 546000,", "30, 8000000, 564000,"),
)


def write_tree(folder):
    shutil.copytree(ROOT / "samples/partitions", folder)
    for name, old, new in MISTAKES:
        path = folder / name
        text = path.read_text(encoding="utf-8")
        if old not in text:
            raise SystemExit(f"report-pictures.py: {name} has no {old!r}")
        path.write_text(text.replace(old, new, 1), encoding="utf-8")


def draw(page, name, route, width, height, heading, act):
    page.size(width, height)
    page.open(route)
    if act:
        page.run(act)
    if heading:
        page.run("""[...document.querySelectorAll("h2")].find((one) => one.textContent === arguments[0]).scrollIntoView();""", heading)
    page.run("document.activeElement.blur()")
    page.settle()
    path = ROOT / f"docs/report-{name}.png"
    page.picture(path)
    path.write_bytes(smaller(path.read_bytes()))
    print(f"docs/report-{name}.png")


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/default/bin/mlktree"
    with tempfile.TemporaryDirectory() as folder:
        tree = Path(folder) / "tarnquill"
        write_tree(tree)
        html = Path(folder) / "line.html"
        subprocess.run([program, "report", tree, "-o", html], check=True)
        with browser() as driver:
            page = Page(driver, html)
            page.media("light")
            for view in VIEWS:
                draw(page, *view)


if __name__ == "__main__":
    main()
