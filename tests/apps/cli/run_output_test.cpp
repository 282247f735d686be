// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/run_output.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "base/files.h"
#include "running/output_check.h"
#include "tests/support/test_files.h"

namespace kestrel::cli {
namespace {

namespace fs = std::filesystem;

/// What is told of an output that cannot be; empty when it can.
std::string refusal_of(const RunOutput& output, const std::vector<std::string>& inputs = {},
                       running::Replacing replacing = running::Replacing::forbidden) {
    const auto refusal = running::first_reason_against(output, inputs, replacing);
    return refusal ? refusal_text(*refusal) : "";
}

/// Whether it is an input that stands against an output that may replace others.
bool replaces_input(const RunOutput& output, const std::vector<std::string>& inputs) {
    const auto refusal = running::first_reason_against(output, inputs, running::Replacing::allowed);
    return refusal && refusal->cause == running::RunRefusal::Cause::replaced_input;
}

TEST(OutputName, GetsTheEndingThatItLacks) {
    EXPECT_EQ(output_of("/d/roads", "").file_name, "roads.shp");
    EXPECT_EQ(output_of("/d/roads.", "").file_name, "roads.shp");
    EXPECT_EQ(output_of("/d/roads.shp", "").file_name, "roads.shp");
    EXPECT_EQ(output_of("/d/roads.2020", "").file_name, "roads.2020.shp");
    EXPECT_EQ(output_of("/d/myshp", "").file_name, "myshp.shp");
}

TEST(OutputName, AnEndingInCapitalsIsKept) {
    EXPECT_EQ(output_of("/d/ROADS.SHP", "").file_name, "ROADS.SHP");
    EXPECT_EQ(output_of("/d/ROADS.SHP", "").layer_name, "ROADS");
}

TEST(OutputName, BlanksAroundItAreDropped) {
    EXPECT_EQ(output_of("  /d/my roads.shp ", "").path(), "/d/my roads.shp");
}

TEST(OutputName, ABareNameLiesInThePresentFolder) {
    EXPECT_EQ(output_of("roads", "").folder, fs::current_path().string());
    EXPECT_EQ(output_of("sub/../roads", "").folder, fs::current_path().string());
}

TEST(OutputName, TheLayerIsNamedAfterTheFileUnlessNamed) {
    EXPECT_EQ(output_of("/d/roads.old.shp", "").layer_name, "roads.old");
    EXPECT_EQ(output_of("/d/roads.shp", "Roads IS").layer_name, "Roads IS");
}

TEST(OutputName, WithoutANameIsRefused) {
    for (const char* text : {"", "  ", "/d/", "/d/.", "/d/..", "/d/.shp"}) {
        EXPECT_THROW(output_of(text, ""), std::invalid_argument) << text;
    }
}

TEST(OutputName, ALayerNameThatIsNoFileNameIsRefused) {
    EXPECT_THROW(output_of("/d/roads.shp", "a/b"), std::invalid_argument);
    EXPECT_THROW(output_of("/d/roads.shp", "a\\b"), std::invalid_argument);
}

TEST(OutputName, LongerThanAFileNameIsRefused) {
    EXPECT_EQ(output_of("/d/" + std::string(251, 'x'), "").file_name.size(), 255U);
    EXPECT_THROW(output_of("/d/" + std::string(252, 'x'), ""), std::invalid_argument);
    EXPECT_EQ(output_of("/d/roads.shp", std::string(251, 'x')).layer_name.size(), 251U);
    EXPECT_THROW(output_of("/d/roads.shp", std::string(252, 'x')), std::invalid_argument);
}

TEST(OutputName, AFolderIsRefusedUnlessItsNameIsThatOfAShapefile) {
    const test::TemporaryFolder folder;
    fs::create_directory(folder / "results");
    fs::create_directory(folder / "roads.shp");
    try {
        output_of(folder / "results", "");
        FAIL() << "a folder is no output";
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(std::string(error.what()),
                  "'" + (folder / "results") + "' is a folder: write " + (folder / "results/NAME.shp"));
    }
    EXPECT_EQ(output_of(folder / "results.shp", "").file_name, "results.shp");
    EXPECT_EQ(output_of(folder / "roads.shp", "").file_name, "roads.shp") << "first_reason_against() refuses it";
}

TEST(OutputRecords, BearTheLayersNameAndTheStyleTheFiles) {
    EXPECT_EQ(output_of("/d/roads.shp", "Roads IS").records(),
              (std::vector<std::string>{"/d/Roads IS.prm", "/d/Roads IS.met", "/d/Roads IS.lyr", "/d/roads.qml"}));
}

class OutputPlaceTest : public testing::Test {
  protected:
    RunOutput output(const std::string& name) const { return output_of(m_folder / name, ""); }
    void make(const std::string& name) const { base::write_file(m_folder / name, "x"); }

