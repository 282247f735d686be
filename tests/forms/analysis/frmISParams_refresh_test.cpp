// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"

/// \file
/// What the form remembers when the output is named, and puts back after a click on Run.
namespace kestrel::test {
namespace {

class RefreshTest : public ParamsTest {
  protected:
    void SetUp() override { open(); }
};

TEST_F(RefreshTest, RefreshPutsTheRememberedPositionsBackAndEmptiesTheNames) {
    choose("cboAnalysisTheme", "blocks");
    choose("cboAnalysisUnit", "KIND");
    type_output(out("is"));
    tab();
    choose("cboAnalysisTheme", "sheds");
    click("cmdISRun");  // no option is chosen
    EXPECT_EQ(chosen("cboAnalysisTheme"), "blocks");
    EXPECT_EQ(chosen("cboAnalysisUnit"), "KIND");
    EXPECT_EQ(output().text(), "");
    EXPECT_EQ(layer_name().text(), "");
}

TEST_F(RefreshTest, LeavingAnEmptyBoxRemembersNothing) {
    choose("cboAnalysisTheme", "blocks");
    type_output(out("is"));
    tab();
    choose("cboAnalysisTheme", "plan");
    type_output(" ");
    tab();
    ASSERT_EQ(output().text(), "");
    m_form->RefreshForm();
    EXPECT_EQ(chosen("cboAnalysisTheme"), "blocks");
}

TEST_F(RefreshTest, RefreshKeepsUnitsSetOptionAndScenarios) {
    choose("cboLCUnits", "Feet");
    choose("cboLCType", "Valley");
    choose_option(2);
    click("cmdDSAdd");
    choose("cboDSTheme(0)", "plan");
    type_output(out("is"));
    click("cmdISRun");
    EXPECT_EQ(chosen("cboLCUnits"), "Feet");
    EXPECT_EQ(chosen("cboLCType"), "Valley");
    EXPECT_TRUE(option(2).isChecked());
    EXPECT_EQ(row(0), "1. plan -> ");
}

TEST_F(RefreshTest, RefreshPutsTheLandCoverBackToo) {
    map().append_layer(std::make_shared<hosting::HeadlessRasterLayer>("relief", m_world.folder / "cover.tif"));
    choose("cboLCTheme", "relief");
    type_output(out("is"));
    tab();
    choose("cboLCTheme", "cover");
    click("cmdISRun");
    EXPECT_EQ(chosen("cboLCTheme"), "relief");
}

TEST_F(RefreshTest, RefreshLeavesAnAnalysisLayerBeyondTheList) {
    choose("cboAnalysisTheme", "plan");
    type_output(out("is"));
    tab();
    map().remove_layer(map().layers().at(3));
    click("cmdISRun");
    EXPECT_EQ(chosen("cboAnalysisTheme"), "sheds");
}

}  // namespace
}  // namespace kestrel::test
