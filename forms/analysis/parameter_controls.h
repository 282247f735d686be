// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <string>
#include <vector>

#include "coefficients/clsISModelProperties.h"
#include "parameters/basISModelUtil.h"

/// \file
/// The procedures of the parameter form that fill its lists. They tell nobody that a selection changed.
namespace kestrel::basISModelUtil {

/// Lists the layers of a kind, each with its position in layers_in_order() as item data, and selects the first.
/// \return a sentence for each layer that is left out because its source cannot be opened.
std::vector<std::string> CheckLayers(QComboBox& combo, LayerKind kind, const contracts::Map& map,
                                     FieldMode mode = kAnalysisFields);

/// Lists the fields of the mode's types and selects none. Without a layer the list is empty.
void LoadFldsCombobox(const contracts::FeatureLayer* layer, QComboBox& combo, FieldMode mode);

/// Lists the classes of the first set named `set_name`, each with its code as item data, and selects none.
void LoadDSToClassCombo(QComboBox& combo, const clsISModelProperties& store, const std::string& set_name);

/// Selects the units that stand for the map's distance units; none for units that are neither feet nor metres.
void SetDefaultLCUnits(QComboBox& combo, const contracts::Map& map);

/// The layer whose position is the item data of the selected item; nothing when there is none of that kind.
std::shared_ptr<contracts::FeatureLayer> selected_features(const QComboBox& combo, const contracts::Map& map);

/// Puts the items of `from` into `to`, with their data. What is selected in `to` stays selected when `from` has an item
/// of the same text and, with `same_data`, of the same data; else nothing is.
void copy_items(const QComboBox& from, QComboBox& to, bool same_data = false);

/// Position of the item with this text, compared exactly; -1 when there is none.
int find_exactly(const QComboBox& combo, const QString& text);

}  // namespace kestrel::basISModelUtil
