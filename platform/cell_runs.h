// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrel::platform {

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

}  // namespace kestrel::platform
