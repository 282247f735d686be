// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <ogr_geometry.h>

#include <string>
#include <vector>

namespace kestrel::test {

/// A feature of an output shapefile.
struct OutputRow {
    std::string value;
    double total_area = 0;
    double impervious_area = 0;
    double percent = 0;
    std::string complete;
};

/// An output shapefile as anybody's OGR reads it.
struct OutputFile {
    std::vector<std::string> field_names;
    /// The analysis field's.
    std::string field_type;
    int field_width = 0;
    std::string authority_code;
    std::vector<OutputRow> rows;
    std::vector<OGRGeometryUniquePtr> shapes;
};

OutputFile read_output(const std::string& path);

/// The .dbf beside the .shp at `path`, but for the date of its last change.
std::string table_bytes(const std::string& path);

}  // namespace kestrel::test
