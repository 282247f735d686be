// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "engine/zone_keys.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "platform/zone_counts.h"

namespace kestrel {

using platform::Value;

namespace {

constexpr std::uint32_t kDigits = 4;  // room for a digit from 1 to 3

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
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return before(values[a], values[b]); });
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i == 0 || before(values[order[i - 1]], values[order[i]])) {
            m_values.push_back(values[order[i]]);
            m_texts.push_back(platform::text_of(values[order[i]]));
        }
        m_group_of[order[i]] = static_cast<std::uint32_t>(m_values.size() - 1);
    }
}

std::uint32_t ZoneKeys::key(std::uint32_t zone, std::uint32_t overlay) const {
    const std::uint32_t group = m_groups->group_of()[zone];
    if (!m_by_density) {
        return group;
    }
    return overlay == platform::kNoOverlay ? kNoKey : group * kDigits + m_digits[overlay];
}

std::string ZoneKeys::text(std::uint32_t key) const {
    if (!m_by_density) {
        return m_groups->text(key);
    }
    return m_groups->text(key / kDigits) + "#" + static_cast<char>('0' + key % kDigits);
}

}  // namespace kestrel
