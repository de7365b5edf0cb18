#!/usr/bin/env python3
"""Plants bugs and reports those that no test notices.

    ./test --mutants [FOLDER]... [--list] [--only ID]... [--jobs N] [--verbose]
                   [--own] [--no-threads] [--results FILE]

Each row of tools/mutants/bugs/*.txt is a bug. A copy of the tree, in build/mutants, contains all of
them; each acts only if the environment variable MLK_MUTANT has its number. The copy is built once.
Then the tests of a bug's folder run with that bug, and if they pass, those of the folders above. A bug
is noticed if a test fails, ends its process or hangs, and does so again when it runs alone. The test
that noticed it is stored in build/mutants/learned.json and runs first the next time.

With --results each outcome is added to FILE at once, and a bug is left out that FILE has an outcome of
with its row and all files of its folder as they are now. A run can so be made in parts, and goes on
where it was interrupted. Change a file elsewhere that matters, and FILE has to go.
"""

import argparse
import concurrent.futures
import json
import os
import subprocess
import sys
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
TREE = os.path.dirname(os.path.dirname(HERE))
BUILD = os.path.join(TREE, "build", "mutants")
sys.path.insert(0, HERE)

import planting  # noqa: E402
import programs  # noqa: E402
from results import Results, listed_files  # noqa: E402
import table  # noqa: E402

# Seconds: a test that takes less than QUICK is quick, one that takes LONG or more is long.
QUICK = 0.25
LONG = 2.0
# Seconds that a test has more when it runs alone.
PATIENCE = 60


def copy_tree(bugs):
    """Brings the copy up to date; files that stay the same are not touched, for the build's sake."""
    source = os.path.join(BUILD, "source")
    by_file = {}
    for bug in bugs:
        by_file.setdefault(bug.file, []).append(bug)
    wanted = set()
    for file in listed_files(TREE):
        path = os.path.join(TREE, file)
        wanted.add(file)
        with open(path, "rb") as stream:
            content = stream.read()
        if file in by_file:
            planted = planting.plant(content.decode(), by_file[file],
                                     os.path.join(HERE, "mutant.h"))
            content = planted.encode()
        put(os.path.join(source, file), content, os.stat(path).st_mode)
    for folder, _, files in os.walk(source):
        for name in files:
            path = os.path.join(folder, name)
            if os.path.relpath(path, source) not in wanted:
                os.unlink(path)
    return source


def put(path, content, mode):
    """Writes a file unless it has that content."""
    try:
        with open(path, "rb") as stream:
            if stream.read() == content:
                return
    except FileNotFoundError:
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as stream:
        stream.write(content)
    os.chmod(path, mode & 0o777)


def build(source, preset, targets):
    """Builds test programs of the copy; ends this program when that fails."""
    folder = os.path.join(BUILD, preset)
    if not os.path.exists(os.path.join(folder, "build.ninja")):
        with open(os.path.join(TREE, "CMakePresets.json"), encoding="utf-8") as file:
            flags = next(one["cacheVariables"]["CMAKE_CXX_FLAGS"]
                         for one in json.load(file)["configurePresets"] if one["name"] == preset)
        # Planted bugs may cause warnings.
        subprocess.run(["cmake", "--preset", preset, "-B", folder, f"-DCMAKE_CXX_FLAGS={flags} -w"],
                       cwd=source, check=True, stdout=sys.stderr)
    # Goes on after a failure: one run shows all rows that do not build.
    if subprocess.run(["cmake", "--build", folder, "--target", *sorted(targets), "--", "-k", "0"],
                      stdout=sys.stderr, check=False).returncode != 0:
        sys.exit("mutants: the tree with the planted bugs does not build")
    environment = {
        "MLK_BIN_DIR": os.path.join(folder, "bin"),
        "MLK_SOURCE_DIR": source,
        "TSAN_OPTIONS": f"suppressions={source}/cmake/tsan.supp",
    }
    return {name: programs.Program(os.path.join(folder, "tests", name), environment)
            for name in targets}


def load(name):
    """The results of an earlier run in build/mutants; empty if there was none."""
    path = os.path.join(BUILD, name)
    if not os.path.exists(path):
        return {}
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def save(name, content):
    with open(os.path.join(BUILD, name), "w", encoding="utf-8") as file:
        json.dump(content, file, indent=1)


