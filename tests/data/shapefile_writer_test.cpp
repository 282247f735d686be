// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>

#include "data/shapefile_members.h"
#include "data/shapefile_writer.h"

#include "base/errors.h"
#include "base/files.h"
#include "data/feature_class.h"
#include "tests/support/test_files.h"

namespace kestrel::data {
namespace {

using test::TemporaryFolder;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr std::monostate kNull;

void add_ring(polygons::PolygonSet& set, std::initializer_list<polygons::Point> points) {
    set.begin_ring();
    for (const polygons::Point p : points) {
        set.add(p);
    }
}

/// One feature: a square of that size with its lower left corner at x, 0.
polygons::PolygonSet square(double x = 0, double size = 1) {
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    add_ring(set, {{x, 0}, {x, size}, {x + size, size}, {x + size, 0}, {x, 0}});
    return set;
}

/// One feature with a ring of many points.
polygons::PolygonSet circle(std::size_t points) {
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    set.begin_ring();
    for (std::size_t i = 0; i <= points; ++i) {
        const double angle = 6.283185307179586 * static_cast<double>(i % points) / static_cast<double>(points);
        set.add({std::cos(angle), -std::sin(angle)});
    }
    return set;
}

/// The characters that a record of a .dbf holds for a field, as they stand.
std::string stored(const std::string& dbf, std::size_t record, std::size_t field) {
    const std::string bytes = base::read_file(dbf);
    const auto byte = [&](std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(bytes.at(at)));
    };
    const std::size_t start = byte(8) + 256 * byte(9);
    const std::size_t length = byte(10) + 256 * byte(11);
    std::size_t offset = 1;
    for (std::size_t f = 0; f < field; ++f) {
        offset += byte(32 + 32 * f + 16);
    }
    return bytes.substr(start + record * length + offset, byte(32 + 32 * field + 16));
}

std::size_t record_count(const std::string& dbf) {
    const std::string bytes = base::read_file(dbf);
    return static_cast<unsigned char>(bytes.at(4)) + 256U * static_cast<unsigned char>(bytes.at(5));
}

std::string trimmed(std::string text) {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// Writes one value into a field of its own and gives the characters that the table holds.
std::string stored_value(const Field& field, const Value& value) {
    const TemporaryFolder folder;
    ShapefileWriter writer(folder / "one.shp", {&field, 1}, {});
    writer.insert(square(), 0, {&value, 1});
    writer.close();
    return trimmed(stored(folder / "one.dbf", 0, 0));
}

std::int32_t error_number(const std::function<void()>& call) {
    try {
        call();
    } catch (const base::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

TEST(ShapefileWriter, WritesShapesAttributesSystemAndEncoding) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"ZONE", "", FieldType::integer, 9},
                                    {"NAME", "", FieldType::text, 20},
                                    {"TotAcres", "", FieldType::real, 18, 18, 6}};
    ShapefileWriter writer(folder / "out.shp", fields, SpatialReference::from("EPSG:26912"));
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{7}, "Zion", 12.5});
    writer.insert(square(5), 0, std::vector<Value>{std::int64_t{8}, "Virgin", 0.25});
    writer.close();

    EXPECT_THAT(test::names_in(folder.path()), ElementsAre("out.cpg", "out.dbf", "out.prj", "out.shp", "out.shx"));
    EXPECT_EQ(base::read_file(folder / "out.cpg"), "UTF-8");
    EXPECT_THAT(base::read_file(folder / "out.prj"), ::testing::StartsWith("PROJCS[\"NAD_1983_UTM_Zone_12N\""));
    const auto read = FeatureClass::open({folder / "out.shp"});
    EXPECT_THAT(read.fields(), ElementsAre(Field{"ZONE", "", FieldType::integer, 9, 9, 0},
                                           Field{"NAME", "", FieldType::text, 20, 0, 0},
                                           Field{"TotAcres", "", FieldType::real, 18, 18, 6}));
    const auto features = read.read_polygons(std::vector<std::string>{"ZONE", "NAME", "TotAcres"});
    EXPECT_EQ(features.polygons.feature_count(), 2U);
    EXPECT_EQ(features.polygons.area(0), 1.0);
    EXPECT_EQ(features.polygons.envelope(1).min_x, 5.0);
    EXPECT_THAT(features.columns[0], ElementsAre(Value(std::int64_t{7}), Value(std::int64_t{8})));
    EXPECT_THAT(features.columns[1], ElementsAre(Value("Zion"), Value("Virgin")));
    EXPECT_THAT(features.columns[2], ElementsAre(Value(12.5), Value(0.25)));
    EXPECT_TRUE(read.spatial_reference().same(SpatialReference::from("EPSG:26912")));
}

