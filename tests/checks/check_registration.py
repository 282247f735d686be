# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Every test on disk is named by the CMakeLists.txt of its folder, so that none is forgotten."""

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
tree.finish(findings)
