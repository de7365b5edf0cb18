"""The reader of interface definitions, what is written from them, and the committed files that have to match."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

FOLDER = Path(__file__).resolve().parents[1]
ROOT = FOLDER.parents[2]
sys.path.insert(0, str(FOLDER))

# pylint: disable=wrong-import-position
import cpp  # noqa: E402
import hal  # noqa: E402
import methods  # noqa: E402
import reference  # noqa: E402

HALS = sorted((ROOT / "service/interfaces/mlkconfigs/1.0").glob("*.hal"))
COMMENT = """
     * Which file.
     *
     * Says
     * more.
     *
     * @param port 0 to 3; which port
     * @param version whose
     *     file
     * @return result the file
     * @noanswer the port is another number
     * @item [A] x y
     * @item [B] z
     * @property a.b
     * @file /tvdata/c
"""
METHOD = "getFile(int32_t port, Version version) generates (OptionalString result);"


def definition(comment, method=METHOD):
    return (
        "package a.b@1.0;\n/** What\n * it is. */\n"
        f"interface IMlkOneConfigs {{\n    /**{comment}     */\n    {method}\n}};\n"
    )


def read(text):
    return hal.read([("One.hal", text)])


def one_method(comment=COMMENT, method=METHOD):
    return read(definition(comment, method)).interfaces[0].methods[0]


class Reading(unittest.TestCase):
    def test_interface(self):
        interface = read(definition(COMMENT)).interfaces[0]
        self.assertEqual((interface.name, interface.paragraphs), ("IMlkOneConfigs", ["What it is."]))
        self.assertEqual(len(interface.methods), 1)

    def test_method(self):
        method = one_method()
        self.assertEqual((method.code, method.name, method.result_type), (1, "getFile", "OptionalString"))
        self.assertEqual((method.summary, method.details), ("Which file.", ["Says more."]))
        self.assertEqual((method.result_text, method.no_answer), ("the file", "the port is another number"))
        self.assertEqual(method.items, [("[A]", ["x", "y"]), ("[B]", ["z"])])
        self.assertEqual((method.properties, method.files), (["a.b"], ["/tvdata/c"]))
        port, version = method.arguments
        self.assertEqual((port.type, port.name, port.text), ("int32_t", "port", "which port"))
        self.assertEqual(port.range, hal.Range("0 to 3", 0, 3))
        self.assertEqual((version.type, version.range, version.text), ("Version", None, "whose file"))

    def test_codes_are_positions(self):
        comment = "\n * One.\n * @return result one\n"
        text = definition(comment, f"b() generates (T result);\n/**{comment}*/ a() generates (T result);")
        self.assertEqual([(m.code, m.name) for m in read(text).interfaces[0].methods], [(1, "b"), (2, "a")])

    def test_ranges(self):
        for text, expected in {
            "0 or 1; which": (hal.Range("0 or 1", 0, 1), "which"),
            "-1 to 12; which": (hal.Range("-1 to 12", -1, 12), "which"),
            "1 or more; which; really": (hal.Range("1 or more", 1, None), "which; really"),
            "at most 128 bytes; a name": (hal.Range("at most 128 bytes", None, 128), "a name"),
            "a country; where": (hal.Range("a country", None, None), "where"),
            "whether it is on; or off": (None, "whether it is on; or off"),
        }.items():
            self.assertEqual(hal.range_of(text), expected)
        self.assertTrue(hal.range_of("a country; where")[0].is_country)
        for text in ("0 and 1; which", "0 or 1, which", "-1; which", "at most 3; which", "3"):
            with self.assertRaises(ValueError, msg=text):
                hal.range_of(text)

    def test_types(self):
        package = read(
            "package a.b@1.0; // one\n/* two */\n/** S. */ struct S { /** F. */ vec<string> f; uint8_t[5] g; };\n"
            "/** E. */ enum E : uint32_t { A = -1, /** Last. */ B = 7 };\n"
        )
        struct, enum = package.types
        self.assertEqual((struct.kind, struct.name, struct.text), ("struct", "S", "S."))
        self.assertEqual([(m.type, m.name, m.text) for m in struct.members],
                         [("vec<string>", "f", "F."), ("uint8_t[5]", "g", "")])
        self.assertEqual([(m.name, m.value, m.text) for m in enum.members], [("A", -1, ""), ("B", 7, "Last.")])
        self.assertEqual([m.name for m in package.enumerators("E")], ["A", "B"])
        self.assertEqual(package.enumerators("S") + package.enumerators("int32_t"), [])

    def test_what_departs_from_the_form_is_refused(self):
        for old, new, message in (
            ("Which file.\n     *\n     * Says\n     * more.", "", "there is no summary"),
            ("@param version whose\n     *     file", "", "the @params are not the arguments"),
            ("@param port", "@param prot", "the @params are not the arguments"),
            ("; which port", "", "@param port does not say what it is"),
            ("0 to 3;", "0 till 3;", '"0 till 3" is no range'),
            ("@return result the file", "", "there is no @return"),
            ("@return result the file", "@return file", "@return wants the name of the result, once"),
            ("@item [A]", "@item A", "not understood: @item A x y"),
            ("@item [B] z", "@item [B]", "not understood: @item [B]"),
            ("@property a.b", "@property a b", "not understood: @property a b"),
            ("@file /tvdata/c", "@fail /tvdata/c", "not understood: @fail /tvdata/c"),
            ("@file /tvdata/c", "@file", "@file says nothing"),
        ):
            self.assertIn(old, COMMENT)
            with self.assertRaises(hal.Error, msg=new) as caught:
                one_method(COMMENT.replace(old, new))
            self.assertRegex(str(caught.exception), r"^One\.hal:\d+: getFile: ")
            self.assertTrue(str(caught.exception).endswith(": " + message), caught.exception)

    def test_errors_have_file_and_line(self):
        for text, message in (
            ("package a.b@1.0;\n\n#", "One.hal:3: not understood: #"),
            ("package a.b@1.0;\nunion U {};", "One.hal:2: interface|struct|enum is missing"),
            ("package a.b@1.0;\nenum E : uint32_t {\n A }", "One.hal:3: = is missing"),
            ("package a.b@1.0;\ninterface I {", "One.hal:2: [A-Za-z_]\\w* is missing"),
            (definition(COMMENT, METHOD.replace("result)", "answer)")),
             "One.hal:21: getFile: it has one result, named result"),
        ):
            with self.assertRaises(hal.Error) as caught:
                read(text)
            self.assertEqual(str(caught.exception), message)


class Writing(unittest.TestCase):
    def test_client(self):
        text = cpp.client(hal.read([
            ("types.hal", "package a.b@1.0; /** V. */ enum Version : uint32_t { OLD = 3 };"),
            ("One.hal", definition(COMMENT)),
        ]))
        self.assertIn('{"getFile", method(&I::getFile, "port", "version"), &kIMlkOneConfigs[0]}', text)
        self.assertIn("const Interface& oneInterface()", text)
        self.assertIn('{"port", "int32_t", "0 to 3", 0, 3, "which port", {}}', text)
        self.assertRegex(text, r'\{"version", "Version", "", \{\}, \{\}, "whose file", kEnumerators\d\}')
        self.assertRegex(text, r'Enumerator kEnumerators\d\[\] = \{\{"OLD", 3\}\}')
        self.assertRegex(text, r'\{1, "getFile", "Which file\.",\s+"Says more\.",')

    def test_country_has_names(self):
        comment = COMMENT.replace("0 to 3; which port", "a country; where")
        self.assertIn('method(&I::getFile, countryParameter(), "version")', cpp.client(read(definition(comment))))

    def test_quotes(self):
        self.assertEqual(cpp.literal('a "b" \\ c'), '"a \\"b\\" \\\\ c"')

    def test_tests(self):
        text = cpp.tests(read(definition(COMMENT)))
        self.assertIn('{1, "getFile", callerOf(&I::getFile), anyhowCallerOf(&I::getFile)}', text)

    def test_reference(self):
        text = reference.method_entry(one_method())
        self.assertEqual(text, """\
