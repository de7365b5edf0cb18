"""JSON of mlktree snapshot and mlktree diff: their schemas in docs/ hold, for sound and hostile trees."""

import copy
import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import jsonschema

ROOT = Path(os.environ["MLK_SOURCE_DIR"])
BASE = Path(__file__).resolve().parent / "rules" / "base"
MLKTREE = Path(os.environ["MLK_BIN_DIR"]) / "mlktree"


def schema_of(name):
    schema = json.loads((ROOT / "docs" / f"mlktree-{name}.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft7Validator.check_schema(schema)
    return jsonschema.Draft7Validator(schema)


SNAPSHOT = schema_of("snapshot")
DIFF = schema_of("diff")


def printed(*words):
    done = subprocess.run([MLKTREE, *words], capture_output=True, check=False)
    assert done.returncode in (0, 1), done.stderr
    return json.loads(done.stdout.decode("utf-8"))


class Schemas(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.tree = Path(self.folder.name) / "line"
        shutil.copytree(BASE, self.tree)

    def test_snapshots(self):
        sample = ROOT / "samples/partitions"
        for words in ((sample,), (sample, "--model", "6"), (sample, "--country", "GERMANY"), (self.tree,),
                      (sample, "--model", "6", "--board", "none", "--country", "DEFAULT")):
            with self.subTest(words=words):
                snapshot = printed("snapshot", *words)
                SNAPSHOT.validate(snapshot)
                self.assertTrue(snapshot["sets"])

    def test_customers(self):
        folder = self.tree / "tvconfigs"
        (folder / "customer_b.ini").write_text("CUSTOMER_ID=2\nSYS_INI=/tvconfigs/system/b.ini\n", encoding="utf-8")
        (folder / "system/b.ini").write_text("Model_2=/tvconfigs/model/b.ini\n", encoding="utf-8")
        (folder / "model/b.ini").write_text("[COUNTRY]\nCOUNTRY_PATH=/tvconfigs/b.txt\n", encoding="utf-8")
        (folder / "b.txt").write_text("ITALY\n", encoding="utf-8")
        snapshot = printed("snapshot", self.tree, "--customer", "customer.ini", "--customer", "customer_b.ini")
        SNAPSHOT.validate(snapshot)
        self.assertIn("ITALY", snapshot["countries"])
        self.assertEqual(snapshot["customers"][1]["countries"], ["ITALY"])
        self.assertNotIn("ITALY", snapshot["customers"][0]["countries"])

    def test_hostile_trees(self):
        model = self.tree / "tvconfigs/model/first.ini"
        model.write_bytes(model.read_bytes() + b"[\xff$ref]\n$ref = #/shared/items/0\n\xed\xa0\x80 = \x01\n[]\n= 1\n")
        shutil.rmtree(self.tree / "tvconfigs/tvsysmap")
        snapshot = printed("snapshot", self.tree)
        SNAPSHOT.validate(snapshot)
        difference = printed("diff", BASE, self.tree, "--format", "json")
        DIFF.validate(difference)
        self.assertFalse(difference["same"])

    def test_differences(self):
        self.assertEqual(printed("diff", BASE, self.tree, "--format", "json")["changes"], [])
        seen = set()
        for rule in sorted(BASE.parent.iterdir()):
            if not (rule / "bad").is_dir():
                continue
            tree = Path(self.folder.name) / rule.name
            shutil.copytree(BASE, tree)
            shutil.copytree(rule / "bad", tree, symlinks=True, dirs_exist_ok=True)
            difference = printed("diff", BASE, tree, "--format", "json")
            DIFF.validate(difference)
            self.assertEqual(difference["same"], not difference["changes"])
            seen |= {change["kind"] for change in difference["changes"]}
            SNAPSHOT.validate(printed("snapshot", tree))
            shutil.rmtree(tree)
        self.assertLessEqual({"item", "feature", "delay", "country", "plan", "customer", "model"}, seen)

    def test_the_schemas_refuse_what_is_wrong(self):
        good = printed("snapshot", self.tree)
        for change in (
            lambda all: all.update(version=2),
            lambda all: all.pop("sets"),
            lambda all: all["sets"][0].pop("plans"),
            lambda all: all["sets"][0].update(model="1"),
            lambda all: all["sets"][0].update(other=1),
            lambda all: all["shared"].update(other=[]),
            lambda all: all["shared"]["items"][0].update({"[A]": {"b": 1}}),
            lambda all: all["shared"]["items"][0].update({"A": {"b": "1"}}),
        ):
            wrong = copy.deepcopy(good)
            change(wrong)
            self.assertFalse(SNAPSHOT.is_valid(wrong))
        side = {"value": "1", "file": None, "line": None}
        right = {"version": 1, "a": "x", "b": "y", "same": False,
                 "changes": [{"kind": "item", "name": "n", "a": None, "b": side, "sets": ["all"]}]}
        DIFF.validate(right)
        for change in (
            lambda one: one.update(kind="items"),
            lambda one: one.update(b=None),
            lambda one: one["b"].update(value=1),
            lambda one: one.pop("sets"),
            lambda one: one.update(sets=["everything"]),
        ):
            wrong = copy.deepcopy(right)
            change(wrong["changes"][0])
            self.assertFalse(DIFF.is_valid(wrong))


if __name__ == "__main__":
    unittest.main()
