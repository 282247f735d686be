// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/frmISModelProps.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <array>

#include "base/files.h"
#include "tests/coefficients/sets.h"
#include "tests/forms/coefficients/editor_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::FileDialog;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class frmISModelPropsTest : public EditorTest {};

// Opening.

TEST_F(frmISModelPropsTest, OpensOnTheFirstSetOfTheStore) {
    open();
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town"));
    EXPECT_EQ(list().currentIndex(), 0);
    ASSERT_EQ(grid().rows(), 2);
    EXPECT_EQ(row(1), "21,Developed, Low Intensity,35,25,12.5");
    EXPECT_EQ(row(2), "41,Forest,0,0,0");
    EXPECT_FALSE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(frmISModelPropsTest, GridHasAHeaderRowAndAColumnThatNumbersTheRows) {
    open();
    std::vector<std::string> headers;
    for (int column = 0; column < grid().columnCount(); ++column)
        headers.push_back(grid().horizontalHeaderItem(column)->text().toStdString());
    EXPECT_THAT(headers, ElementsAre("Value", "Name", "High", "Medium", "Low"));
    EXPECT_EQ(grid().model()->headerData(0, Qt::Vertical).toString(), "1");
    EXPECT_EQ(grid().model()->headerData(1, Qt::Vertical).toString(), "2");
}

TEST_F(frmISModelPropsTest, ColumnsHaveTheirWidthsInTwipsOrWhatTheirCaptionsNeed) {
    open();
    const double pixels_per_twip = grid().logicalDpiX() / 1440.0;
    const std::array<int, 5> twips = {775, 2600, 965, 965, 965};
    for (int column = 0; column < grid().columnCount(); ++column) {
        const double given = twips[static_cast<std::size_t>(column)] * pixels_per_twip;
        const int needed = grid().horizontalHeader()->sectionSizeHint(column);
        EXPECT_NEAR(grid().columnWidth(column), std::max<double>(given, needed), 1) << "column " << column;
    }
    EXPECT_NEAR(grid().verticalHeader()->width(), 400 * pixels_per_twip, 1);
}

TEST_F(frmISModelPropsTest, StoreThatCannotBeLoadedIsToldAndTheWindowStaysClosed) {
    base::remove_file(store_path());
    m_form->show();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(m_user.boxes,
                ElementsAre(MessageBox{"Failed To Load XML - verify the file 'isprops.xml' is located in the '" +
                                           m_folder.path() + "\\etc\\isprops.xml'.",
                                       "", Icon::critical, Buttons::ok_cancel}));
}

TEST_F(frmISModelPropsTest, AnswerToTheLoadFailureChangesNothing) {
    base::write_file(store_path(), "no XML");
    m_user.answers = {Answer::ok};
    m_form->show();
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(m_user.boxes, SizeIs(1));
}

TEST_F(frmISModelPropsTest, StoreWithoutSetsOpensEmptyAndOffersNoRowsToFillIn) {
    base::write_file(store_path(), "<ISModelProperties><ISLCDefs/></ISModelProperties>");
    open();
    EXPECT_EQ(list().count(), 0);
    EXPECT_EQ(grid().rows(), 0);
    EXPECT_FALSE(grid().isEnabled());
    EXPECT_FALSE(button("CmdExport").isEnabled());
    EXPECT_FALSE(apply_enabled());
    EXPECT_TRUE(button("cmdNew").isEnabled());
    EXPECT_EQ(m_form->windowTitle(), "Coefficient Sets[*]");
}

TEST_F(frmISModelPropsTest, FirstSetOfAnEmptyStoreCanBeFilledInAndApplied) {
    base::write_file(store_path(), "<ISModelProperties><ISLCDefs/></ISModelProperties>");
    open();
    in_dialog([](QDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLCType"), "First");
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    });
    click("cmdNew");
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_TRUE(grid().isEnabled());
    EXPECT_TRUE(apply_enabled());
    action("MnuFGridAddRow").trigger();
    click("cmdApply");
    EXPECT_THAT(stored(), ElementsAre("First: 0"));
}

TEST_F(frmISModelPropsTest, ReopeningLoadsTheStoreAnew) {
    open();
    click_cell(1, 2);
    type("x");
    m_user.answers = {Answer::no};
    click("cmdQuit");
    ASSERT_FALSE(m_form->isVisible());
    // A desktop makes another window active when one closes; without a screen somebody has to.
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&other] { return QApplication::activeWindow() == &other; }));
    open();
    EXPECT_EQ(cell(1, 2), "Developed, Low Intensity");
    EXPECT_FALSE(apply_enabled());
    EXPECT_FALSE(editing());
    click("cmdQuit");
    EXPECT_THAT(m_user.boxes, SizeIs(1));
}

