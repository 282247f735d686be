#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Makes inputs for benchmarks: land cover in patches, zones, census blocks, parcels and scenarios.

    make_inputs.py FOLDER --cells 20000 --zones 3000 --blocks 20000 --scenarios 30
    make_inputs.py FOLDER --cells 10000 --parcels 200000

Everything is a function of the arguments. Coordinate system EPSG:5070, cells of 30 m.

    cells.tif       bytes, tiles of 512, DEFLATE, NODATA 0
    zones.shp       ZONE (unique), GRP (about 30 neighbours each): polygons that share their borders exactly
    blocks.shp      BLOCK, POP_DEN: the same, finer, with other borders
    parcels.shp     PARCEL (unique), GRP (the street block): lots whose borders meet in T-junctions, rounded to 1 mm
    scenarios.shp   DEV: blobs, some over one another
"""
import argparse
import os

import numpy as np
from osgeo import gdal, ogr, osr

gdal.UseExceptions()
ogr.UseExceptions()

CELL = 30.0
# Half a millimetre off the lattice of the vertices: no cell centre lies on a border, where programs may differ.
WEST, NORTH = 1200015.0005, 2100015.0005
CLASSES = np.array([11, 21, 22, 23, 24, 31, 41, 42, 43, 52, 71, 81, 82, 90, 95], np.uint8)
# Of borders: with more, some would cross themselves, and repairing them would be what is measured.
ROUGHNESS = 0.1
SHARES = np.array([3, 7, 3, 1, 0.2, 2, 18, 12, 6, 9, 9, 11, 13, 3.8, 2])


def reference():
    system = osr.SpatialReference()
    system.ImportFromEPSG(5070)
    return system


class Noise:
    """Value noise: random numbers on lattices of falling spacing, interpolated and summed."""

    def __init__(self, seed, size, spacings):
        self.layers = []
        for i, spacing in enumerate(spacings):
            lattice = np.random.default_rng([seed, i]).random((size // spacing + 3, size // spacing + 3), np.float32)
            self.layers.append((spacing, lattice * np.float32(spacing) ** np.float32(0.8)))

    def rows(self, first, count, size):
        total = np.zeros((count, size), np.float32)
        for spacing, lattice in self.layers:
            y = (np.arange(first, first + count, dtype=np.float32)) / spacing
            x = (np.arange(size, dtype=np.float32)) / spacing
            y0, x0 = y.astype(np.int32), x.astype(np.int32)
            fy, fx = (y - y0)[:, None], (x - x0)[None, :]
            upper = lattice[y0][:, x0] * (1 - fx) + lattice[y0][:, x0 + 1] * fx
            lower = lattice[y0 + 1][:, x0] * (1 - fx) + lattice[y0 + 1][:, x0 + 1] * fx
            total += upper * (1 - fy) + lower * fy
        return total


def make_land_cover(path, size, seed):
    noise = Noise(seed, size, [256, 64, 24, 8])
    detail = Noise(seed + 1, size, [96, 16, 5])
    sample = np.sort(noise.rows(0, min(size, 1500), size).ravel()[::17])
    bounds = np.quantile(sample, np.cumsum(SHARES)[:-1] / SHARES.sum())
    order = np.random.default_rng(seed).permutation(len(CLASSES))
    driver = gdal.GetDriverByName('GTiff')
    options = ['TILED=YES', 'BLOCKXSIZE=512', 'BLOCKYSIZE=512', 'COMPRESS=DEFLATE', 'NUM_THREADS=ALL_CPUS']
    raster = driver.Create(path, size, size, 1, gdal.GDT_Byte, options)
    raster.SetGeoTransform([WEST, CELL, 0, NORTH, 0, -CELL])
    raster.SetProjection(reference().ExportToWkt())
    band = raster.GetRasterBand(1)
    band.SetNoDataValue(0)
    gap = np.float32(np.quantile(sample, 0.004))
    for first in range(0, size, 512):
        count = min(512, size - first)
        height = noise.rows(first, count, size)
        cells = CLASSES[order][np.searchsorted(bounds, height + 0.15 * (detail.rows(first, count, size) - 20))]
        cells[height < gap] = 0
        band.WriteArray(cells, 0, first)
    raster = None


def border(rng, a, b, depth, roughness):
    """A line from a to b whose inner points are moved sideways."""
    points = [a, b]
    for level in range(depth):
        refined = [points[0]]
        for p, q in zip(points, points[1:]):
            length = np.hypot(q[0] - p[0], q[1] - p[1])
            shift = (rng.random() - 0.5) * roughness * length
            middle = ((p[0] + q[0]) / 2 - (q[1] - p[1]) / max(length, 1e-9) * shift,
                      (p[1] + q[1]) / 2 + (q[0] - p[0]) / max(length, 1e-9) * shift)
            refined += [(round(middle[0], 3), round(middle[1], 3)), q]
        points = refined
    return points


def mesh(seed, extent, count, depth):
    """About `count` cells of a mesh with moved corners and rough borders: (column, row, ring) of each."""
    side = max(1, round(np.sqrt(count)))
    step = extent / side
    rng = np.random.default_rng(seed)
    moves = (rng.random((side + 1, side + 1, 2)) - 0.5) * 0.5 * step
    corner = lambda i, j: (round(WEST + i * step + (moves[j, i, 0] if 0 < i < side else 0), 3),
                           round(NORTH - j * step + (moves[j, i, 1] if 0 < j < side else 0), 3))
    across = lambda i, j: border(np.random.default_rng([seed, 1, i, j]), corner(i, j), corner(i + 1, j),
                                 depth if 0 < j < side else 0, ROUGHNESS)
    down = lambda i, j: border(np.random.default_rng([seed, 2, i, j]), corner(i, j), corner(i, j + 1),
                               depth if 0 < i < side else 0, ROUGHNESS)
    upper = [across(i, 0) for i in range(side)]
    for j in range(side):
        lower = [across(i, j + 1) for i in range(side)]
        left = down(0, j)
        for i in range(side):
            right = down(i + 1, j)
            yield i, j, upper[i] + right[1:] + lower[i][::-1][1:] + left[::-1][1:]
            left = right
        upper = lower


def make_layer(path, fields, features):
    driver = ogr.GetDriverByName('ESRI Shapefile')
    source = driver.CreateDataSource(path)
    layer = source.CreateLayer(os.path.basename(path)[:-4], reference(), ogr.wkbPolygon)
    for name, kind in fields:
        layer.CreateField(ogr.FieldDefn(name, kind))
    for values, points in features:
        ring = ogr.Geometry(ogr.wkbLinearRing)
        for x, y in points:
            ring.AddPoint_2D(x, y)
        polygon = ogr.Geometry(ogr.wkbPolygon)
        polygon.AddGeometryDirectly(ring)
        feature = ogr.Feature(layer.GetLayerDefn())
        for (name, _), value in zip(fields, values):
            feature.SetField(name, value)
        feature.SetGeometryDirectly(polygon)
        layer.CreateFeature(feature)
    source = None


def zones(extent, count, seed):
    for number, (i, j, ring) in enumerate(mesh(seed, extent, count, 6)):
        yield (number + 1, 1 + i // 6 + 1000 * (j // 5)), ring


def blocks(extent, count, seed):
    rng = np.random.default_rng(seed)
    for number, (_, _, ring) in enumerate(mesh(seed, extent, count, 3)):
        yield (number + 1, round(float(rng.gamma(1.2, 900)), 2)), ring


def parcels(extent, count, seed):
    """Street blocks in two rows of lots; a lot's back corner need not be a corner of the lot behind it."""
    rng = np.random.default_rng(seed)
    lots = 16
    side = max(1, round(np.sqrt(count / lots)))
    step = extent / side
    number = 0
    for j in range(side):
        for i in range(side):
            west, north = WEST + i * step + 0.05 * step, NORTH - j * step - 0.05 * step
            size = 0.9 * step
            slant = size * 0.04
            for row in range(2):
                cuts = np.concatenate([[0], np.sort(rng.random(lots // 2 - 1)), [1]])
                cuts = 0.5 * cuts + 0.5 * np.linspace(0, 1, lots // 2 + 1)
                y = [north - size * (row / 2), north - size * ((row + 1) / 2)]
                for a, b in zip(cuts, cuts[1:]):
                    number += 1
                    corner = lambda t, k: (round(west + size * t, 3), round(y[k] + slant * t, 3))
                    ring = [corner(a, 0), corner(b, 0), corner(b, 1), corner(a, 1)]
                    yield (number, 1 + i + j * side), ring + ring[:1]


def scenarios(extent, count, seed):
    rng = np.random.default_rng(seed)
    for number in range(count):
        x, y = WEST + extent * rng.random(), NORTH - extent * rng.random()
        angles = np.linspace(0, 2 * np.pi, 60, endpoint=False)
        radii = extent * 0.03 * (0.6 + 0.4 * rng.random(60))
        ring = [(round(x + r * np.cos(a), 3), round(y + r * np.sin(a), 3)) for a, r in zip(angles, radii)]
        yield (number + 1,), ring + ring[:1]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('folder')
    parser.add_argument('--cells', type=int, default=2000, help='rows and columns of the raster')
    parser.add_argument('--zones', type=int, default=0)
    parser.add_argument('--blocks', type=int, default=0)
    parser.add_argument('--parcels', type=int, default=0)
    parser.add_argument('--scenarios', type=int, default=0)
    parser.add_argument('--seed', type=int, default=7)
    choice = parser.parse_args()
    os.makedirs(choice.folder, exist_ok=True)
    extent = choice.cells * CELL
    at = lambda name: os.path.join(choice.folder, name)
    make_land_cover(at('cells.tif'), choice.cells, choice.seed)
    integer, real = ogr.OFTInteger, ogr.OFTReal
    if choice.zones:
        make_layer(at('zones.shp'), [('ZONE', integer), ('GRP', integer)], zones(extent, choice.zones, choice.seed))
    if choice.blocks:
        make_layer(at('blocks.shp'), [('BLOCK', integer), ('POP_DEN', real)],
                   blocks(extent, choice.blocks, choice.seed + 10))
    if choice.parcels:
        make_layer(at('parcels.shp'), [('PARCEL', integer), ('GRP', integer)],
                   parcels(extent, choice.parcels, choice.seed + 20))
    if choice.scenarios:
        make_layer(at('scenarios.shp'), [('DEV', integer)], scenarios(extent, choice.scenarios, choice.seed + 30))


main()
