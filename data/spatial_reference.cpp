// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/spatial_reference.h"

#include <cpl_conv.h>
#include <fmt/format.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <vector>

#include "base/errors.h"
#include "data/gdal_support.h"

namespace kestrel::data {

namespace {

using System = OGRSpatialReference;

constexpr int kMatchConfidence = 90;
constexpr std::size_t kPointsAtOnce = 65536;

std::string text_or_empty(const char* text) {
    return text != nullptr ? text : "";
}

std::string code_in(const System& system) {
    const char* const authority = system.GetAuthorityName(nullptr);
    const char* const code = system.GetAuthorityCode(nullptr);
    return authority != nullptr && code != nullptr ? fmt::format("{}:{}", authority, code) : std::string();
}

std::string identified_code(const System& system) {
    if (const std::string given = code_in(system); !given.empty()) {
        return given;
    }
    System* const match = system.FindBestMatch(kMatchConfidence, nullptr, nullptr);
    if (match == nullptr) {
        return {};
    }
    const std::string found = code_in(*match);
    match->Release();
    return found;
}

std::string exported(const System& system, const char* format) {
    const char* const options[] = {format, "MULTILINE=NO", nullptr};
    char* text = nullptr;
    CPLErrorReset();
    const OGRErr error = system.exportToWkt(&text, options);
    const std::string result = text_or_empty(text);
    CPLFree(text);
    if (error != OGRERR_NONE || result.empty()) {
        throw gdal_error(fmt::format("The coordinate system {} cannot be written", text_or_empty(system.GetName())));
    }
    return result;
}

/// Letters and digits only, in lower case: .prj files write names with underscores.
std::string normalised(const std::string& name) {
    std::string result;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') {
            result += static_cast<char>(c - 'A' + 'a');
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (static_cast<unsigned char>(c) & 0x80U) != 0) {
            result += c;
        }
    }
    return result;
}

/// The system with east as its first axis. Texts of .prj files know no order of axes, catalogues do, and coordinates
/// are always taken as east and north here.
System east_first(const System& system) {
    OGRAxisOrientation first = OAO_Other;
    system.GetAxis(nullptr, 0, &first);
    if (system.IsProjected() == 0 || first != OAO_North) {
        return system;
    }
    System reordered;
    static const char* const kWithoutAxes[] = {"FORMAT=SFSQL", nullptr};
    char* text = nullptr;
    const bool done =
        system.exportToWkt(&text, kWithoutAxes) == OGRERR_NONE && reordered.importFromWkt(text) == OGRERR_NONE;
    CPLFree(text);
    return done ? reordered : system;
}

bool equivalent(const System& a, const System& b) {
    static const char* const kOptions[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                           "CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS", nullptr};
    const System theirs = east_first(b);
    return east_first(a).IsSame(&theirs, kOptions) != 0;
}

bool same_angular_unit(const System& a, const System& b) {
    constexpr double kTolerance = 1e-10;
    return std::abs(a.GetAngularUnits() - b.GetAngularUnits()) <= kTolerance * std::abs(b.GetAngularUnits());
}

bool same_but_for_datum(const System& a, const System& b) {
    if (a.IsProjected() == 0 || b.IsProjected() == 0) {
        return a.IsGeographic() != 0 && b.IsGeographic() != 0 ? same_angular_unit(a, b) : equivalent(a, b);
    }
    System moved(b);
    return moved.CopyGeogCSFrom(&a) == OGRERR_NONE && equivalent(a, moved);
}

}  // namespace

/// The library's objects are not safe to share, not even to be read.
struct SpatialReference::Definition {
    mutable std::mutex mutex;
    System system;
    mutable std::optional<std::string> code;
};

SpatialReference::SpatialReference() = default;

SpatialReference SpatialReference::from(const std::string& definition) {
    start_gdal();
    CPLErrorReset();
    auto parsed = std::make_shared<Definition>();
    System& system = parsed->system;
    if (system.SetFromUserInput(definition.c_str(), System::SET_FROM_USER_INPUT_LIMITATIONS_get()) != OGRERR_NONE) {
        throw gdal_error(fmt::format("This is no coordinate system: {}", definition));
    }
    if (system.IsCompound() != 0) {
        system.StripVertical();
    }
    system.DemoteTo2D(nullptr);
    system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    SpatialReference result;
    result.m_definition = std::move(parsed);
    return result;
}

bool SpatialReference::known() const noexcept {
    return m_definition != nullptr;
}

std::string SpatialReference::name() const {
    if (!known()) {
        return {};
    }
    const std::lock_guard lock(m_definition->mutex);
    return text_or_empty(m_definition->system.GetName());
}

std::string SpatialReference::authority_code() const {
    if (!known()) {
        return {};
    }
    const std::lock_guard lock(m_definition->mutex);
    if (!m_definition->code) {
        m_definition->code = identified_code(m_definition->system);
    }
    return *m_definition->code;
}

