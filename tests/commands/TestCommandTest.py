#!/usr/bin/env python3
"""./test: where the tests make their files, whose status it gives, and what it refuses."""

import os
import unittest
from pathlib import Path

from scratch import Tree


class TestCommandCase(unittest.TestCase):
    """./test without a build: ctest only tells its folder for temporary files, and makes one there."""

    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.close)
        for name, script in (("dpkg-query", "printf installed"), ("cmake", "exit 0"),
                             ("ctest", 'echo "${TMPDIR-unset}"\n'
                                       '[ -z "${TMPDIR-}" ] || stat -c %a "$TMPDIR"\n'
                                       '[ -z "${TMPDIR-}" ] || mkdir -p "$TMPDIR/left/behind"\n'
                                       "exit 5")):
            self.stubs = self.tree.program(name, script)

    def run_tests(self, mounts, **changes):
        """Runs ./test with /dev/shm mounted like that. Returns the lines of ctest."""
        self.tree.program("findmnt", f"echo '{mounts}'" if mounts else "exit 1")
        done = self.tree.run("./test", "--preset", "release",
                             **{"PATH": f"{self.stubs}:{os.environ['PATH']}", **changes})
        self.assertEqual(done.returncode, 5, done)
        return done.stdout.splitlines()

    @unittest.skipUnless(os.access("/dev/shm", os.W_OK), "needs a folder in memory")
    def test_files_are_in_memory_and_removed_afterwards(self):
        folder, mode = self.run_tests("tmpfs 1073741824 rw,nosuid", TMPDIR=None)
        self.assertEqual((Path(folder).parent, mode), (Path("/dev/shm"), "1777"))
        self.assertFalse(Path(folder).exists())

    def test_files_are_in_the_folder_that_the_user_names(self):
        self.assertEqual(self.run_tests("tmpfs 1073741824 rw,nosuid")[0], str(self.tree.temporary))
        self.assertTrue((self.tree.temporary / "left/behind").exists())

    def test_files_are_on_the_disk_if_memory_does_not_serve(self):
        for mounts in ("tmpfs 1073741823 rw", "tmpfs 1073741824 rw,noexec,relatime",
                       "ext4 1073741824 rw", ""):
            self.assertEqual(self.run_tests(mounts, TMPDIR=None), ["unset"], mounts)


class WrongOptionsCase(unittest.TestCase):
    """A wrong option is refused before ./test looks for packages, which it would install."""

    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.close)
        self.stubs = self.tree.program("dpkg-query", 'touch "$TMPDIR/asked"; printf installed')

    def refusal(self, *words):
        done = self.tree.run("./test", *words, PATH=f"{self.stubs}:{os.environ['PATH']}")
        self.assertEqual((done.returncode, done.stdout), (2, ""), words)
        self.assertFalse((self.tree.temporary / "asked").exists(), words)
        return done.stderr

    def test_numbers_of_seconds(self):
        for option in ("--fuzz", "--soak"):
            for value in ([], [""], ["0"], ["1.5"], ["60s"], ["--", "1"]):
                self.assertEqual(self.refusal(option, *value),
                                 f"test: {option} takes a number of seconds\n", value)

    def test_presets_and_unknown_options(self):
        self.assertTrue(self.refusal("--preset").startswith("test: no preset '':"))
        self.assertTrue(self.refusal("--preset", "fast").startswith("test: no preset 'fast':"))
        self.assertTrue(self.refusal("--fast").startswith("test: unknown argument --fast;"))


if __name__ == "__main__":
    unittest.main()
