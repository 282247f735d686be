# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Every header compiles on its own.

A header that some source includes before everything else is proved by building that source, unless that is built with
precompiled headers; the others are compiled here. Usage: check_headers.py COMPILER BUILD_FOLDER
"""

import concurrent.futures
import json
import re
import subprocess
import sys
from pathlib import Path

import tree

compiler, build = sys.argv[1], Path(sys.argv[2])
commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
built = {str(Path(entry["file"]).resolve()) for entry in commands if "cmake_pch" not in entry["command"]}

proved = set()
for source in tree.files(".cpp"):
    if str((tree.ROOT / source).resolve()) in built:
        proved.update(header for _, header, _ in list(tree.includes(source))[:1])

# The folders of the libraries, as the whole project is compiled with them.
library_flags = sorted(set(re.findall(r"(?:-isystem |-D|-I)\S+", " ".join(e.get("command", "") for e in commands))))
flags = [word for flag in library_flags if not flag.startswith("-D") for word in flag.split(" ")]


def compile_alone(header):
    command = [compiler, "-x", "c++", "-std=c++20", "-fPIC", "-fsyntax-only", f"-I{tree.ROOT}", *flags, "-"]
    result = subprocess.run(command, input=f'#include "{header}"\n', capture_output=True, text=True)
    return "" if result.returncode == 0 else f"{header} does not compile on its own:\n{result.stderr}"


headers = [name for name in tree.files(".h") if name not in proved]
# What is not built here (a host's plugin, for one) may lack its libraries.
headers = [name for name in headers if not name.startswith("apps/qgis/")]
if not any("/qt" in flag.lower() for flag in flags):
    headers = [name for name in headers if not any(re.match(r"Q[A-Z]", used) for _, used, _ in tree.includes(name))]
with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
    findings = [finding for finding in pool.map(compile_alone, headers) if finding]
print(f"{len(headers)} headers compiled, {len(proved)} proved by their sources")
tree.finish(findings)
