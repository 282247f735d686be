// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "forms/desktop/qt_interaction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

namespace kestrel {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;
using testing::ElementsAre;

/// Acts on the next modal window, which the caller then opens.
void when_open(const std::function<void(QWidget&)>& act) {
    QTimer::singleShot(0, [act] {
        QWidget* const window = QApplication::activeModalWidget();
        ASSERT_NE(window, nullptr);
        act(*window);
        if (window->isVisible()) window->close();
    });
}

/// What the user sees of a box, and what the pressed button answers.
struct Seen {
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QString title;
    QString text;
    Answer answer = Answer::ok;
};

Seen see(const MessageBox& box, QMessageBox::StandardButton button) {
    Seen seen;
    when_open([&seen, button](QWidget& widget) {
        auto& window = dynamic_cast<QMessageBox&>(widget);
        seen = {window.icon(), window.standardButtons(), window.windowTitle(), window.text()};
        EXPECT_EQ(window.textFormat(), Qt::PlainText);
        window.button(button)->click();
    });
    seen.answer = QtInteraction().message_box(box);
    return seen;
}

TEST(QtMessageBox, ShowsTextAndTitle) {
    const Seen seen = see({"A <b> & c", "Missing"}, QMessageBox::Ok);
    EXPECT_EQ(seen.text, "A <b> & c");
    EXPECT_EQ(seen.title, "Missing");
}

TEST(QtMessageBox, WithoutATitleIsTitledKestrel) {
    EXPECT_EQ(see({"text"}, QMessageBox::Ok).title, "Kestrel");
}

TEST(QtMessageBox, CrAndCrLfBreakTheLine) {
    EXPECT_EQ(see({"one\r\ntwo\r three\nfour"}, QMessageBox::Ok).text, "one\ntwo\n three\nfour");
}

TEST(QtMessageBox, HasTheIconThatIsAskedFor) {
    for (const auto& [icon, expected] : {std::pair{Icon::none, QMessageBox::NoIcon},
                                         {Icon::critical, QMessageBox::Critical},
                                         {Icon::question, QMessageBox::Question},
                                         {Icon::exclamation, QMessageBox::Warning},
                                         {Icon::information, QMessageBox::Information}}) {
        EXPECT_EQ(see({"text", "", icon}, QMessageBox::Ok).icon, expected);
    }
}

TEST(QtMessageBox, HasTheButtonsThatAreAskedForAndTellsWhichWasPressed) {
    constexpr auto kOkButton = QMessageBox::Ok;
    constexpr auto kCancelButton = QMessageBox::Cancel;
    constexpr auto kYesButton = QMessageBox::Yes;
    constexpr auto kNoButton = QMessageBox::No;
    const auto expect = [](Buttons buttons, QMessageBox::StandardButtons shown, QMessageBox::StandardButton pressed,
                           Answer answer) {
        const Seen seen = see({"text", "", Icon::none, buttons}, pressed);
        EXPECT_EQ(seen.buttons, shown);
        EXPECT_EQ(seen.answer, answer);
    };
    expect(Buttons::ok, kOkButton, kOkButton, Answer::ok);
    expect(Buttons::ok_cancel, kOkButton | kCancelButton, kOkButton, Answer::ok);
    expect(Buttons::ok_cancel, kOkButton | kCancelButton, kCancelButton, Answer::cancel);
    expect(Buttons::yes_no, kYesButton | kNoButton, kYesButton, Answer::yes);
    expect(Buttons::yes_no, kYesButton | kNoButton, kNoButton, Answer::no);
    expect(Buttons::yes_no_cancel, kYesButton | kNoButton | kCancelButton, kNoButton, Answer::no);
    expect(Buttons::yes_no_cancel, kYesButton | kNoButton | kCancelButton, kCancelButton, Answer::cancel);
}

TEST(QtInputBox, YieldsWhatWasTypedAndNothingWhenCancelled) {
    for (const bool accept : {true, false}) {
        when_open([accept](QWidget& window) {
            EXPECT_EQ(window.windowTitle(), "Import");
            EXPECT_EQ(window.findChild<QLabel*>()->text(), "Enter new Coefficient Set name");
            QTest::keyClicks(window.findChild<QLineEdit*>(), "New set");
            QTest::keyClick(&window, accept ? Qt::Key_Return : Qt::Key_Escape);
        });
        EXPECT_EQ(QtInteraction().input_box({"Enter new Coefficient Set name", "Import"}), accept ? "New set" : "");
    }
}

TEST(QtNameFilter, TakesThePatternsBehindTheBar) {
    EXPECT_EQ(qt_name_filter("Coefficient Text File(*.txt;*.csv)|*.txt;*.csv"), "Coefficient Text File (*.txt *.csv)");
    EXPECT_EQ(qt_name_filter("Anything"), "Anything");
}

/// The waiting window, or nothing.
QWidget* waiting_window() {
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == "frmISProcessing") return widget;
    }
    return nullptr;
}

TEST(QtWaitingWindow, ShowsTextAndProgressUntilItIsDestroyed) {
    auto waiting = QtInteraction().waiting_window("Please wait...");
    QWidget* const form = waiting_window();
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->findChild<QLabel*>("lblMessage")->text(), "Please wait...");
    EXPECT_TRUE(waiting->report(0.25, "Reading"));
    EXPECT_EQ(form->findChild<QLabel*>("lblStep")->text(), "Reading");
    auto* const bar = form->findChild<QProgressBar*>("barProgress");
    EXPECT_EQ(bar->value() * 4, bar->maximum());
    waiting.reset();
    EXPECT_EQ(waiting_window(), nullptr);
}

TEST(QtWaitingWindow, CancelAndEscStopTheWorkAndTheWindowStays) {
    for (const bool by_key : {false, true}) {
        const auto waiting = QtInteraction().waiting_window("Please wait...");
        QWidget* const form = waiting_window();
        ASSERT_NE(form, nullptr);
        EXPECT_FALSE(waiting->cancelled());
        if (by_key) {
            QTest::keyClick(form, Qt::Key_Escape);
        } else {
            QTest::mouseClick(form->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
        }
        EXPECT_TRUE(form->isVisible());
        EXPECT_TRUE(waiting->cancelled());
        EXPECT_FALSE(waiting->report(0.5, "Reading"));
    }
}

TEST(QtInteraction, NoticesAndHelpGoToTheHost) {
    std::vector<std::string> told;
    QtInteraction user(
        {[&](std::string_view text) { told.emplace_back(text); }, [&] { told.emplace_back("help is shown"); }});
    user.notice("a layer was skipped");
    user.show_help();
    EXPECT_THAT(told, ElementsAre("a layer was skipped", "help is shown"));
}

}  // namespace
}  // namespace kestrel
