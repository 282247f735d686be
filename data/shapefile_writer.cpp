// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/shapefile_writer.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>

#include "base/errors.h"
#include "base/files.h"
#include "base/text.h"
#include "data/dbase_records.h"
#include "data/gdal_support.h"
#include "data/shape_records.h"
#include "data/shapefile_files.h"
#include "data/shapefile_members.h"

namespace kestrel::data {

namespace {

constexpr int kLongestText = 254;
constexpr int kBigIntegerDigits = 18;

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

std::int64_t integer_of(const Value& value, const std::string& field) {
    if (const auto* const integer = std::get_if<std::int64_t>(&value)) {
        return *integer;
    }
    const auto* const number = std::get_if<double>(&value);
    constexpr double kBound = 9223372036854775808.0;
    if (number == nullptr || *number != std::trunc(*number) || !(std::abs(*number) < kBound)) {
        throw base::RuntimeError(base::kTypeMismatch,
                                 fmt::format("\"{}\" is no whole number (field {})", text_of(value), field));
    }
    return static_cast<std::int64_t>(*number);
}

void remove_members(const std::string& path) {
    for (const std::string& member : shapefile_members(path)) {
        base::remove_file(member);
    }
}

/// The files of a new shapefile without features, made by the library: schema, coordinate system and encoding are its.
class NewShapefile {
  public:
    explicit NewShapefile(const std::string& path) : m_path(path) {
        CPLErrorReset();  // earlier failures, of which messages of later ones would tell
        errno = 0;
    }

    void create(std::span<const Field> fields, const SpatialReference& reference);

  private:
    void create_layer(const SpatialReference& reference);
    void add_field(const Field& field);
    void check(bool good) const;

    const std::string& m_path;
    GDALDatasetUniquePtr m_dataset;
    OGRLayer* m_layer = nullptr;
};

/// A warning counts as a failure: the library merely warns of what it could not do as asked.
void NewShapefile::check(bool good) const {
    if (good && CPLGetLastErrorType() < CE_Warning) {
        return;
    }
    const base::RuntimeError error = gdal_error(fmt::format("{} cannot be written", m_path));
    // Some of the library's messages leave the reason out.
    throw device_full(base::folder_of(m_path))
        ? base::RuntimeError(base::kDiskFull, error.description() + ": the device is full")
        : error;
}

void NewShapefile::create_layer(const SpatialReference& reference) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr) {
        throw base::RuntimeError(base::kLibraryFailure, "GDAL has no driver for shapefiles");
    }
    m_dataset.reset(driver->Create(m_path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    check(m_dataset != nullptr);
    OGRSpatialReference system;
    if (reference.known()) {
        check(system.importFromWkt(reference.wkt().c_str()) == OGRERR_NONE);
    }
    CPLStringList options;
    options.SetNameValue("ENCODING", "UTF-8");
    m_layer = m_dataset->CreateLayer(base::base_name_of(m_path).c_str(), reference.known() ? &system : nullptr,
                                     wkbPolygon, options.List());
    check(m_layer != nullptr);
}

void NewShapefile::add_field(const Field& field) {
    const Storage storage = storage_of(field);
    OGRFieldDefn definition(field.name.c_str(), storage.type);
    definition.SetWidth(storage.width);
    definition.SetPrecision(storage.scale);
    check(m_layer->CreateField(&definition, FALSE) == OGRERR_NONE);
}

void NewShapefile::create(std::span<const Field> fields, const SpatialReference& reference) {
    create_layer(reference);
    for (const Field& field : fields) {
        add_field(field);
    }
    const bool synced = m_layer->SyncToDisk() == OGRERR_NONE;
    m_dataset.reset();
    check(synced);
    check_shapefile_files(m_path, 0, reference.known());
}

/// A table needs a field: numbers of the records, where none is asked for.
Field record_number_field() {
    return {.name = "FID", .type = FieldType::integer, .length = 11};
}

}  // namespace

struct ShapefileWriter::State {
    State(const std::string& path, std::span<const Field> fields);

    void set(std::size_t field, const Value& value);
    void set_real(std::size_t field, double value);
    void check_limits(std::int64_t more_shape_bytes) const;
    template <typename Call>
    void written(Call call) const;

