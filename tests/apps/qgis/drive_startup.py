# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""What QGIS runs before it loads plugins: one that opens a modal window would keep it from ever coming to a script."""

import drive

drive.watch()
