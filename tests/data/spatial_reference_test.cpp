// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/spatial_reference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "base/errors.h"
#include "data/feature_class.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// As ArcMap writes it into a .prj file.
constexpr const char* kUtm12Prj =
    R"(PROJCS["NAD_1983_UTM_Zone_12N",GEOGCS["GCS_North_American_1983",DATUM["D_North_American_1983",SPHEROID["GRS_1980",6378137.0,298.257222101]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",-111.0],PARAMETER["Scale_Factor",0.9996],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])";

// Two systems of nobody's catalogue, alike but for the spelling of their name.
std::string home_made(const std::string& name, double central_meridian) {
    return R"(PROJCS[")" + name +
           R"(",GEOGCS["GCS_North_American_1983",DATUM["D_North_American_1983",SPHEROID["GRS_1980",6378137.0,298.257222101]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],PARAMETER["False_Easting",12345.0],PARAMETER["False_Northing",678.0],PARAMETER["Central_Meridian",)" +
           std::to_string(central_meridian) +
           R"(],PARAMETER["Scale_Factor",0.99991],PARAMETER["Latitude_Of_Origin",11.0],UNIT["Meter",1.0]])";
}

polygons::PolygonSet polygon_of(std::initializer_list<polygons::Point> points) {
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    set.begin_ring();
    for (const polygons::Point p : points) {
        set.add(p);
    }
    return set;
}

TEST(SpatialReference, DefaultIsNoCoordinateSystem) {
    const SpatialReference none;
    EXPECT_FALSE(none.known());
    EXPECT_EQ(none.name(), "");
    EXPECT_EQ(none.authority_code(), "");
    EXPECT_EQ(none.wkt(), "");
    EXPECT_EQ(none.esri_wkt(), "");
    EXPECT_FALSE(none.geographic());
    EXPECT_FALSE(none.web_mercator());
    EXPECT_EQ(none.metres_per_unit(), std::nullopt);
}

TEST(SpatialReference, IsReadFromCodeWktAndProjJson) {
    const auto code = SpatialReference::from("EPSG:26912");
    EXPECT_EQ(code.name(), "NAD83 / UTM zone 12N");
    EXPECT_EQ(SpatialReference::from(code.wkt()).name(), "NAD83 / UTM zone 12N");
    EXPECT_EQ(SpatialReference::from(kUtm12Prj).name(), "NAD83 / UTM zone 12N");
    const auto json = SpatialReference::from(
        R"({"type":"GeographicCRS","name":"WGS 84","datum":{"type":"GeodeticReferenceFrame","name":"World Geodetic System 1984","ellipsoid":{"name":"WGS 84","semi_major_axis":6378137,"inverse_flattening":298.257223563}},"coordinate_system":{"subtype":"ellipsoidal","axis":[{"name":"Geodetic latitude","abbreviation":"Lat","direction":"north","unit":"degree"},{"name":"Geodetic longitude","abbreviation":"Lon","direction":"east","unit":"degree"}]}})");
    EXPECT_EQ(json.name(), "WGS 84");
    EXPECT_TRUE(json.geographic());
}

TEST(SpatialReference, UnreadableDefinitionIsALibraryFailureThatNamesIt) {
    try {
        SpatialReference::from("EPSG:99999999");
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), -2147467259);
        EXPECT_THAT(error.description(), StartsWith("This is no coordinate system: EPSG:99999999"));
    }
    EXPECT_THROW(SpatialReference::from(""), base::RuntimeError);
}

TEST(SpatialReference, DefinitionThatIsAFileNameIsNotOpened) {
    EXPECT_THROW(SpatialReference::from("/etc/hostname"), base::RuntimeError);
}

TEST(SpatialReference, CodeIsIdentifiedFromAPrjText) {
    EXPECT_EQ(SpatialReference::from(kUtm12Prj).authority_code(), "EPSG:26912");
    EXPECT_EQ(SpatialReference::from("EPSG:26912").authority_code(), "EPSG:26912");
    EXPECT_EQ(SpatialReference::from(home_made("Valley", -107.5)).authority_code(), "");
}

