// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/records/find_bar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "base/files.h"
#include "forms/records/frmISTParams.h"
#include "hosting/headless_application.h"
#include "tests/support/failing_interaction.h"
#include "tests/support/failure.h"
#include "tests/support/leaks_of_qt.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"
#include "tests/support/user_actions.h"

/// \file
/// Finding words in the viewer, by real keys.
namespace kestrel::test {
namespace {

using testing::ElementsAre;

class FindBarTest : public testing::Test {
  protected:
    FindBarTest() {
        m_form.Application(&m_application);
        add("north", "High density\r\nWater and roads\r\nlow DENSITY\r\nroads\r\n");
        m_form.FileType("prm");
        m_form.show();
        m_form.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == &m_form; }));
        QApplication::processEvents();
        text().setFocus();
    }
    void add(const std::string& name, const std::string& report) {
        base::write_file(m_folder / (name + ".prm"), report);
        m_application.map().append_layer(
            std::make_shared<hosting::HeadlessFeatureLayer>(name, data::FeatureSource{m_folder / (name + ".shp")}));
    }
    QPlainTextEdit& text() { return control_in<QPlainTextEdit>(m_form, "txtTParams"); }
    QWidget& bar() { return control_in<QWidget>(m_form, "fraFind"); }
    QLineEdit& box() { return control_in<QLineEdit>(m_form, "txtFind"); }
    std::string told() { return control_in<QLabel>(m_form, "lblFound").text().toStdString(); }
    /// A key as it comes from the keyboard: to whatever has the focus.
    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void look_for(const QString& words) {
        key(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), words);
    }
    /// Line and words of what is marked: "2 density".
    std::string marked() {
        const QTextCursor cursor = text().textCursor();
        return std::to_string(cursor.blockNumber()) + " " + cursor.selectedText().toStdString();
    }

    TemporaryFolder m_folder;
    ScriptedInteraction m_user;
    base::NoProgress m_progress;
    hosting::HeadlessApplication m_application{m_progress};
    frmISTParams m_form;
};

TEST_F(FindBarTest, IsHiddenUntilCtrlFAndThenReadyForTyping) {
    EXPECT_FALSE(bar().isVisible());
    look_for("water");
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &box());
    EXPECT_EQ(box().text(), "water");
    EXPECT_GE(bar().y(), text().geometry().bottom()) << "it stands below the text";
}

TEST_F(FindBarTest, EnterGoesFromPlaceToPlaceAndOnFromTheBeginning) {
    look_for("density");
    key(Qt::Key_Return);
    EXPECT_EQ(marked(), "0 density");
    EXPECT_EQ(told(), "");
    key(Qt::Key_Enter);
    EXPECT_EQ(marked(), "2 DENSITY") << "upper and lower case make no difference";
    EXPECT_EQ(told(), "");
    key(Qt::Key_Return);
    EXPECT_EQ(marked(), "0 density");
    EXPECT_EQ(told(), "Continued from the beginning");
    key(Qt::Key_Return);
    EXPECT_EQ(marked(), "2 DENSITY");
    EXPECT_EQ(told(), "");
    EXPECT_TRUE(m_form.isVisible()) << "Enter does not press the Close button";
    EXPECT_EQ(QApplication::focusWidget(), &box());
}

TEST_F(FindBarTest, F3AndShiftF3GoForwardAndBackWhereverTheFocusIs) {
    look_for("roads");
    key(Qt::Key_F3);
    EXPECT_EQ(marked(), "1 roads");
    text().setFocus();
    key(Qt::Key_F3);
    EXPECT_EQ(marked(), "3 roads");
    key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(marked(), "1 roads");
    EXPECT_EQ(told(), "");
    key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(marked(), "3 roads");
    EXPECT_EQ(told(), "Continued from the end");
}

TEST_F(FindBarTest, WhatIsNotThereIsToldAndNothingMoves) {
    look_for("roads");
    key(Qt::Key_Return);
    key(Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&box(), "swamp");
    for (const Qt::KeyboardModifiers modifiers : {Qt::NoModifier, Qt::ShiftModifier}) {
        key(Qt::Key_F3, modifiers);
        EXPECT_EQ(told(), "Not found");
        EXPECT_EQ(marked(), "1 roads");
    }
    QTest::keyClicks(&box(), "s");
    EXPECT_EQ(told(), "") << "of other words nothing is known yet";
}

