# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""What the checks share: the files of the project, and how a finding is told."""

import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SKIPPED_FOLDERS = {"build", "demo-output", "__pycache__"}


def _on_disk():
    for folder, folders, names in os.walk(ROOT):
        folders[:] = sorted(f for f in folders if f not in SKIPPED_FOLDERS and not f.startswith("."))
        for name in sorted(names):
            yield os.path.relpath(os.path.join(folder, name), ROOT)


def _tracked():
    """What git knows; None where there is no git, or no history."""
    try:
        listing = subprocess.run(["git", "-c", f"safe.directory={ROOT}", "ls-files", "-z"], cwd=ROOT, capture_output=True)
    except FileNotFoundError:
        return None
    return listing.stdout.decode().split("\0")[:-1] if listing.returncode == 0 else None


def files(*suffixes):
    """Paths below the root, as text: the tracked ones, or all in a tree that came without its history."""
    names = _tracked()
    if names is None:
        names = list(_on_disk())
    chosen = [name for name in names if name.endswith(suffixes) and (ROOT / name).is_file()]
    if not chosen:
        sys.exit(f"no files with {suffixes} below {ROOT}: this check looked at nothing")
    return chosen


def sources():
    return files(".cpp", ".h")


def text(name, root=ROOT):
    return (root / name).read_text(encoding="utf-8")


INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def includes(name, root=ROOT):
    """(line, header, whether in quotation marks) of every include."""
    content = text(name, root)
    for match in INCLUDE.finditer(content):
        yield content.count("\n", 0, match.start(2)) + 1, match.group(2), match.group(1) == '"'


def finish(findings):
    """Ends the check: prints what was found, fails when there is something."""
    for finding in findings:
        print(finding)
    sys.exit(f"{len(findings)} found" if findings else 0)
