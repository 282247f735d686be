// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/apps/cli/run_data.h"

#include <algorithm>

#include "base/files.h"
#include "data/raster_writer.h"
#include "data/shapefile_writer.h"

namespace kestrel::test {

using data::Field;
using data::FieldType;
using data::SpatialReference;

namespace {

const Field kId{.name = "ID", .type = FieldType::integer, .length = 9, .precision = 9};
const Field kName{.name = "NAME", .type = FieldType::text, .length = 20};
const Field kRate{.name = "RATE", .type = FieldType::real, .length = 12, .precision = 12, .scale = 3};
const Field kDensity{.name = "POP_DEN", .type = FieldType::real, .length = 12, .precision = 12, .scale = 2};
const Field kKind{.name = "KIND", .type = FieldType::text, .length = 10};

void write_land_cover(const std::string& path) {
    data::RasterWriter writer(
        path, {.grid = {kLeft, kTop, 30, -30, 10, 10}, .reference = SpatialReference::from("EPSG:5070"), .nodata = 0});
    std::vector<std::uint8_t> cells;
    for (int row = 0; row < 10; ++row) {
        for (int column = 0; column < 10; ++column) {
            cells.push_back(column < 5 ? 21 : 41);
        }
    }
    cells.back() = 0;
    writer.write_rows(0, 10, cells);
    writer.close();
}

}  // namespace

void write_squares(const std::string& path, const SquareLayer& layer) {
    data::ShapefileWriter writer(path, layer.fields, SpatialReference::from("EPSG:5070"));
    polygons::PolygonSet polygons;
    for (const SquareLayer::Row& row : layer.rows) {
        const double left = kLeft + 30 * row.left;
        const double right = kLeft + 30 * row.right;
        const double top = kTop - 30 * row.top;
        const double bottom = kTop - 30 * row.bottom;
        polygons.begin_feature();
        polygons.begin_polygon();
        polygons.begin_ring();
        for (const polygons::Point corner :
             {polygons::Point{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}}) {
            polygons.add(corner);
        }
        writer.insert(polygons, polygons.feature_count() - 1, row.values);
    }
    writer.close();
}

void write_plain_raster(const std::string& path, const std::string& definition, double cell) {
    data::RasterWriter writer(
        path,
        {.grid = {definition == "EPSG:4326" ? -80 : kLeft, definition == "EPSG:4326" ? 40 : kTop, cell, -cell, 10, 10},
         .reference = definition.empty() ? SpatialReference() : SpatialReference::from(definition)});
    writer.write_rows(0, 10, std::vector<std::uint8_t>(100, 21));
    writer.close();
}

void write_store(const std::string& path, const std::vector<std::string>& set_names) {
    std::string text = "<ISModelProperties><ISLCDefs>";
    for (const std::string& name : set_names) {
        text +=
            "<ISLCDef><LCType>" + name +
            "</LCType><LCClasses>"
            "<LCClass ID=\"21\"><LCName>Developed</LCName><LCHigh>35</LCHigh><LCMed>25</LCMed>"
            "<LCLow>12.5</LCLow></LCClass>"
            "<LCClass ID=\"24\"><LCName>City</LCName><LCHigh>90</LCHigh><LCMed>80</LCMed><LCLow>70</LCLow></LCClass>"
            "<LCClass ID=\"41\"><LCName>Forest</LCName><LCHigh>2</LCHigh><LCMed>1</LCMed><LCLow>0.5</LCLow></LCClass>"
            "</LCClasses></ISLCDef>";
    }
    base::write_file(path, text + "</ISLCDefs></ISModelProperties>");
}

RunData::RunData() {
    write_land_cover(folder / "lc.tif");
    write_squares(folder / "sheds.shp", {{kId, kName, kRate},
                                         {{0, 0, 5, 10, {std::int64_t{1}, std::string("West"), 0.5}},
                                          {5, 0, 10, 10, {std::int64_t{2}, std::string("East"), 1.5}}}});
    write_squares(
        folder / "blocks.shp",
        {{kDensity, kKind}, {{0, 0, 10, 5, {20.0, std::string("town")}}, {0, 5, 10, 10, {1.0, std::string("land")}}}});
    write_squares(folder / "mall.shp", {{kId}, {{0, 0, 2, 2, {std::int64_t{1}}}}});
    write_store(folder / "store.xml", {"Small"});
    base::create_folder(folder / "out");
}

std::vector<std::string> RunData::arguments() const {
    return {"run",
            "--land-cover",
            folder / "lc.tif",
            "--zones",
            folder / "sheds.shp",
            "--field",
            "NAME",
            "--store",
            folder / "store.xml",
            "--option",
            "medium",
            "--output",
            folder / "out/is.shp"};
}

std::vector<std::string> RunData::without(const std::string& option) const {
    std::vector<std::string> result = arguments();
    const auto found = std::find(result.begin(), result.end(), option);
    if (found != result.end()) {
        result.erase(found, found + 2);
    }
    return result;
}

std::vector<std::string> RunData::with(const std::string& option, const std::string& value) const {
    std::vector<std::string> result = without(option);
    result.insert(result.end(), {option, value});
    return result;
}

}  // namespace kestrel::test
