// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>

#include "reporting/interaction.h"

/// \file
/// What a run says to the user: message boxes, and notices that are never boxes.
namespace kestrel::engine_texts {

using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;

inline MessageBox density_failed() {
    return {
        "Error calculting the Population Density:\r  1) Check that the Analysis Layer and the Population Density Layer overlap.\r  2) Check that the Analysis Layer and the Population Density Layer are in the same projection.",  // sic
        "Population Density Calculation Error"};
}

inline MessageBox analysis_field_missing() {
    return {"Error reading analysis field name"};
}

inline MessageBox table_missing() {
    return {"Table QI failed"};
}

inline MessageBox feature_class_missing() {
    return {"FeatureClass QI Failed"};
}

inline MessageBox nodata_cells() {
    return {
        "Some of the (selected) polygons in the Analysis Layer \roverlapped NODATA cells in the Land Cover Layer.  The \rarea calculations for these polygons excludes the area \rof the NODATA cells.  These polygons may be identified \rby a 'N' in the 'Complete' field of the newly created \rImpervious Surface theme.",
        "NODATA Cells!", Icon::information};
}

inline MessageBox raster_analysis_missing() {
    return {"Spatial Analyst extension is required.", "Error: Spatial Analyst Required"};
}

inline MessageBox area_calculation_failed() {
    return {
        "An error occurred while calculating land area and impervious surface area. \rCheck that the Analysis Layer and the Land Cover Layer overlap.",
        "Error: Area Calculations", Icon::critical};
}

inline MessageBox no_zone_has_cells(const std::string& analysis_layer, const std::string& land_cover_layer) {
    return {fmt::format("None of the selected features within {}\r intersect with the Land Cover layer {}",
                        analysis_layer, land_cover_layer),
            "Error: Area Calculation", Icon::critical};
}

inline MessageBox no_coefficients(const std::string& class_code) {
    return {
        fmt::format("No coefficients defined in the selected Coefficient Set for the land cover class {}!", class_code),
        "Invalid Coefficient", Icon::critical};
}

inline MessageBox folder_missing(const std::string& folder) {
    return {"\rFolder does not exist: " + folder};
}

inline MessageBox scenario_not_in_projection(const std::string& scenario_layer) {
    return {
        fmt::format(
            "The Analysis Layer and the Development Scenario ({}) are not in the same projection.\rWould you like to continue with the analysis without this scenario?",
            scenario_layer),
        "Projection", Icon::none, Buttons::ok_cancel};
}

inline MessageBox scenario_outside(const std::string& scenario_layer) {
    return {fmt::format("The Analysis Layer and the Development Scenario ({}) do not overlap.", scenario_layer),
            "No Overlay", Icon::information};
}

inline MessageBox scenario_failed() {
    return {"Error occurred while adjusting area calculations for selected 'Development Scenarios'.",
            "Error: Development Scenarios Adjustment"};
}

// Notices.

inline std::string repaired_polygons(std::size_t count, const std::string& layer) {
    return fmt::format("{} invalid {} in the layer \"{}\" {} repaired before use.", count,
                       count == 1 ? "polygon" : "polygons", layer, count == 1 ? "was" : "were");
}

inline std::string missing_system(const std::string& layer, bool layer_known, const std::string& other) {
    return layer_known
               ? fmt::format("\"{}\" names no coordinate system: that of \"{}\" is taken for it.", other, layer)
               : fmt::format("\"{}\" names no coordinate system: that of \"{}\" is taken for it.", layer, other);
}

inline std::string degrees(const std::string& layer) {
    return fmt::format(
        "The land cover \"{}\" is in degrees: its areas are square degrees times the factor of the units, and mean nothing. Project it first; the percentages are only roughly right.",
        layer);
}

inline std::string web_mercator(const std::string& layer) {
    return fmt::format(
        "The land cover \"{}\" is in Web Mercator, which enlarges areas away from the equator: the areas are too large, the percentages are hardly affected.",
        layer);
}

inline std::string units_contradict(const std::string& layer, const std::string& units,
                                    const std::string& system_name) {
    return fmt::format(
        "The units \"{}\" contradict the coordinate system of the land cover \"{}\" ({}): areas are computed with the given units.",
        units, layer, system_name);
}

inline std::string several_bands(const std::string& layer, int bands) {
    return fmt::format("The land cover \"{}\" has {} bands: the first one is used.", layer, bands);
}

inline std::string uncovered_cells(std::uint64_t cells, const std::string& density_layer) {
    return fmt::format("{} cells of the zones lie outside of the population density layer \"{}\" and count nowhere.",
                       cells, density_layer);
}

inline std::string renamed_output_field(const std::string& field, const std::string& stored) {
    return fmt::format("The analysis field \"{}\" is stored as \"{}\" in the output shapefile.", field, stored);
}

}  // namespace kestrel::engine_texts
