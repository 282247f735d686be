# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Sources that are compiled as one have no name in common, or one might call another one's helper.

Usage: check_joined.py BUILD_FOLDER
"""

import re
import sys
from pathlib import Path

import tree

# What stands at the beginning of a line in a namespace: a function, a type, a constant, a name taken from elsewhere.
DEFINITIONS = [
    re.compile(r"^(?!TEST|INSTANTIATE|namespace|using|return|struct|class|enum|template|typedef|extern|#|/)"
               r"[A-Za-z_][\w:<>,&* ]*?[ &*](\w+)\(", re.MULTILINE),
    re.compile(r"^(?:class|struct|enum(?: class)?) (\w+)(?! *;)\b", re.MULTILINE),
    re.compile(r"^using (\w+) =", re.MULTILINE),
    re.compile(r"^(?:inline )?(?:constexpr|const)\b[^=({;\n]*[\s&*](\w+)(?:\[\])? ?[={]", re.MULTILINE),
]


def names_in(name):
    text = tree.text(name)
    return {match.group(1) for definition in DEFINITIONS for match in definition.finditer(text)}


def with_headers(files):
    """The files, and all headers of the project that they see."""
    seen = set()
    waiting = list(files)
    while waiting:
        name = waiting.pop()
        if name not in seen:
            seen.add(name)
            waiting += [header for _, header, quoted in tree.includes(name) if quoted and (tree.ROOT / header).is_file()]
    return seen


findings = []
joined = list(Path(sys.argv[1]).glob("**/Unity/*.cxx"))
for unit in joined:
    sources = [str(Path(path).relative_to(tree.ROOT)) for path in
               re.findall(r'#include "([^"]+)"', unit.read_text(encoding="utf-8"))]
    # A header that only some of them include is seen by all.
    owners = {}
    for file in with_headers(sources):
        for name in names_in(file):
            owners.setdefault(name, set()).add(file)
    for name, files in sorted(owners.items()):
        # PrintTo() is overloaded by what it prints, and so are functions that headers declare; a name of a source's own,
        # which no header declares for it, belongs to nobody else.
        stems = {file.rsplit(".", 1)[0] for file in files}
        own = {file for file in files if file.endswith(".cpp") and file[:-4] + ".h" not in files}
        if name != "PrintTo" and own and len(stems) > 1:
            findings.append(f"{' and '.join(sorted(files))}: all define {name}, in sources that are compiled as one")
print(f"{len(joined)} groups of joined sources")
tree.finish(sorted(set(findings)))
