// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/feature_class.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>

#include "base/errors.h"
#include "base/files.h"
#include "data/shapefile_writer.h"
#include "tests/support/error_of.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using test::error_of;
using test::TemporaryFolder;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Names = std::vector<std::string>;
using Ids = std::vector<std::int64_t>;

constexpr std::monostate kNull;

/// A table of comma-separated values whose first column, WKT, is the geometry. OGR takes its layer for one of any
/// geometry type, and reads the types of the other columns from the file beside it.
std::string write_csv(const TemporaryFolder& folder, const std::string& types, const std::string& lines) {
    base::write_file(folder / "table.csv", lines);
    base::write_file(folder / "table.csvt", types);
    return folder / "table.csv";
}

/// A layer with one feature for each of the given geometries.
FeatureClass of_geometries(const TemporaryFolder& folder, const std::vector<std::string>& geometries) {
    std::string lines = "WKT,N\r\n";
    for (const std::string& geometry : geometries) {
        lines += "\"" + geometry + "\",1\r\n";
    }
    return FeatureClass::open({write_csv(folder, "String,Integer", lines)});
}

polygons::PolygonSet polygons_of(const std::vector<std::string>& geometries) {
    const TemporaryFolder folder;
    return of_geometries(folder, geometries).read_polygons({}).polygons;
}

polygons::PolygonSet squares(int count) {
    polygons::PolygonSet set;
    for (int i = 0; i < count; ++i) {
        set.begin_feature();
        set.begin_polygon();
        set.begin_ring();
        for (const polygons::Point p : {polygons::Point{0, 0}, polygons::Point{0, 1}, polygons::Point{1, 1},
                                        polygons::Point{1, 0}, polygons::Point{0, 0}}) {
            set.add({p.x + 2 * i, p.y});
        }
    }
    return set;
}

/// A shapefile of unit squares, side by side, with the fields N (0, 1, 2, ...), EVEN (0 or 1) and NAME.
std::string write_squares(const std::string& path, int count) {
    const std::vector<Field> fields{
        {"N", "", FieldType::integer, 9}, {"EVEN", "", FieldType::integer, 1}, {"NAME", "", FieldType::text, 20}};
    ShapefileWriter writer(path, fields, SpatialReference::from("EPSG:26912"));
    const polygons::PolygonSet set = squares(count);
    for (int i = 0; i < count; ++i) {
        writer.insert(set, static_cast<std::size_t>(i),
                      std::vector<Value>{std::int64_t{i}, std::int64_t{i % 2 == 0}, "square " + std::to_string(i)});
    }
    writer.close();
    return path;
}

TEST(FeatureSource, IsReadAsQgisWritesIt) {
    EXPECT_EQ(FeatureSource::parse("/data/sheds.shp"), (FeatureSource{"/data/sheds.shp"}));
    EXPECT_EQ(FeatureSource::parse("/data/a.gpkg|layername=sheds"), (FeatureSource{"/data/a.gpkg", "sheds"}));
    EXPECT_EQ(FeatureSource::parse("/data/a.gpkg|layername=sheds|subset=\"POP\" > 5"),
              (FeatureSource{"/data/a.gpkg", "sheds", "\"POP\" > 5"}));
    EXPECT_EQ(FeatureSource::parse("/data/sheds.shp|subset=\"POP\" > 5"),
              (FeatureSource{"/data/sheds.shp", "", "\"POP\" > 5"}));
    EXPECT_EQ(FeatureSource::parse(""), FeatureSource{});
}

TEST(FeatureSource, FilterGoesToTheEndAndPathsMayHoldBars) {
    EXPECT_EQ(FeatureSource::parse("/a.gpkg|layername=b|subset=\"N\" = 'x|layername=y'"),
              (FeatureSource{"/a.gpkg", "b", "\"N\" = 'x|layername=y'"}));
    EXPECT_EQ(FeatureSource::parse("/odd|name/a.gpkg|layername=b|c"), (FeatureSource{"/odd|name/a.gpkg", "b|c"}));
}

TEST(FeatureSource, GeometryTypeAndOptionsArePassedOver) {
    EXPECT_EQ(FeatureSource::parse("/a.gpkg|layername=b|geometrytype=Polygon|option:X=1|subset=\"N\" = 1"),
              (FeatureSource{"/a.gpkg", "b", "\"N\" = 1"}));
    EXPECT_EQ(FeatureSource::parse("/a.gpkg|geometrytype=Polygon"), (FeatureSource{"/a.gpkg"}));
}

