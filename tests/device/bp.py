"""Reads Android.bp files."""

import re
import shutil
import tempfile
from pathlib import Path

import tree

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|\s+|(?P<token>"(?:\\.|[^"\\])*"|[\w.]+|[{}\[\]:,=+])', re.DOTALL)


def tokens_of(text):
    at = 0
    while at < len(text):
        match = TOKEN.match(text, at)
        if match is None:
            raise ValueError(f"not understood: {text[at:at + 40]!r}")
        at = match.end()
        if match["token"]:
            yield match["token"]


def value_of(tokens):
    token = tokens.pop(0)
    if token == "[":
        values = []
        while tokens[0] != "]":
            values.append(value_of(tokens))
            if tokens[0] == ",":
                tokens.pop(0)
        tokens.pop(0)
        return values
    if token == "{":
        return properties_of(tokens)
    if token.startswith('"'):
        return token[1:-1]
    return {"true": True, "false": False}.get(token, token)


def properties_of(tokens):
    properties = {}
    while tokens[0] != "}":
        name, colon = tokens.pop(0), tokens.pop(0)
        if colon != ":" or name in properties:
            raise ValueError(f"{name} stands twice or without a value")
        properties[name] = value_of(tokens)
        if tokens[0] == ",":
            tokens.pop(0)
    tokens.pop(0)
    return properties


def modules_of(text):
    """The modules of a file: a list of (type, properties)."""
    tokens = list(tokens_of(text))
    modules = []
    while tokens:
        kind, brace = tokens.pop(0), tokens.pop(0)
        if brace != "{":
            raise ValueError(f"{kind} is no module")
        modules.append((kind, properties_of(tokens)))
    return modules


def files():
    """Every Android.bp of the tree, by its name there."""
    _, listed = tree.run("git", "-C", tree.ROOT, "ls-files", "-co", "--exclude-standard", "*Android.bp")
    return sorted(listed.split())


def modules():
    """All modules by their names: (folder, type, properties), including those of their defaults."""
    found = {}
    for name in files():
        for kind, properties in modules_of(tree.read(name)):
            if properties["name"] in found:
                raise ValueError(f"{properties['name']} stands twice")
            found[properties["name"]] = (str(Path(name).parent), kind, properties)
    return found


def whole(modules_by_name, name):
    """A module's properties, with those of its defaults that are in this tree."""
    _, _, own = modules_by_name[name]
    merged = {}
    for default in (default for default in own.get("defaults", []) if default in modules_by_name):
        merged = merge(merged, whole(modules_by_name, default))
    return merge(merged, own)


def merge(first, second):
    merged = dict(first)
    for key, value in second.items():
        merged[key] = merged[key] + value if isinstance(merged.get(key), list) else value
    return merged


def files_of(modules_by_name, word):
    """The files that a word of a srcs list stands for, by their names in the tree."""
    folder, _, properties = modules_by_name[word[1:]]
    files = []
    for name in properties["srcs"]:
        found = sorted((tree.ROOT / folder).glob(name)) if "*" in name else []
        files += [str(path.relative_to(tree.ROOT)) for path in found] or [f"{folder}/{name}"]
    return files


def generated_names(modules_by_name, name):
    """The file names of a module's generated sources."""
    rules = modules_by_name[name][2].get("generated_sources", [])
    return [file for rule in rules for file in modules_by_name[rule][2]["out"]]


def script_of(modules_by_name, tool, where):
    """A script in a folder with its sources and nothing else, as a build makes it."""
    folder, _, properties = modules_by_name[tool]
    for source in properties["srcs"]:
        shutil.copy(tree.ROOT / folder / source, where)
    return Path(where) / properties["main"]


def generated(modules_by_name, name, out):
    """Writes a module's generated sources below a folder, as a build does. Returns their paths."""
    with tempfile.TemporaryDirectory() as tools:
        return generated_by(modules_by_name, name, out, tools)


def generated_by(modules_by_name, name, out, tools):
    written = []
    for rule in modules_by_name[name][2].get("generated_sources", []):
        _, _, properties = modules_by_name[rule]
        words = {"$(in)": [], "$(out)": [Path(out) / file for file in properties["out"]]}
        for source in properties["srcs"]:
            words["$(in)"] += [tree.ROOT / file for file in files_of(modules_by_name, source)]
        for tool in properties["tools"]:
            words[f"$(location {tool})"] = ["python3", "-B", script_of(modules_by_name, tool, tools)]
        parts = re.findall(r"\$\([^)]*\)|\S+", properties["cmd"])
        status, said = tree.run(*(word for part in parts for word in words.get(part, [part])))
        if status != 0:
            raise ValueError(f"{rule}: {said}")
        written += words["$(out)"]
    return written