def measure(pool, built):
    """Runs all programs without a bug, unless that was done since they were built."""
    former = load("measured.json")
    stamps = {}
    for name, program in built.items():
        folder = program.environment["MLK_BIN_DIR"]
        files = [program.path] + [os.path.join(folder, file) for file in sorted(os.listdir(folder))]
        stamps[name] = [os.stat(file).st_mtime_ns for file in files]
        known = former.get(name)
        if known and known["stamp"] == stamps[name]:
            program.seconds, program.excluded = known["seconds"], known["excluded"]
    missing = [program for program in built.values() if not program.seconds]
    list(pool.map(lambda program: program.measure(), missing))
    for name, program in built.items():
        former[name] = {"stamp": stamps[name], "seconds": program.seconds,
                        "excluded": program.excluded}
        for test in program.excluded:
            print(f"left out, fails without a bug: {name} {test}", flush=True)
    save("measured.json", former)


class Run:
    """The bugs that several threads try, and the outcomes."""

    def __init__(self, built, learned, bugs, results, own, verbose):
        self._built = built  # by preset, then by name
        self._files = {}  # the bugs of each
        for bug in bugs:
            self._files.setdefault(bug.file, []).append(bug.id)
        self._own = own
        self._learned = learned
        self._results = results
        self._verbose = verbose
        self._lock = threading.Lock()
        self.noticed = {}
        self.missed = []

    def attempt(self, bug):
        """Tries one bug and prints the outcome."""
        start = time.monotonic()
        preset = "tsan" if bug.threads else "default"
        by = self._noticed_by(bug, preset)
        seconds = time.monotonic() - start
        with self._lock:
            self.take(bug, by)
            self._results.add(bug, by, seconds)
            if self._verbose or not by:
                text = f"{by[0]} {by[1]} {by[2]}" if by else "NOT NOTICED"
                print(f"{bug.id}: {text} ({seconds:.1f} s): {bug.what}", flush=True)

    def take(self, bug, by):
        """Counts a bug; `by` is program, test and how, or None."""
        if by:
            self.noticed[bug.id] = by
            self._learned[bug.id] = by[:2]
        else:
            self.missed.append(bug)

    def _noticed_by(self, bug, preset):
        own, above = programs.PROGRAMS[bug.folder]
        names = own if bug.threads or self._own else own + above
        learned = self._learned.get(bug.id)
        if learned and learned[0] in self._built[preset]:
            by = self._attempt(bug, preset, learned[0], [learned[1]])
            if by:
                return by
        tests = {name: self._tests(bug, self._built[preset][name]) for name in names}
        for name, group in self._groups(bug, tests, preset):
            by = self._attempt(bug, preset, name, group)
            if by:
                return by
        return None

    @staticmethod
    def _tests(bug, program):
        if bug.threads:
            return program.tests(bug.threads)
        return [test for test in program.seconds if test not in program.excluded]

    def _groups(self, bug, tests, preset):
        """The tests in the order in which they are likely to notice a bug soon."""
        # Those that noticed other bugs of the file.
        with self._lock:
            similar = {tuple(self._learned[other]) for other in self._files.get(bug.file, [])
                       if other in self._learned}
        left = {}
        for name, some in tests.items():
            group = [test for test in some if (name, test) in similar]
            left[name] = [test for test in some if (name, test) not in similar]
            if group:
                yield name, group
        # Tests of the bug's folder come before those of the folders above; all long tests come last.
        own = programs.PROGRAMS[bug.folder][0]
        above = [name for name in left if name not in own]
        endless = float("inf")
        for names, least, most in ((own, 0, QUICK), (own, QUICK, LONG), (above, 0, QUICK),
                                   (above, QUICK, LONG), (own + above, LONG, endless)):
            for name in names:
                seconds = self._built[preset][name].seconds
                group = [test for test in left[name]
                         if least <= seconds.get(test, 0) < most]
                if group:
                    yield name, group

    def _attempt(self, bug, preset, name, tests):
        """The program and the test that noticed the bug, and how; None if no test did."""
        program = self._built[preset][name]
        while tests:
            outcome = program.outcome(bug.number, tests, program.limit(tests))
            if not outcome.failed:
                return None
            # Alone it has much more time: a busy machine is no hang, and many tests fail by
            # themselves after half a minute.
            alone = [outcome.failed]
            again = program.outcome(bug.number, alone, program.limit(alone) + PATIENCE)
            if again.failed:
                return name, outcome.failed, again.how
            # It passes alone: go on with the tests after it.
            tests = tests[tests.index(outcome.failed) + 1:] if outcome.failed in tests else []
        return None


