// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

/// \file
/// Runs of neighbouring cells in one row of a grid, and who owns them.
namespace kestrel::counting {

/// The cells [begin, end) of a row that belong to `owner`.
struct RowSpan {
    std::int32_t begin = 0;
    std::int32_t end = 0;
    std::uint32_t owner = 0;
    friend bool operator==(const RowSpan&, const RowSpan&) = default;
};

/// Makes the spans of a row disjoint and ascending: a cell that several spans cover goes to the one with the highest
/// owner, the later feature.
void resolve_overlaps(std::vector<RowSpan>& spans);

/// Joins the spans of a row, whoever owns them, into ascending disjoint ones that do not touch. Their owner is 0.
void unite(std::vector<RowSpan>& spans);

}  // namespace kestrel::counting
