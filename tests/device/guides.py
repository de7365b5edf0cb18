"""What the device's tests know of the guides: their pages, sections, tables and names."""

import re

import tree

GUIDE = "docs/device.md"
FORMATS = "docs/formats.md"
ITEMS = "docs/items.md"
PAGES = (GUIDE, FORMATS, ITEMS, "docs/troubleshooting.md")
FENCE = re.compile(r"^ *```.*?^ *```$", re.MULTILINE | re.DOTALL)


def section(heading, page=GUIDE):
    """The text of a page below a heading, up to the next one of its level or above."""
    text = tree.read(page)
    # Examples have lines that look like headings.
    plain = FENCE.sub(lambda m: re.sub(r"[^\n]", "~", m[0]), text)
    start = plain.index(f"\n{heading}\n")
    level = len(heading.split()[0])
    end = re.compile(rf"\n#{{1,{level}}} ").search(plain, start + len(heading) + 1)
    return text[start : end.start() if end else len(text)]


def table(text, first):
    """The rows of the table whose first column has this title."""
    lines = text.splitlines()
    start = next(i for i, line in enumerate(lines) if line.startswith(f"| {first} |"))
    rows = []
    for line in lines[start + 2 :]:
        if not line.startswith("|"):
            break
        rows.append([cell.strip() for cell in re.split(r"(?<!\\)\|", line.strip("|"))])
    return rows


def words(text):
    """What stands in backquotes."""
    return re.findall(r"`([^`]+)`", FENCE.sub("", text))


def said():
    """All words in backquotes of all pages."""
    return [word for page in PAGES for word in words(tree.read(page))]


def countries():
    return re.search(r"```countries\n(.*?)```", tree.read(ITEMS), re.DOTALL)[1].split()


def anchors(page):
    """Where links into a page may lead."""
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}
