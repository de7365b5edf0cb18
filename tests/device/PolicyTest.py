"""The SELinux policy: it compiles, says exactly what the code does, and allows nothing beyond."""

import re
import unittest

import tree
from contexts import label, rows, type_of
from policy import Policy, compiled, expanded
from writers import PLACES, READ, WRITERS

# The platform labels these and lets every domain read them.
PLATFORM_PROPERTIES = {"ro.hardware"}


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
            "allow mlkconfigs mlkconfigs_features_file:lnk_file create;",
            "allow mlkconfigs mlkconfigs_project_id_file:lnk_file unlink;",
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
    """The policy allows what the sources do, and what the runtime does for them."""

    @classmethod
    def setUpClass(cls):
        cls.policy = Policy(expanded())

    def needed(self):
        client = "livetv"
        yield from (
            ("mlkconfigs", "mlkconfigs_exec", "file", {"entrypoint"}),
            ("mlkconfigs", "hwservicemanager", "binder", {"call"}),
            ("mlkconfigs", "mlkconfigs_hwservice", "hwservice_manager", {"add"}),
            ("mlkconfigs", "hidl_base_hwservice", "hwservice_manager", {"add"}),
            ("mlkconfigs", "hidl_allocator_hwservice", "hwservice_manager", {"find"}),
            ("mlkconfigs", "hidl_memory_hwservice", "hwservice_manager", {"find"}),
            ("mlkconfigs", "hal_allocator_default", "binder", {"call"}),
            ("mlkconfigs", "hal_allocator_default", "fd", {"use"}),
            ("mlkconfigs", "hwservicemanager_prop", "file", {"read"}),
            ("mlkconfigs", client, "fd", {"use"}),
            ("mlkconfigs", client, "fifo_file", {"getattr", "write"}),
            ("mlkconfigs", "mlkconfigs", "fifo_file", {"read", "write"}),
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
        for source, target, kind, permissions in self.needed():
            with self.subTest(rule=f"{source} {target}:{kind} {permissions}"):
                self.assertEqual(permissions - self.policy.allowed(source, target, kind), set())

    def test_new_files_get_their_types(self):
        for folder, kind, name, label_of_it in (
            ("mlkconfigs_impdata_file", "file", "project_id.bin", "mlkconfigs_project_id_file"),
            ("mlkconfigs_impdata_file", "file", "project_id.bin.new", "mlkconfigs_project_id_file"),
            ("mlkconfigs_tvdata_file", "dir", "tvsysmap", "mlkconfigs_country_file"),
        ):
            self.assertIn(("mlkconfigs", folder, kind, name, label_of_it), self.policy.transitions)

    def test_answers_are_the_compilers(self):
        """A rule that forbids what is allowed breaks the policy, and one that forbids another does not."""
        for source, target, kind, permission in (
            ("mlkconfigs", "mlkconfigs_features_file", "file", "write"),
            ("mlkconfigs", "mlkconfigs_tvconfigs_file", "file", "write"),
            ("mlkconfigs", "hal_allocator_default", "binder", "call"),
            ("mlkconfigs", "mlkconfigs", "fifo_file", "write"),
            ("livetv", "mlkconfigs_hwservice", "hwservice_manager", "find"),
            ("untrusted_app", "mlkconfigs_hwservice", "hwservice_manager", "find"),
            ("untrusted_app", "bootloader_prop", "file", "read"),
        ):
            status, _ = compiled(expanded(f"neverallow {source} {target}:{kind} {permission};"))
            self.assertEqual(status != 0, permission in self.policy.allowed(source, target, kind), (source, target))


def property_types():
    return {row[0]: type_of(row[1]) for row in rows("property_contexts")}


class Properties(unittest.TestCase):
    def test_calls_name_properties_by_tables_or_literals(self):
        """Every name is a whole literal, because the list of them is made from the literals."""
        arguments = {
            argument
            for source in tree.product_sources()
            for argument in re.findall(r"(?:\bproperty_|[pP]roperties\.)(?:get|set)\w*\(\s*([^,)]+)", tree.code(source))
        }
        others = {argument for argument in arguments if not argument.startswith('"')}
        self.assertEqual(others, {"key", "row.property", "kFrameworkItems[row].property", "property::kHardware",
                                  "property::kLogItems", "kLogTvSystemsProperty"})

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

    def test_values_are_texts_as_the_service_reads_them(self):
        """Init refuses values of another kind, and its kinds allow fewer values than the getters accept."""
        self.assertEqual({tuple(row[2:]) for row in rows("property_contexts")}, {("exact", "string")})


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
