#!/usr/bin/env python3
"""Runs the examples of the documents and of the tools' help, and compares what they print.

    ExamplesTest.py --record    runs them and writes what they print to examples.txt, where that has
                                nothing that fits; look at the difference afterwards
"""

import contextlib
import functools
import os
import re
import signal
import subprocess
import sys
import threading
import unittest

import examples
from commandlines import DOCUMENTS, TOOLS, blocks, help_of, pages, text_of
from examples import ANY, INTERRUPT, STATUS, Example
from scratch import BIN, PATIENCE, ROOT, Tree

RECORDED = ROOT / "tests/commands/examples.txt"
HEAD = """# What the examples of help, and those of documents that show no output, print on the sample.
# ExamplesTest.py --record writes it; examples.py says what "..." and "^C" mean.
"""
RECORD = "--record" in sys.argv
# Seconds after which a command is taken to be one that runs until it is interrupted.
RECORDS_ENDLESS_AFTER = 20
# Words of a sentence's command that stand for others.
OPEN = {"INTERFACE", "METHOD", "PATH", "ARGUMENT...", "..."}


def sessions_of(document, kind):
    return [example for block in blocks() if block.where.startswith(f"{document}:") and block.kind == kind
            for example in examples.session(block.lines)]


def calls_in(document):
    """The calls in the sentences of a document, each once, without those that leave a word open."""
    calls = [span for span in examples.spans(text_of(document)) if span.startswith("mlkctl call ")]
    return [Example(call) for call in dict.fromkeys(calls) if not OPEN & set(call.split())]


class Running:
    """The examples of one place, one after the other on a scratch tree."""

    def __init__(self, tree):
        self.tree = tree
        self.home = tree.root.parent / "home"
        self.home.mkdir()

    def environment(self):
        return self.tree.environment(HOME=self.home, COLUMNS="100", NO_COLOR=None, TERM="dumb",
                                     PATH=f"{BIN}:{os.environ['PATH']}")

    def run(self, example):
        """The lines that it prints, the exit status among them if that is not 0."""
        command = ["bash", "-c", example.command]
        if "./run" not in example.command:
            command = ["./run", *command]
        process = subprocess.Popen(command, cwd=self.tree.root, env=self.environment(), text=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, errors="replace", start_new_session=True)
        try:
            if example.is_endless:
                return [*self.interrupted(process, example.output[:-1]), INTERRUPT]
            try:
                lines = process.communicate(timeout=RECORDS_ENDLESS_AFTER if RECORD else PATIENCE)[0]
            except subprocess.TimeoutExpired:
                if not RECORD:
                    raise
                return [*self.without_names(interrupt(process)), INTERRUPT]
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            process.stdout.close()
        status = [STATUS.format(process.returncode)] if process.returncode else []
        return self.without_names(lines) + status

    def without_names(self, text):
        """The lines of a text, with "..." for the folders that have another name in each run. A long
        path may be wrapped after each slash."""
        for folder in (f"{re.escape(str(self.tree.temporary))}/mlkconfigs\\.\\w+/set",
                       re.escape(str(self.tree.root))):
            text = re.sub(folder.replace("/", r"/\s*") + r"(?:(/)\s*|\b)",
                          lambda match: ANY + (match[1] or ""), text)
        return text.splitlines()

    def interrupted(self, process, expected):
        """Interrupts the command when it has printed what is expected, as a terminal does."""
        text = ""
        limit = threading.Timer(PATIENCE, os.killpg, (process.pid, signal.SIGKILL))
        limit.start()
        for line in process.stdout if expected else ():
            text += line
            if examples.matches(expected, self.without_names(text)):
                break
        limit.cancel()
        interrupt(process)
        return self.without_names(text)


def interrupt(process):
    """Interrupts the process group until the process ends; a shell that starts a command may miss one
    interrupt. Returns the rest of the output."""
    for _ in range(PATIENCE):
        os.killpg(process.pid, signal.SIGINT)
        with contextlib.suppress(subprocess.TimeoutExpired):
            return process.communicate(timeout=2)[0]
    raise TimeoutError(f"{process.args} goes on after {PATIENCE} interrupts")


@functools.cache
def recorded():
    return examples.read_sessions(RECORDED.read_text(encoding="utf-8") if RECORDED.exists() else "")


