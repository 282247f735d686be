// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "reporting/interaction.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "tests/support/error_of.h"
#include "tests/support/scripted_interaction.h"

namespace kestrel::reporting {

namespace {

using test::error_of;
using test::ScriptedInteraction;

TEST(Interaction, AThreadWithoutOneIsAnError) {
    EXPECT_EQ(error_of([] { current_interaction(); }).number(), 91);
}

TEST(Interaction, TheInnermostCountsAndTheOneBeforeReturns) {
    ScriptedInteraction outer;
    EXPECT_EQ(&current_interaction(), &outer);
    {
        ScriptedInteraction inner;
        EXPECT_EQ(&current_interaction(), &inner);
    }
    EXPECT_EQ(&current_interaction(), &outer);
}

// Two extension objects in one host may be shut down in the order in which they were started.
TEST(Interaction, OneThatEndsBeforeTheInnerOnesLeavesThemInChargeAndNeverComesBack) {
    ScriptedInteraction outermost;
    auto first = std::make_unique<ScriptedInteraction>();
    auto second = std::make_unique<ScriptedInteraction>();
    first.reset();
    EXPECT_EQ(&current_interaction(), second.get());
    second.reset();
    EXPECT_EQ(&current_interaction(), &outermost);
}

TEST(Interaction, EveryThreadHasItsOwn) {
    ScriptedInteraction mine;
    std::int32_t error_elsewhere = 0;
    std::thread([&] { error_elsewhere = error_of([] { current_interaction(); }).number(); }).join();
    EXPECT_EQ(error_elsewhere, 91);
    EXPECT_EQ(&current_interaction(), &mine);
}

TEST(ScriptedInteraction, AnswersFromTheScriptThenInTheNegative) {
    ScriptedInteraction user;
    user.answers = {Answer::yes};
    EXPECT_EQ(user.message_box({.text = "a", .buttons = Buttons::yes_no}), Answer::yes);
    EXPECT_EQ(user.message_box({.text = "b", .buttons = Buttons::yes_no}), Answer::no);
    EXPECT_EQ(user.message_box({.text = "c", .buttons = Buttons::ok_cancel}), Answer::cancel);
    EXPECT_EQ(user.message_box({.text = "d", .buttons = Buttons::yes_no_cancel}), Answer::cancel);
    EXPECT_EQ(user.message_box({.text = "e"}), Answer::ok);
    EXPECT_EQ(user.boxes.size(), 5U);
    EXPECT_EQ(user.input_box({"prompt", "title"}), "");
    EXPECT_EQ(user.file_dialog({}), std::nullopt);
}

}  // namespace

}  // namespace kestrel::reporting
