# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Dependencies run one way, and libraries stay behind the folder that wraps them."""

import os
import re

import tree

REPORTER = "host/error_report"
# What each folder may include beside itself and the platform. The forms of a folder may include the engine, too.
BELOW = {
    "platform": set(),
    "coefficients": set(),
    "parameters": {"coefficients"},
    "records": {"coefficients"},
    "engine": {"coefficients", "parameters", "records"},
    "host": {"coefficients", "parameters", "records", "engine"},
    "apps": {"coefficients", "parameters", "records", "engine", "host"},
}
WRAPPED = re.compile(r"^(gdal|ogr|cpl_|vrtdataset|geos|proj\.h|proj/|pugi|shapefil)")
QT_WIDGETS = re.compile(
    r"^(QtWidgets\b|QApplication$|QMainWindow$|QWidget$|QMenu|QAction$|Q\w*(Dialog|Box|Button|Edit|Label|View|Layout"
    r"|Table\w*|List\w*|Tree\w*|Bar|Frame|Splitter|Delegate|Browser)$)")
QGIS = re.compile(r"^qgs|^qgis")
BOXES = re.compile(r"\b(QMessageBox|QInputDialog|QFileDialog)\b")
# The one place behind the contract through which boxes are shown.
SHOWS_BOXES = "host/qt_interaction.cpp"

forms = tree.forms_sources()


def owner_of(path):
    """The folder that a file counts to; the error reporter counts as a folder of its own."""
    return REPORTER if os.path.splitext(path)[0] == REPORTER else path.split("/")[0]


def allowed(name, header):
    user, used = owner_of(name), owner_of(header)
    if used == user:
        # One application knows nothing of another, and what has no window nothing of windows.
        if user == "apps":
            return name.split("/")[1] == header.split("/")[1]
        return user == "host" or name in forms or header not in forms
    if used == "platform" or (used == REPORTER and user != "platform"):
        return True
    if user == REPORTER or used not in BELOW:
        return False
    if name in forms and used in {"coefficients", "parameters", "records", "engine"}:
        return True
    return used in BELOW[user] and (header not in forms or user in {"host", "apps"})


findings = []
for name in tree.sources():
    folder = name.split("/")[0]
    if folder not in BELOW:
        continue  # tests and benchmarks may use everything
    wraps = folder == "platform" and name.endswith(".cpp")
    shows = name in forms or name.startswith("apps/qgis/")
    for line, header, quoted in tree.includes(name):
        if WRAPPED.match(header) and not quoted and not wraps:
            findings.append(f"{name}:{line}: <{header}> belongs into a source of platform/ only")
        if QT_WIDGETS.match(header) and not shows:
            findings.append(f"{name}:{line}: <{header}> belongs into a _forms target only")
        if QGIS.match(header) and not name.startswith("apps/qgis/"):
            findings.append(f"{name}:{line}: <{header}> belongs into apps/qgis only")
        if quoted and not (tree.ROOT / header).is_file():
            findings.append(f"{name}:{line}: \"{header}\" is no path from the root")
        elif quoted and not allowed(name, header):
            findings.append(f"{name}:{line}: {folder}/ must not depend on \"{header}\"")
    if folder != "apps" and name != SHOWS_BOXES:
        for number, content in enumerate(tree.text(name).splitlines(), 1):
            if BOXES.search(content):
                findings.append(f"{name}:{number}: boxes and dialogs are shown through platform::interaction()")
tree.finish(findings)
