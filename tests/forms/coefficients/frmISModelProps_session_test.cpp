// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include <QCheckBox>

#include "base/files.h"
#include "coefficients/basUtil.h"
#include "tests/coefficients/sets.h"
#include "tests/forms/coefficients/editor_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Answer;
using reporting::Icon;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// A whole editing session on the store that is shipped. What the store must hold is made without the editor, from the
/// model alone.
class EditingSession : public EditorTest {
  protected:
    void SetUp() override {
        const std::string shipped = base::join_path(KESTREL_SOURCE_DIR, "etc/isprops.xml");
        base::copy_file(shipped, store_path());
        ASSERT_TRUE(basUtil::GetISModelProperties(m_expected, shipped));
        base::create_folder(m_folder / "expected");
        open();
    }

    /// The set of the expected store at this place, counted from 1.
    clsISLCDef& expected(int position) { return *m_expected.ISLCDefs.Item(position); }

    void expect_store() {
        const std::string path = m_folder / "expected/isprops.xml";
        ASSERT_TRUE(basUtil::PutISModelProperties(m_expected, CoefficientStore::at(path)));
        EXPECT_EQ(store_text(), base::read_file(path));
        EXPECT_THAT(m_user.call_stacks, IsEmpty());
    }

    void model_new_set_on(const char* name, int existing) {
        in_dialog([name, existing](QDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>("txtLCType"), name);
            QTest::keyClick(dialog.findChild<QCheckBox*>("ChkModelAfter"), Qt::Key_Space);
            for (int i = 0; i <= existing; ++i)
                QTest::keyClick(dialog.findChild<QComboBox*>("cboLCType"), Qt::Key_Down);
            QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        });
        click("cmdNew");
        activate();
    }

    clsISModelProperties m_expected;
};

TEST_F(EditingSession, ApplyingTheShippedStoreUnchangedLeavesItByteForByte) {
    change_nothing();
    click("cmdApply");
    EXPECT_EQ(store_text(), base::read_file(base::join_path(KESTREL_SOURCE_DIR, "etc/isprops.xml")));
}

TEST_F(EditingSession, LeavesTheStoreThatItShould) {
    // A coefficient is changed; 101 is refused.
    ASSERT_EQ(list_entries(), (std::vector<std::string>{"NLCD legend", "CORINE legend"}));
    ASSERT_EQ(cell(3, 1), "21");
    click_cell(3, 3);
    type("101");
    ASSERT_THAT(m_user.boxes, SizeIs(1));
    EXPECT_EQ(m_user.boxes.back().text, "Invalid value entered - Coefficients must be between 0-100.");
    key(Qt::Key_Return);
    EXPECT_EQ(cell(3, 3), "10");
    expected(1).LCClasses.Item(3)->LCHigh = 10;

    // A row is added and filled in, one inserted and one deleted.
    const int rows = grid().rows();
    action("MnuFGridAddRow").trigger();
    type("99\rMine dump\r30\r20\r12.5\r");
    EXPECT_EQ(row(rows + 1), "99,Mine dump,30,20,12.5");
    expected(1).LCClasses.Add(land_class(99, "Mine dump", 30, 20, 12.5F));
    grid().go_to({rows, 1});
    action("MnuFGridInsRow").trigger();
    type("98\rDunes\r");
    grid().go_to({rows + 1, 1});
    m_user.answers = {Answer::yes};
    action("MnuFGridDelRow").trigger();
    *expected(1).LCClasses.Item(rows) = *land_class(98, "Dunes", 0, 0, 0);

    // Another set is selected: No stays, Yes saves.
    m_user.answers = {Answer::no};
    select_set(1);
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_EQ(cell(rows, 2), "Dunes");
    m_user.answers = {Answer::yes};
    select_set(1);
    EXPECT_EQ(list().currentIndex(), 1);
    EXPECT_FALSE(apply_enabled());
    expect_store();

    // A new set, modelled on the first, with one change.
    model_new_set_on("My town", 0);
    EXPECT_EQ(list().currentIndex(), 2);
    expect_store();
    click_cell(1, 2);
    type("Lake");
    click("cmdApply");
    add_set(m_expected, "My town");
    for (const auto& land_class : expected(1).LCClasses)
        expected(3).LCClasses.Add(std::make_shared<clsLCClass>(*land_class));
    expected(3).LCClasses.Item(1)->LCName = "Lake";
    expect_store();

    // It goes out as text and comes back under another name.
    m_user.chosen_files = {m_folder / "town.csv", m_folder / "town.csv"};
    m_user.inputs = {"My town", "Town again"};
    click("CmdExport");
    click("CmdImport");
    EXPECT_THAT(m_user.input_boxes, SizeIs(2)) << "the first name was taken";
    add_set(m_expected, "Town again");
    for (const auto& land_class : expected(3).LCClasses)
        expected(4).LCClasses.Add(std::make_shared<clsLCClass>(*land_class));
    expect_store();

    // Another store is merged.
    clsISModelProperties other;
    for (const char* name : {"My town", "Coast"})
        add_set(other, name, {land_class(7, "Beach", 3, 2, 1)});
    base::write_file(m_folder / "other.xml", other.XML());
    m_user.chosen_files = {m_folder / "other.xml"};
    click("CmdMerge");
    EXPECT_EQ(m_user.boxes.back().icon, Icon::information);
    add_set(m_expected, "My town2", {land_class(7, "Beach", 3, 2, 1)});
    add_set(m_expected, "Coast", {land_class(7, "Beach", 3, 2, 1)});
    expect_store();
    EXPECT_THAT(list_entries(),
                ElementsAre("NLCD legend", "CORINE legend", "My town", "Town again", "My town2", "Coast"));

    // The window closes without a question.
    const std::size_t boxes = m_user.boxes.size();
    click("cmdQuit");
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_EQ(m_user.boxes.size(), boxes);
    expect_store();
}

}  // namespace
}  // namespace kestrel::test
