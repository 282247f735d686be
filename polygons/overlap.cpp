// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/overlap.h"

#include <algorithm>
#include <vector>

#include "polygons/intersect.h"

namespace kestrel::polygons {

namespace {

/// The envelopes of a set's features, from the west to the east.
class Envelopes {
  public:
    struct Entry {
        Envelope box;
        std::size_t feature = 0;
    };

    explicit Envelopes(const PolygonSet& polygons) {
        for (std::size_t f = 0; f < polygons.feature_count(); ++f) {
            if (!polygons.empty(f)) {
                m_entries.push_back({polygons.envelope(f), f});
            }
        }
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const Entry& a, const Entry& b) { return a.box.min_x < b.box.min_x; });
    }

    bool done() const { return m_next == m_entries.size(); }
    const Entry& next() const { return m_entries[m_next]; }
    /// The sweep has come to the next entry.
    void open() { m_open.push_back(m_entries[m_next++]); }

    /// Calls check(entry) for the entries that the sweep has come to and that touch `box`, until one answers true;
    /// those that end west of it are passed for good.
    template <typename Check>
    bool any_open(const Envelope& box, Check check) {
        std::erase_if(m_open, [&](const Entry& entry) { return entry.box.max_x < box.min_x; });
        return std::any_of(m_open.begin(), m_open.end(),
                           [&](const Entry& entry) { return entry.box.touches(box) && check(entry); });
    }

  private:
    std::vector<Entry> m_entries;
    std::vector<Entry> m_open;
    std::size_t m_next = 0;
};

bool features_overlap(const PolygonSet& a, std::size_t feature_of_a, const PolygonSet& b, std::size_t feature_of_b) {
    PolygonSet one;
    one.append(a, feature_of_a);
    PolygonSet other;
    other.append(b, feature_of_b);
    bool any = false;
    intersect(one, other, [&](std::size_t, std::size_t, const PolygonSet&) {
        any = true;
        return false;
    });
    return any;
}

}  // namespace

bool overlap(const PolygonSet& a, const PolygonSet& b) {
    // From the west to the east over the envelopes of both, so that only neighbours are compared.
    Envelopes of_a(a);
    Envelopes of_b(b);
    while (!of_a.done() || !of_b.done()) {
        if (of_b.done() || (!of_a.done() && of_a.next().box.min_x <= of_b.next().box.min_x)) {
            const Envelopes::Entry& entry = of_a.next();
            if (of_b.any_open(entry.box, [&](const Envelopes::Entry& other) {
                    return features_overlap(a, entry.feature, b, other.feature);
                })) {
                return true;
            }
            of_a.open();
        } else {
            const Envelopes::Entry& entry = of_b.next();
            if (of_a.any_open(entry.box, [&](const Envelopes::Entry& other) {
                    return features_overlap(a, other.feature, b, entry.feature);
                })) {
                return true;
            }
            of_b.open();
        }
    }
    return false;
}

}  // namespace kestrel::polygons