TEST(ShapefileWriter, WithoutCoordinateSystemThereIsNoPrj) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter(folder / "out.shp", fields, {}).close();
    EXPECT_THAT(test::names_in(folder.path()), ElementsAre("out.cpg", "out.dbf", "out.shp", "out.shx"));
}

TEST(ShapefileWriter, NoFeaturesMakeAShapefileOfNone) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "none.shp", fields, SpatialReference::from("EPSG:26912"));
    writer.close();
    const auto read = FeatureClass::open({folder / "none.shp"});
    EXPECT_EQ(read.feature_count(), 0);
    EXPECT_TRUE(read.polygonal());
    EXPECT_TRUE(read.extent().empty());
    EXPECT_EQ(read.fields().size(), 1U);
}

TEST(ShapefileWriter, HolesAndPartsSurvive) {
    const TemporaryFolder folder;
    polygons::PolygonSet set;
    set.begin_feature();
    set.begin_polygon();
    add_ring(set, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
    add_ring(set, {{2, 2}, {4, 2}, {4, 4}, {2, 4}, {2, 2}});
    add_ring(set, {{6, 6}, {8, 6}, {8, 8}, {6, 8}, {6, 6}});
    set.begin_polygon();
    add_ring(set, {{20, 0}, {21, 0}, {21, 1}, {20, 1}, {20, 0}});
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(set, 0, std::vector<Value>{std::int64_t{1}});
    writer.close();
    const auto read = FeatureClass::open({folder / "out.shp"}).read_polygons({});
    EXPECT_EQ(read.polygons.polygon_count(), 2U);
    EXPECT_EQ(read.polygons.ring_count(), 4U);
    EXPECT_EQ(read.polygons.area(0), 100 - 4 - 4 + 1);
}

TEST(ShapefileWriter, EmptyGeometryBecomesANullShape) {
    const TemporaryFolder folder;
    polygons::PolygonSet set = square();
    set.begin_feature();
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(set, 1, std::vector<Value>{std::int64_t{1}});
    writer.insert(set, 0, std::vector<Value>{std::int64_t{2}});
    writer.insert(set, 1, std::vector<Value>{std::int64_t{3}});
    writer.close();
    const auto read = FeatureClass::open({folder / "out.shp"}).read_polygons(std::vector<std::string>{"A"});
    ASSERT_EQ(read.polygons.feature_count(), 3U);
    EXPECT_TRUE(read.polygons.empty(0));
    EXPECT_FALSE(read.polygons.empty(1));
    EXPECT_TRUE(read.polygons.empty(2));
    EXPECT_THAT(read.columns[0], ElementsAre(Value(std::int64_t{1}), Value(std::int64_t{2}), Value(std::int64_t{3})));
}

TEST(ShapefileWriter, NullStaysNullInNumbersAndIsBlankInText) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"I", "", FieldType::integer, 9},
                                    {"R", "", FieldType::real, 18, 18, 6},
                                    {"T", "", FieldType::text, 10},
                                    {"B", "", FieldType::big_integer, 18}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{1}, 1.0, "x", std::int64_t{1}});
    writer.insert(square(), 0, std::vector<Value>{kNull, kNull, kNull, kNull});
    writer.close();
    const auto columns =
        FeatureClass::open({folder / "out.shp"}).read_columns(std::vector<std::string>{"I", "R", "T", "B"});
    for (const auto& column : columns) {
        EXPECT_EQ(column[1], Value(kNull)) << "nothing of the feature before may stay behind";
    }
}