TEST(FeatureSource, LayerByNumberIsRefusedRatherThanMistaken) {
    const auto error = error_of([] { FeatureSource::parse("/a.gpkg|layerid=2"); });
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), HasSubstr("|layername=NAME"));
}

TEST(FeatureClassOpen, MissingFileIsFileNotFoundAndNamed) {
    const auto error = error_of([] { FeatureClass::open({"/tmp/there is no such.shp"}); });
    EXPECT_EQ(error.number(), 53);
    EXPECT_THAT(error.description(), HasSubstr("/tmp/there is no such.shp"));
    EXPECT_EQ(error_of([] { FeatureClass::open({"/no/such/folder/a.gpkg"}); }).number(), 53);
}

TEST(FeatureClassOpen, FileThatIsNoLayerIsALibraryFailureThatNamesIt) {
    const TemporaryFolder folder;
    base::write_file(folder / "letter.shp", "Dear all");
    const auto error = error_of([&] { FeatureClass::open({folder / "letter.shp"}); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), HasSubstr("letter.shp"));
}

TEST(FeatureClassOpen, FileThatMayNotBeReadIsPermissionDenied) {
    const TemporaryFolder folder;
    base::write_file(folder / "secret.geojson", R"({"type":"FeatureCollection","features":[]})");
    ASSERT_EQ(::chmod((folder / "secret.geojson").c_str(), 0), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    // The system's administrator may read everything.
    const bool switched = ::geteuid() == 0 && ::seteuid(65534) == 0;
    const auto error = error_of([&] { FeatureClass::open({folder / "secret.geojson"}); });
    ASSERT_TRUE(!switched || ::seteuid(0) == 0);
    EXPECT_EQ(error.number(), 70);
    EXPECT_THAT(error.description(), HasSubstr("secret.geojson"));
}

TEST(FeatureClassOpen, MissingLayerIsNamedTogetherWithTheLayersThatThereAre) {
    const TemporaryFolder folder;
    write_squares(folder / "roads.shp", 1);
    write_squares(folder / "zones.shp", 1);
    const auto error = error_of([&] { FeatureClass::open({folder.path(), "parcels"}); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), AllOf(HasSubstr(folder.path() + " has no layer \"parcels\"; its layers are: "),
                                           HasSubstr("roads"), HasSubstr("zones")));
}

TEST(FeatureClassOpen, LayerOfAFolderIsFoundByName) {
    const TemporaryFolder folder;
    write_squares(folder / "roads.shp", 1);
    write_squares(folder / "zones.shp", 3);
    const auto zones = FeatureClass::open({folder.path(), "zones"});
    EXPECT_EQ(zones.layer_name(), "zones");
    EXPECT_EQ(zones.feature_count(), 3);
    EXPECT_EQ(zones.source().path, folder.path());
}

TEST(FeatureClassOpen, WithoutNameTheFirstLayerIsTaken) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 3);
    const auto zones = FeatureClass::open({folder / "zones.shp"});
    EXPECT_EQ(zones.layer_name(), "zones");
    EXPECT_TRUE(zones.polygonal());
    EXPECT_EQ(zones.spatial_reference().authority_code(), "EPSG:26912");
}

TEST(FeatureClassOpen, ShapefileWithoutItsIndexSaysSo) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 3);
    base::remove_file(folder / "zones.shx");
    const auto error = error_of([&] { FeatureClass::open({folder / "zones.shp"}); });
    EXPECT_NE(error.number(), 0);
    EXPECT_THAT(error.description(), HasSubstr("zones.shx"));
}

TEST(FeatureClassOpen, LayerWithoutCoordinateSystemHasNone) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 1);
    base::remove_file(folder / "zones.prj");
    EXPECT_FALSE(FeatureClass::open({folder / "zones.shp"}).spatial_reference().known());
}

