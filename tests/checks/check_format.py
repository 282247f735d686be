# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""The layout of every source is what clang-format makes of it."""

import subprocess
import sys

import tree

result = subprocess.run(["clang-format", "--dry-run", "-Werror", *tree.sources()], cwd=tree.ROOT)
if result.returncode != 0:
    sys.exit("Run: git ls-files '*.cpp' '*.h' | xargs clang-format -i")
