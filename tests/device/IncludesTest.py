"""The product's folders use the platform by the names that a device has, and nothing of host/."""

import re
import unittest

import tree

STANDARD = set(
    """algorithm any array atomic bitset cassert cctype cerrno cfloat charconv chrono cinttypes climits
    cmath condition_variable csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime deque
    exception filesystem forward_list fstream functional future initializer_list iomanip ios iosfwd
    iostream istream iterator limits list map memory mutex new numeric optional ostream queue random
    ratio set shared_mutex sstream stack stdexcept streambuf string string_view system_error thread
    tuple type_traits typeindex unordered_map unordered_set utility variant vector""".split()
)
POSIX = {"dirent.h", "fcntl.h", "poll.h", "pthread.h", "sys/ioctl.h", "sys/mman.h", "sys/socket.h", "sys/stat.h",
         "sys/types.h", "unistd.h"}
PLATFORM = {
    "TvPartitionPath.h",
    "android-base/file.h",
    "android-base/unique_fd.h",
    "android/hidl/allocator/1.0/IAllocator.h",
    "android/hidl/memory/1.0/IMemory.h",
    "android/log.h",
    "cutils/properties.h",
    "hidl/HidlSupport.h",
    "hidl/HidlTransportSupport.h",
    "hidl/Static.h",
    "hidl/Status.h",
    "hidlmemory/mapping.h",
    "log/log.h",
    "malloc.h",
    "tinyxml2.h",
    "utils/Errors.h",
    "utils/RefBase.h",
    "utils/StrongPointer.h",
}
PACKAGE = re.compile(r"vendor/morlak/mlkconfigs/1\.0/(types|hwtypes|(I|IHw|BnHw)Mlk\w+Configs)\.h")

# What the product calls of the platform's C++ libraries. A device's headers declare each of them.
NAMES = set(
    """base::Pipe base::unique_fd hardware::IBinder hardware::Parcel hardware::Return
    hardware::Status::ok hardware::Void hardware::configureRpcThreadpool
    hardware::details::getBnConstructorMap hardware::hidl_handle hardware::hidl_memory
    hardware::hidl_string hardware::hidl_vec hardware::joinRpcThreadpool hardware::mapMemory
    hidl::allocator::V1_0::IAllocator hidl::memory::V1_0::IMemory""".split()
)


def foreign(names):
    """Those of some includes that a device does not have."""
    return [
        name
        for name in (name[1:-1] for name in names if name.startswith("<"))
        if name not in STANDARD | POSIX | PLATFORM and not PACKAGE.fullmatch(name)
    ]


def in_circles(arrows):
    """The folders that include themselves by way of others."""
    below = dict(arrows)
    for _ in below:
        below = {
            folder: others.union(*(below[other] for other in others))
            for folder, others in below.items()
        }
    return [folder for folder, others in below.items() if folder in others]


class Checker(unittest.TestCase):
    """The folders of tools/mlktree."""

    ARROWS = tree.arrows("What several folders need lies at the top of `tools/mlktree`")

    def test_only_folders_of_the_row(self):
        top = tree.ROOT / "tools/mlktree"
        sources = [path for path in sorted(top.rglob("*")) if path.suffix in {".cpp", ".h"}]
        folders = {path.parent for path in sources if "tests" not in path.parts} - {top}
        self.assertEqual({path.name for path in folders}, set(self.ARROWS))
        for path in sources:
            folder = str(path.parent.relative_to(top))
            # The program brings the folders together, and so do its tests.
            if folder.split("/", maxsplit=1)[0] == "tests":
                continue
            allowed = self.ARROWS.get(folder, set()) | {folder, "."}
            for name in tree.includes(str(path.relative_to(tree.ROOT))):
                if name.startswith('"tools/mlktree/'):
                    other = name.strip('"').removeprefix("tools/mlktree/").rpartition("/")[0]
                    self.assertIn(other or ".", allowed, f"{path.relative_to(tree.ROOT)}: {name}")

    def test_arrows_run_one_way(self):
        self.assertEqual(in_circles(self.ARROWS), [])


class Includes(unittest.TestCase):
    def test_sources_are_found(self):
        self.assertGreater(len(tree.product_sources()), 50)

    def test_only_what_a_device_has(self):
        for source in tree.product_sources():
            self.assertEqual(foreign(tree.includes(source)), [], source)

    def test_foreign_header_is_noticed(self):
        self.assertEqual(
            foreign(["<string>", "<HostSet.h>", "<hwbinder/Wire.h>", '"common/File.h"']),
            ["HostSet.h", "hwbinder/Wire.h"],
        )

    def test_only_folders_below(self):
        for source in tree.product_sources():
            folder = source.split("/", maxsplit=1)[0]
            # The entry of the process brings the folders together.
            allowed = tree.ARROWS[folder] | {folder}
            for name in tree.includes(source):
                if name.startswith('"'):
                    self.assertIn(name.strip('"').split("/")[0], allowed, f"{source}: {name}")
                    self.assertTrue((tree.ROOT / name.strip('"')).is_file(), f"{source}: {name}")

    def test_arrows_run_one_way(self):
        self.assertGreater(len(tree.ARROWS), 6)
        self.assertEqual(in_circles(tree.ARROWS), [])

    def test_circle_is_noticed(self):
        arrows = {"low": set(), "a": {"low", "b"}, "b": {"c"}, "c": {"a"}, "top": {"a"}}
        self.assertEqual(in_circles(arrows), ["a", "b", "c"])

    def test_only_the_adaptors_know_hidl(self):
        rows = tree.table("docs/architecture.md", "What a set is knows no HIDL.")
        listed = sorted(file for (file,), *_ in rows)
        hidl = re.compile(r"<(hidl|hwbinder|hidlmemory|android/hidl|vendor/morlak/mlkconfigs)/")
        including = sorted(
            source
            for source in tree.product_sources()
            if any(hidl.match(name) for name in tree.includes(source))
        )
        self.assertEqual(including, listed)

    def test_nothing_names_the_host(self):
        for source in tree.product_sources():
            self.assertNotRegex(tree.code(source), r"\bhost/|MLK_ROOT|MLK_RUNTIME_DIR", source)

    def test_only_names_of_the_platform(self):
        for source in tree.product_sources():
            text = tree.code(source)
            used = set(re.findall(r"\bandroid::((?:base|hardware|hidl)::[\w:]+)", text))
            self.assertLessEqual(used, NAMES, source)
            self.assertNotRegex(text, r"using namespace (?:::)?android", source)


if __name__ == "__main__":
    tree.main()