TEST(FeatureClassFields, TypesAreToldApart) {
    const TemporaryFolder folder;
    const auto layer = FeatureClass::open(
        {write_csv(folder, "String,Integer,Integer(Int16),Integer64,Integer(Boolean),Real,Real(Float32),String(7),Date",
                   "WKT,i,s,b,bool,r,f,t,d\r\n\"POLYGON ((0 0,1 0,1 1,0 0))\",-2147483648,-32768,"
                   "9223372036854775807,1,0.1,33.3,Río,2001/02/03\r\n,,,,,,,,\r\n")});
    std::vector<FieldType> types;
    Names names;
    for (const Field& field : layer.fields()) {
        if (field.name != "WKT") {
            types.push_back(field.type);
            names.push_back(field.name);
        }
    }
    EXPECT_THAT(types,
                ElementsAre(FieldType::integer, FieldType::small_integer, FieldType::big_integer, FieldType::boolean,
                            FieldType::real, FieldType::single, FieldType::text, FieldType::other));
    EXPECT_EQ(layer.fields().at(static_cast<std::size_t>(layer.find_field("t"))).length, 7);
    const auto columns = layer.read_columns(names);
    std::vector<Value> first;
    for (const auto& column : columns) {
        first.push_back(column.at(0));
        EXPECT_EQ(text_of(column.at(1)), "");
    }
    EXPECT_THAT(first, ElementsAre(Value(std::int64_t{-2147483648}), Value(std::int64_t{-32768}),
                                   Value(std::numeric_limits<std::int64_t>::max()), Value(std::int64_t{1}), Value(0.1),
                                   Value(33.3), Value("Río"), Value("2001/02/03")))
        << "a single is the number that its shortest text names";
}

TEST(FeatureClassFields, JsonHasBooleansAndIntegersOf64Bits) {
    const TemporaryFolder folder;
    base::write_file(folder / "a.geojson", R"({"type":"FeatureCollection","features":[
        {"type":"Feature","properties":{"yes":true,"big":-9223372036854775808,"no":null},
         "geometry":{"type":"Polygon","coordinates":[[[0,0],[1,0],[1,1],[0,0]]]}}]})");
    const auto layer = FeatureClass::open({folder / "a.geojson"});
    EXPECT_EQ(layer.fields()[0].type, FieldType::boolean);
    EXPECT_EQ(layer.fields()[1].type, FieldType::big_integer);
    EXPECT_TRUE(layer.spatial_reference().geographic());
    const auto columns = layer.read_columns(Names{"yes", "big", "no"});
    EXPECT_EQ(columns[0][0], Value(std::int64_t{1}));
    EXPECT_EQ(columns[1][0], Value(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(columns[2][0], Value(kNull));
}

TEST(FeatureClassFields, AreFoundExactly) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 1)});
    EXPECT_EQ(zones.find_field("N"), 0);
    EXPECT_EQ(zones.find_field("NAME"), 2);
    EXPECT_EQ(zones.find_field("Name"), -1);
    EXPECT_EQ(zones.find_field(""), -1);
}

TEST(FeatureClassFields, MissingFieldIsAnInvalidCallThatNamesIt) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 1)});
    const auto error = error_of([&] { zones.read_columns(Names{"N", "ACRES"}); });
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), AllOf(HasSubstr("ACRES"), HasSubstr("zones.shp")));
    EXPECT_EQ(error_of([&] { zones.read_polygons(Names{"ACRES"}); }).number(), 5);
}

TEST(FeatureClassText, IsRecodedFromTheDeclaredEncoding) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"NAME", "", FieldType::text, 20}};
    ShapefileWriter writer(folder / "a.shp", fields, {});
    writer.insert(squares(1), 0, std::vector<Value>{"R?o"});
    writer.close();
    std::string table = base::read_file(folder / "a.dbf");
    table.at(table.find('?')) = '\xED';
    base::write_file(folder / "a.dbf", table);
    const auto name = [&] { return FeatureClass::open({folder / "a.shp"}).read_columns(Names{"NAME"})[0][0]; };
    base::write_file(folder / "a.cpg", "ISO-8859-1");
    EXPECT_EQ(name(), Value("Río"));
    base::remove_file(folder / "a.cpg");
    EXPECT_EQ(name(), Value("Río")) << "no declared encoding";
    base::write_file(folder / "a.cpg", "UTF-8");
    EXPECT_EQ(name(), Value("Río")) << "a wrongly declared encoding";
}

