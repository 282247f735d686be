// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/real/independent_count.h"

namespace kestrel::test {
namespace {

class RealDataItself : public RealData {};

// Where a centre lies on an edge, two ways of deciding may differ. So that no such cell has to be left out of the
// comparisons, there must be none.
TEST_F(RealDataItself, HoldNoCellCentreWithinAMicrometreOfAnEdge) {
    const LandCover land_cover = read_land_cover(real_file("nlcd2011.tif"));
    for (const char* source :
         {"sheds.shp", "sheds.gpkg|layername=sheds", "blockgroups.shp", "town_plan.shp", "resort_wgs84.gpkg"}) {
        const Shapes shapes = read_shapes(real_file(source), "", {}, land_cover);
        EXPECT_EQ(centres_near_edges(shapes, land_cover, 1e-6), 0U) << source;
    }
}

}  // namespace
}  // namespace kestrel::test
