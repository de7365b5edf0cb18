"""The SELinux policy: it compiles, says exactly what the code does, and allows nothing beyond."""

import re
import tempfile
import unittest
from pathlib import Path

import tree

PLATFORM = tree.ROOT / "tests/device/platform"
POLICY = tree.ROOT / "sepolicy"
SERVICE = "/vendor/bin/hw/vendor.morlak.mlconfigs@1.0-service"

# The platform labels these, and lets every domain read them.
PLATFORM_PROPERTIES = {"ro.hardware"}

# Sources that change files, with the files and what they do to them. Every other source only reads.
READ, REWRITE, MAKE = {"open", "read"}, {"open", "read", "write"}, {"open", "read", "write", "create", "setattr"}
WRITERS = {
    # Overwrites the TV feature files and the two below; makes these two, from a ".new".
    "common/SaveFile.cpp": {
        "/tvconfigs/tv.config": ("mlkconfigs_features_file", REWRITE),
        "/tvconfigs/tv/tv_eu.config": ("mlkconfigs_features_file", REWRITE),
    },
    "projectconfigs/ProjectID.cpp": {
        "/impdata/project_id.bin": ("mlkconfigs_project_id_file", MAKE | {"unlink", "rename"}),
        "/impdata/project_id.bin.new": ("mlkconfigs_project_id_file", MAKE | {"unlink", "rename"}),
    },
    "regional/TvSysMapCfgHolderCountryId.cpp": {
        "/tvdata/tvsysmap/country_id.bin": ("mlkconfigs_country_file", MAKE | {"unlink", "rename"}),
        "/tvdata/tvsysmap/country_id.bin.new": ("mlkconfigs_country_file", MAKE | {"unlink", "rename"}),
    },
}
WRITING = re.compile(
    r"\b(?:O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|O_APPEND|ofstream|fstream|WriteStringToFile)\b"
    r"|(?<!std::)\b(?:fopen|freopen|creat|mkdir|mkdirat|mkstemp|rename|renameat|unlink|unlinkat|remove|rmdir"
    r"|symlink|link|chmod|fchmod|chown|fchown|truncate|utimes|mknod|mount|setxattr|system|popen|exec[lv]\w*|fork)\("
)
# What names a file in the product, and where on a set that is.
PLACES = {
    "/tvconfigs": "/tvconfigs",
    "/tvdata": "/tvdata",
    "/impdata": "/impdata",
    "/customer.ini": "/tvconfigs/customer.ini",
    "/tv.config": "/tvconfigs/tv.config",
    "/audio/": "/tvconfigs/audio/audio_skerry.ini",
    "/freqtables": "/tvconfigs/freqtables",
    "/dtv/": "/tvconfigs/freqtables/dtv/freqtable_eu",
    "/atv/": "/tvconfigs/freqtables/atv/freqtable_atv_bg",
    "/country_freq_map.xml": "/tvconfigs/freqtables/country_freq_map.xml",
    "/tvsysmap": "/tvdata/tvsysmap",
    "/country_id.bin": "/tvdata/tvsysmap/country_id.bin",
    "/project_id.bin": "/impdata/project_id.bin",
    "/board_id.bin": "/impdata/board_id.bin",
}


def rows(name):
    """The rows of a contexts file, split into words."""
    lines = (line.split("#")[0].split() for line in (POLICY / name).read_text(encoding="utf-8").splitlines())
    return [words for words in lines if words]


def type_of(context):
    user, role, kind, level = context.split(":")
    assert (user, role, level) == ("u", "object_r", "s0"), context
    return kind


def label(path):
    """The type of a file by file_contexts, where the last row that fits counts; None without one."""
    fitting = [type_of(context) for pattern, context in rows("file_contexts") if re.fullmatch(pattern, path)]
    return fitting[-1] if fitting else None


