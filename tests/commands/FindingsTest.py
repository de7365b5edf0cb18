#!/usr/bin/env python3
"""./run and mlkctl show end with what mlktree finds in the set."""

import os
import shutil
import unittest

from RunTest import RunCase


# Patient: other tests have the processor, too.
SHOW = ("mlkctl", "show", "--timeout", "100")


class Findings(RunCase):
    """What is wrong with the set stands below what it is."""

    def shown(self, own):
        done = self.run_tree(*SHOW, MLK_ROOT=own)
        self.assertEqual((done.returncode, done.stderr.count("\n")), (0, 1), done)
        return done.stdout

    def test_the_sample_has_none(self):
        self.assertNotIn("mlktree", self.shown(self.tree.copy_of_sample()))

    def test_they_are_counted(self):
        own = self.tree.copy_of_sample()
        (own / "tvconfigs/ssc/ssc_b2.ini").unlink()
        self.assertTrue(self.shown(own).endswith("\n\n1 error: `mlktree check`\n"))
        # As the line's settings have it.
        with open(own / "mlktree.toml", "a", encoding="utf-8") as settings:
            settings.write('[[allow]]\nrule = "missing-file"\nfiles = "tvconfigs/board/*"\nreason = "soon"\n')
        self.assertNotIn("mlktree", self.shown(own))

    def test_settings_that_are_wrong_are_named(self):
        own = self.tree.copy_of_sample()
        (own / "mlktree.toml").write_text("[[rules]]\n", encoding="utf-8")
        done = self.run_tree(*SHOW, MLK_ROOT=own)
        self.assertEqual(done.returncode, 0, done)
        self.assertRegex(done.stderr, r'mlktree: /.*/mlktree\.toml:1:3: there is no table "rules"; did you mean rule')
        self.assertIn("\nPartitions\n", done.stdout)

    def test_without_mlktree_nothing_is_said(self):
        stubs = self.tree.root / "stubs"
        stubs.mkdir()
        for name in ("mlkctl", "android.hidl.allocator@1.0-service", "vendor.morlak.mlconfigs@1.0-service"):
            shutil.copy(f"{os.environ['MLK_BIN_DIR']}/{name}", stubs / name)
        own = self.tree.copy_of_sample()
        (own / "tvconfigs/ssc/ssc_b2.ini").unlink()
        done = self.run_tree(*SHOW, MLK_ROOT=own, MLK_BIN_DIR=stubs)
        self.assertEqual(done.returncode, 0, done)
        self.assertNotIn("mlktree", done.stdout + done.stderr.replace(str(own), ""))


if __name__ == "__main__":
    unittest.main()
