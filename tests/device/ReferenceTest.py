"""The guide to bring-up says what the code does: every name, every limit, and its examples."""

import json
import os
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

import bp
import platform_modules as platform
import tree

GUIDE = "docs/device.md"
FENCE = re.compile(r"^ *```.*?^ *```$", re.MULTILINE | re.DOTALL)

# Words of the code that look like names in files and are not.
NO_NAMES = {
    # tags and interfaces
    "IMlkFrameworkConfigs", "IMlkProjectConfigs", "IMlkTvConfigs", "IniProjectParser", "MlkProjectConfigs",
    "MlkTvConfigs", "default",
    # what calls and messages say
    "ARC", "ashmem", "auto", "hrc", "irc", "loadCountryTvConfigMapXML", "parseCountryId", "std", "tvConfigName",
    "tvSysName",
    # values
    "false", "true",
}
# The limit of each format, as the guide has it, and the constant in common/FileLimits.h, which has one byte more.
LIMITS = {
    "`customer.ini`, system file": "kListBufferSize",
    "project file, board file": "kProjectBufferSize",
    "audio, karaoke, key, DDC/CI file": "kListBufferSize",
    "TV feature file": "kFeatureLineSize",
    "country list, language list": "kListBufferSize",
    "channel plan": "kPlanPieceSize",
    "`board_id.bin`, `country_id.bin`": "kListBufferSize",
}


def section(heading):
    """The text below a heading, up to the next one of its level or above."""
    text = tree.read(GUIDE)
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


def reference():
    return table(section("## Reference"), "file")


def items_of_the_code():
    """(section, key) of every item that the code asks for."""
    pairs = set()
    for source in tree.product_sources():
        pairs |= set(re.findall(r'"(\[\w+\])",\s*"(\w+)"', tree.code(source)))
    return pairs


def items_of_the_guide():
    return {(words(row[1])[0], words(row[2])[0]) for row in reference() if row[1].startswith("`[")}


class Names(unittest.TestCase):
    def test_items_of_the_code_are_in_the_reference(self):
        self.assertEqual(items_of_the_code() - items_of_the_guide(), set())

    def test_items_of_the_reference_are_in_the_code(self):
        names = tree.all_literals()
        for category, key in items_of_the_guide():
            self.assertEqual({category, key} - names, set(), f"{category} {key}")

    def test_sections_of_the_code_are_in_the_reference(self):
        sections = {text for text in tree.all_literals() if re.fullmatch(r"\[\w+\]", text)}
        self.assertEqual({category for category, _ in items_of_the_guide()}, sections)

    def test_items_of_the_methods_are_in_the_reference(self):
        methods = "".join(
            path.read_text(encoding="utf-8")
            for path in (tree.ROOT / "service/interfaces/mlkconfigs/1.0").glob("I*.hal")
        )
        items = {(category, key) for category, keys in re.findall(r"@item (\[\w+\])((?:[ *\n]+\w+)+)", methods)
                 for key in re.findall(r"\w+", keys)}
        self.assertGreater(len(items), 40)
        self.assertEqual(items - items_of_the_guide(), set())
        # The features' file is for the process that starts the services: no method names it.
        self.assertEqual(items_of_the_code() - items, {("[LiveTV]", "TvConfig")})

    def test_no_row_stands_twice(self):
        rows = [tuple(row[:3]) for row in reference()]
        self.assertEqual(len(rows), len(set(rows)))

    def test_other_names_of_the_code_are_in_the_guide(self):
        methods = set(re.findall(r"^    (\w+)\(", "".join(
            path.read_text(encoding="utf-8")
            for path in (tree.ROOT / "service/interfaces/mlkconfigs/1.0").glob("I*.hal")
        ), re.MULTILINE))
        self.assertGreater(len(methods), 100)
        countries = set(tree.literals("regional/CountryTable.h"))
        said = {part for word in words(tree.read(GUIDE)) for part in (word, *re.findall(r"\w+", word))}
        for source in tree.product_sources():
            # What begins as mAtvEnabled does is a member, for the log.
            names = {text for text in tree.literals(source) if re.fullmatch(r"(?!m[A-Z])[A-Za-z]\w*\}?", text)}
            self.assertEqual(names - said - methods - countries - NO_NAMES, set(), source)

    def test_names_of_the_reference_are_in_the_code(self):
        code = tree.all_literals()
        for row in reference():
            self.assertEqual(set(words(row[2])) - code, set())

    def test_properties(self):
        named = [word for row in reference() for word in words(row[2]) if "." in word]
        self.assertEqual(sorted(named), sorted(tree.properties()))
        features = set(tree.literals("tvconfigs/TvConfigItems.h"))
        for row in reference():
            for name in words(row[2]):
                if name in features:
                    self.assertEqual(row[0], "TV feature, then property", name)

    def test_numbers_whose_base_is_inferred(self):
        """Those that the framework's switches read as integers, and no others."""
        items = [(kind, name) for _, kind, name in tree.framework_items()]
        self.assertGreater(len(items), 15)
        integers = {name for kind, name in items if kind != "FLAG"}
        inferred = {words(row[2])[0] for row in reference() if "base is inferred" in row[3]}
        self.assertEqual(inferred, integers)
        switches = {words(row[2])[0] for row in reference() if row[3].startswith("switch")}
        self.assertEqual(switches, {name for kind, name in items if kind == "FLAG"}
                         - set(tree.literals("tvconfigs/TvConfigItems.h")))

    def test_files_that_the_code_names(self):
        said = tree.read(GUIDE)
        for text in tree.all_literals():
            if re.fullmatch(r"/[\w.]+/?", text):
                self.assertIn(text.strip("/"), said)

    def test_countries(self):
        names = re.search(r"```countries\n(.*?)```", tree.read(GUIDE), re.DOTALL)[1].split()
        code = tree.code("regional/CountryTable.h")
        self.assertEqual(names, list(tree.literals_in(code[code.index("kCountryNames = {") :]))[: len(names)])
        self.assertIn(f"std::array<std::string_view, {len(names)}> kCountryNames", code)
        self.assertIn("kUnused = 161", code)

    def test_modulations(self):
        code = re.findall(r'\{"([A-Z0-9_}]+)", (\d+)\}', tree.code("regional/Modulations.h"))
        self.assertEqual(len(code), 24)
        listed = re.search(r"The modulations:\n(.*?)\. ", tree.read(GUIDE), re.DOTALL)[1]
        self.assertEqual(re.findall(r"`([^`]+)` (\d+)", listed), code)


