#!/usr/bin/env python3
"""Every block of commands in the documents says what it is, and names only what exists."""

import re
import unittest

import examples
from commandlines import (BUILD, DOCUMENTS, blocks, check_options, needs_device, simple_commands, text_of,
                          words_of)
from examples import ANY, Example


class Marks(unittest.TestCase):
    """Every block of commands says what it is, and is that."""

    def test_every_block_of_commands_is_marked(self):
        for block in blocks():
            if block.kind not in examples.KINDS:
                self.assertFalse(block.looks_like_commands(),
                                 f"{block.where} has commands: mark it as one of {sorted(examples.KINDS)}")

    def test_sessions_begin_with_a_command(self):
        for block in blocks():
            if block.kind.startswith("console"):
                self.assertTrue(block.lines[0].startswith("$ "), block.where)

    def test_what_is_marked_for_a_television_needs_one(self):
        for block in blocks():
            if block.kind == "console device":
                for example in examples.session(block.lines):
                    self.assertTrue(any(map(needs_device, simple_commands(example.command))) or
                                    example.command.startswith(("mlkctl ", "mlktree ")),
                                    f"{block.where}: {example.command}")
                self.assertTrue(any(needs_device(words) for example in examples.session(block.lines)
                                    for words in simple_commands(example.command)), block.where)

    def test_what_is_marked_as_a_build_is_one(self):
        for block in blocks():
            if block.kind == "console build":
                for example in examples.session(block.lines):
                    for words in simple_commands(example.command):
                        self.assertTrue({words[0], " ".join(words[:2])} & BUILD, f"{block.where}: {words}")
                        check_options(self, words, block.where)

    def test_usage_names_what_there_is(self):
        for block in blocks():
            if block.kind == "usage":
                for line in block.lines:
                    check_options(self, words_of(re.split(r"  +", line.strip())[0]), f"{block.where}: {line}")

    def test_commands_in_sentences_name_what_there_is(self):
        for document in DOCUMENTS:
            for span in examples.spans(text_of(document)):
                if re.match(r"(\./run|\./test|mlkctl|mlktree)( |$)", span):
                    for words in simple_commands(span):
                        check_options(self, words, f"{document}: {span}")


class Rules(unittest.TestCase):
    """The convention itself."""

    def test_output_is_compared(self):
        for expected, printed, fits in (
                (["a"], ["a"], True), (["a"], ["b"], False), (["a"], [], False), ([], [], True),
                ([], ["a"], False), (["a"], ["a", "b"], False), (["a", "..."], ["a", "b", "c"], True),
                (["...", "c"], ["a", "b", "c"], True), (["...", "c"], ["a", "b"], False),
                (["..."], [], True), (["a ... c"], ["a b c"], True), (["a ... c"], ["a b d"], False),
                (["a...", "b"], ["a", "b"], True), (["a.c"], ["abc"], False),
                (["a    b  "], [" a b"], True), (["(a|b)*"], ["(a|b)*"], True),
                (["a", "", "b"], ["", "a", "b"], True)):
            self.assertEqual(examples.matches(expected, printed), fits, (expected, printed))

    def test_sessions_are_taken_apart(self):
        found = examples.session(["$ a \\", "    b", "$ c", "1", "", "2", "", "$ d", "^C"])
        self.assertEqual([(example.command, example.output) for example in found],
                         [("a b", None), ("c", ["1", "", "2"]), ("d", ["^C"])])
        self.assertEqual([example.is_endless for example in found], [False, False, True])
        with self.assertRaises(ValueError):
            examples.session(["output"])

    def test_blocks_are_found(self):
        text = "x\n```console device\n$ a\n```\n\n1. y\n\n   ```\n   ./run\n   ```\n```text\nno command\n```\n"
        found = list(examples.blocks("f", text))
        self.assertEqual([(block.where, block.kind, block.lines) for block in found],
                         [("f:2", "console device", ["$ a"]), ("f:8", "", ["./run"]),
                          ("f:11", "text", ["no command"])])
        self.assertEqual([block.looks_like_commands() for block in found], [True, True, False])
        self.assertEqual(list(examples.spans("a `b \\| c`\n```\n`no`\n```\n`d`")), ["b | c", "d"])

    def test_help_is_taken_apart(self):
        text = "Commands:\n  a  x\n     y\n  b  z\n\nExamples:\n  a 1\n  b | c\n\nMore:\n  d\n"
        self.assertEqual(examples.of_help(text), ["a 1", "b | c"])
        self.assertEqual(examples.commands_of(text), ["a", "b"])
        self.assertEqual(examples.of_help("Example:\n  one\n"), ["one"])

    def test_records_are_read_as_they_are_written(self):
        sessions = examples.Sessions({"a --help": [Example("b", ["1", ANY]), Example("c", [])],
                                      "d.md": [Example("e", ["2"])]})
        self.assertEqual(examples.read_sessions(examples.write_sessions(sessions, "# head\n")), sessions)

    def test_wrong_options_are_noticed(self):
        for line in ("./run --nothing", "./test --preset x --nothing", "mlkctl dance",
                     "mlkctl list --nothing", "mlkctl call IMlkTvConfigs getNothing", "./run bench --nothing",
                     "./run mlkctl dance", "cmake --build build/nothing"):
            with self.assertRaises(AssertionError, msg=line):
                check_options(self, words_of(line), line)
        for line in ("./run --in-place mlkctl list --json", "./test -- -R x --nothing", "./run COMMAND...",
                     "mlkctl call IMlkTvConfigs getFlag HBBTV", "cmake --build build/default"):
            check_options(self, words_of(line), line)

    def test_commands_are_taken_apart(self):
        self.assertEqual(simple_commands("A=1 b 'c d' | e -f && g; h"), [["b", "c d"], ["e", "-f"], ["g"], ["h"]])


if __name__ == "__main__":
    unittest.main()
