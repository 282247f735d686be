// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "counting/piece_counter.h"

namespace kestrel::counting {

/// Counts the bytes under long spans of one band, piece by piece.
///
/// Where runs of equal cells end is found for 64 cells at once. Where cells change often, counting every one of them
/// costs less than going from run to run; each piece has four small histograms, so that neighbouring cells do not wait
/// for one another. What they hold is handed on when the band is done.
class BandHistogram {
  public:
    /// \param nodata the value whose cells are NODATA.
    explicit BandHistogram(std::optional<std::uint8_t> nodata);

    /// Counts `count` cells of a piece. Classes beyond the first 63 go straight to `counter`.
    void count(std::size_t piece, const std::uint8_t* cells, std::size_t count, PieceCounter& counter);
    /// Hands everything on, and forgets it.
    void flush(PieceCounter& counter);

  private:
    static constexpr std::size_t kColumns = 64;
    /// Counts the cells whose class has no column yet.
    static constexpr std::uint8_t kOther = kColumns - 1;
    static constexpr std::size_t kLanes = 4;
    static constexpr std::uint32_t kNoSlot = UINT32_MAX;

    std::uint32_t* slot(std::size_t piece);
    void count_each(const std::uint8_t* cells, std::size_t count, std::uint32_t* lanes) const;
    void count_runs(const std::uint8_t* cells, std::size_t count, std::uint32_t* lanes) const;
    void count_others(std::size_t piece, const std::uint8_t* cells, std::size_t count, std::uint32_t* slot,
                      PieceCounter& counter);

    /// The class of a cell, as the counter knows it.
    std::int64_t class_of(std::uint8_t value) const noexcept {
        return m_nodata == value ? PieceCounter::kNodata : std::int64_t{value};
    }

    std::optional<std::uint8_t> m_nodata;
    std::array<std::uint8_t, 256> m_column_of{};
    std::vector<std::uint8_t> m_class_of;  // of each column in use
    std::vector<std::uint32_t> m_slot_of;  // of each piece
    std::vector<std::size_t> m_pieces;     // of each slot
    std::vector<std::uint32_t> m_counts;   // kLanes histograms of kColumns for each slot
};

}  // namespace kestrel::counting