    test::TemporaryFolder m_folder;
};

TEST_F(OutputPlaceTest, AMissingFolderIsRefused) {
    EXPECT_EQ(refusal_of(output("none/roads.shp")), "The folder of the output does not exist: '" + (m_folder / "none") +
                                                        "'. Make it, or give another --output.");
}

TEST_F(OutputPlaceTest, AFolderThatCannotBeWrittenIsRefused) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may write everywhere";
    }
    ::chmod(m_folder.path().c_str(), 0500);
    const std::string refusal = refusal_of(output("roads.shp"));
    ::chmod(m_folder.path().c_str(), 0700);
    EXPECT_EQ(refusal,
              "The folder of the output cannot be written to: '" + m_folder.path() + "'. Give another --output.");
}

TEST_F(OutputPlaceTest, AFolderInThePlaceOfAFileIsRefused) {
    for (const char* name : {"roads.shp", "roads.dbf", "roads.shx", "roads.prj", "roads.cpg", "roads.prm", "roads.met",
                             "roads.lyr", "roads.qml"}) {
        fs::create_directory(m_folder / name);
        EXPECT_EQ(
            refusal_of(output("roads.shp")),
            "'" + (m_folder / name) + "' is a folder, where a file of the output would stand. Give another --output.");
        fs::remove(m_folder / name);
    }
}

TEST_F(OutputPlaceTest, AnExistingOutputIsRefusedUnlessItIsToBeReplaced) {
    make("roads.shp");
    make("roads.prm");
    EXPECT_EQ(refusal_of(output("roads.shp")),
              "The output exists already: '" + (m_folder / "roads.shp") +
                  "' and 1 more file of that name. Give --overwrite to replace it, or another --output.");
    make("roads.dbf");
    EXPECT_EQ(refusal_of(output("roads.shp")),
              "The output exists already: '" + (m_folder / "roads.shp") +
                  "' and 2 more files of that name. Give --overwrite to replace it, or another --output.");
    EXPECT_EQ(refusal_of(output("roads.shp"), {}, running::Replacing::allowed), "");
}

TEST_F(OutputPlaceTest, ARunReportOfTheSameNameAloneIsAnExistingOutput) {
    make("roads.prm");
    EXPECT_NE(refusal_of(output("roads.shp")), "");
}

TEST_F(OutputPlaceTest, AFreePlaceIsAccepted) {
    make("other.shp");
    EXPECT_EQ(refusal_of(output("roads.shp")), "");
}

TEST_F(OutputPlaceTest, AnInputAsOutputIsRefused) {
    make("sheds.shp");
    EXPECT_EQ(refusal_of(output("sheds.shp"), {m_folder / "sheds.shp"}),
              "The output '" + (m_folder / "sheds.shp") + "' would replace the input '" + (m_folder / "sheds.shp") +
                  "', or files that belong to it. Give another --output.");
}

TEST_F(OutputPlaceTest, AnInputReachedThroughALinkIsRefused) {
    make("sheds.shp");
    fs::create_directory(m_folder / "x");
    fs::create_symlink(m_folder / "sheds.shp", m_folder / "link.shp");
    fs::create_directory_symlink(m_folder.path(), m_folder / "folder");
    EXPECT_TRUE(replaces_input(output("sheds.shp"), {m_folder / "link.shp"}));
    EXPECT_TRUE(replaces_input(output("link.shp"), {m_folder / "sheds.shp"}));
    EXPECT_TRUE(replaces_input(output("folder/sheds.shp"), {m_folder / "sheds.shp"}));
    EXPECT_TRUE(replaces_input(output("x/../sheds.shp"), {m_folder / "sheds.shp"}));
}

TEST_F(OutputPlaceTest, AHardLinkToAnInputIsRefused) {
    make("sheds.shp");
    fs::create_hard_link(m_folder / "sheds.shp", m_folder / "other.shp");
    EXPECT_TRUE(replaces_input(output("other.shp"), {m_folder / "sheds.shp"}));
}

TEST_F(OutputPlaceTest, AnOutputWhoseSideFilesBelongToAnInputIsRefused) {
    make("lc.bil");
    make("sheds.shp");
    EXPECT_TRUE(replaces_input(output("lc.shp"), {m_folder / "lc.bil"}));
    EXPECT_TRUE(replaces_input(output("sheds.SHP"), {m_folder / "sheds.shp"}));
}

TEST_F(OutputPlaceTest, OtherInputsAreNotInTheWay) {
    make("sheds.shp");
    EXPECT_EQ(refusal_of(output("sheds_is.shp"), {m_folder / "sheds.shp", "GPKG:none.gpkg:lc", ""}), "");
}

}  // namespace
}  // namespace kestrel::cli
