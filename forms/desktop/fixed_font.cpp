// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/fixed_font.h"

#include <QFontDatabase>
#include <QFontMetricsF>

namespace kestrel {

bool is_of_one_width(const QFont& font) {
    const QFontMetricsF metrics(font);
    const qreal narrow = metrics.horizontalAdvance('i');
    return qFuzzyCompare(narrow, metrics.horizontalAdvance('W')) &&
           qFuzzyCompare(narrow, metrics.horizontalAdvance(' '));
}

QFont fixed_font() {
    return fixed_font(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

QFont fixed_font(const QFont& of_desktop) {
    QFont font = of_desktop;
    if (!is_of_one_width(font)) {
        font.setFamily("monospace");
    }
    font.setStyleHint(QFont::Monospace);
    return font;
}

}  // namespace kestrel
