// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/shapefile_writer.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>

#include "platform/errors.h"
#include "platform/files.h"
#include "platform/gdal_support.h"
#include "platform/ogr_polygons.h"
#include "platform/shapefile_files.h"

namespace kestrel::platform {

namespace {

constexpr int kLongestText = 254;
constexpr int kBigIntegerDigits = 18;

constexpr std::int64_t kShapeHeader = 100;

// Room for 16 digits before the point; the library's own choice has no room for values from 1e8 on.
constexpr int kRealWidth = 32;
constexpr int kRealScale = 15;

/// How a field is kept in the table.
struct Storage {
    OGRFieldType type;
    int width;
    int scale;
};

Storage storage_of(const Field& field) {
    const auto width_or = [&](int otherwise) { return field.length > 0 ? field.length : otherwise; };
    switch (field.type) {
        // Whole numbers as 64 bits whatever the width, since the library clamps values to the declared type's range.
        case FieldType::boolean:
            return {OFTInteger64, width_or(1), 0};
        case FieldType::small_integer:
            return {OFTInteger64, width_or(6), 0};
        case FieldType::integer:
            return {OFTInteger64, width_or(11), 0};
        case FieldType::big_integer:
            return {OFTInteger64, width_or(kBigIntegerDigits), 0};
        case FieldType::single:
        case FieldType::real: {
            const int width = width_or(field.precision);
            return width > 0 ? Storage{OFTReal, width, field.scale} : Storage{OFTReal, kRealWidth, kRealScale};
        }
        default:
            return {OFTString, std::min(width_or(kLongestText), kLongestText), 0};
    }
}

/// The first number that is too large for the field.
double bound_of(const Storage& storage) {
    return std::pow(10.0, storage.width - storage.scale - (storage.scale > 0 ? 1 : 0));
}

bool real(FieldType type) {
    return type == FieldType::single || type == FieldType::real;
}

/// `text` cut to what a dBASE field holds, not within a character.
std::string cut(std::string text) {
    if (text.size() > kLongestText) {
        std::size_t end = kLongestText;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
            --end;
        }
        text.resize(end);
    }
    return text;
}

std::int64_t integer_of(const Value& value, const std::string& field) {
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return *integer;
    }
    const auto* const number = std::get_if<double>(&value);
    constexpr double kBound = 9223372036854775808.0;
    if (number == nullptr || *number != std::trunc(*number) || !(std::abs(*number) < kBound)) {
        throw RuntimeError(kTypeMismatch, fmt::format("\"{}\" is no whole number (field {})", text_of(value), field));
    }
    return static_cast<std::int64_t>(*number);
}

/// Bytes that a feature takes in the .shp.
std::int64_t shape_size(const PolygonSet& polygons, std::size_t feature) {
    constexpr std::size_t kRecordHeader = 8;
    constexpr std::size_t kNullShape = 4;
    constexpr std::size_t kFixedPart = 44;
    std::size_t size = kRecordHeader + (polygons.empty(feature) ? kNullShape : kFixedPart);
    for (std::size_t r = polygons.first_ring_of(feature); r < polygons.first_ring_of(feature + 1); ++r) {
        size += sizeof(std::int32_t) + sizeof(Point) * polygons.ring(r).size();
    }
    return static_cast<std::int64_t>(size);
}

void remove_members(const std::string& path) {
    for (const std::string& member : shapefile_members(path)) {
        remove_file(member);
    }
}

}  // namespace

struct ShapefileWriter::State {
    std::string path;
    std::vector<FieldType> types;
    std::vector<double> bounds;  // of each real field, what its width can hold
    bool referenced = false;
    GDALDatasetUniquePtr dataset;
    OGRLayer* layer = nullptr;
    OGRFeatureUniquePtr feature;
    std::int64_t count = 0;
    std::int64_t shape_bytes = kShapeHeader;
    int flush_count = 0;

    void create(const SpatialReference& reference);
    void add_fields(std::span<const Field> fields);
    void set(int position, const Value& value);
    void set_real(int position, double value);
    void begin();
    bool beyond_limit() const;
    void check(bool good) const;
};

/// Forgets earlier failures, of which messages of later ones would tell.
void ShapefileWriter::State::begin() {
    CPLErrorReset();
    errno = 0;
}

/// Whether a file with all that was inserted is larger than the format's offsets can tell.
bool ShapefileWriter::State::beyond_limit() const {
    std::int64_t record = 1;
    for (int i = 0; feature != nullptr && i < feature->GetFieldCount(); ++i) {
        record += feature->GetFieldDefnRef(i)->GetWidth();
    }
    return shape_bytes > std::numeric_limits<std::int32_t>::max() ||
           record * (count + 1) > std::numeric_limits<std::int32_t>::max();
}

