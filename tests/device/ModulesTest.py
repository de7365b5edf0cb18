"""The module definitions: formatted, complete, and the same sources as CMake builds."""

import re
import tempfile
import unittest
from pathlib import Path

import bp
import tree

# Each module of our own sources, and CMake's target for the same.
TARGETS = {
    "libmlkconfigs_common": "common",
    "libmlkconfigs_regional": "regional",
    "libmlkconfigs_projectconfigs": "projectconfigs",
    "libmlkconfigs_frameworkconfigs": "frameworkconfigs",
    "libmlkconfigs_tvconfigs": "tvconfigs",
    "libmlkconfigs_service": "service",
    "libmlkconfigs_mlkctl": "mlkctl_lib",
    "vendor.morlak.mlconfigs@1.0-service": "mlkconfigs_service",
    "mlkctl": "mlkctl",
    "mlkconfigs_common_test": "common_test",
    "mlkconfigs_regional_test": "regional_test",
    "mlkconfigs_service_test": "service_test",
    "mlkctl_test": "mlkctl_test",
}
OURS = re.compile(r"libmlkconfigs_|mlkconfigs_|mlkctl")


def unformatted(paths):
    """What bpfmt would change. It exits with 0 all the same."""
    status, said = tree.run("bpfmt", "-d", *paths)
    return said if status == 0 else f"bpfmt: status {status}\n{said}"


def included(source, seen):
    """Everything of the tree that a source includes, by way of others too."""
    for name in tree.includes(source):
        name = name.strip('<>"')
        if name not in seen and (tree.ROOT / name).is_file():
            seen.add(name)
            included(name, seen)
    return seen


def stands_alone(source):
    """Whether a test runs anywhere: no host around it, no file, no program, no fixture."""
    if not source.endswith("Test.cpp"):
        return False
    if re.search(r"MLK_\w+|_PROGRAM|getenv", tree.read(source)):
        return False
    return not any(
        name.startswith("host/") or "/tests/" in name for name in included(source, set())
    )


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
        for name in self.modules:
            self.assertNotIn("host/", str(bp.whole(self.modules, name)))

    def test_every_module_has_its_target(self):
        with_sources = {
            name
            for name, (_, kind, properties) in self.modules.items()
            if kind.startswith("cc_") and "srcs" in properties
        }
        self.assertEqual(with_sources, set(TARGETS))

    def test_every_target_has_its_module(self):
        for target, (folder, sources) in self.cmake.items():
            only_tests = all(source.startswith("tests/") for source in sources)
            if folder != "service/interfaces" and not only_tests:
                self.assertIn(target, TARGETS.values())

    def test_sources_are_those_of_the_target(self):
        for name, target in TARGETS.items():
            with self.subTest(module=name):
                folder, kind, properties = self.modules[name]
                target_folder, sources = self.cmake[target]
                self.assertEqual(folder, target_folder)
                if kind == "cc_test":
                    sources = [s for s in sources if stands_alone(f"{folder}/{s}")]
                self.assertEqual(sorted(properties["srcs"]), sorted(sources))

    def test_rooms_without_a_test_module_have_no_test_for_it(self):
        with_module = set(TARGETS.values())
        for target, (folder, sources) in self.cmake.items():
            if target not in with_module:
                self.assertEqual([s for s in sources if stands_alone(f"{folder}/{s}")], [])

    def test_modules_that_are_named_exist(self):
        for name in self.modules:
            whole = bp.whole(self.modules, name)
            for kind in ("static_libs", "shared_libs", "header_libs"):
                for library in whole.get(kind, []):
                    if OURS.match(library):
                        self.assertIn(library, self.modules)

    def test_rooms_link_what_they_include(self):
        for room, arrows in tree.ARROWS.items():
            used = {
                name.strip('"').split("/")[0]
                for source in tree.product_sources()
                if source.startswith(f"{room}/") and not source.endswith("main.cpp")
                for name in tree.includes(source)
                if name.startswith('"')
            } & arrows
            linked = self.modules[f"libmlkconfigs_{room}"][2].get("static_libs", [])
            self.assertLessEqual({f"libmlkconfigs_{other}" for other in used}, set(linked), room)

    def test_programs_link_everything_below_them(self):
        def below(name):
            libraries = set(self.modules[name][2].get("static_libs", []))
            return libraries.union(*(below(other) for other in libraries if other in self.modules))

        for name, (_, kind, properties) in self.modules.items():
            if kind in {"cc_binary", "cc_test"}:
                linked = set(properties["static_libs"])
                self.assertEqual({n for n in below(name) if OURS.match(n)} - linked, set(), name)

    def test_everything_is_the_vendors(self):
        for name, (_, kind, _) in self.modules.items():
            if kind.startswith("cc_"):
                self.assertIs(bp.whole(self.modules, name).get("vendor"), True, name)

    def test_service_is_installed_with_its_files(self):
        folder, kind, properties = self.modules["vendor.morlak.mlconfigs@1.0-service"]
        self.assertEqual(kind, "cc_binary")
        self.assertEqual(properties["relative_install_path"], "hw")
        for key in ("init_rc", "vintf_fragments"):
            self.assertEqual(len(properties[key]), 1)
            self.assertTrue((tree.ROOT / folder / properties[key][0]).is_file())

    def test_platform_library_names(self):
        shared = bp.whole(self.modules, "libmlkconfigs_projectconfigs")["shared_libs"]
        self.assertLessEqual(
            {"libbase", "libcutils", "libhidlbase", "libhidlmemory", "liblog", "libtinyxml2", "libutils",
             "libmlk_tvpartitionpath", "vendor.morlak.mlkconfigs@1.0"},
            set(shared),
        )


class Interface(unittest.TestCase):
    PACKAGE = "vendor.morlak.mlkconfigs@1.0"

    def test_is_what_the_compiler_would_write(self):
        modules = bp.modules()
        folder, _, properties = modules[self.PACKAGE]
        root_folder, kind, root = modules[properties["root"]]
        self.assertEqual(kind, "hidl_package_root")
        # Where the tree stands in a platform's.
        path = root["path"].removeprefix("vendor/morlak/mlkconfigs/")
        self.assertTrue(path.startswith(root_folder))
        with tempfile.TemporaryDirectory() as out:
            status, said = tree.run(
                "hidl-gen", "-R", "-p", tree.ROOT, "-o", out, "-L", "androidbp",
                "-r", "android.hidl:host/hidl/interfaces", "-r", f"{root['name']}:{path}", self.PACKAGE,
            )
            self.assertEqual((status, said), (0, ""))
            # The compiler puts the file where the package lies.
            written = (Path(out) / folder / "Android.bp").read_text(encoding="utf-8")
        self.assertEqual(bp.modules_of(written), [("hidl_interface", properties)])


if __name__ == "__main__":
    tree.main()
