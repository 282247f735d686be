// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "base/progress.h"

namespace kestrel::base {

/// The progress of a part of some work: its fractions are a part of the whole's.
class PartOfProgress final : public Progress {
  public:
    /// \param from, to the part of the whole that this is, 0 to 1.
    PartOfProgress(Progress& whole, double from, double to) : m_whole(whole), m_from(from), m_to(to) {}

    bool report(double fraction, std::string_view text) override {
        return m_whole.report(m_from + fraction * (m_to - m_from), text);
    }
    bool cancelled() const override { return m_whole.cancelled(); }

  private:
    Progress& m_whole;
    double m_from;
    double m_to;
};

}  // namespace kestrel::base
