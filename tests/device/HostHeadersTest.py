"""The host's headers offer only what a device's headers have, so that what compiles here compiles there."""

import re
import sys
import unittest
from pathlib import Path

import bp
import modulerules as rules
import tree
from device_build import DeviceBuild
from publicnames import PublicNames

NAMESPACES = ("android::hardware", "android::hidl::manager", "TvPartitionPath")
# Names below these belong to the runtime. IncludesTest lists the few of them that sources may use.
INTERNAL = "android::hardware::details"
USED_INTERNALS = {"android::hardware::details::return_status"}
# Parts of <hidl/HidlSupport.h>, and the header that hides the transport's parts of classes.
PIECES = {"hidl/HidlArray.h", "hidl/HidlHandle.h", "hidl/HidlString.h", "hidl/HidlToString.h", "hidl/HidlVec.h",
          "hidl/HostTransport.h"}


class Runtime:
    """The table of a device's names: tests/device/platform/runtime."""

    def __init__(self):
        self.headers, self.macros, self.names, self.interfaces = set(), set(), {}, {}
        for line in tree.read("tests/device/platform/runtime").splitlines():
            text = line.split("#")[0]
            if text.startswith(" "):
                current |= set(text.split())
            elif text.strip():
                kind, name = text.split()
                current = set()
                if kind in {"header", "macro"}:
                    (self.headers if kind == "header" else self.macros).add(name)
                else:
                    (self.interfaces if kind == "interface" else self.names)[name] = current


def headers_of_host():
    """Every header of the host that replaces one of the platform's, by the name in the include."""
    return {str(path.relative_to(folder)): path
            for folder in sorted((tree.ROOT / "host").glob("*/include"))
            for path in sorted(folder.rglob("*.h"))}


class HostHeaders(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.device = Runtime()
        cls.build = DeviceBuild(bp.modules(), cls.platform)
        cls.folders = [word for library in cls.build.headers for word in
                       ("-isystem", str(cls.build.folder_of(library)))]
        text = "".join(f"#include <{name}>\n" for name in headers_of_host())
        cls.offered = PublicNames(text, cls.folders, NAMESPACES).offered

    def beyond(self, offered):
        """The names that the host offers and the table lacks."""
        return {
            f"{scope}::{name}"
            for scope, names in offered.items()
            if scope and (not scope.startswith(INTERNAL) or scope in USED_INTERNALS)
            for name in names - self.device.names.get(scope, set())
        }

    def test_names_are_found(self):
        for scope, name in (("android::hardware", "hidl_vec"), ("android::hardware::hidl_vec", "resize"),
                            ("android::hardware::Parcel", "writeBool"), ("TvPartitionPath", "GetInstance"),
                            ("android::hardware::details::return_status", "isOk"),
                            ("android::hidl::manager::V1_0::IServiceManager", "list")):
            self.assertIn(name, self.offered[scope])

    def test_names_are_a_devices(self):
        self.assertEqual(self.beyond(self.offered), set())

    def test_names_beyond_are_noticed(self):
        text = """namespace android { namespace hardware {
            template <typename T> class hidl_vec { public: bool empty() const; private: int mine; };
            class Parcel { int mine; protected: int objects(); public: struct Object { int bytes; }; };
            enum MQFlavor : int { kOther };
            void handleEverything();
        } }"""
        found = PublicNames(text, [], ("android::hardware",)).offered
        self.assertEqual(self.beyond(found), {
            "android::hardware::hidl_vec::empty", "android::hardware::Parcel::objects",
            "android::hardware::Parcel::Object", "android::hardware::Parcel::Object::bytes",
            "android::hardware::MQFlavor::kOther", "android::hardware::handleEverything"})

    def test_headers_are_a_devices(self):
        self.assertEqual(set(headers_of_host()), self.device.headers | PIECES)

    def test_modules_include_headers_of_a_device(self):
        modules = bp.modules()
        for name in rules.with_sources(modules):
            for source in rules.sources_of(modules, name):
                for file in {source, *rules.included(source)}:
                    named = {header.strip("<>") for header in tree.includes(file)}
                    self.assertEqual(named & PIECES, set(), file)

    def test_macros_are_a_devices(self):
        for path in headers_of_host().values():
            defined = set(re.findall(r"^ *# *define +(\w+)", path.read_text(encoding="utf-8"), re.MULTILINE))
            self.assertLessEqual(defined, self.device.macros | {"MLK_HOST_TRANSPORT_ONLY"}, path)

    def test_methods_of_interfaces_are_a_devices(self):
        found = {}
        for path in (tree.ROOT / "host/hidl/interfaces").rglob("I*.hal"):
            text = re.sub(r"/\*.*?\*/|//[^\n]*", "", path.read_text(encoding="utf-8"), flags=re.DOTALL)
            package = re.search(r"^package ([\w.@]+);", text, re.MULTILINE)[1]
            found[f"{package}::{path.stem}"] = set(re.findall(r"(?:^|[;{}])\s*(?:oneway\s+)?(\w+)\(", text))
        self.assertEqual(set(found), set(self.device.interfaces))
        for name, methods in found.items():
            self.assertGreater(len(methods), 0, name)
            self.assertLessEqual(methods, self.device.interfaces[name], name)


class Uses(unittest.TestCase):
    """Sources that use names of the host alone do not compile with the headers of the device's build."""

    INCLUDES = "#include <hidl/HidlSupport.h>\n#include <hidl/Static.h>\n#include <hwbinder/Parcel.h>\n"

    @classmethod
    def setUpClass(cls):
        cls.build = DeviceBuild(bp.modules(), HostHeaders.platform)

    def compile(self, text):
        command = self.build.compiler("libmlkconfigs_mlkctl")
        return tree.run(*command, "-fsyntax-only", "-x", "c++", "-", text=self.INCLUDES + text)

    def test_what_a_device_has(self):
        text = "int f(const ::android::hardware::hidl_vec<int>& v) { return v.size() == 0 ? 0 : v[0]; }"
        self.assertEqual(self.compile(text), (0, ""))

    def test_what_it_lacks(self):
        for text in (
            "bool f(const ::android::hardware::hidl_vec<int>& v) { return v.empty(); }",
            "auto f() { return ::android::hardware::hidl_vec<int>::kMostBytes; }",
            "#include <string_view>\nstd::string_view f(const ::android::hardware::hidl_string& s) { return s; }",
            "auto f(const ::android::hardware::Parcel& p) { return p.objects().size(); }",
            "auto f(::android::hardware::Parcel& p) { return p.writeError(); }",
            "::android::hardware::Parcel::Object* f();",
            "void f(::android::hardware::ConcurrentMap<int, int>& m) { m.getOrMake(1, [](int i) { return i; }, "
            "[] { return 1; }); }",
        ):
            with self.subTest(text=text):
                self.assertNotEqual(self.compile(text)[0], 0)


if __name__ == "__main__":
    HostHeaders.platform = sys.argv.pop(2)
    tree.main()
