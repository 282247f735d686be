// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel::counting {

/// Which of eight cells differ from the cell behind them, as the lowest eight bits. Reads nine cells.
inline std::uint64_t changes_in_8(const std::uint8_t* cells) {
    std::uint64_t here = 0;
    std::uint64_t behind = 0;
    std::memcpy(&here, cells, sizeof here);
    std::memcpy(&behind, cells + 1, sizeof behind);
    // The highest bit of each byte that is not 0, gathered in the highest byte.
    constexpr std::uint64_t kLowBits = 0x7F7F7F7F7F7F7F7FULL;
    const std::uint64_t difference = here ^ behind;
    const std::uint64_t high_bits = (((difference & kLowBits) + kLowBits) | difference) & ~kLowBits;
    return (high_bits >> 7) * 0x0102040810204080ULL >> 56;
}

/// Which of 64 cells differ from the cell behind them: bit i is that of cells[i]. Reads 65 cells.
inline std::uint64_t changes_in_64(const std::uint8_t* cells) {
    std::uint64_t changes = 0;
#if defined(__SSE2__)
    for (int i = 0; i < 64; i += 16) {
        const __m128i here = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cells + i));
        const __m128i behind = _mm_loadu_si128(reinterpret_cast<const __m128i*>(cells + i + 1));
        const auto equal = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(here, behind)));
        changes |= std::uint64_t{equal ^ 0xFFFFU} << i;
    }
#else
    for (int i = 0; i < 64; i += 8) {
        changes |= changes_in_8(cells + i) << i;
    }
#endif
    return changes;
}

/// Position of the first cell at or after `begin` that differs from the cell at `begin`; `end` when there is none.
template <typename Cell>
std::size_t end_of_run(const Cell* cells, std::size_t begin, std::size_t end) {
    const Cell value = cells[begin];
    std::size_t position = begin + 1;
    if constexpr (sizeof(Cell) == 1) {
        // Eight cells at a time: land cover lies in patches, so most comparisons are of equal cells.
        static_assert(std::endian::native == std::endian::little);
        const std::uint64_t pattern = 0x0101010101010101ULL * value;
        while (position + 8 <= end) {
            std::uint64_t chunk = 0;
            std::memcpy(&chunk, cells + position, sizeof chunk);
            const std::uint64_t difference = chunk ^ pattern;
            if (difference != 0) {
                return position + static_cast<std::size_t>(std::countr_zero(difference)) / 8;
            }
            position += 8;
        }
    }
    while (position < end && cells[position] == value) {
        ++position;
    }
    return position;
}

/// Position of the first cell of that value in [begin, end); `end` when there is none.
template <typename Cell>
std::size_t find_cell(const Cell* cells, std::size_t begin, std::size_t end, Cell value) {
    if constexpr (sizeof(Cell) == 1) {
        const void* const found = std::memchr(cells + begin, value, end - begin);
        return found == nullptr ? end : static_cast<std::size_t>(static_cast<const Cell*>(found) - cells);
    } else {
        return static_cast<std::size_t>(std::find(cells + begin, cells + end, value) - cells);
    }
}

/// Calls `take(value, count)` for every run of equal cells in [begin, end).
template <typename Cell, typename Take>
void for_each_run(const Cell* cells, std::size_t begin, std::size_t end, Take take) {
    while (begin < end) {
        const std::size_t stop = end_of_run(cells, begin, end);
        take(cells[begin], stop - begin);
        begin = stop;
    }
}

}  // namespace kestrel::counting
