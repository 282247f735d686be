// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "contracts/map.h"
#include "data/field.h"

/// \file
/// What the parameter form lists and how it completes names; the procedures that fill its controls are in
/// forms/analysis/parameter_controls.h.
namespace kestrel::basISModelUtil {

/// Which layers of the map a list holds.
enum class LayerKind { RasterLayer, FeatureLayer };

/// Which fields of a layer a list holds.
enum FieldMode : int {
    kAllFields = 0,
    /// What a density can stand in: whole numbers of any size, singles and doubles.
    kNumericFields = 1,
    /// What can name zones: whole numbers of any size and text. Booleans are neither.
    kAnalysisFields = 2,
};

/// Whether a field of this type is one of a mode's.
bool suits(data::FieldType type, FieldMode mode);

struct ListedLayer {
    std::string name;
    /// In layers_in_order().
    int position = 0;

    friend bool operator==(const ListedLayer&, const ListedLayer&) = default;
};

struct LayerList {
    std::vector<ListedLayer> layers;
    /// A sentence for each layer whose source cannot be opened, and which is therefore not listed.
    std::vector<std::string> left_out;
};

/// The layers that a run can find by name, in the order in which it looks: those of the map from the top, the members
/// of a group right after the group.
std::vector<std::shared_ptr<contracts::Layer>> layers_in_order(const contracts::Map& map);

/// The layers of a kind, in the map's order. A feature layer counts only when GetFThemes() accepts it.
LayerList GetLayerIndex(LayerKind kind, const contracts::Map& map, FieldMode mode = kAnalysisFields);

/// Tests whether `layer` holds polygons and a field of the mode's types.
/// \return the position of the first such field, or -1. \throws RuntimeError when the source cannot be opened; it has
///         no handler, because a list leaves such a layer out.
int GetFThemes(const contracts::FeatureLayer& layer, FieldMode mode);

/// Names of the fields of the mode's types, in order.
std::vector<std::string> field_names(const contracts::FeatureLayer& layer, FieldMode mode);

/// The units that a map's distance units stand for: "Feet", "Meters", or empty for all others.
std::string_view default_units(contracts::DistanceUnits units);

/// An output name as it was typed, completed.
struct OutputName {
    /// The whole path; empty when nothing was typed.
    std::string path;
    /// With its trailing separator.
    std::string folder;
    std::string file_name;
    /// The folder that was chosen because none was typed, or none that exists; empty when the typed one stays.
    std::string chosen_folder;
};

/// Trims the text and appends ".shp" (or "shp" after a point) unless it ends in "shp", in any letter case; a folder
/// that is missing is replaced by the temporary folder, and where there is none by `output` in the extension folder.
/// \param temporary_folder empty when there is none.
OutputName completed_output_name(std::string_view typed, const std::string& temporary_folder,
                                 const std::string& extension_folder);

/// The output layer's name: the file name without ".shp", in any letter case.
std::string SetThemeName(std::string_view path);

/// A sentence for each of the names that several layers of the map bear: the run takes the first of them.
std::vector<std::string> shared_names(const std::vector<std::string>& names, const contracts::Map& map);

/// Removes from the map the layers that draw from the file `path`, all but the first.
void remove_other_layers_of(const std::string& path, contracts::Map& map);

/// The number of a scenario as it was typed, if it is one of `rows`.
std::optional<std::int16_t> scenario_number(std::string_view typed, int rows);

}  // namespace kestrel::basISModelUtil
