# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""An installation holds what it should, where it should, and works from wherever it was put.

Usage: install_check.py CMAKE BUILD_FOLDER LIBRARY_FOLDER [--sanitized]

Python cannot load a library that is built with the sanitizers.
"""

import ctypes
import os
import subprocess
import sys
import tempfile
from pathlib import Path

cmake, build, library_folder = sys.argv[1:4]


def run(*command, **environment):
    result = subprocess.run(command, capture_output=True, text=True, env={**os.environ, **environment})
    if result.returncode != 0:
        sys.exit(f"{command} failed:\n{result.stdout}{result.stderr}")
    return result.stdout


with tempfile.TemporaryDirectory() as folder:
    prefix = Path(folder) / "somewhere"
    run(cmake, "--install", build, "--prefix", str(prefix))
    kestrel = prefix / library_folder / "kestrel"
    for path in (prefix / "bin/kestrel", kestrel / "libkestrel_ext.so", kestrel / "etc/isprops.xml",
                 kestrel / "etc/contact.ini", kestrel / "help/is_index.html"):
        if not path.is_file() or path.is_symlink():
            sys.exit(f"not installed as a regular file: {path}")

    # The command finds the store that came with it, and makes the user's own from it.
    home = Path(folder) / "home"
    home.mkdir()
    sets = run(str(prefix / "bin/kestrel"), "coefficients", "list", XDG_DATA_HOME=str(home))
    if "NLCD" not in sets:
        sys.exit(f"the installed command lists no sets that came with it: {sets}")
    own = home / "kestrel/etc/isprops.xml"
    if own.read_bytes() != (kestrel / "etc/isprops.xml").read_bytes():
        sys.exit(f"{own} is not the installed store")

    if "--sanitized" not in sys.argv:
        library = ctypes.CDLL(str(kestrel / "libkestrel_ext.so"))
        if not library.kestrel_create_object:
            sys.exit("the installed library exports no function to make objects by")
print("installed, and works")
