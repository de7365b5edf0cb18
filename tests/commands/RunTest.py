#!/usr/bin/env python3
"""./run: what it refuses, what it copies and writes, where the log is."""

import os
import re
import signal
import subprocess
import unittest

from scratch import OTHER_USER, PATIENCE, ROOT, Tree, contents

PANEL = '{"success":true,"value":"OSMR-43U60-B2"}\n'
GET_PANEL = ("mlkctl", "call", "IMlkProjectConfigs", "getPanelName")
SET_MODEL = ("mlkctl", "call", "IMlkProjectConfigs", "setProjectId", "6")
SET_COUNTRY = ("mlkctl", "call", "IMlkProjectConfigs", "setCountryId", "FRANCE")
SET_PROPERTY = ("mlkctl", "prop", "set", "persist.vendor.mlk.forcestr", "false")
SET_FEATURE = ("mlkctl", "call", "IMlkTvConfigs", "setFlag", "HBBTV", "false")
SET_ALL = ("bash", "-c", " && ".join(" ".join(words) for words in
                                     (SET_MODEL, SET_COUNTRY, SET_PROPERTY, SET_FEATURE)))

# What a start sets.
DTV_SYSTEM = "data/property/persist.vendor.mlk.tv.dtv_system"


def changed(before, after):
    """The paths whose contents() differ."""
    return {path for path in before.keys() | after.keys() if before.get(path) != after.get(path)}


class RunCase(unittest.TestCase):
    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.close)

    def run_tree(self, *words, **options):
        return self.tree.run("./run", *words, **options)

    def expect(self, done, status, out, err):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (status, out, err))

    def expect_no_leftovers(self):
        self.assertEqual(contents(self.tree.temporary), {})


class CommandLine(RunCase):
    """What needs no program neither installs nor builds one."""

    def unbuilt(self, *words, **options):
        """./run without MLK_BIN_DIR, where any build would leave a mark."""
        for name in ("cmake", "apt-get"):
            self.tree.program(name, f'touch "{self.tree.root}/marked"; exit 1')
        stubs = self.tree.program("dpkg-query", "printf installed")
        done = self.run_tree(*words, MLK_BIN_DIR=None, PATH=f"{stubs}:{os.environ['PATH']}",
                             **options)
        return done, (self.tree.root / "marked").exists()

    def test_help_builds_nothing(self):
        for words in (("--help",), ("-h",), ("--in-place", "--help")):
            done, built = self.unbuilt(*words)
            self.assertEqual((done.returncode, done.stderr, built), (0, "", False))
            self.assertIn("./run [OPTION]... COMMAND...", done.stdout)
            self.assertIn("--in-place", done.stdout)

    def test_help_of_the_benchmarks_builds_nothing(self):
        for words in (("--help",), ("-h",), ("--json", "--help")):
            done, built = self.unbuilt("bench", *words)
            self.assertEqual((done.returncode, done.stderr, built), (0, "", False))
            self.assertIn("usage: run bench", done.stdout)

    def test_a_wrong_command_line_of_the_benchmarks_builds_nothing(self):
        for words, said in ((("-x",), "unrecognized arguments: -x"), (("--rounds", "0"), "--rounds"),
                            (("--filter", "("), "'(' is no regular expression"),
                            (("more",), "unrecognized arguments: more")):
            done, built = self.unbuilt("bench", *words)
            self.assertEqual((done.returncode, done.stdout, built), (2, "", False))
            self.assertIn("run bench: error: ", done.stderr)
            self.assertIn(said, done.stderr)
        done, built = self.unbuilt("bench", "--quick")
        self.assertEqual((done.stdout, done.stderr, built),
                         ("", "run: builds the benchmarks; the first time takes minutes\n", True))

    def test_unknown_options_build_nothing(self):
        for option in ("-x", "--inplace", "-"):
            done, built = self.unbuilt(option)
            self.expect(done, 2, "", f"run: unknown option {option}; see ./run --help\n")
            self.assertFalse(built)

    def test_in_place_needs_a_folder(self):
        done, built = self.unbuilt("--in-place", *GET_PANEL)
        self.expect(done, 2, "", "run: --in-place takes its folder from MLK_ROOT, which is not set\n")
        self.assertFalse(built)

    def test_the_first_build_says_how_long_it_takes(self):
        said = "run: builds what it needs; the first time takes about two minutes\n"
        done, built = self.unbuilt(*GET_PANEL)
        self.assertEqual((done.returncode, done.stdout, done.stderr, built), (1, "", said, True))
        client = self.tree.root / "build/default/bin/mlkctl"
        client.parent.mkdir(parents=True)
        client.touch(mode=0o755)
        done, built = self.unbuilt(*GET_PANEL)
        self.assertEqual((done.returncode, done.stdout, done.stderr, built), (1, "", "", True))

    def test_options_end_at_two_dashes(self):
        self.expect(self.run_tree("--", *GET_PANEL), 0, PANEL, "")

    def test_a_command_gets_its_own_options_and_gives_its_status(self):
        done = self.run_tree("bash", "-c", "echo $1; exit 7", "bash", "--log")
        self.expect(done, 7, "--log\n", "")


