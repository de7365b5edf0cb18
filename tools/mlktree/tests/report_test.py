"""The page of mlktree report, in a browser."""

import functools
import gzip
import io
import json
import os
import re
import shutil
import subprocess
import tarfile
import tempfile
import unittest
from pathlib import Path

from selenium.webdriver.common.keys import Keys

import biglines
from browser import Page, browser

HERE = Path(__file__).resolve().parent
SAMPLE = biglines.SAMPLE
MLKTREE = Path(os.environ["MLK_BIN_DIR"]) / "mlktree"
RULES = (HERE / "page_rules.js").read_text(encoding="utf-8")

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

shared = {}


def setUpModule():
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    shared["folder"] = Path(folder.name)
    context = browser()
    shared["driver"] = context.__enter__()
    unittest.addModuleCleanup(context.__exit__, None, None, None)


def mlktree(*words):
    done = subprocess.run([MLKTREE, *words], capture_output=True, check=False)
    assert done.returncode in (0, 1), done.stderr
    return done.stdout


@functools.cache
def report(tree):
    """The page of a tree."""
    path = shared["folder"] / f"{Path(tree).name}.html"
    mlktree("report", tree, "-o", path)
    return path


@functools.cache
def broken_line():
    """The sample with mistakes of several kinds."""
    tree = shared["folder"] / "broken"
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
    tree = shared["folder"] / "hostile"
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
    tree = shared["folder"] / "long"
    biglines.write_line(tree, 500)
    return tree


def change(tree, path, old, new):
    file = Path(tree) / path
    text = file.read_text(encoding="utf-8")
    assert old in text, path
    file.write_text(text.replace(old, new, 1), encoding="utf-8")


def page_of(tree, route="", until="ready"):
    page = Page(shared["driver"], report(tree))
    page.media()
    page.size(1100, 800)
    page.console()
    return page.open(route, until)


class Text(unittest.TestCase):
    """The file itself, without a browser."""

    def test_same_tree_gives_same_bytes(self):
        first = mlktree("report", SAMPLE, "-o", "-")
        done = subprocess.run([MLKTREE, "report", SAMPLE, "-o", "-"], capture_output=True, check=True, cwd="/")
        self.assertEqual(first, done.stdout)
        self.assertEqual(first, report(SAMPLE).read_bytes())

    def test_nothing_but_its_own_script_may_run(self):
        text = report(SAMPLE).read_text(encoding="utf-8")
        policy = re.search('http-equiv="Content-Security-Policy" content="([^"]*)"', text).group(1)
        rules = dict(rule.strip().split(" ", 1) for rule in policy.split(";"))
        self.assertEqual(rules["default-src"], "'none'")
        self.assertRegex(rules["script-src"], r"^'sha256-[\w+/]{43}='$")
        self.assertRegex(rules["style-src"], r"^'sha256-[\w+/]{43}='$")
        self.assertEqual(rules["require-trusted-types-for"], "'script'")
        # The only address is the name of a namespace.
        self.assertEqual(set(re.findall(r"https?://[^\"' <]*", text)), {"http://www.w3.org/2000/svg"})
        self.assertNotRegex(text, r'(?i)\bsrc=|<link|url\(|@import')

    def test_size(self):
        packed = io.BytesIO()
        with tarfile.open(fileobj=packed, mode="w") as archive:
            archive.add(long_line(), "line")
        compressed = len(gzip.compress(packed.getvalue()))
        size = report(long_line()).stat().st_size
        print(f"the report of 500 models: {size} bytes; the tree's text, compressed: {compressed} bytes")
        self.assertLess(size, 3 * compressed + 300_000)

    def test_refused_command_lines(self):
        for words, said in (((SAMPLE,), "--output"), ((SAMPLE, "-o", "/nowhere/x"), "/nowhere/x"),
                            (("/nowhere", "-o", "-"), "/nowhere")):
            done = subprocess.run([MLKTREE, "report", *words], capture_output=True, check=False)
            self.assertEqual(done.returncode, 2, words)
            self.assertIn(said, done.stderr.decode())