def expanded(extra=""):
    """The whole policy, macros expanded, with more rules at its end."""
    types = sorted(POLICY.glob("*.te"))
    with tempfile.NamedTemporaryFile("w", suffix=".te") as more:
        more.write(extra)
        more.flush()
        status, text = tree.run(
            "m4", PLATFORM / "macros.m4", PLATFORM / "head.conf", POLICY / "attributes", PLATFORM / "platform.te",
            *types, PLATFORM / "limits.te", more.name, PLATFORM / "tail.conf",
        )
    assert status == 0, text
    return text


def compiled(text):
    """What the compiler says to a policy: its status and its words."""
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / "policy.conf"
        source.write_text(text, encoding="utf-8")
        return tree.run("checkpolicy", "-M", "-c", "30", "-o", Path(folder) / "policy", source)


class Compiles(unittest.TestCase):
    def test_policy_is_sound(self):
        status, said = compiled(expanded())
        self.assertEqual((status, said), (0, ""))

    def test_broken_policy_is_noticed(self):
        for rule, complaint in (
            ("allow mlkconfigs no_such_type:file read;", "unknown type no_such_type"),
            ("allow mlkconfigs mlkconfigs_tvdata_file:file swim;", "permission swim is not defined"),
            ("allow mlkconfigs mlkconfigs_tvdata_file:file read", "syntax error"),
        ):
            status, said = compiled(expanded(rule))
            self.assertNotEqual(status, 0)
            self.assertIn(complaint, said)

    def test_macro_that_the_platform_lacks_is_noticed(self):
        status, said = compiled(expanded("no_such_macro(mlkconfigs)"))
        self.assertNotEqual(status, 0, said)

    def test_rule_beyond_the_limits_is_noticed(self):
        for rule in (
            "allow mlkconfigs mlkconfigs_tvconfigs_file:file write;",
            "allow mlkconfigs mlkconfigs_tvconfigs_file:dir add_name;",
            "allow mlkconfigs mlkconfigs_features_file:file create;",
            "allow mlkconfigs mlkconfigs_impdata_file:file { open write };",
            "allow mlkconfigs mlkconfigs_tvdata_file:file unlink;",
            "allow mlkconfigs mlkconfigs_switch_prop:property_service set;",
            "allow mlkconfigs system_data_file:file read;",
            "allow mlkconfigs vendor_file:file execute_no_trans;",
            "allow livetv mlkconfigs_impdata_file:file read;",
            "allow livetv mlkconfigs_hwservice:hwservice_manager add;",
            "allow livetv mlkconfigs_feature_prop:property_service set;",
            "allow untrusted_app mlkconfigs_hwservice:hwservice_manager find;",
            "allow untrusted_app protected_hwservice:hwservice_manager find;",  # ours is the only one
        ):
            with self.subTest(rule=rule):
                status, said = compiled(expanded(rule))
                self.assertNotEqual(status, 0)
                self.assertIn("neverallow", said)

    def test_contexts_are_sound(self):
        files = ("file_contexts", "hwservice_contexts", "property_contexts")
        contexts = sorted({row[1] for name in files for row in rows(name)})
        # The compiler checks the contexts of a file system's labels as it does all others.
        labels = "".join(f"genfscon test /{i} {context}\n" for i, context in enumerate(contexts))
        self.assertEqual(compiled(expanded() + labels), (0, ""))
        status, said = compiled(expanded() + labels + "genfscon test /x u:object_r:no_such_type:s0\n")
        self.assertNotEqual(status, 0, said)


