// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <unordered_map>
#include <vector>

#include "counting/zone_counts.h"

namespace kestrel::counting {

/// Sets of scenarios, numbered in the order in which they are met; set 0 is empty.
class ScenarioSets {
  public:
    /// The set that holds `scenario` besides the members of `set`. Scenarios are added in ascending order.
    std::uint32_t with(std::uint32_t set, std::uint32_t scenario);
    const std::vector<std::vector<std::uint32_t>>& sets() const noexcept { return m_sets; }

  private:
    std::vector<std::vector<std::uint32_t>> m_sets{{}};
    std::unordered_map<std::uint64_t, std::uint32_t> m_next;
};

/// Counts cells by piece and class. A piece is a zone under an overlay polygon (or none) under a set of scenarios.
///
/// Pieces keep small hash tables of the classes met in them, so memory follows what is there: any class codes, any
/// number of pieces.
class PieceCounter {
  public:
    /// Makes room for that many pieces at once.
    void reserve(std::size_t pieces);

    /// Position of the piece, made when it is new. Stays valid.
    std::size_t piece(std::uint32_t zone, std::uint32_t overlay, std::uint32_t scenario_set) {
        const bool plain = overlay == kNoOverlay && scenario_set == 0;
        if (plain && zone < m_plain.size() && m_plain[zone] != kNoPiece) {
            return m_plain[zone];
        }
        return find_or_add(zone, overlay, scenario_set);
    }

    /// Adds `cells` cells of a class (or of kNodata) to a piece.
    void add(std::size_t piece, std::int64_t land_class, std::uint64_t cells) {
        Slots& slots = m_slots[piece];
        std::size_t at = slots.first + (hash(land_class) & slots.mask);
        while (m_pool[at].land_class != land_class) {
            if (m_pool[at].land_class == kFree) {
                insert(piece, land_class, cells);
                return;
            }
            at = slots.first + ((at - slots.first + 1) & slots.mask);
        }
        m_pool[at].cells += cells;
    }

    /// Stands for NODATA where a class is asked for.
    static constexpr std::int64_t kNodata = std::numeric_limits<std::int64_t>::min();

    /// How many rows append_to() adds, those of NODATA included.
    std::size_t row_count() const noexcept;
    /// Appends everything counted to `counts`, which is then to be put in order.
    void append_to(ZoneCounts& counts, const ScenarioSets& sets) const;

  private:
    struct Slot {
        std::int64_t land_class = kFree;
        std::uint64_t cells = 0;
    };
    /// A piece's part of the pool: `mask` + 1 slots from `first`, of which `used` are taken.
    struct Slots {
        std::size_t first = 0;
        std::size_t mask = 0;
        std::size_t used = 0;
    };
    struct Piece {
        std::uint32_t zone = 0;
        std::uint32_t overlay = 0;
        std::uint32_t scenario_set = 0;
        friend bool operator==(const Piece&, const Piece&) = default;
    };
    struct PieceHash {
        std::size_t operator()(const Piece& piece) const noexcept;
    };

    static constexpr std::int64_t kFree = std::numeric_limits<std::int64_t>::max();
    static constexpr std::size_t kFirstSlots = 8;

    static std::size_t hash(std::int64_t land_class) noexcept {
        const std::uint64_t mixed = static_cast<std::uint64_t>(land_class) * 0x9E3779B97F4A7C15ULL;
        return static_cast<std::size_t>(mixed >> 32);
    }
    std::size_t find_or_add(std::uint32_t zone, std::uint32_t overlay, std::uint32_t scenario_set);
    std::size_t add_piece(const Piece& piece);
    void insert(std::size_t piece, std::int64_t land_class, std::uint64_t cells);
    void grow(std::size_t piece);
    std::size_t free_slot(const Slots& slots, std::int64_t land_class) const noexcept;

    std::vector<Piece> m_pieces;
    std::vector<Slots> m_slots;
    std::vector<Slot> m_pool;
    /// Pieces without overlay and scenarios, by zone; the others by what they are.
    static constexpr std::uint32_t kNoPiece = UINT32_MAX;
    std::vector<std::uint32_t> m_plain;
    std::unordered_map<Piece, std::size_t, PieceHash> m_positions;
};

}  // namespace kestrel::counting
