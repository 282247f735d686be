// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/raster.h"

#include <cpl_string.h>
#include <fmt/format.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <span>
#include <string_view>

#include "base/conversions.h"
#include "base/errors.h"
#include "data/gdal_support.h"
#include "data/tile_lines.h"

namespace kestrel::data {

namespace {

struct CloseDataset {
    void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using DatasetPointer = std::unique_ptr<GDALDataset, CloseDataset>;

Grid grid_of(GDALDataset& dataset, const std::string& source) {
    std::array<double, 6> transform{};
    if (dataset.GetGeoTransform(transform.data()) != CE_None) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format(
                "The raster \"{}\" has no position in a map: give it one, for example with gdal_translate -a_ullr",
                source));
    }
    if (transform[2] != 0 || transform[4] != 0 || !(transform[1] > 0) || transform[5] == 0) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format("The raster \"{}\" is rotated or mirrored: make it north up first, for example with gdalwarp",
                        source));
    }
    return {.x0 = transform[0],
            .y0 = transform[3],
            .dx = transform[1],
            .dy = transform[5],
            .columns = dataset.GetRasterXSize(),
            .rows = dataset.GetRasterYSize()};
}

SpatialReference reference_of(GDALDataset& dataset) {
    const OGRSpatialReference* reference = dataset.GetSpatialRef();
    if (reference == nullptr) {
        return {};
    }
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    const bool exported = reference->exportToWkt(&text, options) == OGRERR_NONE && text != nullptr && *text != '\0';
    const std::string wkt = exported ? text : "";
    CPLFree(text);
    return wkt.empty() ? SpatialReference() : SpatialReference::from(wkt);
}

/// The blocks of the first raster that a mosaic is put together from; of no size when it cannot be opened.
BlockSize blocks_of_first_source(GDALDataset& mosaic) {
    const CPLStringList files(mosaic.GetFileList());
    BlockSize size;
    if (files.size() > 1) {
        const DatasetPointer source(GDALDataset::Open(files[1], GDAL_OF_RASTER));
        if (source && source->GetRasterCount() > 0) {
            source->GetRasterBand(1)->GetBlockSize(&size.columns, &size.rows);
        }
    }
    return size;
}

/// Whether the first band's stored type holds nothing but possible class codes.
bool holds_only_codes(GDALDataType type) {
    // Signed bytes have a type of their own since GDAL 3.7.
    return GDALDataTypeIsInteger(type) != 0 && GDALGetDataTypeSizeBits(type) <= 32 && type != GDT_UInt32;
}

/// The NODATA value of a band as its cells hold it; a single-precision band holds the nearest single.
std::optional<double> declared_nodata(GDALRasterBand& band) {
    int declared = 0;
    double value = 0;
    if (band.GetRasterDataType() == GDT_Int64) {
        value = static_cast<double>(band.GetNoDataValueAsInt64(&declared));
    } else if (band.GetRasterDataType() == GDT_UInt64) {
        value = static_cast<double>(band.GetNoDataValueAsUInt64(&declared));
    } else {
        value = band.GetNoDataValue(&declared);
    }
    if (declared == 0) {
        return std::nullopt;
    }
    return band.GetRasterDataType() == GDT_Float32 ? static_cast<double>(static_cast<float>(value)) : value;
}

bool signed_bytes(GDALRasterBand& band) {
    const char* pixel_type = band.GetMetadataItem("PIXELTYPE", "IMAGE_STRUCTURE");
    return band.GetRasterDataType() == GDT_Byte && pixel_type != nullptr && EQUAL(pixel_type, "SIGNEDBYTE");
}

/// The declared value as a class code could hold it.
std::optional<std::int32_t> as_code(std::optional<double> value, double lowest, double highest) {
    if (!value || std::isnan(*value) || *value != std::floor(*value) || *value < lowest || *value > highest) {
        return std::nullopt;  // no cell can hold it
    }
    return static_cast<std::int32_t>(*value);
}

}  // namespace