@unittest.skipUnless(os.geteuid() == 0, "only root can run a command as another user")
class OtherUsers(RunCase):
    """A tree that another user has built, or that another user owns."""

    def build(self):
        stubs = self.tree.program("cmake", "exit 9")
        self.tree.program("dpkg-query", "printf installed")
        return self.run_tree(*GET_PANEL, user=OTHER_USER, MLK_BIN_DIR=None,
                             PATH=f"{stubs}:{os.environ['PATH']}")

    def test_a_build_of_another_user_is_named(self):
        (self.tree.root / "build/default/bin").mkdir(parents=True)
        name = subprocess.run(["id", "-un", str(OTHER_USER)], capture_output=True, text=True,
                              check=True).stdout.strip()
        said = ("run: {} cannot build here: {} belongs to root; build as that user, or in a copy "
                "of the tree without build/\n")
        self.expect(self.build(), 1, "", said.format(name, "build/default"))
        for path in ("build/default", "build/default/bin"):
            os.chown(self.tree.root / path, OTHER_USER, OTHER_USER)
        # Programs may come from root's build although the folders are the user's.
        deps = self.tree.root / "build/default/.ninja_deps"
        deps.touch(mode=0o644)
        self.expect(self.build(), 1, "", said.format(name, "build/default/.ninja_deps"))
        deps.unlink()
        self.assertIn("about two minutes", self.build().stderr)

    def test_the_tests_name_it_before_anything_else(self):
        (self.tree.root / "build/default").mkdir(parents=True)
        stubs = self.tree.program("dpkg-query", "printf installed")
        done = self.tree.run("./test", user=OTHER_USER, PATH=f"{stubs}:{os.environ['PATH']}")
        self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (1, "", 1), done)
        self.assertIn("test: ", done.stderr)
        self.assertIn("cannot build here: build/default belongs to root", done.stderr)

    def test_a_tree_of_another_user_is_named(self):
        done = self.build()
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"cannot build here: {self.tree.root} belongs to root", done.stderr)

    def test_a_built_tree_of_another_user_runs(self):
        # The log cannot be in build/, and is not promised to be.
        done = self.run_tree(*GET_PANEL, user=OTHER_USER)
        self.expect(done, 0, PANEL, "")
        self.assertFalse((self.tree.root / "build").exists())
        self.expect_no_leftovers()


class Refused(RunCase):
    """A folder that is no set ends ./run with one line, before anything is written."""

    def refused(self, given, folder, **options):
        before = contents(self.tree.root)
        for words in ((), GET_PANEL, ("--in-place",), ("mlktree", "check")):
            done = self.run_tree(*words, MLK_ROOT=given, **options)
            self.expect(done, 2, "", f"run: no product line in MLK_ROOT={given}: there is no folder "
                                     f"{folder}/tvconfigs\n")
        self.assertEqual(contents(self.tree.root), before)
        self.expect_no_leftovers()

    def test_no_folder(self):
        self.refused(self.tree.root / "absent", self.tree.root / "absent")

    def test_a_folder_without_tvconfigs(self):
        (self.tree.root / "half/tvdata").mkdir(parents=True)
        self.refused(self.tree.root / "half", self.tree.root / "half")

    def test_a_file_in_the_place_of_tvconfigs(self):
        (self.tree.root / "odd").mkdir()
        (self.tree.root / "odd/tvconfigs").touch()
        self.refused(self.tree.root / "odd", self.tree.root / "odd")

    def test_a_file(self):
        (self.tree.root / "file").touch()
        self.refused(self.tree.root / "file", self.tree.root / "file")

    def test_a_path_relative_to_the_caller(self):
        self.refused("a b/../nothing", self.tree.root / "nothing")


