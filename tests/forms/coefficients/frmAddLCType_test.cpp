// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/coefficients/frmAddLCType.h"

#include <QApplication>

#include "tests/coefficients/sets.h"
#include "tests/forms/coefficients/editor_fixture.h"

namespace kestrel::test {
namespace {

using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The dialog as the editor's New button opens it.
class frmAddLCTypeTest : public EditorTest {
  protected:
    void SetUp() override { open(); }

    /// Presses New, and does `act` in the dialog.
    void in_new_dialog(const std::function<void()>& act) {
        in_dialog([this, act](QDialog& dialog) {
            m_dialog = &dialog;
            act();
            m_closed = !dialog.isVisible();
        });
        click("cmdNew");
        m_dialog = nullptr;
    }
    template <typename Control>
    Control& control(const char* name) {
        return *m_dialog->findChild<Control*>(name);
    }
    QLineEdit& name() { return control<QLineEdit>("txtLCType"); }
    QCheckBox& model_after() { return control<QCheckBox>("ChkModelAfter"); }
    QComboBox& existing() { return control<QComboBox>("cboLCType"); }
    void press(const char* button) { QTest::mouseClick(&control<QPushButton>(button), Qt::LeftButton); }

    QDialog* m_dialog = nullptr;
    bool m_closed = false;
};

TEST_F(frmAddLCTypeTest, OpensWithoutANameAndWithTheExistingSetsSwitchedOff) {
    in_new_dialog([this] {
        EXPECT_EQ(name().text(), "");
        EXPECT_EQ(QApplication::focusWidget(), &name());
        EXPECT_FALSE(model_after().isChecked());
        EXPECT_FALSE(existing().isEnabled());
        EXPECT_FALSE(control<QLabel>("Label1").isEnabled());
        ASSERT_EQ(existing().count(), 2);
        EXPECT_EQ(existing().itemText(0), "Default");
        EXPECT_EQ(existing().itemText(1), "Town");
        EXPECT_EQ(existing().currentIndex(), -1);
    });
}

TEST_F(frmAddLCTypeTest, ExistingSetsAndTheirCaptionAreOnExactlyWhileTheBoxIsTicked) {
    in_new_dialog([this] {
        for (const bool ticked : {true, false, true}) {
            model_after().setFocus();
            key(Qt::Key_Space);
            EXPECT_EQ(model_after().isChecked(), ticked);
            EXPECT_EQ(existing().isEnabled(), ticked);
            EXPECT_EQ(control<QLabel>("Label1").isEnabled(), ticked);
        }
    });
}

TEST_F(frmAddLCTypeTest, NewSetStartsEmptyAndReachesTheStoreWithTheNextApplyOnly) {
    const std::string before = store_text();
    in_new_dialog([this] {
        type("Fields");
        press("cmdOK");
    });
    EXPECT_TRUE(m_closed);
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town", "Fields"));
    EXPECT_EQ(list().currentIndex(), 2);
    EXPECT_EQ(QApplication::activeWindow() == m_form.get() ? QApplication::focusWidget() : m_form->focusWidget(),
              &list());
    EXPECT_EQ(grid().rows(), 0);
    EXPECT_EQ(grid().columnCount(), 5);
    EXPECT_TRUE(apply_enabled());
    EXPECT_EQ(store_text(), before);
    click("cmdApply");
    EXPECT_THAT(stored(), ElementsAre("Default: 21 41", "Town: 1 2 3", "Fields:"));
    EXPECT_FALSE(apply_enabled());
}

TEST_F(frmAddLCTypeTest, NewSetIsNoChangeToAskAboutUntilItIsEdited) {
    const std::string before = store_text();
    in_new_dialog([this] {
        type("Fields");
        press("cmdOK");
    });
    select_set(1);
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(row(1), "1,Roof,90,80,70");
    EXPECT_FALSE(apply_enabled());
    select_set(2);
    EXPECT_EQ(grid().rows(), 0);
    action("MnuFGridAddRow").trigger();
    click("cmdQuit");
    EXPECT_THAT(m_user.boxes, ElementsAre(kQuitPrompt));
    EXPECT_EQ(store_text(), before);
}

TEST_F(frmAddLCTypeTest, ClosingTheEditorWithAnUneditedNewSetAsksNothing) {
    const std::string before = store_text();
    in_new_dialog([this] {
        type("Fields");
        press("cmdOK");
    });
    click("cmdQuit");
    EXPECT_FALSE(m_form->isVisible());
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_EQ(store_text(), before);
}

TEST_F(frmAddLCTypeTest, NewSetModelledOnAnotherStartsAsACopyOfIt) {
    in_new_dialog([this] {
        type("Copy");
        model_after().setFocus();
        key(Qt::Key_Space);
        existing().setFocus();
        QTest::keyClick(&existing(), Qt::Key_Down);
        QTest::keyClick(&existing(), Qt::Key_Down);
        press("cmdOK");
    });
    ASSERT_EQ(grid().rows(), 3);
    EXPECT_EQ(row(1), "1,Roof,90,80,70");
    EXPECT_EQ(row(3), "3,Pond,0,0,0");
    click("cmdApply");
    EXPECT_THAT(stored(), ElementsAre("Default: 21 41", "Town: 1 2 3", "Copy: 1 2 3"));
    EXPECT_NE(m_form->properties().ISLCDefs.Item(2)->LCClasses.Item(1),
              m_form->properties().ISLCDefs.Item(3)->LCClasses.Item(1))
        << "the copy has classes of its own";
}

TEST_F(frmAddLCTypeTest, TickingTheBoxWithoutChoosingASetGivesAnEmptyNewSet) {
    in_new_dialog([this] {
        type("Empty");
        model_after().setFocus();
        key(Qt::Key_Space);
        press("cmdOK");
    });
    EXPECT_EQ(list().currentIndex(), 2);
    EXPECT_EQ(grid().rows(), 0);
}

TEST_F(frmAddLCTypeTest, SetChosenBeforeTheBoxWasUntickedIsNotCopied) {
    in_new_dialog([this] {
        type("Empty");
        model_after().setFocus();
        key(Qt::Key_Space);
        QTest::keyClick(&existing(), Qt::Key_Down);
        model_after().setFocus();
        key(Qt::Key_Space);
        press("cmdOK");
    });
    EXPECT_EQ(list().currentIndex(), 2);
    EXPECT_EQ(grid().rows(), 0);
}

class RefusedName : public frmAddLCTypeTest, public testing::WithParamInterface<const char*> {};

TEST_P(RefusedName, IsToldAsTypedAndKeepsTheDialogOpen) {
    in_new_dialog([this] {
        type(GetParam());
        press("cmdOK");
    });
    EXPECT_FALSE(m_closed);
    EXPECT_THAT(m_user.boxes, ElementsAre(MessageBox{std::string("Coefficient Set must be unique - '") + GetParam() +
                                                         "' is already defined.",
                                                     "", Icon::exclamation, Buttons::ok}));
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town"));
    EXPECT_EQ(grid().rows(), 2);
    EXPECT_FALSE(apply_enabled());
}

INSTANTIATE_TEST_SUITE_P(frmAddLCType, RefusedName, testing::Values("Town", "tOWN", "  Town "));

TEST_F(frmAddLCTypeTest, RefusedNameCanBeMended) {
    in_new_dialog([this] {
        type("town");
        press("cmdOK");
        type("Village");  // over the refused name, which is selected
        key(Qt::Key_Return);
    });
    EXPECT_TRUE(m_closed);
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town", "Village"));
}

TEST_F(frmAddLCTypeTest, SpacesAroundTheNameAreRemoved) {
    in_new_dialog([this] {
        type("  My Set ");
        press("cmdOK");
    });
    EXPECT_EQ(list().itemText(2), "My Set");
}

struct Answered {
    const char* case_name;
    const char* name;
    const char* button;
};

class NothingAdded : public frmAddLCTypeTest, public testing::WithParamInterface<Answered> {};

TEST_P(NothingAdded, ChangesNothing) {
    const std::string before = store_text();
    in_new_dialog([this] {
        type(GetParam().name);
        press(GetParam().button);
    });
    EXPECT_TRUE(m_closed);
    EXPECT_THAT(m_user.boxes, IsEmpty());
    EXPECT_THAT(list_entries(), ElementsAre("Default", "Town"));
    EXPECT_EQ(list().currentIndex(), 0);
    EXPECT_EQ(grid().rows(), 2);
    EXPECT_FALSE(apply_enabled());
    EXPECT_EQ(store_text(), before);
}

INSTANTIATE_TEST_SUITE_P(frmAddLCType, NothingAdded,
                         testing::Values(Answered{"OkWithoutAName", "", "cmdOK"},
                                         Answered{"OkWithBlanksForAName", "   ", "cmdOK"},
                                         Answered{"Cancel", "Fields", "cmdCancel"}),
                         [](const auto& tested) { return std::string(tested.param.case_name); });

TEST_F(frmAddLCTypeTest, EscapeIsCancel) {
    in_new_dialog([this] {
        type("Fields");
        key(Qt::Key_Escape);
    });
    EXPECT_TRUE(m_closed);
    EXPECT_THAT(list_entries(), SizeIs(2));
}

TEST_F(frmAddLCTypeTest, NothingIsCutOff) {
    in_new_dialog([this] {
        for (const QWidget* found : m_dialog->findChildren<QWidget*>())
            if (!found->objectName().startsWith("qt_") && found->isVisible()) {
                EXPECT_GE(found->width(), found->minimumSizeHint().width()) << found->objectName().toStdString();
                EXPECT_GE(found->height(), found->minimumSizeHint().height()) << found->objectName().toStdString();
            }
    });
}

}  // namespace
}  // namespace kestrel::test