struct RasterDataset::Source {
    std::string name;
    DatasetPointer dataset;
    GDALRasterBand* band = nullptr;
    Grid grid;
    SpatialReference reference;
    CellType cell_type = CellType::byte;
    std::optional<double> nodata;
    std::optional<std::int32_t> nodata_code;
    bool masked = false;
    bool has_signed_bytes = false;
    TileLines lines;
    int block_columns = 0;
    int block_rows = 0;
    /// Whether whole blocks of bytes come straight from the file, past the library's cache.
    bool direct = false;

    void open_band();
    void inspect_band();
    void lay_out_tiles();
    bool one_block(const CellWindow& window) const;
    void read_bytes(const CellWindow& window, CellBuffer& buffer) const;
    void check_read(CPLErr error, const CellWindow& window) const;
    template <typename Cell>
    void read(const CellWindow& window, GDALDataType type, std::vector<Cell>& cells) const;
    void read_wide(const CellWindow& window, std::vector<std::int64_t>& cells) const;
    template <typename Stored>
    void convert(const CellWindow& window, GDALDataType type, std::span<std::int64_t> cells) const;
    void apply_mask(const CellWindow& window, std::span<std::int64_t> cells) const;
    [[noreturn]] void refuse(const CellWindow& window, std::size_t cell, const std::string& value) const;
};

void RasterDataset::Source::inspect_band() {
    const GDALDataType type = band->GetRasterDataType();
    if (GDALDataTypeIsComplex(type) != 0) {
        throw base::RuntimeError(
            base::kInvalidProcedureCall,
            fmt::format("The raster \"{}\" holds complex numbers: land cover must be class codes", name));
    }
    const int mask_flags = band->GetMaskFlags();
    masked = (mask_flags & (GMF_ALL_VALID | GMF_NODATA)) == 0;
    has_signed_bytes = signed_bytes(*band);
    if (!masked && (mask_flags & GMF_NODATA) != 0) {
        nodata = declared_nodata(*band);
    }
    if (masked || !holds_only_codes(type)) {
        cell_type = CellType::wide;
    } else if (type == GDT_Byte && !has_signed_bytes) {
        cell_type = CellType::byte;
        nodata_code = as_code(nodata, 0, 255);
    } else {
        cell_type = CellType::int32;
        nodata_code =
            as_code(nodata, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
    }
}

void RasterDataset::Source::lay_out_tiles() {
    band->GetBlockSize(&block_columns, &block_rows);
    const GDALDriver* const driver = dataset->GetDriver();
    const std::string_view format = driver != nullptr ? driver->GetDescription() : "";
    direct = format == "GTiff" && cell_type == CellType::byte;
    if (format == "VRT") {
        char** const xml = dataset->GetMetadata("xml:VRT");
        if (xml != nullptr && *xml != nullptr) {
            lines = mosaic_lines(*xml, grid.columns, grid.rows, blocks_of_first_source(*dataset));
        }
    }
    if (lines.rows.empty()) {
        lines = block_lines(block_columns, block_rows, grid.columns, grid.rows);
    }
    if (!holds_only_codes(band->GetRasterDataType())) {
        lines.columns = {0, grid.columns};  // so that the first cell that is no code is the first in its band
    }
}

/// Opens the file and its first band; everything else is known.
void RasterDataset::Source::open_band() {
    start_gdal();
    CPLErrorReset();
    dataset.reset(GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
    if (!dataset) {
        std::error_code error;
        if (!std::filesystem::exists(name, error)) {
            throw base::RuntimeError(base::kFileNotFound, fmt::format("There is no raster \"{}\"", name));
        }
        throw gdal_error(fmt::format("The raster \"{}\" cannot be opened", name));
    }
    if (dataset->GetRasterCount() == 0) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 fmt::format("\"{}\" holds no band of cells: name one of its rasters", name));
    }
    band = dataset->GetRasterBand(1);
}