def places():
    """Every place that has examples, with them."""
    found = {document: sessions_of(document, "console") + calls_in(document) for document in DOCUMENTS}
    for words, text in pages():
        found[" ".join([*words, "--help"])] = [Example(command) for command in examples.of_help(text)]
    return {place: of_place for place, of_place in found.items() if of_place}


class Runs(unittest.TestCase):
    """What the examples print."""

    def check(self, place, of_place, to_record=None):
        tree = Tree()
        self.addCleanup(tree.close)
        running = Running(tree)
        for example in of_place:
            said = example if example.output is not None else recorded().find(place, example.command)
            self.assertNotRegex(example.command, r">\s*/(?!dev/null)", "it writes outside of its folder")
            printed = running.run(Example(example.command, said.output if said else None))
            fits = said is not None and examples.matches(said.output, printed)
            if to_record is not None and example.output is None:
                to_record.append(Example(example.command, said.output if fits else examples.shortened(printed)))
            elif not fits:
                expected = "\n".join(said.output) if said else f"nothing in {RECORDED.name}"
                self.fail(f"{place}: $ {example.command}\nprinted\n" +
                          "\n".join(examples.shortened(printed)) + f"\nexpected\n{expected}")

    def test_endless_commands_are_interrupted(self):
        tree = Tree()
        self.addCleanup(tree.close)
        running = Running(tree)
        endless = "echo a; echo b; exec sleep 1000"
        self.assertEqual(running.run(Example(endless, ["a", "b", INTERRUPT])), ["a", "b", INTERRUPT])
        self.assertEqual(running.run(Example(endless, [INTERRUPT])), [INTERRUPT])
        self.assertEqual(running.run(Example("echo a; exit 3")), ["a", STATUS.format(3)])
        self.assertEqual(running.run(Example("echo a", ["b", INTERRUPT])), ["a", INTERRUPT])

    def test_names_of_folders_are_left_out(self):
        tree = Tree()
        self.addCleanup(tree.close)
        path = f"{tree.temporary}/mlkconfigs.aB3"
        lines = Running(tree).without_names(f"a {path}/set/tvdata b\nc {path}/set\n{path}/\n   set/\n   d\n"
                                            f"{tree.root}/\n   myset;\n{tree.root}\n{path}/settle\n")
        self.assertEqual(lines, ["a .../tvdata b", "c ...", ".../d", ".../myset;", "...", f"{path}/settle"])

    def test_there_are_examples(self):
        found = places()
        for place in ("README.md", "samples/README.md", "samples/regional.md", "mlkctl --help",
                      "mlkctl call --help", "mlkctl prop --help"):
            self.assertIn(place, found)
        for tool in TOOLS:
            for command in examples.commands_of(help_of(tool)):
                self.assertIn(f"{tool} {command} --help", found)

    def test_every_example_of_a_call_has_an_answer(self):
        for place, of_place in recorded().places.items():
            for example in of_place:
                if " call " in example.command:
                    self.assertTrue(example.output, f"{place}: {example.command}")

    def test_nothing_is_recorded_that_has_gone(self):
        if RECORD:
            self.skipTest("that is what --record drops")
        found = places()
        for place, of_place in recorded().places.items():
            commands = [example.command for example in found.get(place, []) if example.output is None]
            self.assertEqual([example.command for example in of_place], commands, place)


def add_places():
    """A test for each place, so that they run and fail one by one."""
    for place, of_place in places().items():
        name = "test_" + re.sub(r"\W+", "_", place).strip("_")
        setattr(Runs, name, functools.partialmethod(Runs.check, place, of_place))


def record():
    sessions = examples.Sessions()
    for place, of_place in places().items():
        of_record = []
        case = Runs("check")
        try:
            case.check(place, of_place, of_record)
        except AssertionError as failure:
            # What a document shows is corrected in the document.
            print(failure, file=sys.stderr)
        case.doCleanups()
        if of_record:
            sessions.places[place] = of_record
    RECORDED.write_text(examples.write_sessions(sessions, HEAD), encoding="utf-8")


if __name__ == "__main__":
    if RECORD:
        record()
    else:
        add_places()
        unittest.main()