def report(bugs, run, seconds):
    """Prints a table with a line for each folder, the bugs not noticed, and those nobody can notice."""
    print("\n| folder | planted | noticed | not noticed | cannot be observed |\n|---|---|---|---|---|")
    rows = [(f"`{folder}`", [bug for bug in bugs if bug.folder == folder])
            for folder in sorted({bug.folder for bug in bugs})]
    for folder, some in rows + [("all", bugs)]:
        noticed = sum(bug.id in run.noticed for bug in some)
        missed = sum(bug in run.missed for bug in some)
        print(f"| {folder} | {len(some)} | {noticed} | {missed} | {len(some) - noticed - missed} |")
    elsewhere = [bug for bug in bugs if bug.id in run.noticed
                 and run.noticed[bug.id][0] not in programs.PROGRAMS[bug.folder][0]]
    print(f"\nNoticed by the tests of a folder above: {len(elsewhere)}")
    for bug in elsewhere:
        print(f"  {bug.id}: {' '.join(run.noticed[bug.id])}")
    print(f"\nNot noticed: {len(run.missed)}")
    for bug in run.missed:
        print(f"  {bug.id}: {bug.what} ({bug.file})")
    print("\n| cannot be observed | bug | why |\n|---|---|---|")
    for bug in bugs:
        if bug.unseen and bug.id not in run.noticed:
            print(f"| `{bug.file}` | {bug.what} | {bug.unseen} |")
    print(f"\n{len(bugs)} bugs in {seconds / 60:.1f} minutes")


def arguments():
    parser = argparse.ArgumentParser(
        prog="./test --mutants", formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Plants bugs, one at a time, and tells which of them no test notices.")
    parser.add_argument("folders", nargs="*", metavar="FOLDER", help="only the bugs of that folder")
    parser.add_argument("--only", action="append", default=[], metavar="ID", help="only that bug")
    parser.add_argument("--list", action="store_true", help="print the bugs and end")
    parser.add_argument("--no-threads", action="store_true",
                        help="leave out the bugs for the thread sanitizer, which is a second build")
    parser.add_argument("--own", action="store_true", help="only the tests of a bug's own folder")
    parser.add_argument("--results", metavar="FILE",
                        help="add the outcomes to FILE, and leave out what it has of the same sources")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="bugs at once")
    parser.add_argument("--verbose", action="store_true", help="what noticed each bug")
    return parser.parse_args()


def chosen(bugs, options):
    """The bugs that the command line selects."""
    for folder in options.folders:
        if folder.rstrip("/") not in programs.PROGRAMS:
            sys.exit(f"mutants: no folder {folder}: {', '.join(programs.PROGRAMS)}")
    for only in options.only:
        if all(bug.id != only for bug in bugs):
            sys.exit(f"mutants: no bug {only}; --list has them all")
    folders = {folder.rstrip("/") for folder in options.folders}
    return [bug for bug in bugs if (not folders or bug.folder in folders)
            and (not options.only or bug.id in options.only)
            and not (options.no_threads and bug.threads)]


def main():
    options = arguments()
    every = table.read_tables(os.path.join(HERE, "bugs"))
    bugs = chosen(every, options)
    if options.list:
        for bug in bugs:
            print(f"{bug.id}: {bug.what} ({bug.file})")
        return 0
    start = time.monotonic()
    results = Results(options.results, TREE, bugs)
    wanted = [bug for bug in bugs if not bug.unseen or options.only]
    known = {bug.id: results.of(bug) for bug in wanted}
    tried = [bug for bug in wanted if not known[bug.id]]
    source = copy_tree(every)
    targets = {"default": set(), "tsan": set()}
    for bug in tried:
        own, above = programs.PROGRAMS[bug.folder]
        targets["tsan" if bug.threads else "default"].update(
            own if bug.threads or options.own else own + above)
    built = {preset: build(source, preset, names) for preset, names in targets.items() if names}
    print(f"built after {time.monotonic() - start:.0f} s", flush=True)
    learned = load("learned.json")
    run = Run(built, learned, every, results, options.own, options.verbose)
    for bug in wanted:
        if known[bug.id]:
            run.take(bug, known[bug.id]["by"])
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        # Not those for the thread sanitizer: they run only for bugs that it alone shows.
        measure(pool, built.get("default", {}))
        try:
            list(pool.map(run.attempt, tried))
        except BaseException:
            pool.shutdown(cancel_futures=True)
            raise
        finally:
            save("learned.json", learned)
    report(bugs, run, time.monotonic() - start)
    return 1 if run.missed else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except table.TableError as error:
        sys.exit(f"mutants: {error}")