TEST(SpatialReference, PrjTextHasTheNamesOfThatDialect) {
    const std::string text = SpatialReference::from("EPSG:26912").esri_wkt();
    EXPECT_THAT(text, StartsWith(R"(PROJCS["NAD_1983_UTM_Zone_12N",GEOGCS["GCS_North_American_1983")"));
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(SpatialReference, VerticalPartIsLeftOut) {
    const auto compound = SpatialReference::from("EPSG:26912+5703");
    EXPECT_EQ(compound.name(), "NAD83 / UTM zone 12N");
    EXPECT_TRUE(compound.same_name(SpatialReference::from("EPSG:26912")));
    EXPECT_TRUE(compound.same(SpatialReference::from("EPSG:26912")));
    EXPECT_TRUE(SpatialReference::from("EPSG:4979").same(SpatialReference::from("EPSG:4326")));
}

TEST(SpatialReference, UnitsAreMetresFeetOrNone) {
    EXPECT_EQ(SpatialReference::from("EPSG:26912").metres_per_unit(), 1.0);
    EXPECT_DOUBLE_EQ(SpatialReference::from("EPSG:2222").metres_per_unit().value(), 0.3048);
    EXPECT_DOUBLE_EQ(SpatialReference::from("EPSG:3567").metres_per_unit().value(), 1200.0 / 3937.0);
    EXPECT_EQ(SpatialReference::from("EPSG:4326").metres_per_unit(), std::nullopt);
    EXPECT_TRUE(SpatialReference::from("EPSG:4326").geographic());
    EXPECT_FALSE(SpatialReference::from("EPSG:26912").geographic());
}

TEST(SpatialReference, WebMercatorIsToldFromOtherMercators) {
    EXPECT_TRUE(SpatialReference::from("EPSG:3857").web_mercator());
    EXPECT_TRUE(SpatialReference::from(SpatialReference::from("EPSG:3857").esri_wkt()).web_mercator());
    EXPECT_FALSE(SpatialReference::from("EPSG:3395").web_mercator());
    EXPECT_FALSE(SpatialReference::from("EPSG:26912").web_mercator());
}

TEST(SpatialReference, SameZoneOnAnotherDatumSharesTheProjectionOnly) {
    const auto nad83 = SpatialReference::from("EPSG:26912");
    const auto wgs84 = SpatialReference::from("EPSG:32612");
    EXPECT_FALSE(nad83.same_name(wgs84));
    EXPECT_FALSE(nad83.same(wgs84));
    EXPECT_TRUE(nad83.same_projection(wgs84));
    EXPECT_TRUE(wgs84.same_projection(nad83));
    EXPECT_TRUE(nad83.same_projection(SpatialReference::from("EPSG:26712")));
}

TEST(SpatialReference, AnotherZoneDiffersInProjection) {
    const auto zone12 = SpatialReference::from("EPSG:26912");
    const auto zone13 = SpatialReference::from("EPSG:26913");
    EXPECT_FALSE(zone12.same_name(zone13));
    EXPECT_FALSE(zone12.same(zone13));
    EXPECT_FALSE(zone12.same_projection(zone13));
}

TEST(SpatialReference, AnotherUnitDiffersInProjection) {
    const auto metres = SpatialReference::from("EPSG:26949");  // Arizona Central in metres
    const auto feet = SpatialReference::from("EPSG:2223");     // the same in feet
    EXPECT_FALSE(metres.same(feet));
    EXPECT_FALSE(metres.same_projection(feet));
    const auto international = SpatialReference::from("EPSG:2994");  // Oregon Lambert, international feet
    EXPECT_FALSE(international.same_projection(SpatialReference::from("EPSG:5070")));
}

TEST(SpatialReference, SystemOfAPrjTextIsTheSameInEveryRespect) {
    const auto code = SpatialReference::from("EPSG:26912");
    const auto prj = SpatialReference::from(kUtm12Prj);
    EXPECT_TRUE(code.same_name(prj));
    EXPECT_TRUE(prj.same_name(code));
    EXPECT_TRUE(code.same(prj));
    EXPECT_TRUE(prj.same(code));
    EXPECT_TRUE(prj.same_projection(code));
}

TEST(SpatialReference, ManySystemsSurviveTheirPrjText) {
    for (const char* code :
         {"EPSG:4326", "EPSG:4269", "EPSG:3857", "EPSG:5070", "EPSG:2223", "EPSG:32633", "EPSG:3035", "EPSG:2180",
          "EPSG:27700", "EPSG:28992", "EPSG:2154", "EPSG:25832", "EPSG:3577", "EPSG:2193", "EPSG:31467"}) {
        const auto before = SpatialReference::from(code);
        const auto after = SpatialReference::from(before.esri_wkt());
        EXPECT_TRUE(before.same_name(after)) << code << " is found as " << after.authority_code();
        EXPECT_TRUE(before.same(after)) << code;
        EXPECT_TRUE(before.same_projection(after)) << code;
    }
}

TEST(SpatialReference, OrderOfAxesIsNoDifference) {
    // The catalogue's system has north as its first axis; the texts have no order, and one of them another datum.
    const auto catalogue = SpatialReference::from("EPSG:3035");
    const std::string text =
        R"(PROJCS["Europe",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Lambert_Azimuthal_Equal_Area"],PARAMETER["False_Easting",4321000.0],PARAMETER["False_Northing",3210000.0],PARAMETER["Central_Meridian",10.0],PARAMETER["Latitude_Of_Origin",52.0],UNIT["Meter",1.0]])";
    EXPECT_TRUE(catalogue.same_projection(SpatialReference::from(text)));
    EXPECT_FALSE(catalogue.same(SpatialReference::from(text)));
    EXPECT_TRUE(catalogue.same(SpatialReference::from("EPSG:3035")));
}

