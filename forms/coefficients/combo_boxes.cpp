// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/combo_boxes.h"

#include <QSignalBlocker>

#include "coefficients/basUtil.h"
#include "reporting/error_report.h"

namespace kestrel::basUtil {

void LoadLCTypeCombobox(QComboBox& combo, const clsISModelProperties& props) try {
    const QSignalBlocker silence(combo);
    combo.clear();
    for (const std::string& name : set_names(props)) {
        combo.addItem(QString::fromStdString(name));
    }
    combo.setCurrentIndex(-1);
} catch (...) {
    report_current({"LoadLCTypeCombobox", "basUtil"});
}

}  // namespace kestrel::basUtil

namespace kestrel::basISModelPropsUtil {

bool inComboBox(const QComboBox& combo, const QString& text) try {
    return combo.findText(text, Qt::MatchFixedString) >= 0;
} catch (...) {
    return reported<bool>({"inComboBox", "basISModelPropsUtil"});
}

}  // namespace kestrel::basISModelPropsUtil