std::string SpatialReference::esri_wkt() const {
    if (!known()) {
        return {};
    }
    const std::lock_guard lock(m_definition->mutex);
    return exported(m_definition->system, "FORMAT=WKT1_ESRI");
}

std::string SpatialReference::wkt() const {
    if (!known()) {
        return {};
    }
    const std::lock_guard lock(m_definition->mutex);
    return exported(m_definition->system, "FORMAT=WKT2");
}

bool SpatialReference::geographic() const {
    if (!known()) {
        return false;
    }
    const std::lock_guard lock(m_definition->mutex);
    return m_definition->system.IsGeographic() != 0;
}

bool SpatialReference::web_mercator() const {
    const std::string text = wkt();
    return text.find("\"Popular Visualisation Pseudo Mercator\"") != std::string::npos ||
           text.find("\"Mercator_Auxiliary_Sphere\"") != std::string::npos;
}

std::optional<double> SpatialReference::metres_per_unit() const {
    if (!known() || geographic()) {
        return std::nullopt;
    }
    const std::lock_guard lock(m_definition->mutex);
    return m_definition->system.GetLinearUnits();
}

bool SpatialReference::same_name(const SpatialReference& other) const {
    if (m_definition == other.m_definition) {
        return true;
    }
    if (!known() || !other.known()) {
        return false;
    }
    const std::string mine = authority_code();
    const std::string theirs = other.authority_code();
    return mine.empty() || theirs.empty() ? normalised(name()) == normalised(other.name()) : mine == theirs;
}

bool SpatialReference::same(const SpatialReference& other) const {
    if (m_definition == other.m_definition) {
        return true;
    }
    if (!known() || !other.known()) {
        return false;
    }
    const std::scoped_lock lock(m_definition->mutex, other.m_definition->mutex);
    return equivalent(m_definition->system, other.m_definition->system);
}

bool SpatialReference::same_projection(const SpatialReference& other) const {
    if (m_definition == other.m_definition) {
        return true;
    }
    if (!known() || !other.known()) {
        return false;
    }
    const std::scoped_lock lock(m_definition->mutex, other.m_definition->mutex);
    return same_but_for_datum(m_definition->system, other.m_definition->system);
}

namespace {

System system_of(const SpatialReference& reference) {
    System system;
    if (system.importFromWkt(reference.wkt().c_str()) != OGRERR_NONE) {
        throw gdal_error(fmt::format("The coordinate system {} cannot be read back", reference.name()));
    }
    system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return system;
}

using Transformation = std::unique_ptr<OGRCoordinateTransformation>;

Transformation transformation(const SpatialReference& from, const SpatialReference& to) {
    CPLErrorReset();
    const System source = system_of(from);
    const System target = system_of(to);
    Transformation result(OGRCreateCoordinateTransformation(&source, &target));
    if (result == nullptr) {
        throw gdal_error(fmt::format("Coordinates cannot be projected from {} to {}", from.name(), to.name()));
    }
    return result;
}

/// The coordinates of a chunk of points, apart, as the library wants them.
struct Chunk {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<int> done;

    void load(std::span<const polygons::Point> points) {
        x.resize(points.size());
        y.resize(points.size());
        done.assign(points.size(), 0);
        std::transform(points.begin(), points.end(), x.begin(), [](polygons::Point p) { return p.x; });
        std::transform(points.begin(), points.end(), y.begin(), [](polygons::Point p) { return p.y; });
    }

    void transform(OGRCoordinateTransformation& transformation) {
        transformation.Transform(static_cast<int>(x.size()), x.data(), y.data(), nullptr, done.data());
    }

    bool good(std::size_t i) const { return done[i] != 0 && std::isfinite(x[i]) && std::isfinite(y[i]); }
};

}  // namespace

void project(polygons::PolygonSet& polygons, const SpatialReference& from, const SpatialReference& to) {
    if (!from.known() || !to.known()) {
        throw base::RuntimeError(base::kInvalidProcedureCall,
                                 "Coordinates without a coordinate system cannot be projected");
    }
    const Transformation way = transformation(from, to);
    std::vector<polygons::Point> projected(polygons.points().begin(), polygons.points().end());
    Chunk chunk;
    for (std::size_t first = 0; first < projected.size(); first += kPointsAtOnce) {
        const auto points = std::span(projected).subspan(first, std::min(kPointsAtOnce, projected.size() - first));
        chunk.load(points);
        chunk.transform(*way);
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (!chunk.good(i)) {
                throw gdal_error(fmt::format("The vertex ({}, {}) cannot be projected from {} to {}", points[i].x,
                                             points[i].y, from.name(), to.name()));
            }
            points[i] = {chunk.x[i], chunk.y[i]};
        }
    }
    std::copy(projected.begin(), projected.end(), polygons.points().begin());
}

}  // namespace kestrel::data