TEST(SpatialReference, WithoutCodeNamesAreComparedWithoutCaseBlanksAndPunctuation) {
    const auto one = SpatialReference::from(home_made("Green River / Valley 3", -107.5));
    const auto two = SpatialReference::from(home_made("green_river_VALLEY_3", -107.5));
    const auto three = SpatialReference::from(home_made("Green River Valley 4", -107.5));
    EXPECT_TRUE(one.same_name(two));
    EXPECT_FALSE(one.same_name(three));
    EXPECT_TRUE(one.same(three)) << "the name is no part of the system";
}

TEST(SpatialReference, SameNameDoesNotMakeTheSameSystem) {
    const auto one = SpatialReference::from(home_made("Valley", -107.5));
    const auto two = SpatialReference::from(home_made("Valley", -108.5));
    EXPECT_TRUE(one.same_name(two));
    EXPECT_FALSE(one.same(two));
    EXPECT_FALSE(one.same_projection(two));
}

TEST(SpatialReference, GeographicSystemsAgreeInTheirUnit) {
    const auto wgs84 = SpatialReference::from("EPSG:4326");
    EXPECT_TRUE(wgs84.same_projection(SpatialReference::from("EPSG:4269")));
    EXPECT_FALSE(wgs84.same(SpatialReference::from("EPSG:4269")));
    EXPECT_FALSE(wgs84.same_projection(SpatialReference::from("EPSG:4807"))) << "grads";
    EXPECT_FALSE(wgs84.same_projection(SpatialReference::from("EPSG:26912")));
    EXPECT_FALSE(SpatialReference::from("EPSG:26912").same_projection(wgs84));
}

TEST(SpatialReference, UnknownEqualsOnlyUnknown) {
    const SpatialReference none;
    const auto known = SpatialReference::from("EPSG:26912");
    EXPECT_TRUE(none.same_name(SpatialReference()));
    EXPECT_TRUE(none.same(SpatialReference()));
    EXPECT_TRUE(none.same_projection(SpatialReference()));
    EXPECT_FALSE(none.same_name(known));
    EXPECT_FALSE(known.same_name(none));
    EXPECT_FALSE(none.same(known));
    EXPECT_FALSE(known.same(none));
    EXPECT_FALSE(none.same_projection(known));
    EXPECT_FALSE(known.same_projection(none));
}

