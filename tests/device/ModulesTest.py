"""The module definitions: formatted, complete, and the same sources as CMake builds."""

import tempfile
import unittest
from pathlib import Path

import bp
import modulerules as rules
import platform_modules
import tree
from modulerules import TARGETS, stands_alone

def unformatted(paths):
    """The changes that bpfmt would make. Its exit status is 0 in any case."""
    status, said = tree.run("bpfmt", "-d", *paths)
    return said if status == 0 else f"bpfmt: status {status}\n{said}"


class Modules(unittest.TestCase):
    def setUp(self):
        self.modules = bp.modules()
        self.cmake = {target: (folder, sources) for folder, target, _, sources in tree.targets()}

    def test_files_are_formatted(self):
        self.assertGreater(len(bp.files()), 8)
        self.assertEqual(unformatted(tree.ROOT / name for name in bp.files()), "")

    def test_unformatted_file_is_noticed(self):
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "Android.bp"
            file.write_text('cc_library {name:"a",\n  srcs:["b.cpp"]}\n', encoding="utf-8")
            self.assertNotEqual(unformatted([file]), "")
            file.write_text('cc_library {\n', encoding="utf-8")
            self.assertNotEqual(unformatted([file]), "")

    def test_nothing_of_the_host_is_built(self):
        self.assertEqual([name for name in bp.files() if name.startswith(("host/", "samples/"))], [])
        for name, (_, kind, _) in self.modules.items():
            if kind != "filegroup":
                self.assertNotIn("host/", str(bp.whole(self.modules, name)))
        for name in rules.with_sources(self.modules):
            self.assertEqual([s for s in rules.sources_of(self.modules, name) if s.startswith("host/")], [], name)

    def test_every_module_has_its_target(self):
        self.assertEqual(set(rules.with_sources(self.modules)), set(TARGETS))
        self.assertEqual(set(rules.of_host(self.modules)), {*rules.HOST_TARGETS, rules.READERS})

    def test_every_target_has_its_module(self):
        targets = {**TARGETS, **rules.HOST_TARGETS}
        folders = {self.modules[name][0] for name in targets}
        for target, (folder, sources) in self.cmake.items():
            only_tests = all(source.startswith("tests/") or Path(source).parent.name == "tests" for source in sources)
            if folder in folders and not only_tests:
                self.assertIn(target, targets.values())

    def test_nothing_is_wrong_with_them(self):
        self.assertEqual(rules.findings(self.modules, self.cmake), [])

    def test_generated_sources_are_those_of_the_target(self):
        for name, target in {**TARGETS, **rules.HOST_TARGETS}.items():
            folder, sources = self.cmake[target]
            with self.subTest(module=name), tempfile.TemporaryDirectory() as out:
                for file in bp.generated(self.modules, name, out):
                    built = [s for s in sources if Path(s).name == file.name]
                    self.assertEqual(len(built), 1)
                    if Path(built[0]).exists():
                        self.assertEqual(file.read_text(encoding="utf-8"), Path(built[0]).read_text(encoding="utf-8"))
                    self.assertGreater(file.stat().st_size, 0)

    def test_tools_have_their_files(self):
        for name, (folder, kind, properties) in self.modules.items():
            if kind == "python_binary_host":
                scripts = [path.name for path in (tree.ROOT / folder).glob("*.py")]
                self.assertEqual(sorted(properties["srcs"]), sorted(scripts), name)
                self.assertIn(properties["main"], scripts)

    def test_folders_without_a_test_module_have_no_test_for_it(self):
        with_module = set(TARGETS.values())
        for target, (folder, sources) in self.cmake.items():
            if target not in with_module and folder in tree.ARROWS:
                self.assertEqual([s for s in sources if stands_alone(f"{folder}/{s}")], [])

    def test_what_a_product_adds_is_in_the_guide(self):
        guide = tree.read("docs/device.md")
        for name, module in platform_modules.table().items():
            if not module.is_platforms:
                self.assertTrue(f"`{name}`" in guide or f"name: \"{name}\"" in guide, name)

    def test_platforms_modules_are_in_use(self):
        """Every row has a user: a superfluous one could hide a wrong name."""
        used = {library for name in rules.with_sources(self.modules) + rules.of_host(self.modules)
                for library in rules.named(self.modules, name)}
        used |= set(tree.read("docs/device.md").split())
        self.assertEqual(set(platform_modules.table()) - used, set())

    def test_everything_is_the_vendors(self):
        for name, (_, kind, _) in self.modules.items():
            if kind.startswith("cc_") and not rules.is_of_host(self.modules, name):
                self.assertIs(bp.whole(self.modules, name).get("vendor"), True, name)

    def test_modules_of_the_build_machine_install_nothing_on_a_device(self):
        for name in rules.of_host(self.modules):
            self.assertNotIn("vendor", bp.whole(self.modules, name), name)

    def test_mistakes_in_modules_of_the_build_machine_are_noticed(self):
        def changed(name, key, value):
            folder, kind, properties = self.modules[name]
            return {**self.modules, name: (folder, kind, {**properties, key: value})}

        readers = [s for s in self.modules["mlkconfigs_regional_files"][2]["srcs"] if s != "XmlFile.cpp"]
        sources = self.modules["libmlkconfigs_mlktree"][2]["srcs"]
        for modules, said in (
            (changed("mlkconfigs_regional_files", "srcs", readers), "regional/XmlFile.cpp is not compiled"),
            (changed("libmlkconfigs_mlktree", "srcs", sources[1:]), "srcs are not those of mlktree_lib"),
            (changed("mlktree_defaults", "header_libs", ["mlkconfigs_headers"]), "libtomlplusplus_headers is not named"),
            (changed("mlktree_defaults", "shared_libs", ["libhidlmemory"]), "libhidlmemory has no variant"),
            (changed("libmlkconfigs_tools", "host_supported", False), "libmlkconfigs_tools has no variant"),
            (changed("mlktree", "static_libs", ["libmlkconfigs_mlktree"]), "links no libmlkconfigs_readers"),
        ):
            self.assertIn(said, "\n".join(rules.findings(modules, self.cmake)))

    def test_service_is_installed_with_its_files(self):
        folder, kind, properties = self.modules["vendor.morlak.mlconfigs@1.0-service"]
        self.assertEqual(kind, "cc_binary")
        self.assertEqual(properties["relative_install_path"], "hw")
        for key in ("init_rc", "vintf_fragments"):
            self.assertEqual(len(properties[key]), 1)
            self.assertTrue((tree.ROOT / folder / properties[key][0]).is_file())


