#!/usr/bin/env python3
"""The recipes of docs/mlktree.md: the hook, the workflow and the settings of editors do what the guide says."""

import json
import os
import re
import shutil
import subprocess
import unittest

import examples
from commandlines import check_options, text_of, words_of
from scratch import BIN, PATIENCE, Tree

GUIDE = "docs/mlktree.md"
PLACE = "tvconfigs/model/TRQ43_M2_EU.ini"


def block(language, word=""):
    """The text of the only block of that language in the guide that has the word."""
    (found,) = [block for block in examples.blocks(GUIDE, text_of(GUIDE))
                if block.kind == language and word in "".join(block.lines)]
    return "\n".join(found.lines) + "\n"


class Recipes(unittest.TestCase):
    def setUp(self):
        self.tree = Tree()
        self.addCleanup(self.tree.close)
        self.line = self.tree.copy_of_sample("repository/line")
        self.repository = self.line.parent

    def run_here(self, *words, directory=None):
        environment = self.tree.environment(
            PATH=f"{BIN}:{os.environ['PATH']}", HOME=self.tree.temporary, GIT_CONFIG_NOSYSTEM="1",
            GIT_AUTHOR_NAME="a", GIT_AUTHOR_EMAIL="a@b", GIT_COMMITTER_NAME="a", GIT_COMMITTER_EMAIL="a@b")
        return subprocess.run(words, cwd=directory or self.repository, env=environment, text=True, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=PATIENCE)

    def plant(self, old="overscan_uhd.ini", new="none.ini"):
        path = self.line / PLACE
        text = path.read_text(encoding="utf-8")
        self.assertIn(old, text)
        path.write_text(text.replace(old, new), encoding="utf-8")

    def check(self):
        done = self.run_here("mlktree", "check", "--color", "never", directory=self.line)
        (found,) = [line for line in done.stdout.splitlines() if "[missing-file]" in line]
        place = re.match(rf"{re.escape(PLACE)}:(\d+):(\d+): error: ", found)
        return found, place[1], place[2]

    @unittest.skipUnless(shutil.which("git"), "git is not installed")
    def test_the_hook_refuses_a_commit_with_a_mistake(self):
        def git(*words):
            done = self.run_here("git", *words)
            self.assertEqual(done.returncode, 0, done)

        def commits():
            return self.run_here("git", "rev-list", "--all", "--count").stdout.strip()

        git("init", "-q")
        hook = self.repository / ".git/hooks/pre-commit"
        hook.parent.mkdir(exist_ok=True)
        hook.write_text(block("sh"), encoding="utf-8")
        hook.chmod(0o755)
        git("add", "-A")
        git("commit", "-q", "-m", "A sound line")
        self.assertEqual(commits(), "1")
        self.plant()
        git("add", "-A")
        # What lies in the folder does not count, only what is to be committed.
        self.plant("none.ini", "overscan_uhd.ini")
        done = self.run_here("git", "commit", "-q", "-m", "A mistake")
        self.assertEqual((done.returncode, commits()), (1, "1"), done)
        self.assertIn("there is no file /tvconfigs/overscan/none.ini", done.stdout + done.stderr)
        self.plant()
        git("checkout-index", "-f", "-a")
        self.plant("none.ini", "overscan_uhd.ini")
        git("commit", "-q", "-a", "-m", "Mended", "--allow-empty")
        self.assertEqual(commits(), "2")
        self.assertEqual(list(self.tree.temporary.glob("tmp.*")), [])

    def test_the_steps_of_the_workflow_run(self):
        text = block("yaml")
        commands = [command for command in re.findall(r"run: (.*)", text) if command.startswith("mlktree ")]
        self.assertEqual(len(commands), 2)
        for command in commands:
            check_options(self, words_of(command), command)
            self.assertEqual(self.run_here("bash", "-c", command).returncode, 0, command)
        self.plant()
        sarif, annotations = (self.run_here("bash", "-c", command) for command in commands)
        self.assertEqual((sarif.returncode, annotations.returncode), (1, 1))
        written = re.search("sarif_file: (.*)", text)[1]
        with open(self.repository / written, encoding="utf-8") as file:
            self.assertEqual(json.load(file)["version"], "2.1.0")
        # Files are named from the top of the repository.
        self.assertIn(f"::error file=line/{PLACE},line=", annotations.stdout)

    def test_the_problem_matcher_matches(self):
        (task,) = json.loads(block("json", "problemMatcher"))["tasks"]
        check_options(self, words_of(task["command"]), task["command"])
        self.plant()
        found, line, column = self.check()
        pattern = task["problemMatcher"]["pattern"]
        match = re.match(pattern["regexp"], found)
        self.assertEqual([match[pattern[name]] for name in ("file", "line", "column", "severity", "code")],
                         [PLACE, line, column, "error", "missing-file"])
        self.assertEqual(match[pattern["message"]], "there is no file /tvconfigs/overscan/none.ini")
        # A finding on a whole file has no line; source lines and the summary are no problems.
        whole = re.match(pattern["regexp"], "a/b.ini: note: no line names this file [unused-file]")
        self.assertEqual([whole[1], whole[2], whole[3], whole[4]], ["a/b.ini", None, None, "note"])
        for other in (f"    PQ: = error: {found}", "    ^", "1 error in 97 files, 12 sets",
                      "a.ini:3:1: note: replaced: \"x\""):
            self.assertIsNone(re.match(pattern["regexp"], other), other)

    @unittest.skipUnless(shutil.which("vim"), "vim is not installed")
    def test_vim_finds_the_place(self):
        self.plant()
        _, line, column = self.check()
        settings = self.tree.temporary / "settings.vim"
        result = self.tree.temporary / "result"
        settings.write_text(block("vim"), encoding="utf-8")
        self.run_here("vim", "-es", "-u", "NONE", "-N", "-c", f"source {settings}", "-c", "silent make",
                      "-c", "let all = filter(getqflist(), 'v:val.valid')",
                      "-c", "let lines = map(all, 'bufname(v:val.bufnr).\":\".v:val.lnum.\":\".v:val.col.\" \".v:val.type')",
                      "-c", f"call writefile(lines, '{result}')", "-c", "qa!", directory=self.line)
        self.assertIn(f"{PLACE}:{line}:{column} e", result.read_text(encoding="utf-8").splitlines())


if __name__ == "__main__":
    unittest.main()
