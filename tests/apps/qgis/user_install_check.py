# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Installs for one user, into a profile that has plugins already, and starts QGIS with it.

    user_install_check.py BUILD_FOLDER
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import run_desktop

ROOT = Path(__file__).resolve().parents[3]
BEFORE = "[PythonPlugins]\nother=true\n\n[plugins]\nsearchPathsForPlugins=/somewhere/else\n\n[Other]\nlibkestrel_qgis=7\n"


def check(what, holds):
    print(f"{'ok  ' if holds else 'FAIL'} {what}")
    if not holds:
        sys.exit(1)


def main():
    folder = Path(tempfile.mkdtemp(prefix="kestrel-user-"))
    try:
        profile = folder / "profiles/profiles/default"
        ini = profile / "QGIS/QGIS3.ini"
        ini.parent.mkdir(parents=True)
        ini.write_text(BEFORE)
        install = [sys.executable, ROOT / "tools/install-for-user", "--build", sys.argv[1], "--prefix",
                   folder / "prefix", "--profile", profile]
        for _ in range(2):
            check("it installs", subprocess.run([str(part) for part in install]).returncode == 0)
        plugin = next((folder / "prefix").glob("lib*/**/kestrel"))
        lines = ini.read_text().splitlines()
        folders = ["|".join(["/somewhere/else", str(plugin)]), ", ".join(["/somewhere/else", str(plugin)])]
        check("the folders of other plugins stay, and QGIS below finds the new one among them",
              sum(f"searchPathsForPlugins={text}" in lines for text in folders) == 1
              and len(lines) == len(set(lines) - {""}) + 2)
        check("other settings stay", "other=true" in lines and "libkestrel_qgis=7" in lines)
        check("the Python plugin is there", (profile / "python/plugins/kestrel_processing/metadata.txt").is_file())
        if shutil.which("xvfb-run") is None or shutil.which("qgis") is None:
            print("SKIPPED: QGIS cannot be started here; tools/install-packages installs what is missing")
            sys.exit(run_desktop.SKIPPED)
        (folder / "plugin.ini").write_text("[qgis]\ncheckVersion=false\n")
        sys.exit(run_desktop.start(folder, ROOT / "tests/apps/qgis/drive_start.py", 60, ""))
    finally:
        shutil.rmtree(folder, ignore_errors=True)


main()
