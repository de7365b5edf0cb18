#!/usr/bin/env python3
"""Writes the tables of the interfaces' methods from their definitions.

Usage: methods.py client|tests|reference -o OUT FILE.hal...

    client     the rows that mlkctl calls and describes methods by (C++)
    tests      the rows of service/tests/InterfaceMethods.h (C++)
    reference  docs/reference.md
"""

import argparse
import sys
from pathlib import Path

import cpp
import hal
import reference

WRITERS = {"client": cpp.client, "tests": cpp.tests, "reference": reference.page}


def main(arguments):
    parser = argparse.ArgumentParser(prog="methods.py", description=__doc__.splitlines()[0])
    parser.add_argument("kind", choices=WRITERS)
    parser.add_argument("-o", dest="out", type=Path, required=True, help="the file to write")
    parser.add_argument("files", nargs="+", type=Path, metavar="FILE.hal")
    options = parser.parse_args(arguments)
    try:
        package = hal.read([(str(file), file.read_text(encoding="utf-8")) for file in options.files])
        text = WRITERS[options.kind](package)
    except (hal.Error, OSError) as error:
        print(error, file=sys.stderr)
        return 1
    options.out.write_text(text, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
