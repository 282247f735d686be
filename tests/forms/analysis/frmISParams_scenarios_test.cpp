// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QCheckBox>
#include <QScrollBar>
#include <QWheelEvent>

#include "coefficients/basUtil.h"
#include "forms/analysis/frmISParams.h"
#include "tests/forms/analysis/params_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Icon;
using testing::ElementsAre;
using testing::IsEmpty;

class ScenariosTest : public ParamsTest {
  protected:
    void SetUp() override { open(); }
    void add(int rows) {
        for (int i = 0; i < rows; ++i)
            click("cmdDSAdd");
    }
    void remove(const std::string& answer) {
        m_world.said.inputs = {answer};
        click("cmdDSDelete");
    }
    QScrollBar& bar() { return control<QScrollBar>("VScroll1"); }
    QFrame& items() { return control<QFrame>("fraDSItems"); }
    QFrame& container() { return control<QFrame>("fraDSContainer"); }
};

TEST_F(ScenariosTest, TheFirstRowListsLayersAndClassesAndSelectsNone) {
    add(1);
    EXPECT_EQ(row(0), "1.  -> ");
    EXPECT_TRUE(list("cboDSTheme(0)").isVisible());
    EXPECT_THAT(entries("cboDSTheme(0)"), ElementsAre("sheds", "blocks", "plan"));
    EXPECT_THAT(entries("cboDSToClass(0)"), ElementsAre("Developed", "Grassland", "Roads"));
    EXPECT_EQ(list("cboDSToClass(0)").itemData(2).toInt(), 7) << "a class brings its code along";
    EXPECT_TRUE(control<QPushButton>("cmdDSDelete").isEnabled());
    EXPECT_FALSE(has("cboDSTheme(1)"));
}

TEST_F(ScenariosTest, AFurtherRowIsAppliedAndHasTheListsOfTheFirst) {
    add(2);
    EXPECT_EQ(row(1), "2.  -> ");
    EXPECT_THAT(entries("cboDSTheme(1)"), ElementsAre("sheds", "blocks", "plan"));
    EXPECT_THAT(entries("cboDSToClass(1)"), ElementsAre("Developed", "Grassland", "Roads"));
    EXPECT_EQ(list("cboDSToClass(1)").itemData(1).toInt(), 5);
    EXPECT_EQ(control<QLabel>("lblDSLabel1(1)").text(), "Change land cover classes within");
    EXPECT_EQ(control<QLabel>("lblDSLabel2(1)").text(), "layer to");
}

TEST_F(ScenariosTest, RowsStandOnePitchApartAndTheirFrameGrows) {
    add(1);
    const int pitch = items().height();
    add(2);
    EXPECT_EQ(items().height(), 3 * pitch);
    for (const char* array : {"lblDSNum(%1)", "cboDSTheme(%1)", "chkDSApply(%1)"}) {
        const auto top = [&](int i) { return control<QWidget>(qPrintable(QString(array).arg(i))).y(); };
        EXPECT_EQ(top(1) - top(0), pitch) << array;
        EXPECT_EQ(top(2) - top(1), pitch) << array;
    }
}

TEST_F(ScenariosTest, WithoutACoefficientSetTheAddButtonRefuses) {
    EXPECT_TRUE(basUtil::PutISModelProperties(clsISModelProperties(),
                                              CoefficientStore::in_extension_folder(m_world.extension.path())));
    click("cmdISQuit");
    m_form->show();
    m_form->activateWindow();
    add(1);
    EXPECT_THAT(
        boxes(),
        ElementsAre(reporting::MessageBox{
            "No Land Cover Type defined, please select from the dropdown list before adding Development Scenarios"}));
    EXPECT_EQ(focused(), "cboLCType");
    EXPECT_FALSE(list("cboDSTheme(0)").isVisible());
    EXPECT_FALSE(control<QPushButton>("cmdDSDelete").isEnabled());
}

TEST_F(ScenariosTest, DeletingTheSecondOfThreeMovesTheThirdUp) {
    add(3);
    choose("cboDSTheme(0)", "plan");
    choose("cboDSToClass(0)", "Roads");
    choose("cboDSTheme(1)", "blocks");
    choose("cboDSTheme(2)", "sheds");
    choose("cboDSToClass(2)", "Grassland");
    click("chkDSApply(2)");
    remove("2");
    EXPECT_EQ(row(0), "1. plan -> Roads");
    EXPECT_EQ(row(1), "[2. sheds -> Grassland]");
    EXPECT_FALSE(has("cboDSTheme(2)"));
    EXPECT_THAT(boxes(), IsEmpty());
    ASSERT_EQ(m_world.said.input_boxes.size(), 1U);
    EXPECT_EQ(m_world.said.input_boxes[0].title, "Delete Scenario");
    EXPECT_EQ(m_world.said.input_boxes[0].prompt, "Enter number of scenario to delete:");
}

