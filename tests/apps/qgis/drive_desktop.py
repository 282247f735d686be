# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""A user's way through the desktop: menu, form, run, output, viewers, the other windows, and switching off."""

import os
import shutil
import subprocess
from pathlib import Path

import drive
from drive import check, check_equal, need, tell
from qgis.core import (QgsCoordinateReferenceSystem, QgsFeatureRequest, QgsProcessingFeatureSourceDefinition,
                       QgsProject, QgsRasterLayer, QgsVectorLayer)
from qgis.PyQt.QtCore import Qt, QTimer
from qgis.PyQt.QtTest import QTest
from qgis.PyQt.QtWidgets import (QApplication, QComboBox, QLineEdit, QListWidget, QPlainTextEdit,
                                 QProgressBar, QPushButton, QRadioButton, QToolButton)
from qgis.utils import iface

DATA = Path(os.environ["KESTREL_DRIVE_DATA"])
COMMAND = os.environ["KESTREL_DRIVE_COMMAND"]
CAPTIONS = ["Run Impervious Surface Analysis...", "View Kestrel Parameters for a Layer...",
            "View Kestrel Metadata for a Layer...", "Change Coefficients...", "Help...", "About Kestrel..."]
CLASSES = [("0.0-9.99", "< 10%", "#aaff00"), ("9.99-25.0", "10% - 25%", "#ffffbe"), ("25.0-100.0", "> 25%", "#ff0000")]
SELECTED = [1, 4, 9]


def load_data():
    """Copies, because opening a raster may write statistics beside it."""
    shutil.copytree(DATA, drive.WORK / "data")
    shutil.copy(DATA / "isprops.xml", drive.EXTENSION / "etc" / "isprops.xml")
    project = QgsProject.instance()
    project.setCrs(QgsCoordinateReferenceSystem("EPSG:26912"))
    layers = [QgsVectorLayer(str(drive.WORK / "data" / f"{name}.shp"), name, "ogr")
              for name in ("sheds", "town_plan", "blockgroups")]
    layers.append(QgsRasterLayer(str(drive.WORK / "data" / "nlcd2011.tif"), "nlcd2011"))
    for layer in layers:
        need(f"{layer.name()} opens", layer.isValid())
        project.addMapLayer(layer)
    drive.wait(300)


def layer_named(name):
    return need(f"the project has no layer {name}", next(iter(QgsProject.instance().mapLayersByName(name)), None))


def layer_names():
    return [node.name() for node in QgsProject.instance().layerTreeRoot().findLayers()]


def rows_of(layer):
    return [[feature[field.name()] for field in layer.fields()] for feature in layer.getFeatures()]


def classes_of(layer):
    renderer = layer.renderer()
    if renderer.type() != "graduatedSymbol":
        return renderer.type()
    return [(f"{r.lowerValue()}-{r.upperValue()}", r.label(), r.symbol().color().name()) for r in renderer.ranges()]


def command_rows(*arguments):
    """Rows of the command's output from the same data."""
    output = drive.WORK / "command" / "out.shp"
    output.parent.mkdir(exist_ok=True)
    data = drive.WORK / "data"
    done = subprocess.run([COMMAND, "run", "--land-cover", data / "nlcd2011.tif", "--zones", data / "sheds.shp",
                           "--field", "SHED_ID", "--store", data / "isprops.xml", "--set", "NLCD legend", "--output",
                           output, "--overwrite", "--quiet", *arguments], capture_output=True, text=True)
    need(f"the command fails: {done.stderr}", done.returncode == 0)
    return rows_of(QgsVectorLayer(str(output), "out", "ogr"))


def look_at_the_toolbar():
    toolbar = drive.toolbar()
    check("the toolbar is shown", toolbar.isVisible())
    check_equal("the toolbar's title", toolbar.windowTitle(), "Kestrel Tools")
    button = need("the toolbar has no button", toolbar.findChild(QToolButton, "KESTREL_EXT.clsMenuDef"))
    check_equal("the button's text", button.text(), "Impervious Surface Tools")
    check_equal("the button opens its menu at once", button.popupMode(), QToolButton.InstantPopup)
    actions = drive.menu().actions()
    check_equal("the menu", [a.text() if not a.isSeparator() else "-" for a in actions],
                CAPTIONS[:4] + ["-"] + CAPTIONS[4:])
    commands = [a for a in actions if not a.isSeparator()]
    check_equal("tooltips", [a.toolTip() for a in commands], CAPTIONS)
    check_equal("status tips", [a.statusTip() for a in commands], CAPTIONS)
    check("all commands are enabled", all(a.isEnabled() for a in commands))
    plugins = [a.menu() for a in iface.pluginMenu().actions() if a.menu() is not None]
    mine = [m for m in plugins if m.title().replace("&", "") == "Kestrel"]
    check_equal("the Plugins menu has an entry", len(mine), 1)
    check_equal("below the Plugins menu", [a.text() for a in mine[0].actions()], CAPTIONS + ["Extensions..."])


