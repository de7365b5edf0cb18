"""stub.py OUT NAME LIBRARY...: a shared library that defines the symbols of others and nothing else.

A program that links it instead of them gets their symbols, but none of the libraries that they need
themselves. A device's linker does the same: it takes no library that is not named.
"""

import subprocess
import sys

# Of nm's types: code and data that other objects can bind to. Weak functions are inline ones, of
# which every object has its own.
CODE, DATA = set("Ti"), set("BDGRSV")


def symbols_of(library):
    dynamic = ["-D"] if ".so" in library else ["-g"]
    said = subprocess.run(["nm", *dynamic, "--defined-only", "-P", library], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=True).stdout
    for line in said.splitlines():
        name, *rest = line.split()
        if rest and not line.endswith(":"):
            yield name.split("@")[0], rest[0]


def main(out, name, *libraries):
    kinds = {symbol: kind for library in libraries for symbol, kind in symbols_of(library)}
    lines = [".text"]
    for symbol, kind in sorted(kinds.items()):
        if kind in CODE | DATA:
            lines += [f'.globl "{symbol}"', f'.type "{symbol}", @{"function" if kind in CODE else "object"}',
                      f'"{symbol}": .quad 0', f'.size "{symbol}", 8']
    subprocess.run(["clang", "-shared", "-nostdlib", f"-Wl,-soname,{name}.so", "-x", "assembler", "-", "-o", out],
                   input="\n".join(lines) + "\n", text=True, check=True)


if __name__ == "__main__":
    main(*sys.argv[1:])
