#!/usr/bin/env python3
"""Writes the manual page mlktree.toml(5) from what `mlktree settings --format json` says.

    tools/settingspage.py MLKTREE > mlktree.toml.5
"""

import json
import subprocess
import sys

from manpage import roff


def page_of(program):
    def asked(*words):
        return subprocess.run([program, *words], check=True, capture_output=True, text=True).stdout

    settings = json.loads(asked("settings", "--format", "json"))
    version = asked("--version").split(",")[0].strip()
    page = [
        ".nr HY 0", '.\\" Made by tools/settingspage.py from mlktree settings.',
        f'.TH MLKTREE.TOML 5 "" "{roff(version)}" "File Formats"', ".ad l",
        ".SH NAME", "mlktree.toml \\- settings of mlktree for one tree",
        ".SH DESCRIPTION",
    ]
    for remark in settings["remarks"]:
        page += [".PP", roff(remark)]
    for table in settings["tables"]:
        page += [f'.SH "TABLE {roff(table["name"].upper())}"', roff(table["what"])]
        for key in table["keys"]:
            required = "Required. " if key["required"] else ""
            page += [".TP", f"\\fB{roff(key['name'])}\\fR = {roff(key['value'])}",
                     roff(required + key["what"])]
        page += [".PP", "Example:", ".PP", ".RS 4", ".EX",
                 *(roff(line) for line in table["example"].splitlines()), ".EE", ".RE"]
    page += ['.SH "SEE ALSO"', "\\fBmlktree\\fR(1)"]
    return "\n".join(page) + "\n"


if __name__ == "__main__":
    sys.stdout.write(page_of(sys.argv[1]))
