# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Starts QGIS on a screen of its own, with a new profile and the built plugin, and lets it run a script.

    run_desktop.py BUILT_FOLDER SCRIPT [--data] [--command FILE] [--times N] [--keep]

BUILT_FOLDER holds the libraries with etc and help; a copy of it becomes the extension folder. The script finds its own
folder in KESTREL_DRIVE_FOLDER, the real test data in KESTREL_DRIVE_DATA and the command in KESTREL_DRIVE_COMMAND. It
ends QGIS by drive.run(). KESTREL_DRIVE_PICTURES may name a folder for its pictures. Ends with the status of QGIS, 1
when that did not end by itself, and 77 where there is no QGIS or no data. KESTREL_PRELOAD names the library of the
address sanitizer, for a build that has it.
"""

import argparse
import os
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SKIPPED = 77
# QGIS's Python is the system's, and it looks for its modules beside the first python3 of the path.
SYSTEM_PATH = "/usr/bin:/bin"
SETTINGS = """[plugins]
searchPathsForPlugins={plugin}
[Plugins]
libkestrel_qgis=true
[PythonPlugins]
processing=true
[app]
askToSaveMemoryLayers=false
projections\\unknownCrsBehavior=NoAction
[qgis]
checkVersion=false
"""


# Where QGIS looks, below its prefix, for plugins of all users of the machine.
LIBRARIES = Path("lib/qgis/plugins")
PYTHON_PLUGINS = Path("share/qgis/python/plugins")


def linked_copy(original, copy, opened):
    """A folder of links to what another one holds, but for Kestrel. Of the opened folders the copy has its own."""
    copy.mkdir()
    for entry in original.iterdir():
        below = [path.relative_to(entry.name) for path in opened if path.parts[:1] == (entry.name,)]
        if below:
            linked_copy(entry, copy / entry.name, below)
        elif not entry.name.startswith(("kestrel", "libkestrel")):
            (copy / entry.name).symlink_to(entry)


def installed_qgis():
    """The prefix of QGIS."""
    named = os.environ.get("QGIS_PREFIX_PATH")
    return Path(named or Path(shutil.which("qgis", path=SYSTEM_PATH)).resolve().parents[1])


def qgis_without_kestrel(folder):
    """The prefix of QGIS as if Kestrel were not installed on the machine.

    QGIS takes an installed plugin before one of that name in a folder that the settings name, so that it would be the
    installed one that is tested.
    """
    prefix = folder / "qgis"
    if not prefix.exists():
        installed = installed_qgis()
        linked_copy(installed, prefix, [LIBRARIES, PYTHON_PLUGINS])
        shutil.rmtree(prefix / LIBRARIES)  # QGIS passes over links
        shutil.copytree(installed / LIBRARIES, prefix / LIBRARIES, ignore=shutil.ignore_patterns("libkestrel*"))
    return prefix


def prepare(folder, built):
    plugin = folder / "kestrel"
    shutil.copytree(built, plugin, ignore=shutil.ignore_patterns("temp", "output"))
    (folder / "work").mkdir()
    (folder / "plugin.ini").write_text(SETTINGS.format(plugin=plugin))


def real_data():
    """Where the tests on real data have theirs."""
    return Path(os.environ.get("KESTREL_REAL_DATA") or HERE.parents[3] / "shared" / "data" / "zion")


def preloaded():
    """What a program needs in its environment to load libraries that were built with the sanitizers."""
    library = os.environ.get("KESTREL_PRELOAD")
    return [] if not library else ["env", f"LD_PRELOAD={library}", "ASAN_OPTIONS=detect_leaks=0"]


def start(folder, script, seconds, command):
    environment = dict(os.environ, LC_ALL="C.UTF-8", KESTREL_DRIVE_FOLDER=str(folder), PYTHONPATH=str(HERE),
                       PYTHONDONTWRITEBYTECODE="1", XDG_DATA_HOME=str(folder / "data"),
                       XDG_CONFIG_HOME=str(folder / "config"), KESTREL_DRIVE_DATA=str(real_data()),
                       KESTREL_DRIVE_COMMAND=str(command), QGIS_PREFIX_PATH=str(qgis_without_kestrel(folder)),
                       PATH=SYSTEM_PATH, PYQGIS_STARTUP=str(HERE / "drive_startup.py"))
    environment.pop("QT_QPA_PLATFORM", None)
    desktop_command = ["xvfb-run", "-a", "-w", "1", "-s", "-screen 0 1280x900x24", *preloaded(), "qgis", "--nologo",
                       "--noversioncheck",
                       "--profiles-path", str(folder / "profiles"),
                       "--globalsettingsfile", str(folder / "plugin.ini"),
                       "--code", str(script)]
    log = folder / "qgis.log"
    with log.open("w") as output:
        desktop = subprocess.Popen(desktop_command, env=environment, stdout=output, stderr=subprocess.STDOUT, cwd=folder,
                                   start_new_session=True)
        try:
            status = desktop.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            print(f"QGIS did not end within {seconds} seconds")
            os.killpg(desktop.pid, signal.SIGKILL)
            status = 1
    report = folder / "report.txt"
    print(report.read_text() if report.exists() else log.read_text())
    if status != 0:
        print("--- what QGIS said")
        print("\n".join(log.read_text().splitlines()[-60:]))
        print(f"--- QGIS ended with status {status}")
    elif not report.exists():
        print("the script told nothing")
        return 1
    return status


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("built", type=Path)
    arguments.add_argument("script", type=Path)
    arguments.add_argument("--data", action="store_true", help="the script needs the real test data")
    arguments.add_argument("--command", type=Path, help="the built command")
    arguments.add_argument("--times", type=int, default=1)
    arguments.add_argument("--seconds", type=int, default=180)
    arguments.add_argument("--keep", action="store_true", help="leave the folder behind")
    given = arguments.parse_args()
    for program in ("xvfb-run", "qgis"):
        if shutil.which(program) is None:
            print(f"SKIPPED: there is no {program} here; tools/install-packages installs it")
            sys.exit(SKIPPED)
    if given.data and not real_data().is_dir():
        print(f"SKIPPED: there are no real test data in {real_data()}; KESTREL_REAL_DATA says where they are")
        sys.exit(SKIPPED)
    folder = Path(tempfile.mkdtemp(prefix="kestrel-desktop-"))
    try:
        prepare(folder, given.built)
        for _ in range(given.times):
            (folder / "report.txt").unlink(missing_ok=True)
            status = start(folder, given.script.resolve(), given.seconds, given.command)
            if status != 0:
                sys.exit(status)
    finally:
        if given.keep:
            print(f"kept: {folder}")
        else:
            shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
