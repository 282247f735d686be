// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "contracts/run_result.h"

namespace kestrel::hosting {

/// The total of all zones, areas with 6 decimals as the zones have them; its percent is that of the whole area.
contracts::ZoneResult total_of(const contracts::RunResult& result);

}  // namespace kestrel::hosting
