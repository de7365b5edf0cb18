"""The guides say what the code does: every name and every limit."""

import re
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

import bp
import platform_modules as platform
import tree
from guides import FORMATS, GUIDE, ITEMS, PAGES, anchors, countries, said, section, table, words

# Words of the code that look like names in files but are none.
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
# The limit of each format, as the guide has it, and the constant in common/FileLimits.h. That of a buffer has one byte
# more; that of a channel plan is the limit itself.
LIMITS = {
    "`customer.ini`, system file": "kListBufferSize",
    "project file, board file": "kProjectBufferSize",
    "audio, karaoke, key, DDC/CI file": "kListBufferSize",
    "TV feature file": "kFeatureLineSize",
    "country list, language list": "kListBufferSize",
    "channel plan": "kPlanPieceSize",
    "`board_id.bin`, `country_id.bin`": "kListBufferSize",
}


def items():
    return table(section("## Project and board files", ITEMS), "section")


def names_of_the_reference():
    """What stands in the columns of names, by heading."""
    columns = {
        "## Customer, system and identity files": ("file", (1,)),
        "## Project and board files": ("section", (0, 1)),
        "## XML files": ("file", (1, 2, 3)),
        "## TV features": ("key", (0,)),
        "## Properties": ("property", (0,)),
    }
    return {
        heading: [tuple(words(row[i])[0] for i in places if words(row[i]))
                  for row in table(section(heading, ITEMS), first)]
        for heading, (first, places) in columns.items()
    }


def items_of_the_code():
    """(section, key) of every item that the code asks for."""
    pairs = set()
    for source in tree.product_sources():
        pairs |= set(re.findall(r'"(\[\w+\])",\s*"(\w+)"', tree.code(source)))
    return pairs


def items_of_the_guide():
    return {(words(row[0])[0], words(row[1])[0]) for row in items()}


