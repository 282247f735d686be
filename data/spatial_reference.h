// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "polygons/polygons.h"

namespace kestrel::data {

/// A coordinate system of the plane, or the lack of one: a vertical part that the definition may have is left out.
/// Copies share the definition, and may be used on several threads.
class SpatialReference {
  public:
    /// No coordinate system.
    SpatialReference();
    /// \param definition WKT, PROJJSON, or an authority code such as "EPSG:26912".
    /// \throws RuntimeError (library failure) when it cannot be read.
    static SpatialReference from(const std::string& definition);

    /// Whether there is a coordinate system at all.
    bool known() const noexcept;
    /// The system's own name, such as "NAD83 / UTM zone 12N"; empty when unknown.
    std::string name() const;
    /// "EPSG:26912" when an authority code can be identified, else empty. Slow at the first call.
    std::string authority_code() const;
    /// WKT in the dialect of a .prj file; empty when unknown.
    /// \throws RuntimeError (library failure) when that dialect cannot express the system.
    std::string esri_wkt() const;
    /// WKT 2; empty when unknown.
    std::string wkt() const;

    bool geographic() const;
    /// Whether this is the Web Mercator projection, whose areas are far too large away from the equator.
    bool web_mercator() const;
    /// Metres in one linear unit of the projection (1 for metres, 0.3048 or 1200/3937 for feet); nothing for
    /// geographic or unknown systems.
    std::optional<double> metres_per_unit() const;

    /// Same by name: the same identified authority code; where a code is missing on either side, the same name without
    /// regard to letter case, blanks and punctuation. Unknown equals only unknown.
    bool same_name(const SpatialReference& other) const;
    /// The same system: datum, projection, parameters and units. Unknown equals only unknown.
    bool same(const SpatialReference& other) const;
    /// The same projection method, parameters and unit, the datum left aside. Geographic systems agree with one
    /// another in their unit; geographic against projected differs. Unknown equals only unknown.
    bool same_projection(const SpatialReference& other) const;

  private:
    struct Definition;
    std::shared_ptr<const Definition> m_definition;
};

/// Moves every vertex of `polygons` from `from` to `to`, both known; x is east or longitude, y north or latitude.
/// Vertices that are equal before are equal after.
/// \throws RuntimeError (library failure) when the systems cannot be connected or a vertex cannot be projected; the
///         description names the vertex. Then the polygons are as they were.
void project(polygons::PolygonSet& polygons, const SpatialReference& from, const SpatialReference& to);

}  // namespace kestrel::data
