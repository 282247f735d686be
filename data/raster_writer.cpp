// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/raster_writer.h"

#include <cpl_error.h>
#include <gdal_priv.h>
#include <gdal_rat.h>

#include <array>

#include "base/errors.h"
#include "data/gdal_support.h"

namespace kestrel::data {

namespace {

void set_colours(GDALRasterBand& band, const std::vector<RasterClass>& classes) {
    GDALColorTable colours;
    for (const RasterClass& one : classes) {
        const GDALColorEntry entry{one.colour.red, one.colour.green, one.colour.blue, 255};
        colours.SetColorEntry(one.value, &entry);
    }
    if (band.SetColorTable(&colours) != CE_None) {
        throw gdal_error("Cannot set the colours of the raster");
    }
}

void set_names(GDALRasterBand& band, const std::vector<RasterClass>& classes) {
    GDALDefaultRasterAttributeTable table;
    table.CreateColumn("Value", GFT_Integer, GFU_MinMax);
    table.CreateColumn("ClassName", GFT_String, GFU_Name);
    table.SetRowCount(static_cast<int>(classes.size()));
    for (std::size_t i = 0; i < classes.size(); ++i) {
        table.SetValue(static_cast<int>(i), 0, static_cast<int>(classes[i].value));
        table.SetValue(static_cast<int>(i), 1, classes[i].name.c_str());
    }
    table.SetTableType(GRTT_THEMATIC);
    if (band.SetDefaultRAT(&table) != CE_None) {
        throw gdal_error("Cannot set the class names of the raster");
    }
}

}  // namespace

struct RasterWriter::State {
    std::string path;
    GDALDatasetUniquePtr dataset;
    int columns = 0;

    GDALRasterBand& band() const { return *dataset->GetRasterBand(1); }
};

RasterWriter::RasterWriter(const std::string& path, const RasterDefinition& definition)
    : m_state(std::make_unique<State>()) {
    start_gdal();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    if (driver == nullptr) {
        throw base::RuntimeError(base::kLibraryFailure, "The GDAL library cannot write GeoTIFF files");
    }
    std::array<const char*, 5> options{"TILED=YES", "COMPRESS=DEFLATE", "PREDICTOR=1", "BIGTIFF=IF_SAFER", nullptr};
    m_state->path = path;
    m_state->columns = definition.grid.columns;
    m_state->dataset.reset(driver->Create(path.c_str(), definition.grid.columns, definition.grid.rows, 1, GDT_Byte,
                                          const_cast<char**>(options.data())));
    if (!m_state->dataset) {
        throw gdal_error("Cannot create the raster '" + path + "'");
    }
    const Grid& grid = definition.grid;
    std::array<double, 6> transform{grid.x0, grid.dx, 0, grid.y0, 0, grid.dy};
    m_state->dataset->SetGeoTransform(transform.data());
    if (definition.reference.known()) {
        m_state->dataset->SetProjection(definition.reference.wkt().c_str());
    }
    if (definition.nodata) {
        m_state->band().SetNoDataValue(*definition.nodata);
    }
    if (!definition.classes.empty()) {
        set_colours(m_state->band(), definition.classes);
        set_names(m_state->band(), definition.classes);
    }
}

RasterWriter::~RasterWriter() = default;

void RasterWriter::write_rows(int first_row, int count, std::span<const std::uint8_t> cells) {
    if (cells.size() != static_cast<std::size_t>(m_state->columns) * static_cast<std::size_t>(count)) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 "Rows of a raster were given with too few or too many cells");
    }
    if (m_state->band().RasterIO(GF_Write, 0, first_row, m_state->columns, count,
                                 const_cast<std::uint8_t*>(cells.data()), m_state->columns, count, GDT_Byte, 0, 0,
                                 nullptr) != CE_None) {
        throw gdal_error("Cannot write to the raster '" + m_state->path + "'");
    }
}

void RasterWriter::close() {
    if (!m_state->dataset) {
        return;
    }
    CPLErrorReset();
    m_state->dataset->FlushCache(true);
    m_state->dataset.reset();
    if (CPLGetLastErrorType() >= CE_Failure) {
        throw gdal_error("Cannot write to the raster '" + m_state->path + "'");
    }
}

}  // namespace kestrel::data
