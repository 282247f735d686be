// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/analysis/frmISParams.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <set>

#include "base/files.h"
#include "tests/forms/analysis/params_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Buttons;
using reporting::Icon;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ParamsTest, OpensWithTheLayersOfTheMapAndTheSetsOfTheStore) {
    open();
    EXPECT_EQ(m_form->windowTitle(), "Kestrel");
    EXPECT_THAT(entries("cboLCTheme"), ElementsAre("cover"));
    EXPECT_THAT(entries("cboLCUnits"), ElementsAre("Meters", "Feet"));
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("sheds", "blocks", "plan"));
    EXPECT_THAT(entries("cboAnalysisUnit"), ElementsAre("NAME", "ID"));
    EXPECT_THAT(entries("cboLCType"), ElementsAre("Town", "Valley"));
    EXPECT_EQ(chosen("cboLCTheme"), "cover");
    EXPECT_EQ(chosen("cboAnalysisTheme"), "sheds");
    EXPECT_EQ(list("cboAnalysisUnit").currentIndex(), -1);
    EXPECT_EQ(chosen("cboLCType"), "Town");
    EXPECT_EQ(output().text(), "");
    EXPECT_EQ(layer_name().text(), "");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(ParamsTest, NoCoefficientOptionIsChosenAndThereIsNoScenarioToDelete) {
    open();
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(option(i).isChecked());
    EXPECT_FALSE(control<QPushButton>("cmdDSDelete").isEnabled());
    EXPECT_FALSE(list("cboDSTheme(0)").isVisible());
}

TEST_F(ParamsTest, CaptionsAreTheGivenOnes) {
    open();
    std::set<std::string> seen;
    for (const QLabel* label : m_form->findChildren<QLabel*>())
        seen.insert(label->text().remove('&').toStdString());
    for (const QAbstractButton* button : m_form->findChildren<QAbstractButton*>())
        seen.insert(button->text().remove('&').toStdString());
    for (const QGroupBox* frame : m_form->findChildren<QGroupBox*>())
        seen.insert(frame->title().toStdString());
    for (const char* text : {"Land Cover Grid",
                             "Land Cover Grid Units",
                             "Analysis Layer",
                             "Analysis Field",
                             "Coefficient Set",
                             "Coefficients",
                             "High",
                             "Medium",
                             "Low",
                             "Calculate",
                             "Which Coefficient?",
                             "Output Shapefile",
                             "Browse...",
                             "Layer Name",
                             "Land Cover Change Scenarios",
                             "Apply",
                             "1.",
                             "Change land cover classes within",
                             "layer to",
                             "Delete...",
                             "Quit",
                             "Help"}) {
        EXPECT_EQ(seen.count(text), 1U) << text;
    }
}

TEST_F(ParamsTest, EveryMnemonicLeadsToOneControl) {
    open();
    std::set<std::string> used;
    const auto note = [&used](const QString& text) {
        const int at = text.indexOf('&');
        if (at >= 0) {
            EXPECT_TRUE(used.insert(text.mid(at + 1, 1).toLower().toStdString()).second) << text.toStdString();
        }
    };
    for (const QLabel* label : m_form->findChildren<QLabel*>()) {
        note(label->text());
        EXPECT_EQ(label->text().contains('&'), label->buddy() != nullptr) << label->text().toStdString();
    }
    for (const QAbstractButton* button : m_form->findChildren<QAbstractButton*>())
        note(button->text());
    EXPECT_EQ(used.size(), 17U);
}

TEST_F(ParamsTest, AStoreThatDoesNotLoadIsToldAndTheFormStaysClosed) {
    base::remove_file(m_world.extension / "etc/isprops.xml");
    m_form->show();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(boxes(), ElementsAre(reporting::MessageBox{
                             "Failed To Load XML - verify the file 'isprops.xml' is located in the " +
                                 m_world.extension.path() + "\\etc folder.",
                             "", Icon::critical, Buttons::ok_cancel}));
    map().set_distance_units(contracts::kFeet);
    map().move_layer(0, 1);  // a form that is not loaded does not listen
    EXPECT_EQ(list("cboLCTheme").count(), 0);
}

TEST_F(ParamsTest, WithoutAHostTheLoadIsReported) {
    m_form->Application(nullptr);
    m_form->show();
    EXPECT_FALSE(m_form->isVisible());
    ASSERT_EQ(m_world.said.call_stacks.size(), 1U);
    EXPECT_THAT(m_world.said.call_stacks[0], testing::HasSubstr("\tForm_Load ISParams Line : "));
    EXPECT_THAT(m_world.said.call_stacks[0], testing::HasSubstr("\t91\r\n"));
}

TEST_F(ParamsTest, UnitsFollowTheMapsDistanceUnits) {
    for (const auto& [units, shown] : {std::pair{contracts::kFeet, "Feet"},
                                       {contracts::kMeters, "Meters"},
                                       {contracts::kDecimalDegrees, ""},
                                       {contracts::kUnknownUnits, ""}}) {
        map().set_distance_units(units);
        m_form->show();
        EXPECT_EQ(chosen("cboLCUnits"), shown);
        click("cmdISQuit");
    }
}