TEST_F(ScenariosTest, DeletingTheLastRowLeavesTheOthersAsTheyAre) {
    add(2);
    choose("cboDSTheme(0)", "plan");
    choose("cboDSTheme(1)", "blocks");
    remove("2");
    EXPECT_EQ(row(0), "1. plan -> ");
    EXPECT_FALSE(has("cboDSTheme(1)"));
}

TEST_F(ScenariosTest, DeletingTheOnlyRowHidesItAndDisablesTheButton) {
    add(1);
    choose("cboDSTheme(0)", "plan");
    remove("1");
    EXPECT_FALSE(list("cboDSTheme(0)").isVisible());
    EXPECT_FALSE(control<QPushButton>("cmdDSDelete").isEnabled());
    add(1);
    EXPECT_EQ(row(0), "1.  -> ") << "a new row begins anew";
}

TEST_F(ScenariosTest, AnEmptyAnswerDeletesNothing) {
    add(1);
    remove("");
    EXPECT_TRUE(list("cboDSTheme(0)").isVisible());
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(ScenariosTest, AnInvalidNumberIsRefused) {
    add(2);
    for (const char* typed : {"0", "3", "two", "-1"}) {
        boxes().clear();
        remove(typed);
        EXPECT_THAT(boxes(), ElementsAre(warning("Invalid scenario number"))) << typed;
    }
    EXPECT_TRUE(has("cboDSTheme(1)"));
}

TEST_F(ScenariosTest, TheScrollBarCoversWhatOverflowsAndSlidesTheRows) {
    add(1);
    EXPECT_FALSE(bar().isEnabled());
    add(11);
    EXPECT_TRUE(bar().isEnabled());
    EXPECT_EQ(bar().maximum(), items().height() - container().height());
    EXPECT_EQ(bar().minimum(), 0);
    bar().setValue(17);
    EXPECT_EQ(items().y(), -17);
    bar().setValue(0);
    EXPECT_EQ(items().y(), 0);
}

TEST_F(ScenariosTest, ATallerWindowShowsMoreRows) {
    add(12);
    m_form->resize(m_form->width(), m_form->height() + 600);
    QApplication::processEvents();
    EXPECT_FALSE(bar().isEnabled());
    EXPECT_EQ(items().y(), 0);
}

TEST_F(ScenariosTest, ARowThatGetsTheFocusIsScrolledIntoView) {
    add(12);
    bar().setValue(0);
    list("cboDSTheme(11)").setFocus();
    const QRect place(list("cboDSTheme(11)").mapTo(&container(), QPoint()), list("cboDSTheme(11)").size());
    EXPECT_TRUE(container().rect().contains(place));
    list("cboDSTheme(0)").setFocus();
    EXPECT_GE(list("cboDSTheme(0)").mapTo(&container(), QPoint()).y(), 0);
}

TEST_F(ScenariosTest, TheWheelScrollsAndChangesNoChoice) {
    add(12);
    choose("cboDSTheme(0)", "blocks");
    bar().setValue(0);
    QWheelEvent event({5, 5}, list("cboDSTheme(0)").mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&list("cboDSTheme(0)"), &event);
    EXPECT_EQ(chosen("cboDSTheme(0)"), "blocks");
    EXPECT_GT(bar().value(), 0);
}

TEST_F(ScenariosTest, LayersThatComeAndGoAreListedAndChoicesStay) {
    add(2);
    choose("cboDSTheme(0)", "plan");
    choose("cboDSTheme(1)", "blocks");
    m_world.layer("wells", {integer_field("ID")}, {{{{0, 0, 1, 1}}, {1}}});
    map().remove_layer(map().layers().at(2));
    EXPECT_THAT(entries("cboDSTheme(0)"), ElementsAre("sheds", "plan", "wells"));
    EXPECT_EQ(row(0), "1. plan -> ");
    EXPECT_EQ(row(1), "2.  -> ") << "its layer is gone";
}

TEST_F(ScenariosTest, AnotherSetListsItsClassesAndKeepsThoseThatItHas) {
    add(2);
    choose("cboDSToClass(0)", "Grassland");
    choose("cboDSToClass(1)", "Roads");
    choose("cboLCType", "Valley");
    EXPECT_THAT(entries("cboDSToClass(1)"), ElementsAre("Grassland", "Swamp"));
    EXPECT_EQ(row(0), "1.  -> Grassland");
    EXPECT_EQ(row(1), "2.  -> ");
    add(1);
    EXPECT_THAT(entries("cboDSToClass(2)"), ElementsAre("Grassland", "Swamp"));
}

}  // namespace
}  // namespace kestrel::test