class Limits(unittest.TestCase):
    def test_lines(self):
        rows = {row[0]: row[1] for row in table(section("## Formats and their traps"), "format")}
        self.assertEqual(set(rows), set(LIMITS))
        for name, constant in LIMITS.items():
            size = int(re.search(rf"{constant} = (\d+)", tree.code("common/FileLimits.h"))[1])
            self.assertEqual(int(rows[name]), size - 1, name)

    def test_xml(self):
        code = tree.code("common/FileLimits.h")
        for constant in ("kMostAttributes", "kMostReferences"):
            number = re.search(rf"{constant} = (\d+)", code)[1]
            self.assertIn(f" {number} ", section("## Formats and their traps"))
        self.assertIn("kMostListBytes = size_t{16} << 20", tree.code("common/FileLimits.h"))


class Device(unittest.TestCase):
    def test_modules_that_are_named_exist(self):
        text = tree.read(GUIDE)
        modules = set(bp.modules())
        known = modules | set(platform.table())
        for packages in re.findall(r"PRODUCT_PACKAGES \+= (.+)", text):
            self.assertEqual(set(packages.split()) - known, set())
        for name in re.findall(r"`(mlk\w+_test)`", text):
            self.assertIn(name, modules)
        for path in re.findall(r"vendor/morlak/mlkconfigs/([\w./]+)", text):
            self.assertTrue((tree.ROOT / path).exists(), path)
        shared = set(bp.whole(bp.modules(), "vendor.morlak.mlconfigs@1.0-service")["shared_libs"])
        self.assertEqual({name for name in shared if f"`{name}`" not in text}, set())

    def test_framework_manifest_has_what_the_service_asks_for(self):
        example = section("### From Android 13 on")
        manifest = xml.fromstring(re.search(r"```xml\n(.*?)```", example, re.DOTALL)[1])
        self.assertEqual((manifest.tag, manifest.get("type")), ("manifest", "framework"))
        hals = {hal.findtext("name"): (hal.get("format"), hal.findtext("fqname")) for hal in manifest.findall("hal")}
        self.assertEqual(hals, {
            "android.hidl.manager": ("hidl", "@1.2::IServiceManager/default"),
            "android.hidl.allocator": ("hidl", "@1.0::IAllocator/ashmem"),
            "android.hidl.memory": ("hidl", "@1.0::IMapper/ashmem"),
        })
        self.assertIn("ashmem", tree.literals("projectconfigs/MlkProjectConfigsFiles.cpp"))

    def test_types_that_are_named_are_declared(self):
        policy = "".join(path.read_text(encoding="utf-8") for path in (tree.ROOT / "sepolicy").glob("*"))
        declared = set(re.findall(r"(?:type |attribute |_prop\()(\w+)", policy))
        for name in re.findall(r"\bmlkconfigs_\w+", tree.read(GUIDE)):
            if not name.endswith(("_test", "_mlkctl", "_")):
                self.assertIn(name, declared)

    def test_init_names(self):
        rc = tree.read("service/vendor.morlak.mlconfigs@1.0-service.rc")
        for name in re.findall(r"(?:ctl\.restart |init\.svc\.)([\w.-]+)", tree.read(GUIDE)):
            self.assertIn(f"service {name} ", rc)

    def test_partition_library_has_the_getters_that_the_code_calls(self):
        calls = set(re.findall(r"\b(Get(?:Tvconfigs|Tvdata|Impdata)Path|TvPartitionPath::GetInstance)\(",
                               "".join(tree.code(source) for source in tree.product_sources())))
        example = section("### The partition-path library")
        self.assertEqual(len(calls), 4)
        for call in calls:
            self.assertRegex(example, rf"\b{call.rsplit(':', maxsplit=1)[-1]}\(\)")

    def test_files_that_are_written_are_named(self):
        said = words(section("## Users, labels, files that are written"))
        for path in ("/impdata/project_id.bin", "/tvdata/tvsysmap/country_id.bin", "country_id.bin.new"):
            self.assertIn(path, said)

    def test_links(self):
        text = tree.read(GUIDE)
        anchors = {
            re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", text, re.MULTILINE)
        }
        for link in re.findall(r"\]\(([^)]+)\)", text):
            if link.startswith("#"):
                self.assertIn(link[1:], anchors)
            else:
                self.assertTrue((tree.ROOT / "docs" / link).is_file(), link)
        self.assertIn("docs/device.md", tree.read("README.md"))


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
        formats = section("## Formats and their traps")
        project, auxiliary = (
            table(formats[formats.index(heading) :], "line")
            for heading in ("**Project and board file.**", "**Audio, karaoke, key and DDC/CI files.**")
        )
        features = table(formats[formats.index("**TV feature file.**") :], "line")
        self.put("/tvconfigs/model/first.ini", "[PANEL]\n" + "".join(f"{words(row[0])[0]}\n" for row in project)
                 + "[KEY]\nKEY_CONFIG_PATH = /tvconfigs/keys/pad.ini\n[LiveTV]\nTvConfig = /tvconfigs/tv/tv.config\n")
        self.put("/tvconfigs/keys/pad.ini", "[PAD]\n" + "".join(f"{words(row[0])[0]}\n" for row in auxiliary))
        self.put("/tvconfigs/tv/tv.config", "".join(f"{words(row[0])[0]}\n" for row in features))
        self.start()

        replaced = {"nothing": "", "the mount point of tvconfigs and `/logo.png`": f"{self.root}/tvconfigs/logo.png"}
        for rows, method, category in ((project, "getConfig", "[PANEL]"), (auxiliary, "getGlobalKeyConfig", "[PAD]")):
            for line, key, value in (row for row in rows if row[1]):
                expected = replaced.get(value, value.removeprefix("`").removesuffix("`"))
                self.assertEqual(self.ask("IMlkProjectConfigs", method, category, words(key)[0]), expected, line)
        self.assertEqual(self.ask("IMlkProjectConfigs", "getGlobalKeyConfig", "[PAD]", "NOTHING"), "")
        for flag, on in (("av", False), ("dtv", True), ("pvr", False), ("ci", False), ("hdmi", False)):
            self.assertIs(self.ask("IMlkTvConfigs", f"{flag}Enabled"), on, flag)

    def set_properties(self, values):
        for key, value in values.items():
            subprocess.run([self.client, "prop", "set", key, value], env=self.environment, check=True)

    def test_switches_and_numbers_of_properties(self):
        text = section("## Reference")
        on, off = (words(part) for part in re.search(r"A switch is on for (.*?), off for (.*?), and has", text,
                                                     re.DOTALL).groups())
        numbers = re.findall(r"`(\w+)` is (\d+)", text.split("All other numbers")[0])
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
        formats = section("## Formats and their traps")
        tv_systems, country_map, plans = re.findall(r"```xml\n(.*?)```", formats, re.DOTALL)
        channels = re.search(r"```\n(// channel, .*?)```", formats, re.DOTALL)[1]
        countries = table(formats[formats.index("**Country and language lists.**") :], "line")
        self.put("/tvconfigs/model/first.ini", """
[LiveTV]
TvConfig = /tvconfigs/tv/tv_uk.config
tuner_type = DVB_T
[COUNTRY]
COUNTRY_PATH = /tvconfigs/country/eu.txt
tvSysMap = /tvconfigs/tvsysmap/tvsys_eu.xml
""")
        self.put("/tvconfigs/country/eu.txt", "".join(f"{words(row[0])[0]}\n" for row in countries))
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
                         f"COUNTRY_ID={self.names().index('SWEDEN') - 1}\n")
        self.assertEqual(self.ask("IMlkProjectConfigs", "getCountryList"), [14, 0, 0, 14])
        self.assertEqual(self.names()[14 + 1], "GERMANY")
        found = self.ask("IMlkProjectConfigs", "getFreqTableList", "14", "DTV_ANTENNA", "AUTO")
        self.assertEqual(
            [(c["channel"], c["bandwidth"], c["frequency"], c["label"], c["modulation"]) for c in found],
            [(21, 8000000, 474000, "E21", 18), (22, 6000000, 482000, "", 9)],
        )

    @staticmethod
    def names():
        return re.search(r"```countries\n(.*?)```", tree.read(GUIDE), re.DOTALL)[1].split()


if __name__ == "__main__":
    tree.main()
