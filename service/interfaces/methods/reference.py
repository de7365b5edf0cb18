"""The interfaces' definitions as a page to read."""

ORDER = ["IMlkProjectConfigs", "IMlkTvConfigs", "IMlkFrameworkConfigs"]
INTRODUCTION = """\
# Reference

Every method of the three interfaces of `vendor.morlak.mlkconfigs@1.0`, in the order of their transaction codes.

This page is written from `service/interfaces/mlkconfigs/1.0/*.hal`; a test compares the two. After a change there:

```console build
$ cmake --build build/default --target reference
```

Any method can be tried with [`mlkctl call`](../README.md): `mlkctl call IMlkProjectConfigs getHDMIEdidPath 0 EDID_2P0`.
"""


def code(text):
    return f"`{text}`"


def codes(texts):
    return ", ".join(code(text) for text in texts)


def limits_of(argument):
    return f"{argument.range.text}; " if argument.range else ""


def method_entry(method):
    arguments = ", ".join(argument.name for argument in method.arguments)
    lines = [f"#### {method.code} {code(f'{method.name}({arguments})')}", "", method.summary, ""]
    for paragraph in method.details:
        lines += [paragraph, ""]
    for argument in method.arguments:
        lines.append(f"- {code(argument.name)}, {code(argument.type)}: {limits_of(argument)}{argument.text}")
    lines.append(f"- answers {code(method.result_type)}: {method.result_text}")
    if method.no_answer:
        lines.append(f"- no answer if {method.no_answer}")
    for section, keys in method.items:
        lines.append(f"- item {code(section)} {codes(keys)}")
    if method.properties:
        lines.append(f"- property {codes(method.properties)}")
    if method.files:
        lines.append(f"- file {codes(method.files)}")
    return "\n".join(lines) + "\n"


def interface_section(interface):
    return "\n".join(
        [f"## {interface.name}\n", *(f"{paragraph}\n" for paragraph in interface.paragraphs),
         *(method_entry(method) for method in interface.methods)]
    )


def type_section(each):
    if each.kind == "enum":
        rows = ["| enumerator | value |", "|---|---|", *(f"| {code(m.name)} | {m.value} |" for m in each.members)]
    else:
        rows = ["| field | type | |", "|---|---|---|",
                *(f"| {code(m.name)} | {code(m.type)} | {m.text} |" for m in each.members)]
    return "\n".join([f"### {each.name}", "", each.text, "", *rows, ""])


def page(package):
    interfaces = sorted(package.interfaces, key=lambda interface: ORDER.index(interface.name))
    return "\n".join(
        [INTRODUCTION, *(interface_section(interface) for interface in interfaces),
         "## Types\n", *(type_section(each) for each in package.types)]
    )
