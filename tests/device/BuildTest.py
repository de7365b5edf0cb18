"""Every module of the Android.bp files compiles and links from exactly what the file says."""

import sys
import unittest

import bp
import modulerules as rules
import tree
from device_build import DeviceBuild, flags_of


class Build(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.modules = bp.modules()
        cls.build = DeviceBuild(cls.modules, cls.platform)
        cls.said = cls.build.make()

    def compile(self, text, module="libmlkconfigs_mlkctl", without=()):
        command = [word for word in self.build.compiler(module) if word not in without]
        return tree.run(*command, "-fsyntax-only", "-x", "c++", "-", text=text)

    def test_modules_compile(self):
        self.assertGreater(sum(len(rules.sources_of(self.modules, name)) for name in rules.with_sources(self.modules)), 80)
        self.assertEqual(self.said, "")

    def test_programs_link(self):
        programs = rules.programs(self.modules)
        self.assertGreater(len(programs), 5)
        for name in programs:
            with self.subTest(program=name):
                self.assertEqual(self.build.link(self.modules, name), "")

    def test_headers_are_of_libraries_that_are_named(self):
        self.assertEqual(list(rules.headers_without_library(self.modules, self.build.used())), [])

    def test_code_that_a_device_refuses_is_noticed(self):
        common = "libmlkconfigs_common"
        self.assertEqual(self.compile("int f(int i) { return i; }\n", common), (0, ""))
        for text in (
            "void f() { throw 1; }",
            "#include <typeinfo>\nbool f(int i) { return typeid(i) == typeid(1); }",
            # A module sees no headers of libraries that it does not name.
            "#include <cutils/properties.h>",
            "#include <hidl/HidlSupport.h>",
        ):
            status, said = self.compile(text, common)
            self.assertNotEqual(status, 0, said)

    def test_modules_ask_for_exceptions_only_where_they_need_them(self):
        for name in rules.with_sources(self.modules):
            if "-fexceptions" in flags_of(self.modules, name):
                refused = (
                    self.compile(f'#include "{tree.ROOT / source}"', name, without={"-fexceptions"})[0] != 0
                    for source in rules.sources_of(self.modules, name)
                )
                self.assertTrue(any(refused), name)


if __name__ == "__main__":
    Build.platform = sys.argv.pop(2)
    tree.main()
