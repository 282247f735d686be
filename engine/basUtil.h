// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "contracts/map.h"
#include "data/feature_class.h"
#include "data/field.h"
#include "data/shapefile_writer.h"

/// \file
/// Layer, shapefile and field routines of the engine.
namespace kestrel::basUtil {

/// The first layer of the map whose name is exactly `name`; groups are looked into one level deep, in place.
/// \return nothing when there is none.
std::shared_ptr<contracts::Layer> FindLayer(const std::string& name, const contracts::Map& map);

/// A field for a table; it accepts values and may be empty.
data::Field CreateFields(const std::string& name, const std::string& alias, data::FieldType type, int length,
                         int precision, int scale);

/// The name that a shapefile holds for a long field name: the first 8 bytes, "_", and a counter of the fields of
/// `table` that begin with the same 10 bytes and stand before the field itself.
/// \return an empty text for names of fewer than 11 bytes, which fit as they are.
std::string SetFieldName(const std::string& name, std::span<const data::Field> table);

/// The name under which a table of 10-byte names holds `name`: itself when it fits, else SetFieldName().
std::string stored_field_name(const std::string& name, std::span<const data::Field> table);

/// Copies the selected features of `source` into a new polygon shapefile in `working_folder`: their shapes, and their
/// values of the analysis field in the field "analyfld". A layer without a selection yields no features.
/// \param analysisFieldName a field of the source, or empty when no values are wanted.
/// \param name of the shapefile, without extension.
/// \return the new class, or nothing after a reported failure.
std::unique_ptr<data::FeatureClass> CreateShapefile(const std::string& analysisFieldName,
                                                    const contracts::FeatureLayer& source,
                                                    const std::string& working_folder,
                                                    const std::string& name = "tempAnalysis");

/// The feature copier: inserts features through a buffer that is flushed after every 100th and at the end.
/// \return how many were copied.
std::size_t copy_features(const data::PolygonFeatures& source, data::ShapefileWriter& target);

/// Fills the values of a new feature with the analysis value of feature `feature` of `source`.
std::vector<data::Value> AddFields(const data::PolygonFeatures& source, std::size_t feature);

/// The field "analyfld" for values of the given source field.
data::Field analysis_value_field(const data::Field& source);

/// A field of an intersection, and the input field that it comes from.
struct IntersectedField {
    data::Field field;
    bool from_overlay = false;
    int position = 0;
};

/// The fields of an intersection: those of the input, then those of the overlay; an overlay's field whose name the
/// input has too gets "_1" behind it.
std::vector<IntersectedField> intersected_fields(std::span<const data::Field> input,
                                                 std::span<const data::Field> overlay);

/// Intersects two polygon layers into the shapefile `name` in `working_folder`, with the fields of both. A field "Area"
/// of the result is rewritten with the area of each piece.
/// \return the new class, or nothing after a reported failure; "Table QI failed" is shown when an input is missing.
std::unique_ptr<data::FeatureClass> Intersect(const data::FeatureClass* input, const data::FeatureClass* overlay,
                                              const std::string& name, const std::string& working_folder);

}  // namespace kestrel::basUtil
