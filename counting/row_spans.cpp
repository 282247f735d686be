// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "counting/row_spans.h"

#include <algorithm>
#include <queue>

namespace kestrel::counting {

namespace {

bool begins_before(const RowSpan& a, const RowSpan& b) {
    return a.begin != b.begin ? a.begin < b.begin : a.owner < b.owner;
}

/// Spans come feature by feature, and features are numbered along rows as a rule: the few ascending runs of such spans
/// are merged, anything else is sorted.
void put_in_order(std::vector<RowSpan>& spans) {
    constexpr int kFewRuns = 6;
    auto sorted = std::is_sorted_until(spans.begin(), spans.end(), begins_before);
    for (int runs = 1; sorted != spans.end(); ++runs) {
        if (runs == kFewRuns) {
            std::sort(spans.begin(), spans.end(), begins_before);
            return;
        }
        const auto end = std::is_sorted_until(sorted, spans.end(), begins_before);
        std::inplace_merge(spans.begin(), sorted, end, begins_before);
        sorted = end;
    }
}

bool disjoint(const std::vector<RowSpan>& ascending) {
    for (std::size_t i = 1; i < ascending.size(); ++i) {
        if (ascending[i].begin < ascending[i - 1].end) {
            return false;
        }
    }
    return true;
}

struct LowerOwner {
    bool operator()(const RowSpan& a, const RowSpan& b) const { return a.owner < b.owner; }
};

void append(std::vector<RowSpan>& result, std::int32_t begin, std::int32_t end, std::uint32_t owner) {
    if (begin >= end) {
        return;
    }
    if (!result.empty() && result.back().end == begin && result.back().owner == owner) {
        result.back().end = end;
    } else {
        result.push_back({begin, end, owner});
    }
}

/// Sweeps over ascending spans with the ones that cover the present cell in a heap, the highest owner on top.
std::vector<RowSpan> highest_owners(const std::vector<RowSpan>& ascending) {
    std::vector<RowSpan> result;
    std::priority_queue<RowSpan, std::vector<RowSpan>, LowerOwner> open;
    std::int32_t position = 0;
    std::size_t next = 0;
    while (next < ascending.size() || !open.empty()) {
        while (!open.empty() && open.top().end <= position) {
            open.pop();
        }
        if (open.empty()) {
            if (next == ascending.size()) {
                break;
            }
            position = ascending[next].begin;
        }
        while (next < ascending.size() && ascending[next].begin <= position) {
            open.push(ascending[next++]);
        }
        const RowSpan top = open.top();
        const std::int32_t stop = next < ascending.size() ? std::min(top.end, ascending[next].begin) : top.end;
        append(result, position, stop, top.owner);
        position = std::max(position, stop);
    }
    return result;
}

}  // namespace

void resolve_overlaps(std::vector<RowSpan>& spans) {
    put_in_order(spans);
    if (!disjoint(spans)) {
        spans = highest_owners(spans);
    }
}

void unite(std::vector<RowSpan>& spans) {
    std::sort(spans.begin(), spans.end(), begins_before);
    std::size_t last = 0;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        spans[i].owner = 0;
        if (i > 0 && spans[i].begin <= spans[last].end) {
            spans[last].end = std::max(spans[last].end, spans[i].end);
        } else {
            last = i == 0 ? 0 : last + 1;
            spans[last] = spans[i];
        }
    }
    spans.resize(spans.empty() ? 0 : last + 1);
}

}  // namespace kestrel::counting
