// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "parameters/basISModelUtil.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "base/conversions.h"
#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"
#include "reporting/error_report.h"

namespace kestrel::basISModelUtil {

using data::FieldType;

namespace {

constexpr const char* kModule = "basISModelUtil";

std::string with_extension(std::string_view name) {
    // Three letters without the point are enough. Intended; do not "fix".
    if (base::lower_case(name).ends_with("shp")) {
        return std::string(name);
    }
    return std::string(name) + (name.ends_with('.') ? "shp" : ".shp");
}

/// Whether a list holds the layer. One that cannot be opened is not: the reason goes to `left_out`.
bool listed(const contracts::Layer& layer, LayerKind kind, FieldMode mode, std::vector<std::string>& left_out) {
    if (kind == LayerKind::RasterLayer) {
        return dynamic_cast<const contracts::RasterLayer*>(&layer) != nullptr;
    }
    const auto* features = dynamic_cast<const contracts::FeatureLayer*>(&layer);
    try {
        return features != nullptr && GetFThemes(*features, mode) >= 0;
    } catch (const base::RuntimeError& error) {
        left_out.push_back(fmt::format("The layer '{}' is not listed, because its source cannot be opened: {}",
                                       layer.name(), error.description()));
        return false;
    }
}

}  // namespace

bool suits(FieldType type, FieldMode mode) {
    switch (mode) {
        case kNumericFields:
            return data::integral(type) || type == FieldType::single || type == FieldType::real;
        case kAnalysisFields:
            return data::integral(type) || type == FieldType::text;
        case kAllFields:
            break;
    }
    return true;
}

std::vector<std::shared_ptr<contracts::Layer>> layers_in_order(const contracts::Map& map) {
    std::vector<std::shared_ptr<contracts::Layer>> layers;
    for (const auto& layer : map.layers()) {
        layers.push_back(layer);
        if (const auto* group = dynamic_cast<const contracts::GroupLayer*>(layer.get())) {
            const auto members = group->members();
            layers.insert(layers.end(), members.begin(), members.end());
        }
    }
    return layers;
}

LayerList GetLayerIndex(LayerKind kind, const contracts::Map& map, FieldMode mode) try {
    LayerList list;
    int position = 0;
    for (const auto& layer : layers_in_order(map)) {
        if (listed(*layer, kind, mode, list.left_out)) {
            list.layers.push_back({layer->name(), position});
        }
        ++position;
    }
    return list;
} catch (...) {
    return reported<LayerList>({"GetLayerIndex", kModule});
}

int GetFThemes(const contracts::FeatureLayer& layer, FieldMode mode) {
    const auto fields = layer.fields();
    const auto first = std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return suits(f.type, mode); });
    return first != fields.end() && layer.polygonal() ? static_cast<int>(first - fields.begin()) : -1;
}

std::vector<std::string> field_names(const contracts::FeatureLayer& layer, FieldMode mode) {
    std::vector<std::string> names;
    for (const data::Field& field : layer.fields()) {
        if (suits(field.type, mode)) {
            names.push_back(field.name);
        }
    }
    return names;
}

std::string_view default_units(contracts::DistanceUnits units) {
    switch (units) {
        case contracts::kFeet:
            return "Feet";
        case contracts::kMeters:
            return "Meters";
        default:
            return {};
    }
}

OutputName completed_output_name(std::string_view typed, const std::string& temporary_folder,
                                 const std::string& extension_folder) {
    const std::string_view text = base::trimmed(typed);
    if (text.empty()) {
        return {};
    }
    OutputName name;
    name.path = with_extension(text);
    name.file_name = base::file_name_of(name.path);
    name.folder = name.path.substr(0, name.path.size() - name.file_name.size());
    if (name.folder.empty() || !base::folder_exists(name.folder)) {
        const std::string chosen = !temporary_folder.empty() && base::folder_exists(temporary_folder)
                                       ? temporary_folder
                                       : base::join_path(extension_folder, "output");
        name.chosen_folder = chosen;
        name.path = base::join_path(chosen, name.file_name);
        name.folder = name.path.substr(0, name.path.size() - name.file_name.size());
    }
    return name;
}

std::string SetThemeName(std::string_view path) try {
    std::string name = base::file_name_of(path);
    if (base::lower_case(name).ends_with(".shp")) {
        name.resize(name.size() - 4);
    }
    return name;
} catch (...) {
    return reported<std::string>({"SetThemeName", kModule});
}

std::vector<std::string> shared_names(const std::vector<std::string>& names, const contracts::Map& map) {
    const auto layers = layers_in_order(map);
    std::vector<std::string> sentences;
    for (const std::string& name : std::set<std::string>(names.begin(), names.end())) {
        if (std::count_if(layers.begin(), layers.end(), [&](const auto& layer) { return layer->name() == name; }) > 1) {
            sentences.push_back(
                fmt::format("Several layers of the map are named '{}'; the run takes the first of them.", name));
        }
    }
    return sentences;
}

void remove_other_layers_of(const std::string& path, contracts::Map& map) {
    bool first = true;
    for (const auto& layer : layers_in_order(map)) {
        const auto* features = dynamic_cast<const contracts::FeatureLayer*>(layer.get());
        if (features == nullptr || !base::same_file(features->source().file(), path)) {
            continue;
        }
        if (!first) {
            map.remove_layer(layer);
        }
        first = false;
    }
}

std::optional<std::int16_t> scenario_number(std::string_view typed, int rows) {
    if (!base::numeric(typed)) {
        return std::nullopt;
    }
    const double number = base::to_double(typed);
    const bool whole = number >= 1 && number <= rows && number == static_cast<int>(number);
    return whole ? std::optional(static_cast<std::int16_t>(number)) : std::nullopt;
}

}  // namespace kestrel::basISModelUtil
