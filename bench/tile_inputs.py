#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Kestrel developers
# SPDX-License-Identifier: MIT
"""Repeats the inputs of a folder side by side: one VRT over links to the raster, one shapefile of moved zones.

    tile_inputs.py SOURCE FOLDER COLUMNS ROWS
"""
import os
import sys

import numpy as np
from osgeo import gdal, ogr

gdal.UseExceptions()
ogr.UseExceptions()

source, folder, columns, rows = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
if os.path.exists(os.path.join(folder, 'done')):
    sys.exit(0)
os.makedirs(folder, exist_ok=True)
first = gdal.Open(os.path.join(source, 'cells.tif'))
size = first.RasterXSize
transform = first.GetGeoTransform()
band = first.GetRasterBand(1)
block = band.GetBlockSize()
pieces = []
for j in range(rows):
    for i in range(columns):
        name = f'cells_{j}_{i}.tif'
        link = os.path.join(folder, name)
        if not os.path.lexists(link):
            os.symlink(os.path.abspath(os.path.join(source, 'cells.tif')), link)
        pieces.append(f'<SimpleSource><SourceFilename relativeToVRT="1">{name}</SourceFilename><SourceBand>1</SourceBand>'
                      f'<SourceProperties RasterXSize="{size}" RasterYSize="{size}" DataType="Byte" '
                      f'BlockXSize="{block[0]}" BlockYSize="{block[1]}"/>'
                      f'<SrcRect xOff="0" yOff="0" xSize="{size}" ySize="{size}"/>'
                      f'<DstRect xOff="{i * size}" yOff="{j * size}" xSize="{size}" ySize="{size}"/></SimpleSource>')
with open(os.path.join(folder, 'cells.tif'), 'w') as vrt:
    wkt = first.GetProjection().replace('&', '&amp;').replace('<', '&lt;')
    vrt.write(f'<VRTDataset rasterXSize="{size * columns}" rasterYSize="{size * rows}"><SRS>{wkt}</SRS>'
              f'<GeoTransform>{", ".join(map(repr, transform))}</GeoTransform>'
              f'<VRTRasterBand dataType="Byte" band="1"><NoDataValue>{band.GetNoDataValue()}</NoDataValue>'
              f'{"".join(pieces)}</VRTRasterBand></VRTDataset>')
zones_file = ogr.Open(os.path.join(source, 'zones.shp'))
zones = zones_file.GetLayer(0)
out = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource(os.path.join(folder, 'zones.shp'))
layer = out.CreateLayer('zones', zones.GetSpatialRef(), ogr.wkbPolygon)
layer.CreateField(ogr.FieldDefn('ZONE', ogr.OFTInteger))
# Every zone is a polygon of one ring: its coordinates stand behind 13 bytes of type and counts.
rings = [bytes(zone.GetGeometryRef().ExportToWkb(ogr.wkbNDR)) for zone in zones]
width, height = size * transform[1], size * transform[5]
number = 0
for tile in range(columns * rows):
    shift = np.array([tile % columns * width, tile // columns * height])
    for ring in rings:
        number += 1
        points = np.frombuffer(ring, '<f8', offset=13).reshape(-1, 2) + shift
        feature = ogr.Feature(layer.GetLayerDefn())
        feature.SetField('ZONE', number)
        feature.SetGeometryDirectly(ogr.CreateGeometryFromWkb(ring[:13] + points.tobytes()))
        layer.CreateFeature(feature)
out = None
open(os.path.join(folder, 'done'), 'w').close()
