// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

#include "base/errors.h"
#include "base/files.h"
#include "data/feature_class.h"
#include "data/shapefile_writer.h"
#include "tests/support/error_of.h"
#include "tests/support/listening_progress.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using test::TemporaryFolder;
using ::testing::Each;
using ::testing::Ge;
using ::testing::HasSubstr;
using Names = std::vector<std::string>;

// More than are read as one item of work, and no multiple of it.
constexpr int kFeatures = 5300;

/// Features of none to three triangles, some with a hole; the fields N and NAME, some values NULL.
std::string write_layer(const std::string& path, int count) {
    const std::vector<Field> fields{{"N", "", FieldType::integer, 9}, {"NAME", "", FieldType::text, 20}};
    ShapefileWriter writer(path, fields, SpatialReference::from("EPSG:26912"));
    std::mt19937 random(5);
    for (int i = 0; i < count; ++i) {
        polygons::PolygonSet set;
        set.begin_feature();
        const auto add_triangle = [&](double x, double y, double size) {
            set.begin_ring();
            for (const polygons::Point p : {polygons::Point{x, y}, polygons::Point{x, y + size},
                                            polygons::Point{x + size, y}, polygons::Point{x, y}}) {
                set.add(p);
            }
        };
        for (unsigned part = 0; part < random() % 4; ++part) {
            set.begin_polygon();
            add_triangle(10.0 * i, 10.0 * part, 9);
            if (random() % 3 == 0) {
                add_triangle(10.0 * i + 1, 10.0 * part + 1, 2);
            }
        }
        writer.insert(
            set, 0, std::vector<Value>{i % 7 == 0 ? Value() : Value(std::int64_t{i}), "feature " + std::to_string(i)});
    }
    writer.close();
    return path;
}

void delete_record(const std::string& table, int record) {
    std::fstream file(table, std::ios::binary | std::ios::in | std::ios::out);
    unsigned char header[12];
    file.read(reinterpret_cast<char*>(header), sizeof header);
    file.seekp(header[8] + 256 * header[9] + (header[10] + 256 * header[11]) * record);
    file.put('*');
    ASSERT_TRUE(file.good());
}

void expect_same(const PolygonFeatures& one, const PolygonFeatures& other) {
    EXPECT_EQ(one.ids, other.ids);
    EXPECT_EQ(one.columns, other.columns);
    EXPECT_TRUE(std::ranges::equal(one.polygons.points(), other.polygons.points()));
    ASSERT_EQ(one.polygons.feature_count(), other.polygons.feature_count());
    ASSERT_EQ(one.polygons.ring_count(), other.polygons.ring_count());
    for (std::size_t f = 0; f < one.polygons.feature_count(); ++f) {
        ASSERT_EQ(one.polygons.first_polygon(f), other.polygons.first_polygon(f));
        ASSERT_EQ(one.polygons.first_ring_of(f), other.polygons.first_ring_of(f));
    }
}

TEST(PolygonReading, IsTheSameWithAnyNumberOfThreadsAndFeatureByFeature) {
    const TemporaryFolder folder;
    const auto layer = FeatureClass::open({write_layer(folder / "zones.shp", kFeatures)});
    const PolygonFeatures plain = layer.read_polygons(Names{"NAME", "N"});
    ASSERT_EQ(plain.ids.size(), static_cast<std::size_t>(kFeatures));
    for (const int threads : {0, 1, 2, 3, 8}) {
        base::NoProgress nobody;
        expect_same(layer.read_polygons(Names{"NAME", "N"}, nobody, threads), plain);
    }
}

TEST(PolygonReading, DeletedRecordsAreLeftOut) {
    const TemporaryFolder folder;
    write_layer(folder / "zones.shp", kFeatures);
    // At the seams between items of work, a whole item, and the end.
    std::vector<int> deleted{0, 1023, 1024, 1025, 2047, kFeatures - 1};
    for (int record = 3072; record < 4096; ++record) {
        deleted.push_back(record);
    }
    for (const int record : deleted) {
        delete_record(folder / "zones.dbf", record);
    }
    const auto layer = FeatureClass::open({folder / "zones.shp"});
    const PolygonFeatures plain = layer.read_polygons(Names{"N"});
    ASSERT_EQ(plain.ids.size(), kFeatures - deleted.size());
    for (const int threads : {1, 2, 3}) {
        base::NoProgress nobody;
        expect_same(layer.read_polygons(Names{"N"}, nobody, threads), plain);
    }
}

TEST(PolygonReading, AFilterHolds) {
    const TemporaryFolder folder;
    write_layer(folder / "zones.shp", kFeatures);
    const auto layer = FeatureClass::open({folder / "zones.shp", "", "N > 100 AND N < 4000"});
    base::NoProgress nobody;
    const PolygonFeatures some = layer.read_polygons(Names{"N"}, nobody, 2);
    EXPECT_GT(some.ids.size(), 3000U);
    EXPECT_THAT(some.ids, Each(Ge(101)));
    expect_same(some, layer.read_polygons(Names{"N"}));
}

