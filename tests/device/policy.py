"""The policy as a device has it: expanded, compiled, and asked who may do what."""

import re
import tempfile
from pathlib import Path

import tree

PLATFORM = tree.ROOT / "tests/device/platform"
POLICY = tree.ROOT / "sepolicy"
WORD = re.compile(r"[()]|[^\s()]+")


def expanded(extra=""):
    """The whole policy, macros expanded, with more rules at its end."""
    types = sorted(POLICY.glob("*.te"))
    with tempfile.NamedTemporaryFile("w", suffix=".te") as more:
        more.write(extra)
        more.flush()
        status, text = tree.run(
            "m4", PLATFORM / "macros.m4", PLATFORM / "head.conf", POLICY / "attributes", PLATFORM / "platform.te",
            *types, PLATFORM / "limits.te", more.name, PLATFORM / "tail.conf",
        )
    assert status == 0, text
    return text


def compiled(text):
    """The compiler's exit status and messages for a policy."""
    with tempfile.TemporaryDirectory() as folder:
        return compile_into(Path(folder) / "policy", text)


def compile_into(file, text):
    source = file.with_suffix(".conf")
    source.write_text(text, encoding="utf-8")
    return tree.run("checkpolicy", "-M", "-c", "30", "-o", file, source)


def parsed(text):
    """The expressions of a CIL text, as nested lists of words."""
    stack = [[]]
    for word in WORD.findall(text):
        if word == "(":
            stack.append([])
        elif word == ")":
            done = stack.pop()
            stack[-1].append(done)
        else:
            stack[-1].append(word)
    return stack[0]


class Policy:
    """A compiled policy and the rules that a kernel would find in it."""

    def __init__(self, text):
        with tempfile.TemporaryDirectory() as folder:
            binary, rules = Path(folder) / "policy", Path(folder) / "policy.cil"
            status, said = compile_into(binary, text)
            assert status == 0, said
            # From the binary, which has the result of the compiler.
            status, said = tree.run("checkpolicy", "-M", "-b", "-C", "-o", rules, binary)
            assert status == 0, said
            expressions = parsed(rules.read_text(encoding="utf-8"))
        self.types = {e[1] for e in expressions if e[0] == "type"}
        self.sets = {e[1]: e[2] for e in expressions if e[0] == "typeattributeset"}
        self.sets.update({e[1]: [] for e in expressions if e[0] == "typeattribute" and e[1] not in self.sets})
        self.rules = {}
        for _, source, target, (kind, permissions) in (e for e in expressions if e[0] == "allow"):
            for one in self.members(source):
                for other in {one} if target == "self" else self.members(target):
                    self.rules.setdefault((one, other, kind), set()).update(permissions)
        self.transitions = {tuple(e[1:]) for e in expressions if e[0] == "typetransition"}

    def members(self, expression):
        """The types that a type, an attribute or an expression of them stands for."""
        if isinstance(expression, str):
            return self.members(self.sets[expression]) if expression in self.sets else {expression}
        if not expression:
            return set()
        operands = [self.members(each) for each in expression[1:]]
        match expression[0]:
            case "and":
                return set.intersection(*operands)
            case "or":
                return set.union(*operands)
            case "not":
                return self.types - operands[0]
            case "all":
                return set(self.types)
        return set().union(*(self.members(each) for each in expression))

    def allowed(self, source, target, kind):
        """What one type may do to an object of another."""
        assert {source, target} <= self.types, f"no such types: {source}, {target}"
        return self.rules.get((source, target, kind), set())

    def who(self, target, kind, permission):
        """All types that may do this to an object of a type."""
        return {source for (source, other, k), permissions in self.rules.items()
                if (other, k) == (target, kind) and permission in permissions}
