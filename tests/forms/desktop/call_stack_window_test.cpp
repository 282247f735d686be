// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/call_stack_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QFontMetricsF>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include "base/errors.h"
#include "forms/desktop/qt_interaction.h"
#include "reporting/error_report.h"

namespace kestrel {
namespace {

const std::string kReport =
    "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n"
    "\tExecuteModel clsISExecuteModel \r\n\tisWriteMetadata clsISExecuteModel Line : 45\r\n"
    "\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n";

class CallStackWindowTest : public testing::Test {
  protected:
    CallStackWindowTest() {
        m_window.show();
        m_window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }
    QPlainTextEdit& text() { return *m_window.findChild<QPlainTextEdit*>("callStackText"); }
    QPushButton& copy() { return *m_window.findChild<QPushButton*>("copyCallStack"); }
    QPushButton& close() { return *m_window.findChild<QPushButton*>("closeCallStack"); }

    CallStackWindow m_window{QString::fromStdString(kReport)};
};

TEST_F(CallStackWindowTest, ShowsTheWholeReportLineByLine) {
    EXPECT_EQ(text().toPlainText(),
              "Record Call Stack Sequence - Bottom line is error line.\n\n"
              "\tExecuteModel clsISExecuteModel \n\tisWriteMetadata clsISExecuteModel Line : 45\n"
              "\nError Number \n\t70\nDescription\n\tPermission denied\n\n");
    EXPECT_EQ(m_window.windowTitle(), "Kestrel - Unexpected Program Error");
}

TEST_F(CallStackWindowTest, TextIsOfOneWidthAndNeedsNoScrollingSideways) {
    // Not what the font tells of itself: whether it does depends on the fonts of the machine.
    const QFontMetricsF metrics(text().font());
    EXPECT_DOUBLE_EQ(metrics.horizontalAdvance('i'), metrics.horizontalAdvance('W'));
    EXPECT_EQ(text().horizontalScrollBar()->maximum(), 0);
}

TEST_F(CallStackWindowTest, CannotBeChanged) {
    QTest::keyClicks(&text(), "x");
    EXPECT_FALSE(text().toPlainText().contains('x' + QString("Record")));
    EXPECT_TRUE(text().isReadOnly());
}

TEST_F(CallStackWindowTest, PartsCanBeMarkedAndCopiedByKeyboard) {
    text().setFocus();
    QTest::keyClick(&text(), Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(&text(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().trimmed(), "Record");
}

TEST_F(CallStackWindowTest, CopyAllPutsTheReportOnTheClipboardAndTheWindowStays) {
    EXPECT_EQ(copy().text(), "&Copy All");
    QTest::mouseClick(&copy(), Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), kReport);
    EXPECT_TRUE(m_window.isVisible());
    // What was done shows.
    EXPECT_EQ(copy().text(), "Copied");
}

TEST_F(CallStackWindowTest, CloseEscAndEnterCloseIt) {
    const auto expect_closed_by = [this](const auto& act) {
        m_window.show();
        m_window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        act();
        EXPECT_FALSE(m_window.isVisible());
    };
    expect_closed_by([this] { QTest::mouseClick(&close(), Qt::LeftButton); });
    expect_closed_by([this] { QTest::keyClick(&m_window, Qt::Key_Escape); });
    expect_closed_by([this] { QTest::keyClick(&text(), Qt::Key_Return); });
}

TEST_F(CallStackWindowTest, TextTakesTheRoomWhenTheWindowGrows) {
    const int before = text().height();
    m_window.resize(m_window.width() + 200, m_window.height() + 200);
    QApplication::processEvents();
    EXPECT_EQ(text().height(), before + 200);
}

/// Fails as a procedure would, and reports it.
void isWriteMetadata() try { throw base::RuntimeError(70, "Permission denied <b>&", "Kestrel", 45); } catch (...) {
    report_current({"isWriteMetadata", "clsISExecuteModel"});
}

TEST(CallStack, OfAnErrorIsShownInTheWindow) {
    reset_reporting_flag();
    QtInteraction user;
    const reporting::ScopedInteraction scope(user);
    QString shown;
    QTimer::singleShot(0, [&shown] {
        QWidget* const window = QApplication::activeModalWidget();
        ASSERT_NE(window, nullptr);
        shown = window->findChild<QPlainTextEdit*>("callStackText")->toPlainText();
        window->close();
    });
    isWriteMetadata();
    EXPECT_EQ(
        shown,
        "Record Call Stack Sequence - Bottom line is error line.\n\n\tisWriteMetadata clsISExecuteModel Line : 45\n"
        "\nError Number \n\t70\nDescription\n\tPermission denied <b>&\n\n");
}

}  // namespace
}  // namespace kestrel
