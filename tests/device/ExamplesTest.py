"""The examples of the guides: a set made of them, and the service on it."""

import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

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


if __name__ == "__main__":
    tree.main()
