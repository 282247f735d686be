// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/real/output_layer_file.h"

#include <ogrsf_frmts.h>

#include <stdexcept>

#include "base/files.h"

namespace kestrel::test {

OutputFile read_output(const std::string& path) {
    GDALAllRegister();
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY));
    if (dataset == nullptr) {
        throw std::runtime_error("there is no output " + path);
    }
    OGRLayer* const layer = dataset->GetLayer(0);
    OutputFile result;
    OGRFeatureDefn* const definition = layer->GetLayerDefn();
    for (int i = 0; i < definition->GetFieldCount(); ++i) {
        result.field_names.emplace_back(definition->GetFieldDefn(i)->GetNameRef());
    }
    result.field_type = OGRFieldDefn::GetFieldTypeName(definition->GetFieldDefn(0)->GetType());
    result.field_width = definition->GetFieldDefn(0)->GetWidth();
    const char* const code =
        layer->GetSpatialRef() == nullptr ? nullptr : layer->GetSpatialRef()->GetAuthorityCode(nullptr);
    result.authority_code = code == nullptr ? "" : code;
    for (const OGRFeatureUniquePtr& feature : *layer) {
        result.rows.push_back({feature->GetFieldAsString(0), feature->GetFieldAsDouble(1), feature->GetFieldAsDouble(2),
                               feature->GetFieldAsDouble(3), feature->GetFieldAsString(4)});
        result.shapes.emplace_back(feature->StealGeometry());
    }
    return result;
}

std::string table_bytes(const std::string& path) {
    std::string bytes = base::read_file(path.substr(0, path.size() - 4) + ".dbf");
    return bytes.erase(1, 3);
}

}  // namespace kestrel::test