TEST(ShapefileWriter, AccentsSurviveInValues) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"NAME", "", FieldType::text, 30}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(square(), 0, std::vector<Value>{"Río Grande — Łódź 川"});
    writer.close();
    const auto columns = FeatureClass::open({folder / "out.shp"}).read_columns(std::vector<std::string>{"NAME"});
    EXPECT_EQ(columns[0][0], Value("Río Grande — Łódź 川"));
}

TEST(ShapefileWriter, PathWithAccentsAndBlanksWorks) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter(folder / "Übersicht der Flächen.shp", fields, {}).close();
    EXPECT_EQ(FeatureClass::open({folder / "Übersicht der Flächen.shp"}).feature_count(), 0);
}

TEST(ShapefileWriter, IntegersOf64BitsKeepEveryDigit) {
    const Field field{"B", "", FieldType::big_integer, 18};
    EXPECT_EQ(stored_value(field, std::int64_t{999999999999999999}), "999999999999999999");
    EXPECT_EQ(stored_value(field, std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_EQ(stored_value(field, std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(stored_value({"I", "", FieldType::integer, 4}, std::int64_t{2147483647}), "2147483647");
    EXPECT_EQ(stored_value({"I", "", FieldType::integer}, std::int64_t{-2147483648}), "-2147483648");
}

TEST(ShapefileWriter, FieldThatGrowsKeepsTheValuesBefore) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"I", "", FieldType::integer, 2}, {"T", "", FieldType::text, 3}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{-1}, "abc"});
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{123456789012345678}, "abcdefg"});
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{5}, "é"});
    writer.close();
    const auto columns = FeatureClass::open({folder / "out.shp"}).read_columns(std::vector<std::string>{"I", "T"});
    EXPECT_THAT(columns[0],
                ElementsAre(Value(std::int64_t{-1}), Value(std::int64_t{123456789012345678}), Value(std::int64_t{5})));
    EXPECT_THAT(columns[1], ElementsAre(Value("abc"), Value("abcdefg"), Value("é")));
}

TEST(ShapefileWriter, BigIntegerOf18DigitsReadsBackAsAnInteger) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"B", "", FieldType::big_integer, 18}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.insert(square(), 0, std::vector<Value>{std::int64_t{999999999999999999}});
    writer.close();
    const auto read = FeatureClass::open({folder / "out.shp"});
    EXPECT_EQ(read.fields()[0].type, FieldType::big_integer);
    EXPECT_EQ(read.fields()[0].length, 18);
    EXPECT_EQ(read.read_columns(std::vector<std::string>{"B"})[0][0], Value(std::int64_t{999999999999999999}));
}

TEST(ShapefileWriter, BooleanIsADigit) {
    EXPECT_EQ(stored_value({"B", "", FieldType::boolean}, std::int64_t{1}), "1");
    EXPECT_EQ(stored_value({"B", "", FieldType::boolean}, std::int64_t{0}), "0");
}

TEST(ShapefileWriter, RealsAreStoredWithTheScaleOfTheirField) {
    EXPECT_EQ(stored_value({"R", "", FieldType::real, 18, 18, 6}, 1.0 / 3), "0.333333");
    EXPECT_EQ(stored_value({"R", "", FieldType::real, 18, 18, 6}, 12345678901.5), "12345678901.500000");
    EXPECT_EQ(stored_value({"R", "", FieldType::real, 10, 10, 2}, 66.666), "66.67");
    EXPECT_EQ(stored_value({"R", "", FieldType::real, 0, 10, 2}, 100.0), "100.00");
    EXPECT_EQ(stored_value({"R", "", FieldType::real, 10, 10, 2}, std::int64_t{3}), "3.00");
}

TEST(ShapefileWriter, RealWithoutLengthHasRoomForSmallAndLarge) {
    EXPECT_EQ(stored_value({"R", "", FieldType::real}, 0.123456789012345), "0.123456789012345");
    EXPECT_EQ(stored_value({"R", "", FieldType::real}, 4123456789.5), "4123456789.500000000000000");
}

