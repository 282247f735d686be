// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "counting/zone_counts.h"
#include "data/field.h"

namespace kestrel {

/// Puts features of the same analysis value into one group. Groups stand in ascending order of the value: numbers by
/// size, text by its bytes; features without a value (NULL or empty text) are the first group.
class ZoneGroups {
  public:
    ZoneGroups() = default;
    /// \param values of the analysis field, one for each feature.
    explicit ZoneGroups(const std::vector<data::Value>& values);

    std::size_t count() const noexcept { return m_values.size(); }
    /// The group of each feature.
    const std::vector<std::uint32_t>& group_of() const noexcept { return m_group_of; }
    /// The value of a group, and its text, which is the zone's key.
    const data::Value& value(std::size_t group) const { return m_values[group]; }
    const std::string& text(std::size_t group) const { return m_texts[group]; }

  private:
    std::vector<std::uint32_t> m_group_of;
    std::vector<data::Value> m_values;
    std::vector<std::string> m_texts;
};

/// The keys under which the pieces of zones are tabulated: the analysis value alone, or with the density class of the
/// polygon that covers the piece.
class ZoneKeys {
  public:
    /// Digit of a piece that no density polygon covers; it belongs to no zone.
    static constexpr std::uint8_t kUncovered = 0;

    /// Keys without density.
    explicit ZoneKeys(const ZoneGroups& groups) : m_groups(&groups) {}
    /// Keys with the density class digit (1 to 3) of each density polygon.
    ZoneKeys(const ZoneGroups& groups, std::vector<std::uint8_t> density_digits)
        : m_groups(&groups), m_digits(std::move(density_digits)), m_by_density(true) {}

    static constexpr std::uint32_t kNoKey = UINT32_MAX;
    /// Number of the key of a piece, ascending in the order of zones and digits; kNoKey when the piece drops out.
    std::uint32_t key(std::uint32_t zone, std::uint32_t overlay) const {
        const std::uint32_t group = m_groups->group_of()[zone];
        if (!m_by_density) {
            return group;
        }
        return overlay == counting::kNoOverlay ? kNoKey : group * kDigits + m_digits[overlay];
    }
    /// One more than the largest number that a key may have.
    std::size_t count() const noexcept { return m_groups->count() * (m_by_density ? kDigits : 1); }
    std::string text(std::uint32_t key) const;

  private:
    static constexpr std::uint32_t kDigits = 4;  // room for a digit from 1 to 3

    const ZoneGroups* m_groups;
    std::vector<std::uint8_t> m_digits;
    bool m_by_density = false;
};

}  // namespace kestrel
