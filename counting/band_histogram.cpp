// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/band_histogram.h"

#include <bit>
#include <cstring>

#include "counting/cell_runs.h"

namespace kestrel::counting {

namespace {

/// Among 64 cells; with more changes than this the cells are counted one by one.
constexpr std::uint64_t kManyChanges = 20;

/// The number of bits that are set, without a call where there is no instruction for it.
std::uint64_t bits_in(std::uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555ULL;
    bits = (bits & 0x3333333333333333ULL) + (bits >> 2 & 0x3333333333333333ULL);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0FULL;
    return bits * 0x0101010101010101ULL >> 56;
}

}  // namespace

BandHistogram::BandHistogram(std::optional<std::uint8_t> nodata) : m_nodata(nodata) {
    m_column_of.fill(kOther);
}

std::uint32_t* BandHistogram::slot(std::size_t piece) {
    if (piece >= m_slot_of.size()) {
        m_slot_of.resize(2 * piece + 1, kNoSlot);
    }
    if (m_slot_of[piece] == kNoSlot) {
        m_slot_of[piece] = static_cast<std::uint32_t>(m_pieces.size());
        m_pieces.push_back(piece);
        m_counts.resize(m_pieces.size() * kLanes * kColumns, 0);
    }
    return m_counts.data() + m_slot_of[piece] * kLanes * kColumns;
}

void BandHistogram::count_each(const std::uint8_t* cells, std::size_t count, std::uint32_t* lanes) const {
    static_assert(std::endian::native == std::endian::little);
    const std::uint8_t* const column_of = m_column_of.data();
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, cells + i, sizeof eight);
        ++lanes[0 * kColumns + column_of[eight & 255]];
        ++lanes[1 * kColumns + column_of[eight >> 8 & 255]];
        ++lanes[2 * kColumns + column_of[eight >> 16 & 255]];
        ++lanes[3 * kColumns + column_of[eight >> 24 & 255]];
        ++lanes[0 * kColumns + column_of[eight >> 32 & 255]];
        ++lanes[1 * kColumns + column_of[eight >> 40 & 255]];
        ++lanes[2 * kColumns + column_of[eight >> 48 & 255]];
        ++lanes[3 * kColumns + column_of[eight >> 56]];
    }
    for (; i < count; ++i) {
        ++lanes[column_of[cells[i]]];
    }
}

/// Counts more than 64 cells.
void BandHistogram::count_runs(const std::uint8_t* cells, std::size_t count, std::uint32_t* lanes) const {
    const std::uint8_t* const column_of = m_column_of.data();
    std::size_t run = 0;  // where the present run begins; it reaches up to the block at least
    const auto end_run = [&](std::size_t end) {
        lanes[column_of[cells[run]]] += static_cast<std::uint32_t>(end - run);
        run = end;
    };
    const auto end_runs = [&](std::uint64_t changes, std::size_t block) {
        for (; changes != 0; changes &= changes - 1) {
            end_run(block + static_cast<std::size_t>(std::countr_zero(changes)) + 1);
        }
    };
    std::size_t block = 0;
    for (; block + 64 < count; block += 64) {
        const std::uint64_t changes = changes_in_64(cells + block);
        if (bits_in(changes) > kManyChanges) {
            end_run(block);
            count_each(cells + block, 64, lanes);
            run = block + 64;
        } else {
            end_runs(changes, block);
        }
    }
    if (block + 1 < count) {
        // The last 64 changes that there may be, less those that were looked at.
        const std::size_t last = count - 65;
        const std::size_t done = block - last;
        end_runs(changes_in_64(cells + last) >> done << done, last);
    }
    end_run(count);
}

void BandHistogram::count(std::size_t piece, const std::uint8_t* cells, std::size_t count, PieceCounter& counter) {
    std::uint32_t* const lanes = slot(piece);
    if (count <= 64) {
        count_each(cells, count, lanes);
    } else {
        count_runs(cells, count, lanes);
    }
    if ((lanes[kOther] | lanes[kColumns + kOther] | lanes[2 * kColumns + kOther] | lanes[3 * kColumns + kOther]) != 0) {
        count_others(piece, cells, count, lanes, counter);
    }
}

/// Goes over a span again whose cells were not all of known classes: gives these their columns while there are some.
void BandHistogram::count_others(std::size_t piece, const std::uint8_t* cells, std::size_t count, std::uint32_t* slot,
                                 PieceCounter& counter) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        slot[lane * kColumns + kOther] = 0;
    }
    std::array<bool, 256> met_now{};
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t value = cells[i];
        if (m_column_of[value] == kOther && m_class_of.size() < kOther) {
            m_column_of[value] = static_cast<std::uint8_t>(m_class_of.size());
            m_class_of.push_back(value);
            met_now[value] = true;
        }
        if (m_column_of[value] == kOther) {
            counter.add(piece, class_of(value), 1);
        } else if (met_now[value]) {
            ++slot[m_column_of[value]];
        }
    }
}

void BandHistogram::flush(PieceCounter& counter) {
    for (std::size_t s = 0; s < m_pieces.size(); ++s) {
        const std::uint32_t* const lanes = m_counts.data() + s * kLanes * kColumns;
        for (std::size_t column = 0; column < m_class_of.size(); ++column) {
            std::uint64_t cells = 0;
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                cells += lanes[lane * kColumns + column];
            }
            if (cells > 0) {
                counter.add(m_pieces[s], class_of(m_class_of[column]), cells);
            }
        }
        m_slot_of[m_pieces[s]] = kNoSlot;
    }
    m_pieces.clear();
    m_counts.clear();
}

}  // namespace kestrel::counting
