// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "polygons/orientation.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace kestrel::polygons {

namespace {

/// A sum of doubles kept without any rounding, as doubles that do not overlap, the smallest first (Shewchuk, "Adaptive
/// Precision Floating-Point Arithmetic and Fast Robust Geometric Predicates", 1997).
class ExactSum {
  public:
    void add(double value) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_size; ++i) {
            const double sum = value + m_terms[i];
            const double of_term = sum - value;
            const double lost = (value - (sum - of_term)) + (m_terms[i] - of_term);
            if (lost != 0) {
                m_terms[kept++] = lost;
            }
            value = sum;
        }
        if (value != 0) {
            m_terms[kept++] = value;
        }
        m_size = kept;
    }

    void add_product(double a, double b) {
        const double product = a * b;
        add(std::fma(a, b, -product));
        add(product);
    }

    int sign() const {
        const double largest = m_size > 0 ? m_terms[m_size - 1] : 0;
        return largest > 0 ? 1 : (largest < 0 ? -1 : 0);
    }

  private:
    static constexpr std::size_t kMostTerms = 16;
    std::array<double, kMostTerms> m_terms{};
    std::size_t m_size = 0;
};

int exact_orientation(Point a, Point b, Point c) {
    ExactSum sum;
    sum.add_product(a.x, b.y);
    sum.add_product(-a.y, b.x);
    sum.add_product(b.x, c.y);
    sum.add_product(-b.y, c.x);
    sum.add_product(c.x, a.y);
    sum.add_product(-c.y, a.x);
    return sum.sign();
}

}  // namespace

int orientation(Point a, Point b, Point c) {
    constexpr double kHalfUlp = std::numeric_limits<double>::epsilon() / 2;
    constexpr double kErrorBound = (3 + 16 * kHalfUlp) * kHalfUlp;
    const double left = (a.x - c.x) * (b.y - c.y);
    const double right = (a.y - c.y) * (b.x - c.x);
    const double difference = left - right;
    if (std::abs(difference) > kErrorBound * (std::abs(left) + std::abs(right))) {
        return difference > 0 ? 1 : -1;
    }
    return exact_orientation(a, b, c);
}

}  // namespace kestrel::polygons