TEST(SpatialReference, IsSharedByThreads) {
    const auto one = SpatialReference::from(kUtm12Prj);
    const auto two = SpatialReference::from("EPSG:26912");
    const auto compare = [&] {
        for (int i = 0; i < 20; ++i) {
            EXPECT_TRUE(one.same(two));
            EXPECT_TRUE(two.same(one));
            EXPECT_TRUE(one.same_name(two));
        }
    };
    std::thread other(compare);
    compare();
    other.join();
}

TEST(Project, TakesEastOrLongitudeAsX) {
    polygons::PolygonSet set = polygon_of({{-111, 37}, {-110, 37}, {-110, 38}, {-111, 37}});
    project(set, SpatialReference::from("EPSG:4269"), SpatialReference::from("EPSG:26912"));
    EXPECT_NEAR(set.points()[0].x, 500000, 1e-6) << "the central meridian of zone 12";
    EXPECT_NEAR(set.points()[0].y, 4094872.4, 0.1) << "0.9996 of the meridian's length";
    EXPECT_GT(set.points()[1].x, 500000);
    EXPECT_GT(set.points()[2].y, set.points()[1].y);
}

TEST(Project, TakesEastAsXWhereTheCatalogueNamesNorthFirst) {
    struct Case {
        const char* geographic;
        const char* projected;
        polygons::Point degrees;
        polygons::Point metres;
        double tolerance;
    };
    // On the central meridian, so that east is the false easting and no north can be mistaken for it.
    for (const Case& at : {Case{"EPSG:4167", "EPSG:2193", {173, -41}, {1600000, 5461200}, 1000},
                           Case{"EPSG:4314", "EPSG:31467", {9, 51}, {3500000, 5651300}, 1000},
                           Case{"EPSG:4258", "EPSG:3035", {10, 52}, {4321000, 3210000}, 1e-6}}) {
        SCOPED_TRACE(at.projected);
        const auto geographic = SpatialReference::from(at.geographic);
        const auto projected = SpatialReference::from(at.projected);
        polygons::PolygonSet set = polygon_of({at.degrees});
        project(set, geographic, projected);
        EXPECT_NEAR(set.points()[0].x, at.metres.x, 1e-6);
        EXPECT_NEAR(set.points()[0].y, at.metres.y, at.tolerance);
        project(set, projected, geographic);
        EXPECT_NEAR(set.points()[0].x, at.degrees.x, 1e-9);
        EXPECT_NEAR(set.points()[0].y, at.degrees.y, 1e-9);
    }
}

TEST(Project, OrderOfAxesInTheCatalogueAndInAPrjTextIsTheSame) {
    for (const char* code : {"EPSG:2193", "EPSG:31467", "EPSG:3035"}) {
        SCOPED_TRACE(code);
        const auto catalogue = SpatialReference::from(code);
        const polygons::Point before = catalogue.name().starts_with("DHDN") ? polygons::Point{3512000, 5650000}
                                                                            : polygons::Point{1612000, 5450000};
        polygons::PolygonSet set = polygon_of({before});
        project(set, catalogue, SpatialReference::from(catalogue.esri_wkt()));
        EXPECT_NEAR(set.points()[0].x, before.x, 1e-6);
        EXPECT_NEAR(set.points()[0].y, before.y, 1e-6);
    }
}

