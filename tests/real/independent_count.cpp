// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/real/independent_count.h"

#include <cpl_minixml.h>
#include <gdal_alg.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace kestrel::test {

namespace {

using PreparedShape = std::unique_ptr<OGRPreparedGeometry, OGRPreparedGeometryUniquePtrDeleter>;

void check(bool done, const std::string& what) {
    if (!done) {
        throw std::runtime_error("the independent count cannot " + what);
    }
}

GDALDatasetUniquePtr open(const std::string& path, unsigned kind) {
    GDALAllRegister();
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), kind | GDAL_OF_READONLY));
    check(dataset != nullptr, "open " + path);
    return dataset;
}

/// Calls `use` with the ends of every edge of a polygon or multipolygon.
template <typename Use>
void for_each_edge(const OGRGeometry& shape, Use use) {
    const auto of_polygon = [&](const OGRPolygon& polygon) {
        for (const OGRLinearRing* ring : polygon) {
            for (int i = 0; i + 1 < ring->getNumPoints(); ++i) {
                use(ring->getX(i), ring->getY(i), ring->getX(i + 1), ring->getY(i + 1));
            }
        }
    };
    if (wkbFlatten(shape.getGeometryType()) == wkbPolygon) {
        of_polygon(*shape.toPolygon());
        return;
    }
    for (const OGRPolygon* polygon : *shape.toMultiPolygon()) {
        of_polygon(*polygon);
    }
}

double distance_to_edge(double x, double y, double x1, double y1, double x2, double y2) {
    const double length = std::hypot(x2 - x1, y2 - y1);
    if (length == 0) {
        return std::hypot(x - x1, y - y1);
    }
    const double along = std::clamp(((x - x1) * (x2 - x1) + (y - y1) * (y2 - y1)) / (length * length), 0.0, 1.0);
    return std::hypot(x - x1 - along * (x2 - x1), y - y1 - along * (y2 - y1));
}

/// The first and the last cell of a row or column whose centre lies between two coordinates, widened by one each.
std::pair<int, int> cells_between(double a, double b, double origin, double step, int count) {
    const double first = (a - origin) / step - 0.5;
    const double last = (b - origin) / step - 0.5;
    return {std::max(0, static_cast<int>(std::floor(std::min(first, last))) - 1),
            std::min(count - 1, static_cast<int>(std::ceil(std::max(first, last))) + 1)};
}

OGRPolygon rectangle(double x1, double y1, double x2, double y2) {
    OGRLinearRing ring;
    ring.addPoint(x1, y1);
    ring.addPoint(x2, y1);
    ring.addPoint(x2, y2);
    ring.addPoint(x1, y2);
    ring.closeRings();
    OGRPolygon polygon;
    polygon.addRing(&ring);
    return polygon;
}

