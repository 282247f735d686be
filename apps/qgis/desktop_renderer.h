// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "data/class_breaks.h"

class QgsFeatureRenderer;

namespace kestrel::qgis {

/// The legend as QGIS draws it: plain fills with the default outline. A value on a break belongs to the class below.
std::unique_ptr<QgsFeatureRenderer> graduated_renderer(const data::ClassBreaksRenderer& legend);

}  // namespace kestrel::qgis
