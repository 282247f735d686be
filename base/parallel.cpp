// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "base/parallel.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace kestrel::base {

namespace {

constexpr auto kReportInterval = std::chrono::milliseconds(50);

/// The items of a piece of work, and how it stands.
class ItemQueue {
  public:
    explicit ItemQueue(std::size_t count) : m_count(count) {}

    /// The next item, or nothing when all are taken, one has failed, or the work is to stop.
    std::optional<std::size_t> take();
    void done();
    /// Keeps the error of the lowest item. Items are handed out in order, so all lower ones are done or under way, and
    /// the error that is kept does not depend on the threads.
    void failed(std::size_t item, std::exception_ptr error);
    void thread_ended();

    /// Reports progress on the calling thread until all threads have ended.
    void watch(int threads, Progress& progress, std::string_view text);
    /// Whether all items were done; throws the error that was kept.
    bool finish() const;

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_count;
    std::size_t m_next = 0;
    std::size_t m_done = 0;
    int m_ended_threads = 0;
    std::size_t m_failed_item = 0;
    bool m_stop = false;
    std::exception_ptr m_error;
};

std::optional<std::size_t> ItemQueue::take() {
    const std::lock_guard lock(m_mutex);
    if (m_stop || m_next == m_count) {
        return std::nullopt;
    }
    return m_next++;
}

void ItemQueue::done() {
    const std::lock_guard lock(m_mutex);
    ++m_done;
}

void ItemQueue::failed(std::size_t item, std::exception_ptr error) {
    const std::lock_guard lock(m_mutex);
    m_stop = true;
    if (!m_error || item < m_failed_item) {
        m_failed_item = item;
        m_error = std::move(error);
    }
}

void ItemQueue::thread_ended() {
    const std::lock_guard lock(m_mutex);
    ++m_ended_threads;
    m_changed.notify_all();
}

void ItemQueue::watch(int threads, Progress& progress, std::string_view text) {
    std::unique_lock lock(m_mutex);
    while (!m_changed.wait_for(lock, kReportInterval, [&] { return m_ended_threads == threads; })) {
        if (m_stop) {
            continue;  // there is nothing more to ask: what is under way is only waited for
        }
        const double fraction = static_cast<double>(m_done) / static_cast<double>(m_count);
        lock.unlock();
        const bool go_on = progress.report(fraction, text);
        lock.lock();
        m_stop = m_stop || !go_on;
    }
}

bool ItemQueue::finish() const {
    if (m_error) {
        std::rethrow_exception(m_error);
    }
    return m_done == m_count;
}

void run_worker(ItemQueue& queue, int worker, const std::function<void(std::size_t, int)>& work) {
    while (const std::optional<std::size_t> item = queue.take()) {
        try {
            work(*item, worker);
            queue.done();
        } catch (...) {
            queue.failed(*item, std::current_exception());
        }
    }
    queue.thread_ended();
}

}  // namespace

int thread_count(int wanted) {
    return wanted > 0 ? wanted : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

bool for_each_item(std::size_t count, int threads, Progress& progress, std::string_view text,
                   const std::function<void(std::size_t item, int worker)>& work) {
    if (!progress.report(0, text)) {
        return false;
    }
    const int used = static_cast<int>(std::min(static_cast<std::size_t>(threads), count));
    ItemQueue queue(count);
    {
        std::vector<std::jthread> pool;
        for (int worker = 0; worker < used; ++worker) {
            pool.emplace_back([&queue, &work, worker] { run_worker(queue, worker, work); });
        }
        queue.watch(used, progress, text);
    }
    return queue.finish();
}

}  // namespace kestrel::base
