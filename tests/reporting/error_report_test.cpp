// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "reporting/error_report.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <thread>

#include "base/errors.h"
#include "tests/support/failing_interaction.h"
#include "tests/support/scripted_interaction.h"

namespace kestrel {
namespace {

using base::RuntimeError;
using test::ScriptedInteraction;

constexpr const char* kHead = "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n";
constexpr const char* kDenied = "\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n";

void fail_on_line(int line) {
    throw RuntimeError(70, "Permission denied", "Kestrel", line);
}

void innermost() try { fail_on_line(45); } catch (...) {
    report_current({"innermost", "basInner", Show::no});
}

void middle() try { innermost(); } catch (...) {
    report_current({"middle", "basMiddle", Show::no});
}

int outermost() try {
    middle();
    return 1;
} catch (...) {
    return reported<int>({"outermost", "clsOuter"});
}

/// The report of whatever `throw_it` throws in a showing procedure.
std::string report_of(const std::function<void()>& throw_it) {
    ScriptedInteraction user;
    try {
        throw_it();
    } catch (...) {
        report_current({"isWriteMetadata", "clsISExecuteModel"});
    }
    return user.call_stacks.size() == 1 ? user.call_stacks.front() : "no report, or more than one";
}

std::string report_of_number(const std::string& entry, const std::string& number, const std::string& description) {
    return kHead + ("\t" + entry + "\r\n\r\nError Number \r\n\t") + number + "\r\nDescription\r\n\t" + description +
           "\r\n\r\n";
}

TEST(ErrorLine, NamesTheLine) {
    EXPECT_EQ(ErrorLine(45), "Line : 45");
    EXPECT_EQ(ErrorLine(123456), "Line : 123456");
}

TEST(ErrorLine, IsEmptyForProceduresWithoutLineNumbers) {
    EXPECT_EQ(ErrorLine(0), "");
}

TEST(ErrorReport, ErrorInAShowingProcedureGivesOneEntryAndTheDetailBlock) {
    EXPECT_EQ(
        report_of([] { fail_on_line(45); }),
        "Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\tisWriteMetadata clsISExecuteModel Line : "
        "45\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n");
}

TEST(ErrorReport, EntryOfAProcedureWithoutLineNumbersEndsInABlank) {
    EXPECT_EQ(report_of([] { fail_on_line(0); }),
              kHead + std::string("\tisWriteMetadata clsISExecuteModel \r\n") + kDenied);
}

TEST(ErrorReport, ErrorThroughTwoProceduresGivesThreeEntriesAndOneDetailBlock) {
    ScriptedInteraction user;
    EXPECT_EQ(outermost(), 0);
    ASSERT_EQ(user.call_stacks.size(), 1U);
    EXPECT_EQ(user.call_stacks.front(),
              kHead +
                  std::string("\toutermost clsOuter \r\n\tmiddle basMiddle \r\n\tinnermost basInner Line : 45\r\n") +
                  kDenied);
    EXPECT_TRUE(user.boxes.empty());
    EXPECT_EQ(user.beeps, 0);
}

TEST(ErrorReport, PassedOnErrorKeepsNumberAndSource) {
    ScriptedInteraction user;
    try {
        ErrorReport(Show::no, "inner basInner ", 6, "Source", "Overflow", 4);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 6);
        EXPECT_EQ(error.source(), "Source");
        EXPECT_EQ(error.line(), 0);
        EXPECT_EQ(error.description(),
                  "\tinner basInner \r\n\r\nError Number \r\n\t6\r\nDescription\r\n\tOverflow\r\n\r\n");
    }
    EXPECT_TRUE(user.call_stacks.empty());
}

TEST(ErrorReport, SecondErrorAfterAShownOneGetsItsOwnDetailBlock) {
    ScriptedInteraction user;
    EXPECT_EQ(outermost(), 0);
    EXPECT_EQ(outermost(), 0);
    ASSERT_EQ(user.call_stacks.size(), 2U);
    EXPECT_EQ(user.call_stacks[0], user.call_stacks[1]);
}

TEST(ErrorReport, ErrorThatNoHandlerReceivedLeavesTheNextWithoutDetailBlock) {
    ScriptedInteraction user;
    EXPECT_THROW(innermost(), RuntimeError);
    ErrorReport(Show::yes, "next basNext ", 5, "Kestrel", "as it is", 4);
    ErrorReport(Show::yes, "third basNext ", 5, "Kestrel", "again in full", 4);
    ASSERT_EQ(user.call_stacks.size(), 2U);
    EXPECT_EQ(user.call_stacks[0], kHead + std::string("\tnext basNext \r\nas it is"));
    EXPECT_EQ(user.call_stacks[1], report_of_number("third basNext ", "5", "again in full"));
}

TEST(ErrorReport, EveryThreadHasItsOwnFlag) {
    ScriptedInteraction user;
    EXPECT_THROW(innermost(), RuntimeError);  // leaves this thread's flag set
    std::string other;
    std::thread([&other] {
        ScriptedInteraction other_user;
        ErrorReport(Show::yes, "other basOther ", 5, "Kestrel", "text", 4);
        other = other_user.call_stacks.front();
    }).join();
    EXPECT_EQ(other, report_of_number("other basOther ", "5", "text"));
    ErrorReport(Show::yes, "here basHere ", 5, "Kestrel", "text", 4);
    EXPECT_EQ(user.call_stacks.front(), kHead + std::string("\there basHere \r\ntext"));
}

class ErrorReportInABox : public testing::TestWithParam<int> {};

TEST_P(ErrorReportInABox, BeepsAndShowsTheCallStackInAMessageBox) {
    ScriptedInteraction user;
    ErrorReport(Show::yes, "outer clsOuter Line : 7", 70, "Kestrel", "Permission denied", GetParam());
    ASSERT_EQ(user.boxes.size(), 1U);
    EXPECT_EQ(
        user.boxes.front(),
        (reporting::MessageBox{
            "An error has occured in the application.   Record the call stack sequence\r\nand the description of the error.\r\n\r\nError Call Stack Sequence \r\n\touter clsOuter Line : 7\r\n\r\nError Number \r\n\t70\r\nDescription\r\n\tPermission denied\r\n\r\n",
            "Unexpected Program Error", reporting::Icon::exclamation, reporting::Buttons::ok}));
    EXPECT_EQ(user.beeps, 1);
    EXPECT_TRUE(user.call_stacks.empty());
}

TEST_P(ErrorReportInABox, BeepsBeforeTheBoxOpens) {
    class Listener final : public test::FailingInteraction {
      public:
        reporting::Answer message_box(const reporting::MessageBox&) override {
            heard += "box";
            return reporting::Answer::ok;
        }
        void beep() override { heard += "beep "; }
        std::string heard;
    } user;
    ErrorReport(Show::yes, "e m ", 70, "Kestrel", "d", GetParam());
    EXPECT_EQ(user.heard, "beep box");
}

INSTANTIATE_TEST_SUITE_P(ModesOtherThanTheWindow, ErrorReportInABox, testing::Values(2, 3, 0, 1, 5, -1));

TEST(ErrorReport, Mode3PassesTheErrorOnAfterShowingItWhenAsked) {
    ScriptedInteraction user;
    try {
        ErrorReport(Show::yes, "outer clsOuter ", 70, "Source", "Permission denied", 3, true);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), 70);
        EXPECT_EQ(error.source(), "Source");
        EXPECT_EQ(error.description(), std::string("\touter clsOuter \r\n") + kDenied);
    }
    EXPECT_EQ(user.boxes.size(), 1U);
}