TEST_F(frmISModelPropsTest, ShowingTheOpenWindowAgainKeepsItsChanges) {
    open();
    click_cell(1, 2);
    type("x");
    m_form->show();
    EXPECT_EQ(cell(1, 2), "x");
    EXPECT_TRUE(apply_enabled());
}

TEST_F(frmISModelPropsTest, TitleNamesTheShownSetAndMarksChanges) {
    open();
    EXPECT_EQ(m_form->windowTitle(), "Coefficient Set - Default[*]");
    EXPECT_FALSE(m_form->isWindowModified());
    change_nothing();
    EXPECT_TRUE(m_form->isWindowModified());
    m_user.answers = {Answer::yes};
    select_set(1);
    EXPECT_EQ(m_form->windowTitle(), "Coefficient Set - Town[*]");
    EXPECT_FALSE(m_form->isWindowModified());
}

// Apply.

TEST_F(frmISModelPropsTest, ApplySavesTheShownSetAndIsOffAgain) {
    open();
    edit(1, 2);
    type("!");
    ASSERT_TRUE(apply_enabled());
    click("cmdApply");
    EXPECT_FALSE(apply_enabled());
    EXPECT_EQ(QApplication::focusWidget(), &list());
    EXPECT_FALSE(editing());
    EXPECT_THAT(store_text(), HasSubstr("Developed, Low Intensity!\r\n"));
    click("cmdQuit");
    EXPECT_THAT(m_user.boxes, IsEmpty());
}

TEST_F(frmISModelPropsTest, FailedApplyIsToldAndTheChangesStayUnsaved) {
    open();
    change_nothing();
    const std::string before = store_text();
    const auto lock = no_saving();
    click("cmdApply");
    EXPECT_THAT(m_user.boxes, ElementsAre(save_failure()));
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(store_text(), before);
    click("cmdQuit");
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(m_user.boxes.back(), kQuitPrompt);
}

TEST_F(frmISModelPropsTest, RowWithANameAndAnEmptyCellCannotBeSaved) {
    open();
    const std::string before = store_text();
    edit(2, 3);
    key(Qt::Key_Backspace);
    ASSERT_EQ(cell(2, 3), "");
    click("cmdApply");  // the cell was never left
    EXPECT_EQ(store_text(), before);
    EXPECT_TRUE(apply_enabled());
    EXPECT_THAT(m_user.boxes, IsEmpty());
    ASSERT_THAT(m_user.call_stacks, SizeIs(1));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("\tSaveModelPropUpdates basISModelPropsUtil Line : "));
    EXPECT_THAT(m_user.call_stacks.front(), HasSubstr("Error Number \r\n\t13\r\n"));
}

TEST_F(frmISModelPropsTest, CompletelyEmptyRowIsDroppedOnSave) {
    open();
    edit(2, 1);
    for (int column = 1; column <= 5; ++column)
        grid().set_text({1, column}, "");
    click("cmdApply");
    EXPECT_EQ(stored().front(), "Default: 41");
    ASSERT_EQ(grid().rows(), 1);
    EXPECT_EQ(row(1), "41,Forest,0,0,0");
}

