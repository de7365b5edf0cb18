"""The tables of planted bugs, and how bugs are planted."""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
FOLDER = os.path.dirname(HERE)
TREE = os.path.dirname(os.path.dirname(FOLDER))
sys.path.insert(0, FOLDER)

import planting  # noqa: E402
import programs  # noqa: E402
import results  # noqa: E402
import table  # noqa: E402


def read(text, folder="common"):
    return table.read_table(folder, text, "t.txt")


def planted(source, *rows):
    """The source with bugs that these rows, without their names, plant, numbered from 1 on."""
    text = "== common/F.cpp\n"
    for number, row in enumerate(rows):
        text += f"row-{number}: a bug\n" + "".join(f"    {line}\n" for line in row.split("\n"))
    bugs = read(text)
    for number, bug in enumerate(bugs, 1):
        bug.number = number
    result = planting.plant(source, bugs, "mutant.h")
    head = '#include "mutant.h"\n#line 1\n'
    assert result.startswith(head)
    return result[len(head):].replace("mlk_mutants::acts", "acts")


class TreeTest(unittest.TestCase):
    def setUp(self):
        self.bugs = table.read_tables(os.path.join(FOLDER, "bugs"))

    def test_every_bug_fits_its_place_and_can_be_planted(self):
        by_file = {}
        for bug in self.bugs:
            by_file.setdefault(bug.file, []).append(bug)
        wrong = []
        for file, bugs in by_file.items():
            if not os.path.exists(os.path.join(TREE, file)):
                wrong += [f"{bug.where}: {bug.name}: there is no {file}" for bug in bugs]
                continue
            with open(os.path.join(TREE, file), encoding="utf-8") as stream:
                text = stream.read()
            for bug in bugs:
                try:
                    bug.place(text)
                except table.TableError as error:
                    wrong.append(str(error))
            if not wrong:
                planting.plant(text, bugs, "mutant.h")
        self.assertEqual("\n".join(wrong), "")

    def test_no_two_rows_are_one_bug(self):
        self.assertEqual([], [
            (one.id, other.id) for i, one in enumerate(self.bugs) for other in self.bugs[:i]
            if (one.file, one.before, one.old, one.new, one.after)
            == (other.file, other.before, other.old, other.new, other.after)])

    def test_there_are_enough_and_each_folder_has_some(self):
        self.assertGreaterEqual(len(self.bugs), 150)
        self.assertEqual({bug.folder for bug in self.bugs}, set(programs.PROGRAMS))
        for bug in self.bugs:
            self.assertTrue(bug.file.startswith(bug.folder + "/"), bug.id)


class TableTest(unittest.TestCase):
    def test_a_row(self):
        bug = read("# a remark\n\n== common/F.cpp\n\nless: a \"what\"\n"
                   "    @unseen why not\n    if ([[a < b => a <= b]]) {\n        c();\n")[0]
        self.assertEqual((bug.id, bug.what, bug.unseen), ("common:less", 'a "what"', "why not"))
        self.assertEqual((bug.before, bug.old, bug.new, bug.after),
                         ("if (", "a < b", "a <= b", ") {\nc();"))

    def test_white_space_of_any_kind_fits(self):
        bug = read("== common/F.cpp\nx: x\n    f(a, [[b => c]]);\n    g();\n")[0]
        self.assertEqual(bug.place("  f(a, b);\n\n\tg();"), (7, 8))
        self.assertEqual(bug.place("  f(a,\n b); \\\n g();"), (8, 9))

    def test_braces_around_the_change_may_come_and_go(self):
        bug = read("== common/F.cpp\nx: x\n    if ([[a => b]]) return c; d();\n")[0]
        for text in ("if (a) return c; d();", "if (a) {\n    return c;\n}\nd();"):
            self.assertEqual(bug.place(text), (4, 5))
        bug = read("== common/F.cpp\nx: x\n    [[if (a) b(); => b();]]\n")[0]
        with self.assertRaisesRegex(table.TableError, "fits 0 places"):
            bug.place("if (a) { b(); }")

    def test_a_place_has_to_be_the_only_one(self):
        bug = read("== common/F.cpp\nx: x\n    f([[a => b]]);\n")[0]
        for text in ("f(c);", "f(a); f(a);"):
            with self.assertRaisesRegex(table.TableError, "x: fits [02] places of common/F.cpp"):
                bug.place(text)

    def test_what_is_wrong_is_told_with_its_line(self):
        for text in ("x: x\n", "== common/F.cpp\nNo: x\n", "    code\n",
                     "== common/F.cpp\nx: x\n    f(a);\n", "== common/F.cpp\nx: x\ny: y\n",
                     "== common/F.cpp\nx: x\n    [[a => a]]\n",
                     "== common/F.cpp\nx: x\n    @unseen\n    [[a => b]]\n"):
            with self.assertRaisesRegex(table.TableError, "t.txt:[123]: "):
                read(text)


