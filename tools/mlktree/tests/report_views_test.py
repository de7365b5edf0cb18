"""What each view of the page of mlktree report shows, in a browser."""

import json
import re
import shutil
import unittest

from reports import RULES, SAMPLE, VIEWS, broken_line, folder, mlktree, page_of, shown_facts, squeezed


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

    def test_matrix_offers_items_that_are_equal(self):
        page = page_of(SAMPLE, "#/matrix?text=m_pSSCName")
        self.assertEqual(page.all("[role=grid]"), [])
        self.assertIn("1 item of this text is equal in all of these models", page.text())
        page.one("main button").click()
        page.settle()
        self.assertEqual([one.text for one in page.all("[role=rowheader]")], ["[SSC] m_pSSCName"])
        self.assertTrue(page.one("input[type=checkbox]").is_selected())

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

    def test_matrix_headings_lead_on(self):
        page = page_of(SAMPLE, "#/matrix?text=m_pPanelName")
        page.one("[role=rowheader]").click()
        page.follow(page.one(".detail a"))
        self.assertEqual(page.one("h1").text, "Item [PANEL] m_pPanelName")
        self.assertIn("OSMR-43U60-B2", page.text())
        page.go("#/matrix?text=m_pPanelName")
        page.one("[role=columnheader][data-column='3']").click()
        page.follow(page.one(".detail a"))
        self.assertTrue(page.one("h1").text.startswith("Set: 3 TRQ55_M2_LATAM.ini"))

    def test_matrix_marks_what_differs(self):
        page = page_of(SAMPLE)
        # What is usual need not be what the first model has.
        for name, expected in (("AQBin_Path", [5, 6, 7]), ("m_nActiveHeight", [1])):
            page.go(f"#/matrix?text={name}")
            marks = page.run("""return [...document.querySelectorAll('[role=gridcell]')].map(
                (cell) => [Number(cell.dataset.column), cell.classList.contains('differs')])""")
            self.assertEqual([column for column, differs in sorted(marks) if differs], expected)

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
        is_seen = "const b = document.querySelector('.here').getBoundingClientRect(); return b.top > 0 && b.bottom < innerHeight"
        self.assertTrue(page.run(is_seen))
        # The address of a line, as it comes with a mail.
        page.open("#/file/tvconfigs~2f~model~2f~TRQ43_M2_EU.ini/270")
        self.assertTrue(page.run(is_seen))

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

    def test_analogue_channels_begin_below_their_carrier(self):
        page = page_of(SAMPLE, "#/country/GERMANY")
        places = page.run("""
            const at = (plan, name) => { const bar = [...document.querySelectorAll(`[data-plan="GERMANY ${plan}"] .bar`)].find(
                (one) => one.textContent.startsWith(`${name}: `)); return ["x", "width"].map((key) => bar.getAttribute(key)); };
            return [at("ATV_ANTENNA", "E5"), at("DTV_ANTENNA", "E5")];""")
        self.assertEqual(places[0], places[1])

    def test_overlap_and_gap_are_marked(self):
        page = page_of(broken_line(), "#/country/GERMANY?kind=DTV_ANTENNA")
        said = page.run("return [...document.querySelectorAll('[data-plan] .overlap, [data-plan] .gap')].map((one) => one.textContent)")
        self.assertIn("Overlap of 4 MHz between E21 and E22", said)
        self.assertIn("Gap of 4 MHz between E22 and E23", said)
        self.assertRegex(page.text(), "57 channels, 1 overlap, 2 gaps")

    def test_magnified_bars_have_their_labels(self):
        page = page_of(SAMPLE, "#/country/GERMANY?kind=DTV_ANTENNA")
        labels = "return [...document.querySelectorAll('[data-plan] text')].map((text) => text.textContent)"
        self.assertEqual(page.run(labels), [])
        width = page.run("return document.querySelector('.picture svg').clientWidth")
        page.run("const range = document.querySelector('[type=range]'); range.value = 8; range.dispatchEvent(new Event('input'))")
        page.settle()
        self.assertEqual(len(page.run(labels)), 57)
        self.assertIn("E21", page.run(labels))
        self.assertEqual(page.run("return document.querySelector('.picture svg').clientWidth"), 8 * width)
        self.assertEqual(page.run("return document.documentElement.scrollWidth <= innerWidth"), True)
        # A label is read on its bar.
        self.assertEqual([one for one in page.run(RULES) if "<text" in one], [])

    def test_delays_are_stacks_of_their_summands(self):
        page = page_of(SAMPLE, "#/delays")
        page.one("summary").click()
        rows = page.run("return [...document.querySelectorAll('tbody tr')].map((row) => [...row.children].map((cell) => cell.textContent))")
        explained = json.loads(mlktree("explain", "audio", "ARC", "DTV_DELAY", "--format", "json", SAMPLE))
        row = next(row for row in rows if row[0] == "[ARC] DTV_DELAY")
        self.assertIn(f'"delay": {row[-1]}'.replace(" ", ""), json.dumps(explained).replace(" ", ""))
        for row in rows:
            self.assertEqual(sum(int(cell or 0) for cell in row[1:-1]), int(row[-1]))
        self.assertLess(min(int(row[-1]) for row in rows), 0)
        self.assertGreater(len(page.all("svg .bar")), len(rows))

    def test_features_by_country(self):
        page = page_of(SAMPLE, "#/features")
        marked = page.run("""return [...document.querySelectorAll(".differs")].map((cell) =>
            [document.querySelector(`[data-row="${cell.dataset.row}"][data-column="0"]`).textContent, cell.textContent])""")
        self.assertIn(["IRELAND", "off"], marked)
        self.assertNotIn("ANDORRA", [country for country, _ in marked])
        text = page.text()
        self.assertIn("ANDORRA", text)
        self.assertIn("Framework switches", text)
        page.all("[role=gridcell]")[0].click()
        self.assertIn("Answered as", page.one(".detail").text)

    def test_models_of_two_customers(self):
        tree = folder() / "two"
        shutil.copytree(SAMPLE, tree)
        system = tree / "tvconfigs/system/tarnquill_skerry.ini"
        (tree / "tvconfigs/system/other.ini").write_text(
            system.read_text(encoding="utf-8").replace('Model_1 = "/tvconfigs/model/TRQ32_S1_EU.ini"',
                                                       'Model_1 = "/tvconfigs/model/TRQ65_C3_UK.ini"'), encoding="utf-8")
        (tree / "tvconfigs/other.ini").write_text("CUSTOMER_ID = OTHER\nSYS_INI = /tvconfigs/system/other.ini\n", encoding="utf-8")
        customers = ("--customer", tree / "tvconfigs/customer.ini", "--customer", tree / "tvconfigs/other.ini")
        page = page_of(tree, "#/matrix?text=m_pPanelName&columns=1", words=customers)
        values = [one.text.lstrip("\u2260\u00a0 ") for one in page.all("[role=gridcell]")]
        self.assertEqual(len(set(values)), 2)
        page.one("[role=columnheader][data-column='2']").click()
        page.follow(page.one(".detail a"))
        self.assertIn("OTHER", page.one("[data-fact='Project Customer']").text)
        self.assertIn("TRQ65_C3_UK.ini", page.one("[data-fact='Project Model file']").text)

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


if __name__ == "__main__":
    unittest.main()
