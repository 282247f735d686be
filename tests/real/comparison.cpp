// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "tests/real/comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestrel::test {

namespace {

using Cells = std::map<CellPlace, std::uint64_t>;

Cells cells_by_place(const std::vector<counting::ZoneCounts::Row>& rows, const counting::ZoneCounts& counts) {
    Cells result;
    for (const counting::ZoneCounts::Row& row : rows) {
        const auto& set = counts.scenario_sets.at(row.scenario_set);
        const auto overlay = row.overlay == counting::kNoOverlay ? -1 : static_cast<std::int32_t>(row.overlay);
        result[{static_cast<std::int32_t>(row.zone), overlay, {set.begin(), set.end()}, row.land_class}] += row.cells;
    }
    return result;
}

/// Prints the first places at which two counts differ.
void expect_equal(const Cells& found, const Cells& wanted, const char* what) {
    if (found == wanted) {
        return;
    }
    Cells all = wanted;
    all.insert(found.begin(), found.end());
    int shown = 0;
    for (const auto& [place, cells] : all) {
        const auto in = [&place = place](const Cells& cells_there) {
            const auto at = cells_there.find(place);
            return at == cells_there.end() ? std::uint64_t{0} : at->second;
        };
        if (in(found) != in(wanted) && ++shown <= 10) {
            ADD_FAILURE() << what << " of zone " << std::get<0>(place) << ", density polygon " << std::get<1>(place)
                          << ", scenarios " << ::testing::PrintToString(std::get<2>(place)) << ", class "
                          << std::get<3>(place) << ": " << in(found) << ", counted " << in(wanted);
        }
    }
}

double cells_of(const CellsByClass& state, const std::string& code) {
    const auto found = state.find(std::stoi(code));
    return found == state.end() ? 0 : static_cast<double>(found->second);
}

void expect_same_table_row(const data::Table& table, std::size_t row, const ExpectedPiece& piece, std::size_t state,
                           double cell_area) {
    // Each scenario so far rounds a number three times.
    const double tolerance = 0.6e-6 + 2e-3 * static_cast<double>(state);
    for (int field = 2; field < static_cast<int>(table.fields().size()); field += 2) {
        const std::string& name = table.fields()[static_cast<std::size_t>(field)].name;
        ASSERT_EQ(name.substr(0, 5), "area-");
        EXPECT_NEAR(table.number(row, field), cells_of(piece.states[state], name.substr(5)) * cell_area, tolerance)
            << "zone " << table.key(row) << ", column " << name << ", after " << state << " scenarios";
    }
}

}  // namespace

void expect_same_cells(const contracts::RunResult& result, const ExpectedOutput& expected) {
    expect_equal(cells_by_place(result.counts.rows, result.counts), expected.cells, "Cells");
    expect_equal(cells_by_place(result.counts.nodata_rows, result.counts), expected.nodata_cells, "NODATA cells");
}

void expect_same_tables(const contracts::RunResult& result, const ExpectedOutput& expected) {
    ASSERT_FALSE(expected.pieces.empty());
    const std::size_t states = expected.pieces.begin()->second.states.size();
    ASSERT_GE(result.zone_tables.size(), states);
    for (std::size_t state = 0; state < states; ++state) {
        const data::Table& table = result.zone_tables[state];
        EXPECT_EQ(table.row_count(), expected.pieces.size());
        for (const auto& [key, piece] : expected.pieces) {
            const std::optional<std::size_t> row = table.find_row(key);
            ASSERT_TRUE(row.has_value()) << key;
            expect_same_table_row(table, *row, piece, state, expected.cell_area);
        }
    }
}

void expect_same_rows(const OutputFile& output, const ExpectedOutput& expected) {
    EXPECT_EQ(output.rows.size(), expected.zones.size());
    for (const OutputRow& row : output.rows) {
        const auto found = expected.zones.find(row.value);
        ASSERT_NE(found, expected.zones.end()) << row.value;
        const ExpectedZone& zone = found->second;
        EXPECT_NEAR(row.total_area, zone.total_area, zone.area_tolerance) << row.value;
        EXPECT_NEAR(row.impervious_area, zone.impervious_area, zone.area_tolerance) << row.value;
        EXPECT_NEAR(row.percent, zone.percent, zone.percent_tolerance) << row.value;
        EXPECT_EQ(row.complete, zone.touches_nodata ? "N" : "Y") << row.value;
    }
}

void expect_same_result(const contracts::RunResult& result, const OutputFile& output, const ExpectedOutput& expected) {
    ASSERT_EQ(result.zones.size(), output.rows.size());
    for (std::size_t i = 0; i < result.zones.size(); ++i) {
        const contracts::ZoneResult& zone = result.zones[i];
        const OutputRow& row = output.rows[i];
        EXPECT_EQ(zone.value, row.value);
        EXPECT_EQ(zone.total_area, row.total_area) << zone.value;
        EXPECT_EQ(zone.impervious_area, row.impervious_area) << zone.value;
        EXPECT_EQ(zone.percent, row.percent) << zone.value;
        EXPECT_EQ(zone.complete(), row.complete == "Y") << zone.value;
        const ExpectedZone& counted = expected.zones.at(zone.value);
        EXPECT_EQ(zone.cells, counted.cells) << zone.value;
        EXPECT_EQ(zone.nodata_cells, counted.nodata_cells) << zone.value;
        EXPECT_EQ(zone.touches_nodata, counted.touches_nodata) << zone.value;
        EXPECT_EQ(zone.beyond_raster, counted.beyond_raster) << zone.value;
    }
}

void expect_run_as_counted(const RunSettings& settings) {
    const ExpectedOutput expected = expected_output(settings);
    ASSERT_EQ(expected.centres_near_edges, 0U) << "the count by other means is not certain for these data";
    const WholeRun run(settings);
    EXPECT_THAT(run.call_stacks, ::testing::IsEmpty());
    ASSERT_TRUE(run.result.finished) << ::testing::PrintToString(run.boxes);
    const OutputFile output = read_output(run.output());
    expect_same_cells(run.result, expected);
    expect_same_tables(run.result, expected);
    expect_same_rows(output, expected);
    expect_same_result(run.result, output, expected);
    EXPECT_THAT(run.temporary_files(), ::testing::IsEmpty());
}

}  // namespace kestrel::test
