// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/progress.h"

namespace kestrel::test {

/// Hears everything, and answers stop from a given report on.
class ListeningProgress final : public base::Progress {
  public:
    explicit ListeningProgress(std::size_t stop_at = static_cast<std::size_t>(-1)) : m_stop_at(stop_at) {}

    bool report(double fraction, std::string_view text) override {
        fractions.push_back(fraction);
        texts.emplace_back(text);
        return !cancelled();
    }
    bool cancelled() const override { return fractions.size() >= m_stop_at; }

    std::vector<double> fractions;
    std::vector<std::string> texts;

  private:
    std::size_t m_stop_at;
};

}  // namespace kestrel::test
