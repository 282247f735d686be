// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/help/frmHelpBrowser2.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QToolButton>

#include "base/files.h"
#include "tests/forms/help/desktop_stand_in.h"
#include "tests/support/failing_event.h"
#include "tests/support/failing_interaction.h"
#include "tests/support/scripted_interaction.h"
#include "tests/support/test_files.h"

namespace kestrel {
namespace {

using reporting::MessageBox;
using testing::ElementsAre;
using testing::IsEmpty;

class frmHelpBrowser2Test : public testing::Test {
  protected:
    void page(const std::string& name, const std::string& body, const std::string& title = "") {
        base::create_folders(m_folder / "help");
        base::write_file(m_folder / ("help/" + name),
                         "<html><head><title>" + title +
                             "</title><link rel='stylesheet' type='text/css' href='kestrel.css'>"
                             "</head><body>" +
                             body + "</body></html>");
    }
    void two_pages() {
        page("is_index.html", "<p><a href='run.html'>Run</a></p><p>one Pear two pear</p>", "Contents");
        page("run.html", "<p><a href='https://marlin.example/more'>More</a></p><p>three pear</p>", "A run");
    }
    void open() {
        m_form.show();
        m_form.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_form));
    }
    template <typename Control>
    Control& control(const char* name) {
        return *m_form.findChild<Control*>(name);
    }
    QTextBrowser& browser() { return control<QTextBrowser>("brwHelp"); }
    std::string shown() { return browser().toPlainText().toStdString(); }
    std::string file() { return browser().source().fileName().toStdString(); }
    bool enabled(const char* name) { return control<QToolButton>(name).isEnabled(); }
    void press(const char* name) { QTest::mouseClick(&control<QToolButton>(name), Qt::LeftButton); }
    /// Clicks where a text stands in the page.
    void click_text(const QString& text) {
        QTextCursor place = browser().document()->find(text);
        ASSERT_FALSE(place.isNull());
        place.setPosition(place.selectionStart() + 1);
        QTest::mouseClick(browser().viewport(), Qt::LeftButton, Qt::NoModifier, browser().cursorRect(place).center());
    }
    /// Where the found text stands.
    std::vector<int> found() {
        return {browser().textCursor().selectionStart(), browser().textCursor().selectionEnd()};
    }

    test::TemporaryFolder m_folder;
    test::ScriptedInteraction m_said;
    frmHelpBrowser2 m_form{m_folder.path()};
};

TEST_F(frmHelpBrowser2Test, OpensAtTheFirstPage) {
    two_pages();
    open();
    EXPECT_EQ(browser().source(), QUrl::fromLocalFile(QString::fromStdString(m_folder.path()) + "/help/is_index.html"));
    EXPECT_EQ(shown(), "Run\none Pear two pear");
    EXPECT_EQ(m_form.windowTitle(), "Contents - Kestrel Help");
    EXPECT_THAT(m_said.boxes, IsEmpty());
}

TEST_F(frmHelpBrowser2Test, MissingHelpFileIsToldAndTheFormShowsNothing) {
    open();
    EXPECT_THAT(m_said.boxes, ElementsAre(MessageBox{
                                  "The Kestrel help file (" + m_folder.path() + "/help/is_index.html) does not exist.",
                                  "", reporting::Icon::none, reporting::Buttons::ok}));
    EXPECT_TRUE(m_form.isVisible());
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(m_form.windowTitle(), "Kestrel Help");
}

TEST_F(frmHelpBrowser2Test, FileThatGoesMissingIsToldWhenTheFormIsOpenedAgain) {
    two_pages();
    open();
    m_form.close();
    base::remove_file(m_folder / "help/is_index.html");
    open();
    EXPECT_EQ(m_said.boxes.size(), 1U);
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(m_form.windowTitle(), "Kestrel Help");
}

TEST_F(frmHelpBrowser2Test, ShowingAnOpenFormKeepsItsPage) {
    two_pages();
    open();
    click_text("Run");
    m_form.show();
    EXPECT_EQ(file(), "run.html");
}

TEST_F(frmHelpBrowser2Test, OpenedAgainBeginsAtTheFirstPageWithoutAPast) {
    two_pages();
    open();
    click_text("Run");
    m_form.close();
    open();
    EXPECT_EQ(file(), "is_index.html");
    EXPECT_FALSE(enabled("cmdBack"));
}

TEST_F(frmHelpBrowser2Test, LinksLeadOnAndButtonsBackForthAndHome) {
    two_pages();
    open();
    EXPECT_FALSE(enabled("cmdBack"));
    EXPECT_FALSE(enabled("cmdForward"));
    click_text("Run");
    EXPECT_EQ(file(), "run.html");
    EXPECT_EQ(m_form.windowTitle(), "A run - Kestrel Help");
    press("cmdBack");
    EXPECT_EQ(file(), "is_index.html");
    EXPECT_TRUE(enabled("cmdForward"));
    press("cmdForward");
    EXPECT_EQ(file(), "run.html");
    press("cmdHome");
    EXPECT_EQ(file(), "is_index.html");
}