class Copies(RunCase):
    """Looking does not write."""

    def setUp(self):
        super().setUp()
        self.set = self.tree.copy_of_sample("my set")

    def test_a_set_of_ones_own_is_copied(self):
        before = contents(self.set)
        done = self.run_tree(*SET_ALL, MLK_ROOT=self.set)
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(done.stderr, f"run: a copy of {self.set}; changes stay with --in-place only\n")
        self.assertEqual(contents(self.set), before)
        self.expect_no_leftovers()

    def test_the_sample_is_copied(self):
        before = contents(ROOT / "samples/partitions")
        done = self.run_tree(*SET_ALL)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(contents(ROOT / "samples/partitions"), before)

    def test_in_place_writes_what_it_says(self):
        before = contents(self.set)
        done = self.run_tree("--in-place", *SET_ALL, MLK_ROOT=self.set)
        self.assertEqual(done.returncode, 0, done)
        first, *files = done.stderr.splitlines()
        self.assertEqual(first, f"run: the service uses {self.set} in place. When it starts and when "
                                "something is set, it writes")
        said = [line.split()[0] for line in files]
        self.assertEqual(said, ["impdata/project_id.bin", "tvdata/tvsysmap/country_id.bin",
                                "data/property/*", "the", "its"])
        self.assertIn("the TV feature file", files[-2])
        after = contents(self.set)
        self.assertEqual(changed(before, after), {
            "impdata/project_id.bin", "tvdata/tvsysmap/country_id.bin", "tvconfigs/tv/tv_eu.config",
            "data/property/persist.vendor.mlk.forcestr", DTV_SYSTEM,
            "data/property/persist.vendor.mlk.tv.enable_hbbtv"})
        self.assertIn(b"PROJECT_ID=6", after["impdata/project_id.bin"])
        self.expect_no_leftovers()

    def test_in_place_a_start_writes_what_it_says(self):
        before = contents(self.set)
        done = self.run_tree("--in-place", *GET_PANEL, MLK_ROOT=self.set)
        self.assertEqual((done.returncode, done.stdout), (0, PANEL))
        self.assertEqual(changed(before, contents(self.set)), {
            "tvdata/tvsysmap/country_id.bin", "tvconfigs/tv/tv_eu.config", DTV_SYSTEM})

    def test_links_out_of_the_set_are_not_followed_by_writes(self):
        outside = self.tree.root / "outside"
        os.rename(self.set / "tvdata", outside)
        (self.set / "tvdata").symlink_to(outside)
        os.rename(self.set / "impdata/project_id.bin", outside / "id")
        (self.set / "impdata/project_id.bin").symlink_to("../../outside/id")
        (self.set / "tvconfigs/lost").symlink_to("/nowhere/at/all")
        before = contents(outside)
        done = self.run_tree(*SET_ALL, MLK_ROOT=self.set)
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertEqual(contents(outside), before)
        # The copy has what the links led to.
        done = self.run_tree("mlkctl", "show", "--json", MLK_ROOT=self.set)
        self.assertIn('"name":"TRQ43-M2","index":2', done.stdout)
        self.assertIn('"name":"GERMANY"', done.stdout)

    def test_a_write_protected_set(self):
        for path in [self.set, *self.set.rglob("*")]:
            path.chmod(0o555 if path.is_dir() else 0o444)
        self.addCleanup(subprocess.run, ["chmod", "-R", "u+w", self.set], check=True)
        done = self.run_tree(*SET_ALL, MLK_ROOT=self.set, user=OTHER_USER)
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(done.stdout.count('"success":true'), 3)
        done = self.run_tree("bash", "-c", f"{' '.join(SET_MODEL)} >&2; cat $MLK_ROOT/impdata/project_id.bin",
                             MLK_ROOT=self.set, user=OTHER_USER)
        self.assertEqual(done.stdout, "PROJECT_ID=6\n")
        self.expect_no_leftovers()

    def test_a_set_that_cannot_be_read_whole(self):
        hidden = self.set / "tvconfigs/model/TRQ43_M2_EU.ini"
        if os.geteuid() == 0:
            hidden.chmod(0)
        else:
            self.skipTest("the tree of another user is needed")
        done = self.run_tree(*GET_PANEL, MLK_ROOT=self.set, user=OTHER_USER)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        cause, said = done.stderr.splitlines()
        self.assertIn("TRQ43_M2_EU.ini' for reading: Permission denied", cause)
        self.assertEqual(said, f"run: {self.set} could not be copied; with --in-place the service "
                               "uses the folder itself")
        self.expect_no_leftovers()