TEST(ShapefileWriter, NumberTooLargeForItsFieldIsAnOverflowThatNamesIt) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"PCT", "", FieldType::real, 10, 10, 2}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    const auto insert = [&](double value) { writer.insert(square(), 0, std::vector<Value>{value}); };
    insert(9999999.99);
    insert(-999999.99);
    for (const double value :
         {1e7, -1e6, 1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(error_number([&] { insert(value); }), 6) << value;
    }
    EXPECT_NE(error_number([&] { insert(9999999.999); }), 0) << "rounds up to a digit more";
    try {
        insert(1e7);
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_THAT(error.description(), AllOf(HasSubstr("PCT"), HasSubstr("out.shp")));
    }
}

TEST(ShapefileWriter, ValueOfTheWrongTypeIsATypeMismatch) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"I", "", FieldType::integer, 9}, {"R", "", FieldType::real, 18, 18, 6}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    const auto number = [&](const Value& i, const Value& r) {
        return error_number([&] { writer.insert(square(), 0, std::vector<Value>{i, r}); });
    };
    EXPECT_EQ(number("x", 1.0), 13);
    EXPECT_EQ(number(1.5, 1.0), 13);
    EXPECT_EQ(number(1e19, 1.0), 13);
    EXPECT_EQ(number(std::int64_t{1}, "x"), 13);
    EXPECT_EQ(number(2.0, "1.5"), 0) << "a whole number and the text of a number will do";
}

TEST(ShapefileWriter, NumbersInATextFieldAreWrittenAsText) {
    EXPECT_EQ(stored_value({"T", "", FieldType::text, 30}, std::int64_t{-12}), "-12");
    EXPECT_EQ(stored_value({"T", "", FieldType::text, 30}, 0.1), "0.1");
}

TEST(ShapefileWriter, TextLongerThanItsFieldMakesTheFieldGrow) {
    EXPECT_EQ(stored_value({"T", "", FieldType::text, 3}, "Watershed"), "Watershed");
    EXPECT_EQ(stored_value({"T", "", FieldType::text, 9}, "ééééééééé"), "ééééééééé") << "18 bytes";
}

TEST(ShapefileWriter, TextIsCutAt254BytesAtACharactersBorder) {
    const Field field{"T", "", FieldType::text, 400};
    EXPECT_EQ(stored_value(field, std::string(300, 'x')), std::string(254, 'x'));
    EXPECT_EQ(stored_value(field, std::string(254, 'x')), std::string(254, 'x'));
    EXPECT_EQ(stored_value(field, std::string(253, 'x') + "éyz"), std::string(253, 'x'));
    EXPECT_EQ(stored_value(field, std::string(252, 'x') + "éyz"), std::string(252, 'x') + "é");
    EXPECT_EQ(stored_value(field, std::string(251, 'x') + "\xF0\x9F\x8C\x8D"), std::string(251, 'x'));
}

TEST(ShapefileWriter, FlushHandsFeaturesToTheFilesAndIsCounted) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    for (int i = 0; i < 250; ++i) {
        writer.insert(square(i), 0, std::vector<Value>{std::int64_t{i}});
        if (i % 100 == 99) {
            writer.flush();
            EXPECT_EQ(record_count(folder / "out.dbf"), static_cast<std::size_t>(i + 1));
        }
    }
    EXPECT_EQ(writer.flush_count(), 2);
    writer.flush();
    EXPECT_EQ(writer.flush_count(), 3);
    writer.close();
    EXPECT_EQ(FeatureClass::open({folder / "out.shp"}).feature_count(), 250);
}

TEST(ShapefileWriter, ClosedWriterTakesNoMoreFeatures) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    writer.close();
    writer.close();
    EXPECT_EQ(error_number([&] { writer.insert(square(), 0, std::vector<Value>{std::int64_t{1}}); }), 5);
}

