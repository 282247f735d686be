// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"

namespace kestrel {

/// An ordered list of texts, counted from 1: what the model parameter file says of one class or one scenario.
class TextList {
  public:
    void Add(std::string text) { m_texts.push_back(std::move(text)); }

    /// The text at `position`, counted from 1.
    /// \throws RuntimeError 9 when there is none.
    const std::string& Item(std::int32_t position, int line = __builtin_LINE()) const {
        if (position < 1 || position > Count()) {
            throw base::RuntimeError(base::kSubscriptOutOfRange, "Subscript out of range", "Kestrel", line);
        }
        return m_texts[static_cast<std::size_t>(position) - 1];
    }

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(m_texts.size()); }

    auto begin() const noexcept { return m_texts.begin(); }
    auto end() const noexcept { return m_texts.end(); }

  private:
    std::vector<std::string> m_texts;
};

}  // namespace kestrel
