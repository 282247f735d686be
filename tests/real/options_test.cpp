// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <tuple>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

/// Coefficient option and units.
using Choice = std::tuple<CoefficientOption, const char*>;

std::string name_of(const ::testing::TestParamInfo<Choice>& choice) {
    const char* const names[] = {"High", "Medium", "Low", "Density"};
    return std::string(names[static_cast<std::size_t>(std::get<0>(choice.param))]) + std::get<1>(choice.param);
}

class RealRunWithOption : public RealData, public ::testing::WithParamInterface<Choice> {};

TEST_P(RealRunWithOption, GivesTheAreasThatTheCellsAmountTo) {
    RunSettings settings;
    std::tie(settings.option, settings.units) = GetParam();
    expect_run_as_counted(settings);
}

INSTANTIATE_TEST_SUITE_P(Real, RealRunWithOption,
                         ::testing::Combine(::testing::Values(kHigh, kMedium, kLow, kByDensity),
                                            ::testing::Values("Meters", "Feet")),
                         name_of);

}  // namespace
}  // namespace kestrel::test