RasterDataset RasterDataset::open(const std::string& source) {
    auto made = std::make_shared<Source>();
    made->name = source;
    made->open_band();
    made->grid = grid_of(*made->dataset, source);
    made->reference = reference_of(*made->dataset);
    made->inspect_band();
    made->lay_out_tiles();
    return RasterDataset(std::move(made));
}

RasterDataset RasterDataset::reopened() const {
    auto made = std::make_shared<Source>();
    made->name = m_source->name;
    made->open_band();
    made->grid = m_source->grid;
    made->reference = m_source->reference;
    made->cell_type = m_source->cell_type;
    made->nodata = m_source->nodata;
    made->nodata_code = m_source->nodata_code;
    made->masked = m_source->masked;
    made->has_signed_bytes = m_source->has_signed_bytes;
    made->lines = m_source->lines;
    made->block_columns = m_source->block_columns;
    made->block_rows = m_source->block_rows;
    made->direct = m_source->direct;
    return RasterDataset(std::move(made));
}

const std::string& RasterDataset::source() const noexcept {
    return m_source->name;
}
const Grid& RasterDataset::grid() const noexcept {
    return m_source->grid;
}
const SpatialReference& RasterDataset::spatial_reference() const noexcept {
    return m_source->reference;
}
CellType RasterDataset::cell_type() const noexcept {
    return m_source->cell_type;
}
bool RasterDataset::needs_checking() const noexcept {
    return !holds_only_codes(m_source->band->GetRasterDataType());
}
std::optional<std::int32_t> RasterDataset::nodata_value() const noexcept {
    return m_source->nodata_code;
}
bool RasterDataset::declares_nodata() const noexcept {
    return m_source->masked || m_source->nodata.has_value();
}
const TileLines& RasterDataset::tile_lines() const noexcept {
    return m_source->lines;
}

int RasterDataset::data_band_count() const noexcept {
    int count = 0;
    for (int i = 1; i <= m_source->dataset->GetRasterCount(); ++i) {
        count += m_source->dataset->GetRasterBand(i)->GetColorInterpretation() == GCI_AlphaBand ? 0 : 1;
    }
    return count;
}

void RasterDataset::read(const CellWindow& window, CellBuffer& buffer) const {
    switch (m_source->cell_type) {
        case CellType::byte:
            m_source->read_bytes(window, buffer);
            return;
        case CellType::int32:
            m_source->read(window, GDT_Int32, buffer.integers);
            if (m_source->has_signed_bytes) {
                for (std::int32_t& cell : buffer.integers) {
                    cell = cell > 127 ? cell - 256 : cell;
                }
            }
            return;
        case CellType::wide:
            m_source->read_wide(window, buffer.wide);
            return;
    }
}

/// Whether the window is what one block holds of the raster.
bool RasterDataset::Source::one_block(const CellWindow& window) const {
    return window.first_column % block_columns == 0 && window.first_row % block_rows == 0 &&
           window.columns == std::min(block_columns, grid.columns - window.first_column) &&
           window.rows == std::min(block_rows, grid.rows - window.first_row);
}

void RasterDataset::Source::read_bytes(const CellWindow& window, CellBuffer& buffer) const {
    if (!direct || !one_block(window)) {
        read(window, GDT_Byte, buffer.bytes);
        return;
    }
    const auto columns = static_cast<std::size_t>(block_columns);
    buffer.bytes.resize(columns * static_cast<std::size_t>(block_rows));
    CPLErrorReset();
    check_read(band->ReadBlock(window.first_column / block_columns, window.first_row / block_rows, buffer.bytes.data()),
               window);
    // A block on the east holds more columns than the raster, one on the south more rows.
    const auto width = static_cast<std::size_t>(window.columns);
    const auto rows = static_cast<std::size_t>(window.rows);
    for (std::size_t row = 1; row < rows && width < columns; ++row) {
        const std::uint8_t* const line = buffer.bytes.data() + row * columns;
        std::copy(line, line + width, buffer.bytes.data() + row * width);
    }
    buffer.bytes.resize(width * rows);
}

