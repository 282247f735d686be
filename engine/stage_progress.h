// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "platform/contracts/progress.h"

namespace kestrel {

/// The progress of one stage: its fractions are a part of the whole run's.
class StageProgress final : public platform::Progress {
  public:
    /// \param from, to the part of the run that the stage takes, 0 to 1.
    StageProgress(platform::Progress& run, double from, double to) : m_run(run), m_from(from), m_to(to) {}

    bool report(double fraction, std::string_view text) override {
        return m_run.report(m_from + fraction * (m_to - m_from), text);
    }
    bool cancelled() const override { return m_run.cancelled(); }

  private:
    platform::Progress& m_run;
    double m_from;
    double m_to;
};

}  // namespace kestrel
