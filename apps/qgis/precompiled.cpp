// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
// For the headers of QGIS that its sources begin with; they need a source to be compiled for.