void RasterDataset::Source::check_read(CPLErr error, const CellWindow& window) const {
    if (error != CE_None) {
        throw base::RuntimeError(base::kDeviceInputOutputError,
                                 gdal_error(fmt::format("The raster \"{}\" cannot be read at rows {} to {}", name,
                                                        window.first_row + 1, window.first_row + window.rows))
                                     .description());
    }
}

template <typename Cell>
void RasterDataset::Source::read(const CellWindow& window, GDALDataType type, std::vector<Cell>& cells) const {
    cells.resize(static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows));
    CPLErrorReset();
    check_read(band->RasterIO(GF_Read, window.first_column, window.first_row, window.columns, window.rows, cells.data(),
                              window.columns, window.rows, type, 0, 0, nullptr),
               window);
}

void RasterDataset::Source::read_wide(const CellWindow& window, std::vector<std::int64_t>& cells) const {
    cells.resize(static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows));
    // Row by row, so that the stored numbers need no second buffer of the window's size.
    for (int row = 0; row < window.rows; ++row) {
        const CellWindow line{window.first_column, window.first_row + row, window.columns, 1};
        const std::span<std::int64_t> target(
            cells.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(window.columns),
            static_cast<std::size_t>(window.columns));
        switch (band->GetRasterDataType()) {
            case GDT_Int64:
                convert<std::int64_t>(line, GDT_Int64, target);
                break;
            case GDT_UInt64:
                convert<std::uint64_t>(line, GDT_UInt64, target);
                break;
            default:
                convert<double>(line, GDT_Float64, target);
        }
    }
}

/// One line of cells as codes; NODATA cells are marked, and what is neither is refused.
template <typename Stored>
void RasterDataset::Source::convert(const CellWindow& window, GDALDataType type, std::span<std::int64_t> cells) const {
    std::vector<Stored> stored;
    read(window, type, stored);
    apply_mask(window, cells);
    for (std::size_t i = 0; i < stored.size(); ++i) {
        const auto value = static_cast<double>(stored[i]);
        if (cells[i] == kWideNodata || (nodata && (value == *nodata || (std::isnan(value) && std::isnan(*nodata))))) {
            cells[i] = kWideNodata;
        } else if (value >= std::numeric_limits<std::int32_t>::min() &&
                   value <= std::numeric_limits<std::int32_t>::max() && value == std::floor(value)) {
            const double code = has_signed_bytes && value > 127 ? value - 256 : value;
            cells[i] = static_cast<std::int64_t>(code);
        } else {
            refuse(window, i, base::text_of(value));
        }
    }
}

/// Marks the cells that the mask or alpha band hides; sets the others to 0.
void RasterDataset::Source::apply_mask(const CellWindow& window, std::span<std::int64_t> cells) const {
    std::fill(cells.begin(), cells.end(), 0);
    if (!masked) {
        return;
    }
    std::vector<std::uint8_t> mask(cells.size());
    CPLErrorReset();
    if (band->GetMaskBand()->RasterIO(GF_Read, window.first_column, window.first_row, window.columns, window.rows,
                                      mask.data(), window.columns, window.rows, GDT_Byte, 0, 0, nullptr) != CE_None) {
        throw base::RuntimeError(base::kDeviceInputOutputError,
                                 gdal_error(fmt::format("The mask of the raster \"{}\" cannot be read at row {}", name,
                                                        window.first_row + 1))
                                     .description());
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = mask[i] == 0 ? kWideNodata : 0;
    }
}

void RasterDataset::Source::refuse(const CellWindow& window, std::size_t cell, const std::string& value) const {
    const std::size_t row =
        static_cast<std::size_t>(window.first_row) + cell / static_cast<std::size_t>(window.columns);
    const std::size_t column =
        static_cast<std::size_t>(window.first_column) + cell % static_cast<std::size_t>(window.columns);
    throw base::RuntimeError(
        base::kInvalidProcedureCall,
        fmt::format(
            "The raster \"{}\" holds {} at row {}, column {}: land cover must be whole class codes from -2147483648 to 2147483647",
            name, value, row + 1, column + 1));
}

}  // namespace kestrel::data
