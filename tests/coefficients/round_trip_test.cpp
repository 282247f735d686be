// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/files.h"
#include "coefficients/basISModelPropsUtil.h"
#include "coefficients/basUtil.h"
#include "tests/coefficients/sets.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using basISModelPropsUtil::ExportCoeffsToFile;
using basISModelPropsUtil::find_set;
using basISModelPropsUtil::ImportCoeffsFromFile;
using test::classes_of;

/// Coefficient sets that go out as text and come back under another name.
class RoundTrip : public testing::Test {
  protected:
    /// The file's set under the name `name`, which `props` gets; nothing when the import fails.
    std::shared_ptr<clsISLCDef> imported(clsISModelProperties& props, const std::string& path,
                                         const std::string& name) {
        m_user.inputs.push_back(name);
        const bool done = ImportCoeffsFromFile(props, path, CoefficientStore::at(m_folder / "store.xml"), {});
        EXPECT_TRUE(done);
        EXPECT_THAT(m_user.boxes, testing::IsEmpty());
        return done ? find_set(props, name) : nullptr;
    }

    void expect_identical(clsISModelProperties& props, const std::string& name) {
        ASSERT_TRUE(ExportCoeffsToFile(props, name, m_text));
        const auto returned = imported(props, m_text, name + " returned");
        ASSERT_TRUE(returned);
        EXPECT_EQ(classes_of(returned->LCClasses), classes_of(find_set(props, name)->LCClasses));
    }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_user;
    std::string m_text = m_folder / "set.txt";
};

TEST_F(RoundTrip, EveryShippedSetComesBackIdentical) {
    clsISModelProperties props;
    ASSERT_TRUE(basUtil::GetISModelProperties(props, std::string(KESTREL_SOURCE_DIR) + "/etc/isprops.xml"));
    const std::vector<std::string> names = basUtil::set_names(props);
    ASSERT_THAT(names, testing::Not(testing::IsEmpty()));
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        ASSERT_GT(find_set(props, name)->LCClasses.Count(), 0);
        expect_identical(props, name);
    }
}

/// Sets of unusual but legal classes, the same ones in every run.
class Generator {
  public:
    std::vector<std::shared_ptr<clsLCClass>> classes() {
        std::vector<std::shared_ptr<clsLCClass>> made;
        for (std::size_t count = below(13); made.size() < count;) {
            made.push_back(test::land_class(value(), name(), coefficient(), coefficient(), coefficient()));
        }
        return made;
    }

  private:
    std::size_t below(std::size_t end) { return m_random() % end; }

    std::int32_t value() {
        constexpr std::int32_t kEdges[]{0, 1, 255, 65536, 2147483646, 2147483647};
        return below(2) == 0 ? kEdges[below(std::size(kEdges))] : static_cast<std::int32_t>(m_random() & 0x7FFFFFFF);
    }

    std::string name() {
        static const std::vector<std::string> kPieces{" ",
                                                      "  ",
                                                      "\t",
                                                      "a",
                                                      "Z",
                                                      "9",
                                                      "\"",
                                                      "'",
                                                      ";",
                                                      ":",
                                                      "#",
                                                      "&",
                                                      "&amp;",
                                                      "<",
                                                      ">",
                                                      "</LCName>",
                                                      "]]>",
                                                      "%",
                                                      "_",
                                                      "\\",
                                                      "/",
                                                      "|",
                                                      "^",
                                                      "~",
                                                      "=",
                                                      "+",
                                                      "-",
                                                      "1e5",
                                                      "Value",
                                                      "nan",
                                                      "\x7F",
                                                      "\xC3\xA9",
                                                      "\xC3\x9F",
                                                      "\xC2\xA0",
                                                      "\xC2\x85",
                                                      "\xE2\x82\xAC",
                                                      "\xE2\x80\xA8",
                                                      "\xEF\xBF\xBD",
                                                      "\xEF\xBC\x8C",
                                                      "\xE6\xB0\xB4",
                                                      "e\xCC\x81",
                                                      "\xD8\xA7",
                                                      "\xF0\x9F\x8C\xB2"};
        std::string text;
        for (std::size_t count = below(8); count > 0; --count) {
            text += kPieces[below(kPieces.size())];
        }
        return text;
    }

    float coefficient() {
        const float edges[]{0,
                            100,
                            std::numeric_limits<float>::denorm_min(),
                            std::numeric_limits<float>::min(),
                            1e-10F,
                            1.F / 3,
                            std::nextafter(100.F, 0.F),
                            33.3F};
        if (below(3) == 0) {
            return edges[below(std::size(edges))];
        }
        return std::uniform_real_distribution<float>(0, 100)(m_random);
    }

    std::mt19937 m_random{20240229};
};

TEST_F(RoundTrip, TwoHundredGeneratedSetsComeBackIdentical) {
    Generator generator;
    for (int i = 0; i < 200 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        clsISModelProperties props;
        test::add_set(props, "Set " + std::to_string(i), generator.classes());
        expect_identical(props, "Set " + std::to_string(i));
    }
}

TEST_F(RoundTrip, BlanksRoundNamesAndEmptyNamesStay) {
    clsISModelProperties props;
    test::add_set(props, "Blanks",
                  {test::land_class(1, "  both  ", 0, 100, 0), test::land_class(2, "", 0, 0, 0),
                   test::land_class(3, " ", 0, 0, 0), test::land_class(4, "\ttab\t", 0, 0, 0)});
    expect_identical(props, "Blanks");
}

TEST_F(RoundTrip, RealTextFilesAreTheSetsOfTheRealStore) {
    const std::string folder = test::real_data_folder();
    if (folder.empty()) {
        GTEST_SKIP() << "no real data";
    }
    clsISModelProperties stored;
    ASSERT_TRUE(basUtil::GetISModelProperties(stored, folder + "/isprops.xml"));
    clsISModelProperties props;
    for (const auto& [file, name] :
         {std::pair{"nlcd_legend.csv", "NLCD legend"}, std::pair{"nlcd_spread.csv", "NLCD spread"},
          std::pair{"nlcd_without_crops.csv", "NLCD without crops"}}) {
        SCOPED_TRACE(file);
        const std::string path = base::join_path(folder, file);
        const auto set = imported(props, path, name);
        ASSERT_TRUE(set);
        ASSERT_TRUE(find_set(stored, name));
        EXPECT_GT(set->LCClasses.Count(), 0);
        EXPECT_EQ(classes_of(set->LCClasses), classes_of(find_set(stored, name)->LCClasses));
        ASSERT_TRUE(ExportCoeffsToFile(stored, name, m_text));
        EXPECT_EQ(base::read_file(m_text), base::read_file(path));
    }
    EXPECT_EQ(base::read_file(m_folder / "store.xml"), base::read_file(folder + "/isprops.xml"));
}

}  // namespace
}  // namespace kestrel
