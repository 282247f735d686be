// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/real/comparison.h"

namespace kestrel::test {
namespace {

class RealSpecialZones : public RealData {
  protected:
    static contracts::ZoneResult zone(const WholeRun& run, const std::string& value) {
        const auto& zones = run.result.zones;
        const auto found =
            std::find_if(zones.begin(), zones.end(), [&](const auto& one) { return one.value == value; });
        if (found == zones.end()) {
            throw std::runtime_error("the run has no zone " + value);
        }
        return *found;
    }

    static OutputRow row(const WholeRun& run, const std::string& value) {
        for (const OutputRow& one : read_output(run.output()).rows) {
            if (one.value == value) {
                return one;
            }
        }
        throw std::runtime_error("the output has no zone " + value);
    }

    static WholeRun run_of(std::vector<std::int64_t> selected) {
        RunSettings settings;
        settings.selected = std::move(selected);
        return WholeRun(settings);
    }
};

TEST_F(RealSpecialZones, OneWithoutACellCentreStaysWithAreaZero) {
    const WholeRun run(RunSettings{});
    const OutputRow weir_house = row(run, "9001");
    EXPECT_EQ(weir_house.total_area, 0);
    EXPECT_EQ(weir_house.impervious_area, 0);
    EXPECT_EQ(weir_house.percent, 0);
    EXPECT_EQ(weir_house.complete, "Y");
    EXPECT_TRUE(zone(run, "9001").without_cells());
    EXPECT_FALSE(zone(run, "9001").beyond_raster);
}

TEST_F(RealSpecialZones, OneOutsideOfTheRasterStaysWithAreaZeroAndIsFlagged) {
    const WholeRun run(RunSettings{});
    const OutputRow far_reservoir = row(run, "9002");
    EXPECT_EQ(far_reservoir.total_area, 0);
    EXPECT_EQ(far_reservoir.percent, 0);
    EXPECT_EQ(far_reservoir.complete, "Y");
    EXPECT_TRUE(zone(run, "9002").without_cells());
    EXPECT_TRUE(zone(run, "9002").beyond_raster);
}

TEST_F(RealSpecialZones, OneThatReachesBeyondTheRasterIsFlaggedAndStaysComplete) {
    const WholeRun run = run_of({15});
    EXPECT_TRUE(zone(run, "3").beyond_raster);
    EXPECT_FALSE(zone(run, "3").touches_nodata);
    EXPECT_EQ(row(run, "3").complete, "Y");
    // Its cells cover what lies inside of the raster only.
    EXPECT_LT(row(run, "3").total_area, 8678.88302);
    EXPECT_GT(row(run, "3").total_area, 0);
    EXPECT_THAT(run.boxes, ::testing::IsEmpty());
}

TEST_F(RealSpecialZones, ALaterOneOverItsNeighboursOwnsAllItsCells) {
    const LandCover land_cover = read_land_cover(real_file("nlcd2011.tif"));
    const Shapes campus = read_shapes(real_file("sheds.shp"), "SHED_ID", {24}, land_cover);
    const std::vector<std::int32_t> owners = burn(campus, land_cover);
    const auto own = static_cast<std::uint64_t>(std::count(owners.begin(), owners.end(), 0));
    const WholeRun run(RunSettings{});
    EXPECT_GT(own, 5000U);
    EXPECT_EQ(zone(run, "60").cells + zone(run, "60").nodata_cells, own);
}

TEST_F(RealSpecialZones, ALoneNodataCellAcrossABorderMarksBothSides) {
    const WholeRun first = run_of({0});
    const WholeRun second = run_of({2});
    EXPECT_EQ(row(first, "3").complete, "N");
    EXPECT_EQ(row(second, "7").complete, "N");
    EXPECT_EQ(zone(first, "3").nodata_cells + zone(second, "7").nodata_cells, 1U);
}

TEST_F(RealSpecialZones, OnesThatTouchNodataAreToldOnce) {
    const WholeRun run(RunSettings{});
    const reporting::MessageBox nodata{
        "Some of the (selected) polygons in the Analysis Layer \roverlapped NODATA cells in the Land Cover Layer.  The \rarea calculations for these polygons excludes the area \rof the NODATA cells.  These polygons may be identified \rby a 'N' in the 'Complete' field of the newly created \rImpervious Surface theme.",
        "NODATA Cells!", reporting::Icon::information};
    EXPECT_THAT(run.boxes, ::testing::ElementsAre(nodata));
}

TEST_F(RealSpecialZones, OneOfNodataCellsBarelyHasTheAreaOfItsOtherCells) {
    const WholeRun run = run_of({14});
    EXPECT_GT(zone(run, "27").nodata_cells, 1000U);
    EXPECT_EQ(row(run, "27").complete, "N");
    const double cell = 31.530298224786595 * 31.524658701787931 * 0.0001;
    EXPECT_NEAR(row(run, "27").total_area, static_cast<double>(zone(run, "27").cells) * cell, 1e-5);
}

TEST_F(RealSpecialZones, AHoleBelongsToNobodyOrToThePartThatFillsIt) {
    const LandCover land_cover = read_land_cover(real_file("nlcd2011.tif"));
    for (const std::int64_t id : {5, 9, 17}) {
        const Shapes shape = read_shapes(real_file("sheds.shp"), "SHED_ID", {id}, land_cover);
        const std::vector<std::int32_t> owners = burn(shape, land_cover);
        const WholeRun run = run_of({id});
        EXPECT_EQ(run.result.zones[0].cells + run.result.zones[0].nodata_cells,
                  static_cast<std::uint64_t>(std::count(owners.begin(), owners.end(), 0)))
            << id;
    }
}

TEST_F(RealSpecialZones, NoneWithACellEndsTheRunWithTheMessageOfNoOverlap) {
    const WholeRun run = run_of({25, 26});
    const reporting::MessageBox none{
        "None of the selected features within sheds\r intersect with the Land Cover layer nlcd2011",
        "Error: Area Calculation", reporting::Icon::critical};
    EXPECT_THAT(run.boxes, ::testing::ElementsAre(none));
    EXPECT_FALSE(run.result.finished);
    EXPECT_THAT(run.output_files(), ::testing::IsEmpty());
}

TEST_F(RealSpecialZones, OutputPolygonsAreTheUnionOfTheZonesOfTheirValue) {
    const LandCover land_cover = read_land_cover(real_file("nlcd2011.tif"));
    const Shapes zones = read_shapes(real_file("sheds.shp"), "SHED_ID", {}, land_cover);
    const WholeRun run(RunSettings{});
    const OutputFile output = read_output(run.output());
    for (std::size_t i = 0; i < output.rows.size(); ++i) {
        OGRGeometryCollection of_value;
        OGRMultiPolygon parts;
        for (std::size_t zone = 0; zone < zones.shapes.size(); ++zone) {
            if (zones.texts[zone] == output.rows[i].value) {
                if (wkbFlatten(zones.shapes[zone]->getGeometryType()) == wkbPolygon) {
                    parts.addGeometry(zones.shapes[zone].get());
                } else {
                    for (const OGRPolygon* part : *zones.shapes[zone]->toMultiPolygon()) {
                        parts.addGeometry(part);
                    }
                }
            }
        }
        const OGRGeometryUniquePtr joined(parts.UnionCascaded());
        const OGRGeometryUniquePtr difference(joined->SymDifference(output.shapes[i].get()));
        double area = 0;
        if (difference->getGeometryType() == wkbPolygon) {
            area = difference->toPolygon()->get_Area();
        } else if (const auto* collection = dynamic_cast<const OGRGeometryCollection*>(difference.get())) {
            area = collection->get_Area();
        }
        EXPECT_NEAR(area, 0, 0.01) << output.rows[i].value;
        EXPECT_TRUE(output.shapes[i]->IsValid()) << output.rows[i].value;
    }
}

}  // namespace
}  // namespace kestrel::test