TEST(FeatureClassRead, HolesPartsAndOrderOfRingsAreKept) {
    const auto set = polygons_of(
        {"MULTIPOLYGON (((0 0,9 0,9 9,0 9,0 0),(1 1,2 1,2 2,1 2,1 1),(4 4,5 4,5 5,4 5,4 4)),((20 0,21 0,21 1,20 0)))",
         "POLYGON ((0 0,0 2,2 2,2 0,0 0))"});
    ASSERT_EQ(set.feature_count(), 2U);
    EXPECT_EQ(set.first_polygon(1), 2U);
    EXPECT_EQ(set.first_ring(1), 3U);
    EXPECT_EQ(set.ring(1)[0], (polygons::Point{1, 1}));
    EXPECT_EQ(set.ring(3)[1], (polygons::Point{21, 0}));
    EXPECT_EQ(set.area(0), 81 - 1 - 1 + 0.5);
    EXPECT_EQ(set.area(1), 4.0);
}

TEST(FeatureClassRead, MissingAndEmptyGeometriesHaveNoPolygons) {
    const auto set = polygons_of(
        {"", "POLYGON EMPTY", "MULTIPOLYGON EMPTY", "POLYGON ((0 0,1 0,1 1,0 0))", "GEOMETRYCOLLECTION EMPTY"});
    ASSERT_EQ(set.feature_count(), 5U);
    for (const std::size_t feature : {0U, 1U, 2U, 4U}) {
        EXPECT_TRUE(set.empty(feature)) << feature;
    }
    EXPECT_FALSE(set.empty(3));
}

TEST(FeatureClassRead, HeightsAndMeasuresAreDropped) {
    const auto set = polygons_of({"POLYGON ZM ((0 0 5 1,2 0 6 2,2 2 7 3,0 0 5 4))"});
    ASSERT_EQ(set.point_count(), 4U);
    EXPECT_EQ(set.area(0), 2.0);
}

TEST(FeatureClassRead, OpenRingsAreClosedAndTinyOnesLeftOut) {
    const auto set =
        polygons_of({"POLYGON ((0 0,9 0,9 9,0 9),(1 1,2 1,1 1),(4 4,5 4,5 5))", "POLYGON ((0 0,1 1,0 0))"});
    EXPECT_EQ(set.ring_count(), 2U);
    EXPECT_EQ(set.ring(0).size(), 5U);
    EXPECT_EQ(set.ring(0).back(), set.ring(0).front());
    EXPECT_EQ(set.ring(1).size(), 4U);
    EXPECT_EQ(set.area(0), 80.5);
    EXPECT_TRUE(set.empty(1));
}

TEST(FeatureClassRead, CurvesBecomeLines) {
    const auto set =
        polygons_of({"CURVEPOLYGON (CIRCULARSTRING (0 0,1 1,2 0,1 -1,0 0))",
                     "MULTISURFACE (((0 0,1 0,1 1,0 0)),CURVEPOLYGON (CIRCULARSTRING (0 0,1 1,2 0,1 -1,0 0)))",
                     "CURVEPOLYGON ((0 0,1 0,1 1,0 0))"});
    EXPECT_NEAR(set.area(0), 3.14159, 0.01);
    EXPECT_NEAR(set.area(1), 0.5 + 3.14159, 0.01);
    EXPECT_EQ(set.area(2), 0.5);
}

TEST(FeatureClassRead, OfACollectionThePolygonsAreTaken) {
    const auto set =
        polygons_of({"GEOMETRYCOLLECTION (POINT (7 7),POLYGON ((0 0,1 0,1 1,0 0)),GEOMETRYCOLLECTION "
                     "(LINESTRING (0 0,1 1)),MULTIPOLYGON (((5 0,6 0,6 1,5 0))))"});
    EXPECT_EQ(set.polygon_count(), 2U);
    EXPECT_EQ(set.area(0), 1.0);
}

TEST(FeatureClassRead, FeatureThatIsNoPolygonIsRefusedByItsId) {
    const TemporaryFolder folder;
    for (const char* geometry : {"POINT (1 1)", "LINESTRING (0 0,1 1)", "GEOMETRYCOLLECTION (POINT (1 1))",
                                 "POLYHEDRALSURFACE (((0 0,1 0,1 1,0 0)))"}) {
        const auto layer = of_geometries(folder, {"POLYGON ((0 0,1 0,1 1,0 0))", geometry});
        EXPECT_TRUE(layer.polygonal()) << "a layer that may hold everything";
        const auto error = error_of([&] { layer.read_polygons({}); });
        EXPECT_EQ(error.number(), 5) << geometry;
        EXPECT_THAT(error.description(), HasSubstr("Feature 2 of")) << geometry;
    }
}

