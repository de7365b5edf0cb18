"""What the guides promise about access: each sentence with the checks that prove it."""

import re
import unittest

import tree
from contexts import label
from policy import Policy, expanded

PAGES = ("docs/device.md", "docs/troubleshooting.md")
READING = {"getattr", "open", "read"}
CHANGING = {"append", "create", "link", "relabelfrom", "relabelto", "rename", "setattr", "unlink", "write"}
CHANGING_FOLDER = CHANGING | {"add_name", "remove_name", "reparent", "rmdir"}
KINDS_OF_FILES = ("file", "dir", "lnk_file", "sock_file", "fifo_file", "chr_file")

PARTITIONS = ("/tvconfigs", "/tvdata", "/impdata")
FEATURES = ("/tvconfigs/tv.config", "/tvconfigs/tv/tv_eu.config")
MODEL = ("/impdata/project_id.bin", "/impdata/project_id.bin.new")
COUNTRY = ("/tvdata/tvsysmap/country_id.bin", "/tvdata/tvsysmap/country_id.bin.new")
OTHERS = (
    "/tvconfigs/customer.ini", "/tvconfigs/tv/old/tv.config", "/tvdata/channels/preset_eu.db", "/impdata/board_id.bin",
    "/impdata/hdcp/hdcp_1x.bin",
)


