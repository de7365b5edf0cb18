"""The checks notice if a needed entry of an Android.bp file is missing, and if an entry is wrong."""

import copy
import os
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

import bp
import modulerules as rules
import tree
from device_build import DeviceBuild

LISTS = ("srcs", "generated_sources", "tools", *rules.LIBRARIES)
# Modules that generate sources, or hold the input of such modules.
WRITING = {"filegroup", "genrule", "python_binary_host"}


def without(modules, name, kind, entry):
    changed = dict(modules)
    folder, module_kind, properties = modules[name]
    changed[name] = (folder, module_kind, {**properties, kind: [each for each in properties[kind] if each != entry]})
    return changed


def with_entry(modules, name, kind, entry):
    changed = dict(modules)
    folder, module_kind, properties = modules[name]
    changed[name] = (folder, module_kind, {**properties, kind: [*properties.get(kind, []), entry]})
    return changed


class Modules(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.modules = bp.modules()
        cls.build = DeviceBuild(cls.modules, cls.platform)
        assert cls.build.make() == ""
        cls.cmake = {target: (folder, sources) for folder, target, _, sources in tree.targets()}
        cls.used = cls.build.used()
        cls.linked = {}

    def links(self, modules, name):
        """The linker's words for a program; each different set of inputs is linked once."""
        inputs = tuple(self.build.linker_inputs(modules, name))
        if inputs not in self.linked:
            self.linked[inputs] = self.build.link(modules, name)
        return self.linked[inputs]

    def writes(self, modules):
        """The generated sources of all modules; the reason when one cannot be written."""
        texts = {}
        for name in [*rules.with_sources(modules), *rules.of_host(modules)]:
            with tempfile.TemporaryDirectory() as out:
                try:
                    for file in bp.generated(modules, name, out):
                        texts[name, file.name] = file.read_text(encoding="utf-8")
                except (OSError, ValueError) as failure:
                    return str(failure)
        return texts

    def findings(self, modules):
        """The findings about modules before anything is linked."""
        return [*rules.findings(modules, self.cmake), *rules.headers_without_library(modules, self.used)]


class Missing(Modules):
    def entries(self):
        for name, (_, kind, properties) in self.modules.items():
            if kind != "hidl_interface" and not self.is_of_build_machine(name):
                yield from ((name, kind, entry) for kind in LISTS for entry in properties.get(kind, []))

    def is_of_build_machine(self, name):
        """Whether a module is for the build machine, which no test here compiles and links."""
        _, kind, properties = self.modules[name]
        has_code = any(source.endswith(".cpp") for source in properties.get("srcs", []))
        return rules.is_of_host(self.modules, name) or name == "mlktree_defaults" or (
            kind == "filegroup" and has_code)

    def test_what_stands_there_is_right(self):
        self.assertEqual(self.findings(self.modules), [])
        for name in rules.programs(self.modules):
            self.assertEqual(self.links(self.modules, name), "")

    def test_every_entry_is_missed(self):
        entries = list(self.entries())
        self.assertGreater(len(entries), 100)
        written = self.writes(self.modules)
        self.assertGreater(len(written), 0)

        def noticed(entry):
            changed = without(self.modules, *entry)
            if self.modules[entry[0]][1] in WRITING:
                return self.writes(changed) != written
            return bool(self.findings(changed)) or any(self.links(changed, name) for name in rules.programs(changed))

        with ThreadPoolExecutor(os.cpu_count()) as pool:
            idle = [entry for entry, found in zip(entries, pool.map(noticed, entries)) if not found]
        self.assertEqual(idle, [])

    def test_linker_misses_what_programs_use(self):
        """Tests one rule, regardless of the others."""
        for name, kind, entry in (
            ("mlkctl", "static_libs", "libmlkconfigs_common"),
            ("mlkctl", "static_libs", "libmlkconfigs_regional"),
            ("libmlkconfigs_tools", "srcs", "Table.cpp"),
            ("vendor.morlak.mlconfigs@1.0-service", "static_libs", "libmlkconfigs_projectconfigs"),
            ("mlkconfigs_platform_defaults", "shared_libs", "android.hidl.allocator@1.0"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libcutils"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libhidlbase"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libhidlmemory"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libmlk_tvpartitionpath"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libtinyxml2"),
            ("mlkconfigs_platform_defaults", "shared_libs", "libutils"),
            ("mlkconfigs_platform_defaults", "shared_libs", "vendor.morlak.mlkconfigs@1.0"),
            ("mlkconfigs_defaults", "shared_libs", "liblog"),
        ):
            with self.subTest(module=name, entry=entry):
                changed = without(self.modules, name, kind, entry)
                words = [self.links(changed, program) for program in rules.programs(changed)]
                self.assertIn("undefined symbol", "".join(words))


class Faults(Modules):
    """Faults that once went unnoticed."""

    def test_module_that_no_device_has(self):
        for entry in ("android.hidl.manager@1.0", "android.hidl.base@1.0", "libhidltransport", "libhwbinder"):
            changed = with_entry(self.modules, "mlkctl_defaults", "shared_libs", entry)
            self.assertIn(f"mlkctl: no module {entry} on each of Android 11 to 14", self.findings(changed))
        changed = with_entry(self.modules, "mlkctl", "defaults", "no_such_defaults")
        self.assertIn("mlkctl: no module no_such_defaults on each of Android 11 to 14", self.findings(changed))

    def test_client_without_the_libraries_that_its_country_rows_use(self):
        changed = copy.copy(self.modules)
        for name in ("libmlkconfigs_mlkctl", "mlkctl", "mlkctl_test"):
            for library in ("libmlkconfigs_common", "libmlkconfigs_regional"):
                changed = without(changed, name, "static_libs", library)
        self.assertIn("undefined symbol", self.links(changed, "mlkctl"))
        self.assertTrue(any("CountryRows.cpp includes regional/" in each for each in self.findings(changed)))

    def test_library_that_comes_only_by_way_of_another(self):
        changed = without(self.modules, "mlkconfigs_platform_defaults", "shared_libs", "libcutils")
        self.assertTrue(any("cutils/properties.h, and libcutils is not named" in each
                            for each in self.findings(changed)))


if __name__ == "__main__":
    Modules.platform = sys.argv.pop(2)
    tree.main()