TEST(FeatureClassRead, CoordinateThatIsNotFiniteIsRefusedByItsFeature) {
    const TemporaryFolder folder;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double number : {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity}) {
        write_squares(folder / "zones.shp", 2);
        std::string shapes = base::read_file(folder / "zones.shp");
        // Header, second record's header, type, box, counts of parts and points, the part; then the second point.
        constexpr std::size_t kRecord = 8 + 4 + 32 + 4 + 4 + 4 + 5 * 16;
        std::memcpy(shapes.data() + 100 + kRecord + 8 + 4 + 32 + 4 + 4 + 4 + 16, &number, sizeof number);
        base::write_file(folder / "zones.shp", shapes);
        const auto error = error_of([&] { FeatureClass::open({folder / "zones.shp"}).read_polygons({}); });
        EXPECT_EQ(error.number(), 5) << number;
        EXPECT_THAT(error.description(), AllOf(HasSubstr("Feature 1 of"), HasSubstr("no finite number")));
    }
}

TEST(FeatureClassRead, LayerOfLinesIsRefusedButItsAttributesAreRead) {
    const TemporaryFolder folder;
    base::write_file(folder / "a.geojson", R"({"type":"FeatureCollection","features":[
        {"type":"Feature","properties":{"n":5},"geometry":{"type":"LineString","coordinates":[[0,0],[1,0]]}}]})");
    const auto layer = FeatureClass::open({folder / "a.geojson"});
    EXPECT_FALSE(layer.polygonal());
    EXPECT_EQ(error_of([&] { layer.read_polygons({}); }).number(), 5);
    EXPECT_EQ(layer.read_columns(Names{"n"})[0][0], Value(std::int64_t{5}));
}

TEST(FeatureClassRead, TruncatedShapefileIsAnErrorNotAShorterLayer) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 10);
    std::filesystem::resize_file(folder / "zones.shp", 700);
    EXPECT_NE(error_of([&] { FeatureClass::open({folder / "zones.shp"}).read_polygons({}); }).number(), 0);
}

TEST(FeatureClassRead, FieldsComeInTheOrderAskedFor) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 2)});
    const auto features = zones.read_polygons(Names{"NAME", "N", "NAME"});
    ASSERT_EQ(features.columns.size(), 3U);
    EXPECT_EQ(features.columns[0][1], Value("square 1"));
    EXPECT_EQ(features.columns[1][1], Value(std::int64_t{1}));
    EXPECT_EQ(features.columns[2][1], Value("square 1"));
    EXPECT_EQ(zones.read_polygons({}).columns.size(), 0U) << "reading before must not hide fields";
    EXPECT_EQ(zones.read_columns(Names{"EVEN"})[0][0], Value(std::int64_t{1}));
}

TEST(FeatureClassRead, OnlyTheGivenFeaturesFewOrMany) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 100)});
    for (const Ids& ids : {Ids{0, 41, 99}, Ids{3, 4, 5, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 50, 51, 52, 98}}) {
        const auto features = zones.read_polygons(Names{"N"}, std::span<const std::int64_t>(ids));
        EXPECT_EQ(features.ids, ids);
        ASSERT_EQ(features.polygons.feature_count(), ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i) {
            EXPECT_EQ(features.columns[0][i], Value(ids[i]));
            EXPECT_EQ(features.polygons.envelope(i).min_x, 2.0 * static_cast<double>(ids[i]));
        }
    }
    EXPECT_EQ(zones.read_polygons({}, Ids{}).polygons.feature_count(), 0U);
}

TEST(FeatureClassRead, OnlyAFeatureThatDoesNotExistIsAnError) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 100)});
    EXPECT_EQ(error_of([&] { zones.read_polygons({}, Ids{5, 100}); }).number(), 5) << "few";
    Ids many;
    for (std::int64_t id = 50; id <= 100; ++id) {
        many.push_back(id);
    }
    const auto error = error_of([&] { zones.read_polygons({}, many); });
    EXPECT_EQ(error.number(), 5);
    EXPECT_THAT(error.description(), HasSubstr("50 of the 51"));
}

