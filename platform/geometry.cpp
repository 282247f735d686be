// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "platform/geometry.h"

#include <geos_c.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "platform/errors.h"
#include "platform/geos_support.h"

namespace kestrel::platform {

namespace {

/// The repair that keeps what any part of a feature covers; the other one would cut out what two parts cover.
Geos::Geometry repaired(const Geos& geos, const Geos::Geometry& geometry) {
    GEOSMakeValidParams* const params = GEOSMakeValidParams_create_r(geos.handle());
    GEOSMakeValidParams_setMethod_r(geos.handle(), params, GEOS_MAKE_VALID_STRUCTURE);
    GEOSMakeValidParams_setKeepCollapsed_r(geos.handle(), params, 0);
    GEOSGeometry* const result = GEOSMakeValidWithParams_r(geos.handle(), geometry.get(), params);
    GEOSMakeValidParams_destroy_r(geos.handle(), params);
    return geos.owned(result, "An invalid polygon cannot be repaired");
}

bool valid(const Geos& geos, const Geos::Geometry& geometry) {
    return geos.answer(GEOSisValid_r(geos.handle(), geometry.get()), "A polygon cannot be checked");
}

}  // namespace

std::size_t repair(PolygonSet& polygons) {
    const Geos geos;
    PolygonSet whole;
    std::size_t count = 0;
    for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
        const Geos::Geometry geometry = geos.multipolygon(polygons, f);
        if (valid(geos, geometry)) {
            if (count > 0) {
                whole.append(polygons, f);
            }
            continue;
        }
        // Most layers are valid throughout; only now is a second set needed.
        for (std::size_t earlier = 0; count == 0 && earlier < f; ++earlier) {
            whole.append(polygons, earlier);
        }
        geos.append(whole, repaired(geos, geometry).get());
        ++count;
    }
    if (count > 0) {
        polygons = std::move(whole);
    }
    return count;
}

namespace {

/// Tells progress, but not more often than people can see.
class PacedProgress {
  public:
    PacedProgress(Progress& progress, std::size_t steps, const char* text)
        : m_progress(progress), m_steps(steps), m_text(text) {}

    /// \return whether to go on.
    bool step(std::size_t done) {
        const auto now = Clock::now();
        if (now < m_next) {
            return true;
        }
        m_next = now + std::chrono::milliseconds(50);
        return m_progress.report(static_cast<double>(done) / static_cast<double>(m_steps), m_text);
    }

  private:
    using Clock = std::chrono::steady_clock;
    Progress& m_progress;
    std::size_t m_steps;
    const char* m_text;
    Clock::time_point m_next{};
};

/// Positions of the features of each group that are not empty.
std::vector<std::vector<std::size_t>> members_of_groups(const PolygonSet& polygons,
                                                        std::span<const std::uint32_t> group_of,
                                                        std::size_t group_count) {
    std::vector<std::vector<std::size_t>> members(group_count);
    for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
        if (!polygons.empty(f)) {
            members.at(group_of[f]).push_back(f);
        }
    }
    return members;
}

/// Appends the union of the members as one feature.
void append_union(PolygonSet& result, const Geos& geos, const PolygonSet& polygons,
                  const std::vector<std::size_t>& members) {
    if (members.empty()) {
        result.begin_feature();
    } else if (members.size() == 1) {
        result.append(polygons, members.front());
    } else {
        const Geos::Geometry all = geos.multipolygon(polygons, members);
        const Geos::Geometry joined =
            geos.owned(GEOSUnaryUnion_r(geos.handle(), all.get()), "Polygons cannot be joined");
        geos.append(result, joined.get());
    }
}

}  // namespace

PolygonSet dissolve(const PolygonSet& polygons, std::span<const std::uint32_t> group_of, std::size_t group_count,
                    Progress& progress) {
    const Geos geos;
    PacedProgress paced(progress, polygons.feature_count(), "Dissolving polygons");
    PolygonSet result;
    std::size_t done = 0;
    for (const auto& members : members_of_groups(polygons, group_of, group_count)) {
        if (!paced.step(done)) {
            break;
        }
        append_union(result, geos, polygons, members);
        done += members.size();
    }
    return result;
}

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

}  // namespace kestrel::platform