TEST(ErrorReport, OtherModesNeverPassTheErrorOn) {
    ScriptedInteraction user;
    EXPECT_NO_THROW(ErrorReport(Show::yes, "e m ", 70, "Kestrel", "d", 2, true));
    EXPECT_NO_THROW(ErrorReport(Show::yes, "e m ", 70, "Kestrel", "d", 4, true));
    EXPECT_NO_THROW(ErrorReport(Show::yes, "e m ", 70, "Kestrel", "d", 3, false));
    EXPECT_EQ(user.boxes.size(), 2U);
    EXPECT_EQ(user.call_stacks.size(), 1U);
}

TEST(ErrorReport, Mode3ClearsTheFlagBeforeItPassesOn) {
    ScriptedInteraction user;
    EXPECT_THROW(innermost(), RuntimeError);
    EXPECT_THROW(ErrorReport(Show::yes, "e m ", 70, "Kestrel", "d", 3, true), RuntimeError);
    ErrorReport(Show::yes, "next m ", 5, "Kestrel", "in full", 4);
    EXPECT_EQ(user.call_stacks.front(), report_of_number("next m ", "5", "in full"));
}

TEST(ErrorReport, BracesAndPercentSignsOfADescriptionStandAsTheyAre) {
    EXPECT_EQ(report_of([] { throw RuntimeError(5, "{} %s {0}", "Kestrel", 0); }),
              report_of_number("isWriteMetadata clsISExecuteModel ", "5", "{} %s {0}"));
}

TEST(report_current, TakesStandardExceptionsAsLibraryFailures) {
    EXPECT_EQ(report_of([] { throw std::out_of_range("no such place"); }),
              report_of_number("isWriteMetadata clsISExecuteModel ", "-2147467259", "no such place"));
}

TEST(report_current, TakesLackOfMemoryAsError7) {
    EXPECT_EQ(report_of([] { throw std::bad_alloc(); }),
              report_of_number("isWriteMetadata clsISExecuteModel ", "7", "Out of memory"));
}

TEST(report_current, TakesForeignTypesAsUnspecifiedErrors) {
    const std::string expected =
        report_of_number("isWriteMetadata clsISExecuteModel ", "-2147467259", "Unspecified error");
    EXPECT_EQ(report_of([] { throw 42; }), expected);
    EXPECT_EQ(report_of([] { throw "text"; }), expected);
}

TEST(report_current, NamesTheLineOfTheThrow) {
    const int line = __LINE__ + 1;
    EXPECT_EQ(report_of([] { throw RuntimeError(9, "Subscript out of range"); }),
              report_of_number("isWriteMetadata clsISExecuteModel Line : " + std::to_string(line), "9",
                               "Subscript out of range"));
}

TEST(reported, YieldsTheEmptyResult) {
    ScriptedInteraction user;
    const auto text = []() -> std::string {
        try {
            throw RuntimeError(5, "d");
        } catch (...) {
            return reported<std::string>({"p", "m"});
        }
    };
    EXPECT_EQ(text(), "");
    EXPECT_EQ(user.call_stacks.size(), 1U);
}

}  // namespace
}  // namespace kestrel