class Names(unittest.TestCase):
    def test_items_of_the_code_are_in_the_reference(self):
        self.assertEqual(items_of_the_code() - items_of_the_guide(), set())

    def test_items_stand_in_the_tables_alone(self):
        """No section and no item is spelt anywhere else in the product."""
        tables = {"projectconfigs/KnownItems.h", "regional/RegionalNames.h"}
        for source in set(tree.product_sources()) - tables:
            literals = tree.literals(source)
            self.assertEqual({text for text in literals if re.fullmatch(r"\[\w+\]", text)}, set(), source)
            self.assertEqual(literals & {key for _, key in items_of_the_guide()}, set(), source)

    def test_items_of_the_reference_are_in_the_code(self):
        names = tree.all_literals()
        for category, key in items_of_the_guide():
            self.assertEqual({category, key} - names, set(), f"{category} {key}")

    def test_items_of_the_methods_are_in_the_reference(self):
        methods = "".join(
            path.read_text(encoding="utf-8")
            for path in (tree.ROOT / "service/interfaces/mlkconfigs/1.0").glob("I*.hal")
        )
        items = {(category, key) for category, keys in re.findall(r"@item (\[\w+\])((?:[ *\n]+\w+)+)", methods)
                 for key in re.findall(r"\w+", keys)}
        self.assertGreater(len(items), 40)
        self.assertEqual(items - items_of_the_guide(), set())
        # Only the process entry reads the item of the features' file; no method names it.
        self.assertEqual(items_of_the_code() - items, {("[LiveTV]", "TvConfig")})

    def test_no_row_stands_twice(self):
        for heading, rows in names_of_the_reference().items():
            self.assertEqual(len(rows), len(set(rows)), heading)

    def test_other_names_of_the_code_are_in_the_guide(self):
        methods = set(re.findall(r"^    (\w+)\(", "".join(
            path.read_text(encoding="utf-8")
            for path in (tree.ROOT / "service/interfaces/mlkconfigs/1.0").glob("I*.hal")
        ), re.MULTILINE))
        self.assertGreater(len(methods), 100)
        countries = set(tree.literals("regional/CountryTable.h"))
        parts = {part for word in said() for part in (word, *re.findall(r"\w+", word))}
        for source in tree.product_sources():
            # A name like mAtvEnabled is a member's, for the log.
            names = {text for text in tree.literals(source) if re.fullmatch(r"(?!m[A-Z])[A-Za-z]\w*\}?", text)}
            self.assertEqual(names - parts - methods - countries - NO_NAMES, set(), source)

    def test_names_of_the_reference_are_in_the_code(self):
        code = tree.all_literals()
        for heading, rows in names_of_the_reference().items():
            self.assertGreater(len(rows), 5, heading)
            self.assertEqual({name for row in rows for name in row} - code, set(), heading)

    def test_properties(self):
        names = names_of_the_reference()
        features = {name for (name,) in names["## TV features"]}
        self.assertEqual(features, set(tree.literals("tvconfigs/TvConfigItems.h")) & tree.properties())
        self.assertEqual(features | {name for (name,) in names["## Properties"]}, tree.properties())

    def test_numbers_whose_base_is_inferred(self):
        """Those that the framework's switches read as integers, and no others."""
        kinds = {name: kind for _, kind, name in tree.framework_items()}
        self.assertGreater(len(kinds), 15)
        rows = {words(row[0])[0]: row[1] for row in table(section("## Properties", ITEMS), "property")}
        values = {"FLAG": "switch", "NUMBER": "number of any base", "INVERTED": "inverted number"}
        self.assertEqual({name: rows[name] for name in kinds}, {name: values[kind] for name, kind in kinds.items()})

    def test_files_that_the_code_names(self):
        text = "".join(tree.read(page) for page in PAGES)
        for literal in tree.all_literals():
            if re.fullmatch(r"/[\w.]+/?", literal):
                self.assertIn(literal.strip("/"), text)

    def test_countries(self):
        code = tree.code("regional/CountryTable.h")
        self.assertEqual(countries(),
                         list(tree.literals_in(code[code.index("kCountryNames = {") :]))[: len(countries())])
        self.assertIn(f"std::array<std::string_view, {len(countries())}> kCountryNames", code)
        self.assertIn("kUnused = 161", code)

    def test_modulations(self):
        code = re.findall(r'\{"([A-Z0-9_}]+)", (\d+)\}', tree.code("regional/Modulations.h"))
        self.assertEqual(len(code), 24)
        listed = [(words(row[0])[0], row[1]) for row in table(section("## Modulations", ITEMS), "name")]
        self.assertEqual(listed, code)


class Limits(unittest.TestCase):
    def test_lines(self):
        rows = {row[0]: row[1] for row in table(section("## Limits", FORMATS), "format")}
        self.assertEqual(set(rows), set(LIMITS))
        for name, constant in LIMITS.items():
            size = int(re.search(rf"{constant} = (\d+)", tree.code("common/FileLimits.h"))[1])
            self.assertEqual(int(rows[name]), size if constant == "kPlanPieceSize" else size - 1, name)

    def test_xml(self):
        code = tree.code("common/FileLimits.h")
        for constant in ("kMostAttributes", "kMostReferences"):
            number = re.search(rf"{constant} = (\d+)", code)[1]
            self.assertIn(f" {number} ", section("## TV system file and country map", FORMATS))
        self.assertIn("kMostListBytes = size_t{16} << 20", tree.code("common/FileLimits.h"))


class Device(unittest.TestCase):
    def test_modules_that_are_named_exist(self):
        text = tree.read(GUIDE)
        modules = set(bp.modules())
        # Those that a product adds, as the guide defines them.
        known = modules | set(platform.table()) | set(re.findall(r'name: "([^"]+)"', text))
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
        for page in PAGES:
            for link in re.findall(r"\]\(([^)]+)\)", tree.read(page)):
                name, _, anchor = link.partition("#")
                target = tree.ROOT / (f"docs/{name}" if name else page)
                self.assertTrue(target.is_file(), f"{page}: {link}")
                if anchor:
                    self.assertIn(anchor, anchors(target), f"{page}: {link}")
            if page != GUIDE:
                self.assertIn(f"]({Path(page).name})", tree.read(GUIDE))
        self.assertIn("docs/device.md", tree.read("README.md"))


if __name__ == "__main__":
    tree.main()
