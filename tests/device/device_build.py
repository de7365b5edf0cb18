"""Builds every module of the Android.bp files from exactly what they say, in a folder of the build.

A module's sources see the headers of the libraries that it names, and of those that these re-export. A
program is linked with the libraries that it names. The platform's libraries are stubs (stub.py), made
from their replacements on a host. Ninja does the work, and repeats only what changed.
"""

import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

import bp
import modulerules as rules
import platform_modules
import tree

# What the build system adds to every module that does not say otherwise.
PLATFORM_FLAGS = ["-fno-exceptions", "-fno-rtti", "-fPIC"]
# Nothing here runs, so the code need not be fast.
QUICK = ["-O0", "-g0"]
LINK = ["clang++", "-fuse-ld=lld", "-Wl,--no-undefined", "-Wl,--no-allow-shlib-undefined"]
GTEST = {"libgtest": "-lgtest", "libgtest_main": "-lgtest_main", "libgmock": "-lgmock"}


def flags_of(modules, name):
    module = bp.whole(modules, name)
    rtti = ["-frtti"] if module.get("rtti") else []
    return [*PLATFORM_FLAGS, f"-std={module['cpp_std']}", *module["cflags"], *module.get("cppflags", []), *rtti]


class DeviceBuild:
    """`platform`: the file with the replacement of each library; the build is made beside it."""

    def __init__(self, modules, platform):
        self.modules = modules
        self.out = Path(platform).resolve().parent / "modules"
        self.headers, self.libraries = {}, {}
        for line in Path(platform).read_text(encoding="utf-8").splitlines():
            name, folders, libraries = line.split("|")
            self.headers[name] = [Path(folder) for folder in folders.split() if Path(folder) != tree.ROOT]
            self.libraries[name] = libraries.split()
        self.make_headers()

    def make_headers(self):
        """A folder for each library, with only its own headers."""
        shutil.rmtree(self.out / "include", ignore_errors=True)
        table = platform_modules.table()
        for name, folders in self.headers.items():
            own = table[name].headers if name in table else ["sys/"] if name == "libc" else [rules.PACKAGE]
            for header in (header.rstrip("/") for header in own):
                there = next((folder / header for folder in folders if (folder / header).exists()), None)
                if there:
                    here = self.folder_of(name) / header
                    here.parent.mkdir(parents=True, exist_ok=True)
                    here.symlink_to(there)

    def folder_of(self, library):
        return self.out / "include" / library

    def header_folders(self, name):
        """The compiler's arguments for the headers that a module may see."""
        yield from ("-isystem", str(self.folder_of("libc")))
        for library in sorted(rules.passed_on(rules.named(self.modules, name))):
            if library in self.modules:
                for folder in bp.whole(self.modules, library).get("export_include_dirs", []):
                    yield from ("-I", os.path.normpath(tree.ROOT / self.modules[library][0] / folder))
            if self.folder_of(library).is_dir():
                yield from ("-isystem", str(self.folder_of(library)))

    def compiler(self, name):
        return ["clang++", *QUICK, *flags_of(self.modules, name), *self.header_folders(name)]

    def object_of(self, name, source):
        return self.out / "obj" / name / f"{source}.o"

    def sources_of(self, name):
        """The names of a module's sources, each with its path; generated ones are in the build's folder."""
        folder = tree.ROOT / self.modules[name][0]
        return [
            *((source, folder / source) for source in bp.whole(self.modules, name)["srcs"]),
            *((file, self.out / "gen" / name / file) for file in bp.generated_names(self.modules, name)),
        ]

    def objects_of(self, modules, name):
        """The objects that a module is made of, by these definitions."""
        sources = bp.whole(modules, name)["srcs"] + bp.generated_names(modules, name)
        return [str(self.object_of(name, source)) for source in sources]

    def archive_of(self, name):
        return self.out / "lib" / f"{name}.a"

    def stub_of(self, name):
        return self.out / "lib" / f"{name}.so"

    def linker_inputs(self, modules, name):
        """What a program is linked from: its objects, and the libraries that it names.

        It lists the objects of a static library one by one, as the linker sees those of an archive.
        """
        whole = bp.whole(modules, name)
        words = self.objects_of(modules, name)
        for library in whole.get("static_libs", []):
            if library in modules:
                words += ["-Wl,--start-lib", *self.objects_of(modules, library), "-Wl,--end-lib"]
        words += [str(self.stub_of(library)) for library in whole.get("shared_libs", []) if library in self.libraries]
        words += [GTEST[library] for library in sorted(rules.named(modules, name)) if library in GTEST]
        return words

    def link(self, modules, name):
        """Links a program as these definitions say. Returns the linker's messages, empty on success."""
        # The output is a file of its own: if the linker fails, the compiler removes the output, and
        # root's compiler would remove /dev/null.
        with tempfile.TemporaryDirectory(dir=self.out) as folder:
            status, said = tree.run(*LINK, *self.linker_inputs(modules, name), "-o", f"{folder}/program")
        return said if status else ""

    def ninja(self):
        lines = [
            "rule cc\n command = $compiler -c $in -o $out -MD -MF $out.d\n deps = gcc\n depfile = $out.d",
            f"rule stub\n command = python3 -B {Path(__file__).parent}/stub.py $out $name $in",
        ]
        for name, libraries in self.libraries.items():
            if libraries:
                lines.append(f"build {self.stub_of(name)}: stub {' '.join(libraries)}\n name = {name}")
        for name in rules.with_sources(self.modules):
            compiler = " ".join(self.compiler(name))
            for source, there in self.sources_of(name):
                lines.append(f"build {self.object_of(name, source)}: cc {there}\n compiler = {compiler}")
        return "\n".join(lines).replace("$$", "$") + "\n"

    def make(self):
        """Compiles everything. Returns the compiler's messages, empty on success."""
        self.out.mkdir(parents=True, exist_ok=True)
        for name in rules.with_sources(self.modules):
            folder = self.out / "gen" / name
            folder.mkdir(parents=True, exist_ok=True)
            with tempfile.TemporaryDirectory() as written:
                for file in bp.generated(self.modules, name, written):
                    # An unchanged file is not written, so that it is not compiled again.
                    there = folder / file.name
                    if not there.exists() or there.read_bytes() != file.read_bytes():
                        shutil.copy(file, there)
        file = self.out / "build.ninja"
        file.write_text(self.ninja(), encoding="utf-8")
        status, said = tree.run("ninja", "--quiet", "-C", self.out, "-k", "0")
        return said if status else ""

    def used(self):
        """The headers that the objects of each module were made of, as (owner, header) pairs."""
        text = subprocess.run(["ninja", "-C", self.out, "-t", "deps"], stdout=subprocess.PIPE, text=True,
                              check=True).stdout
        found = {name: set() for name in rules.with_sources(self.modules)}
        module = None
        for line in text.splitlines():
            if line and not line.startswith(" "):
                match = re.match(rf"{re.escape(str(self.out))}/obj/([^/]+)/", line)
                module = match[1] if match else None
            elif line and module in found:
                owner = self.owner_of(line.strip())
                if owner:
                    found[module].add(owner)
        return found

    def owner_of(self, path):
        """The library that has a header, with the header's name; None for the compiler's and the C library's."""
        if path.startswith(f"{self.out}/include/"):
            library, header = path.removeprefix(f"{self.out}/include/").split("/", 1)
            return None if library == "libc" else (library, header)
        if path.startswith(f"{tree.ROOT}/") and path.endswith(".h"):
            return ("mlkconfigs_headers", path.removeprefix(f"{tree.ROOT}/"))
        header = path.removeprefix("/usr/include/")
        owner = platform_modules.owner_of(header) if header != path else None
        return (owner, header) if owner else None
