// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/errors.h"

namespace kestrel::base {

/// A keyed collection that keeps the order of insertion and compares keys exactly.
///
/// Entries are counted from 0. A second entry for a key is refused with error 457. Reading a key that is not there
/// yields an empty item and leaves an entry with that empty item behind; use find() to look without leaving a trace.
template <typename Item>
class Dictionary {
  public:
    using Entry = std::pair<std::string, Item>;

    void add(std::string key, Item item, int line = __builtin_LINE()) {
        if (!m_positions.try_emplace(key, m_entries.size()).second) {
            throw RuntimeError(kKeyAlreadyExists, "This key is already associated with an element of this collection",
                               "Kestrel", line);
        }
        m_entries.emplace_back(std::move(key), std::move(item));
    }

    /// The item of `key`; an empty one, kept from now on under `key`, when there was none.
    Item& operator[](const std::string& key) {
        const auto [position, added] = m_positions.try_emplace(key, m_entries.size());
        if (added) {
            m_entries.emplace_back(key, Item());
        }
        return m_entries[position->second].second;
    }

    /// The item of `key`, or nothing. Leaves the dictionary as it is.
    const Item* find(const std::string& key) const {
        const auto position = m_positions.find(key);
        return position == m_positions.end() ? nullptr : &m_entries[position->second].second;
    }

    bool contains(const std::string& key) const { return m_positions.contains(key); }
    std::size_t size() const noexcept { return m_entries.size(); }
    bool empty() const noexcept { return m_entries.empty(); }

    auto begin() const noexcept { return m_entries.begin(); }
    auto end() const noexcept { return m_entries.end(); }

  private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::size_t> m_positions;
};

}  // namespace kestrel::base
