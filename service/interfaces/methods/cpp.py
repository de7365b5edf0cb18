"""The tables of methods as C++."""

import re

NAMESPACE = "vendor::morlak::mlkconfigs::V1_0"
HEADERS = "vendor/morlak/mlkconfigs/1.0"
NOTE = "// Written by service/interfaces/methods from the interfaces' definitions.\n\n"


def literal(text):
    """A text as a C++ string."""
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def optional(number):
    return "{}" if number is None else str(number)


class Lists:
    """Constant arrays, declared before their first use; equal ones only once."""

    def __init__(self):
        self.names = {}
        self.lines = []

    def name(self, what, type_name, rows):
        """The name of an array with these rows; "{}" if there are none."""
        if not rows:
            return "{}"
        key = (type_name, tuple(rows))
        if key not in self.names:
            self.names[key] = f"k{what}{len(self.names)}"
            self.lines.append(f"constexpr {type_name} {self.names[key]}[] = {{{', '.join(rows)}}};")
        return self.names[key]

    def texts(self, texts):
        return self.name("Texts", "std::string_view", [literal(text) for text in texts])


def argument_row(lists, package, argument):
    limits = argument.range
    enumerators = [f"{{{literal(e.name)}, {e.value}}}" for e in package.enumerators(argument.type)]
    return (
        f"{{{literal(argument.name)}, {literal(argument.type)}, {literal(limits.text if limits else '')}, "
        f"{optional(limits and limits.low)}, {optional(limits and limits.high)}, {literal(argument.text)}, "
        f"{lists.name('Enumerators', 'Enumerator', enumerators)}}}"
    )


def description_row(lists, package, method):
    arguments = [argument_row(lists, package, argument) for argument in method.arguments]
    items = [f"{{{literal(section)}, {lists.texts(keys)}}}" for section, keys in method.items]
    return (
        f"    {{{method.code}, {literal(method.name)}, {literal(method.summary)},\n"
        f"     {literal(' '.join(method.details))},\n"
        f"     {lists.name('Arguments', 'ArgumentDescription', arguments)}, {literal(method.result_type)},\n"
        f"     {literal(method.result_text)}, {literal(method.no_answer)},\n"
        f"     {lists.name('Items', 'ItemDescription', items)}, {lists.texts(method.properties)}, "
        f"{lists.texts(method.files)}}},\n"
    )


def parameter(argument):
    """The argument of the client's method() for an argument of the interface."""
    if argument.range and argument.range.is_country:
        return "countryParameter()"
    return literal(argument.name)


def includes(package):
    return "".join(f"#include <{HEADERS}/{interface.name}.h>\n" for interface in package.interfaces)


def client(package):
    lists = Lists()
    tables = ""
    functions = ""
    for interface in package.interfaces:
        rows = "".join(description_row(lists, package, method) for method in interface.methods)
        tables += f"\nconstexpr MethodDescription k{interface.name}[] = {{\n{rows}}};\n"
        # IMlkTvConfigs: tvInterface()
        short = re.fullmatch("IMlk(\\w+)Configs", interface.name)[1].lower()
        functions += f"\nconst Interface& {short}Interface() {{\n    using I = ::{NAMESPACE}::{interface.name};\n"
        functions += f"    static const Interface interface = makeInterface<I>({literal(interface.name)}, "
        functions += f"{literal(short)},\n            {literal(' '.join(interface.paragraphs))}, {{\n"
        for method in interface.methods:
            words = "".join(f", {parameter(argument)}" for argument in method.arguments)
            functions += (
                f"            {{{literal(method.name)}, method(&I::{method.name}{words}), "
                f"&k{interface.name}[{method.code - 1}]}},\n"
            )
        functions += "    });\n    return interface;\n}\n"
    lines = "\n".join(lists.lines)
    return (
        f"{NOTE}{includes(package)}\n#include <string_view>\n\n"
        '#include "tools/mlkctl/CountryNames.h"\n#include "tools/mlkctl/Interface.h"\n'
        '#include "tools/mlkctl/MethodDescription.h"\n\n'
        f"namespace mlk::ctl {{\n\nnamespace {{\n\n{lines}\n{tables}\n}}  // namespace\n{functions}\n"
        "}  // namespace mlk::ctl\n"
    )


def tests(package):
    functions = ""
    for interface in package.interfaces:
        rows = "".join(
            f"            {{{method.code}, {literal(method.name)}, callerOf(&I::{method.name}), "
            f"anyhowCallerOf(&I::{method.name})}},\n"
            for method in interface.methods
        )
        functions += (
            f"template <>\nconst std::vector<MethodRow<{interface.name}>>& methodRows() {{\n"
            f"    using I = {interface.name};\n    static const std::vector<MethodRow<I>> rows = {{\n{rows}    }};\n"
            "    return rows;\n}\n\n"
        )
    return (
        f'{NOTE}#include "service/tests/InterfaceMethods.h"\n\n'
        f"namespace {NAMESPACE} {{\n\n{functions}}}  // namespace {NAMESPACE}\n"
    )
