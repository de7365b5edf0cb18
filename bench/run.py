#!/usr/bin/env python3
"""Measures the product beside its limits and its peers, and prints the ratios.

Every round runs every benchmark once, one after the other, so that a machine that becomes slower
becomes so for all of them.
"""

import argparse
import datetime
import json
import os
import platform
import re
import subprocess
import sys
import tempfile

import report

# A start takes long and its time scatters: it is measured in several pieces of every round.
PROGRAMS = ("bench_parse", "bench_start", "bench_lookup", "bench_start", "bench_calls",
            "bench_start")
ROUNDS = 11
QUICK_ROUNDS = 2


def name_of(run_name):
    """The name that a benchmark was registered by: without what the library appends."""
    return re.sub(r"(/(iterations|repeats|min_time|manual_time|real_time)(:[\d.]+)?)+$", "",
                  run_name)


def run_once(program, name_filter):
    """Runs those of a program's benchmarks that match; a dict from name to number."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [program, f"--benchmark_filter={name_filter}", f"--benchmark_out={out.name}",
                   "--benchmark_out_format=json"]
        # Nothing sets the log's filter, and its lines go where those of a daemon go.
        environment = {name: value for name, value in os.environ.items()
                       if name != "ANDROID_LOG_TAGS"}
        status = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                check=False).returncode
        if status != 0:
            sys.exit(f"{program} has failed with status {status}; run it by itself to see why")
        text = out.read()
    # The filter may leave a program nothing to do.
    runs = json.loads(text)["benchmarks"] if text else []
    failed = [run["name"] for run in runs if run.get("error_occurred")]
    if failed:
        sys.exit(f"{program}: {', '.join(failed)} has failed; run it by itself to see why")
    return {name_of(run["run_name"]): run["value"] for run in runs}


def measure(folder, rounds, name_filter):
    """All rounds: a dict from name to numbers."""
    measured = {}
    for number in range(1, rounds + 1):
        if sys.stderr.isatty():
            print(f"\rround {number} of {rounds} ", end="", file=sys.stderr, flush=True)
        for program in PROGRAMS:
            for name, value in run_once(os.path.join(folder, program), name_filter).items():
                measured.setdefault(name, []).append(value)
    if sys.stderr.isatty():
        print("\r\033[K", end="", file=sys.stderr, flush=True)
    return measured


def machine():
    """Where it was measured, as far as it matters."""
    processor = "?"
    with open("/proc/cpuinfo", encoding="ascii", errors="replace") as info:
        for line in info:
            if line.startswith("model name"):
                processor = line.split(":", 1)[1].strip()
                break
    return {
        "cores": len(os.sched_getaffinity(0)),
        "processor": processor,
        "kernel": platform.release(),
        "date": datetime.date.today().isoformat(),
    }


def main():
    parser = argparse.ArgumentParser(prog="run bench", description=__doc__)
    parser.add_argument("--json", action="store_true", help="print one JSON object")
    parser.add_argument("--quick", action="store_true",
                        help=f"{QUICK_ROUNDS} rounds: whether everything runs, not how fast")
    parser.add_argument("--rounds", type=int, metavar="N", help=f"default {ROUNDS}")
    parser.add_argument("--filter", default=".", metavar="REGEX",
                        help="only benchmarks (FAMILY/CONTESTANT/SIZE) that match")
    parser.add_argument("--folder", required=True, help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    rounds = arguments.rounds or (QUICK_ROUNDS if arguments.quick else ROUNDS)
    measured = measure(arguments.folder, rounds, arguments.filter)
    full = report.report(measured, rounds, machine())
    print(json.dumps(full, indent=2) if arguments.json else report.table(full))


if __name__ == "__main__":
    main()
