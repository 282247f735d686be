# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""A modal window that no script reckons with fails the test, which tells what stood in it and does not wait for it.

    unexpected_windows_check.py BUILT_FOLDER COMMAND
"""

import contextlib
import io
import shutil
import sys
import tempfile
from pathlib import Path

import run_desktop

HERE = Path(__file__).resolve().parent
SAID = (
    "FAIL there is no unexpected window (QDialog ''): Startup\nsaid before any script",
    "FAIL there is no unexpected window (kestrel::CallStackWindow 'callStackWindow'): "
    "Kestrel - Unexpected Program Error\nRecord Call Stack Sequence - Bottom line is error line.",
    "cboSelLayers_Click frmISTParams Line : ",
    "after the call stack",
    "No name\nnobody knows me",
    "after the window without a name",
    "Stubborn\nnobody gets rid of me",
    "FAIL Stubborn cannot be closed",
)
# A plugin of QGIS that opens a window while it is loaded.
PLUGIN = """
from qgis.PyQt.QtWidgets import QDialog, QLabel, QVBoxLayout


class Startup:
    def initGui(self):
        window = QDialog()
        window.setWindowTitle("Startup")
        QVBoxLayout(window).addWidget(QLabel("said before any script"))
        window.exec_()

    def unload(self):
        pass


def classFactory(_iface):
    return Startup()
"""
METADATA = "[general]\nname=Startup\nqgisMinimumVersion=3.0\ndescription=x\nversion=1\nauthor=x\nemail=x@example.org\n"


def add_plugin(folder):
    plugin = folder / "profiles/profiles/default/python/plugins/startup_window"
    plugin.mkdir(parents=True)
    (plugin / "__init__.py").write_text(PLUGIN)
    (plugin / "metadata.txt").write_text(METADATA)
    settings = folder / "plugin.ini"
    settings.write_text(settings.read_text().replace("[PythonPlugins]\n", "[PythonPlugins]\nstartup_window=true\n"))


def problems_of(status, said):
    for text in SAID:
        if text not in said:
            yield f"not told: {text}"
    if "QGIS did not end" in said or "after the window that does not close" in said:
        yield "a window was waited for"
    if status != 1:
        yield f"it ends with {status}"


def main():
    if shutil.which("xvfb-run") is None or shutil.which("qgis") is None:
        print("SKIPPED: QGIS cannot be started here; tools/install-packages installs what is missing")
        sys.exit(run_desktop.SKIPPED)
    folder = Path(tempfile.mkdtemp(prefix="kestrel-windows-"))
    output = io.StringIO()
    try:
        run_desktop.prepare(folder, Path(sys.argv[1]))
        add_plugin(folder)
        with contextlib.redirect_stdout(output):
            status = run_desktop.start(folder, HERE / "drive_windows.py", 120, sys.argv[2])
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    problems = list(problems_of(status, output.getvalue()))
    print(output.getvalue(), *problems, sep="\n")
    sys.exit(1 if problems else 0)


main()
