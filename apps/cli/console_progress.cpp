// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "apps/cli/console_progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <csignal>

#include "base/text.h"

namespace kestrel::cli {

namespace {

using namespace std::chrono_literals;

volatile std::sig_atomic_t g_stop = 0;  // set by the signal handler, which may touch nothing else

extern "C" void remember_stop(int) {
    g_stop = 1;
}

// Longer lines would wrap, and a wrapped line cannot be drawn over.
constexpr std::size_t kLongestText = 60;

}  // namespace

StopSignals::StopSignals() {
    g_stop = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        struct sigaction action = {};
        action.sa_handler = kSignals[i] == SIGPIPE ? SIG_IGN : remember_stop;
        action.sa_flags = SA_RESTART;
        ::sigaction(kSignals[i], nullptr, &m_before[i]);
        if (m_before[i].sa_handler != SIG_IGN) {
            ::sigaction(kSignals[i], &action, nullptr);
        }
    }
}

StopSignals::~StopSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &m_before[i], nullptr);
    }
}

bool StopSignals::received() noexcept {
    return g_stop != 0;
}

ConsoleProgress::ConsoleProgress(std::ostream& stream, bool shown, Now now)
    : m_stream(stream), m_shown(shown), m_now(std::move(now)) {}

bool ConsoleProgress::report(double fraction, std::string_view text) {
    if (m_shown) {
        const auto now = m_now();
        if (!m_ever_drawn || now - m_last >= 100ms) {
            const int percent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
            m_stream << fmt::format("\r{:3}% {}\x1b[K", percent, base::first_bytes(text, kLongestText)) << std::flush;
            m_last = now;
            m_drawn = true;
            m_ever_drawn = true;
        }
    }
    return !cancelled();
}

void ConsoleProgress::clear_line() {
    if (m_drawn) {
        m_stream << "\r\x1b[K" << std::flush;
        m_drawn = false;
    }
}

}  // namespace kestrel::cli
