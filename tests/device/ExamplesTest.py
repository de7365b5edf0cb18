"""The examples of the guides: a set made of them, and the service on it."""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import bp
import tree
from guides import FORMATS, GUIDE, ITEMS, countries, section, table, words


class Examples(unittest.TestCase):
    """A set made of the guide's own examples, and the service on it."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        guide = tree.read(GUIDE)
        for path, content in re.findall(r"```\n# (/\S+)\n(.*?)```", section("### A smallest set"), re.DOTALL):
            self.put(path, content)
        self.put("/impdata/project_id.bin", re.search(r"```\n(PROJECT_ID=.*?)```", guide, re.DOTALL)[1])
        self.environment = {
            **os.environ,
            "MLK_ROOT": str(self.root),
            "MLK_RUNTIME_DIR": str(self.root / "run"),
            "ANDROID_LOG_TAGS": "*:S",
        }

        self.client = Path(os.environ["MLK_BIN_DIR"]) / "mlkctl"
        self.service = None

    def put(self, path, content, mode="w"):
        file = self.root / path.lstrip("/")
        file.parent.mkdir(parents=True, exist_ok=True)
        with file.open(mode, encoding="utf-8") as stream:
            stream.write(content)

    def start(self):
        program = Path(os.environ["MLK_BIN_DIR"]) / "vendor.morlak.mlconfigs@1.0-service"
        self.stop()
        self.service = subprocess.Popen([program], env=self.environment)
        self.addCleanup(self.stop)
        subprocess.run([self.client, "wait", "--timeout", "60"], env=self.environment, check=True)

    def stop(self):
        if self.service:
            self.service.kill()
            self.service.wait()
            self.service = None

    def ask(self, interface, method, *arguments):
        done = subprocess.run([self.client, "call", interface, method, *arguments], env=self.environment,
                              stdout=subprocess.PIPE, check=True)
        answer = json.loads(done.stdout)
        return answer["value"] if isinstance(answer, dict) else answer

    def test_smallest_set(self):
        self.start()
        self.assertEqual(self.ask("IMlkProjectConfigs", "getCustomerId"), "17")
        self.assertEqual(self.ask("IMlkProjectConfigs", "getProjectName"), "First")
        self.assertEqual(self.ask("IMlkProjectConfigs", "getPanelName"), "LC430-A")
        self.assertIs(self.ask("IMlkTvConfigs", "dtvAntennaEnabled"), True)
        self.assertIs(self.ask("IMlkTvConfigs", "atvEnabled"), False)

    def test_lines_of_the_formats(self):
        project, auxiliary, features = (
            table(section(heading, FORMATS), "line")
            for heading in ("## Project and board file", "## Auxiliary files", "## TV feature file")
        )
        self.put("/tvconfigs/model/first.ini", "[PANEL]\n" + "".join(f"{words(row[0])[0]}\n" for row in project)
                 + "[KEY]\nKEY_CONFIG_PATH = /tvconfigs/keys/pad.ini\n[LiveTV]\nTvConfig = /tvconfigs/tv/tv.config\n")
        self.put("/tvconfigs/keys/pad.ini", "[PAD]\n" + "".join(f"{words(row[0])[0]}\n" for row in auxiliary))
        self.put("/tvconfigs/tv/tv.config", "".join(f"{words(row[0])[0]}\n" for row in features))
        self.start()

        replaced = {"nothing": "", "the mount point of tvconfigs and `/logo.png`": f"{self.root}/tvconfigs/logo.png"}
        for rows, method, category in ((project, "getConfig", "[PANEL]"), (auxiliary, "getGlobalKeyConfig", "[PAD]")):
            for line, key, value, _ in (row for row in rows if row[1]):
                expected = replaced.get(value, value.removeprefix("`").removesuffix("`"))
                self.assertEqual(self.ask("IMlkProjectConfigs", method, category, words(key)[0]), expected, line)
        self.assertEqual(self.ask("IMlkProjectConfigs", "getGlobalKeyConfig", "[PAD]", "NOTHING"), "")
        for flag, on in (("av", False), ("dtv", True), ("pvr", False), ("ci", False), ("hdmi", False)):
            self.assertIs(self.ask("IMlkTvConfigs", f"{flag}Enabled"), on, flag)

    def set_properties(self, values):
        for key, value in values.items():
            subprocess.run([self.client, "prop", "set", key, value], env=self.environment, check=True)

    def test_switches_and_numbers_of_properties(self):
        values = {row[0]: row[1] for row in table(section("## Values", ITEMS), "value")}
        on, off = (words(part) for part in re.search(r"on for (.*?), off for (.*?);", values["switch"]).groups())
        numbers = re.findall(r"`(\w+)` is (\d+)", values["number of any base"])
        self.assertEqual((len(on), len(off), len(numbers)), (5, 5, 3))
        questions = [("getTvserviceDumpLevel", "vendor.mlk.nt.dumplevel", number, int(value)) for number, value in numbers]
        questions += [("getTvserviceDumpLevel", "vendor.mlk.nt.dumplevel", word, number)
                      for word, number in (("12abc", 12), ("a1", 0), ("2147483648", 0))]
        questions += [("strEnabled", "persist.vendor.mlk.enstr", word, word in on) for word in (*on, *off, "True", "2")]
        for method, key, value, answer in questions:
            with self.subTest(value=value):
                self.set_properties({key: value})
                self.start()
                self.assertEqual(self.ask("IMlkFrameworkConfigs", method), answer)

    def test_countries_of_the_formats(self):
        formats = tree.read(FORMATS)
        tv_systems, country_map, plans = re.findall(r"```xml\n(.*?)```", formats, re.DOTALL)
        channels = re.search(r"```\n(// channel, .*?)```", formats, re.DOTALL)[1]
        lines = table(section("## Country and language lists", FORMATS), "line")
        self.put("/tvconfigs/model/first.ini", """
