// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/qgis/desktop_renderer.h"

#include <qgsfillsymbol.h>
#include <qgsgraduatedsymbolrenderer.h>

namespace kestrel::qgis {

std::unique_ptr<QgsFeatureRenderer> graduated_renderer(const data::ClassBreaksRenderer& legend) {
    QgsRangeList ranges;
    double lower = 0;
    for (const auto& entry : legend.classes) {
        auto* symbol = new QgsFillSymbol;
        symbol->setColor(QColor(entry.fill.red, entry.fill.green, entry.fill.blue));
        // The first range that holds a value draws it, both ends included.
        ranges << QgsRendererRange(lower, entry.upper_break, symbol, QString::fromStdString(entry.label));
        lower = entry.upper_break;
    }
    return std::make_unique<QgsGraduatedSymbolRenderer>(QString::fromStdString(legend.field), ranges);
}

}  // namespace kestrel::qgis
