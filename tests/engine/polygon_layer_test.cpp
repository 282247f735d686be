// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/polygon_layer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "tests/support/small_world.h"

namespace kestrel {
namespace {

using data::FeatureClass;
using data::SpatialReference;
using data::Value;
using test::Box;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

base::NoProgress nobody;

FeatureClass source(test::SmallWorld& world, const std::string& reference = "EPSG:26912") {
    world.layer("sheds", {test::integer_field("ID"), test::text_field("NAME")},
                {{{Box{0, 0, 1, 1}}, {std::int64_t{1}, "a"}}, {{Box{1, 0, 3, 1}}, {std::int64_t{2}, "b"}}}, {},
                reference);
    return FeatureClass::open({.path = world.folder / "sheds.shp"});
}

TEST(PolygonLayer, HoldsTheFieldThatWasAskedFor) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world), "Sheds", "NAME", nobody, 0);
    EXPECT_EQ(layer.name, "Sheds");
    EXPECT_EQ(layer.field.name, "NAME");
    EXPECT_THAT(layer.values, ElementsAre(Value("a"), Value("b")));
    EXPECT_DOUBLE_EQ(layer.polygons->area(1), 20000);
    EXPECT_THAT(world.said.notices, IsEmpty());
}

TEST(PolygonLayer, WithoutAFieldHasNoValues) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world), "Sheds", "", nobody, 0);
    EXPECT_EQ(layer.field.name, "");
    EXPECT_THAT(layer.values, IsEmpty());
}

TEST(PolygonLayer, AMissingFieldIsErrorFive) {
    test::SmallWorld world;
    const FeatureClass sheds = source(world);
    const auto error = test::error_of([&] { read_polygon_layer(sheds, "Sheds", "OTHER", nobody, 0); });
    EXPECT_EQ(error.number(), 5);
    EXPECT_EQ(error.description(), "The layer \"Sheds\" has no field \"OTHER\"");
}

TEST(PolygonLayer, InvalidPolygonsAreRepairedAndCounted) {
    test::SmallWorld world;
    // Parts that overlap: as they stand, the area would count twice.
    world.layer("sheds", {test::integer_field("ID")},
                {{{Box{0, 0, 2, 1}, Box{1, 0, 3, 1}}, {std::int64_t{1}}}, {{Box{5, 0, 6, 1}}, {std::int64_t{2}}}});
    const FeatureClass sheds = FeatureClass::open({.path = world.folder / "sheds.shp"});
    const PolygonLayer layer = read_polygon_layer(sheds, "Sheds", "ID", nobody, 0);
    EXPECT_THAT(world.said.notices, ElementsAre("1 invalid polygon in the layer \"Sheds\" was repaired before use."));
    EXPECT_LE(layer.polygons->area(0), 30000);
}

TEST(PolygonLayer, InItsOwnSystemStaysAsItIs) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world), "Sheds", "ID", nobody, 0);
    const auto polygons = polygons_in(layer, SpatialReference::from("EPSG:26912"), "cover");
    EXPECT_THAT(polygons->points(), testing::ElementsAreArray(layer.polygons->points()));
}

TEST(PolygonLayer, InAnotherSystemIsProjectedVertexByVertex) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world), "Sheds", "ID", nobody, 0);
    const auto polygons = polygons_in(layer, SpatialReference::from("EPSG:4269"), "cover");
    EXPECT_EQ(polygons->point_count(), layer.polygons->point_count());
    EXPECT_NEAR(polygons->envelope().min_x, -113.2, 0.2);
    EXPECT_NEAR(polygons->envelope().min_y, 37.0, 0.2);
    EXPECT_THAT(world.said.notices, IsEmpty());
}

TEST(PolygonLayer, WithoutASystemIsTakenToBeInTheOthers) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world, ""), "Sheds", "ID", nobody, 0);
    const auto polygons = polygons_in(layer, SpatialReference::from("EPSG:4269"), "cover");
    EXPECT_THAT(polygons->points(), testing::ElementsAreArray(layer.polygons->points()));
    EXPECT_THAT(world.said.notices,
                ElementsAre("\"Sheds\" names no coordinate system: that of \"cover\" is taken for it."));
}

TEST(PolygonLayer, ATargetWithoutASystemIsTakenToBeInTheLayers) {
    test::SmallWorld world;
    const PolygonLayer layer = read_polygon_layer(source(world), "Sheds", "ID", nobody, 0);
    const auto polygons = polygons_in(layer, SpatialReference(), "cover");
    EXPECT_THAT(polygons->points(), testing::ElementsAreArray(layer.polygons->points()));
    EXPECT_THAT(world.said.notices,
                ElementsAre("\"cover\" names no coordinate system: that of \"Sheds\" is taken for it."));
}

}  // namespace
}  // namespace kestrel
