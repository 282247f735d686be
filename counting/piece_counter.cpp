// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/piece_counter.h"

#include <functional>
#include <numeric>

namespace kestrel::counting {

std::uint32_t ScenarioSets::with(std::uint32_t set, std::uint32_t scenario) {
    const std::uint64_t step = (std::uint64_t{set} << 32) | scenario;
    const auto [found, added] = m_next.try_emplace(step, static_cast<std::uint32_t>(m_sets.size()));
    if (added) {
        std::vector<std::uint32_t> members = m_sets[set];
        members.push_back(scenario);
        m_sets.push_back(std::move(members));
    }
    return found->second;
}

std::size_t PieceCounter::PieceHash::operator()(const Piece& piece) const noexcept {
    std::uint64_t mixed = (std::uint64_t{piece.zone} << 32 | piece.overlay) * 0x9E3779B97F4A7C15ULL;
    mixed = (mixed ^ (mixed >> 29) ^ piece.scenario_set) * 0xBF58476D1CE4E5B9ULL;
    return static_cast<std::size_t>(mixed ^ (mixed >> 32));
}

void PieceCounter::reserve(std::size_t pieces) {
    m_pieces.reserve(pieces);
    m_slots.reserve(pieces);
    m_pool.reserve(pieces * kFirstSlots);
}

std::size_t PieceCounter::add_piece(const Piece& piece) {
    m_pieces.push_back(piece);
    m_slots.push_back({m_pool.size(), kFirstSlots - 1, 0});
    m_pool.resize(m_pool.size() + kFirstSlots);
    return m_pieces.size() - 1;
}

std::size_t PieceCounter::find_or_add(std::uint32_t zone, std::uint32_t overlay, std::uint32_t scenario_set) {
    const Piece wanted{zone, overlay, scenario_set};
    if (overlay == kNoOverlay && scenario_set == 0) {
        if (zone >= m_plain.size()) {
            m_plain.resize(std::size_t{zone} + zone / 2 + 1, kNoPiece);
        }
        m_plain[zone] = static_cast<std::uint32_t>(add_piece(wanted));
        return m_plain[zone];
    }
    const auto [found, added] = m_positions.try_emplace(wanted, m_pieces.size());
    return added ? add_piece(wanted) : found->second;
}

std::size_t PieceCounter::free_slot(const Slots& slots, std::int64_t land_class) const noexcept {
    std::size_t offset = hash(land_class) & slots.mask;
    while (m_pool[slots.first + offset].land_class != kFree) {
        offset = (offset + 1) & slots.mask;
    }
    return slots.first + offset;
}

void PieceCounter::insert(std::size_t piece, std::int64_t land_class, std::uint64_t cells) {
    if (4 * (m_slots[piece].used + 1) > 3 * (m_slots[piece].mask + 1)) {
        grow(piece);
    }
    Slots& slots = m_slots[piece];
    m_pool[free_slot(slots, land_class)] = {land_class, cells};
    ++slots.used;
}

/// Moves a piece's slots to a place of twice the size at the end of the pool. The old place stays unused: all moves of
/// a piece together waste less than its last place holds.
void PieceCounter::grow(std::size_t piece) {
    const Slots old = m_slots[piece];
    const std::size_t size = 2 * (old.mask + 1);
    const Slots grown{m_pool.size(), size - 1, old.used};
    m_pool.resize(m_pool.size() + size);
    for (std::size_t i = old.first; i <= old.first + old.mask; ++i) {
        if (m_pool[i].land_class != kFree) {
            m_pool[free_slot(grown, m_pool[i].land_class)] = m_pool[i];
        }
    }
    m_slots[piece] = grown;
}

std::size_t PieceCounter::row_count() const noexcept {
    return std::transform_reduce(m_slots.begin(), m_slots.end(), std::size_t{0}, std::plus<>(),
                                 [](const Slots& slots) { return slots.used; });
}

void PieceCounter::append_to(ZoneCounts& counts, const ScenarioSets& sets) const {
    const std::vector<std::uint32_t> set_positions = counts.add_scenario_sets(sets.sets());
    for (std::size_t i = 0; i < m_pieces.size(); ++i) {
        const Piece& piece = m_pieces[i];
        const Slots& slots = m_slots[i];
        ZoneCounts::Row row{piece.zone, piece.overlay, set_positions[piece.scenario_set], 0, 0};
        for (std::size_t at = slots.first; at <= slots.first + slots.mask; ++at) {
            const Slot& slot = m_pool[at];
            if (slot.land_class == kFree) {
                continue;
            }
            const bool is_nodata = slot.land_class == kNodata;
            row.land_class = is_nodata ? 0 : static_cast<std::int32_t>(slot.land_class);
            row.cells = slot.cells;
            (is_nodata ? counts.nodata_rows : counts.rows).push_back(row);
        }
    }
}

}  // namespace kestrel::counting