/// A warning counts as a failure: the library merely warns of values that it could not store.
void ShapefileWriter::State::check(bool good) const {
    if (good && CPLGetLastErrorType() < CE_Warning) {
        return;
    }
    const RuntimeError error = gdal_error(fmt::format("{} cannot be written", path));
    if (beyond_limit()) {
        throw RuntimeError(
            kDiskFull,
            fmt::format("{} would pass the 2 GB that a shapefile may have; use fewer or simpler polygons", path));
    }
    // Some of the library's messages leave the reason out.
    throw device_full(folder_of(path)) ? RuntimeError(kDiskFull, error.description() + ": the device is full") : error;
}

void ShapefileWriter::State::create(const SpatialReference& reference) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr) {
        throw RuntimeError(kLibraryFailure, "GDAL has no driver for shapefiles");
    }
    dataset.reset(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    check(dataset != nullptr);
    OGRSpatialReference system;
    if (reference.known()) {
        check(system.importFromWkt(reference.wkt().c_str()) == OGRERR_NONE);
        referenced = true;
    }
    CPLStringList options;
    options.SetNameValue("ENCODING", "UTF-8");
    options.SetNameValue("2GB_LIMIT", "YES");
    layer =
        dataset->CreateLayer(base_name_of(path).c_str(), referenced ? &system : nullptr, wkbPolygon, options.List());
    check(layer != nullptr);
}

void ShapefileWriter::State::add_fields(std::span<const Field> fields) {
    for (const Field& field : fields) {
        const Storage storage = storage_of(field);
        OGRFieldDefn definition(field.name.c_str(), storage.type);
        definition.SetWidth(storage.width);
        definition.SetPrecision(storage.scale);
        check(layer->CreateField(&definition, FALSE) == OGRERR_NONE);
        types.push_back(field.type);
        bounds.push_back(bound_of(storage));
    }
    feature.reset(OGRFeature::CreateFeature(layer->GetLayerDefn()));
}

void ShapefileWriter::State::set_real(int position, double value) {
    const double bound = bounds[static_cast<std::size_t>(position)];
    // A sign takes the room of a digit. What rounds up to one more digit is left to check().
    if (!(value < bound && value > -bound / 10)) {
        throw RuntimeError(kOverflow, fmt::format("{} is too large for the field {} of {}", value,
                                                  layer->GetLayerDefn()->GetFieldDefn(position)->GetNameRef(), path));
    }
    feature->SetField(position, value);
}

void ShapefileWriter::State::set(int position, const Value& value) {
    const FieldType type = types[static_cast<std::size_t>(position)];
    if (std::holds_alternative<std::monostate>(value)) {
        feature->SetFieldNull(position);
    } else if (integral(type) || type == FieldType::boolean) {
        const char* const name = layer->GetLayerDefn()->GetFieldDefn(position)->GetNameRef();
        feature->SetField(position, static_cast<GIntBig>(integer_of(value, name)));
    } else if (real(type)) {
        set_real(position, number_of(value));
    } else {
        feature->SetField(position, cut(text_of(value)).c_str());
    }
}

ShapefileWriter::ShapefileWriter(const std::string& path, std::span<const Field> fields,
                                 const SpatialReference& reference)
    : m_state(std::make_unique<State>()) {
    if (const std::string folder = folder_of(path); !folder.empty() && !folder_exists(folder)) {
        throw RuntimeError(kPathNotFound, fmt::format("{} cannot be written: its folder is missing", path));
    }
    start_gdal();
    remove_members(path);
    m_state->path = path;
    m_state->begin();
    m_state->create(reference);
    m_state->add_fields(fields);
}

ShapefileWriter::~ShapefileWriter() = default;

void ShapefileWriter::insert(const PolygonSet& polygons, std::size_t feature, std::span<const Value> values) {
    State& state = *m_state;
    if (state.layer == nullptr || values.size() != state.types.size()) {
        throw RuntimeError(kInvalidProcedureCall,
                           fmt::format("{} takes a value for each field until it is closed", state.path));
    }
    state.begin();
    for (std::size_t i = 0; i < values.size(); ++i) {
        state.set(static_cast<int>(i), values[i]);
    }
    state.feature->SetFID(OGRNullFID);
    state.shape_bytes += shape_size(polygons, feature);
    state.feature->SetGeometryDirectly(geometry_of(polygons, feature).release());
    state.check(state.layer->CreateFeature(state.feature.get()) == OGRERR_NONE);
    ++state.count;
}

void ShapefileWriter::flush() {
    ++m_state->flush_count;
    if (m_state->layer != nullptr) {
        m_state->begin();
        m_state->check(m_state->layer->SyncToDisk() == OGRERR_NONE);
    }
}

int ShapefileWriter::flush_count() const noexcept {
    return m_state->flush_count;
}

void ShapefileWriter::close() {
    State& state = *m_state;
    if (state.layer == nullptr) {
        return;
    }
    state.begin();
    const bool synced = state.layer->SyncToDisk() == OGRERR_NONE;
    state.layer = nullptr;
    state.feature.reset();
    state.dataset.reset();
    state.check(synced);
    check_shapefile_files(state.path, state.count, state.referenced);
}

}  // namespace kestrel::platform
