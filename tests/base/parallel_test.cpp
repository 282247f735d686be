// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace kestrel::base {
namespace {

/// Hears of progress, and stops after some reports.
class Listener final : public Progress {
  public:
    explicit Listener(int reports_until_stop = 1000000) : m_left(reports_until_stop) {}
    bool report(double fraction, std::string_view text) override {
        EXPECT_EQ(std::this_thread::get_id(), m_thread) << "progress is told on the caller's thread only";
        EXPECT_GE(fraction, m_fraction);
        EXPECT_LE(fraction, 1);
        EXPECT_EQ(text, "Working");
        m_fraction = fraction;
        ++reports;
        return --m_left > 0;
    }
    bool cancelled() const override { return m_left <= 0; }
    int reports = 0;

  private:
    int m_left;
    double m_fraction = 0;
    std::thread::id m_thread = std::this_thread::get_id();
};

TEST(Parallel, EveryItemIsDoneOnceByAWorkerInRange) {
    for (const int threads : {1, 2, 7}) {
        std::vector<std::atomic<int>> done(1000);
        Listener listener;
        EXPECT_TRUE(for_each_item(done.size(), threads, listener, "Working", [&](std::size_t item, int worker) {
            EXPECT_GE(worker, 0);
            EXPECT_LT(worker, threads);
            ++done[item];
        }));
        for (const auto& count : done) {
            EXPECT_EQ(count, 1);
        }
    }
}

TEST(Parallel, NoItemsAreDoneAtOnce) {
    Listener listener;
    EXPECT_TRUE(for_each_item(0, 3, listener, "Working", [](std::size_t, int) { FAIL() << "there is no item"; }));
}

TEST(Parallel, TheErrorOfTheLowestItemIsThrownWhateverTheThreads) {
    for (const int threads : {1, 2, 5}) {
        Listener listener;
        try {
            for_each_item(100, threads, listener, "Working", [](std::size_t item, int) {
                if (item >= 20) {
                    throw std::runtime_error(std::to_string(item));
                }
                std::this_thread::sleep_for(std::chrono::microseconds(100 * (item % 3)));
            });
            FAIL() << "nothing thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "20") << threads << " threads";
        }
    }
}

TEST(Parallel, NoItemIsBegunAfterStop) {
    Listener listener(2);
    std::atomic<int> begun = 0;
    EXPECT_FALSE(for_each_item(100000, 2, listener, "Working", [&](std::size_t, int) {
        ++begun;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }));
    EXPECT_LT(begun, 100000);
    EXPECT_EQ(listener.reports, 2);
}

TEST(Parallel, WorkHoweverShortIsToldOf) {
    Listener listener;
    EXPECT_TRUE(for_each_item(1, 1, listener, "Working", [](std::size_t, int) {}));
    EXPECT_GE(listener.reports, 1);
}

TEST(Parallel, NothingIsBegunWhenStopWasAskedForBefore) {
    Listener listener(1);
    EXPECT_FALSE(for_each_item(5, 2, listener, "Working", [](std::size_t, int) { FAIL() << "an item was begun"; }));
    EXPECT_EQ(listener.reports, 1);
}

TEST(Parallel, WhoHasSaidStopIsNotAskedAgainWhileWorkEnds) {
    Listener listener(2);
    EXPECT_FALSE(for_each_item(50, 2, listener, "Working",
                               [](std::size_t, int) { std::this_thread::sleep_for(std::chrono::milliseconds(180)); }));
    EXPECT_EQ(listener.reports, 2);
}

TEST(Parallel, ThreadsAreAsManyAsAskedForOrAsCores) {
    EXPECT_EQ(thread_count(3), 3);
    EXPECT_GE(thread_count(0), 1);
}

}  // namespace
}  // namespace kestrel::base
