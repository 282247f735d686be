// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/console_interaction.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kestrel::cli {
namespace {

using reporting::Answer;
using reporting::Buttons;
using reporting::Icon;
using reporting::MessageBox;

struct Console {
    explicit Console(ConsoleOptions options = {}) : interaction(stream, progress, options) {}
    std::ostringstream stream;
    ConsoleProgress progress{stream, true, [] { return std::chrono::steady_clock::time_point{}; }};
    ConsoleInteraction interaction;
};

TEST(ConsoleInteraction, ABoxIsItsTitleAndItsText) {
    Console console;
    EXPECT_EQ(console.interaction.message_box({"Please specify an output name.", "Shapefile Name", Icon::information}),
              Answer::ok);
    EXPECT_EQ(console.stream.str(), "Shapefile Name: Please specify an output name.\n");
}

TEST(ConsoleInteraction, ABoxWithoutATitleIsTitledKestrel) {
    Console console;
    console.interaction.message_box({"Table QI failed"});
    EXPECT_EQ(console.stream.str(), "Kestrel: Table QI failed\n");
}

TEST(ConsoleInteraction, CarriageReturnsBecomeLineEnds) {
    Console console;
    console.interaction.message_box({"one\rtwo\r\nthree\nfour\r", "T"});
    EXPECT_EQ(console.stream.str(), "T: one\ntwo\nthree\nfour\n\n");
}

TEST(ConsoleInteraction, QuestionsAreAnsweredNoOrCancelWithoutYes) {
    Console console;
    EXPECT_EQ(console.interaction.message_box({"Save?", "T", Icon::question, Buttons::yes_no}), Answer::no);
    EXPECT_EQ(console.interaction.message_box({"Save?", "T", Icon::question, Buttons::yes_no_cancel}), Answer::no);
    EXPECT_EQ(console.interaction.message_box({"Replace?", "T", Icon::question, Buttons::ok_cancel}), Answer::cancel);
    EXPECT_EQ(console.stream.str(),
              "T: Save?\n(answered No; give --yes to agree)\n"
              "T: Save?\n(answered No; give --yes to agree)\n"
              "T: Replace?\n(answered Cancel; give --yes to agree)\n");
}

TEST(ConsoleInteraction, QuestionsAreAnsweredYesOrOkWithYes) {
    Console console({.yes = true});
    EXPECT_EQ(console.interaction.message_box({"Save?", "T", Icon::question, Buttons::yes_no}), Answer::yes);
    EXPECT_EQ(console.interaction.message_box({"Save?", "T", Icon::question, Buttons::yes_no_cancel}), Answer::yes);
    EXPECT_EQ(console.interaction.message_box({"Replace?", "T", Icon::question, Buttons::ok_cancel}), Answer::ok);
    EXPECT_EQ(console.stream.str(), "T: Save?\n(answered Yes)\nT: Save?\n(answered Yes)\nT: Replace?\n(answered OK)\n");
}

TEST(ConsoleInteraction, ACriticalBoxWithOkAndCancelIsOnlyClosed) {
    Console console;
    EXPECT_EQ(console.interaction.message_box({"Failed", "T", Icon::critical, Buttons::ok_cancel}), Answer::cancel);
    EXPECT_EQ(console.stream.str(), "T: Failed\n");
}

TEST(ConsoleInteraction, ReportsGoToTheStreamAsTheyAre) {
    Console console;
    console.interaction.show_call_stack("ReadParameters clsReadParams\r\nERROR 9");
    EXPECT_EQ(console.stream.str(), "ReadParameters clsReadParams\nERROR 9\n");
}

TEST(ConsoleInteraction, ANoticeIsGivenOnce) {
    Console console;
    console.interaction.notice("Two polygons were repaired.");
    console.interaction.notice("Two polygons were repaired.");
    EXPECT_EQ(console.stream.str(), "Kestrel: Two polygons were repaired.\n");
}

TEST(ConsoleInteraction, QuietLeavesNoticesOutButNotBoxes) {
    Console console({.quiet = true});
    console.interaction.notice("Two polygons were repaired.");
    console.interaction.message_box({"Failed"});
    EXPECT_EQ(console.stream.str(), "Kestrel: Failed\n");
}

TEST(ConsoleInteraction, WhyARunFailedIsSaidAlsoWhenNoticesAreLeftOut) {
    Console console({.quiet = true});
    console.interaction.notice("The raster cannot be read.");
    console.interaction.explain("The raster cannot be read.");
    console.interaction.explain("The raster cannot be read.");
    EXPECT_EQ(console.stream.str(), "Kestrel: The raster cannot be read.\n");
}

TEST(ConsoleInteraction, TheProgressLineGivesWayToAText) {
    Console console;
    console.progress.report(0.5, "Reading");
    console.interaction.notice("Look.");
    EXPECT_EQ(console.stream.str(), "\r 50% Reading\x1b[K\r\x1b[KKestrel: Look.\n");
}

TEST(ConsoleInteraction, NothingIsTypedOrChosen) {
    Console console({.yes = true});
    EXPECT_EQ(console.interaction.input_box({"Enter new Coefficient Set name", "Import"}), "");
    EXPECT_EQ(console.interaction.file_dialog({}), std::nullopt);
    EXPECT_EQ(console.stream.str(), "");
}

TEST(ConsoleInteraction, TheWaitingWindowIsTheProgressLine) {
    Console console;
    {
        const auto window = console.interaction.waiting_window("Please wait...");
        EXPECT_TRUE(window->report(0.25, "Counting"));
        EXPECT_FALSE(window->cancelled());
    }
    EXPECT_EQ(console.stream.str(), "\r 25% Counting\x1b[K\r\x1b[K");
}

TEST(ConsoleInteraction, HelpPointsToTheOption) {
    Console console;
    console.interaction.show_help();
    EXPECT_EQ(console.stream.str(), "Kestrel: see kestrel --help\n");
}

}  // namespace
}  // namespace kestrel::cli
