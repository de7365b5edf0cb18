"""The rules for the modules of the Android.bp files. Each rule returns a list of findings."""

import functools
import re
from pathlib import Path

import bp
import platform_modules
import tree

LIBRARIES = ("static_libs", "shared_libs", "header_libs")
PACKAGE = "vendor/morlak/mlkconfigs/"
INTERFACE = "vendor.morlak.mlkconfigs@1.0"

# Each module of our own sources, and CMake's target with the same sources.
TARGETS = {
    "libmlkconfigs_common": "common",
    "libmlkconfigs_platform": "platform",
    "libmlkconfigs_regional": "regional",
    "libmlkconfigs_projectconfigs": "projectconfigs",
    "libmlkconfigs_frameworkconfigs": "frameworkconfigs",
    "libmlkconfigs_tvconfigs": "tvconfigs",
    "libmlkconfigs_service": "service",
    "libmlkconfigs_frameworkconfigs_testing": "frameworkconfigs_testing",
    "libmlkconfigs_projectconfigs_testing": "projectconfigs_testing",
    "libmlkconfigs_regional_testing": "regional_testing",
    "libmlkconfigs_tvconfigs_testing": "tvconfigs_testing",
    "VtsHalMlkConfigsV1_0TargetTest": "VtsHalMlkConfigsV1_0TargetTest",
    "libmlkconfigs_mlkctl": "mlkctl_lib",
    "libmlkconfigs_tools": "tools_common",
    "vendor.morlak.mlconfigs@1.0-service": "mlkconfigs_service",
    "mlkctl": "mlkctl",
    "mlkconfigs_common_test": "common_test",
    "mlkconfigs_regional_test": "regional_test",
    "mlkconfigs_service_test": "service_test",
    "mlkconfigs_tools_test": "tools_common_test",
    "mlkctl_test": "mlkctl_test",
}


def with_sources(modules):
    """The names of the modules that this tree compiles."""
    return [name for name, (_, kind, properties) in modules.items() if kind.startswith("cc_") and "srcs" in properties]


def programs(modules):
    return [name for name in with_sources(modules) if modules[name][1] in {"cc_binary", "cc_test"}]


def sources_of(modules, name):
    return [f"{modules[name][0]}/{source}" for source in bp.whole(modules, name)["srcs"]]


def named(modules, name):
    """The libraries that a module names; a test has GoogleTest without naming it."""
    whole = bp.whole(modules, name)
    libraries = {library for kind in LIBRARIES for library in whole.get(kind, [])}
    return libraries | ({"libgtest", "libgtest_main"} if modules[name][1] == "cc_test" else set())


def passed_on(libraries):
    """These libraries, and those whose headers their headers include."""
    table = platform_modules.table()
    found = set()
    waiting = list(libraries)
    while waiting:
        library = waiting.pop()
        if library not in found:
            found.add(library)
            # A compiled interface includes headers of the runtime.
            waiting += ["libhidlbase"] if library == INTERFACE else getattr(table.get(library), "passes_on", [])
    return found


@functools.cache
def included(source):
    """Everything of the tree that a source includes, directly or indirectly."""
    seen, waiting = set(), [source]
    while waiting:
        for name in (name.strip('<>"') for name in tree.includes(waiting.pop())):
            if name not in seen and (tree.ROOT / name).is_file():
                seen.add(name)
                waiting.append(name)
    return seen


@functools.cache
def stands_alone(source):
    """Whether a test runs anywhere: no host around it, no file, no program, no fixture."""
    if not source.endswith("Test.cpp"):
        return False
    if re.search(r"MLK_\w+|_PROGRAM|getenv", tree.read(source)):
        return False
    return not any(name.startswith("host/") or "/tests/" in name for name in included(source))


def sources_differ(modules, cmake):
    """Sources that a module and its target do not share; `cmake` has (folder, sources) by target."""
    for name in with_sources(modules):
        folder, kind, properties = modules[name]
        where, sources = cmake[TARGETS[name]]
        # Generated sources are outside of the tree.
        written = [Path(source).name for source in sources if Path(source).is_absolute()]
        if bp.generated_names(modules, name) != written:
            yield f"{name}: generated_sources are not those of {TARGETS[name]}"
        sources = [source for source in sources if not Path(source).is_absolute()]
        # A test with a configuration of its own runs on televisions as it is.
        if kind == "cc_test" and "test_config" not in properties:
            sources = [source for source in sources if stands_alone(f"{folder}/{source}")]
        if (folder, sorted(properties["srcs"])) != (where, sorted(sources)):
            yield f"{name}: srcs are not those of {TARGETS[name]}"


def unknown_names(modules):
    """Libraries and defaults that neither this tree nor a device's has."""
    table = platform_modules.table()
    for name, (_, kind, properties) in modules.items():
        libraries = named(modules, name) if kind.startswith("cc_") else set()
        for library in libraries | set(properties.get("defaults", [])):
            releases = table[library].releases if library in table else set()
            if library not in modules and releases != platform_modules.RELEASES:
                yield f"{name}: no module {library} on each of Android 11 to 14"


def libraries_by_folder(modules):
    """The static library that is made of the sources of a folder."""
    return {source.rpartition("/")[0]: name for name in with_sources(modules)
            if modules[name][1] == "cc_library_static" for source in sources_of(modules, name)}


def owner_of(libraries, header):
    """The module that a header belongs to, by the name under which it is included."""
    if header.startswith(PACKAGE):
        return INTERFACE
    return libraries.get(header.rpartition("/")[0]) or platform_modules.owner_of(header)


def unnamed_libraries(modules):
    """Libraries whose headers a module's own files include, and that it does not name.

    Another library may pass the headers on today; what a module uses, it names itself.
    """
    by_folder = libraries_by_folder(modules)
    for name in with_sources(modules):
        own_folder = modules[name][0]
        sources = sources_of(modules, name)
        files = set(sources).union(
            *({each for each in included(source) if each.startswith(f"{own_folder}/")} for source in sources))
        libraries = named(modules, name) | {name}
        for file in sorted(files):
            for header in (header.strip('<>"') for header in tree.includes(file)):
                owner = owner_of(by_folder, header)
                if owner and owner not in libraries:
                    yield f"{name}: {file} includes {header}, and {owner} is not named"
                if header.startswith(tuple(f"{where}/" for where, _, _ in modules.values() if where != ".")) and \
                        (tree.ROOT / header).is_file() and "mlkconfigs_headers" not in libraries:
                    yield f"{name}: {file} includes {header} without mlkconfigs_headers"


def headers_without_library(modules, used):
    """Headers that a compiled source took from a library which its module does not reach.

    `used` has the headers of each module's objects, as (owner, header).
    """
    for name, headers in used.items():
        reached = passed_on(named(modules, name))
        yield from (f"{name}: {header} is {owner}'s" for owner, header in headers if owner not in reached)


def libraries_left_out(modules):
    """Libraries of ours that a program needs indirectly: a static library does not include its own libraries."""
    def below(name):
        libraries = {each for each in bp.whole(modules, name).get("static_libs", []) if each in modules}
        return libraries.union(*(below(other) for other in libraries))

    for name in programs(modules):
        for missing in below(name) - named(modules, name):
            yield f"{name}: links no {missing}"


def findings(modules, cmake):
    """The findings that need no compiler."""
    return [*unknown_names(modules), *sources_differ(modules, cmake), *unnamed_libraries(modules),
            *libraries_left_out(modules)]