TEST(Project, ThereAndBackIsWithinAMicrometre) {
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    set.begin_ring();
    constexpr int kCount = 150000;  // more than two chunks
    for (int i = 0; i < kCount; ++i) {
        const int row = i / 1000;
        set.add({300000 + i % 1000 * 40.0, 4100000 + row * 40.0});
    }
    const polygons::PolygonSet before = set;
    const auto utm = SpatialReference::from("EPSG:26912");
    const auto wgs84 = SpatialReference::from("EPSG:4326");
    project(set, utm, wgs84);
    EXPECT_NEAR(set.points()[0].x, -113.2, 0.1);
    project(set, wgs84, utm);
    double worst = 0;
    for (std::size_t i = 0; i < set.point_count(); ++i) {
        worst = std::max(
            worst, std::hypot(set.points()[i].x - before.points()[i].x, set.points()[i].y - before.points()[i].y));
    }
    EXPECT_LT(worst, 1e-6);
}

TEST(Project, VerticesThatAreEqualBeforeAreEqualAfter) {
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    set.begin_ring();
    constexpr std::size_t kPeriod = 7919;
    constexpr std::size_t kCount = 140000;
    for (std::size_t i = 0; i < kCount; ++i) {
        const auto k = static_cast<double>(i % kPeriod);
        set.add({-124 + k * 0.0071, 25 + std::fmod(k * 0.37, 24)});
    }
    project(set, SpatialReference::from("EPSG:4267"), SpatialReference::from("EPSG:5070"));
    for (std::size_t i = kPeriod; i < kCount; ++i) {
        ASSERT_EQ(set.points()[i], set.points()[i % kPeriod]) << i;
    }
}

TEST(Project, BetweenDatumsOfOneZoneMovesLittle) {
    polygons::PolygonSet set = polygon_of({{320000, 4130000}, {321000, 4130000}, {321000, 4131000}, {320000, 4130000}});
    project(set, SpatialReference::from("EPSG:32612"), SpatialReference::from("EPSG:26912"));
    EXPECT_NEAR(set.points()[0].x, 320000, 3);
    EXPECT_NEAR(set.points()[0].y, 4130000, 3);
}

TEST(Project, VertexThatCannotBeProjectedIsNamedAndNothingIsMoved) {
    polygons::PolygonSet set = polygon_of({{-111, 37}, {-110, 37}, {-110, 95}, {-111, 37}});
    try {
        project(set, SpatialReference::from("EPSG:4326"), SpatialReference::from("EPSG:26912"));
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), -2147467259);
        EXPECT_THAT(error.description(),
                    HasSubstr("The vertex (-110, 95) cannot be projected from WGS 84 to NAD83 / UTM zone 12N"));
    }
    EXPECT_EQ(set.points()[0], (polygons::Point{-111, 37}));
}

TEST(Project, NeedsBothSystems) {
    polygons::PolygonSet set = polygon_of({{1, 1}, {2, 1}, {2, 2}, {1, 1}});
    EXPECT_THROW(project(set, SpatialReference(), SpatialReference::from("EPSG:26912")), base::RuntimeError);
    EXPECT_THROW(project(set, SpatialReference::from("EPSG:26912"), SpatialReference()), base::RuntimeError);
}

TEST(Project, EmptySetStaysEmpty) {
    polygons::PolygonSet set;
    project(set, SpatialReference::from("EPSG:26912"), SpatialReference::from("EPSG:4326"));
    EXPECT_EQ(set.point_count(), 0U);
}

TEST(SpatialReferenceRealData, ShapefileAndGeoPackageOfOneSystemAgree) {
    const std::string folder = test::real_data_folder();
    if (folder.empty()) {
        GTEST_SKIP() << "no real data; set KESTREL_REAL_DATA";
    }
    const auto shapefile = FeatureClass::open({folder + "/sheds.shp"}).spatial_reference();
    const auto geopackage = FeatureClass::open({folder + "/sheds.gpkg"}).spatial_reference();
    const auto other = FeatureClass::open({folder + "/blockgroups_wgs84.gpkg"}).spatial_reference();
    EXPECT_TRUE(shapefile.same_name(geopackage));
    EXPECT_TRUE(shapefile.same(geopackage));
    EXPECT_FALSE(shapefile.same_name(other));
    EXPECT_FALSE(shapefile.same(other));
    EXPECT_TRUE(shapefile.same_projection(other));
}

}  // namespace
}  // namespace kestrel::data
