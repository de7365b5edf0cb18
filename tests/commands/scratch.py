"""A scratch copy of the source tree, in which a test runs the tree's own commands."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BIN = Path(os.environ["MLK_BIN_DIR"])
OTHER_USER = 65534
# Generous: other tests have the processor, too.
PATIENCE = 120


class Tree:
    """Links to everything in the tree but build/, and an empty folder for temporary files.

    Close it at the end. All users may read it and write to its folder for temporary files.
    """

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory()
        self.root = Path(self._folder.name) / "tree"
        self.temporary = Path(self._folder.name) / "tmp"
        self.root.mkdir()
        self.temporary.mkdir()
        os.chmod(self._folder.name, 0o755)
        self.temporary.chmod(0o1777)
        for path in ROOT.iterdir():
            if path.name != "build":
                (self.root / path.name).symlink_to(path)

    def close(self):
        self._folder.cleanup()

    def environment(self, **changes):
        """That of the test without the variables that ./run knows; a change to None removes one."""
        known = {"MLK_ROOT", "MLK_RUNTIME_DIR", "ANDROID_LOG_TAGS"}
        values = {name: value for name, value in os.environ.items() if name not in known}
        values.update(MLK_BIN_DIR=str(BIN), TMPDIR=str(self.temporary), LC_ALL="C.UTF-8")
        values.update({name: None if value is None else str(value)
                       for name, value in changes.items()})
        return {name: value for name, value in values.items() if value is not None}

    def run(self, *words, user=None, directory=None, **changes):
        """A command of the tree, to its end. Returns the subprocess.CompletedProcess, with texts."""
        return subprocess.run(as_user(user, words), cwd=directory or self.root, check=False,
                              env=self.environment(**changes), stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=PATIENCE)

    def copy_of_sample(self, name="myset"):
        """A set of its own. Returns its folder."""
        return Path(shutil.copytree(ROOT / "samples/partitions", self.root / name))

    def program(self, name, script):
        """A shell script in the folder stubs/. Returns that folder."""
        path = self.root / "stubs" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(f"#!/bin/sh\n{script}\n", encoding="utf-8")
        path.chmod(0o755)
        return path.parent


def as_user(user, words):
    if user is None or os.geteuid() != 0:
        return list(words)
    return ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups", *words]


def contents(folder):
    """Every path below a folder, with what the file holds or the link names."""
    return {
        str(path.relative_to(folder)): os.readlink(path) if path.is_symlink()
        else path.read_bytes() if path.is_file() else None
        for path in sorted(folder.rglob("*"))
    }
