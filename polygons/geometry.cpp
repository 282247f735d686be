// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/geometry.h"

#include <geos_c.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <optional>
#include <vector>

#include "base/errors.h"
#include "base/parallel.h"
#include "polygons/edge_cancelling.h"
#include "polygons/geos_support.h"
#include "polygons/polygon_arrangement.h"
#include "polygons/polygon_check.h"

namespace kestrel::polygons {

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

namespace {

/// Features that are checked as one item of work.
constexpr std::size_t kFeaturesPerItem = 256;

/// A GEOS context for each thread, made when the thread first needs it.
class ThreadContexts {
  public:
    explicit ThreadContexts(int threads) : m_contexts(static_cast<std::size_t>(threads)) {}

    const Geos& of(int worker) {
        auto& context = m_contexts[static_cast<std::size_t>(worker)];
        if (!context) {
            context = std::make_unique<Geos>();
        }
        return *context;
    }

  private:
    std::vector<std::unique_ptr<Geos>> m_contexts;
};

/// Which features are invalid; none when told to stop.
std::vector<std::uint8_t> find_invalid(const PolygonSet& polygons, base::Progress& progress, int threads) {
    const std::size_t count = polygons.feature_count();
    std::vector<std::uint8_t> invalid(count, 0);
    ThreadContexts contexts(threads);
    const std::size_t items = (count + kFeaturesPerItem - 1) / kFeaturesPerItem;
    const bool all =
        base::for_each_item(items, threads, progress, "Checking polygons", [&](std::size_t item, int worker) {
            const std::size_t end = std::min(count, (item + 1) * kFeaturesPerItem);
            for (std::size_t f = item * kFeaturesPerItem; f < end; ++f) {
                if (!polygons.empty(f) && !certainly_valid(polygons, f)) {
                    const Geos& geos = contexts.of(worker);
                    invalid[f] = valid(geos, geos.multipolygon(polygons, f)) ? 0 : 1;
                }
            }
        });
    return all ? invalid : std::vector<std::uint8_t>(count, 0);
}

}  // namespace

std::size_t repair(PolygonSet& polygons) {
    base::NoProgress nobody;
    return repair(polygons, nobody);
}

std::size_t repair(PolygonSet& polygons, base::Progress& progress, int threads) {
    const std::vector<std::uint8_t> invalid = find_invalid(polygons, progress, base::thread_count(threads));
    const auto count = static_cast<std::size_t>(std::count(invalid.begin(), invalid.end(), 1));
    if (count == 0) {
        return 0;
    }
    const Geos geos;
    PolygonSet whole;
    for (std::size_t f = 0; f < invalid.size(); ++f) {
        if (invalid[f] != 0) {
            geos.append(whole, repaired(geos, geos.multipolygon(polygons, f)).get());
        } else {
            whole.append(polygons, f);
        }
    }
    polygons = std::move(whole);
    return count;
}

namespace {

/// The features of each group that are not empty, in their order.
class GroupMembers {
  public:
    GroupMembers(const PolygonSet& polygons, std::span<const std::uint32_t> group_of, std::size_t group_count)
        : m_begin(group_count + 1, 0) {
        // A counting sort by group.
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            m_begin.at(group_of[f] + std::size_t{1}) += polygons.empty(f) ? 0 : 1;
        }
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        m_features.resize(m_begin.back());
        std::vector<std::size_t> next(m_begin.begin(), m_begin.end() - 1);
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            if (!polygons.empty(f)) {
                m_features[next[group_of[f]]++] = f;
            }
        }
    }

    std::span<const std::size_t> of(std::size_t group) const {
        return std::span(m_features).subspan(m_begin[group], m_begin[group + 1] - m_begin[group]);
    }

  private:
    std::vector<std::size_t> m_begin;
    std::vector<std::size_t> m_features;
};

/// Appends the union of the members, which are none or several, as one feature.
void append_union(PolygonSet& result, const Geos& geos, const PolygonSet& polygons,
                  std::span<const std::size_t> members) {
    if (members.empty()) {
        result.begin_feature();
        return;
    }
    for (const auto& unite : {cancel_shared_edges, arranged_union}) {
        const std::optional<PolygonSet> joined = unite(polygons, members);
        if (joined && (certainly_valid(*joined, 0) || valid(geos, geos.multipolygon(*joined, 0)))) {
            result.append(*joined, 0);
            return;
        }
    }
    const Geos::Geometry all = geos.multipolygon(polygons, members);
    const Geos::Geometry joined = geos.owned(GEOSUnaryUnion_r(geos.handle(), all.get()), "Polygons cannot be joined");
    geos.append(result, joined.get());
}

}  // namespace

DissolvedPolygons dissolve(const SharedPolygons& polygons, std::span<const std::uint32_t> group_of,
                           std::size_t group_count, base::Progress& progress, int threads) {
    const GroupMembers members(*polygons, group_of, group_count);
    const int workers = base::thread_count(threads);
    // Few large groups are handed out one by one, many small ones some hundred at a time.
    const std::size_t step = std::clamp<std::size_t>(group_count / 64, 1, 256);
    std::vector<PolygonSet> joined((group_count + step - 1) / step);
    ThreadContexts contexts(workers);
    base::for_each_item(joined.size(), workers, progress, "Dissolving polygons", [&](std::size_t item, int worker) {
        const std::size_t end = std::min(group_count, (item + 1) * step);
        for (std::size_t group = item * step; group < end; ++group) {
            if (members.of(group).size() != 1) {
                append_union(joined[item], contexts.of(worker), *polygons, members.of(group));
            }
        }
    });
    DissolvedPolygons result(polygons, std::move(joined));
    std::size_t position = 0;
    for (std::size_t group = 0; group < group_count; ++group) {
        position = group % step == 0 ? 0 : position;
        if (members.of(group).size() == 1) {
            result.add_from_input(members.of(group).front());
        } else {
            result.add_joined(group / step, position++);
        }
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

}  // namespace kestrel::polygons
