#!/usr/bin/env python3
"""./run with an MLK_BIN_DIR that lacks what it needs."""

import shutil
import unittest

from scratch import Tree

GET_PANEL = ("mlkctl", "call", "IMlkProjectConfigs", "getPanelName")


class BinDir(unittest.TestCase):
    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.close)

    def expect(self, done, status, out, err):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (status, out, err))

    def test_a_folder_of_programs_that_is_none_is_named(self):
        absent = self.tree.root / "absent"
        own = self.tree.copy_of_sample()
        for given in (absent, "absent", self.tree.root / "README.md"):
            for words in (GET_PANEL, ("mlktree", "check")):
                self.expect(self.tree.run("./run", *words, MLK_BIN_DIR=given), 2, "",
                            f"run: MLK_BIN_DIR={given}: there is no such folder\n")
        # A relative path is relative to the folder of the caller.
        done = self.tree.run("../run", *GET_PANEL, MLK_BIN_DIR=".", directory=own)
        self.expect(done, 2, "", "run: MLK_BIN_DIR=.: there is no program "
                                 f"{own}/vendor.morlak.mlconfigs@1.0-service\n")

    def test_each_program_that_it_needs_is_looked_for(self):
        programs = ("vendor.morlak.mlconfigs@1.0-service", "android.hidl.allocator@1.0-service", "mlkctl")
        for lacking in programs:
            with self.subTest(lacking):
                shutil.rmtree(self.tree.root / "stubs", ignore_errors=True)
                for name in programs:
                    stubs = self.tree.program(name, "exit 0")
                (stubs / lacking).chmod(0o644)
                self.expect(self.tree.run("./run", *GET_PANEL, MLK_BIN_DIR=stubs), 2, "",
                            f"run: MLK_BIN_DIR={stubs}: there is no program {stubs}/{lacking}\n")
        # mlktree reads the partitions itself, and needs none of the others.
        self.expect(self.tree.run("./run", "mlktree", "check", MLK_BIN_DIR=stubs), 2, "",
                    f"run: MLK_BIN_DIR={stubs}: there is no program {stubs}/mlktree\n")


if __name__ == "__main__":
    unittest.main()