def choose_from_the_menu(caption):
    """With the mouse: a click on the button, a click in the menu that pops up."""
    button = drive.toolbar().findChild(QToolButton, "KESTREL_EXT.clsMenuDef")

    def pick():
        popup = QApplication.activePopupWidget()
        action = next(a for a in popup.actions() if a.text() == caption)
        QTest.mouseClick(popup, Qt.LeftButton, Qt.NoModifier, popup.actionGeometry(action).center())

    QTimer.singleShot(400, pick)
    drive.click(button)
    drive.wait(300)


def fill_form(form, output):
    # A window that showed a box, or another one, is no longer the active one.
    form.activateWindow()
    drive.wait(200)
    drive.choose(drive.child(form, "cboLCTheme", QComboBox), "nlcd2011")
    drive.choose(drive.child(form, "cboLCUnits", QComboBox), "Meters")
    drive.choose(drive.child(form, "cboAnalysisTheme", QComboBox), "sheds")
    drive.choose(drive.child(form, "cboAnalysisUnit", QComboBox), "SHED_ID")
    drive.choose(drive.child(form, "cboLCType", QComboBox), "NLCD legend")
    drive.click(drive.child(form, "optPopDensity(1)", QRadioButton))
    name = drive.child(form, "txtOutputTheme", QLineEdit)
    drive.type_into(name, str(output))
    QTest.keyClick(name, Qt.Key_Tab)
    drive.wait(100)


def run_form(form, output):
    fill_form(form, output)
    check_equal("the layer's name follows the file", drive.child(form, "txtThemeName", QLineEdit).text(), output.stem)
    drive.picture(form, f"form_{output.stem}")
    drive.click(drive.child(form, "cmdISRun", QPushButton))
    drive.wait(300)


def run_on_selected_features():
    sheds = layer_named("sheds")
    sheds.selectByIds(SELECTED)
    choose_from_the_menu(CAPTIONS[0])
    form = need("the form opens from the menu", drive.window("frmISParams"))
    form.activateWindow()
    drive.wait(200)
    check_equal("rasters in the form", drive.entries(drive.child(form, "cboLCTheme", QComboBox)), ["nlcd2011"])
    check_equal("polygons in the form", sorted(drive.entries(drive.child(form, "cboAnalysisTheme", QComboBox))),
                ["blockgroups", "sheds", "town_plan"])
    output = drive.WORK / "results" / "selected.shp"
    output.parent.mkdir()
    drive.boxes.clear()
    run_form(form, output)
    tell(f"boxes: {drive.boxes}")
    check_equal("the output is on top", layer_names()[0], "selected")
    layer = layer_named("selected")
    check_equal("its classes", classes_of(layer), CLASSES)
    expected = command_rows("--option", "medium", "--where", f"FID IN ({','.join(map(str, SELECTED))})")
    check("there are rows", len(expected) > 0)
    check_equal("its attribute table is that of the command", rows_of(layer), expected)
    for ending in ("shp", "shx", "dbf", "prj", "cpg", "prm", "met", "lyr", "qml"):
        path = output.with_suffix("." + ending)
        check(f"{path.name} is written", path.is_file() and path.stat().st_size > 0)
    check_equal("temp is empty", sorted(p.name for p in (drive.EXTENSION / "temp").iterdir()), [])
    messages = [item.text() for item in iface.messageBar().items()]
    check("the message bar tells", any('The layer "selected" shows the impervious surface of' in m for m in messages),
          messages)
    node = QgsProject.instance().layerTreeRoot().findLayer(layer.id())
    check("its legend is open", node.isExpanded())
    iface.mapCanvas().zoomToFullExtent()
    drive.window("frmISParams").hide()
    drive.screen("desktop_after_run")
    drive.window("frmISParams") or form.show()
    return form


def run_again_without_selection(form):
    layer_named("sheds").removeSelection()
    output = drive.WORK / "results" / "selected.shp"
    drive.boxes.clear()
    bars = []

    def look_at_status_bar():
        bar = iface.statusBarIface().findChild(QProgressBar, "kestrelProgress")
        if bar is not None:
            bars.append((bar.value(), iface.mapCanvas().isFrozen()))

    timer = QTimer()
    timer.timeout.connect(look_at_status_bar)
    timer.start(0)
    run_form(form, output)
    timer.stop()
    check("the status bar shows the progress", bars and bars[-1][0] > 50, bars)
    check("and the map is not drawn meanwhile", all(frozen for _, frozen in bars), bars)
    check_equal("one layer of that name", layer_names().count("selected"), 1)
    check_equal("all zones", rows_of(layer_named("selected")), command_rows("--option", "medium"))