TEST_F(FindBarTest, EscClosesTheBarFirstAndThenTheWindow) {
    for (QWidget* const from : std::initializer_list<QWidget*>{&box(), &text()}) {
        look_for("roads");
        key(Qt::Key_Return);
        from->setFocus();
        key(Qt::Key_Escape);
        EXPECT_FALSE(bar().isVisible()) << from->objectName().toStdString();
        EXPECT_TRUE(m_form.isVisible());
        EXPECT_EQ(QApplication::focusWidget(), &text());
        EXPECT_EQ(marked(), "1 roads");
        text().moveCursor(QTextCursor::Start);
    }
    key(Qt::Key_Escape);
    EXPECT_FALSE(m_form.isVisible());
}

TEST_F(FindBarTest, ClosedItGoesOnFindingAndComesBackToTellWhatIsNotThere) {
    look_for("roads");
    key(Qt::Key_Escape);
    key(Qt::Key_F3);
    EXPECT_EQ(marked(), "1 roads");
    EXPECT_FALSE(bar().isVisible());
    box().setText("swamp");
    key(Qt::Key_F3);
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(told(), "Not found");
}

TEST_F(FindBarTest, F3WithoutWordsAsksForThem) {
    key(Qt::Key_F3);
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &box());
    EXPECT_EQ(told(), "");
}

TEST_F(FindBarTest, WordsThatAreMarkedAreTakenOverUnlessTheyGoOverLines) {
    key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    look_for("");
    EXPECT_EQ(box().text(), "High ");
    key(Qt::Key_Escape);
    key(Qt::Key_A, Qt::ControlModifier);
    look_for("");
    EXPECT_EQ(box().text(), "High ");
    EXPECT_EQ(box().selectedText(), "High ") << "typing replaces it";
}

TEST_F(FindBarTest, AnotherTextIsSearchedFromItsBeginning) {
    add("south", "no roads\r\n");
    m_form.FileType("prm");
    QApplication::processEvents();
    look_for("water");
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    EXPECT_EQ(told(), "Continued from the beginning");
    control_in<QComboBox>(m_form, "cboSelLayers").setFocus();
    key(Qt::Key_Down);
    EXPECT_EQ(told(), "");
    key(Qt::Key_F3);
    EXPECT_EQ(told(), "Not found");
    key(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(&box(), "roads");
    key(Qt::Key_Return);
    EXPECT_EQ(marked(), "0 roads");
}

TEST_F(FindBarTest, OpenedAgainTheWindowHasNoBar) {
    look_for("roads");
    m_form.close();
    m_form.show();
    EXPECT_FALSE(bar().isVisible());
}

TEST_F(FindBarTest, StandsBetweenTheTextAndTheButtonForTheTabKey) {
    look_for("roads");
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "cmdClose");
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &box());
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &text());
}

TEST_F(FindBarTest, NothingIsCutOffWithTheBar) {
    look_for("density");
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    m_form.resize(m_form.minimumSizeHint());
    QApplication::processEvents();
    for (const QWidget* part : bar().findChildren<QWidget*>()) {
        EXPECT_GE(part->width(), part->minimumSizeHint().width()) << part->objectName().toStdString();
        EXPECT_GE(part->height(), part->minimumSizeHint().height()) << part->objectName().toStdString();
    }
}

/// The report of a failing procedure.
std::string bar_report_of(const std::string& procedure) {
    return "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t" + procedure +
           " find_bar Line : 45\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n";
}

TEST_F(FindBarTest, FailuresAreReportedUnderTheProceduresNames) {
    const LeaksOfQt forgiven;
    look_for("roads");
    key(Qt::Key_Return);
    auto failing = QObject::connect(&text(), &QPlainTextEdit::cursorPositionChanged, fail_denied);
    FailingInteraction user;
    key(Qt::Key_F3);
    key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_THAT(user.call_stacks, ElementsAre(bar_report_of("find_next"), bar_report_of("find_previous")));
    QObject::disconnect(failing);
    user.call_stacks.clear();

    failing = QObject::connect(&box(), &QLineEdit::selectionChanged, fail_denied);
    key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_THAT(user.call_stacks, ElementsAre(bar_report_of("open")));
    QObject::disconnect(failing);
    user.call_stacks.clear();

    failing = QObject::connect(qApp, &QApplication::focusChanged, fail_denied);
    key(Qt::Key_Escape);
    EXPECT_THAT(user.call_stacks, ElementsAre(bar_report_of("dismiss")));
    QObject::disconnect(failing);
}

}  // namespace
}  // namespace kestrel::test
