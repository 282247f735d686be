// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/support/raster_files.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <memory>
#include <stdexcept>

namespace kestrel::test {

namespace {

void require(bool done, const std::string& what) {
    if (!done) {
        throw std::runtime_error(what + ": " + CPLGetLastErrorMsg());
    }
}

struct Close {
    void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};

}  // namespace

void write_raster(const std::string& path, const RasterFile& raster) {
    GDALAllRegister();
    CPLSetConfigOption("GDAL_TIFF_INTERNAL_MASK", "YES");
    CPLStringList options;
    for (const std::string& option : raster.options) {
        options.AddString(option.c_str());
    }
    std::vector<double> cells = raster.cells;
    GDALDataType type = GDALGetDataTypeByName(raster.type.c_str());
    if (raster.type == "Int8" && type == GDT_Unknown) {  // before GDAL 3.7
        type = GDT_Byte;
        options.SetNameValue("PIXELTYPE", "SIGNEDBYTE");
        for (double& cell : cells) {
            cell = cell < 0 ? cell + 256 : cell;
        }
    }
    const data::Grid& grid = raster.grid;
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    const std::unique_ptr<GDALDataset, Close> dataset(
        driver->Create(path.c_str(), grid.columns, grid.rows, 1, type, options.List()));
    require(dataset != nullptr, "cannot create " + path);
    double transform[] = {grid.x0, grid.dx, 0, grid.y0, 0, grid.dy};
    require(dataset->SetGeoTransform(transform) == CE_None, "no position");
    if (!raster.reference.empty()) {
        OGRSpatialReference reference;
        require(reference.SetFromUserInput(raster.reference.c_str()) == OGRERR_NONE, "no system");
        require(dataset->SetSpatialRef(&reference) == CE_None, "no system");
    }
    GDALRasterBand* band = dataset->GetRasterBand(1);
    if (raster.nodata) {
        require(band->SetNoDataValue(*raster.nodata) == CE_None, "no nodata");
    }
    require(band->RasterIO(GF_Write, 0, 0, grid.columns, grid.rows, cells.data(), grid.columns, grid.rows, GDT_Float64,
                           0, 0, nullptr) == CE_None,
            "cannot write");
    if (!raster.hidden.empty()) {
        require(dataset->CreateMaskBand(GMF_PER_DATASET) == CE_None, "no mask");
        std::vector<std::uint8_t> mask;
        for (const std::uint8_t hidden : raster.hidden) {
            mask.push_back(hidden != 0 ? 0 : 255);
        }
        require(band->GetMaskBand()->RasterIO(GF_Write, 0, 0, grid.columns, grid.rows, mask.data(), grid.columns,
                                              grid.rows, GDT_Byte, 0, 0, nullptr) == CE_None,
                "cannot write the mask");
    }
}

}  // namespace kestrel::test