def cancel_a_run(form):
    output = drive.WORK / "results" / "cancelled.shp"
    fill_form(form, output)
    pressed = []

    def press_cancel():
        waiting = drive.window("frmISProcessing")
        if waiting is not None and not pressed:
            pressed.append(waiting.isVisible())
            drive.click(drive.child(waiting, "cmdCancel", QPushButton))

    timer = QTimer()
    timer.timeout.connect(press_cancel)
    timer.start(1)
    iface.messageBar().clearWidgets()
    drive.boxes.clear()
    drive.click(drive.child(form, "cmdISRun", QPushButton))
    timer.stop()
    drive.wait(300)
    check("the waiting window was up, and its Cancel button pressed", pressed == [True], pressed)
    check_equal("a cancelled run shows no box", drive.boxes, [])
    check_equal("it leaves no file", sorted(p.name for p in output.parent.glob("cancelled*")), [])
    check("and no layer", "cancelled" not in layer_names())
    messages = [item.text() for item in iface.messageBar().items()]
    check_equal("the message bar tells", messages, ["The run was cancelled. Nothing has been changed."])
    check("nothing is left in the status bar",
          iface.statusBarIface().findChild(QProgressBar, "kestrelProgress") is None)
    check("the map is drawn again", not iface.mapCanvas().isFrozen())


def working_folder_that_cannot_be_made():
    commands = [a for a in drive.menu().actions() if not a.isSeparator()]
    folder = drive.EXTENSION / "output"
    shutil.rmtree(folder)
    folder.write_text("in the way")
    iface.messageBar().clearWidgets()
    check("without its working folders the extension is grey",
          drive.wait_until(lambda: not any(a.isEnabled() for a in commands), 5))
    drive.wait(2500)
    messages = [item.text() for item in iface.messageBar().items()]
    check("the reason is told, once", len(messages) == 1 and str(folder) in messages[0], messages)
    folder.unlink()
    check("it comes back by itself", drive.wait_until(lambda: all(a.isEnabled() for a in commands), 5))
    check("with the folder", folder.is_dir())


def view_records():
    for command, ending, title in (("parameters", "prm", "Kestrel Parameters for selected.shp"),
                                   ("metadata", "met", "Kestrel Metadata for selected.shp")):
        viewer = drive.open_window(command, "frmISTParams")
        check_equal(f"{ending}: title", viewer.windowTitle(), title)
        text = drive.child(viewer, "txtTParams", QPlainTextEdit)
        check_equal(f"{ending}: text", text.toPlainText(), (drive.WORK / "results" / f"selected.{ending}").read_text())
        # QGIS has uses of its own for these keys.
        QTest.keyClick(text, Qt.Key_F, Qt.ControlModifier)
        QTest.keyClicks(drive.child(viewer, "txtFind", QLineEdit), "LAND COVER")
        QTest.keyClick(text, Qt.Key_F3)
        check_equal(f"{ending}: words are found", text.textCursor().selectedText().lower(), "land cover")
        drive.picture(viewer, f"viewer_{ending}")
        viewer.close()
        drive.wait(100)


def open_the_other_windows():
    for command, name in (("coefficients", "frmISModelProps"), ("help", "frmHelpBrowser2"), ("about", "frmISAbout")):
        opened = drive.open_window(command, name)
        check(f"{name} opens", opened.isVisible())
        drive.picture(opened, name)
        opened.close()
        drive.wait(100)


def switch(product, on):
    drive.action("kestrelShowExtensions").trigger()
    drive.wait(200)
    extensions = need("the Extensions window opens", drive.window("kestrelExtensions"))
    rows = drive.child(extensions, "kestrelExtensionList", QListWidget)
    item = need(f"there is no {product}", next(iter(rows.findItems(product, Qt.MatchExactly)), None))
    if (item.checkState() == Qt.Checked) != on:
        drive.picture(extensions, "extensions")
        rows.setCurrentItem(item)
        rows.setFocus()
        QTest.keyClick(rows, Qt.Key_Space)
    check_equal(f"{product} is {'on' if on else 'off'}", item.checkState() == Qt.Checked, on)
    extensions.close()
    drive.wait(100)


def switch_off_and_on():
    commands = [a for a in drive.menu().actions() if not a.isSeparator()]
    switch("Kestrel Tools", False)
    check_equal("all six are grey", [a.isEnabled() for a in commands], [False] * 6)
    switch("Kestrel Tools", True)
    check_equal("all six are back", [a.isEnabled() for a in commands], [True] * 6)
    switch("Raster analysis", False)
    check_equal("none is grey", [a.isEnabled() for a in commands], [True] * 6)
    drive.boxes.clear()
    drive.action("about").trigger()
    drive.wait(300)
    check_equal("without raster analysis even the about box is refused", drive.boxes,
                [("Kestrel", "Spatial Analyst Extension required to run Impervious Surface Analysis.")])
    check("no about box", drive.window("frmISAbout") is None)
    switch("Raster analysis", True)
    shutil.rmtree(drive.EXTENSION / "output", ignore_errors=True)
    check("a deleted working folder comes back", drive.wait_until(lambda: (drive.EXTENSION / "output").is_dir(), 5))


