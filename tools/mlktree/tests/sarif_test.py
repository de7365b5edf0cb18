"""SARIF of mlktree: a validator takes it, for sound, broken and hostile trees."""

import copy
import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import jsonschema

HERE = Path(__file__).resolve().parent
SCHEMA = json.loads((HERE / "sarif.json").read_text(encoding="utf-8"))
MLKTREE = Path(os.environ["MLK_BIN_DIR"]) / "mlktree"


def sarif_of(tree, *options):
    """What mlktree prints for a tree. Other bytes than UTF-8 are an error, as is half a surrogate pair."""
    done = subprocess.run([MLKTREE, "check", tree, "--format", "sarif", *options],
                          capture_output=True, check=False)
    assert done.returncode in (0, 1), done.stderr
    log = json.loads(done.stdout.decode("utf-8"))
    json.dumps(log, ensure_ascii=False).encode("utf-8")
    return log


class Sarif(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.tree = Path(self.folder.name) / "a line"
        shutil.copytree(HERE / "rules" / "base", self.tree)

    def model(self, change):
        path = self.tree / "tvconfigs/model/first.ini"
        path.write_bytes(change(path.read_bytes()))

    def check(self, log):
        jsonschema.Draft7Validator.check_schema(SCHEMA)
        jsonschema.validate(log, SCHEMA, format_checker=jsonschema.FormatChecker())
        run = log["runs"][0]
        rules = [rule["id"] for rule in run["tool"]["driver"]["rules"]]
        self.assertEqual(len(rules), len(set(rules)))
        prints = []
        for result in run["results"]:
            self.assertEqual(rules[result["ruleIndex"]], result["ruleId"])
            prints.append(result["partialFingerprints"]["mlktree/v1"])
            for location in result["locations"] + result.get("relatedLocations", []):
                base = location["physicalLocation"]["artifactLocation"].get("uriBaseId")
                self.assertIn(base, run["originalUriBaseIds"])
        self.assertEqual(len(prints), len(set(prints)))
        return run

    def test_sound_tree(self):
        run = self.check(sarif_of(self.tree))
        self.assertTrue(run["originalUriBaseIds"]["TREE"]["uri"].endswith("/a%20line/"))

    def test_every_broken_tree_of_the_rules(self):
        for rule in sorted((HERE / "rules").iterdir()):
            if not (rule / "bad").is_dir():
                continue
            with self.subTest(rule=rule.name):
                tree = Path(self.folder.name) / rule.name
                shutil.copytree(HERE / "rules" / "base", tree)
                shutil.copytree(rule / "bad", tree, symlinks=True, dirs_exist_ok=True)
                removed = tree / "removed"
                for path in removed.read_text().split() if removed.exists() else ():
                    if (tree / path).is_dir():
                        shutil.rmtree(tree / path)
                    else:
                        (tree / path).unlink()
                run = self.check(sarif_of(tree))
                self.assertIn(rule.name, {result["ruleId"] for result in run["results"]})

    def test_allowed_findings_are_suppressed(self):
        self.model(lambda text: b"# mlktree: allow missing-file it comes later\n"
                   b"[AUDIO]\nAUDIO_CONFIG_PATH = /tvconfigs/x\n# mlktree: allow missing-file it \xff comes later\n"
                   b"AUDIO_CONFIG_IC_PATH = /tvconfigs/y\n")
        (self.tree / "mlktree.toml").write_text('[[rule]]\nrule = "unused-allow"\nseverity = "off"\nreason = "why not"\n')
        run = self.check(sarif_of(self.tree))
        kinds = {suppression["kind"]: suppression["justification"]
                 for result in run["results"] for suppression in result["suppressions"]}
        self.assertEqual(kinds["inSource"], "it \\udcff comes later")
        self.assertEqual(kinds["external"], "why not")

    def test_baseline(self):
        self.model(lambda text: text + b"[AUDIO]\nAUDIO_CONFIG_IC_PATH = /tvconfigs/x\n")
        known = Path(self.folder.name) / "known.json"
        sarif_of(self.tree, "--write-baseline", known)
        states = {result["baselineState"] for result in self.check(sarif_of(self.tree, "--baseline", known))["results"]}
        self.assertEqual(states, {"unchanged"})

    def test_bytes_that_are_no_text(self):
        self.model(lambda text: text + b"[AUDIO]\nAUDIO_CONFIG_IC_PATH = /tvconfigs/\xff\xed\xa0\x80\x01\xc3\xa4\n")
        (self.tree / os.fsdecode(b"tvconfigs/model/\xfe.ini")).write_bytes(b"[A]\n")
        self.check(sarif_of(self.tree))

    def test_the_validator_refuses_what_is_wrong(self):
        self.model(lambda text: text + b"[AUDIO]\nAUDIO_CONFIG_IC_PATH = /tvconfigs/x\n")
        good = sarif_of(self.tree)
        self.assertTrue(good["runs"][0]["results"])

        def result(log):
            return log["runs"][0]["results"][0]

        def physical(log):
            return result(log)["locations"][0]["physicalLocation"]

        for change in (
            lambda log: log.update(version="2.0.0"),
            lambda log: log["runs"][0].pop("tool"),
            lambda log: result(log).pop("message"),
            lambda log: result(log).update(level="fatal"),
            lambda log: result(log).update(rule="x"),
            lambda log: physical(log)["region"].update(startLine=0),
            lambda log: physical(log)["artifactLocation"].update(uri="a b"),
            lambda log: physical(log)["artifactLocation"].update(uri="/a"),
        ):
            log = copy.deepcopy(good)
            change(log)
            with self.assertRaises(jsonschema.ValidationError):
                jsonschema.validate(log, SCHEMA)


if __name__ == "__main__":
    unittest.main()
