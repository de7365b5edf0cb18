#!/usr/bin/env python3
"""What is installed, and the Debian package of each tool in a root that holds its dependencies only.

    PackagesTest.py BUILD    BUILD is the folder of a complete build
"""

import gzip
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from scratch import BIN, PATIENCE, ROOT

sys.path.insert(0, str(ROOT / "tools"))
import formatpage  # noqa: E402
import manpage  # noqa: E402

BUILD = Path(sys.argv.pop(1)).resolve()
TOOLS = re.search(r'^set\(CPACK_COMPONENTS_ALL "(.*)"\)$',
                  (BUILD / "CPackConfig.cmake").read_text(encoding="utf-8"), re.MULTILINE)[1].split(";")
PATH = os.environ["PATH"] + ":/usr/sbin:/sbin"
# dpkg and chroot want root, if only in a namespace of their own.
AS_ROOT = [] if os.geteuid() == 0 else ["unshare", "--map-root-user"]


def output(*words, **options):
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "PATH": PATH, **options.pop("environment", {})}
    done = subprocess.run(words, env=environment, capture_output=True, text=True, check=False,
                          timeout=PATIENCE, stdin=subprocess.DEVNULL, **options)
    if done.returncode != 0:
        raise AssertionError(f"{words}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def rendered(page, width=2000):
    """A manual page as a terminal shows it. Any warning of the formatter is a failure."""
    done = subprocess.run(["groff", "-t", "-ww", "-man", "-Tutf8", "-P-cbou", f"-rLL={width}n"], input=page,
                          env={**os.environ, "LC_ALL": "C.UTF-8"}, capture_output=True, text=True,
                          check=True, timeout=PATIENCE)
    if done.stderr:
        raise AssertionError(done.stderr)
    return done.stdout.replace("\N{MINUS SIGN}", "-").replace("\N{HYPHEN}", "-")


def plain(words):
    """Words without what a page shows in another way: the colons of headings, first capitals."""
    return {word.rstrip(":.").lower() for word in words}


def words_of_section(document, heading, rows):
    """The words of a section that its page must have, without what Markdown adds."""
    found = set()
    lines = formatpage.section_of(document, heading)
    for line, following in zip(lines, [*lines[1:], ""]):
        first = line.removeprefix("| ").split(" |")[0]
        is_row = line.startswith("|") and not line.startswith("| file")
        # The heads of columns that no row fills are left out.
        if following.startswith("|--") or line.startswith(("- [", "[")) or (rows and is_row and document == formatpage.ITEMS and
                                             not re.search(rows, first)):
            continue
        line = re.sub(r"\[([^]]*)\]\([^)]*\)", "", line)
        found.update(re.findall(r"[A-Za-z_][A-Za-z_0-9]{3,}", line))
    return found - {"countries"}


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mlk")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


class Installed(Folder):
    def setUp(self):
        super().setUp()
        output("cmake", "--install", BUILD, "--prefix", self.folder)

    def files(self):
        return {str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file()}

    def test_everything_is_in_place(self):
        files = self.files()
        self.assertIn("mlkctl", TOOLS)
        for tool in TOOLS:
            self.assertLessEqual({
                f"bin/{tool}", f"share/man/man1/{tool}.1.gz",
                f"share/bash-completion/completions/{tool}", f"share/zsh/vendor-completions/_{tool}",
                f"share/fish/vendor_completions.d/{tool}.fish", f"share/doc/{tool}/README.md",
                f"share/doc/{tool}/CHANGELOG.md"}, files)
        self.assertIn("share/doc/mlkctl/docs/reference.md", files)
        for guide in ("formats", "items", "mlktree"):
            self.assertIn(f"share/doc/mlktree/docs/{guide}.md", files)
        pages = {f"share/man/man5/{name}.5.gz" for name in ["mlktree.toml", *formatpage.PAGES]}
        self.assertEqual({name for name in files if "/man5/" in name}, pages)
        # And nothing else: neither tests nor libraries.
        strange = [name for name in files if not re.match(
            r"(bin|share/(man/man[15]|bash-completion/completions|zsh/vendor-completions|"
            r"fish/vendor_completions.d))/[^/]+$|share/doc/", name)]
        self.assertEqual(strange, [])

    def test_programs_are_those_of_the_build(self):
        for tool in TOOLS:
            for option in ("--help", "--version"):
                self.assertEqual(output(self.folder / "bin" / tool, option), output(BIN / tool, option))

    def test_completions_are_loaded_by_bash(self):
        for tool in TOOLS:
            script = self.folder / "share/bash-completion/completions" / tool
            said = output("bash", "-c", '. "$1" && complete -p "$2"', "bash", script, tool)
            self.assertRegex(said, f"complete .* {tool}\n$")

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_completions_are_found_by_zsh(self):
        script = ("fpath=($1 $fpath); autoload -Uz compinit; compinit -u -D\n"
                  "print -r -- $_comps[$2]; autoload +X $_comps[$2] && functions $_comps[$2]")
        for tool in TOOLS:
            said = output("zsh", "-f", "-c", script, "zsh", self.folder / "share/zsh/vendor-completions", tool)
            name, function = said.split("\n", maxsplit=1)
            self.assertEqual(name, f"_{tool}")
            self.assertIn(tool, function)

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_completions_are_found_by_fish(self):
        for tool in TOOLS:
            said = output("fish", "-c", f'complete -C "{tool} c"', environment={
                "XDG_DATA_DIRS": str(self.folder / "share"), "HOME": str(self.folder),
                "XDG_CONFIG_HOME": str(self.folder / "config"),
                "PATH": f"{self.folder / 'bin'}:{os.environ['PATH']}"})
            commands = {line.split("\t")[0] for line in said.splitlines()}
            self.assertIn("completion", commands)
            self.assertEqual({name for name in commands if not name.startswith("c")}, set())


class ManualPages(Folder):
    def page(self, tool):
        output("cmake", "--install", BUILD, "--prefix", self.folder)
        with gzip.open(self.folder / f"share/man/man1/{tool}.1.gz", "rt", encoding="utf-8") as file:
            return file.read()

    def test_pages_say_all_that_the_help_says(self):
        for tool in TOOLS:
            text = rendered(self.page(tool))
            general = output(BIN / tool, "--help")
            said = plain(text.split())
            commands = re.findall(r"^  (\S+)", general.split("\nCommands:\n")[1].split("\n\n")[0],
                                  re.MULTILINE)
            self.assertGreater(len(commands), 3)
            for words in ([], *([command] for command in commands)):
                help_text = output(BIN / tool, *words, "--help").replace("Usage: ", "")
                self.assertEqual(plain(help_text.split()) - said - {"-"}, set(), (tool, words))
                if words:
                    self.assertIn(f"\n   {tool} {words[0]}\n", text)
            for heading in ("NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "EXIT STATUS"):
                self.assertIn(f"\n{heading}\n", text)
            self.assertRegex(text, rf"^{tool.upper()}\(1\)")

    def test_the_formatter_warns_of_no_page(self):
        output("cmake", "--install", BUILD, "--prefix", self.folder)
        pages = list((self.folder / "share/man").rglob("*.gz"))
        self.assertGreaterEqual(len(pages), len(TOOLS))
        for path in pages:
            with gzip.open(path, "rt", encoding="utf-8") as file:
                self.assertGreater(len(rendered(file.read())), 200, path)

    def test_pages_fit_a_terminal(self):
        output("cmake", "--install", BUILD, "--prefix", self.folder)
        for path in (self.folder / "share/man/man5").glob("*.gz"):
            with gzip.open(path, "rt", encoding="utf-8") as file:
                text = rendered(file.read(), 80)
            # Only examples keep their lines.
            long = [line for line in text.splitlines() if len(line) > 80 and not re.match(r" {11}\S", line)]
            self.assertEqual(long, [], path)
            self.assertNotIn("‐\n", text, path)

    def test_format_pages_say_all_that_the_documents_say(self):
        for name, page in formatpage.PAGES.items():
            text = " ".join(rendered(formatpage.page_of(name, "mlktree 1.0")).split())
            self.assertRegex(text, rf"^{name.upper()}\(5\)")
            for document, heading in page.sections:
                self.assertIn(heading.upper(), text)
                for word in words_of_section(document, heading, page.rows):
                    self.assertIn(word, text, (name, document, heading))

    def test_every_section_of_the_formats_has_a_page(self):
        headings = set(re.findall("^## (.*)$", (ROOT / "docs/formats.md").read_text(encoding="utf-8"), re.MULTILINE))
        used = {heading for page in formatpage.PAGES.values() for _, heading in page.sections}
        self.assertEqual(headings - used, {formatpage.LIMITS})

    def test_the_page_of_the_settings_says_all_that_the_command_says(self):
        output("cmake", "--install", BUILD, "--prefix", self.folder)
        with gzip.open(self.folder / "share/man/man5/mlktree.toml.5.gz", "rt", encoding="utf-8") as file:
            said = plain(rendered(file.read()).split())
        command = re.sub(r"\[\[(\w+)\]\]\n\n  ", "", output(BIN / "mlktree", "settings"))
        self.assertEqual(plain(command.split()) - said - {"-"}, set())

    def test_markdown_becomes_a_page(self):
        writer = formatpage.Writer(formatpage.Page("", [], [], [(formatpage.FORMATS, "Lists")], "^a"))

        def shown(*lines):
            text = rendered(".TH X 5\n" + "\n".join(writer.section(lines)))
            return re.fullmatch(r"X\(5\)[^\n]*\n\n+(.*?)\n\n+[^\n]*X\(5\)\s*", text, re.DOTALL)[1].strip()

        self.assertEqual(shown("a `b\\c`, **`d`.** *e* f*g*h", "and [more](formats.md#lists)"),
                         "a b\\c, d. e f*g*h and more")
        self.assertEqual(shown("see [formats.md](formats.md#lists) and [x](#lists)"),
                         "see LISTS below and LISTS below")
        self.assertEqual(shown(".first", "'second"), ".first 'second")
        self.assertRegex(shown("text", "- one", "  goes on", "- two"), r"^text\s+• one goes on\s+• two$")
        self.assertRegex(shown("```", ".x  `y`", "```"), r"^\.x  `y`$")
        self.assertRegex(shown("| trap | rule |", "|---|---|", "| a \\| b | `r-s` |", "| c | |"),
                         r"^Traps:\s+• a \| b \[r-s\]\s+• c$")
        table = ("| file | key | value |", "|---|---|---|", "| a | `k` | v |", "| b | l | w |", "| a | m | |")
        self.assertRegex(shown(*table), r"^file\s+key\s+value\n\s+a\s+k\s+v\n\s+a\s+m$")
        wide = "x" * 70
        self.assertRegex(shown(table[0], table[1], f"| a | k | {wide} |", "| a | l | v |"),
                         rf"^k\s+file: a\s+value: {wide}\s+l\s+file: a\s+value: v$")
        self.assertRegex(shown("| line | key | value |", "|---|---|---|", f"| `k=v` | k | {wide} |", "| `;` | | |"),
                         rf"^k=v\s+key: k\s+value: {wide}\s+;$")
        with self.assertRaises(LookupError):
            formatpage.section_of(formatpage.FORMATS, "Nothing")

    def test_special_characters_stay(self):
        program = self.folder / "odd"
        lines = ["odd - a tool with 'quotes' and .dots", "", "Usage: odd [-x] \\n", "",
                 ".first of a line, 'quoted' \\fB \\(aq ^ ~ ` \" - -- caf\u00e9", "'and so this", "",
                 "Options:", "  -x, --ex  .what \\e it does",
                 "            'continued", "  .y  dotted", "", "Examples:",
                 "  .source  'a\\b'", "    indented \\*"]
        text = "\n".join(lines)
        program.write_text("#!/bin/sh\ncase $1 in --version) echo odd 1.0;; *) cat <<'END'\n"
                           f"{text}\nEND\nesac\n", encoding="utf-8")
        program.chmod(0o755)
        page = rendered(manpage.page_of(program))
        for line in ("odd - a tool with 'quotes' and .dots", "odd [-x] \\n",
                     ".first of a line, 'quoted' \\fB \\(aq ^ ~ ` \" - -- caf\u00e9 'and so this",
                     "-x, --ex", ".what \\e it does 'continued", ".source  'a\\b'", "  indented \\*"):
            self.assertIn(line, page)


class Package(Folder):
    """Each package, installed by dpkg in a root that holds the files of its dependencies only."""

    def setUp(self):
        super().setUp()
        output("cpack", "-G", "DEB", "-B", self.folder, "--config", BUILD / "CPackConfig.cmake",
               cwd=self.folder)
        self.root = self.folder / "r"

    def package(self, tool):
        (path,) = self.folder.glob(f"{tool}_*.deb")
        return path

    def field(self, tool, name):
        return output("dpkg-deb", "-f", self.package(tool), name).strip()

    def make_root(self, tool):
        """Fills the root with what the package depends on, and tells dpkg about it."""
        needed = closure(names(self.field(tool, "Depends")))
        shutil.rmtree(self.root, ignore_errors=True)
        for folder in ("usr/bin", "usr/lib", "usr/lib64", "run", "set/tvconfigs",
                       "var/lib/dpkg/info", "var/lib/dpkg/updates"):
            (self.root / folder).mkdir(parents=True)
        for folder in ("bin", "lib", "lib64"):
            (self.root / folder).symlink_to(f"usr/{folder}")
        for package in needed:
            for name in output("dpkg-query", "-L", package).splitlines():
                if name.startswith(("/lib", "/usr/lib")) and os.path.isfile(name):
                    copy = self.root / name.lstrip("/")
                    copy.parent.mkdir(parents=True, exist_ok=True)
                    shutil.copy(name, copy, follow_symlinks=False)
        status = "\n".join(output("dpkg-query", "-s", package) for package in needed)
        (self.root / "var/lib/dpkg/status").write_text(status, encoding="utf-8")

    def dpkg(self, *words):
        return output(*AS_ROOT, "dpkg", f"--root={self.root}", "--log=/dev/null", *words)

    def inside(self, *words, **environment):
        return output(*AS_ROOT, "env", "-i", *(f"{name}={value}" for name, value in environment.items()),
                      shutil.which("chroot", path=PATH), self.root, *words)

    def test_fields(self):
        for tool in TOOLS:
            version = output(BIN / tool, "--version").split(",")[0].split()[1]
            self.assertEqual(self.field(tool, "Package"), tool)
            self.assertEqual(self.field(tool, "Version"), version)
            self.assertIn("libc6", names(self.field(tool, "Depends")))
            self.assertGreater(len(self.field(tool, "Description")), 20)

    def test_a_package_holds_what_is_installed(self):
        output("cmake", "--install", BUILD, "--prefix", self.folder / "usr")
        installed = {f"./{path.relative_to(self.folder)}"
                     for path in (self.folder / "usr").rglob("*") if path.is_file()}
        packed = []
        for tool in TOOLS:
            packed += [line.split()[-1] for line in output("dpkg-deb", "-c", self.package(tool)).splitlines()
                       if line.startswith("-")]
        self.assertEqual(sorted(packed), sorted(installed))

    def test_installs_and_runs_in_a_clean_root(self):
        for tool in TOOLS:
            self.make_root(tool)
            self.dpkg("-i", self.package(tool))
            self.assertEqual(self.inside(f"/usr/bin/{tool}", "--help"), output(BIN / tool, "--help"))
            self.dpkg("-r", tool)
            left = [path for path in (self.root / "usr").rglob(f"*{tool}*")]
            self.assertEqual(left, [])

    def test_the_root_is_clean(self):
        # A package that forgot a dependency would not run: a library that is missing is missed.
        self.make_root("mlkctl")
        self.dpkg("-i", self.package("mlkctl"))
        for path in self.root.rglob("libtinyxml2*"):
            path.unlink()
        with self.assertRaisesRegex(AssertionError, "libtinyxml2.*cannot open shared object file"):
            self.inside("/usr/bin/mlkctl", "--help")
        # And dpkg knows it.
        status = self.root / "var/lib/dpkg/status"
        text = status.read_text(encoding="utf-8")
        status.write_text(re.sub(r"(?m)^Package: libtinyxml2.*\n(.+\n)*", "", text), encoding="utf-8")
        with self.assertRaisesRegex(AssertionError, "depends on libtinyxml2"):
            self.dpkg("-i", self.package("mlkctl"))

    def test_an_installed_client_talks_to_a_service(self):
        self.make_root("mlkctl")
        self.dpkg("-i", self.package("mlkctl"))
        shutil.copytree(ROOT / "samples/partitions", self.root / "set", dirs_exist_ok=True)
        service = subprocess.Popen(
            [BIN / "vendor.morlak.mlconfigs@1.0-service"], stderr=subprocess.DEVNULL,
            env={**os.environ, "MLK_ROOT": str(self.root / "set"),
                 "MLK_RUNTIME_DIR": str(self.root / "run/m")})
        self.addCleanup(service.wait)
        self.addCleanup(service.kill)
        there = {"MLK_RUNTIME_DIR": "/run/m", "MLK_ROOT": "/set"}
        self.inside("/usr/bin/mlkctl", "wait", "--timeout", "60", **there)
        self.assertEqual(self.inside("/usr/bin/mlkctl", "call", "IMlkProjectConfigs", "getPanelName", **there),
                         '{"success":true,"value":"OSMR-43U60-B2"}\n')
        self.assertEqual(self.inside("/usr/bin/mlkctl", "prop", "get", "persist.vendor.mlk.forcestr", **there),
                         "0\n")


def names(depends):
    """The installed packages that satisfy a field such as "libc6 (>= 2.34), a | b"."""
    found = []
    for choice in filter(None, re.split(r",\s*", depends)):
        for name in re.findall(r"(?:^|\|)\s*([a-z0-9][a-z0-9+.-]*)", choice):
            known = subprocess.run(["dpkg-query", "-W", "-f=${db:Status-Status}", name],
                                   capture_output=True, text=True, check=False)
            if known.stdout == "installed":
                found.append(name)
                break
    return found


def closure(packages):
    """The packages and what they depend on."""
    found = []
    waiting = list(packages)
    while waiting:
        package = waiting.pop()
        if package not in found:
            found.append(package)
            waiting += names(output("dpkg-query", "-W", "-f=${Depends}", package))
    return sorted(found)


if __name__ == "__main__":
    unittest.main()