class Promises(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.policy = Policy(expanded())
        cls.guide = " ".join(word for page in PAGES for word in tree.read(page).split())
        # All file types of the three partitions.
        cls.ours = {label(path) for path in (*PARTITIONS, *FEATURES, *MODEL, *COUNTRY)}

    def promised(self, sentence):
        """The guide still says so; else the questions below prove something that nobody reads."""
        self.assertTrue(sentence in self.guide, f"{PAGES} do not say: {sentence}")

    def can(self, source, target, kind, *permissions):
        lacking = set(permissions) - self.policy.allowed(source, target, kind)
        self.assertEqual(lacking, set(), f"{source} may not {target}:{kind}")

    def cannot(self, source, target, kind, *permissions):
        extra = set(permissions) & self.policy.allowed(source, target, kind)
        self.assertEqual(extra, set(), f"{source} may {target}:{kind}")

    def test_domain_of_the_service(self):
        self.promised("in the domain `mlkconfigs`")
        self.can("init", "mlkconfigs_exec", "file", "execute", "getattr", "open", "read")
        self.can("init", "mlkconfigs", "process", "transition")
        self.assertIn(("init", "mlkconfigs_exec", "process", "mlkconfigs"), self.policy.transitions)
        self.assertEqual(self.policy.who("mlkconfigs_exec", "file", "entrypoint"), {"mlkconfigs"})
        self.assertEqual(self.policy.who("mlkconfigs", "process", "transition"), {"init"})

    def test_mounting(self):
        self.promised("`sepolicy/init.te` lets init mount on the three folders.")
        for folder in PARTITIONS:
            self.assertEqual(self.policy.who(label(folder), "dir", "mounton"), {"init"}, folder)

    def test_reading_everything(self):
        self.promised("The service reads any file of the three partitions for a client, keys on impdata included")
        for path in (*FEATURES, *MODEL, *COUNTRY, *OTHERS):
            self.can("mlkconfigs", label(path), "file", *READING)
        for folder in (*PARTITIONS, "/tvdata/tvsysmap"):
            self.can("mlkconfigs", label(folder), "dir", "search", *READING)

    def test_below_mnt_vendor(self):
        self.promised("`/mnt/vendor/tvconfigs` and its kin")
        self.can("mlkconfigs", label("/mnt/vendor"), "dir", "search")
        for path in (*PARTITIONS, *FEATURES, *MODEL, *COUNTRY, *OTHERS):
            self.assertEqual(label("/mnt/vendor" + path), label(path))

    def test_features(self):
        self.promised("| `/tvconfigs/tv.config`, `/tvconfigs/tv/*.config` | `mlkconfigs_features_file` |")
        for path in FEATURES:
            self.can("mlkconfigs", label(path), "file", "write")
            self.cannot("mlkconfigs", label(path), "file", *(CHANGING - {"append", "write"}))
        self.promised("A file elsewhere is read, and a change of it is denied")
        self.cannot("mlkconfigs", label("/tvconfigs/features/tv.config"), "file", *CHANGING)

    def test_model(self):
        self.promised("overwritten in place and synced; a missing one is made as `project_id.bin.new`, mode 0644, "
                      "and renamed")
        for path in MODEL:
            self.can("mlkconfigs", label(path), "file", "create", "write", "rename", "unlink")
        self.can("mlkconfigs", label("/impdata"), "dir", "search", "write", "add_name", "remove_name")

    def test_country(self):
        self.promised("| the same, as `country_id.bin.new` |")
        for path in COUNTRY:
            self.can("mlkconfigs", label(path), "file", "create", "write", "rename", "unlink")
        self.can("mlkconfigs", label("/tvdata/tvsysmap"), "dir", "search", "write", "add_name", "remove_name")

    def test_nothing_else_is_written(self):
        self.promised("These files are written, and no others:")
        written = {label(path) for path in (*FEATURES, *MODEL, *COUNTRY)}
        for kind in self.policy.members("file_type"):
            if kind not in written | {"property_socket"}:
                for object_class in KINDS_OF_FILES:
                    # Names may be added and removed only in its two folders on the partitions.
                    names = {"write", "add_name", "remove_name"} if (kind, object_class) in {
                        (label("/impdata"), "dir"), (label("/tvdata"), "dir")} else set()
                    self.cannot("mlkconfigs", kind, object_class, *(CHANGING_FOLDER - names))
        self.cannot("mlkconfigs", label("/tvdata"), "dir", "remove_name")
        for path in OTHERS:
            self.cannot("mlkconfigs", label(path), "file", *CHANGING)

    def test_links(self):
        self.promised("A TV feature file of the second row and `project_id.bin` may be symbolic links")
        for path in (FEATURES[0], FEATURES[1], MODEL[0]):
            self.assertEqual(self.policy.allowed("mlkconfigs", label(path), "lnk_file"), {"getattr", "read"})
        for path in OTHERS:
            self.can("mlkconfigs", label(path), "lnk_file", "getattr", "read")
            self.cannot("mlkconfigs", label(path), "lnk_file", *CHANGING)

    def test_nobody_else_gets_at_the_partitions(self):
        self.promised("No domain but the service's gets at the partitions by this policy.")
        for kind in self.ours:
            for object_class in ("file", "dir", "lnk_file"):
                for permission in READING | CHANGING_FOLDER | {"search"}:
                    self.assertLessEqual(self.policy.who(kind, object_class, permission), {"mlkconfigs"})

    def test_properties(self):
        self.promised("(`mlkconfigs_feature_prop` for those that are written, `mlkconfigs_switch_prop` for the others)")
        self.assertEqual(self.policy.who("mlkconfigs_feature_prop", "property_service", "set"),
                         {"mlkconfigs", "vendor_init"})
        self.assertEqual(self.policy.who("mlkconfigs_switch_prop", "property_service", "set"), {"vendor_init"})
        for kind in ("mlkconfigs_feature_prop", "mlkconfigs_switch_prop"):
            self.can("mlkconfigs", kind, "file", *READING)

    def test_client(self):
        example = re.search(r"```\n(typeattribute livetv .*?)```", tree.read(PAGES[0]), re.DOTALL)[1]
        policy = Policy(expanded(example.replace("livetv", "tuner").join(["type tuner, domain;\n", ""])))
        for target, kind, permission in (
            ("mlkconfigs_hwservice", "hwservice_manager", "find"),
            ("mlkconfigs", "binder", "call"),
            ("hwservicemanager", "binder", "call"),
            ("hwservicemanager_prop", "file", "read"),
            ("hidl_memory_hwservice", "hwservice_manager", "find"),
            ("hal_allocator_default", "fd", "use"),
            ("mlkconfigs", "fd", "use"),
        ):
            self.assertIn(permission, policy.allowed("tuner", target, kind), target)
        # A dump goes to the client's own pipe.
        self.assertLessEqual({"getattr", "write"}, policy.allowed("mlkconfigs", "tuner", "fifo_file"))
        self.assertIn("use", policy.allowed("mlkconfigs", "tuner", "fd"))

    def test_untrusted_apps(self):
        self.promised("Untrusted apps are kept out by the platform's own rules.")
        self.assertIn("mlkconfigs_hwservice", self.policy.members("protected_hwservice"))
        self.cannot("untrusted_app", "mlkconfigs_hwservice", "hwservice_manager", "find")
        self.cannot("untrusted_app", "mlkconfigs", "binder", "call")

    def test_only_clients_find_it_and_only_it_registers(self):
        self.promised("`avc: denied { find } ... mlkconfigs_hwservice` | a client without `mlkconfigs_client`")
        self.assertEqual(self.policy.who("mlkconfigs_hwservice", "hwservice_manager", "find"),
                         {"mlkconfigs"} | self.policy.members("mlkconfigs_client"))
        self.assertEqual(self.policy.who("mlkconfigs_hwservice", "hwservice_manager", "add"), {"mlkconfigs"})


class Answers(unittest.TestCase):
    """The questions notice another policy."""

    def test_missing_and_surplus_rules(self):
        without = re.sub(r"\nallow mlkconfigs \{ mlkconfigs_features_file[^;]*lnk_file[^;]*;", "", expanded())
        self.assertEqual(Policy(without).allowed("mlkconfigs", label(FEATURES[0]), "lnk_file"), set())
        more = expanded("allow vendor_init mlkconfigs_exec:file getattr;")
        self.assertIn("vendor_init", Policy(more).who("mlkconfigs_exec", "file", "getattr"))
        self.assertNotIn("vendor_init", Policy(expanded()).who("mlkconfigs_exec", "file", "getattr"))


if __name__ == "__main__":
    tree.main()
