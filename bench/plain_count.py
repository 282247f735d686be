#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""The plain way: burn the zones into a grid in memory, then count zones and classes together.

    plain_count.py RASTER ZONES FIELD OUT.csv
"""
import sys

import numpy as np
from osgeo import gdal, ogr

gdal.UseExceptions()
ogr.UseExceptions()

raster = gdal.Open(sys.argv[1])
band = raster.GetRasterBand(1)
source = ogr.Open(sys.argv[2])
layer = source.GetLayer(0)
zones = gdal.GetDriverByName('MEM').Create('', raster.RasterXSize, raster.RasterYSize, 1, gdal.GDT_Int32)
zones.SetGeoTransform(raster.GetGeoTransform())
zones.SetProjection(raster.GetProjection())
gdal.RasterizeLayer(zones, [1], layer, options=['ATTRIBUTE=' + sys.argv[3]])
counts = {}
for first in range(0, raster.RasterYSize, 512):
    rows = min(512, raster.RasterYSize - first)
    pairs = zones.GetRasterBand(1).ReadAsArray(0, first, raster.RasterXSize, rows).astype(np.int64).ravel() * 256
    pairs += band.ReadAsArray(0, first, raster.RasterXSize, rows).ravel()
    if pairs.max() < 2 ** 22:
        found = np.bincount(pairs)
        keys = np.nonzero(found)[0]
        found = found[keys]
    else:
        keys, found = np.unique(pairs, return_counts=True)
    for key, cells in zip(keys.tolist(), found.tolist()):
        counts[key] = counts.get(key, 0) + cells
with open(sys.argv[4], 'w') as out:
    for key in sorted(counts):
        if key >= 256:
            out.write(f'{key // 256},{key % 256},{counts[key]}\n')
