# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Opens modal windows that no script reckons with, the first of them by a real failure: it has to end as failed."""

import os
import subprocess

import drive
from qgis.core import QgsProject, QgsVectorLayer
from qgis.PyQt.QtCore import Qt
from qgis.PyQt.QtTest import QTest
from qgis.PyQt.QtWidgets import QComboBox, QDialog, QLabel, QVBoxLayout

DEMO = drive.WORK / "demo"
NAMES = ("watersheds", "new_mall")


def fail_to_read_a_record():
    """The file of the layer that is chosen next goes away behind the viewer's back."""
    subprocess.run([os.environ["KESTREL_DRIVE_COMMAND"], "demo", str(DEMO)], check=True, stdout=subprocess.DEVNULL)
    for name in NAMES:
        (DEMO / f"{name}.prm").write_text(name)
        QgsProject.instance().addMapLayer(QgsVectorLayer(str(DEMO / f"{name}.shp"), name, "ogr"))
    viewer = drive.open_window("parameters", "frmISTParams")
    layers = drive.child(viewer, "cboSelLayers", QComboBox)
    other = next(name for name in NAMES if name != layers.currentText())
    (DEMO / f"{other}.prm").unlink()
    # One key and no more: once its record is gone, the viewer may leave the layer out.
    layers.setFocus()
    QTest.keyClick(layers, Qt.Key_Down if layers.currentIndex() < layers.findText(other) else Qt.Key_Up)
    viewer.close()


def show_a_window(title, text, kind=QDialog):
    window = kind()
    window.setWindowTitle(title)
    layout = QVBoxLayout(window)
    layout.addWidget(QLabel(text))
    window.exec_()


class Stubborn(QDialog):
    def reject(self):
        pass


def body():
    fail_to_read_a_record()
    drive.tell("after the call stack")
    show_a_window("No name", "nobody knows me")
    drive.tell("after the window without a name")
    show_a_window("Stubborn", "nobody gets rid of me", Stubborn)
    drive.tell("after the window that does not close")


drive.run(body)
