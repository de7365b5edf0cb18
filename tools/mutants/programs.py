"""The test programs: which test a folder, and how one is run."""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
from dataclasses import dataclass, field

_SERVICE = "service_test"
_HIDL = ["host_hidl_test", "host_hidl_ipc_test", "host_hidl_hostile_test", "host_hidl_users_test"]
_MLKTREE = ["mlktree_test", "mlktree_rules_test"]

# The programs of a folder, and of those above it that use it: in that order.
PROGRAMS = {
    "common": (["common_test"],
               ["regional_test", "tvconfigs_test", "frameworkconfigs_test", "projectconfigs_test",
                "samples_test", _SERVICE, *_MLKTREE]),
    "regional": (["regional_test"],
                 ["projectconfigs_test", "mlkctl_test", "samples_test", _SERVICE, *_MLKTREE]),
    "projectconfigs": (["projectconfigs_test"], ["samples_test", _SERVICE, *_MLKTREE]),
    "tvconfigs": (["tvconfigs_test"], [_SERVICE, *_MLKTREE]),
    "frameworkconfigs": (["frameworkconfigs_test"], [_SERVICE, *_MLKTREE]),
    "service": ([_SERVICE], ["samples_test"]),
    "host/hidl": (_HIDL, ["host_memory_test", "projectconfigs_test", "mlkctl_test", _SERVICE]),
    "host/log": (["host_log_test"], ["host_testing_test", _SERVICE]),
    "host/memory": (["host_memory_test"], ["projectconfigs_test", _SERVICE]),
    "host/partitions": (["host_partitions_test"], ["regional_test", _SERVICE]),
    "host/properties": (["host_properties_test"],
                        ["frameworkconfigs_test", "tvconfigs_test", "mlkctl_test", _SERVICE]),
    "host/text": (["host_text_test"],
                  ["host_log_test", "tools_common_test", "mlkctl_test", *_MLKTREE]),
    "tools/common": (["tools_common_test"], ["mlkctl_test", *_MLKTREE]),
    "tools/mlkctl": (["mlkctl_test"], ["samples_test"]),
    "tools/mlktree": (_MLKTREE, []),
}

# CTest gives each test a process of its own; these need it, since they set limits of a process.
_APART = {"host_memory_test", "host_hidl_users_test"}

_RUN = re.compile(r"^\[ RUN      \] (\S+)", re.M)
_FAILED = re.compile(r"^\[  FAILED  \] ([^\s,]+)(?:, where .*)? \(\d+ ms\)", re.M)
_SANITIZER = re.compile(r"WARNING: ThreadSanitizer|ERROR: AddressSanitizer")


@dataclass
class Outcome:
    """How a run ended. `failed` names the first test that did, empty when all passed."""

    failed: str = ""
    how: str = ""  # "fails", "ends its process", "hangs", "races"


@dataclass
class Program:
    """A test program and the results of its run without a bug."""

    path: str
    environment: dict
    seconds: dict = field(default_factory=dict)  # by test
    excluded: list = field(default_factory=list)  # tests that fail without a bug

    @property
    def name(self):
        return os.path.basename(self.path)

    def run(self, bug, filters, limit, *options):
        """Runs the tests of a filter with a bug (0: without). Returns True and the output, or how it ended."""
        environment = dict(os.environ, **self.environment)
        environment.pop("MLK_MUTANT", None)
        if bug:
            environment["MLK_MUTANT"] = str(bug)
        folder = tempfile.mkdtemp(prefix="mlk-mutant-")
        os.chmod(folder, 0o1777)  # some tests become other users
        environment["TMPDIR"] = folder
        try:
            with tempfile.TemporaryFile() as output:
                # In a session of its own, so that its remaining processes can be killed.
                process = subprocess.Popen(
                    [self.path, "--gtest_filter=" + filters, "--gtest_color=no", *options],
                    stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                    env=environment, cwd=folder, start_new_session=True)
                try:
                    status = process.wait(limit)
                except subprocess.TimeoutExpired:
                    status = None
                finally:
                    _end(process)
                output.seek(0)
                return status, output.read().decode("utf-8", "replace")
        finally:
            shutil.rmtree(folder, ignore_errors=True)

    def tests(self, filters="*"):
        """The names of the tests that a filter takes."""
        _, text = self.run(0, filters, 60, "--gtest_list_tests")
        names = []
        suite = ""
        for line in text.splitlines():
            word = line.split("#")[0].strip()
            if line.startswith(" "):
                names.append(suite + word)
            elif word.endswith("."):
                suite = word
        return [name for name in names if ".DISABLED_" not in name]

    def measure(self, filters="*"):
        """Runs without a bug; keeps how long each test takes and which fail."""
        alone = self.tests(filters)
        if self.name not in _APART:
            with tempfile.NamedTemporaryFile(suffix=".json") as report:
                self.run(0, filters, 900, "--gtest_output=json:" + report.name)
                text = report.read()
            failed = []
            for suite in json.loads(text)["testsuites"] if text else []:
                for test in suite["testsuite"]:
                    name = f"{suite['name']}.{test['name']}"
                    self.seconds[name] = float(test["time"].rstrip("s"))
                    if "failures" in test:
                        failed.append(name)
            if text:
                alone = failed
        # A test that fails among others but passes alone, as CTest runs it, has not failed.
        for name in alone:
            self.seconds.setdefault(name, 1.0)
            if self.outcome(0, [name], 180).failed:
                self.excluded.append(name)

    def outcome(self, bug, names, limit):
        """Runs tests, in one process if possible, until one fails."""
        groups = [[name] for name in names] if self.name in _APART else [names]
        for group in groups:
            status, text = self.run(bug, ":".join(group), limit, "--gtest_fail_fast")
            if status == 0:
                continue
            return self._explained(status, text, group)
        return Outcome()

    def _explained(self, status, text, group):
        started = _RUN.findall(text)
        running = started[-1] if started else group[0]
        if status is None:
            return Outcome(running, "hangs")
        failed = _FAILED.search(text)
        if failed:
            return Outcome(failed[1], "fails")
        race = _SANITIZER.search(text)
        if race:
            before = _RUN.findall(text[:race.start()])
            return Outcome(before[-1] if before else running, "races")
        return Outcome(running, "ends its process")

    def limit(self, names):
        """The seconds after which these tests count as hanging. They were measured under the same load."""
        return 10 + 4 * sum(self.seconds.get(name, 1.0) for name in names)


def _end(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