class Allows(unittest.TestCase):
    """A rule that forbids what is needed has to be violated: then the policy allows it."""

    def needed(self):
        init, client = "init", "mlkconfigs_client"
        yield from (
            (init, "mlkconfigs_exec", "file", {"execute"}),
            (init, "mlkconfigs", "process", {"transition"}),
            *((init, label(folder), "dir", {"mounton"}) for folder in ("/tvconfigs", "/tvdata", "/impdata")),
            ("mlkconfigs", "mlkconfigs_exec", "file", {"entrypoint"}),
            ("mlkconfigs", "hwservicemanager", "binder", {"call"}),
            ("mlkconfigs", "mlkconfigs_hwservice", "hwservice_manager", {"add"}),
            ("mlkconfigs", "hidl_base_hwservice", "hwservice_manager", {"add"}),
            ("mlkconfigs", "hidl_allocator_hwservice", "hwservice_manager", {"find"}),
            ("mlkconfigs", "hidl_memory_hwservice", "hwservice_manager", {"find"}),
            ("mlkconfigs", "hal_allocator_default", "binder", {"call"}),
            ("mlkconfigs", "hal_allocator_default", "fd", {"use"}),
            ("mlkconfigs", "hwservicemanager_prop", "file", {"read"}),
            ("mlkconfigs", "livetv", "fd", {"use"}),
            ("mlkconfigs", "livetv", "fifo_file", {"getattr", "write"}),
            ("mlkconfigs", "mlkconfigs", "fifo_file", {"read", "write"}),
            ("livetv", "mlkconfigs_hwservice", "hwservice_manager", {"find"}),
            ("livetv", "mlkconfigs", "binder", {"call"}),
            ("mlkconfigs", "mnt_vendor_file", "dir", {"search"}),
            ("mlkconfigs", "mlkconfigs_impdata_file", "dir", {"write", "add_name"}),
            ("mlkconfigs", "mlkconfigs_tvdata_file", "dir", {"write", "add_name"}),
            ("mlkconfigs", "mlkconfigs_country_file", "dir",
             {"open", "read", "write", "add_name", "remove_name", "create", "search"}),
        )
        for place in set(PLACES.values()) | {"/tvdata/channels/preset_eu.db", "/impdata/hdcp/hdcp_1x.bin"}:
            kind = "dir" if place in {"/tvconfigs", "/tvdata", "/impdata"} else "file"
            more = {"search"} if kind == "dir" else {"getattr"}
            yield ("mlkconfigs", label(place), kind, READ | more)
        for files in WRITERS.values():
            for path, (_, permissions) in files.items():
                yield ("mlkconfigs", label(path), "file", permissions)
        for name in tree.properties() - PLATFORM_PROPERTIES:
            yield ("mlkconfigs", property_types()[name], "file", {"read"})
            yield ("vendor_init", property_types()[name], "property_service", {"set"})
        for name in tree.written_properties():
            yield ("mlkconfigs", property_types()[name], "property_service", {"set"})
        yield ("mlkconfigs", "bootloader_prop", "file", {"read"})  # ro.hardware

    def test_what_is_needed(self):
        rules = sorted(
            {(source, target, kind, permission)
             for source, target, kind, permissions in self.needed()
             for permission in permissions}
        )
        for source, target, kind, permission in rules:
            with self.subTest(rule=f"{source} {target}:{kind} {permission}"):
                status, said = compiled(expanded(f"neverallow {source} {target}:{kind} {permission};"))
                self.assertNotEqual(status, 0)
                self.assertIn("neverallow", said)

    def test_new_files_get_their_types(self):
        text = expanded()
        for rule in (
            'type_transition mlkconfigs mlkconfigs_impdata_file:file mlkconfigs_project_id_file "project_id.bin";',
            'type_transition mlkconfigs mlkconfigs_impdata_file:file mlkconfigs_project_id_file "project_id.bin.new";',
            'type_transition mlkconfigs mlkconfigs_tvdata_file:dir mlkconfigs_country_file "tvsysmap";',
            "type_transition init mlkconfigs_exec:process mlkconfigs;",
        ):
            self.assertIn(rule, text)


def property_types():
    return {row[0]: type_of(row[1]) for row in rows("property_contexts")}