class Interface(unittest.TestCase):
    PACKAGE = "vendor.morlak.mlkconfigs@1.0"

    def test_is_what_the_compiler_would_write(self):
        modules = bp.modules()
        folder, _, properties = modules[self.PACKAGE]
        root_folder, kind, root = modules[properties["root"]]
        self.assertEqual(kind, "hidl_package_root")
        # The place of this tree in the platform's.
        path = root["path"].removeprefix("vendor/morlak/mlkconfigs/")
        self.assertTrue(path.startswith(root_folder))
        with tempfile.TemporaryDirectory() as out:
            status, said = tree.run(
                "hidl-gen", "-R", "-p", tree.ROOT, "-o", out, "-L", "androidbp",
                "-r", "android.hidl:host/hidl/interfaces", "-r", f"{root['name']}:{path}", self.PACKAGE,
            )
            self.assertEqual((status, said), (0, ""))
            # The compiler writes the file into the folder of the package.
            written = (Path(out) / folder / "Android.bp").read_text(encoding="utf-8")
        # This compiler is Android 10's, which put packages of other roots into the product partition.
        # From Android 11 on it is system_ext, where system clients find them.
        ((kind, expected),) = bp.modules_of(written)
        expected["system_ext_specific"] = expected.pop("product_specific")
        self.assertEqual((kind, expected), ("hidl_interface", properties))


if __name__ == "__main__":
    tree.main()