#### 1 `getFile(port, version)`

Which file.

Says more.

- `port`, `int32_t`: 0 to 3; which port
- `version`, `Version`: whose file
- answers `OptionalString`: the file
- no answer if the port is another number
- item `[A]` `x`, `y`
- item `[B]` `z`
- property `a.b`
- file `/tvdata/c`
""")

    def test_program(self):
        with tempfile.TemporaryDirectory() as folder:
            source, out = Path(folder) / "One.hal", Path(folder) / "out"
            source.write_text(definition(COMMENT), encoding="utf-8")
            self.assertEqual(methods.main(["tests", "-o", str(out), str(source)]), 0)
            self.assertEqual(out.read_text(encoding="utf-8"), cpp.tests(read(definition(COMMENT))))
            source.write_text("#", encoding="utf-8")
            out.unlink()
            with contextlib.redirect_stderr(io.StringIO()) as said:
                self.assertEqual(methods.main(["tests", "-o", str(out), str(source)]), 1)
                self.assertEqual(methods.main(["tests", "-o", str(out), folder + "/none.hal"]), 1)
            self.assertIn(f"{source}:1: not understood: #", said.getvalue())
            self.assertFalse(out.exists())


class Committed(unittest.TestCase):
    """Compares the files in the tree with the definitions."""

    def setUp(self):
        self.package = hal.read([(file.name, file.read_text(encoding="utf-8")) for file in HALS])

    def test_reference(self):
        page = (ROOT / "docs/reference.md").read_text(encoding="utf-8")
        self.assertEqual(page, reference.page(self.package),
                         "docs/reference.md is out of date: cmake --build build/default --target reference")

    def test_codes_and_signatures_never_change(self):
        """Clients that were built earlier send these codes with these arguments."""
        lines = [
            f"{interface.name} {method.code} {method.name}"
            f"({', '.join(argument.type for argument in method.arguments)}) {method.result_type}"
            for interface in self.package.interfaces
            for method in interface.methods
        ]
        committed = (ROOT / "service/tests/method_codes.txt").read_text(encoding="utf-8").splitlines()
        self.assertEqual(len(committed), 132)
        self.assertEqual(sorted(lines), sorted(committed))

    def test_every_type_says_what_it_is(self):
        for each in self.package.types:
            self.assertTrue(each.text, each.name)
            if each.kind == "struct":
                self.assertEqual([member.name for member in each.members if not member.text], [], each.name)
        for interface in self.package.interfaces:
            self.assertTrue(interface.paragraphs, interface.name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
