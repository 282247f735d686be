// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <signal.h>

#include <array>
#include <chrono>
#include <functional>
#include <ostream>
#include <string>

#include "base/progress.h"

namespace kestrel::cli {

/// From construction to destruction, an interrupt (Ctrl-C), a hang-up of the terminal or a termination request does not
/// end the process but is remembered, so that a run can stop, clean up and put an older output back. Nor does a write
/// end it that nobody reads any more. What the process ignored before, it goes on ignoring.
class StopSignals {
  public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Whether the latest of these objects has seen a request to stop; also after its end.
    static bool received() noexcept;

  private:
    static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGPIPE};

    std::array<struct sigaction, kSignals.size()> m_before{};
};

/// A run's progress as one line that is drawn over and over at the end of a terminal.
class ConsoleProgress final : public base::Progress {
  public:
    using Now = std::function<std::chrono::steady_clock::time_point()>;

    /// \param stream where the line is drawn, when `shown`: only a terminal can draw over a line.
    /// \param now the present time; a line is drawn at most every 100 milliseconds.
    explicit ConsoleProgress(std::ostream& stream, bool shown, Now now = std::chrono::steady_clock::now);
    ~ConsoleProgress() override { clear_line(); }
    ConsoleProgress(const ConsoleProgress&) = delete;
    ConsoleProgress& operator=(const ConsoleProgress&) = delete;

    bool report(double fraction, std::string_view text) override;
    bool cancelled() const override { return StopSignals::received(); }

    /// Takes the line away, so that something else can be written; the next report draws it again.
    void clear_line();

  private:
    std::ostream& m_stream;
    bool m_shown;
    Now m_now;
    bool m_drawn = false;
    bool m_ever_drawn = false;
    std::chrono::steady_clock::time_point m_last{};
};

}  // namespace kestrel::cli
