"""The page of mlktree report for every reader, its safety and its size, in a browser."""

import gzip
import io
import re
import subprocess
import tarfile
import unittest

from selenium.webdriver.common.keys import Keys

from reports import (MARKUP, MLKTREE, RULES, SAMPLE, VIEWS, broken_line, driver, folder, hostile_line, long_line, mlktree, page_of,
                     report)


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
        # What was chosen stays, without the look of a control.
        self.assertEqual(page.run("return getComputedStyle(document.querySelector('.form select')).borderTopWidth"), "0px")
        self.assertTrue(page.one(".form select").is_displayed())
        self.assertEqual(page.run("return getComputedStyle(document.body).backgroundColor"), "rgb(255, 255, 255)")
        self.assertEqual(len(page.all(".finding")), int(page.one("h2").text.split()[0]))
        page.go("#/matrix?all=yes")
        page.run("dispatchEvent(new Event('beforeprint'))")
        rows = int(page.one("[role=grid]").get_attribute("aria-rowcount"))
        self.assertFalse(page.one("[role=grid]").is_displayed())
        # Seven models need two tables.
        self.assertEqual(len(page.all(".paper tbody tr")), 2 * (rows - 1))
        self.assertEqual(page.run("return [...document.querySelectorAll('.paper thead th')].map((cell) => parseInt(cell.textContent))"
                                  ".filter(Boolean)"), [1, 2, 3, 4, 5, 6, 7])
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

    def test_lines_that_lack_things(self):
        bare = folder() / "bare"
        (bare / "tvconfigs").mkdir(parents=True)
        page = page_of(bare)
        self.assertIn("0\nmodels", page.text())
        for route in VIEWS.values():
            page.go(route)
            self.assertEqual(page.console(), [], route)
            self.assertNotIn("undefined", page.text(), route)
        page.go("#/nowhere")
        self.assertIn("Not in this report", page.text())
        page.go("#/file/~zz~/x")
        self.assertIn("Not in this report", page.text())

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
        own = driver()
        script = own.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": "delete window.DecompressionStream;"})
        try:
            page = page_of(SAMPLE, until="failed")
        finally:
            own.execute_cdp_cmd("Page.removeScriptToEvaluateOnNewDocument", script)
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
        page.run("arguments[0].scrollTo(1e6, 1e6)", grid)
        page.settle()
        self.assertIn("M500.ini", page.text())
        self.assertLess(len(page.all(".cell")), 1000)
        page.one("input[type=search]").send_keys("LINE-417")
        page.settle()
        self.assertEqual(int(page.one("[role=grid]").get_attribute("aria-rowcount")), 2)
        self.assertEqual(page.console(), [])

    def test_a_long_list_grows_and_is_whole_on_paper(self):
        page = page_of(long_line(), "#/findings?severity=allowed")
        count = int(page.one("h2").text.split()[0].replace(",", ""))
        self.assertGreater(count, 300)
        self.assertEqual(len(page.all(".finding")), 100)
        page.one("button.more").click()
        self.assertEqual(len(page.all(".finding")), 200)
        self.assertEqual(page.run("return document.activeElement === document.querySelectorAll('.finding')[100]"), True)
        page.run("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(len(page.all(".finding")), count)


if __name__ == "__main__":
    unittest.main()