[LiveTV]
TvConfig = /tvconfigs/tv/tv_uk.config
tuner_type = DVB_T
[COUNTRY]
COUNTRY_PATH = /tvconfigs/country/eu.txt
tvSysMap = /tvconfigs/tvsysmap/tvsys_eu.xml
""")
        self.put("/tvconfigs/country/eu.txt", "".join(f"{words(row[0])[0]}\n" for row in lines))
        self.put("/tvconfigs/tvsysmap/tvsys_eu.xml", tv_systems)
        self.put(re.search(r"<CountryTvSysMapXML>(.*?)<", tv_systems)[1], country_map)
        self.put("/tvconfigs/freqtables/country_freq_map.xml", plans)
        self.put("/tvconfigs/freqtables/dtv/" + re.search(r"<DTV_ANTENA>(.*?)<", plans)[1], channels)
        (self.root / "tvdata").mkdir()
        self.start()
        self.assertEqual(self.ask("IMlkProjectConfigs", "getTunerType"), "DVB_T2_C")
        self.assertEqual(self.ask("IMlkProjectConfigs", "getConfig", "[LiveTV]", "TvConfig"),
                         f"{self.root}/tvconfigs/tv/tv_eu.config")
        self.assertEqual((self.root / "tvdata/tvsysmap/country_id.bin").read_text(encoding="utf-8"),
                         f"COUNTRY_ID={countries().index('SWEDEN') - 1}\n")
        self.assertEqual(self.ask("IMlkProjectConfigs", "getCountryList"), [14, 0, 0, 14])
        self.assertEqual(countries()[14 + 1], "GERMANY")
        found = self.ask("IMlkProjectConfigs", "getFreqTableList", "14", "DTV_ANTENNA", "AUTO")
        self.assertEqual(
            [(c["channel"], c["bandwidth"], c["frequency"], c["label"], c["modulation"]) for c in found],
            [(21, 8000000, 474000, "E21", 18), (22, 6000000, 482000, "", 9)],
        )


class CheckWhileBuilding(unittest.TestCase):
    """The rule of the guide that checks a product's partitions, run as a build runs it."""

    PLACE = "device/morlak/line"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.partitions = self.root / self.PLACE / "partitions"
        shutil.copytree(tree.ROOT / "tools/mlktree/tests/rules/base", self.partitions)
        example = section("## Check the partitions while the platform is built")
        blocks = re.findall(r"```(\w*)\n(.*?)```", example, re.DOTALL)
        (definitions,) = [text for kind, text in blocks if kind == ""]
        self.modules = {properties["name"]: (kind, properties) for kind, properties in bp.modules_of(definitions)}
        self.makefiles = "".join(text for kind, text in blocks if kind == "make")

    def build(self):
        """Runs the rule. Returns its exit status, its output, and whether it has made its file."""
        _, rule = self.modules["mlktree_line_checked"]
        (out,) = rule["out"]
        (tool,) = rule["tools"]
        command = rule["cmd"].replace(f"$(location {tool})", str(Path(os.environ["MLK_BIN_DIR"]) / tool))
        status, said = tree.run("sh", "-c", f"cd {self.root} && {command.replace('$(out)', out)}")
        return status, said, (self.root / out).exists()

    def test_sound_partitions_pass(self):
        status, said, made = self.build()
        self.assertEqual((status, made), (0, True), said)

    def test_a_broken_line_ends_the_build(self):
        model = self.partitions / "tvconfigs/model/first.ini"
        text = model.read_text(encoding="utf-8")
        line = text[: text.index("m_pPanelName")].count("\n") + 1
        model.write_text(text.replace("m_pPanelName =", "m_pPanelName"), encoding="utf-8")
        status, said, made = self.build()
        self.assertEqual((status, made), (1, False), said)
        self.assertIn(f"tvconfigs/model/first.ini:{line}:", said)

    def test_the_result_is_needed(self):
        kind, needs = self.modules["mlktree_line"]
        self.assertEqual(kind, "prebuilt_etc")
        self.assertEqual(needs["src"], ":mlktree_line_checked")
        self.assertIn("\nPRODUCT_PACKAGES += mlktree_line\n", self.makefiles)

    def test_the_variable_is_that_of_the_module(self):
        modules = bp.modules()
        _, _, defaults = modules["mlktree_defaults"]
        (variable,) = defaults["soong_config_variables"]
        _, _, kind = modules["mlktree_defaults_type"]
        self.assertEqual(kind["bool_variables"], [variable])
        self.assertIn(f"SOONG_CONFIG_{kind['config_namespace']}_{variable} := true", self.makefiles)
        self.assertEqual(modules["mlktree"][1], "cc_binary_host")
        self.assertIn("PRODUCT_HOST_PACKAGES += mlktree\n", self.makefiles)


if __name__ == "__main__":
    tree.main()
