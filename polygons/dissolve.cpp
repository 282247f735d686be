// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/dissolve.h"

#include <geos_c.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "base/parallel.h"
#include "polygons/edge_cancelling.h"
#include "polygons/geos_support.h"
#include "polygons/polygon_arrangement.h"
#include "polygons/polygon_check.h"

namespace kestrel::polygons {

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
        if (joined && (certainly_valid(*joined, 0) || geos.valid(geos.multipolygon(*joined, 0)))) {
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

}  // namespace kestrel::polygons