TEST_F(frmHelpBrowser2Test, LinkToAMissingPageIsToldAndThePageStays) {
    page("is_index.html", "<p><a href='gone.html#part'>Gone</a></p>", "Contents");
    open();
    click_text("Gone");
    EXPECT_THAT(m_said.boxes,
                ElementsAre(MessageBox{"The Kestrel help file (" + m_folder.path() + "/help/gone.html) does not exist.",
                                       "", reporting::Icon::none, reporting::Buttons::ok}));
    EXPECT_EQ(file(), "is_index.html");
    EXPECT_EQ(shown(), "Gone");
    EXPECT_EQ(m_form.windowTitle(), "Contents - Kestrel Help");
}

TEST_F(frmHelpBrowser2Test, LinkWithinThePageIsFollowed) {
    page("is_index.html", "<p><a href='#end'>End</a></p>" + std::string(200, 'x') + "<p><a name='end'>here</a></p>");
    open();
    click_text("End");
    EXPECT_THAT(m_said.boxes, IsEmpty());
    EXPECT_EQ(browser().source().fragment(), "end");
}

TEST_F(frmHelpBrowser2Test, TabAndReturnFollowALink) {
    two_pages();
    open();
    QTest::keyClick(&browser(), Qt::Key_Tab);
    QTest::keyClick(&browser(), Qt::Key_Return);
    EXPECT_EQ(file(), "run.html");
    EXPECT_TRUE(m_form.isVisible());
}

TEST_F(frmHelpBrowser2Test, ReturnPressesTheButtonThatHasTheFocus) {
    two_pages();
    open();
    click_text("Run");
    control<QToolButton>("cmdHome").setFocus();
    QTest::keyClick(&control<QToolButton>("cmdHome"), Qt::Key_Return);
    EXPECT_EQ(file(), "is_index.html");
    EXPECT_TRUE(m_form.isVisible());
    control<QPushButton>("cmdClose").setFocus();
    QTest::keyClick(&control<QPushButton>("cmdClose"), Qt::Key_Return);
    EXPECT_FALSE(m_form.isVisible());
}

TEST_F(frmHelpBrowser2Test, OpenedAgainHasForgottenTheSearch) {
    two_pages();
    open();
    QTest::keyClicks(&control<QLineEdit>("txtFind"), "plum\r");
    m_form.close();
    open();
    EXPECT_EQ(control<QLineEdit>("txtFind").text(), "");
    EXPECT_EQ(control<QLabel>("lblFound").text(), "");
    EXPECT_EQ(m_form.focusWidget(), &browser());
}