class Views(unittest.TestCase):
    """What each view shows."""

    maxDiff = None

    def test_all_open_without_an_error(self):
        page = page_of(SAMPLE)
        for name, route in VIEWS.items():
            with self.subTest(view=name):
                page.go(route)
                self.assertNotIn("Not in this report", page.text())
                self.assertEqual(page.console(), [])

    def test_overview(self):
        text = page_of(broken_line()).text()
        for expected in ("7\nmodels", "2\nboards", "1\ncustomers", "1,666\nsets", "missing-file", "channel plan",
                         "tvconfigs/audio/old.ini", "1 file that a line names and that does not exist"):
            self.assertIn(expected, text)

    def test_set_says_what_show_says(self):
        page = page_of(SAMPLE)
        for model, board, country in ((2, "skerry_b2.ini", "GERMANY"), (6, "skerry_b1.ini", "UNITED_KINGDOM"),
                                      (5, "skerry_b2.ini", "CHINA"), (3, "skerry_b1.ini", "BRAZIL")):
            page.go(f"#/set/{model}/{board}/{country}")
            # Arrows lead to items; the texts beside them are what show prints.
            seen = page.run("""
                return Object.fromEntries([...document.querySelectorAll("[data-fact]")].map((fact) =>
                    [fact.dataset.fact, fact.innerText.replace(/ *\\u2197/g, "").replace(/\\n+/g, "\\n").trim()]));
            """)
            shown = shown_facts(mlktree("show", SAMPLE, "--model", str(model), "--board", board, "--country", country))
            self.assertGreater(len(shown), 45)
            self.assertEqual({name: squeezed(value) for name, value in seen.items()},
                             {name: squeezed(value) for name, value in shown.items()}, (model, board, country))

    def test_matrix_finds_an_item(self):
        page = page_of(SAMPLE, "#/matrix?all=yes")
        rows = int(page.one("[role=grid]").get_attribute("aria-rowcount"))
        page.one("input[type=search]").send_keys("pannelname".replace("nn", "n"))
        page.settle()
        self.assertEqual(int(page.one("[role=grid]").get_attribute("aria-rowcount")), 2)
        self.assertGreater(rows, 200)
        self.assertIn("[PANEL] m_pPanelName", page.text())
        self.assertIn("OSMR-43U60-B2", page.text())
        # By a value, too.
        page.go("#/matrix?text=OSMR-43U60")
        self.assertIn("[PANEL] m_pPanelName", page.text())

    def test_matrix_columns_by_pattern(self):
        page = page_of(SAMPLE, "#/matrix")
        headings = "return [...document.querySelectorAll('[role=columnheader]')].slice(0).map((cell) => cell.textContent)"
        page.all("input[type=search]")[1].send_keys("*_EU*, 5")
        page.settle()
        self.assertEqual(sorted(page.run(headings)),
                         ["1 TRQ32_S1_EU.ini", "2 TRQ43_M2_EU.ini", "5 TRQ55_C3_CN.ini", "Item"])

    def test_matrix_shows_origin_and_what_it_shadows(self):
        page = page_of(broken_line(), "#/matrix?text=m_pPanelName&columns=1&all=yes")
        page.one("[role=gridcell]").click()
        detail = page.one(".detail")
        self.assertIn("tvconfigs/model/TRQ32_S1_EU.ini", detail.text)
        self.assertRegex(detail.text, r"Replaces:\s+FIRST of the model, tvconfigs/model/TRQ32_S1_EU.ini:\d+")
        # The board replaces the model's value.
        page.go("#/matrix?text=m_pSSCName&columns=2&all=yes&board=skerry_b2.ini")
        page.one("[role=gridcell]").click()
        self.assertRegex(page.one(".detail").text, r"From the board: tvconfigs/board/skerry_b2.ini:\d+\s+Replaces:")

    def test_matrix_marks_what_differs(self):
        page = page_of(SAMPLE, "#/matrix?text=AQBin_Path")
        marks = page.run("""return [...document.querySelectorAll('[role=gridcell]')].map(
            (cell) => [Number(cell.dataset.column), cell.classList.contains('differs')])""")
        self.assertEqual([column for column, differs in sorted(marks) if differs], [5, 6, 7])

    def test_filter_hides_findings(self):
        page = page_of(broken_line(), "#/findings")
        count = len(page.all(".finding"))
        rules = page.run("return [...new Set([...document.querySelectorAll('.finding')].map((one) => one.dataset.rule))]")
        self.assertGreater(len(rules), 2)
        page.go("#/findings?rule=missing-file")
        self.assertLess(len(page.all(".finding")), count)
        self.assertEqual({one.get_attribute("data-rule") for one in page.all(".finding")}, {"missing-file"})
        # By the list itself, and by model: the file is missing in model 2.
        page.go("#/findings")
        page.run("""const list = document.querySelectorAll('select')[3]; list.value = '2';
                    list.dispatchEvent(new Event('change'));""")
        self.assertIn("missing-file", page.text())
        page.run("""const list = document.querySelectorAll('select')[3]; list.value = '5';
                    list.dispatchEvent(new Event('change'));""")
        self.assertNotIn("overscan_UHD", page.text())
        page.go("#/findings?file=tvconfigs~2f~freqtables~2f~dtv~2f~freqtable_eu")
        self.assertTrue(page.all(".finding"))
        self.assertNotIn("overscan_UHD", page.text())

    def test_finding_leads_to_its_line(self):
        page = page_of(broken_line(), "#/findings?rule=missing-file")
        self.assertIn("overscan_UHD.ini", page.one(".finding .source .here").text)
        page.follow(page.one(".finding p a"))
        here = page.one(".source .here")
        self.assertIn("overscan_UHD.ini", here.text)
        self.assertEqual(page.one("h1").text, "tvconfigs/model/TRQ43_M2_EU.ini")
        self.assertTrue(page.run("const b = arguments[0].getBoundingClientRect(); return b.top > 0 && b.bottom < innerHeight", here))

    def test_broken_link_of_the_chain_is_red(self):
        page = page_of(broken_line(), "#/set/2/skerry_b2.ini/GERMANY")
        self.assertIn("1 link of the chain broken", page.text())
        bad = page.run("return getComputedStyle(document.querySelector('.bad')).color")
        strokes = page.run("return [...document.querySelectorAll('.link.broken')].map((one) => getComputedStyle(one).stroke)")
        self.assertEqual(strokes, [bad])
        red, green, blue = (int(number) for number in re.findall(r"\d+", bad))
        self.assertGreater(red, 2 * max(green, blue))
        self.assertIn("overscan_UHD.ini", page.one("svg a.missing").get_attribute("aria-label"))
        # A set without that file has a whole chain.
        page.go("#/set/5/skerry_b2.ini/GERMANY")
        self.assertEqual(page.all(".link.broken"), [])
        self.assertGreater(len(page.all("svg .link")), 20)

    def test_plan_has_a_bar_for_each_channel(self):
        page = page_of(SAMPLE, "#/country/GERMANY?beside=FRANCE")
        plans = page.run("""return [...document.querySelectorAll('[data-plan]')].map(
            (plan) => [plan.dataset.plan, plan.querySelectorAll('.bar').length])""")
        expected = []
        for country in ("GERMANY", "FRANCE"):
            shown = shown_facts(mlktree("show", SAMPLE, "--country", country))["Country Channels"]
            expected += [[f"{country} {line.split(': ')[0]}", int(line.split(": ")[1])] for line in shown.splitlines()]
        self.assertGreater(len(expected), 6)
        self.assertEqual(sorted(plans), sorted(expected))
        # All of them on one axis: the same frequency at the same place.
        self.assertEqual(len(page.all(".picture > svg")), 1)
        places = page.run("""
            const at = (plan) => [...document.querySelectorAll(`[data-plan="${plan}"] .bar`)].find(
                (bar) => bar.textContent.includes("474 MHz")).getAttribute("x");
            return ["GERMANY DTV_ANTENNA", "FRANCE DTV_ANTENNA"].map(at);""")
        self.assertEqual(places[0], places[1])

    def test_overlap_and_gap_are_marked(self):
        page = page_of(broken_line(), "#/country/GERMANY?kind=DTV_ANTENNA")
        said = page.run("return [...document.querySelectorAll('[data-plan] .overlap, [data-plan] .gap')].map((one) => one.textContent)")
        self.assertIn("Overlap of 4 MHz between E21 and E22", said)
        self.assertIn("Gap of 4 MHz between E22 and E23", said)
        self.assertRegex(page.text(), "57 channels, 1 overlap, 2 gaps")

    def test_delays_are_stacks_of_their_summands(self):
        page = page_of(SAMPLE, "#/delays")
        page.one("summary").click()
        rows = page.run("return [...document.querySelectorAll('tbody tr')].map((row) => [...row.children].map((cell) => cell.textContent))")
        explained = json.loads(mlktree("explain", "audio", "ARC", "DTV_DELAY", "--format", "json", SAMPLE))
        row = next(row for row in rows if row[0] == "[ARC] DTV_DELAY")
        self.assertIn(f'"delay": {row[-1]}'.replace(" ", ""), json.dumps(explained).replace(" ", ""))
        self.assertEqual(sum(int(cell or 0) for cell in row[1:-1]), int(row[-1]))
        self.assertGreater(len(page.all("svg .bar")), len(rows))

    def test_features_by_country(self):
        page = page_of(SAMPLE, "#/features")
        text = page.text()
        self.assertIn("ANDORRA", text)
        self.assertIn("Framework switches", text)
        page.all("[role=gridcell]")[0].click()
        self.assertIn("Answered as", page.one(".detail").text)

    def test_every_link_leads_to_something(self):
        page = page_of(broken_line())
        links = set()
        for route in VIEWS.values():
            page.go(route)
            links.update(page.run("return [...document.querySelectorAll('a')].map((link) => link.getAttribute('href'))"))
        links.discard("#content")
        wrong = page.driver.execute_async_script("""
            const [links, done] = arguments;
            (async () => {
                const wrong = [];
                for (const link of links) {
                    if (location.hash === link) { continue; }
                    const gone = new Promise((resolve) => addEventListener("hashchange", resolve, {once: true}));
                    location.hash = link;
                    await gone;
                    if (document.querySelector("h1").textContent === "Not in this report") { wrong.push(link); }
                }
                done(wrong);
            })().catch((error) => done([`${location.hash}: ${error}`]));
        """, sorted(links)[::max(1, len(links) // 200)])
        self.assertGreater(len(links), 300)
        self.assertEqual(wrong, [])
        self.assertEqual(page.console(), [])


class Everyone(unittest.TestCase):
    """For every reader, on every device, and on paper."""

    def test_nothing_overflows_on_a_phone(self):
        page = page_of(broken_line())
        page.size(360, 740)
        for name, route in VIEWS.items():
            with self.subTest(view=name):
                page.go(route)
                self.assertLessEqual(page.run("return document.documentElement.scrollWidth"), 360)

    def test_contrast_names_and_order(self):
        page = page_of(broken_line())
        for scheme in ("light", "dark"):
            page.media(scheme)
            self.assertEqual(page.run("return matchMedia('(prefers-color-scheme: dark)').matches"), scheme == "dark")
            for name, route in VIEWS.items():
                with self.subTest(scheme=scheme, view=name):
                    page.go(route)
                    self.assertEqual(page.run(RULES), [])

    def test_rules_find_what_is_wrong(self):
        page = page_of(SAMPLE)
        page.run("""
            const main = document.querySelector("main");
            main.append(Object.assign(document.createElement("h4"), {textContent: "too deep"}));
            const pale = document.createElement("p");
            pale.textContent = "pale"; pale.style.color = "#999"; main.append(pale);
            main.append(document.createElement("input"), document.createElement("button"));
            const out = document.createElement("a"); out.href = "x"; out.textContent = "out"; out.tabIndex = 3; main.append(out);
        """)
        found = "\\n".join(page.run(RULES))
        for expected in ("heading out of order", "contrast 2.85", "no name: <input>", "no name: <button>", "leaves the page",
                         "out of the order of focus"):
            self.assertIn(expected, found)

    def test_keyboard(self):
        page = page_of(SAMPLE, "#/matrix?all=yes")
        keys = page.one("body").send_keys
        focused = "return document.activeElement.textContent || document.activeElement.localName"
        page.run("document.activeElement.blur()")
        keys(Keys.TAB)
        self.assertEqual(page.run(focused), "Skip to the content")
        self.assertTrue(page.run("return document.activeElement.getBoundingClientRect().left >= 0"))
        page.driver.switch_to.active_element.send_keys(Keys.ENTER)
        self.assertEqual(page.run("return document.activeElement.id"), "content")
        # Two searches, two lists, a box; then the grid as one stop.
        seen = []
        for _ in range(6):
            page.driver.switch_to.active_element.send_keys(Keys.TAB)
            seen.append(page.run("return document.activeElement.type || document.activeElement.getAttribute('role')"))
        self.assertEqual(seen[:5], ["search", "search", "select-one", "select-one", "checkbox"])
        self.assertIn(seen[5], ("columnheader", "grid"))
        if seen[5] == "grid":
            page.driver.switch_to.active_element.send_keys(Keys.TAB)
        at = "return [document.activeElement.dataset.row, document.activeElement.dataset.column].map(Number)"
        for key, expected in ((Keys.ARROW_DOWN, [1, 0]), (Keys.ARROW_RIGHT, [1, 1]), (Keys.END, [1, 7]), (Keys.HOME, [1, 0]),
                              (Keys.ARROW_RIGHT, [1, 1]), (Keys.ARROW_UP, [0, 1]), (Keys.ARROW_DOWN, [1, 1])):
            page.driver.switch_to.active_element.send_keys(key)
            page.settle()
            self.assertEqual(page.run(at), expected)
        page.driver.switch_to.active_element.send_keys(Keys.PAGE_DOWN)
        page.settle()
        row, _ = page.run(at)
        self.assertGreater(row, 5)
        self.assertTrue(page.run("""const [cell, grid] = [document.activeElement, document.querySelector('.grid')].map(
            (one) => one.getBoundingClientRect()); return cell.top >= grid.top && cell.bottom <= grid.bottom"""))
        page.driver.switch_to.active_element.send_keys(Keys.ENTER)
        self.assertIn("From the", page.one(".detail").text)
        # The channels of a plan.
        page.go("#/country/GERMANY?kind=DTV_ANTENNA")
        page.run("document.querySelector('[data-plan]').focus()")
        page.driver.switch_to.active_element.send_keys(Keys.ARROW_RIGHT, Keys.ARROW_RIGHT)
        self.assertIn("E6: channel 6, 184.5 MHz, 7 MHz wide, DVB_AUTO", page.text())
        self.assertEqual(len(page.all(".bar.chosen")), 1)

    def test_following_a_link_moves_the_focus(self):
        page = page_of(SAMPLE)
        page.one("nav a[href='#/files']").send_keys(Keys.ENTER)
        page.wait(lambda: page.run("return document.querySelector('h1').textContent") == "Files")
        self.assertEqual(page.run("return document.activeElement.id"), "content")
        self.assertEqual([one.text for one in page.all("nav [aria-current]")], ["Files"])

    def test_paper_has_everything(self):
        page = page_of(broken_line(), "#/findings?severity=allowed")
        page.media(medium="print")
        page.run("dispatchEvent(new Event('beforeprint'))")
        self.assertFalse(page.one("nav").is_displayed())
        self.assertFalse(page.one(".form").is_displayed())
        self.assertEqual(page.run("return getComputedStyle(document.body).backgroundColor"), "rgb(255, 255, 255)")
        self.assertEqual(len(page.all(".finding")), int(page.one("h2").text.split()[0]))
        page.go("#/matrix?all=yes")
        page.run("dispatchEvent(new Event('beforeprint'))")
        rows = int(page.one("[role=grid]").get_attribute("aria-rowcount"))
        self.assertFalse(page.one("[role=grid]").is_displayed())
        self.assertEqual(len(page.all(".paper tbody tr")), rows - 1)
        page.go("#/country/GERMANY")
        page.run("dispatchEvent(new Event('beforeprint'))")
        self.assertTrue(all(one.get_attribute("open") for one in page.all("details")))
        self.assertEqual(len(page.all("details tbody tr")), len(page.all("[data-plan] .bar")))
        page.run("dispatchEvent(new Event('afterprint'))")
        self.assertFalse(any(one.get_attribute("open") for one in page.all("details")))
        page.media()


class Guarded(unittest.TestCase):
    """A tree is not trusted."""

    def test_markup_of_a_tree_is_text(self):
        page = page_of(hostile_line())
        routes = [*VIEWS.values(), "#/set", "#/matrix?all=yes&text=~3c~", "#/findings", "#/country/GERMANY"]
        for route in routes:
            page.go(route)
            links = page.run("return [...document.querySelectorAll('main a')].map((link) => link.getAttribute('href'))")
            self.assertTrue(all(link.startswith("#") for link in links))
            self.assertEqual(page.run("return document.querySelectorAll('main img, main script, main b, main i, main iframe').length"), 0, route)
        page.go("#/matrix?all=yes&text=~3c~")
        text = page.text()
        self.assertIn("[<b>bold</b>] <i>key</i>", text)
        self.assertIn(MARKUP.replace('"', ""), text)  # the service takes the quotes out
        page.go("#/file/tvconfigs~2f~model~2f~first.ini")
        text = page.text()
        self.assertIn(MARKUP, text)
        self.assertIn("</script><script>window.hit=4</script><!-- \\u2028 \\u202e turned", text)
        self.assertIn("bytes = \\xff\\xfe\\xed\\xa0\\x80 end\\u0007", text)
        page.go("#/files?text=hit")
        self.assertIn("<script>window.hit=6<\\xff>", page.text())
        page.follow(page.one("th a"))
        self.assertNotIn("Not in this report", page.text())
        self.assertIsNone(page.run("return window.hit === undefined ? null : window.hit"))
        self.assertEqual(page.console(), [])

    def test_policy_stops_what_markup_would_do(self):
        page = page_of(SAMPLE)
        said = page.run("""
            const tried = [];
            const attempt = (name, act) => { try { act(); tried.push(name); } catch (error) { /* as it should be */ } };
            attempt("innerHTML", () => { document.querySelector("main").innerHTML = "<b>x</b>"; });
            attempt("insertAdjacentHTML", () => document.body.insertAdjacentHTML("beforeend", "<b>x</b>"));
            attempt("script", () => { document.createElement("script").textContent = "window.hit = 1"; });
            attempt("write", () => document.write("<b>x</b>"));
            return tried;""")
        self.assertEqual(said, [])
        answer = page.driver.execute_async_script(
            "const done = arguments[0]; fetch('data:,x').then(() => done('fetched'), () => done('refused'));")
        self.assertEqual(answer, "refused")
        page.console()

    def test_browser_that_cannot_unpack_says_so(self):
        driver = shared["driver"]
        script = driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": "delete window.DecompressionStream;"})
        try:
            page = page_of(SAMPLE, until="failed")
        finally:
            driver.execute_cdp_cmd("Page.removeScriptToEvaluateOnNewDocument", script)
        self.assertIn("This browser cannot unpack the report", page.one("#status").text)
        self.assertIn("1,666\nsets", page.text())


class LongLine(unittest.TestCase):
    """500 models."""

    def test_overview_comes_first_and_the_matrix_scrolls(self):
        page = page_of(long_line())
        self.assertIn("500\nmodels", page.text())
        marks = page.run("""return [performance.getEntriesByName("overview")[0].startTime,
            performance.getEntriesByName("unpacked")[0].startTime,
            performance.getEntriesByName("first-contentful-paint")[0].startTime]""")
        print("500 models: overview {:.0f} ms, first paint {:.0f} ms, unpacked {:.0f} ms".format(marks[0], marks[2], marks[1]))
        self.assertLess(marks[0], marks[1])
        self.assertLess(max(marks), 30_000)
        page.go("#/matrix?all=yes")
        grid = page.one("[role=grid]")
        self.assertEqual(int(grid.get_attribute("aria-colcount")), 501)
        self.assertLess(len(page.all(".cell")), 1000)
        page.run("arguments[0].scrollTo(500 * 150, 1e6)", grid)
        page.settle()
        self.assertIn("M500.ini", page.text())
        self.assertLess(len(page.all(".cell")), 1000)
        page.one("input[type=search]").send_keys("LINE-417")
        page.settle()
        self.assertEqual(int(page.one("[role=grid]").get_attribute("aria-rowcount")), 2)
        self.assertEqual(page.console(), [])


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


if __name__ == "__main__":
    unittest.main()
