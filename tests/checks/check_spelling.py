# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Words are spelt right, but for the misspellings that the program's own texts are known by."""

import subprocess
import sys

import tree

names = [name for name in tree.files("") if not name.startswith(("tests/fixtures/", "etc/"))
         and name != "tests/checks/spelling_exceptions.txt"]
command = ["codespell", "--ignore-words", str(tree.ROOT / "tests/checks/spelling_exceptions.txt"),
           "--ignore-regex", r"\\[nrt]",  # an escape in a text is no part of the word that follows
           *names]
sys.exit(subprocess.run(command, cwd=tree.ROOT).returncode)