TEST_F(frmHelpBrowser2Test, AltArrowsAndAltHomeGoBackForthAndHome) {
    two_pages();
    open();
    click_text("Run");
    QTest::keyClick(&browser(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(file(), "is_index.html");
    QTest::keyClick(&browser(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(file(), "run.html");
    QTest::keyClick(&browser(), Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(file(), "is_index.html");
}

TEST_F(frmHelpBrowser2Test, ExternalLinksGoToTheDesktop) {
    test::DesktopStandIn desktop;
    two_pages();
    open();
    click_text("Run");
    click_text("More");
    EXPECT_THAT(desktop.opened, ElementsAre("https://marlin.example/more"));
    EXPECT_EQ(file(), "run.html");
}

TEST_F(frmHelpBrowser2Test, ImagesAndStylesAreRelativeToThePage) {
    base::create_folders(m_folder / "help/images");
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(QString::fromStdString(m_folder / "help/images/a.png")));
    base::write_file(m_folder / "help/kestrel.css", "p { color: #0000ff; }");
    page("is_index.html", "<p>text</p><img src='images/a.png'>");
    open();
    const QImage shown_page = browser().grab().toImage();
    bool red = false;
    for (int y = 0; y < shown_page.height() && !red; ++y)
        for (int x = 0; x < shown_page.width() && !red; ++x)
            red = shown_page.pixelColor(x, y) == QColor(Qt::red);
    EXPECT_TRUE(red);
    const QTextCursor text = browser().document()->find("text");
    EXPECT_EQ(text.charFormat().foreground().color(), QColor(0, 0, 255));
}

TEST_F(frmHelpBrowser2Test, FindGoesThroughThePageAndRound) {
    two_pages();
    open();
    QTest::keyClick(&browser(), Qt::Key_F, Qt::ControlModifier);
    auto& text = control<QLineEdit>("txtFind");
    ASSERT_TRUE(text.hasFocus());
    QTest::keyClicks(&text, "pear");
    QTest::keyClick(&text, Qt::Key_Return);
    EXPECT_THAT(found(), ElementsAre(8, 12));
    EXPECT_TRUE(m_form.isVisible());
    QTest::keyClick(&text, Qt::Key_F3);
    EXPECT_THAT(found(), ElementsAre(17, 21));
    press("cmdFindNext");
    EXPECT_THAT(found(), ElementsAre(8, 12));
    press("cmdFindPrevious");
    EXPECT_THAT(found(), ElementsAre(17, 21));
    QTest::keyClick(&text, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_THAT(found(), ElementsAre(8, 12));
    EXPECT_EQ(control<QLabel>("lblFound").text(), "");
}

TEST_F(frmHelpBrowser2Test, WhatIsNotFoundIsToldUntilAnythingElseIsTypedAndNothingMoves) {
    two_pages();
    open();
    auto& text = control<QLineEdit>("txtFind");
    QTest::keyClicks(&text, "pear");
    QTest::keyClick(&text, Qt::Key_Return);
    text.clear();
    QTest::keyClicks(&text, "plum");
    QTest::keyClick(&text, Qt::Key_Return);
    EXPECT_EQ(control<QLabel>("lblFound").text(), "Not found");
    EXPECT_THAT(found(), ElementsAre(8, 12));
    QTest::keyClick(&text, Qt::Key_Backspace);
    EXPECT_EQ(control<QLabel>("lblFound").text(), "");
}

TEST_F(frmHelpBrowser2Test, FindWithoutATextAsksForOne) {
    two_pages();
    open();
    QTest::keyClick(&browser(), Qt::Key_F3);
    EXPECT_TRUE(control<QLineEdit>("txtFind").hasFocus());
    EXPECT_FALSE(browser().textCursor().hasSelection());
}

TEST_F(frmHelpBrowser2Test, PageFillsTheFormsInnerAreaAtEverySize) {
    two_pages();
    open();
    for (const QSize size : {QSize(900, 700), QSize(700, 900), m_form.minimumSize()}) {
        m_form.resize(size);
        const QRect page = browser().geometry();
        const QRect close = control<QPushButton>("cmdClose").geometry();
        EXPECT_EQ(page.left(), m_form.width() - 1 - page.right());
        EXPECT_LT(page.left(), 20);
        EXPECT_GT(page.height(), 40);
        EXPECT_LT(page.bottom(), close.top());
        EXPECT_TRUE(m_form.rect().contains(close));
        EXPECT_LT(control<QToolButton>("cmdFindNext").mapTo(&m_form, QPoint(0, 0)).y(), page.top());
    }
}

TEST_F(frmHelpBrowser2Test, CloseAndEscCloseTheForm) {
    two_pages();
    open();
    QTest::mouseClick(&control<QPushButton>("cmdClose"), Qt::LeftButton);
    EXPECT_FALSE(m_form.isVisible());
    open();
    QTest::keyClick(&browser(), Qt::Key_Escape);
    EXPECT_FALSE(m_form.isVisible());
}

/// The report of a failing procedure.
std::string report_of(const std::string& procedure) {
    return "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t" + procedure +
           " isHelpBrowser2 Line : 45\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n";
}

TEST_F(frmHelpBrowser2Test, FailingLoadIsReported) {
    test::FailingInteraction nobody;
    m_form.show();  // the message about the missing file fails
    EXPECT_THAT(nobody.call_stacks, ElementsAre(report_of("Form_Load")));
}

TEST_F(frmHelpBrowser2Test, FailingMessageOfAMissingPageIsReported) {
    page("is_index.html", "<p><a href='gone.html'>Gone</a></p>");
    open();
    test::FailingInteraction nobody;
    click_text("Gone");
    EXPECT_THAT(nobody.call_stacks, ElementsAre(report_of("brwHelp_AnchorClicked")));
}

TEST_F(frmHelpBrowser2Test, FailingResizeIsReported) {
    two_pages();
    open();
    const test::FailingEvent failing(browser(), QEvent::Resize);
    m_form.resize(m_form.size() + QSize(10, 10));
    EXPECT_THAT(m_said.call_stacks, ElementsAre(report_of("Form_Resize")));
}

TEST_F(frmHelpBrowser2Test, FailingCloseIsReported) {
    two_pages();
    open();
    const test::FailingEvent failing(m_form, QEvent::Hide);
    control<QPushButton>("cmdClose").click();
    EXPECT_THAT(m_said.call_stacks, ElementsAre(report_of("cmdClose_Click")));
}

}  // namespace
}  // namespace kestrel