    std::string path;
    std::vector<Field> fields;
    std::vector<int> scales;
    std::vector<double> bounds;  // of each real field, what its width can hold
    bool numbers_records = false;
    bool referenced = false;
    bool open = true;
    ShapeRecords shapes;
    DbaseRecords table;
    std::int64_t count = 0;
    int flush_count = 0;
};

ShapefileWriter::State::State(const std::string& shapefile, std::span<const Field> given)
    : path(shapefile),
      fields(given.begin(), given.end()),
      shapes(base::join_path(base::folder_of(shapefile), base::base_name_of(shapefile))),
      table(base::join_path(base::folder_of(shapefile), base::base_name_of(shapefile) + ".dbf")) {
    for (const Field& field : given) {
        const Storage storage = storage_of(field);
        scales.push_back(storage.scale);
        bounds.push_back(bound_of(storage));
    }
}

/// Calls what writes, and lets its failures name the shapefile.
template <typename Call>
void ShapefileWriter::State::written(Call call) const {
    try {
        call();
    } catch (const base::RuntimeError& error) {
        throw base::RuntimeError(error.number(), fmt::format("{} cannot be written: {}", path, error.description()));
    }
}

/// The format's offsets can tell of 2 GB.
void ShapefileWriter::State::check_limits(std::int64_t more_shape_bytes) const {
    constexpr std::int64_t kLimit = std::numeric_limits<std::int32_t>::max();
    if (shapes.size() + more_shape_bytes > kLimit || table.size() + table.record_size() > kLimit) {
        throw base::RuntimeError(
            base::kDiskFull,
            fmt::format("{} would pass the 2 GB that a shapefile may have; use fewer or simpler polygons", path));
    }
}

void ShapefileWriter::State::set_real(std::size_t field, double value) {
    const double bound = bounds[field];
    // A sign takes the room of a digit; so does what rounds up to one more.
    if (!(value < bound && value > -bound / 10) || !table.set_real(field, value, scales[field])) {
        throw base::RuntimeError(
            base::kOverflow, fmt::format("{} is too large for the field {} of {}", value, fields[field].name, path));
    }
}

void ShapefileWriter::State::set(std::size_t field, const Value& value) {
    const FieldType type = fields[field].type;
    const bool whole = integral(type) || type == FieldType::boolean;
    if (std::holds_alternative<std::monostate>(value)) {
        whole || real(type) ? table.set_null_number(field) : table.set_null_text(field);
    } else if (whole) {
        table.set_integer(field, integer_of(value, fields[field].name));
    } else if (real(type)) {
        set_real(field, number_of(value));
    } else if (const auto* const text = std::get_if<std::string>(&value);
               text != nullptr && text->size() <= kLongestText) {
        table.set_text(field, *text);
    } else {
        table.set_text(field, base::first_bytes(text_of(value), kLongestText));
    }
}

ShapefileWriter::ShapefileWriter(const std::string& path, std::span<const Field> fields,
                                 const SpatialReference& reference) {
    if (const std::string folder = base::folder_of(path); !folder.empty() && !base::folder_exists(folder)) {
        throw base::RuntimeError(base::kPathNotFound, fmt::format("{} cannot be written: its folder is missing", path));
    }
    start_gdal();
    remove_members(path);
    const std::vector<Field> numbered{record_number_field()};
    NewShapefile(path).create(fields.empty() ? numbered : fields, reference);
    m_state = std::make_unique<State>(path, fields);
    m_state->numbers_records = fields.empty();
    m_state->referenced = reference.known();
}

ShapefileWriter::~ShapefileWriter() {
    try {
        close();
    } catch (const base::RuntimeError&) {
        return;  // whoever wants to know calls close()
    }
}

void ShapefileWriter::insert(const polygons::PolygonSet& polygons, std::size_t feature, std::span<const Value> values) {
    State& state = *m_state;
    if (!state.open || values.size() != state.fields.size()) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 fmt::format("{} takes a value for each field until it is closed", state.path));
    }
    state.check_limits(shape_size(polygons, feature));
    for (std::size_t i = 0; i < values.size(); ++i) {
        state.set(i, values[i]);
    }
    if (state.numbers_records) {
        state.table.set_integer(0, state.count);
    }
    state.written([&] {
        state.table.append();
        state.shapes.append(polygons, feature);
    });
    ++state.count;
}

void ShapefileWriter::flush() {
    State& state = *m_state;
    ++state.flush_count;
    if (state.open) {
        state.written([&] {
            state.shapes.flush();
            state.table.flush();
        });
    }
}

int ShapefileWriter::flush_count() const noexcept {
    return m_state->flush_count;
}

void ShapefileWriter::close() {
    State& state = *m_state;
    if (!state.open) {
        return;
    }
    state.open = false;
    state.written([&] {
        state.shapes.close();
        state.table.close();
    });
    check_shapefile_files(state.path, state.count, state.referenced);
}

}  // namespace kestrel::data
