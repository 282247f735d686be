# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Starts QGIS with the plugin, opens what can be open, and leaves QGIS with that."""

import drive


def body():
    drive.check("the menu is there", len(drive.menu().actions()) == 7)
    for command, name in (("coefficients", "frmISModelProps"), ("about", "frmISAbout"), ("help", "frmHelpBrowser2")):
        drive.open_window(command, name)
    drive.action("kestrelShowExtensions").trigger()
    drive.wait(100)
    drive.check("nothing is said", drive.boxes == [], drive.boxes)


drive.run(body)