class PlantingTest(unittest.TestCase):
    def test_an_expression(self):
        self.assertEqual(planted("f(a);", "f([[a => c]]);"), "f((acts(1) ? (c) : (a)));")

    def test_a_part_stands_for_the_expression_it_is_in(self):
        self.assertEqual(planted("if (a(')', x) && b == c) {", "[[&& b == c => ]]"),
                         "if ((acts(1) ? (a(')', x)) : (a(')', x) && b == c))) {")
        self.assertEqual(planted("f(1'000); x = a > '0';", "a [[> => >=]] '0';"),
                         "f(1'000); x = (acts(1) ? (a >= '0') : (a > '0'));")
        self.assertEqual(planted("int x = y < 3;", "y [[< 3 => <= 3]];"),
                         "int x = (acts(1) ? (y <= 3) : (y < 3));")
        self.assertEqual(planted("return p ? s.find(c) : 0;", "s.[[find(c) => rfind(c)]]"),
                         "return p ? (acts(1) ? (s. rfind(c)) : (s.find(c))) : 0;")

    def test_a_statement_and_one_that_is_left_out(self):
        self.assertEqual(planted("f();", "[[f(); => g();]]"), "if (acts(1)) { g(); } else { f(); }")
        self.assertEqual(planted("a(); f();", "[[f(); => ]]"), "a(); if (acts(1)) {  } else { f(); }")

    def test_the_level_of_a_message(self):
        self.assertEqual(planted('ALOGE("%s;", f(a)); g();', '[[ALOGE => ALOGW]]("%s;", f'),
                         'if (acts(1)) { ALOGW("%s;", f(a)); } else { ALOGE("%s;", f(a)); } g();')

    def test_a_lock(self):
        self.assertEqual(planted("const std::lock_guard<std::mutex> lock(m);",
                                 "[[const std::lock_guard<std::mutex> lock(m); => ]]"),
                         "const mlk_mutants::MaybeLock<std::mutex, false> lock(m, !acts(1));")

    def test_a_constant_is_no_constexpr(self):
        self.assertEqual(planted("constexpr int k = 1;", "@constant\nint k = [[1 => 2]];"),
                         "static const int k = (acts(1) ? (2) : (1));")
        self.assertEqual(planted("constexpr const char* k = \"a\";",
                                 "@constant\nk = [[\"a\" => \"b\"]];"),
                         "static const char* k = (acts(1) ? (\"b\") : (\"a\"));")

    def test_two_in_one_place_and_one_within_the_other(self):
        self.assertEqual(planted("f(a);", "f([[a => b]]);", "f([[a => c]]);"),
                         "f((acts(1) ? (b) : ((acts(2) ? (c) : (a)))));")
        self.assertEqual(planted("f(a);", "f([[a => b]]);", "[[f(a); => ]]"),
                         "if (acts(2)) {  } else { f((acts(1) ? (b) : (a))); }")

    def test_places_that_overlap_are_refused(self):
        with self.assertRaisesRegex(table.TableError, "overlap"):
            planted("a(); b(); c();", "[[a(); b(); => ]]", "[[b(); c(); => ]]")


class OutcomeTest(unittest.TestCase):
    def explained(self, status, text):
        outcome = programs.Program("p", {})._explained(status, text, ["S.first"])
        return outcome.failed, outcome.how

    def test_which_test_noticed_it_and_how(self):
        run = "[ RUN      ] S.a\n[       OK ] S.a (0 ms)\n[ RUN      ] S.b/0\n"
        self.assertEqual(self.explained(
            1, run + "[  FAILED  ] S.b/0, where GetParam() = 1 (3 ms)\n"), ("S.b/0", "fails"))
        self.assertEqual(self.explained(-11, run), ("S.b/0", "ends its process"))
        self.assertEqual(self.explained(None, run), ("S.b/0", "hangs"))
        self.assertEqual(self.explained(
            66, run + "WARNING: ThreadSanitizer: data race\n[       OK ] S.b/0 (0 ms)\n"
            "[ RUN      ] S.c\n[       OK ] S.c (0 ms)\n"), ("S.b/0", "races"))
        self.assertEqual(self.explained(-6, ""), ("S.first", "ends its process"))


class ResultsTest(unittest.TestCase):
    ROW = "== common/F.cpp\nrow: a bug\n    f([[a => b]]);\n"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = os.path.join(folder.name, "tree")
        self.file = os.path.join(folder.name, "results")
        subprocess.run(["git", "init", "-q", self.tree], check=True)
        self.write("common/F.cpp", "f(a);")
        self.bug = read(self.ROW)[0]

    def write(self, name, text):
        path = os.path.join(self.tree, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def opened(self):
        return results.Results(self.file, self.tree, [self.bug])

    def known(self, bug=None):
        outcome = self.opened().of(bug or self.bug)
        return outcome and outcome["by"]

    def test_the_last_outcome_of_a_bug_counts(self):
        self.assertIsNone(self.opened().of(self.bug))
        self.opened().add(self.bug, None, 1.0)
        self.assertIsNotNone(self.opened().of(self.bug))
        self.assertIsNone(self.known())
        self.opened().add(self.bug, ["p", "S.a", "fails"], 1.0)
        self.assertEqual(["p", "S.a", "fails"], self.known())

    def test_an_outcome_of_another_row_or_other_sources_does_not_count(self):
        self.opened().add(self.bug, ["p", "S.a", "fails"], 1.0)
        self.assertIsNone(self.known(read(self.ROW.replace("=> b", "=> c"))[0]))
        self.write("regional/G.cpp", "g();")
        self.assertEqual(["p", "S.a", "fails"], self.known())
        self.write("common/tests/FTest.cpp", "TEST(F, a) {}")
        self.assertIsNone(self.known())

    def test_without_a_file_nothing_is_kept(self):
        kept = results.Results(None, self.tree, [self.bug])
        kept.add(self.bug, None, 1.0)
        self.assertIsNone(kept.of(self.bug))


if __name__ == "__main__":
    unittest.main()