TEST(ShapefileWriter, TakesOneValueForEachField) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    ShapefileWriter writer(folder / "out.shp", fields, {});
    EXPECT_EQ(error_number([&] { writer.insert(square(), 0, {}); }), 5);
}

TEST(ShapefileWriter, FieldNameThatDbaseCannotHoldIsRefused) {
    const TemporaryFolder folder;
    const std::vector<Field> longer{{"ELEVENCHARS", "", FieldType::integer, 4}};
    EXPECT_NE(error_number([&] { ShapefileWriter(folder / "a.shp", longer, {}); }), 0);
    const std::vector<Field> twice{{"A", "", FieldType::integer, 4}, {"A", "", FieldType::integer, 4}};
    EXPECT_NE(error_number([&] { ShapefileWriter(folder / "b.shp", twice, {}); }), 0);
}

TEST(ShapefileWriter, ReplacesAShapefileOfTheSameNameWithAllItsMembers) {
    const TemporaryFolder folder;
    const std::vector<Field> old{{"OLD", "", FieldType::text, 9}};
    {
        ShapefileWriter writer(folder / "out.shp", old, SpatialReference::from("EPSG:26912"));
        writer.insert(square(), 0, std::vector<Value>{"x"});
        writer.close();
    }
    base::write_file(folder / "out.sbn", "stale index");
    base::write_file(folder / "out.prm", "no member");
    const std::vector<Field> fields{{"NEW", "", FieldType::integer, 4}};
    ShapefileWriter(folder / "out.shp", fields, {}).close();
    EXPECT_THAT(test::names_in(folder.path()), ElementsAre("out.cpg", "out.dbf", "out.prm", "out.shp", "out.shx"));
    EXPECT_EQ(FeatureClass::open({folder / "out.shp"}).fields()[0].name, "NEW");
}

TEST(ShapefileWriter, MissingFolderIsAnErrorThatNamesThePath) {
    const TemporaryFolder folder;
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    try {
        const ShapefileWriter writer(folder / "missing/out.shp", fields, {});
        FAIL() << "no error";
    } catch (const base::RuntimeError& error) {
        EXPECT_EQ(error.number(), 76);
        EXPECT_THAT(error.description(), HasSubstr("missing/out.shp"));
    }
}