TEST_F(ParamsTest, ChoosingAnAnalysisLayerListsItsFields) {
    open();
    choose("cboAnalysisUnit", "ID");
    choose("cboAnalysisTheme", "blocks");
    EXPECT_THAT(entries("cboAnalysisUnit"), ElementsAre("ID", "KIND"));
    EXPECT_EQ(list("cboAnalysisUnit").currentIndex(), -1);
}

TEST_F(ParamsTest, LayersThatAreAddedDeletedAndReorderedRefillTheLists) {
    open();
    choose("cboAnalysisTheme", "blocks");
    m_world.layer("wells", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("sheds", "blocks", "plan", "wells"));
    EXPECT_EQ(chosen("cboAnalysisTheme"), "sheds") << "the first item is selected";
    EXPECT_THAT(entries("cboAnalysisUnit"), ElementsAre("NAME", "ID")) << "and its fields are listed";

    map().remove_layer(map().layers().at(1));
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("blocks", "plan", "wells"));
    EXPECT_THAT(entries("cboAnalysisUnit"), ElementsAre("ID", "KIND"));
    map().move_layer(3, 1);
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("wells", "blocks", "plan"));
    EXPECT_EQ(list("cboAnalysisTheme").itemData(1).toInt(), 2) << "positions are those of the map";
    map().remove_layer(map().layers().at(0));
    EXPECT_THAT(entries("cboLCTheme"), IsEmpty());
    EXPECT_EQ(list("cboLCTheme").currentIndex(), -1);
}

TEST_F(ParamsTest, AnotherDocumentRefillsTheLists) {
    open();
    const auto only = map().layers().at(2);
    map().open_document({only});
    EXPECT_THAT(entries("cboLCTheme"), IsEmpty());
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("blocks"));
    map().open_document({});
    EXPECT_THAT(entries("cboAnalysisTheme"), IsEmpty());
    EXPECT_THAT(entries("cboAnalysisUnit"), IsEmpty());
    EXPECT_THAT(m_world.said.call_stacks, IsEmpty());
}

TEST_F(ParamsTest, ALayerWhoseSourceIsGoneIsLeftOutWithOneNotice) {
    base::remove_file(m_world.folder / "blocks.shp");
    open();
    EXPECT_THAT(entries("cboAnalysisTheme"), ElementsAre("sheds", "plan"));
    map().move_layer(1, 2);
    ASSERT_EQ(m_world.said.notices.size(), 1U) << "it is told once";
    EXPECT_THAT(m_world.said.notices[0],
                testing::StartsWith("The layer 'blocks' is not listed, because its source cannot be opened: "));
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_THAT(m_world.said.call_stacks, IsEmpty());
}

TEST_F(ParamsTest, QuitForgetsEverything) {
    open();
    fill();
    click("cmdDSAdd");
    type_output("/nowhere/roads");
    click("cmdISQuit");
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(boxes(), IsEmpty()) << "a name that is given up needs no completing";
    m_form->show();
    EXPECT_FALSE(option(1).isChecked());
    EXPECT_EQ(list("cboAnalysisUnit").currentIndex(), -1);
    EXPECT_EQ(output().text(), "");
    EXPECT_FALSE(list("cboDSTheme(0)").isVisible());
    EXPECT_FALSE(control<QPushButton>("cmdDSDelete").isEnabled());
}

TEST_F(ParamsTest, EscAndTheCloseButtonQuit) {
    for (const bool by_key : {true, false}) {
        m_form->show();
        if (by_key) {
            QTest::keyClick(m_form.get(), Qt::Key_Escape);
        } else {
            m_form->close();
        }
        EXPECT_FALSE(m_form->isVisible());
    }
}

TEST_F(ParamsTest, ShownAgainWhileItIsOpenItKeepsWhatIsChosen) {
    open();
    fill();
    m_form->show();
    EXPECT_EQ(chosen("cboAnalysisUnit"), "NAME");
    m_form->hide();
    m_form->show();
    EXPECT_EQ(chosen("cboAnalysisUnit"), "NAME") << "hidden is not quit";
}

TEST_F(ParamsTest, HelpOpensTheHelpWindow) {
    open();
    click("cmdISHelp");
    EXPECT_EQ(m_world.said.help_requests, 1);
}

TEST_F(ParamsTest, TabGoesThroughTheControlsInTheirOrder) {
    open();
    click("cmdDSAdd");
    click("cmdDSAdd");
    choose_option(1);
    list("cboLCTheme").setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 19; ++i) {
        order.push_back(focused());
        tab();
    }
    EXPECT_THAT(order, ElementsAre("cboLCTheme", "cboLCUnits", "cboAnalysisTheme", "cboAnalysisUnit", "cboLCType",
                                   "optPopDensity(1)", "chkDSApply(0)", "cboDSTheme(0)", "cboDSToClass(0)",
                                   "chkDSApply(1)", "cboDSTheme(1)", "cboDSToClass(1)", "cmdDSAdd", "cmdDSDelete",
                                   "txtOutputTheme", "cmdOutputBrowse", "txtThemeName", "cmdISRun", "cmdISQuit"));
}

}  // namespace
}  // namespace kestrel::test
