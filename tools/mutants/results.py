"""What a run of planted bugs came to, kept in a file so that a run can be made in parts."""

import hashlib
import json
import os
import subprocess
import time


def listed_files(tree, folder="."):
    """The files of a folder of the tree that git has or would have."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z", folder],
                            cwd=tree, check=True, capture_output=True).stdout.decode().split("\0")
    return sorted(file for file in listed if file and os.path.isfile(os.path.join(tree, file)))


class Results:
    """The outcomes in a file, one a line; the last one of a bug counts. Without a path it is empty.

    An outcome counts as long as the bug's row and all files of its folder stay as they were.
    """

    def __init__(self, path, tree, bugs):
        self._path = path
        self._known = {}
        if path and os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                self._known = {line["bug"]: line for line in map(json.loads, file)}
        # Read now: the files may change while the bugs are tried.
        self._folders = {folder: self._digest(tree, folder)
                         for folder in {bug.folder for bug in bugs}} if path else {}

    def of(self, bug):
        """The outcome of a bug that still counts, or None; its "by" tells what noticed the bug."""
        known = self._known.get(bug.id)
        return known if known and known["stamp"] == self._stamp(bug) else None

    def add(self, bug, by, seconds):
        """Adds an outcome to the file. `by` is program, test and how, None for not noticed."""
        if not self._path:
            return
        line = {"bug": bug.id, "by": by, "seconds": round(seconds, 1), "stamp": self._stamp(bug),
                "when": time.strftime("%Y-%m-%d %H:%M:%S")}
        with open(self._path, "a", encoding="utf-8") as file:
            file.write(json.dumps(line) + "\n")

    @staticmethod
    def _digest(tree, folder):
        digest = hashlib.sha256()
        for file in listed_files(tree, folder):
            with open(os.path.join(tree, file), "rb") as stream:
                digest.update(file.encode() + b"\0" + hashlib.sha256(stream.read()).digest())
        return digest.hexdigest()

    def _stamp(self, bug):
        row = repr((self._folders[bug.folder], bug.file, bug.before, bug.old, bug.new, bug.after,
                    bug.threads))
        return hashlib.sha256(row.encode()).hexdigest()[:16]
