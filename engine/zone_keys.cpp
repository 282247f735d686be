// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/zone_keys.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kestrel {

using data::Value;

namespace {

bool without_value(const Value& value) {
    const auto* text = std::get_if<std::string>(&value);
    return std::holds_alternative<std::monostate>(value) || (text != nullptr && text->empty());
}

/// NULL and empty text are the same and come first; otherwise the order of the values.
bool before(const Value& a, const Value& b) {
    if (without_value(a) || without_value(b)) {
        return without_value(a) && !without_value(b);
    }
    return a < b;
}

}  // namespace

ZoneGroups::ZoneGroups(const std::vector<Value>& values) : m_group_of(values.size()) {
    std::vector<std::uint32_t> order(values.size());
    std::iota(order.begin(), order.end(), 0U);
    const auto is_before = [&](std::uint32_t a, std::uint32_t b) { return before(values[a], values[b]); };
    if (!std::is_sorted(order.begin(), order.end(), is_before)) {  // numbers of zones often ascend
        std::stable_sort(order.begin(), order.end(), is_before);
    }
    m_values.reserve(order.size());
    m_texts.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i == 0 || before(values[order[i - 1]], values[order[i]])) {
            m_values.push_back(values[order[i]]);
            m_texts.push_back(data::text_of(values[order[i]]));
        }
        m_group_of[order[i]] = static_cast<std::uint32_t>(m_values.size() - 1);
    }
}

std::string ZoneKeys::text(std::uint32_t key) const {
    if (!m_by_density) {
        return m_groups->text(key);
    }
    return m_groups->text(key / kDigits) + "#" + static_cast<char>('0' + key % kDigits);
}

}  // namespace kestrel
