// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reporting/forwarding_interaction.h"

namespace kestrel {

/// Keeps the notices of a run for its result, and passes everything on.
class NoticeRecorder final : public reporting::ForwardingInteraction {
  public:
    using ForwardingInteraction::ForwardingInteraction;

    void notice(std::string_view text) override {
        m_notices.emplace_back(text);
        ForwardingInteraction::notice(text);
    }

    std::vector<std::string> take_notices() { return std::exchange(m_notices, {}); }

  private:
    std::vector<std::string> m_notices;
};

}  // namespace kestrel