class Properties(unittest.TestCase):
    def test_calls_name_properties_by_tables_or_literals(self):
        """Else the list of them, which is taken from the literals, would have holes."""
        arguments = {
            argument
            for source in tree.product_sources()
            for argument in re.findall(r"\bproperty_(?:get|set)\w*\(\s*([^,)]+)", tree.code(source))
        }
        others = {argument for argument in arguments if not argument.startswith('"')}
        self.assertEqual(others, {"key", "row.property", "kRows[item].property"})

    def test_every_one_has_a_row_and_every_row_is_used(self):
        self.assertGreater(len(tree.properties()), 40)
        names = [row[0] for row in rows("property_contexts")]
        self.assertEqual(len(names), len(set(names)))
        self.assertEqual(set(names), tree.properties() - PLATFORM_PROPERTIES)

    def test_type_says_whether_it_is_written(self):
        written = tree.written_properties()
        self.assertGreater(len(written), 20)
        for name, kind in property_types().items():
            expected = "mlkconfigs_feature_prop" if name in written else "mlkconfigs_switch_prop"
            self.assertEqual(kind, expected, name)

    def test_values_are_of_the_kind_that_the_code_reads(self):
        kinds = {"persist.vendor.mlk.configs.debug": "int", "persist.vendor.mlk.tvsysmap.debug": "int"}
        for key, text in re.findall(r'ITEM\(\w+, (\w+), "([^"]+)"\)', tree.code("frameworkconfigs/FrameworkItems.h")):
            kinds[text] = "bool" if key == "FLAG" else "int"
        features = tree.code("tvconfigs/TvConfigItems.h")
        for key, text in re.findall(r'\b(SYSTEM|FLAG)\([^"]*?"([^"]+)"', features):
            kinds[text] = "bool" if key == "FLAG" else "int"
        self.assertEqual({row[0]: row[2:] for row in rows("property_contexts")},
                         {name: ["exact", kind] for name, kind in kinds.items()})


class Files(unittest.TestCase):
    def test_binary(self):
        self.assertEqual(label(SERVICE), "mlkconfigs_exec")

    def test_sources_that_write_are_known(self):
        writers = {source for source in tree.product_sources() if WRITING.search(tree.code(source))}
        self.assertEqual(writers, set(WRITERS))

    def test_files_that_are_written_have_types_of_their_own(self):
        for files in WRITERS.values():
            for path, (kind, _) in files.items():
                self.assertEqual(label(path), kind, path)
                self.assertEqual(label("/mnt/vendor" + path), kind, path)

    def test_every_path_of_the_code_is_known(self):
        named = {text for text in tree.all_literals() if re.fullmatch(r"/[\w.]+/?", text)}
        self.assertEqual(named, set(PLACES))

    def test_every_path_has_a_label(self):
        for path in PLACES.values():
            partition = path.split("/")[1]
            self.assertIsNotNone(label(path), path)
            self.assertEqual(label(f"/{partition}/other"), f"mlkconfigs_{partition}_file")

    def test_rows_are_in_use(self):
        paths = {SERVICE} | set(PLACES.values()) | {path for files in WRITERS.values() for path in files}
        for pattern, _ in rows("file_contexts"):
            self.assertTrue(any(re.fullmatch(pattern, path) for path in paths), pattern)

    def test_paths_beside_them_are_not_ours(self):
        for path in ("/tvconfigs2", "/data/tvdata", "/vendor/tvconfigs/tv.config", "/system/bin/hw/" + SERVICE):
            self.assertIsNone(label(path), path)
        for path in ("/tvconfigs/tv/old/tv.config", "/tvconfigs/tvxconfig", "/tvconfigs/tv.config.bak"):
            self.assertEqual(label(path), "mlkconfigs_tvconfigs_file", path)


class HwServices(unittest.TestCase):
    def test_every_interface_has_a_row(self):
        text = tree.code("service/Services.cpp")
        names = set(re.findall(r'registerOrAbort\(\w+, "(\w+)"\)', text))
        self.assertEqual(
            sorted((row[0], type_of(row[1])) for row in rows("hwservice_contexts")),
            sorted((f"vendor.morlak.mlkconfigs::{name}", "mlkconfigs_hwservice") for name in names),
        )


if __name__ == "__main__":
    tree.main()
