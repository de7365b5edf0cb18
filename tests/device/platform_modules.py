"""The platform's modules: tests/device/platform/modules."""

import functools

import tree

RELEASES = {11, 12, 13, 14}

# Those without a variant for build machines. The libraries of interfaces have one.
ONLY_ON_DEVICES = {"libhidlmemory", "libmlk_tvpartitionpath"}


class Module:
    def __init__(self, line):
        self.name, releases, *rest = line.split()
        # Two lists: headers, which have a slash or a suffix, and modules.
        words = [word for word in rest if word != "-"]
        self.headers = [word for word in words if word.endswith(("/", ".h"))]
        self.passes_on = [word for word in words if word not in self.headers]
        self.is_platforms = releases != "product"
        first, last = map(int, releases.split("-")) if self.is_platforms else (min(RELEASES), max(RELEASES))
        self.releases = set(range(first, last + 1))


@functools.cache
def table():
    """Every module by its name."""
    lines = (line.split("#")[0].strip() for line in tree.read("tests/device/platform/modules").splitlines())
    modules = [Module(line) for line in lines if line]
    assert len({module.name for module in modules}) == len(modules)
    return {module.name: module for module in modules}


@functools.cache
def owner_of(header):
    """The module that has a header of this name; None for those of the compiler and the C library."""
    for module in table().values():
        if any(header == name or name.endswith("/") and header.startswith(name) for name in module.headers):
            return module.name
    return None
