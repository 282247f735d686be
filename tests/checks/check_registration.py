# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Every test on disk is named by the CMakeLists.txt of its folder, and its suites are seen there, so that none is forgotten."""

import os
import re

import tree

findings = []
for name in tree.files("_test.cpp"):
    listing = tree.ROOT / os.path.dirname(name) / "CMakeLists.txt"
    subject = os.path.basename(name)[: -len("_test.cpp")]
    named = rf"(?<![\w]){re.escape(subject)}(?:_test\.cpp)?(?![\w.])"
    if not listing.is_file() or not re.search(named, listing.read_text(encoding="utf-8")):
        findings.append(f"{name}: not named in {os.path.relpath(listing, tree.ROOT)}")
    # Suites become entries of ctest by what stands at the beginning of a line.
    for number, line in enumerate(tree.text(name).splitlines(), 1):
        if re.match(r"\s*TEST(_F|_P)?\b", line) and not re.match(r"TEST(_F|_P)?\(\w+,", line):
            findings.append(f"{name}:{number}: a test begins a line, with its suite on it")
tree.finish(findings)
