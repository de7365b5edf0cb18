"""Each room compiles with a device's compiler and flags: no exceptions and no RTTI unless it asks."""

import os
import sys
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import bp
import tree

# What the build system adds to every module that does not say otherwise.
PLATFORM_FLAGS = ["-fno-exceptions", "-fno-rtti"]
PRODUCT = "vendor.morlak.mlconfigs@1.0-service"


def flags_of(modules, name):
    module = bp.whole(modules, name)
    rtti = ["-frtti"] if module.get("rtti") else []
    return [*PLATFORM_FLAGS, f"-std={module['cpp_std']}", *module["cflags"], *module.get("cppflags", []), *rtti]


def product(modules):
    """The service's binary and all libraries of ours in it."""
    return [PRODUCT, *(name for name in modules[PRODUCT][2]["static_libs"])]


class Compile(unittest.TestCase):
    def setUp(self):
        # The tree itself is what the headers' module exports; everything else is the platform's.
        self.folders = [
            word
            for folder in Path(self.include_file).read_text(encoding="utf-8").split()
            for word in (["-I", folder] if Path(folder) == tree.ROOT else ["-isystem", folder])
        ]

    def said(self, flags, source, text=None):
        return tree.run("clang++", "-fsyntax-only", "-x", "c++", *flags, *self.folders, source, text=text)

    def test_rooms_with_the_flags_of_their_modules(self):
        modules = bp.modules()
        jobs = [
            (flags_of(modules, name), tree.ROOT / modules[name][0] / source)
            for name in product(modules)
            for source in modules[name][2]["srcs"]
        ]
        self.assertGreater(len(jobs), 30)
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            for (_, source), answer in zip(jobs, pool.map(lambda job: self.said(*job), jobs)):
                with self.subTest(source=source):
                    self.assertEqual(answer, (0, ""))

    def test_code_that_a_device_refuses_is_noticed(self):
        flags = flags_of(bp.modules(), "libmlkconfigs_common")
        self.assertEqual(self.said(flags, "-", "int f(int i) { return i; }\n"), (0, ""))
        for text in ("void f() { throw 1; }", "#include <typeinfo>\nbool f(int i) { return typeid(i) == typeid(1); }"):
            status, said = self.said(flags, "-", text)
            self.assertNotEqual(status, 0, said)

    def test_rooms_ask_for_exceptions_only_where_they_need_them(self):
        modules = bp.modules()
        for name in product(modules):
            flags = flags_of(modules, name)
            if "-fexceptions" in flags:
                flags.remove("-fexceptions")
                sources = [tree.ROOT / modules[name][0] / source for source in modules[name][2]["srcs"]]
                self.assertTrue(any(self.said(flags, source)[0] for source in sources), name)


if __name__ == "__main__":
    Compile.include_file = sys.argv.pop(2)
    tree.main()