/// Acts as a user without rights, even where the tests run as the system's administrator.
class AsNobody {
  public:
    AsNobody() : m_switched(::geteuid() == 0 && ::seteuid(65534) == 0) {}
    ~AsNobody() {
        if (m_switched && ::seteuid(0) != 0) {
            std::abort();
        }
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

  private:
    bool m_switched;
};

TEST(ShapefileWriter, ReadOnlyFolderIsPermissionDenied) {
    const TemporaryFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
    const std::vector<Field> fields{{"A", "", FieldType::integer, 4}};
    {
        const AsNobody nobody;
        EXPECT_EQ(error_number([&] { ShapefileWriter(folder / "out.shp", fields, {}); }), 70);
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
}

/// A device of a few kilobytes, mounted for one test.
class SmallDevice {
  public:
    explicit SmallDevice(const char* options)
        : m_mounted(::mount("tmpfs", m_folder.path().c_str(), "tmpfs", 0, options) == 0) {}
    ~SmallDevice() {
        if (m_mounted) {
            ::umount2(m_folder.path().c_str(), MNT_DETACH);
        }
    }
    SmallDevice(const SmallDevice&) = delete;
    SmallDevice& operator=(const SmallDevice&) = delete;

    bool mounted() const { return m_mounted; }
    std::string operator/(const std::string& name) const { return m_folder / name; }

  private:
    TemporaryFolder m_folder;
    bool m_mounted;
};

/// Writes `count` features and gives the number of the first error, 0 for none.
std::int32_t fill(const std::string& path, int count, const polygons::PolygonSet& polygons) {
    const std::vector<Field> fields{{"A", "", FieldType::integer, 9}, {"T", "", FieldType::text, 100}};
    return error_number([&] {
        ShapefileWriter writer(path, fields, SpatialReference::from("EPSG:26912"));
        for (int i = 0; i < count; ++i) {
            writer.insert(polygons, 0, std::vector<Value>{std::int64_t{i}, "text"});
        }
        writer.close();
    });
}

TEST(ShapefileWriter, FullDeviceIsDiskFullHoweverMuchFits) {
    // From too small for the first header up to nearly enough, so that it fills up in each of the files, while
    // inserting as well as while closing.
    int full = 0;
    for (int kilobytes = 4; kilobytes <= 80; kilobytes += 4) {
        const SmallDevice device(("size=" + std::to_string(kilobytes) + "k").c_str());
        if (!device.mounted()) {
            GTEST_SKIP() << "no right to mount a small device: a full device is NOT tested";
        }
        const std::int32_t number = fill(device / "out.shp", 200, circle(8));
        if (number == 0) {
            EXPECT_EQ(FeatureClass::open({device / "out.shp"}).read_polygons({}).polygons.feature_count(), 200U);
        } else {
            EXPECT_EQ(number, 61) << kilobytes << " KB";
            ++full;
        }
    }
    EXPECT_GE(full, 10);
    EXPECT_LT(full, 20) << "the largest device holds everything";
}

TEST(ShapefileWriter, DeviceThatFillsUpInALargeFeatureIsDiskFull) {
    const SmallDevice device("size=256k");
    if (!device.mounted()) {
        GTEST_SKIP() << "no right to mount a small device: a full device is NOT tested";
    }
    EXPECT_EQ(fill(device / "out.shp", 3, circle(10000)), 61);
}

TEST(ShapefileWriter, FlushOnAFullDeviceIsDiskFull) {
    const SmallDevice device("size=16k");
    if (!device.mounted()) {
        GTEST_SKIP() << "no right to mount a small device: a full device is NOT tested";
    }
    const std::vector<Field> fields{{"T", "", FieldType::text, 200}};
    EXPECT_EQ(error_number([&] {
                  ShapefileWriter writer(device / "out.shp", fields, {});
                  for (int i = 0; i < 200; ++i) {
                      writer.insert(square(), 0, std::vector<Value>{"x"});
                      writer.flush();
                  }
              }),
              61);
}

TEST(ShapefileMembers, AreTheFilesOfThatNameThatBelongToAShapefile) {
    const TemporaryFolder folder;
    for (const char* name : {"a.shp", "a.shx", "a.dbf", "a.prj", "a.cpg", "a.qix", "a.sbn", "a.sbx", "a.shp.xml",
                             "a.ZONE.atx", "a.prm", "a.met", "a.lyr", "a.txt", "ab.shp", "A.shp", "b.dbf", "a"}) {
        base::write_file(folder / name, "x");
    }
    std::vector<std::string> names;
    for (const std::string& path : shapefile_members(folder / "a.shp")) {
        EXPECT_THAT(path, ::testing::StartsWith(folder.path() + "/"));
        names.push_back(base::file_name_of(path));
    }
    EXPECT_THAT(names, ElementsAre("a.ZONE.atx", "a.cpg", "a.dbf", "a.prj", "a.qix", "a.sbn", "a.sbx", "a.shp",
                                   "a.shp.xml", "a.shx"));
}

TEST(ShapefileMembers, ExtensionsMayBeInCapitals) {
    const TemporaryFolder folder;
    base::write_file(folder / "ROADS.SHP", "x");
    base::write_file(folder / "ROADS.DBF", "x");
    EXPECT_THAT(shapefile_members(folder / "ROADS.SHP"), ElementsAre(EndsWith("ROADS.DBF"), EndsWith("ROADS.SHP")));
}

TEST(ShapefileMembers, MissingFolderHasNone) {
    EXPECT_TRUE(shapefile_members("/nonexistent/folder/a.shp").empty());
}

TEST(ShapefileMembers, FoldersAreNone) {
    const TemporaryFolder folder;
    base::write_file(folder / "a.dbf", "x");
    base::create_folder(folder / "a.shp");
    EXPECT_THAT(shapefile_members(folder / "a.shp"), ElementsAre(folder / "a.dbf"));
}

}  // namespace
}  // namespace kestrel::data
