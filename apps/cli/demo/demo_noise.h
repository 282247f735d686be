// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>

/// \file
/// Randomness that is the same on every machine: it depends on a seed and on a place, never on a clock, a locale or a
/// library's sequence of numbers, and uses only operations that are exactly defined.
namespace kestrel::cli {

/// A number from 0 up to, not including, 1 that belongs to this seed and place.
inline double unit_random(std::uint64_t seed, std::int64_t i, std::int64_t j = 0) {
    std::uint64_t bits = seed + 0x9E3779B97F4A7C15U * static_cast<std::uint64_t>(i) +
                         0xC2B2AE3D27D4EB4FU * static_cast<std::uint64_t>(j);
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    bits ^= bits >> 31;
    return static_cast<double>(bits >> 11) * 0x1p-53;
}

/// Smooth noise from 0 to 1 with one bump or hollow about every unit of x and y.
inline double smooth_noise(std::uint64_t seed, double x, double y) {
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto ease = [](double t) { return t * t * (3 - 2 * t); };
    const double across = ease(x - left);
    const double down = ease(y - top);
    const auto i = static_cast<std::int64_t>(left);
    const auto j = static_cast<std::int64_t>(top);
    const double upper = unit_random(seed, i, j) * (1 - across) + unit_random(seed, i + 1, j) * across;
    const double lower = unit_random(seed, i, j + 1) * (1 - across) + unit_random(seed, i + 1, j + 1) * across;
    return upper * (1 - down) + lower * down;
}

/// Noise from 0 to 1 with details of ever smaller size: each octave is half as large and half as strong.
inline double fractal_noise(std::uint64_t seed, double x, double y, int octaves) {
    double sum = 0;
    double weight = 1;
    double weights = 0;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * smooth_noise(seed + static_cast<std::uint64_t>(octave) * 0x51ED2701U, x, y);
        weights += weight;
        weight /= 2;
        x *= 2;
        y *= 2;
    }
    return sum / weights;
}

}  // namespace kestrel::cli