class Log(RunCase):
    """The log is in a file, not between the answers."""

    def start(self, *options, **changes):
        process = subprocess.Popen(["./run", *options], cwd=self.tree.root,
                                   env=self.tree.environment(**changes),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        lines = []
        for line in process.stdout:
            lines.append(line.rstrip("\n"))
            if line == "Ctrl-C ends it.\n":
                return process, lines
        self.fail(f"{lines}\n{process.stderr.read()}")

    def test_no_log_yet(self):
        self.expect(self.run_tree("--log"), 1, "", "run: no log yet: ./run writes it to build/log\n")

    def test_run_says_where_it_is(self):
        process, lines = self.start()
        said = re.fullmatch(r"Its log is in (/.*/build/log/\d+\.log); \./run --log shows it\.", lines[-2])
        self.assertTrue(said, lines)
        with open(said[1], encoding="utf-8") as log:
            text = log.read()
        self.assertIn("tv_eu.config success!", text)
        # Also while it runs, from another shell.
        self.expect(self.run_tree("--log"), 0, text, "")
        self.assertFalse([line for line in lines if "MlkTvConfigs(" in line])
        os.kill(process.pid, signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 130)
        self.assertEqual(process.stderr.read(), "")
        self.expect_no_leftovers()
        # And after it has ended.
        done = self.run_tree("--log")
        self.assertEqual(done.stdout[:len(text)], text)

    def test_another_shell_reaches_it_as_it_says(self):
        own = self.tree.copy_of_sample("my set (2)")
        process, lines = self.start("--in-place", MLK_ROOT=own)
        commands = lines[-4:-2]
        self.assertRegex(commands[0], r"^  export MLK_ROOT=")
        done = self.tree.run("bash", "-c", "\n".join([*commands, "mlkctl prop get ro.hardware"]))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, PANEL + "skerry\n", ""))
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 130)

    def test_a_command_gets_answers_only(self):
        self.expect(self.run_tree(*GET_PANEL), 0, PANEL, "")
        done = self.run_tree("--log")
        self.assertRegex(done.stdout, r"^E/MlkTvConfigs\( *\d+\): Open .*/tv_eu\.config success!\n")

    def test_the_log_while_a_command_runs(self):
        done = self.run_tree("--log", *GET_PANEL)
        self.assertEqual((done.returncode, done.stdout), (0, PANEL))
        self.assertRegex(done.stderr, r"^E/MlkTvConfigs\( *\d+\): Open .*/tv_eu\.config success!\n$")

    def test_the_filter_holds_for_the_file(self):
        done = self.run_tree(*GET_PANEL, ANDROID_LOG_TAGS="*:S")
        self.expect(done, 0, PANEL, "")
        self.expect(self.run_tree("--log"), 0, "", "")

    def test_logs_of_ended_runs_go(self):
        for _ in range(3):
            self.run_tree(*GET_PANEL)
        names = sorted(path.name for path in (self.tree.root / "build/log").iterdir())
        # The last one and the one before, which was the last one when it began.
        self.assertEqual(len(names), 3, names)
        self.assertEqual(names[-1], "last")

    def test_a_service_that_ends_shows_its_log(self):
        stubs = self.tree.program("vendor.morlak.mlconfigs@1.0-service", "echo E/Told >&2; exit 3")
        for name in ("mlkctl", "android.hidl.allocator@1.0-service"):
            (stubs / name).symlink_to(f"{os.environ['MLK_BIN_DIR']}/{name}")
        done = self.run_tree(*GET_PANEL, MLK_BIN_DIR=stubs)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn("E/Told\nrun: the service does not answer\n", done.stderr)
        self.expect_no_leftovers()


class WithoutService(RunCase):
    """mlktree works on the partitions themselves: no service, no copy."""

    def test_mlktree(self):
        stubs = self.tree.program("mlktree", 'echo "$@ in $MLK_ROOT at $PWD"; exit 1')
        for name in ("vendor.morlak.mlconfigs@1.0-service", "android.hidl.allocator@1.0-service"):
            self.tree.program(name, f'touch "{self.tree.root}/marked"')
        sample = self.tree.root / "samples/partitions"
        done = self.run_tree("mlktree", "check", "--all", MLK_BIN_DIR=stubs)
        self.expect(done, 1, f"check --all in {sample} at {self.tree.root}\n", "")
        own = self.tree.copy_of_sample()
        done = self.tree.run("../run", "mlktree", "check", MLK_ROOT=".", MLK_BIN_DIR=stubs,
                             directory=own)
        self.expect(done, 1, f"check in {own} at {own}\n", "")
        self.assertFalse((self.tree.root / "marked").exists())
        self.assertFalse((self.tree.root / "build").exists())


if __name__ == "__main__":
    unittest.main()
