// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/real/expected_output.h"
#include "tests/real/output_layer_file.h"
#include "tests/real/whole_run.h"

/// \file
/// Comparisons of a run with the independent count. They fail by EXPECT and print both sides.
namespace kestrel::test {

/// The run's table of counts: every cell in its place, none elsewhere.
void expect_same_cells(const contracts::RunResult& result, const ExpectedOutput& expected);

/// The per-zone area tables, as tabulated and after each scenario.
void expect_same_tables(const contracts::RunResult& result, const ExpectedOutput& expected);

/// Every row of the output shapefile: value, areas, percent, completeness.
void expect_same_rows(const OutputFile& output, const ExpectedOutput& expected);

/// The result handed to the application: as the shapefile's rows, with the cells and flags of each zone.
void expect_same_result(const contracts::RunResult& result, const OutputFile& output, const ExpectedOutput& expected);

/// A run that finished, compared in every respect above.
void expect_run_as_counted(const RunSettings& settings);

}  // namespace kestrel::test
