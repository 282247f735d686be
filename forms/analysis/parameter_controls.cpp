// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/parameter_controls.h"

#include <QSignalBlocker>

#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/clsISLCDef.h"
#include "coefficients/clsLCClass.h"
#include "reporting/error_report.h"

namespace kestrel::basISModelUtil {

namespace {

constexpr const char* kModule = "basISModelUtil";

void add_item(QComboBox& combo, const QString& text, const QVariant& data = {}) {
    combo.addItem(text, data);
    // A list is as wide as its longest entry, but the closed box may be narrower.
    combo.setItemData(combo.count() - 1, text, Qt::ToolTipRole);
}

}  // namespace

std::vector<std::string> CheckLayers(QComboBox& combo, LayerKind kind, const contracts::Map& map, FieldMode mode) try {
    const QSignalBlocker silence(combo);
    combo.clear();
    LayerList list = GetLayerIndex(kind, map, mode);
    for (const ListedLayer& layer : list.layers) {
        add_item(combo, QString::fromStdString(layer.name), layer.position);
    }
    combo.setCurrentIndex(combo.count() > 0 ? 0 : -1);
    return std::move(list.left_out);
} catch (...) {
    return reported<std::vector<std::string>>({"CheckLayers", kModule});
}

void LoadFldsCombobox(const contracts::FeatureLayer* layer, QComboBox& combo, FieldMode mode) try {
    const QSignalBlocker silence(combo);
    combo.clear();
    if (layer != nullptr) {
        for (const std::string& name : field_names(*layer, mode)) {
            add_item(combo, QString::fromStdString(name));
        }
    }
    combo.setCurrentIndex(-1);
} catch (...) {
    report_current({"LoadFldsCombobox", kModule});
}

void LoadDSToClassCombo(QComboBox& combo, const clsISModelProperties& store, const std::string& set_name) try {
    const QSignalBlocker silence(combo);
    combo.clear();
    if (const auto set = basISModelPropsUtil::find_set(store, set_name)) {
        for (const auto& land_class : set->LCClasses) {
            add_item(combo, QString::fromStdString(land_class->LCName), land_class->ID);
        }
    }
    combo.setCurrentIndex(-1);
} catch (...) {
    report_current({"LoadDSToClassCombo", kModule});
}

void SetDefaultLCUnits(QComboBox& combo, const contracts::Map& map) try {
    const std::string_view units = default_units(map.distance_units());
    combo.setCurrentIndex(find_exactly(combo, QString::fromUtf8(units.data(), static_cast<int>(units.size()))));
} catch (...) {
    report_current({"SetDefaultLCUnits", kModule});
}

std::shared_ptr<contracts::FeatureLayer> selected_features(const QComboBox& combo, const contracts::Map& map) {
    if (combo.currentIndex() < 0) {
        return nullptr;
    }
    const auto layers = layers_in_order(map);
    const auto position = static_cast<std::size_t>(combo.currentData().toInt());
    return position < layers.size() ? std::dynamic_pointer_cast<contracts::FeatureLayer>(layers[position]) : nullptr;
}

void copy_items(const QComboBox& from, QComboBox& to, bool same_data) {
    const QSignalBlocker silence(to);
    const QString text = to.currentText();
    const QVariant data = to.currentData();
    const bool selected = to.currentIndex() >= 0;
    to.clear();
    int position = -1;
    for (int i = 0; i < from.count(); ++i) {
        add_item(to, from.itemText(i), from.itemData(i));
        const bool same = from.itemText(i) == text && (!same_data || from.itemData(i) == data);
        position = selected && same && position < 0 ? i : position;
    }
    to.setCurrentIndex(position);
}

int find_exactly(const QComboBox& combo, const QString& text) {
    return combo.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

}  // namespace kestrel::basISModelUtil
