# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""The algorithm as users of Processing meet it: the toolbox's dialog, a batch, and a model."""

import os
import subprocess

import drive
import processing
from drive import check, check_equal, need
from qgis.core import (QgsApplication, QgsFeatureRequest, QgsProcessingModelAlgorithm,
                       QgsProcessingModelChildAlgorithm, QgsProcessingModelChildParameterSource,
                       QgsProcessingModelOutput, QgsProcessingModelParameter,
                       QgsProcessingParameterFeatureSource, QgsProcessingParameterRasterLayer, QgsProject,
                       QgsVectorLayer)
from qgis.PyQt.QtWidgets import QDialogButtonBox

ALGORITHM = "kestrel:impervioussurface"
DEMO = drive.WORK / "demo"


def demo(name):
    return str(DEMO / name)


def open_demonstration():
    subprocess.run([os.environ["KESTREL_DRIVE_COMMAND"], "demo", str(DEMO)], check=True, stdout=subprocess.DEVNULL)
    layer = QgsVectorLayer(demo("watersheds.shp"), "watersheds", "ogr")
    need("the watersheds open", layer.isValid())
    QgsProject.instance().addMapLayer(layer)


def rows_of(path):
    layer = QgsVectorLayer(str(path), "rows", "ogr")
    need(f"{path} opens", layer.isValid())
    return [feature.attributes() for feature in layer.getFeatures()]


def command_rows(option):
    output = drive.WORK / f"command_{option}.shp"
    done = subprocess.run([os.environ["KESTREL_DRIVE_COMMAND"], "run", "--land-cover", demo("land_cover.tif"), "--zones",
                           demo("watersheds.shp"), "--field", "NAME", "--store", demo("isprops.xml"), "--set",
                           "NLCD legend", "--option", option, "--scenario", demo("new_mall.shp") + ":24", "--quiet",
                           "--output", str(output)], capture_output=True, text=True)
    need(f"the command fails: {done.stderr}", done.returncode == 0)
    return rows_of(output)


def choices(option, output):
    return {"LAND_COVER": demo("land_cover.tif"), "ZONES": "watersheds", "FIELD": "NAME", "OPTION": option,
            "SET": "NLCD legend", "STORE": demo("isprops.xml"), "SCENARIOS": [demo("new_mall.shp"), "24"],
            "OUTPUT": str(output)}


def run_from_the_toolbox(expected):
    names = [a.displayName() for a in QgsApplication.processingRegistry().providerById("kestrel").algorithms()]
    check_equal("the toolbox lists it", names, ["Impervious surface analysis"])
    output = drive.WORK / "toolbox.shp"
    dialog = need("the dialog opens", processing.createAlgorithmDialog(ALGORITHM, choices(1, output)))
    dialog.show()
    drive.wait(300)
    drive.picture(dialog, "processing-dialog")
    run = dialog.buttonBox().button(QDialogButtonBox.Ok) or dialog.runButton()
    drive.click(run)
    check("the dialog's run ends", drive.wait_until(lambda: dialog.results(), 60))
    check_equal("figures from the toolbox", rows_of(output), expected)
    dialog.close()


def run_in_a_batch(expected):
    for option, name in ((0, "high"), (1, "medium"), (2, "low")):
        output = drive.WORK / f"batch_{name}.shp"
        processing.run(ALGORITHM, choices(option, output))
        if name == "medium":
            check_equal("figures from a batch", rows_of(output), expected)
        else:
            check(f"figures of {name} differ", rows_of(output) != expected)


def model():
    """A model with two inputs, in which the analysis is one step."""
    made = QgsProcessingModelAlgorithm("Impervious", "tests", "impervious")
    for parameter in (QgsProcessingParameterRasterLayer("land", "land"),
                      QgsProcessingParameterFeatureSource("sheds", "sheds")):
        made.addModelParameter(parameter, QgsProcessingModelParameter(parameter.name()))
    step = QgsProcessingModelChildAlgorithm(ALGORITHM)
    step.setChildId("analysis")
    source = QgsProcessingModelChildParameterSource
    step.addParameterSources("LAND_COVER", [source.fromModelParameter("land")])
    step.addParameterSources("ZONES", [source.fromModelParameter("sheds")])
    for name, value in choices(1, "").items():
        if name not in ("LAND_COVER", "ZONES", "OUTPUT"):
            step.addParameterSources(name, [source.fromStaticValue(value)])
    result = QgsProcessingModelOutput("surface", "surface")
    result.setChildId("analysis")
    result.setChildOutputName("OUTPUT")
    step.setModelOutputs({"surface": result})
    made.addChildAlgorithm(step)
    made.initAlgorithm()
    return made


def run_in_a_model(expected):
    made = model()
    check_equal("the model can be run", made.canExecute()[0], True)
    memory = QgsProject.instance().mapLayersByName("watersheds")[0].materialize(QgsFeatureRequest())
    memory.setName("in memory")
    QgsProject.instance().addMapLayer(memory)
    for number, sheds in enumerate(("watersheds", "in memory")):
        output = drive.WORK / f"model_{number}.shp"
        processing.run(made, {"land": demo("land_cover.tif"), "sheds": sheds,
                              made.destinationParameterDefinitions()[0].name(): str(output)})
        check_equal(f"figures from a model, {sheds}", rows_of(output), expected)


def body():
    open_demonstration()
    expected = command_rows("medium")
    run_from_the_toolbox(expected)
    run_in_a_batch(expected)
    run_in_a_model(expected)
    check_equal("nothing is said in boxes", drive.boxes, [])


drive.run(body)
