// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/records_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "base/errors.h"
#include "base/files.h"
#include "tests/support/test_files.h"

namespace kestrel::cli {
namespace {

class RecordsTest : public testing::Test {
  protected:
    void make(const std::string& name, const std::string& text) const { base::write_file(m_folder / name, text); }
    std::string print(const RecordsRequest& request) const {
        std::ostringstream out;
        try {
            EXPECT_EQ(print_record(request, out), 0);
        } catch (const base::RuntimeError& error) {
            return "refused: " + error.description();
        }
        return out.str();
    }

    test::TemporaryFolder m_folder;
};

TEST_F(RecordsTest, PrintsTheRunReportOfTheDataSourcesName) {
    make("sheds_is.prm", "Layer Name:  Sheds\r\nOutput\r\n");
    EXPECT_EQ(print({m_folder / "sheds_is.shp"}), "Layer Name:  Sheds\nOutput\n");
}

TEST_F(RecordsTest, PrintsTheMetadataWhenAsked) {
    make("sheds_is.prm", "report\r\n");
    make("sheds_is.met", "Identification_Information:\r\n");
    EXPECT_EQ(print({.shapefile = m_folder / "sheds_is.shp", .metadata = true}), "Identification_Information:\n");
}

TEST_F(RecordsTest, LooksForTheDataSourcesNameBeforeTheLayers) {
    make("sheds_is.prm", "of the file\r\n");
    make("Sheds IS.prm", "of the layer\r\n");
    EXPECT_EQ(print({m_folder / "sheds_is.shp", "Sheds IS"}), "of the file\n");
    EXPECT_EQ(print({m_folder / "other.shp", "Sheds IS"}), "of the layer\n");
}

TEST_F(RecordsTest, RefusesWhenThereIsNone) {
    EXPECT_EQ(print({m_folder / "sheds_is.shp"}),
              "refused: There is no run report 'sheds_is.prm' in the folder '" + m_folder.path() + "', nor any other.");
    EXPECT_EQ(
        print({.shapefile = m_folder / "sheds_is.shp", .metadata = true}),
        "refused: There is no metadata file 'sheds_is.met' in the folder '" + m_folder.path() + "', nor any other.");
}

TEST_F(RecordsTest, RefusesAFolderThatIsMissing) {
    EXPECT_EQ(print({m_folder / "none/sheds_is.shp"}), "refused: There is no folder '" + (m_folder / "none") + "'.");
}

TEST_F(RecordsTest, RefusesAPathWithoutAFileName) {
    EXPECT_EQ(print({""}), "refused: '' names no shapefile. Give the output of a run, such as results/sheds_is.shp.");
    EXPECT_EQ(print({m_folder.path() + "/"}), "refused: '" + m_folder.path() +
                                                  "/' names no shapefile. Give the output of a run, such as "
                                                  "results/sheds_is.shp.");
}

TEST_F(RecordsTest, NamesTheOthersWhenThereIsNone) {
    make("Sheds IS.prm", "x");
    make("More.prm", "x");
    EXPECT_EQ(print({m_folder / "sheds_is.shp"}),
              "refused: There is no run report 'sheds_is.prm' in the folder '" + m_folder.path() +
                  "'. The folder has: 'More.prm', 'Sheds IS.prm'. If one of them belongs to the layer, give its name "
                  "without the ending as --layer-name.");
}

}  // namespace
}  // namespace kestrel::cli
