// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/demo/demo_regions.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "base/errors.h"

namespace kestrel::cli {

namespace {

struct Square {
    int column;
    int row;
};

constexpr std::array kNeighbours{Square{-1, 0}, Square{1, 0}, Square{0, -1}, Square{0, 1}};

/// Two squares of a region that meet in a corner only would make a polygon that touches itself.
bool join_corners(RegionLattice& lattice) {
    bool changed = false;
    for (int row = 0; row + 1 < lattice.rows; ++row) {
        for (int column = 0; column + 1 < lattice.columns; ++column) {
            const std::int32_t upper_left = lattice.at(column, row);
            const std::int32_t upper_right = lattice.at(column + 1, row);
            const std::int32_t lower_left = lattice.at(column, row + 1);
            const std::int32_t lower_right = lattice.at(column + 1, row + 1);
            const bool falling = upper_left == lower_right && upper_left != upper_right && upper_left != lower_left;
            const bool rising = upper_right == lower_left && upper_right != upper_left && upper_right != lower_right;
            if (falling) {
                lattice.set(column + 1, row, upper_left);
            } else if (rising) {
                lattice.set(column, row, upper_right);
            }
            changed = changed || falling || rising;
        }
    }
    return changed;
}

/// The squares connected with `start` by their sides.
std::vector<Square> piece_of(const RegionLattice& lattice, Square start, std::vector<std::uint8_t>& seen) {
    const auto index = [&](Square s) {
        return static_cast<std::size_t>(s.row) * static_cast<std::size_t>(lattice.columns) +
               static_cast<std::size_t>(s.column);
    };
    const std::int32_t label = lattice.at(start.column, start.row);
    std::vector<Square> piece{start};
    seen[index(start)] = 1;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        for (const Square step : kNeighbours) {
            const Square next{piece[i].column + step.column, piece[i].row + step.row};
            if (next.column >= 0 && next.row >= 0 && next.column < lattice.columns && next.row < lattice.rows &&
                lattice.at(next.column, next.row) == label && seen[index(next)] == 0) {
                seen[index(next)] = 1;
                piece.push_back(next);
            }
        }
    }
    return piece;
}

/// A neighbour's label for a piece that is cut off from its region.
std::int32_t label_around(const RegionLattice& lattice, const std::vector<Square>& piece) {
    const std::int32_t own = lattice.at(piece.front().column, piece.front().row);
    for (const Square square : piece) {
        for (const Square step : kNeighbours) {
            const std::int32_t label = lattice.at(square.column + step.column, square.row + step.row);
            if (label != own && label != -1) {
                return label;
            }
        }
    }
    return -1;
}

/// Of every region only the largest piece keeps the name.
bool absorb_pieces(RegionLattice& lattice) {
    std::map<std::int32_t, std::vector<std::vector<Square>>> pieces;
    std::vector<std::uint8_t> seen(lattice.labels.size(), 0);
    for (int row = 0; row < lattice.rows; ++row) {
        for (int column = 0; column < lattice.columns; ++column) {
            const std::size_t index = static_cast<std::size_t>(row) * static_cast<std::size_t>(lattice.columns) +
                                      static_cast<std::size_t>(column);
            if (seen[index] == 0 && lattice.labels[index] != -1) {
                pieces[lattice.labels[index]].push_back(piece_of(lattice, {column, row}, seen));
            }
        }
    }
    bool changed = false;
    for (auto& [label, list] : pieces) {
        std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.size() > b.size(); });
        for (std::size_t i = 1; i < list.size(); ++i) {
            const std::int32_t other = label_around(lattice, list[i]);
            for (const Square square : list[i]) {
                lattice.set(square.column, square.row, other);
            }
            changed = true;
        }
    }
    return changed;
}

using Corner = std::pair<int, int>;  // row, column: sorted from the top
/// The border of a region as steps from corner to corner, with the region at their right.
using Border = std::map<Corner, Corner>;

std::map<std::int32_t, Border> borders_of(const RegionLattice& lattice) {
    std::map<std::int32_t, Border> borders;
    for (int row = 0; row < lattice.rows; ++row) {
        for (int column = 0; column < lattice.columns; ++column) {
            const std::int32_t label = lattice.at(column, row);
            if (label == -1) {
                continue;
            }
            Border& border = borders[label];
            const Corner corners[]{{row, column}, {row, column + 1}, {row + 1, column + 1}, {row + 1, column}};
            const bool open[]{lattice.at(column, row - 1) != label, lattice.at(column + 1, row) != label,
                              lattice.at(column, row + 1) != label, lattice.at(column - 1, row) != label};
            for (std::size_t side = 0; side < 4; ++side) {
                if (open[side]) {
                    border.emplace(corners[side], corners[(side + 1) % 4]);
                }
            }
        }
    }
    return borders;
}

}  // namespace

void make_regions_whole(RegionLattice& lattice) {
    constexpr int kEnough = 50;  // a few rounds do; two rules that undo each other must not go on for ever
    for (int round = 0; round < kEnough; ++round) {
        const bool joined = join_corners(lattice);
        const bool absorbed = absorb_pieces(lattice);
        if (!joined && !absorbed) {
            return;
        }
    }
}

polygons::PolygonSet region_polygons(const RegionLattice& lattice,
                                     const std::function<polygons::Point(int column, int row)>& place,
                                     std::vector<std::int32_t>& labels) {
    polygons::PolygonSet polygons;
    for (auto& [label, border] : borders_of(lattice)) {
        labels.push_back(label);
        polygons.begin_feature();
        polygons.begin_polygon();
        // The topmost corner lies on the outer border, so the shell comes before the holes.
        while (!border.empty()) {
            polygons.begin_ring();
            const Corner start = border.begin()->first;
            Corner corner = start;
            do {
                polygons.add(place(corner.second, corner.first));
                const auto step = border.find(corner);
                if (step == border.end()) {
                    throw base::RuntimeError(base::kInvalidProcedureCall, "A region touches itself");
                }
                corner = step->second;
                border.erase(step);
            } while (corner != start);
            polygons.add(place(start.second, start.first));
        }
    }
    return polygons;
}

}  // namespace kestrel::cli
