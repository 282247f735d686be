// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/piece_spans.h"

namespace kestrel::counting {

/// Cuts the parts of a row where spans of `cover` begin and end; set(part, owner) changes those that are covered. Both
/// are ascending and disjoint.
template <typename Set>
void PieceSpans::cut(const std::vector<RowSpan>& cover, Set set) {
    if (cover.empty()) {
        return;
    }
    m_room.clear();
    std::size_t next = 0;
    for (Part part : m_parts) {
        while (next < cover.size() && cover[next].end <= part.begin) {
            ++next;
        }
        for (std::size_t c = next; c < cover.size() && cover[c].begin < part.end; ++c) {
            if (part.begin < cover[c].begin) {
                m_room.push_back(part);
                m_room.back().end = cover[c].begin;
                part.begin = cover[c].begin;
            }
            m_room.push_back(part);
            m_room.back().end = std::min(part.end, cover[c].end);
            set(m_room.back(), cover[c].owner);
            part.begin = m_room.back().end;
        }
        if (part.begin < part.end) {
            m_room.push_back(part);
        }
    }
    m_parts.swap(m_room);
}

void PieceSpans::lay_out_row(const LayerSweeps& layers, std::size_t row, ScenarioSets& sets) {
    m_row = m_zone_rows[row];
    resolve_overlaps(m_row);
    m_parts.clear();
    for (const RowSpan& span : m_row) {
        m_parts.push_back({span.begin, span.end, span.owner, kNoOverlay, 0});
    }
    if (layers.overlay) {
        resolve_overlaps(m_overlay_rows[row]);
        cut(m_overlay_rows[row], [](Part& part, std::uint32_t owner) { part.overlay = owner; });
    }
    for (std::uint32_t s = 0; s < m_scenario_rows.size(); ++s) {
        unite(m_scenario_rows[s][row]);
        cut(m_scenario_rows[s][row],
            [&](Part& part, std::uint32_t) { part.scenario_set = sets.with(part.scenario_set, s); });
    }
}

void PieceSpans::lay_out(const LayerSweeps& layers, int band, PieceCounter& counter, ScenarioSets& sets) {
    layers.zones.spans(band, m_scratch, m_zone_rows);
    if (layers.overlay) {
        layers.overlay->spans(band, m_scratch, m_overlay_rows);
    }
    m_scenario_rows.resize(layers.scenarios.size());
    for (std::size_t s = 0; s < layers.scenarios.size(); ++s) {
        layers.scenarios[s].spans(band, m_scratch, m_scenario_rows[s]);
    }
    m_spans.clear();
    m_begin.assign(1, 0);
    for (std::size_t row = 0; row < m_zone_rows.size(); ++row) {
        lay_out_row(layers, row, sets);
        for (const Part& part : m_parts) {
            const std::size_t piece = counter.piece(part.zone, part.overlay, part.scenario_set);
            m_spans.push_back({part.begin, part.end, static_cast<std::uint32_t>(piece)});
        }
        m_begin.push_back(m_spans.size());
    }
    m_next.assign(m_begin.begin(), m_begin.end() - 1);
}

}  // namespace kestrel::counting
