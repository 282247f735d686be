// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <atomic>

#include "base/text.h"
#include "data/table.h"

#include "base/files.h"
#include "data/gdal_support.h"

namespace kestrel::data {

namespace {

constexpr std::size_t kLongestName = 10;
constexpr std::size_t kLongestText = 254;

/// A folder in memory, in which the driver works: a full disk then fails in write_file(), which can tell.
class MemoryFolder {
  public:
    MemoryFolder() : m_path(fmt::format("/vsimem/kestrel-table-{}", ++s_counter)) {}
    ~MemoryFolder() { VSIRmdirRecursive(m_path.c_str()); }
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;

    std::string path(std::string_view name) const { return base::join_path(m_path, name); }
    std::string_view bytes(std::string_view name) const {
        vsi_l_offset size = 0;
        const GByte* data = VSIGetMemFileBuffer(path(name).c_str(), &size, FALSE);
        return {reinterpret_cast<const char*>(data), static_cast<std::size_t>(size)};
    }

  private:
    static inline std::atomic<unsigned> s_counter{0};
    std::string m_path;
};

void create_fields(OGRLayer& layer, const Table& table) {
    std::size_t key_width = static_cast<std::size_t>(std::max(table.fields()[1].length, 1));
    for (std::size_t row = 0; row < table.row_count(); ++row) {
        key_width = std::max(key_width, table.key(row).size());
    }
    for (std::size_t i = 1; i < table.fields().size(); ++i) {
        const Field& field = table.fields()[i];
        OGRFieldDefn definition(std::string(base::first_bytes(field.name, kLongestName)).c_str(),
                                i == 1 ? OFTString : OFTReal);
        definition.SetWidth(i == 1 ? static_cast<int>(std::min(key_width, kLongestText)) : field.length);
        definition.SetPrecision(i == 1 ? 0 : field.scale);
        if (layer.CreateField(&definition) != OGRERR_NONE) {
            throw gdal_error("The field " + field.name + " of the table " + table.name() + " cannot be made");
        }
    }
}

void write_rows(OGRLayer& layer, const Table& table) {
    for (std::size_t row = 0; row < table.row_count(); ++row) {
        OGRFeature feature(layer.GetLayerDefn());
        feature.SetField(0, std::string(base::first_bytes(table.key(row), kLongestText)).c_str());
        for (int field = 2; field < static_cast<int>(table.fields().size()); ++field) {
            feature.SetField(field - 1, table.number(row, field));
        }
        if (layer.CreateFeature(&feature) != OGRERR_NONE) {
            throw gdal_error("A row of the table " + table.name() + " cannot be written");
        }
    }
}

}  // namespace

void write_dbf(const Table& table, const std::string& path) {
    start_gdal();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr) {
        throw base::RuntimeError(base::kLibraryFailure, "This GDAL has no driver for dBASE files");
    }
    const MemoryFolder folder;
    GDALDatasetUniquePtr dataset(driver->Create(folder.path("table.dbf").c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    const char* const options[] = {"ENCODING=UTF-8", nullptr};
    OGRLayer* layer =
        dataset == nullptr ? nullptr : dataset->CreateLayer("table", nullptr, wkbNone, const_cast<char**>(options));
    if (layer == nullptr) {
        throw gdal_error("The table " + table.name() + " cannot be made");
    }
    create_fields(*layer, table);
    write_rows(*layer, table);
    dataset.reset();  // the header of a table without rows is written on closing only
    base::write_file(path, folder.bytes("table.dbf"));
    base::write_file(base::join_path(base::folder_of(path), base::base_name_of(path) + ".cpg"),
                     folder.bytes("table.cpg"));
}

}  // namespace kestrel::data