TEST_F(frmISModelPropsTest, SetShownWithFewerRowsLosesItsSurplusClassesOnApply) {
    open();
    select_set(1);
    click_cell(2, 1);
    m_user.answers = {Answer::yes};
    action("MnuFGridDelRow").trigger();
    click("cmdApply");
    EXPECT_THAT(stored(), ElementsAre("Default: 21 41", "Town: 1 3"));
}

// Import, export, merge, help.

TEST_F(frmISModelPropsTest, ImportAsksForAFileAndListsTheNewSet) {
    open();
    base::write_file(m_folder / "new.txt", "Value,ClassName,High,Medium,Low\r\n7,Marsh,1,2,3\r\n");
    m_user.chosen_files = {m_folder / "new.txt"};
    m_user.inputs = {"Wetlands"};
    click("CmdImport");
    ASSERT_THAT(m_user.file_dialogs, SizeIs(1));
    EXPECT_EQ(m_user.file_dialogs[0].kind, FileDialog::Kind::open);
    EXPECT_EQ(m_user.file_dialogs[0].title, "Impervious Surface Coefficient File to Import");
    EXPECT_EQ(m_user.file_dialogs[0].filter, "Coefficient Text File(*.txt;*.csv)|*.txt;*.csv");
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town", "Wetlands"));
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_THAT(stored(), ElementsAre("Default: 21 41", "Town: 1 2 3", "Wetlands: 7"));
    select_set(2);
    EXPECT_EQ(row(1), "7,Marsh,1,2,3");
}

TEST_F(frmISModelPropsTest, ImportIntoAnEmptyStoreShowsTheNewSet) {
    base::write_file(store_path(), "<ISModelProperties><ISLCDefs/></ISModelProperties>");
    open();
    base::write_file(m_folder / "new.txt", "7,Marsh,1,2,3\r\n");
    m_user.chosen_files = {m_folder / "new.txt"};
    m_user.inputs = {"Wetlands"};
    click("CmdImport");
    EXPECT_EQ(list().currentIndex(), 0);
    ASSERT_EQ(grid().rows(), 1);
    EXPECT_TRUE(grid().isEnabled());
}

TEST_F(frmISModelPropsTest, ExportWritesTheSelectedSet) {
    open();
    select_set(1);
    m_user.chosen_files = {m_folder / "town.txt"};
    click("CmdExport");
    ASSERT_THAT(m_user.file_dialogs, SizeIs(1));
    EXPECT_EQ(m_user.file_dialogs[0].kind, FileDialog::Kind::save);
    EXPECT_EQ(m_user.file_dialogs[0].title, "Export Impervious Surface Coefficients into Filename");
    EXPECT_EQ(m_user.file_dialogs[0].filter, "Coefficient Text File(*.txt;*.csv)|*.txt;*.csv");
    EXPECT_EQ(m_user.file_dialogs[0].default_extension, ".txt");
    EXPECT_EQ(base::read_file(m_folder / "town.txt"),
              "Value,ClassName,High,Medium,Low\r\n1,Roof,90,80,70\r\n2,Park,10,5,1\r\n3,Pond,0,0,0\r\n");
}

TEST_F(frmISModelPropsTest, MergeListsTheSetsOfTheOtherStore) {
    open();
    clsISModelProperties other;
    add_set(other, "Town", {land_class(9, "n", 0, 0, 0)});
    add_set(other, "Hills");
    base::write_file(m_folder / "other.xml", other.XML());
    m_user.chosen_files = {m_folder / "other.xml"};
    click("CmdMerge");
    ASSERT_THAT(m_user.file_dialogs, SizeIs(1));
    EXPECT_EQ(m_user.file_dialogs[0].kind, FileDialog::Kind::open);
    EXPECT_EQ(m_user.file_dialogs[0].title, "Kestrel Coefficient File to Merge");
    EXPECT_EQ(m_user.file_dialogs[0].filter, "Kestrel Coefficient File (*.xml)|*.xml");
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town", "Town2", "Hills"));
    EXPECT_THAT(stored(), ElementsAre("Default: 21 41", "Town: 1 2 3", "Town2: 9", "Hills:"));
}

