// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/console_progress.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

namespace kestrel::cli {
namespace {

using namespace std::chrono_literals;

class ConsoleProgressTest : public testing::Test {
  protected:
    ConsoleProgress::Now clock() {
        return [this] { return m_now; };
    }

    std::chrono::steady_clock::time_point m_now{};
    std::ostringstream m_stream;
};

TEST_F(ConsoleProgressTest, DrawsOneLineOverAndOver) {
    ConsoleProgress progress(m_stream, true, clock());
    EXPECT_TRUE(progress.report(0.05, "Reading land cover"));
    m_now += 100ms;
    EXPECT_TRUE(progress.report(1, "Writing"));
    EXPECT_EQ(m_stream.str(), "\r  5% Reading land cover\x1b[K\r100% Writing\x1b[K");
}

TEST_F(ConsoleProgressTest, DrawsAtMostEveryHundredMilliseconds) {
    ConsoleProgress progress(m_stream, true, clock());
    progress.report(0.1, "first");
    m_now += 99ms;
    progress.report(0.2, "too soon");
    m_now += 1ms;
    progress.report(0.3, "in time");
    EXPECT_EQ(m_stream.str(), "\r 10% first\x1b[K\r 30% in time\x1b[K");
}

TEST_F(ConsoleProgressTest, DrawsNothingWhenNotShown) {
    {
        ConsoleProgress progress(m_stream, false, clock());
        EXPECT_TRUE(progress.report(0.5, "Reading"));
        progress.clear_line();
    }
    EXPECT_EQ(m_stream.str(), "");
}

TEST_F(ConsoleProgressTest, TakesItsLineAwayAtTheEnd) {
    {
        ConsoleProgress progress(m_stream, true, clock());
        progress.report(0.5, "Reading");
        m_stream.str("");
    }
    EXPECT_EQ(m_stream.str(), "\r\x1b[K");
}

TEST_F(ConsoleProgressTest, ClearingALineThatIsNotThereWritesNothing) {
    ConsoleProgress progress(m_stream, true, clock());
    progress.clear_line();
    EXPECT_EQ(m_stream.str(), "");
}

TEST_F(ConsoleProgressTest, CutsALongTextBetweenCharacters) {
    ConsoleProgress progress(m_stream, true, clock());
    progress.report(0, std::string(59, 'x') + "ü and more");
    EXPECT_EQ(m_stream.str(), "\r  0% " + std::string(59, 'x') + "\x1b[K");
}

TEST_F(ConsoleProgressTest, AnInterruptStopsTheRunInsteadOfTheProcess) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const StopSignals signals;
        ConsoleProgress progress(m_stream, false, clock());
        EXPECT_TRUE(progress.report(0.1, "working"));
        EXPECT_FALSE(progress.cancelled());
        std::raise(signal);
        EXPECT_FALSE(progress.report(0.2, "working"));
        EXPECT_TRUE(progress.cancelled());
        EXPECT_FALSE(progress.report(0.3, "still stopped"));
    }
}

TEST_F(ConsoleProgressTest, AReaderThatGoesAwayNeitherEndsTheProcessNorStopsTheRun) {
    const StopSignals signals;
    ConsoleProgress progress(m_stream, false, clock());
    std::raise(SIGPIPE);
    EXPECT_TRUE(progress.report(0.1, "working"));
}

TEST_F(ConsoleProgressTest, ASignalThatWasIgnoredStaysIgnored) {
    std::signal(SIGHUP, SIG_IGN);  // as nohup does
    {
        const StopSignals signals;
        std::raise(SIGHUP);
        EXPECT_FALSE(StopSignals::received());
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST_F(ConsoleProgressTest, AfterwardsSignalsActAsBefore) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        static_cast<void>(StopSignals());
        EXPECT_EQ(std::signal(signal, SIG_DFL), SIG_DFL) << signal;
    }
}

}  // namespace
}  // namespace kestrel::cli
