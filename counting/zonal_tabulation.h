// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include "base/progress.h"
#include "counting/tabulation_input.h"
#include "counting/zone_counts.h"
#include "data/raster.h"

namespace kestrel::counting {

/// Counts, in one pass over the raster, the cells of every class in every piece of every zone.
///
/// A cell belongs to the polygon that contains its centre; a centre on an edge belongs to the polygon on its east, or
/// on its north where the edge is level, so polygons that share a border neither both own a cell nor both lose it. Both
/// this and `touches_nodata` are decided exactly on the given coordinates. The grid of zones is never laid out: bands
/// of rows are read, the polygons' edges swept over them, and the spans between edges counted.
///
/// \param threads 0 for as many as there are cores. The result does not depend on it.
/// \param progress hears the share of the raster's rows that is done, as a fraction of this call. When it answers stop,
///        the result is incomplete and must not be used.
/// \throws RuntimeError as RasterDataset::read() does.
ZoneCounts tabulate(const data::RasterDataset& raster, const TabulationInput& input, int threads,
                    base::Progress& progress);

}  // namespace kestrel::counting
