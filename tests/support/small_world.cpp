// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/small_world.h"

#include <fmt/format.h>

#include <sstream>

#include "base/files.h"
#include "data/shapefile_writer.h"
#include "data/spatial_reference.h"
#include "tests/support/raster_files.h"

namespace kestrel::test {

using data::Field;
using data::FieldType;
using data::SpatialReference;
using polygons::Point;

namespace {

constexpr double kLeft = 300000;
constexpr double kBottom = 4100000;
constexpr double kNodata = 255;

Point corner(double x, double y, double cell) {
    return {kLeft + x * cell, kBottom + y * cell};
}

std::vector<Point> ring_of(const Box& box, double cell) {
    return {corner(box.left, box.bottom, cell), corner(box.left, box.top, cell), corner(box.right, box.top, cell),
            corner(box.right, box.bottom, cell), corner(box.left, box.bottom, cell)};
}

SpatialReference reference_of(const std::string& definition) {
    return definition.empty() ? SpatialReference() : SpatialReference::from(definition);
}

std::string json_ring(const Box& box, double cell) {
    std::string text;
    for (const Point p : ring_of(box, cell)) {
        text += fmt::format("{}[{}, {}]", text.empty() ? "" : ", ", p.x, p.y);
    }
    return text;
}

}  // namespace

Field integer_field(const std::string& name, int length) {
    return {.name = name, .type = FieldType::integer, .length = length, .precision = length};
}

Field big_integer_field(const std::string& name, int length) {
    return {.name = name, .type = FieldType::big_integer, .length = length, .precision = length};
}

Field text_field(const std::string& name, int length) {
    return {.name = name, .type = FieldType::text, .length = length};
}

Field real_field(const std::string& name) {
    return {.name = name, .type = FieldType::real, .length = 18, .precision = 18, .scale = 6};
}

polygons::PolygonSet polygons_of(const std::vector<Shape>& shapes, double cell) {
    polygons::PolygonSet set;
    for (const Shape& shape : shapes) {
        set.begin_feature();
        for (const Box& box : shape.boxes) {
            set.begin_polygon();
            set.begin_ring();
            for (const Point p : ring_of(box, cell)) {
                set.add(p);
            }
        }
    }
    return set;
}

bool LimitedProgress::report(double fraction, std::string_view text) {
    fractions.push_back(fraction);
    texts.emplace_back(text);
    return !cancelled();
}

SmallWorld::SmallWorld() : output_folder(output.path()) {
    base::create_folder(extension / "temp");
    application.register_extension(contracts::kRasterAnalysisExtension, raster_analysis);
}

void SmallWorld::land_cover(const std::string& cells, const std::string& reference) {
    RasterFile raster{.grid = {}, .cells = {}, .type = "Int32", .nodata = kNodata, .reference = reference};
    std::istringstream rows(cells);
    for (std::string row; std::getline(rows, row);) {
        std::istringstream codes(row);
        raster.grid.columns = 0;
        for (std::string code; codes >> code; ++raster.grid.columns) {
            raster.cells.push_back(code == "." ? kNodata : std::stod(code));
        }
        ++raster.grid.rows;
    }
    raster.grid.x0 = kLeft;
    raster.grid.y0 = kBottom + raster.grid.rows * cell;
    raster.grid.dx = cell;
    raster.grid.dy = -cell;
    write_raster(folder / "cover.tif", raster);
    application.map().append_layer(std::make_shared<hosting::HeadlessRasterLayer>("cover", folder / "cover.tif"));
}

void SmallWorld::layer(const std::string& name, const std::vector<Field>& fields, const std::vector<Shape>& shapes,
                       std::vector<std::int64_t> selected, const std::string& reference) {
    const std::string path = folder / (name + ".shp");
    data::ShapefileWriter writer(path, fields, reference_of(reference));
    const polygons::PolygonSet polygons = polygons_of(shapes, cell);
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        writer.insert(polygons, i, shapes[i].values);
    }
    writer.close();
    application.map().append_layer(
        std::make_shared<hosting::HeadlessFeatureLayer>(name, data::FeatureSource{.path = path}, std::move(selected)));
}

void SmallWorld::json_layer(const std::string& name, const std::vector<std::pair<Box, std::string>>& features,
                            std::vector<std::int64_t> selected) {
    std::string text =
        R"({"type": "FeatureCollection", "crs": {"type": "name", "properties": {"name": "urn:ogc:def:crs:EPSG::26912"}}, "features": [)";
    for (std::size_t i = 0; i < features.size(); ++i) {
        text += fmt::format(
            R"({}{{"type": "Feature", "id": {}, "properties": {}, "geometry": {{"type": "Polygon", "coordinates": [[{}]]}}}})",
            i == 0 ? "" : ", ", i, features[i].second, json_ring(features[i].first, cell));
    }
    const std::string path = folder / (name + ".geojson");
    base::write_file(path, text + "]}");
    application.map().append_layer(
        std::make_shared<hosting::HeadlessFeatureLayer>(name, data::FeatureSource{.path = path}, std::move(selected)));
}

void SmallWorld::write_parameters() const {
    const WorldParameters& p = parameters;
    std::vector<std::string> lines{"VIEW#",
                                   "LCTHEME#cover",
                                   "LCUNITS#" + p.units,
                                   "ANALYSISTHEME#" + p.analysis_layer,
                                   "ANALYSISUNIT#" + p.analysis_field,
                                   "POPDENSITY#" + p.option};
    if (p.option == "3") {
        lines.insert(lines.end(), {"POPDENSITYTHEME#" + p.density_layer, "POPDENSITYFLD#" + p.density_field,
                                   "POPDENSITYHIGH#" + p.density_high, "POPDENSITYLOW#" + p.density_low});
    }
    lines.insert(lines.end(), {"OUTTHEME#" + output_path(), "OUTTHEMENAME#Sheds IS"});
    for (const std::string& scenario : p.scenarios) {
        lines.push_back("DS#" + scenario);
    }
    for (const std::string& land_class : p.classes) {
        lines.push_back("CLASS#" + land_class);
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\r\n";
    }
    base::write_file(extension / "temp/model_params.txt", text);
}

void SmallWorld::run_in(contracts::Application& host, RunOptions options) {
    write_parameters();
    clsISExecuteModel model(std::move(options));
    model.ExecuteModel(&host, extension.path(), "model_params.txt", output_folder, "out.shp", "Sheds IS");
}

bool SmallWorld::run(RunOptions options) {
    run_in(application, std::move(options));
    return application.result().has_value() && application.result()->finished;
}

std::vector<std::string> SmallWorld::rows() const {
    const auto features = data::FeatureClass::open({.path = output_path()});
    const auto columns = features.read_columns(field_names());
    std::vector<std::string> rows(columns.front().size());
    for (const auto& column : columns) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] += (&column == &columns.front() ? "" : "|") + data::text_of(column[i]);
        }
    }
    return rows;
}

std::vector<std::string> SmallWorld::field_names() const {
    std::vector<std::string> names;
    const auto features = data::FeatureClass::open({.path = output_path()});
    for (const Field& field : features.fields()) {
        names.push_back(field.name);
    }
    return names;
}

std::vector<std::string> SmallWorld::layer_names() {
    std::vector<std::string> names;
    for (const auto& layer : application.map().layers()) {
        names.push_back(layer->name());
    }
    return names;
}

}  // namespace kestrel::test