TEST(PolygonReading, OtherFormatsAreReadFromBeginningToEnd) {
    const TemporaryFolder folder;
    std::string features;
    for (int i = 0; i < 2500; ++i) {
        const std::string id = std::to_string((i * 37) % 2500);
        features += std::string(features.empty() ? "" : ",") + R"({"type":"Feature","id":)" + id +
                    R"(,"properties":{"N":)" + id + R"(},"geometry":{"type":"Polygon","coordinates":[[[)" + id +
                    ",0],[" + id + R"(,1],[0,1],[)" + id + ",0]]]}}";
    }
    base::write_file(folder / "a.geojson", R"({"type":"FeatureCollection","features":[)" + features + "]}");
    const auto layer = FeatureClass::open({folder / "a.geojson"});
    base::NoProgress nobody;
    const PolygonFeatures all = layer.read_polygons(Names{"N"}, nobody, 4);
    ASSERT_EQ(all.ids.size(), 2500U);
    EXPECT_EQ(all.ids[1], 37);
    expect_same(all, layer.read_polygons(Names{"N"}));
}

TEST(PolygonReading, AnEmptyLayerHasNothing) {
    const TemporaryFolder folder;
    const auto layer = FeatureClass::open({write_layer(folder / "zones.shp", 0)});
    base::NoProgress nobody;
    const PolygonFeatures none = layer.read_polygons(Names{"N"}, nobody, 2);
    EXPECT_EQ(none.polygons.feature_count(), 0U);
    ASSERT_EQ(none.columns.size(), 1U);
    EXPECT_TRUE(none.columns[0].empty());
}

TEST(PolygonReading, TheFirstBadFeatureIsToldWhateverTheThreads) {
    const TemporaryFolder folder;
    write_layer(folder / "zones.shp", kFeatures);
    {
        // The coordinates of two features that are far apart: both have a ring of four points as their first part.
        const auto layer = FeatureClass::open({folder / "zones.shp"});
        const PolygonFeatures all = layer.read_polygons({});
        const std::string bytes = base::read_file_start(folder / "zones.shp", std::size_t{1} << 30);
        std::fstream file(folder / "zones.shp", std::ios::binary | std::ios::in | std::ios::out);
        for (const double from : {20.0, 45.0}) {
            std::size_t feature = static_cast<std::size_t>(from * 100);
            while (all.polygons.empty(feature)) {
                ++feature;
            }
            const polygons::Point first = all.polygons.ring(all.polygons.first_ring_of(feature))[1];
            const std::string point(reinterpret_cast<const char*>(&first), sizeof first);
            const std::size_t at = bytes.find(point);
            ASSERT_NE(at, std::string::npos);
            file.seekp(static_cast<std::streamoff>(at));
            const double bad = std::numeric_limits<double>::quiet_NaN();
            file.write(reinterpret_cast<const char*>(&bad), sizeof bad);
        }
    }
    const auto layer = FeatureClass::open({folder / "zones.shp"});
    const auto expected = test::error_of([&] { layer.read_polygons({}); });
    EXPECT_EQ(expected.number(), 5);
    EXPECT_THAT(expected.description(), HasSubstr("Feature 200"));
    for (int i = 0; i < 5; ++i) {
        for (const int threads : {1, 2, 4}) {
            base::NoProgress nobody;
            const auto error = test::error_of([&] { layer.read_polygons({}, nobody, threads); });
            EXPECT_EQ(error.description(), expected.description()) << threads;
        }
    }
}

TEST(PolygonReading, TellsOfItselfAndStopsWhenTold) {
    const TemporaryFolder folder;
    const auto layer = FeatureClass::open({write_layer(folder / "zones.shp", kFeatures)});
    test::ListeningProgress all;
    layer.read_polygons({}, all, 2);
    EXPECT_EQ(all.fractions.front(), 0);
    EXPECT_TRUE(std::is_sorted(all.fractions.begin(), all.fractions.end()));
    EXPECT_THAT(all.texts, Each("Reading the layers"));
    test::ListeningProgress stops(1);
    EXPECT_LT(layer.read_polygons({}, stops, 2).ids.size(), static_cast<std::size_t>(kFeatures));
    EXPECT_EQ(stops.fractions.size(), 1U);
    base::NoProgress nobody;
    EXPECT_EQ(layer.read_polygons({}, nobody, 2).ids.size(), static_cast<std::size_t>(kFeatures)) << "usable as before";
}

}  // namespace
}  // namespace kestrel::data