TEST(FeatureClassRead, SourceOrderIsKeptWhereIdsAreNotInOrder) {
    const TemporaryFolder folder;
    std::string features;
    for (const int id : {30, 10, 20, 40, 50, 60, 70, 80, 90, 100}) {
        features += std::string(features.empty() ? "" : ",") + R"({"type":"Feature","id":)" + std::to_string(id) +
                    R"(,"properties":{},"geometry":{"type":"Polygon","coordinates":[[[0,0],[1,0],[1,1],[0,0]]]}})";
    }
    base::write_file(folder / "a.geojson", R"({"type":"FeatureCollection","features":[)" + features + "]}");
    const auto layer = FeatureClass::open({folder / "a.geojson"});
    EXPECT_THAT(layer.read_polygons({}, Ids{20, 30}).ids, ElementsAre(30, 20));
    EXPECT_THAT(layer.read_polygons({}, Ids{30}).ids, ElementsAre(30));
    EXPECT_THAT(layer.ids_where("fid < 40"), ElementsAre(10, 20, 30)) << "ascending";
}

TEST(FeatureClassFilter, SubsetHoldsForCountIdsPolygonsAndColumns) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 10);
    const auto zones = FeatureClass::open({folder / "zones.shp", "", "\"EVEN\" = 1"});
    EXPECT_EQ(zones.feature_count(), 5);
    EXPECT_THAT(zones.read_polygons(Names{"N"}).ids, ElementsAre(0, 2, 4, 6, 8));
    EXPECT_EQ(zones.read_columns(Names{"N"})[0].size(), 5U) << "a field of the filter that is not asked for";
    EXPECT_EQ(zones.read_columns(Names{"N"})[0][4], Value(std::int64_t{8}));
    EXPECT_EQ(zones.extent().max_x, 19.0) << "of the whole layer";
}

TEST(FeatureClassFilter, WhereComesOnTopOfTheSubsetAndLeavesItInPlace) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 10);
    const auto zones = FeatureClass::open({folder / "zones.shp", "", "N = 2 OR N = 3 OR N = 4"});
    EXPECT_THAT(zones.ids_where("EVEN = 1 OR N = 9"), ElementsAre(2, 4)) << "both in brackets";
    EXPECT_EQ(zones.feature_count(), 3);
    EXPECT_THAT(zones.read_polygons({}).ids, ElementsAre(2, 3, 4));
}

TEST(FeatureClassFilter, WhereTakesTextNumbersAndShapes) {
    const TemporaryFolder folder;
    const auto zones = FeatureClass::open({write_squares(folder / "zones.shp", 10)});
    EXPECT_THAT(zones.ids_where("NAME LIKE '%7'"), ElementsAre(7));
    EXPECT_THAT(zones.ids_where("N >= 8"), ElementsAre(8, 9));
    EXPECT_EQ(zones.ids_where("OGR_GEOM_AREA > 0.5").size(), 10U);
    EXPECT_TRUE(zones.ids_where("N = 11").empty());
    EXPECT_EQ(zones.feature_count(), 10);
}

TEST(FeatureClassFilter, WrongExpressionIsALibraryFailureAndLeavesTheLayerUsable) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 10);
    const auto zones = FeatureClass::open({folder / "zones.shp", "", "EVEN = 1"});
    for (const char* where : {"NO_SUCH = 1", "N = ", "((N = 1)", ""}) {
        EXPECT_EQ(error_of([&] { zones.ids_where(where); }).number(), -2147467259) << where;
    }
    EXPECT_EQ(zones.feature_count(), 5);
}

TEST(FeatureClassFilter, WrongSubsetIsToldOnOpeningWithThePath) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 1);
    const auto error = error_of([&] { FeatureClass::open({folder / "zones.shp", "", "NO_SUCH = 1"}); });
    EXPECT_EQ(error.number(), -2147467259);
    EXPECT_THAT(error.description(), AllOf(HasSubstr("zones.shp"), HasSubstr("NO_SUCH = 1")));
}