TEST_F(frmISModelPropsTest, CancelledFileDialogsChangeNothing) {
    open();
    const std::string before = store_text();
    for (const char* name : {"CmdImport", "CmdExport", "CmdMerge"})
        click(name);
    EXPECT_THAT(m_user.file_dialogs, SizeIs(3));
    EXPECT_THAT(m_user.input_boxes, IsEmpty());
    EXPECT_EQ(store_text(), before);
    EXPECT_THAT(list_entries(), SizeIs(2));
}

TEST_F(frmISModelPropsTest, HelpOpensTheHelp) {
    open();
    click("cmdHelp");
    EXPECT_EQ(m_user.help_requests, 1);
}

// What makes it a good window.

TEST_F(frmISModelPropsTest, TabGoesThroughTheControlsInReadingOrder) {
    open();
    list().setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 8; ++i) {
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
        key(Qt::Key_Tab);
    }
    EXPECT_THAT(order, ElementsAre("cboLCType", "grdLCDef", "cmdNew", "CmdImport", "CmdExport", "CmdMerge", "cmdQuit",
                                   "cmdHelp"))
        << "Apply is off";
}

TEST_F(frmISModelPropsTest, TabLeavesTheOverlayForTheNextControl) {
    open();
    change_nothing();
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &button("cmdNew"));
}

TEST_F(frmISModelPropsTest, EveryButtonAndTheListHaveTheirOwnAltKey) {
    std::string keys;
    for (const QPushButton* found : m_form->findChildren<QPushButton*>())
        keys += found->text().section('&', 1, 1).left(1).toLower().toStdString();
    keys += m_form->findChild<QLabel*>()->text().section('&', 1, 1).left(1).toLower().toStdString();
    std::sort(keys.begin(), keys.end());
    EXPECT_EQ(keys, "aehimnqs");
}

TEST_F(frmISModelPropsTest, EnterPressesTheButtonThatHasTheFocusAndNoOther) {
    open();
    button("cmdHelp").setFocus();
    key(Qt::Key_Return);
    EXPECT_EQ(m_user.help_requests, 1);
    list().setFocus();
    key(Qt::Key_Return);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_EQ(m_user.help_requests, 1);
}

TEST_F(frmISModelPropsTest, ControlsHaveAccessibleNames) {
    EXPECT_EQ(list().accessibleName(), "Coefficient set");
    EXPECT_EQ(grid().accessibleName(), "Land-cover classes of the coefficient set");
    EXPECT_EQ(overlay().accessibleName(), "Cell being edited");
}

TEST_F(frmISModelPropsTest, GridGrowsWithTheWindowAndItsNamesGetTheRoom) {
    open();
    const QSize before = grid().size();
    const int names = grid().columnWidth(1);
    m_form->resize(m_form->size() + QSize(200, 100));
    QTest::qWait(1);
    EXPECT_EQ(grid().size(), before + QSize(200, 100));
    EXPECT_EQ(grid().columnWidth(1), names + 200);
}

TEST_F(frmISModelPropsTest, NothingIsCutOff) {
    open();
    for (const QPushButton* found : m_form->findChildren<QPushButton*>())
        EXPECT_GE(found->width(), found->sizeHint().width()) << found->objectName().toStdString();
    for (int column = 0; column < grid().columnCount(); ++column) {
        const QHeaderView& header = *grid().horizontalHeader();
        const int text = header.fontMetrics().horizontalAdvance(grid().horizontalHeaderItem(column)->text());
        EXPECT_GE(header.sectionSize(column), text + 4) << "column " << column;
    }
    EXPECT_GE(grid().rowHeight(0), grid().fontMetrics().height() + 4);
    EXPECT_GE(list().width(), list().fontMetrics().horizontalAdvance("CORINE legend, updated") + 30);
    EXPECT_FALSE(grid().horizontalScrollBar()->isVisible());
}

}  // namespace
}  // namespace kestrel::test