def load_another_project(form):
    other = drive.WORK / "other.qgz"
    project = QgsProject.instance()
    rasters = drive.child(form, "cboLCTheme", QComboBox)
    polygons = drive.child(form, "cboAnalysisTheme", QComboBox)
    need("the form is open", drive.window("frmISParams"))
    project.write(str(drive.WORK / "first.qgz"))
    project.removeMapLayer(layer_named("nlcd2011"))
    check("a removed layer leaves the form", drive.wait_until(lambda: rasters.count() == 0, 5), drive.entries(rasters))
    project.removeMapLayer(layer_named("sheds"))
    project.write(str(other))
    iface.addProject(str(drive.WORK / "first.qgz"))
    check("another project fills the form anew", drive.wait_until(lambda: "sheds" in drive.entries(polygons), 5),
          drive.entries(polygons))
    check_equal("its raster, too", drive.entries(rasters), ["nlcd2011"])


def same_figures_from_every_source():
    """Other sources of the same polygons give the figures of the command."""
    project = QgsProject.instance()
    data = drive.WORK / "data"
    geopackage = QgsVectorLayer(f"{data}/sheds.gpkg|layername=sheds", "sheds_gpkg", "ogr")
    filtered = QgsVectorLayer(f'{data}/sheds.shp|subset="SHED_ID" < 10', "sheds_filtered", "ogr")
    memory = layer_named("sheds").materialize(QgsFeatureRequest())
    memory.setName("sheds_memory")
    for layer in (geopackage, filtered, memory):
        need(f"{layer.name()} opens", layer.isValid())
    geopackage.selectByIds([i + 1 for i in SELECTED])
    ids = sorted(f.id() for f in memory.getFeatures())
    memory.selectByIds([ids[i] for i in SELECTED])
    project.addMapLayers([geopackage, memory])
    project.addMapLayer(filtered, False)
    project.layerTreeRoot().addGroup("A group").addLayer(filtered)
    selected = command_rows("--option", "medium", "--where", f"FID IN ({','.join(map(str, SELECTED))})")
    below_ten = command_rows("--option", "medium", "--where", "SHED_ID < 10")
    form = drive.open_window("run", "frmISParams")
    for name, expected in (("sheds_gpkg", selected), ("sheds_memory", selected), ("sheds_filtered", below_ten)):
        fill_form(form, drive.WORK / "results" / f"from_{name}.shp")
        drive.choose(drive.child(form, "cboAnalysisTheme", QComboBox), name)
        drive.choose(drive.child(form, "cboAnalysisUnit", QComboBox), "SHED_ID")
        drive.click(drive.child(form, "cmdISRun", QPushButton))
        drive.wait(300)
        check_equal(f"figures from {name}", rows_of(layer_named(f"from_{name}")), expected)


def run_the_algorithm():
    """Processing's own way, with layers of the project."""
    import processing

    data = drive.WORK / "data"
    layer_named("sheds").selectByIds(SELECTED)
    results = processing.run("kestrel:impervioussurface", {
        "LAND_COVER": layer_named("nlcd2011"), "FIELD": "SHED_ID", "OPTION": 1, "SET": "NLCD legend",
        "ZONES": QgsProcessingFeatureSourceDefinition(layer_named("sheds").id(), selectedFeaturesOnly=True),
        "STORE": str(data / "isprops.xml"), "OUTPUT": str(drive.WORK / "results" / "processing.shp")})
    expected = command_rows("--option", "medium", "--where", f"FID IN ({','.join(map(str, SELECTED))})")
    check_equal("figures from the algorithm", rows_of(QgsVectorLayer(results["OUTPUT"], "out", "ogr")), expected)


def classes_stay_with_the_shapefile():
    project = QgsProject.instance()
    project.removeMapLayer(layer_named("selected"))
    added = iface.addVectorLayer(str(drive.WORK / "results" / "selected.shp"), "again", "ogr")
    check_equal("added again the shapefile shows its classes", classes_of(added), CLASSES)


def body():
    load_data()
    look_at_the_toolbar()
    form = run_on_selected_features()
    run_again_without_selection(form)
    cancel_a_run(form)
    view_records()
    open_the_other_windows()
    switch_off_and_on()
    working_folder_that_cannot_be_made()
    load_another_project(form)
    same_figures_from_every_source()
    run_the_algorithm()
    classes_stay_with_the_shapefile()


drive.run(body)
