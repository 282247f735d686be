// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/intersect.h"

#include <geos_c.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "polygons/geos_support.h"

namespace kestrel::polygons {

namespace {

/// The features of one set, ready to be found by place and intersected.
class Overlay {
  public:
    Overlay(const Geos& geos, const PolygonSet& polygons);

    /// Positions of the features whose envelopes touch that of `geometry`, ascending.
    std::vector<std::size_t> near(const Geos::Geometry& geometry) const;
    const Geos::Geometry& geometry(std::size_t feature) const { return m_geometries[feature]; }
    /// Whether `feature` covers all of `geometry`.
    bool covers(std::size_t feature, const Geos::Geometry& geometry);

  private:
    struct DeleteTree {
        GEOSContextHandle_t handle;
        void operator()(GEOSSTRtree* tree) const { GEOSSTRtree_destroy_r(handle, tree); }
    };

    const Geos& m_geos;
    std::vector<std::size_t> m_positions;  // what the tree's items point at
    std::vector<Geos::Geometry> m_geometries;
    std::vector<Geos::Prepared> m_prepared;  // made at need
    std::unique_ptr<GEOSSTRtree, DeleteTree> m_tree;
};

Overlay::Overlay(const Geos& geos, const PolygonSet& polygons)
    : m_geos(geos), m_positions(polygons.feature_count()), m_tree(nullptr, DeleteTree{geos.handle()}) {
    constexpr std::size_t kNodeCapacity = 10;
    m_tree.reset(GEOSSTRtree_create_r(geos.handle(), kNodeCapacity));
    for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
        m_positions[f] = f;
        m_geometries.push_back(geos.multipolygon(polygons, f));
        m_prepared.emplace_back(nullptr, Geos::Delete{geos.handle()});
        if (!polygons.empty(f)) {
            GEOSSTRtree_insert_r(geos.handle(), m_tree.get(), m_geometries[f].get(), &m_positions[f]);
        }
    }
}

std::vector<std::size_t> Overlay::near(const Geos::Geometry& geometry) const {
    std::vector<std::size_t> found;
    GEOSSTRtree_query_r(
        m_geos.handle(), m_tree.get(), geometry.get(),
        [](void* item, void* target) {
            static_cast<std::vector<std::size_t>*>(target)->push_back(*static_cast<std::size_t*>(item));
        },
        &found);
    std::sort(found.begin(), found.end());
    return found;
}

bool Overlay::covers(std::size_t feature, const Geos::Geometry& geometry) {
    Geos::Prepared& prepared = m_prepared[feature];
    if (prepared == nullptr) {
        prepared = m_geos.prepare(m_geometries[feature]);
    }
    return m_geos.answer(GEOSPreparedCovers_r(m_geos.handle(), prepared.get(), geometry.get()),
                         "Polygons cannot be compared");
}

/// One feature of the input, and its pieces.
class Cutter {
  public:
    Cutter(const Geos& geos, const PolygonSet& input, std::size_t feature)
        : m_geos(geos),
          m_input(input),
          m_feature(feature),
          m_geometry(geos.multipolygon(input, feature)),
          m_prepared(geos.prepare(m_geometry)) {}

    const Geos::Geometry& geometry() const { return m_geometry; }

    /// What it shares with a feature of the overlay; a feature without polygons when that has no area.
    PolygonSet piece(Overlay& overlay, const PolygonSet& polygons, std::size_t other) const {
        PolygonSet result;
        const Geos::Geometry& theirs = overlay.geometry(other);
        if (!m_geos.answer(GEOSPreparedIntersects_r(m_geos.handle(), m_prepared.get(), theirs.get()), kCompare)) {
            result.begin_feature();
        } else if (m_geos.answer(GEOSPreparedCovers_r(m_geos.handle(), m_prepared.get(), theirs.get()), kCompare)) {
            result.append(polygons, other);
        } else if (overlay.covers(other, m_geometry)) {
            result.append(m_input, m_feature);
        } else {
            const Geos::Geometry shared = m_geos.owned(
                GEOSIntersection_r(m_geos.handle(), m_geometry.get(), theirs.get()), "Polygons cannot be intersected");
            m_geos.append(result, shared.get());
        }
        return result;
    }

  private:
    static constexpr const char* kCompare = "Polygons cannot be compared";
    const Geos& m_geos;
    const PolygonSet& m_input;
    std::size_t m_feature;
    Geos::Geometry m_geometry;
    Geos::Prepared m_prepared;
};

}  // namespace

void intersect(const PolygonSet& input, const PolygonSet& overlay, const PieceVisitor& visit) {
    const Geos geos;
    Overlay others(geos, overlay);
    for (std::size_t f = 0; f < input.feature_count(); ++f) {
        if (input.empty(f)) {
            continue;
        }
        const Cutter cutter(geos, input, f);
        for (const std::size_t other : others.near(cutter.geometry())) {
            const PolygonSet piece = cutter.piece(others, overlay, other);
            if (!piece.empty(0) && !visit(f, other, piece)) {
                return;
            }
        }
    }
}

}  // namespace kestrel::polygons
