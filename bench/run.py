#!/usr/bin/env python3
"""Measures the product, its limits and its peers, and prints the ratios.

Every round runs every benchmark once, one after the other, so that a machine that becomes slower
becomes so for all of them. Growth is measured in a few of the rounds only.
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

import picture
import report

# Starts take long and vary: each round measures them in several portions.
PROGRAMS = ("bench_parse", "bench_start", "bench_lookup", "bench_start", "bench_check",
            "bench_calls", "bench_start", "bench_call_peers")
ROUNDS = 11
QUICK_ROUNDS = 2
GROWTH_EVERY = 4  # rounds


def name_of(run_name):
    """The registered name of a benchmark, without the suffix of the library."""
    return re.sub(r"(/(iterations|repeats|min_time|manual_time|real_time)(:[\d.]+)?)+$", "",
                  run_name)


def command_of(program):
    """The environment of a program: the log has no filter, and writes where a daemon's log does."""
    environment = {name: value for name, value in os.environ.items()
                   if name != "ANDROID_LOG_TAGS"}
    return {"args": [program], "env": environment, "stdin": subprocess.DEVNULL,
            "stderr": subprocess.DEVNULL, "check": False}


def complain(program, what):
    sys.exit(f"{program}: {what}; run it by itself to see why")


def listed(program):
    """The full names of a program's benchmarks."""
    command = command_of(program)
    command["args"].append("--benchmark_list_tests")
    done = subprocess.run(**command, stdout=subprocess.PIPE, text=True)
    if done.returncode != 0:
        complain(program, f"has failed with status {done.returncode}")
    return done.stdout.split("\n")[:-1]


def exactly(names):
    """A pattern that matches only these names."""
    return "^(" + "|".join(re.sub(r"[.+*?()]", r"[\g<0>]", name) for name in names) + ")$"


def run_once(program, names):
    """Runs these benchmarks of a program; returns a dict from name to number."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = command_of(program)
        command["args"] += [f"--benchmark_filter={exactly(names)}", f"--benchmark_out={out.name}",
                            "--benchmark_out_format=json"]
        status = subprocess.run(**command, stdout=subprocess.DEVNULL).returncode
        if status != 0:
            complain(program, f"has failed with status {status}")
        text = out.read()
        runs = json.loads(text)["benchmarks"] if text else []
    failed = [run["name"] for run in runs if run.get("error_occurred")]
    if failed or len(runs) != len(names):
        complain(program, ", ".join(failed or names) + " has failed")
    return {name_of(run["run_name"]): run["value"] for run in runs}


def chosen(names, name_filter, number):
    """The benchmarks that match and are due in this round."""
    return [name for name in names if re.search(name_filter, name_of(name)) and
            (number % GROWTH_EVERY == 1 or not name.startswith("growth-"))]


def measure(folder, rounds, name_filter):
    """Measures all rounds; returns a dict from name to numbers."""
    names = {program: listed(os.path.join(folder, program)) for program in set(PROGRAMS)}
    measured = {}
    for number in range(1, rounds + 1):
        if sys.stderr.isatty():
            print(f"\rround {number} of {rounds} ", end="", file=sys.stderr, flush=True)
        seen = set()
        for program in PROGRAMS:
            now = chosen(names[program], name_filter, number)
            # Growth once a round, however often the program runs.
            now = [name for name in now if name not in seen or not name.startswith("growth-")]
            seen.update(now)
            if now:
                for name, value in run_once(os.path.join(folder, program), now).items():
                    measured.setdefault(name, []).append(value)
    if sys.stderr.isatty():
        print("\r\033[K", end="", file=sys.stderr, flush=True)
    return measured


def machine():
    """The properties of the machine that matter."""
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


def count(text):
    """Type of an option: a number from 1."""
    number = int(text)
    if number < 1:
        raise ValueError
    return number


def pattern(text):
    """Type of an option: a regular expression."""
    try:
        re.compile(text)
    except re.error as error:
        raise argparse.ArgumentTypeError(f"{text!r} is no regular expression: {error}") from error
    return text


def main():
    parser = argparse.ArgumentParser(prog="run bench", description=__doc__)
    parser.add_argument("--json", action="store_true", help="print one JSON object")
    parser.add_argument("--quick", action="store_true",
                        help=f"{QUICK_ROUNDS} rounds: whether everything runs, not how fast")
    parser.add_argument("--rounds", type=count, metavar="N", help=f"default {ROUNDS}")
    parser.add_argument("--filter", type=pattern, default=".", metavar="REGEX",
                        help="only benchmarks (FAMILY/CONTESTANT/SIZE) that match")
    parser.add_argument("--svg", metavar="FILE", help="draw it, too")
    parser.add_argument("--folder", help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    if arguments.folder is None:
        return  # ./run asks whether the command line is right before it builds
    rounds = arguments.rounds or (QUICK_ROUNDS if arguments.quick else ROUNDS)
    measured = measure(arguments.folder, rounds, arguments.filter)
    full = report.report(measured, rounds, machine())
    if arguments.svg:
        with open(arguments.svg, "w", encoding="utf-8") as file:
            file.write(picture.picture(full))
    print(json.dumps(full, indent=2) if arguments.json else report.table(full))


if __name__ == "__main__":
    main()
