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

# The same for modules of the build machine. Those of READERS have sources of several targets.
HOST_TARGETS = {
    "libmlkconfigs_mlktree": "mlktree_lib",
    "mlktree": "mlktree",
}
READERS = "libmlkconfigs_readers"


def with_sources(modules):
    """The names of the modules that this tree compiles for a device."""
    return [name for name, (_, kind, properties) in modules.items()
            if kind.startswith("cc_") and "srcs" in properties and not is_of_host(modules, name)]


def is_of_host(modules, name):
    """Whether a module is one of the build machine alone."""
    return modules[name][1] in {"cc_binary_host", "cc_library_host_static"}


def of_host(modules):
    return [name for name in modules if is_of_host(modules, name)]


def programs(modules):
    return [name for name in with_sources(modules) if modules[name][1] in {"cc_binary", "cc_test"}]


def sources_of(modules, name):
    sources = []
    for source in bp.whole(modules, name)["srcs"]:
        own = [f"{modules[name][0]}/{source}"]
        sources += bp.files_of(modules, source) if source.startswith(":") else own
    return [source.removeprefix("./") for source in sources]


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


def host_sources_differ(modules, cmake):
    """Sources that a module of the build machine and its target do not share, or that no target has."""
    for name, target in HOST_TARGETS.items():
        folder, sources = cmake[target]
        # Generated sources are outside of the tree.
        written = [Path(source).name for source in sources if Path(source).is_absolute()]
        if bp.generated_names(modules, name) != written:
            yield f"{name}: generated_sources are not those of {target}"
        own = [f"{folder}/{source}" for source in sources if not Path(source).is_absolute()]
        if sorted(sources_of(modules, name)) != sorted(own):
            yield f"{name}: srcs are not those of {target}"
    for source in sources_of(modules, READERS):
        if not (tree.ROOT / source).is_file():
            yield f"{READERS}: there is no file {source}"


def below(modules, name):
    """The libraries of ours that a module needs, directly or indirectly."""
    libraries = {each for each in bp.whole(modules, name).get("static_libs", []) if each in modules}
    return libraries.union(*(below(modules, other) for other in libraries))


def host_sources_left_out(modules):
    """Sources whose headers the build machine's program includes, and that none of its modules compiles.

    The source of a header is one that includes it first.
    """
    program = "mlktree"
    compiled = {source for name in {program, *below(modules, program)} for source in sources_of(modules, name)}
    headers = set().union(*(included(source) for source in compiled))
    for header in sorted(header for header in headers if header.endswith(".h")):
        # One that no device builds for lack of a definition has only what its header says.
        for source in sorted((tree.ROOT / header).parent.glob(f"{Path(header).stem}*.cpp")):
            name = str(source.relative_to(tree.ROOT))
            if tree.includes(name)[:1] == [f'"{header}"'] and name not in compiled | NOT_ON_BUILD_MACHINES:
                yield f"{program}: {header} is included, and {name} is not compiled"


# The mount points and properties of a process, which a build machine does not have.
NOT_ON_BUILD_MACHINES = {"regional/RegionalData.cpp"}


def host_names_wrong(modules):
    """Libraries that a module of the build machine cannot have, or whose headers it includes unnamed."""
    for name in of_host(modules):
        for library in bp.whole(modules, name).get("static_libs", []):
            if not is_of_host(modules, library) and bp.whole(modules, library).get("host_supported") is not True:
                yield f"{name}: {library} has no variant for build machines"
        libraries = named(modules, name)
        for library in libraries & platform_modules.ONLY_ON_DEVICES:
            yield f"{name}: {library} has no variant for build machines"
        sources = set(sources_of(modules, name))
        headers = set().union(*(included(source) for source in sources))
        for file in sorted(sources | headers):
            for header in (header.strip('<>"') for header in tree.includes(file)):
                owner = owner_of({}, header)
                if owner and owner not in libraries:
                    yield f"{name}: {file} includes {header}, and {owner} is not named"
    for missing in below(modules, "mlktree") - named(modules, "mlktree"):
        yield f"mlktree: links no {missing}"


def findings(modules, cmake):
    """The findings that need no compiler."""
    return [*unknown_names(modules), *sources_differ(modules, cmake), *unnamed_libraries(modules),
            *libraries_left_out(modules), *host_sources_differ(modules, cmake), *host_sources_left_out(modules),
            *host_names_wrong(modules)]
