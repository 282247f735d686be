# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Runs the algorithm by qgis_process, and holds its output against that of the command.

    qgis_process_check.py BUILT_FOLDER COMMAND
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from run_desktop import SKIPPED, SYSTEM_PATH, preloaded, qgis_without_kestrel, real_data

BUILT, COMMAND = Path(sys.argv[1]), Path(sys.argv[2])


def run(*command, **environment):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True,
                          env=dict(os.environ, **environment))
    if done.returncode != 0:
        sys.exit(f"{command[0]} ends with {done.returncode}\n{done.stdout}\n{done.stderr}")
    return done.stdout


def need_the_built_library(folder):
    """Reads what the loader told in the folder."""
    told = "".join(log.read_text(errors="replace") for log in folder.glob("loader.*"))
    loaded = set(re.findall(r"calling init: (\S*/libkestrel\S*)", told))
    built = str(BUILT.resolve() / "libkestrel_qgis.so")
    if loaded != {built}:
        sys.exit(f"qgis_process has loaded {sorted(loaded)} instead of {built}. Uninstall the Kestrel that is installed "
                 "on this machine, or mend qgis_without_kestrel() of run_desktop.py, which is to hide it.")


def main():
    if shutil.which("qgis_process.bin") is None:
        print("SKIPPED: there is no qgis_process.bin here; tools/install-packages installs it")
        sys.exit(SKIPPED)
    if not real_data().is_dir():
        print(f"SKIPPED: there are no real test data in {real_data()}; KESTREL_REAL_DATA says where they are")
        sys.exit(SKIPPED)
    with tempfile.TemporaryDirectory(prefix="kestrel-process-") as name:
        folder = Path(name)
        data = folder / "data"
        shutil.copytree(real_data(), data)
        ini = folder / "profiles/default/QGIS/QGIS3.ini"
        ini.parent.mkdir(parents=True)
        ini.write_text("[PythonPlugins]\nkestrel_processing=true\n")
        for place in ("process", "command"):
            (folder / place).mkdir()
        told = json.loads(run(
            *preloaded(), "qgis_process.bin", "--json", "run", "kestrel:impervioussurface", "--",
            f"LAND_COVER={data}/nlcd2011.tif", f"ZONES={data}/sheds.shp", "FIELD=SHED_ID", "OPTION=0",
            f"STORE={data}/isprops.xml", "SET=NLCD legend", f"SCENARIOS={data}/town_plan.shp,24",
            f"OUTPUT={folder}/process/out.shp",
            PATH=SYSTEM_PATH, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8", QGIS_CUSTOM_CONFIG_PATH=str(folder),
            QGIS_PLUGINPATH=str(BUILT / "python"), XDG_DATA_HOME=str(folder / "share"),
            QGIS_PREFIX_PATH=str(qgis_without_kestrel(folder)), LD_DEBUG="files",
            LD_DEBUG_OUTPUT=str(folder / "loader")))
        need_the_built_library(folder)
        run(COMMAND, "run", "--land-cover", data / "nlcd2011.tif", "--zones", data / "sheds.shp", "--field", "SHED_ID",
            "--option", "high", "--store", data / "isprops.xml", "--set", "NLCD legend",
            "--scenario", f"{data}/town_plan.shp:24", "--output", folder / "command/out.shp", "--quiet")
        if told["results"]["OUTPUT"] != f"{folder}/process/out.shp":
            sys.exit(f"the output is told as {told['results']['OUTPUT']}")
        for ending in ("dbf", "shp"):
            by_process = (folder / "process" / f"out.{ending}").read_bytes()
            by_command = (folder / "command" / f"out.{ending}").read_bytes()
            if by_process[4:] != by_command[4:]:  # a dBASE file begins with its date
                sys.exit(f"out.{ending} differs from that of the command")
        print(f"{told['results']['ZONE_COUNT']} zones, as by the command")


main()