std::string trimmed(const char* text) {
    const std::string all = text == nullptr ? "" : text;
    const std::size_t first = all.find_first_not_of(" \t\r\n");
    return first == std::string::npos ? "" : all.substr(first, all.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

LandCover read_land_cover(const std::string& path) {
    const GDALDatasetUniquePtr dataset = open(path, GDAL_OF_RASTER);
    LandCover result;
    result.columns = dataset->GetRasterXSize();
    result.rows = dataset->GetRasterYSize();
    check(dataset->GetGeoTransform(result.transform.data()) == CE_None, "place " + path);
    result.reference = *dataset->GetSpatialRef();
    result.reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const auto cells = static_cast<std::size_t>(result.columns) * static_cast<std::size_t>(result.rows);
    result.classes.resize(cells);
    result.nodata.resize(cells);
    GDALRasterBand* const band = dataset->GetRasterBand(1);
    const auto read = [&](GDALRasterBand& from, void* to, GDALDataType type) {
        check(from.RasterIO(GF_Read, 0, 0, result.columns, result.rows, to, result.columns, result.rows, type, 0, 0,
                            nullptr) == CE_None,
              "read " + path);
    };
    read(*band, result.classes.data(), GDT_Int32);
    read(*band->GetMaskBand(), result.nodata.data(), GDT_Byte);
    std::transform(result.nodata.begin(), result.nodata.end(), result.nodata.begin(),
                   [](std::uint8_t mask) { return static_cast<std::uint8_t>(mask == 0 ? 1 : 0); });
    return result;
}

Shapes read_shapes(const std::string& source, const std::string& field, const std::vector<std::int64_t>& selected,
                   const LandCover& land_cover) {
    const std::string mark = "|layername=";
    const std::size_t bar = source.find(mark);
    const GDALDatasetUniquePtr dataset = open(source.substr(0, bar), GDAL_OF_VECTOR);
    OGRLayer* const layer = bar == std::string::npos
                                ? dataset->GetLayer(0)
                                : dataset->GetLayerByName(source.substr(bar + mark.size()).c_str());
    check(layer != nullptr, "find the layer of " + source);
    OGRSpatialReference reference = *layer->GetSpatialRef();
    reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> projection(
        reference.IsSame(&land_cover.reference) != 0
            ? nullptr
            : OGRCreateCoordinateTransformation(&reference, &land_cover.reference));
    Shapes result;
    for (const OGRFeatureUniquePtr& feature : *layer) {
        if (!selected.empty() && std::find(selected.begin(), selected.end(), feature->GetFID()) == selected.end()) {
            continue;
        }
        OGRGeometryUniquePtr shape(feature->StealGeometry());
        check(shape != nullptr && shape->IsValid() != 0, "use an invalid polygon of " + source);
        check(projection == nullptr || shape->transform(projection.get()) == OGRERR_NONE, "project " + source);
        result.ids.push_back(feature->GetFID());
        result.shapes.push_back(std::move(shape));
        result.texts.emplace_back(field.empty() ? "" : feature->GetFieldAsString(field.c_str()));
        result.numbers.push_back(field.empty() ? 0 : feature->GetFieldAsDouble(field.c_str()));
    }
    return result;
}

std::vector<std::int32_t> burn(const Shapes& shapes, const LandCover& land_cover) {
    GDALAllRegister();
    GDALDriver* const memory = GetGDALDriverManager()->GetDriverByName("MEM");
    const GDALDatasetUniquePtr grid(memory->Create("", land_cover.columns, land_cover.rows, 1, GDT_Int32, nullptr));
    std::array<double, 6> transform = land_cover.transform;
    grid->SetGeoTransform(transform.data());
    grid->GetRasterBand(1)->Fill(-1);
    std::vector<OGRGeometryH> handles;
    std::vector<double> positions;
    for (const OGRGeometryUniquePtr& shape : shapes.shapes) {
        positions.push_back(static_cast<double>(handles.size()));
        handles.push_back(OGRGeometry::ToHandle(shape.get()));
    }
    const int band = 1;
    check(GDALRasterizeGeometries(GDALDataset::ToHandle(grid.get()), 1, &band, static_cast<int>(handles.size()),
                                  handles.data(), nullptr, nullptr, positions.data(), nullptr, nullptr,
                                  nullptr) == CE_None,
          "burn the polygons");
    std::vector<std::int32_t> owners(land_cover.cell_count());
    check(grid->GetRasterBand(1)->RasterIO(GF_Read, 0, 0, land_cover.columns, land_cover.rows, owners.data(),
                                           land_cover.columns, land_cover.rows, GDT_Int32, 0, 0, nullptr) == CE_None,
          "read what was burnt");
    return owners;
}

std::size_t centres_near_edges(const Shapes& shapes, const LandCover& land_cover, double distance) {
    const auto& t = land_cover.transform;
    std::size_t near = 0;
    for (const OGRGeometryUniquePtr& shape : shapes.shapes) {
        for_each_edge(*shape, [&](double x1, double y1, double x2, double y2) {
            const auto [first_row, last_row] = cells_between(y1, y2, t[3], t[5], land_cover.rows);
            const auto [first_column, last_column] = cells_between(x1, x2, t[0], t[1], land_cover.columns);
            for (int row = first_row; row <= last_row; ++row) {
                for (int column = first_column; column <= last_column; ++column) {
                    const double x = land_cover.x(column + 0.5);
                    const double y = land_cover.y(row + 0.5);
                    near += distance_to_edge(x, y, x1, y1, x2, y2) < distance ? 1U : 0U;
                }
            }
        });
    }
    return near;
}

std::vector<bool> touch_nodata(const Shapes& shapes, const LandCover& land_cover) {
    std::vector<OGRPolygon> squares;
    for (std::size_t cell = 0; cell < land_cover.cell_count(); ++cell) {
        if (land_cover.nodata[cell] != 0) {
            const auto column = static_cast<double>(cell % static_cast<std::size_t>(land_cover.columns));
            const auto row = static_cast<double>(cell / static_cast<std::size_t>(land_cover.columns));
            squares.push_back(
                rectangle(land_cover.x(column), land_cover.y(row), land_cover.x(column + 1), land_cover.y(row + 1)));
        }
    }
    std::vector<bool> result;
    for (const OGRGeometryUniquePtr& shape : shapes.shapes) {
        const PreparedShape prepared(OGRCreatePreparedGeometry(OGRGeometry::ToHandle(shape.get())));
        result.push_back(std::any_of(squares.begin(), squares.end(), [&](OGRPolygon& square) {
            return OGRPreparedGeometryIntersects(prepared.get(), OGRGeometry::ToHandle(&square)) != 0;
        }));
    }
    return result;
}

std::vector<bool> reach_beyond(const Shapes& shapes, const LandCover& land_cover) {
    OGRPolygon extent =
        rectangle(land_cover.x(0), land_cover.y(0), land_cover.x(land_cover.columns), land_cover.y(land_cover.rows));
    const PreparedShape prepared(OGRCreatePreparedGeometry(OGRGeometry::ToHandle(&extent)));
    std::vector<bool> result;
    for (const OGRGeometryUniquePtr& shape : shapes.shapes) {
        result.push_back(OGRPreparedGeometryContains(prepared.get(), OGRGeometry::ToHandle(shape.get())) == 0);
    }
    return result;
}

std::map<std::int32_t, std::array<double, 3>> read_coefficients(const std::string& store, const std::string& set) {
    const CPLXMLTreeCloser tree(CPLParseXMLFile(store.c_str()));
    CPLXMLNode* const sets = CPLGetXMLNode(tree.get(), "ISLCDefs");
    check(sets != nullptr, "read " + store);
    std::map<std::int32_t, std::array<double, 3>> result;
    for (const CPLXMLNode* one = sets->psChild; one != nullptr; one = one->psNext) {
        if (trimmed(CPLGetXMLValue(one, "LCType", "")) != set) {
            continue;
        }
        for (const CPLXMLNode* land = CPLGetXMLNode(const_cast<CPLXMLNode*>(one), "LCClasses")->psChild;
             land != nullptr; land = land->psNext) {
            const auto percent = [&](const char* name) { return CPLAtof(CPLGetXMLValue(land, name, "")); };
            result[std::atoi(CPLGetXMLValue(land, "ID", ""))] = {percent("LCHigh"), percent("LCMed"), percent("LCLow")};
        }
    }
    check(!result.empty(), "find the set " + set);
    return result;
}

}  // namespace kestrel::test
