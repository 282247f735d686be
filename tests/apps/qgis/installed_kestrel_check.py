# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Tests of the desktop meet the built Kestrel where another one is installed for all users, or say that they do not.

    installed_kestrel_check.py BUILT_FOLDER
"""

import contextlib
import io
import os
import shutil
import sys
import tempfile
from pathlib import Path

import run_desktop

SCRIPT = Path(__file__).resolve().parent / "drive_start.py"


def install_for_all_users(built, folder):
    """A prefix of QGIS in which Kestrel is installed."""
    folder.mkdir()
    prefix = run_desktop.qgis_without_kestrel(folder)
    for library in built.glob("*.so"):
        shutil.copy(library, prefix / run_desktop.LIBRARIES)
    shutil.copytree(built / "python/kestrel_processing", prefix / run_desktop.PYTHON_PLUGINS / "kestrel_processing")
    return prefix


def start(folder):
    """What the test says and the status that it ends with."""
    said = io.StringIO()
    with contextlib.redirect_stdout(said):
        status = run_desktop.start(folder, SCRIPT, 90, "")
    return status, said.getvalue()


def check(what, holds, said):
    print(f"{'ok  ' if holds else 'FAIL'} {what}")
    if not holds:
        sys.exit(said)


def main():
    if shutil.which("xvfb-run") is None or shutil.which("qgis") is None:
        print("SKIPPED: QGIS cannot be started here; tools/install-packages installs what is missing")
        sys.exit(run_desktop.SKIPPED)
    built = Path(sys.argv[1])
    machine, folder = (Path(tempfile.mkdtemp(prefix=f"kestrel-{name}-")) for name in ("machine", "desktop"))
    try:
        prefix = install_for_all_users(built, machine / "installed")
        os.environ["QGIS_PREFIX_PATH"] = str(prefix)
        run_desktop.prepare(folder, built)
        status, said = start(folder)
        check("an installed Kestrel is hidden", status == 0, said)
        check("its Python plugin, too", not list((folder / "qgis").glob(f"{run_desktop.PYTHON_PLUGINS}/kestrel*")), "")
        run_desktop.qgis_without_kestrel = lambda _: prefix
        (folder / "report.txt").unlink()
        status, said = start(folder)
        installed = prefix / run_desktop.LIBRARIES / "libkestrel_ext.so"
        told = f"QGIS has loaded {installed}, which is not the Kestrel that was built"
        check("one that is not is refused, by its name", status == 1 and told in said, f"{said}\nnot told: {told}")
    finally:
        for made in (machine, folder):
            shutil.rmtree(made, ignore_errors=True)


main()
