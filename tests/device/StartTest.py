"""The init file and the manifest describe the process as it is."""

import re
import unittest
import xml.etree.ElementTree as xml

import bp
import tree

PROGRAM = "vendor.morlak.mlconfigs@1.0-service"
MANIFEST = "service/vendor.morlak.mlkconfigs@1.0.xml"
MATRIX = "service/framework_compatibility_matrix.xml"
PACKAGE = "vendor.morlak.mlkconfigs"


def interfaces():
    """The interfaces of the package, by its .hal files."""
    names = set()
    for path in (tree.ROOT / "service/interfaces/mlkconfigs/1.0").glob("*.hal"):
        text = path.read_text(encoding="utf-8")
        assert f"package {PACKAGE}@1.0;" in text, path
        names.update(re.findall(r"^interface (\w+)", text, re.MULTILINE))
    return names


def instance():
    """The name under which the process registers every interface."""
    text = tree.code("service/Services.cpp")
    return re.search(r'registerAsService\("(\w+)"\)', text)[1]


def registered():
    return set(re.findall(r'registerOrAbort\(\w+, "(\w+)"\)', tree.code("service/Services.cpp")))


class Sections:
    """An init file: its actions and services, each with its lines of words."""

    def __init__(self, text):
        self.actions = {}
        self.services = {}
        for line in text.splitlines():
            words = line.split("#")[0].split()
            if not words:
                continue
            if words[0] == "on":
                current = self.actions.setdefault(" ".join(words[1:]), [])
            elif words[0] == "service":
                current = self.services.setdefault(words[1], [words[2:]])
            else:
                current.append(words)


class InitFile(unittest.TestCase):
    def setUp(self):
        _, _, module = bp.modules()[PROGRAM]
        self.module = module
        self.file = Sections(tree.read(f"service/{module['init_rc'][0]}"))
        ((self.name, (self.command, *self.options)),) = self.file.services.items()

    def option(self, name):
        return [words[1:] for words in self.options if words[0] == name]

    def test_starts_the_binary_where_it_is_installed(self):
        self.assertEqual(self.command, [f"/vendor/bin/{self.module['relative_install_path']}/{PROGRAM}"])
        self.assertIn(
            f'OUTPUT_NAME "{PROGRAM}"', tree.read("service/CMakeLists.txt"), "the host's name of it"
        )

    def test_service_has_a_vendors_name(self):
        self.assertRegex(self.name, r"^vendor\.[a-z0-9-]+$")

    def test_names_every_interface(self):
        self.assertEqual(
            sorted(self.option("interface")),
            sorted([f"{PACKAGE}@1.0::{name}", instance()] for name in interfaces()),
        )

    def test_class_and_user(self):
        self.assertEqual(self.option("class"), [["hal"]])
        self.assertEqual(self.option("user"), [["system"]])
        self.assertEqual(self.option("group"), [["system"]])
        self.assertEqual(self.option("capabilities"), [])

    def test_is_restarted_and_takes_nothing_down(self):
        self.assertEqual(self.option("restart_period"), [["5"]])
        self.assertEqual(self.option("oneshot") + self.option("disabled") + self.option("critical"), [])

    def test_prepares_what_the_service_writes(self):
        self.assertEqual(
            self.file.actions["post-fs-data"],
            [
                ["chown", "system", "system", "/tvdata"],
                ["mkdir", "/tvdata/tvsysmap", "0700", "system", "system"],
                ["chown", "system", "system", "/impdata"],
                ["chown", "system", "system", "/impdata/project_id.bin"],
                ["chmod", "0644", "/impdata/project_id.bin"],
            ],
        )
        self.assertIn('kCountryIdFolder = "/tvsysmap"', tree.code("regional/RegionalNames.h"))
        self.assertIn("kFolderMode = 0700", tree.code("regional/TvSysMapCfgHolderCountryId.cpp"))
        self.assertIn('kProjectIdFile = "/project_id.bin"', tree.code("projectconfigs/ChainKeywords.h"))
        self.assertIn("kMode = 0644", tree.code("common/SaveFile.cpp"))


class Manifest(unittest.TestCase):
    def test_hal_format_is_the_packages(self):
        for file, root, kind in ((MANIFEST, "manifest", "device"), (MATRIX, "compatibility-matrix", "framework")):
            with self.subTest(file=file):
                document = xml.fromstring(tree.read(file))
                self.assertEqual((document.tag, document.get("type")), (root, kind))
                (hal,) = document.findall("hal")
                self.assertEqual(hal.get("format"), "hidl")
                self.assertEqual(hal.findtext("name"), PACKAGE)
                self.assertEqual(hal.findtext("version"), "1.0")

    def test_manifest_is_the_installed_one(self):
        self.assertEqual([MANIFEST], [f"service/{name}" for name in bp.modules()[PROGRAM][2]["vintf_fragments"]])
        self.assertEqual(xml.fromstring(tree.read(MANIFEST)).findtext("hal/transport"), "hwbinder")

    def test_all_interfaces_and_no_other(self):
        self.assertEqual(len(interfaces()), 3)
        self.assertEqual(registered(), interfaces())
        for file in (MANIFEST, MATRIX):
            named = [
                (each.findtext("name"), [i.text for i in each.findall("instance")])
                for each in xml.fromstring(tree.read(file)).iter("interface")
            ]
            self.assertEqual(sorted(named), sorted((name, [instance()]) for name in interfaces()), file)

    def test_matrix_does_not_demand_the_service(self):
        self.assertEqual(xml.fromstring(tree.read(MATRIX)).find("hal").get("optional"), "true")


if __name__ == "__main__":
    tree.main()
