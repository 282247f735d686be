# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Brings Kestrel's algorithm to qgis_process, which loads no plugins but those in Python.

In the desktop this plugin has nothing to do: the provider is there with the Kestrel Tools.
"""

import ctypes
from pathlib import Path

# Links resolved: this folder may be linked into the places where QGIS looks for plugins.
LIBRARY = Path(__file__).resolve().parents[2] / "libkestrel_qgis.so"


class KestrelProcessing:
    def initProcessing(self):
        library = ctypes.CDLL(str(LIBRARY))
        library.kestrel_add_processing_provider.restype = ctypes.c_bool
        library.kestrel_add_processing_provider()

    def initGui(self):
        pass

    def unload(self):
        pass


def classFactory(_iface):
    return KestrelProcessing()
