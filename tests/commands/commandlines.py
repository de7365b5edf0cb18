"""Where the documents and the tools have commands, and whether what these name exists."""

import functools
import itertools
import re
import shlex
import subprocess

import examples
from scratch import BIN, PATIENCE, ROOT

DOCUMENTS = ["README.md", "CONTRIBUTING.md", "bench/README.md",
             *(str(path.relative_to(ROOT)) for folder in ("docs", "samples")
               for path in sorted((ROOT / folder).glob("*.md")))]
TOOLS = [name for name in ("mlkctl", "mlktree") if (BIN / name).exists()]
# Commands of a television or of the platform's build.
DEVICE = {"adb", "atest", "fastboot", "getprop", "logcat", "lshal", "m", "setprop"}
# These exist everywhere; with -Z they ask for what only a television has.
LABELS = {"ls", "ps"}
BUILD = {"./test", "./run bench", ".ci/run", "cmake", "cpack", "ctest"}
PLACEHOLDER = re.compile(r"[A-Z]+(\.\.\.)?|\[.*\]|.*\.\.\.")


def text_of(document):
    return (ROOT / document).read_text(encoding="utf-8")


@functools.cache
def blocks():
    return [block for document in DOCUMENTS for block in examples.blocks(document, text_of(document))]


@functools.cache
def output_of(*words):
    done = subprocess.run(words, cwd=ROOT, check=True, capture_output=True, text=True, timeout=PATIENCE)
    return done.stdout


def help_of(*words):
    program = BIN / words[0] if words[0] in TOOLS else words[0]
    return output_of(program, *words[1:], "--help")


def pages():
    """Every help text of every tool, by its command line."""
    for tool in TOOLS:
        yield (tool,), help_of(tool)
        for command in examples.commands_of(help_of(tool)):
            yield (tool, command), help_of(tool, command)


def words_of(command):
    return shlex.split(command, comments=True)


def simple_commands(command):
    """The words of each command of a line: `a b | c && d` is three."""
    lexer = shlex.shlex(command, posix=True, punctuation_chars="|&;()<>")
    lexer.whitespace_split = True
    found = []
    for is_operator, words in itertools.groupby(lexer, key=lambda word: set(word) <= set("|&;()")):
        words = [word for word in words if not re.match(r"\w+=", word)]
        if not is_operator and words:
            found.append(words)
    return found


def needs_device(words):
    return words[0] in DEVICE or (words[0] in LABELS and any(word.startswith("-") and "Z" in word
                                                           for word in words))


def check_options(case, words, where):
    """Checks the options, commands, interfaces and methods in the words against the help."""
    program, *rest = [word for word in words if not re.match(r"\w+=", word)]
    if program == "./run":
        own = list(itertools.takewhile(lambda word: word.startswith("-"), rest))
        expect_options(case, own, help_of("./run"), where)
        rest = rest[len(own):]
        if rest[:1] == ["bench"]:
            expect_options(case, rest[1:], help_of("./run", "bench"), where)
        elif rest[:1] and rest[0] in TOOLS:
            check_options(case, rest, where)
    elif program == "./test":
        mode = ("./test", "--mutants") if "--mutants" in rest else ("./test",)
        own = itertools.takewhile(lambda word: word != "--", rest)
        expect_options(case, own, help_of("./test") + help_of(*mode), where)
    elif program in TOOLS and rest and not PLACEHOLDER.fullmatch(rest[0]):
        if rest[0].startswith("-"):
            # An option of some of its commands.
            return expect_options(case, rest, "".join(text for _, text in pages()), where)
        case.assertIn(rest[0], examples.commands_of(help_of(program)), where)
        expect_options(case, rest[1:], help_of(program, rest[0]), where)
        if program == "mlkctl" and rest[0] == "call":
            names = [word for word in rest[1:] if re.match("IMlk", word)]
            method = rest[rest.index(names[0]) + 1:][:1] if names else []
            if method and not PLACEHOLDER.fullmatch(method[0]):
                case.assertIn(f"  {method[0]} ", help_of("mlkctl", "call", names[0]) + " ", where)
    elif program == "cmake":
        for option in rest:
            build = re.fullmatch(r"build/(\w+)|--preset=(\w+)", option)
            if build:
                case.assertIn(f'"name": "{build[1] or build[2]}"', text_of("CMakePresets.json"), where)
    return None


def expect_options(case, words, text, where):
    for word in itertools.takewhile(lambda word: word != "--", words):
        option = re.match(r"--?[A-Za-z][\w-]*", word)
        if option:
            case.assertRegex(text, rf"(?m)(^|[ \[]){re.escape(option[0])}\b", where)
