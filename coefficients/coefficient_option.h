// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

namespace kestrel {

/// Which of a class's three coefficients a run takes: one for every zone, or the one that the population density of
/// each place calls for.
enum class CoefficientOption { high, medium, low, by_density };

}  // namespace kestrel
