"""The labels of files in an image, which has the platform's rows and the service's."""

import re
import unittest

import tree
from contexts import Row, image_rows, label, rows
from writers import PLACES, WRITERS, WRITING

SERVICE = "/vendor/bin/hw/vendor.morlak.mlconfigs@1.0-service"
MOUNTS = ("", "/mnt/vendor")


class Order(unittest.TestCase):
    def test_rows_stand_as_the_image_builder_sorts_them(self):
        ordered = [
            "/(vendor|system/vendor)(/.*)?",  # no more than "/" before a meta character
            "/(vendor|system/vendor)/bin/hw/a",
            "/mnt(/.*)?",
            "/mnt/vendor(/.*)?",
            r"/mnt/vendor/a\.b",  # no meta character: an escaped one is itself
            "/mnt/vendor/abcd",
        ]
        found = sorted(reversed(ordered), key=lambda each: Row(each, "u:object_r:x:s0").order())
        self.assertEqual(found, ordered)

    def test_row_for_one_type_of_file_stands_after_that_for_all(self):
        both = [Row("/a(/.*)?", "-d", "u:object_r:folders:s0"), Row("/a(/.*)?", "u:object_r:all:s0")]
        self.assertEqual([row.kind for row in sorted(both, key=Row.order)], ["all", "folders"])

    def test_platforms_rows_take_part(self):
        self.assertIn("mnt_vendor_file", {row.kind for row in image_rows()})
        self.assertEqual(label("/mnt/vendor/other"), "mnt_vendor_file")
        self.assertEqual(label("/mnt/vendor"), "mnt_vendor_file")

    def test_row_that_begins_with_a_choice_loses_to_the_platforms(self):
        choice = [["(/mnt/vendor)?/tvconfigs(/.*)?", "u:object_r:mlkconfigs_tvconfigs_file:s0"]]
        self.assertEqual(label("/tvconfigs/a", choice), "mlkconfigs_tvconfigs_file")
        self.assertEqual(label("/mnt/vendor/tvconfigs/a", choice), "mnt_vendor_file")


class Files(unittest.TestCase):
    def test_binary(self):
        self.assertEqual(label(SERVICE), "mlkconfigs_exec")

    def test_sources_that_write_are_known(self):
        writers = {source for source in tree.product_sources() if WRITING.search(tree.code(source))}
        self.assertEqual(writers, set(WRITERS))

    def test_files_that_are_written_have_types_of_their_own(self):
        for files in WRITERS.values():
            for path, (kind, _) in files.items():
                for mount in MOUNTS:
                    self.assertEqual(label(mount + path), kind, mount + path)

    def test_every_path_of_the_code_is_known(self):
        named = {text for text in tree.all_literals() if re.fullmatch(r"/[\w.]+/?", text)}
        self.assertEqual(named, set(PLACES))

    def test_every_path_has_a_label(self):
        for path in PLACES.values():
            partition = path.split("/")[1]
            for mount in MOUNTS:
                self.assertRegex(label(mount + path), r"^mlkconfigs_\w+_file$", path)
                self.assertEqual(label(f"{mount}/{partition}"), f"mlkconfigs_{partition}_file")
                self.assertEqual(label(f"{mount}/{partition}/other"), f"mlkconfigs_{partition}_file")

    def test_both_places_have_the_same_labels(self):
        here, there = (
            {(pattern.removeprefix(mount), context) for pattern, context in rows("file_contexts")
             if re.match(mount + "/(tv|imp)", pattern)}
            for mount in MOUNTS
        )
        self.assertGreater(len(here), 5)
        self.assertEqual(here, there)

    def test_rows_are_in_use(self):
        paths = set(PLACES.values()) | {path for files in WRITERS.values() for path in files}
        paths = {SERVICE} | {mount + path for path in paths for mount in MOUNTS}
        for pattern, _ in rows("file_contexts"):
            self.assertTrue(any(re.fullmatch(pattern, path) for path in paths), pattern)

    def test_paths_beside_them_are_not_ours(self):
        for path in ("/tvconfigs2", "/data/tvdata", "/vendor/tvconfigs/tv.config", "/system/bin/hw" + SERVICE,
                     "/mnt/tvconfigs/a", "/mnt/vendor/other/tvconfigs"):
            self.assertNotRegex(label(path) or "", "^mlkconfigs_", path)
        for path in ("/tvconfigs/tv/old/tv.config", "/tvconfigs/tvxconfig", "/tvconfigs/tv.config.bak"):
            for mount in MOUNTS:
                self.assertEqual(label(mount + path), "mlkconfigs_tvconfigs_file", path)


if __name__ == "__main__":
    tree.main()
