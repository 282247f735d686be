// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "data/shape_records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>

#include "base/files.h"
#include "data/feature_class.h"
#include "data/shapefile_writer.h"
#include "tests/support/error_of.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

/// A shapefile without features, for records to be appended; its table has no records either.
std::string new_stem(const test::TemporaryFolder& folder) {
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter(folder / "out.shp", fields, {}).close();
    return folder / "out";
}

void add_box(polygons::PolygonSet& set, double x, double y, double size, bool clockwise) {
    set.begin_ring();
    const polygons::Point corners[] = {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}, {x, y}};
    for (int i = 0; i < 5; ++i) {
        set.add(corners[clockwise ? 4 - i : i]);
    }
}

/// Features of no to three squares beside one another, some with holes, running either way.
polygons::PolygonSet random_features(std::mt19937& random, int count) {
    polygons::PolygonSet set;
    for (int f = 0; f < count; ++f) {
        set.begin_feature();
        const auto parts = random() % 4;
        for (std::size_t p = 0; p < parts; ++p) {
            set.begin_polygon();
            const double x = 1e6 + 100.0 * static_cast<double>(p) + static_cast<double>(random() % 1000) / 64;
            add_box(set, x, f, 80, random() % 2 == 0);
            const auto holes = random() % 3;
            for (std::size_t h = 0; h < holes; ++h) {
                add_box(set, x + 5 + 20 * static_cast<double>(h), f + 5, 10, random() % 2 == 0);
            }
        }
    }
    return set;
}

std::vector<polygons::Point> sorted(std::span<const polygons::Point> ring) {
    std::vector<polygons::Point> points(ring.begin(), ring.end() - 1);
    std::sort(points.begin(), points.end(),
              [](polygons::Point a, polygons::Point b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    return points;
}

TEST(ShapeRecords, ReadBackAsTheyWereWhateverWayRingsRun) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        const test::TemporaryFolder folder;
        const int count = static_cast<int>(random() % 60);
        const polygons::PolygonSet set = random_features(random, count);
        ShapeRecords records(new_stem(folder));
        for (std::size_t f = 0; f < set.feature_count(); ++f) {
            records.append(set, f);
            if (random() % 16 == 0) {
                records.flush();
            }
        }
        records.close();
        std::filesystem::remove(folder / "out.dbf");  // it has no records: the shapes alone are read
        const polygons::PolygonSet read = FeatureClass::open({folder / "out.shp"}).read_polygons({}).polygons;
        ASSERT_EQ(read.feature_count(), set.feature_count());
        ASSERT_EQ(read.polygon_count(), set.polygon_count());
        ASSERT_EQ(read.ring_count(), set.ring_count());
        for (std::size_t f = 0; f < set.feature_count(); ++f) {
            EXPECT_EQ(read.area(f), set.area(f));
        }
        for (std::size_t r = 0; r < set.ring_count(); ++r) {
            EXPECT_EQ(sorted(read.ring(r)), sorted(set.ring(r)));
        }
        if (set.polygon_count() > 0) {
            EXPECT_EQ(FeatureClass::open({folder / "out.shp"}).extent().max_x, set.envelope().max_x);
            EXPECT_EQ(FeatureClass::open({folder / "out.shp"}).extent().min_y, set.envelope().min_y);
        }
    }
}

TEST(ShapeRecords, SizeIsWhatTheFileHas) {
    const test::TemporaryFolder folder;
    std::mt19937 random(4);
    const polygons::PolygonSet set = random_features(random, 50);
    ShapeRecords records(new_stem(folder));
    std::int64_t size = records.size();
    EXPECT_EQ(size, 100);
    for (std::size_t f = 0; f < set.feature_count(); ++f) {
        records.append(set, f);
        size += shape_size(set, f);
        EXPECT_EQ(records.size(), size);
    }
    records.close();
    EXPECT_EQ(std::filesystem::file_size(folder / "out.shp"), static_cast<std::uintmax_t>(size));
    EXPECT_EQ(std::filesystem::file_size(folder / "out.shx"), 100U + 8 * set.feature_count());
}

TEST(ShapeRecords, ShellsRunClockwiseAndHolesTheOtherWay) {
    const test::TemporaryFolder folder;
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    add_box(set, 0, 0, 10, false);
    add_box(set, 2, 2, 2, true);
    ShapeRecords records(new_stem(folder));
    records.append(set, 0);
    records.close();
    const std::string bytes = base::read_file(folder / "out.shp");
    std::vector<polygons::Point> points(10);
    const std::size_t start = 100 + 8 + 44 + 2 * 4;
    ASSERT_EQ(bytes.size(), start + 160);
    std::memcpy(points.data(), bytes.data() + start, 160);
    EXPECT_LT(polygons::twice_signed_area(std::span(points).first(5)), 0);
    EXPECT_GT(polygons::twice_signed_area(std::span(points).last(5)), 0);
}

TEST(ShapeRecords, FullDeviceIsToldOfWithItsReason) {
    const test::TemporaryFolder folder;
    std::mt19937 random(5);
    const polygons::PolygonSet set = random_features(random, 400);
    ShapeRecords records(new_stem(folder));
    for (std::size_t f = 0; f < set.feature_count(); ++f) {
        records.append(set, f);  // still in the buffer
    }
    const test::FileSizeLimit limit(4096);
    const base::RuntimeError error = test::error_of([&] { records.close(); });
    EXPECT_EQ(error.number(), base::kDiskFull);
    EXPECT_EQ(error.description(), "File too large: " + (folder / "out.shp"));
}

TEST(ShapeRecords, BufferThatIsFullIsWrittenWhereTheDeviceIsNot) {
    const test::TemporaryFolder folder;
    std::mt19937 random(6);
    const polygons::PolygonSet set = random_features(random, 3000);
    ShapeRecords records(new_stem(folder));
    const test::FileSizeLimit limit(4096);
    const base::RuntimeError error = test::error_of([&] {
        for (std::size_t f = 0; f < set.feature_count(); ++f) {
            records.append(set, f);
        }
    });
    EXPECT_EQ(error.number(), base::kDiskFull);
    EXPECT_LE(std::filesystem::file_size(folder / "out.shp"), 4096U);
}

TEST(ShapeRecords, ShapefileThatIsMissingIsNamed) {
    const test::TemporaryFolder folder;
    const base::RuntimeError error = test::error_of([&] { ShapeRecords records(folder / "none"); });
    EXPECT_EQ(error.number(), base::kLibraryFailure);
    EXPECT_EQ(error.description(), (folder / "none.shp") + " cannot be written");
}

}  // namespace
}  // namespace kestrel::data