TEST(FeatureClassFilter, IdsBeyondTheSubsetAreNotRead) {
    const TemporaryFolder folder;
    write_squares(folder / "zones.shp", 100);
    const auto zones = FeatureClass::open({folder / "zones.shp", "", "EVEN = 1"});
    EXPECT_THAT(zones.read_polygons({}, Ids{4, 8}).ids, ElementsAre(4, 8));
    EXPECT_EQ(error_of([&] { zones.read_polygons({}, Ids{4, 5}); }).number(), 5);
}

class FeatureClassRealData : public ::testing::Test {
  protected:
    void SetUp() override {
        if (m_folder.empty()) {
            GTEST_SKIP() << "no real data; set KESTREL_REAL_DATA";
        }
    }
    std::string m_folder = test::real_data_folder();
};

TEST_F(FeatureClassRealData, ShapefileAndGeoPackageHoldTheSameSheds) {
    const auto shapefile = FeatureClass::open({m_folder + "/sheds.shp"});
    const auto geopackage = FeatureClass::open({m_folder + "/sheds.gpkg", "sheds"});
    const auto one = shapefile.read_polygons(Names{"SHED_ID", "SHED_NAME", "POP_DEN"});
    const auto two = geopackage.read_polygons(Names{"SHED_ID", "SHED_NAME", "POP_DEN"});
    ASSERT_EQ(one.polygons.feature_count(), 27U);
    ASSERT_EQ(two.polygons.feature_count(), 27U);
    EXPECT_EQ(one.columns, two.columns);
    for (std::size_t f = 0; f < 27; ++f) {
        EXPECT_NEAR(one.polygons.area(f), two.polygons.area(f), 1e-9 * one.polygons.area(f));
        EXPECT_GT(one.polygons.area(f), 0);
    }
}

TEST_F(FeatureClassRealData, GeoPackageLayersAreFoundByNameAndListed) {
    EXPECT_EQ(FeatureClass::open({m_folder + "/sheds.gpkg"}).layer_name(), "sheds");
    const auto frame = FeatureClass::open(FeatureSource::parse(m_folder + "/sheds.gpkg|layername=frame"));
    EXPECT_EQ(frame.feature_count(), 1);
    const auto error = error_of([&] { FeatureClass::open({m_folder + "/sheds.gpkg", "Shed"}); });
    EXPECT_THAT(error.description(), HasSubstr("has no layer \"Shed\"; its layers are: sheds, frame"));
}

TEST_F(FeatureClassRealData, GeoPackageFieldsAndFiltersWork) {
    const auto sheds = FeatureClass::open({m_folder + "/sheds.gpkg", "sheds", "\"POP_DEN\" > 10"});
    EXPECT_EQ(sheds.fields()[static_cast<std::size_t>(sheds.find_field("WATERSHED_IDENTIFIER"))].type,
              FieldType::big_integer);
    const auto density = sheds.read_columns(Names{"POP_DEN"})[0];
    ASSERT_FALSE(density.empty());
    EXPECT_LT(density.size(), 27U);
    for (const Value& value : density) {
        EXPECT_GT(number_of(value), 10);
    }
    const auto ids = sheds.ids_where("SHED_ID > 0");
    EXPECT_EQ(ids.size(), density.size());
    EXPECT_EQ(sheds.read_polygons({}, ids).ids, ids);
    EXPECT_EQ(error_of([&] { sheds.ids_where("NO_SUCH = 1"); }).number(), -2147467259);
    const FeatureSource wrong_filter{m_folder + "/sheds.gpkg", "sheds", "NO_SUCH = 1"};
    EXPECT_EQ(error_of([&] { FeatureClass::open(wrong_filter); }).number(), -2147467259);
    EXPECT_EQ(sheds.feature_count(), static_cast<std::int64_t>(density.size()));
}

TEST_F(FeatureClassRealData, ExtentHoldsAllPolygons) {
    for (const char* name : {"/sheds.shp", "/sheds.gpkg", "/blockgroups_wgs84.gpkg"}) {
        const auto layer = FeatureClass::open({m_folder + name});
        polygons::Envelope extent = layer.extent();
        const polygons::Envelope read = layer.read_polygons({}).polygons.envelope();
        EXPECT_NEAR(extent.min_x, read.min_x, 1e-6) << name;
        EXPECT_NEAR(extent.max_y, read.max_y, 1e-6) << name;
    }
}

}  // namespace
}  // namespace kestrel::data
