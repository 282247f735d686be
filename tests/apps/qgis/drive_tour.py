# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""The quick tour of the user guide, step by step on the demonstration data, with its pictures."""

import os
import subprocess
from pathlib import Path

import drive
from drive import check, check_equal, need
from qgis.core import QgsProject
from qgis.PyQt.QtCore import Qt, QTimer
from qgis.PyQt.QtTest import QTest
from qgis.PyQt.QtWidgets import (QApplication, QCheckBox, QComboBox, QLineEdit, QPlainTextEdit, QPushButton, QRadioButton,
                                 QToolButton)
from qgis.utils import iface

ROOT = Path(drive.__file__).resolve().parents[3]
# Pictures show a short path.
DEMO = Path("/tmp/demo") if os.environ.get("KESTREL_DRIVE_PICTURES") else drive.WORK / "demo"


def open_demonstration():
    subprocess.run([os.environ["KESTREL_DRIVE_COMMAND"], "demo", str(DEMO), "--size", "medium"], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["/usr/bin/python3", str(ROOT / "tools" / "make-demo-project"), str(DEMO)], check=True,
                   env=dict(os.environ, QT_QPA_PLATFORM="offscreen", LD_PRELOAD=""))
    check("the project opens", QgsProject.instance().read(str(DEMO / "demo.qgz")))
    iface.mapCanvas().zoomToFullExtent()
    drive.wait(1500)


def show_menu():
    def look():
        drive.screen("tour-menu")
        QApplication.activePopupWidget().close()

    QTimer.singleShot(400, look)
    drive.click(drive.toolbar().findChild(QToolButton, "KESTREL_EXT.clsMenuDef"))
    drive.wait(300)


def fill_density_dialog(seen):
    """Called from a timer, since the dialog is modal."""
    dialog = need("the density dialog opens", QApplication.activeModalWidget())
    seen.append(dialog.objectName())
    drive.choose(drive.child(dialog, "cboPDenTheme", QComboBox), "census_blocks")
    drive.choose(drive.child(dialog, "cboPDenFld", QComboBox), "POP_DEN")
    drive.type_into(drive.child(dialog, "txtHigh", QLineEdit), "1500")
    drive.type_into(drive.child(dialog, "txtLow", QLineEdit), "250")
    drive.picture(dialog, "tour-density")
    drive.click(drive.child(dialog, "cmdOK", QPushButton))


def add_scenario(form, number, layer, land):
    drive.click(drive.child(form, "cmdDSAdd", QPushButton))
    drive.wait(100)
    check("the scenario is applied", drive.child(form, f"chkDSApply({number})", QCheckBox).isChecked())
    drive.choose(drive.child(form, f"cboDSTheme({number})", QComboBox), layer)
    drive.choose(drive.child(form, f"cboDSToClass({number})", QComboBox), land)


def fill_form():
    form = drive.open_window("run", "frmISParams")
    drive.choose(drive.child(form, "cboAnalysisTheme", QComboBox), "watersheds")
    drive.choose(drive.child(form, "cboAnalysisUnit", QComboBox), "NAME")
    seen = []
    QTimer.singleShot(400, lambda: fill_density_dialog(seen))
    with drive.expecting("frmISPDensity"):
        drive.click(drive.child(form, "optPopDensity(3)", QRadioButton))
    drive.wait(300)
    check_equal("Calculate opens the density dialog", seen, ["frmISPDensity"])
    add_scenario(form, 0, "new_mall", "Developed High Intensity")
    add_scenario(form, 1, "subdivision", "Developed Low Intensity")
    form.activateWindow()  # the dialog was the active one
    drive.wait(200)
    name = drive.child(form, "txtOutputTheme", QLineEdit)
    drive.type_into(name, str(DEMO / "watersheds_is.shp"))
    QTest.keyClick(name, Qt.Key_Tab)
    drive.wait(100)
    check_equal("the layer's name follows", drive.child(form, "txtThemeName", QLineEdit).text(), "watersheds_is")
    drive.picture(form, "tour-form")
    return form


def run(form):
    seen = []

    def look():
        if not seen and drive.window("frmISProcessing") is not None:
            seen.append(True)
            drive.screen_now("tour-run")

    watch = QTimer()
    watch.timeout.connect(look)
    watch.start(20)
    drive.click(drive.child(form, "cmdISRun", QPushButton))
    watch.stop()
    drive.wait(500)
    check("the waiting window was seen", seen)
    check_equal("the layer on top", iface.layerTreeView().model().index(0, 0).data(), "watersheds_is")
    drive.click(drive.child(form, "cmdISQuit", QPushButton))
    drive.screen("tour-result")


def view_report():
    viewer = drive.open_window("parameters", "frmISTParams")
    check("the report is shown", "watersheds" in drive.child(viewer, "txtTParams", QPlainTextEdit).toPlainText())
    drive.picture(viewer, "tour-report")
    drive.click(drive.child(viewer, "cmdClose", QPushButton))


def body():
    open_demonstration()
    show_menu()
    form = fill_form()
    run(form)
    view_report()
    check_equal("what boxes are headed", [title for title, _ in drive.boxes], ["NODATA Cells!"])


drive.run(body)
