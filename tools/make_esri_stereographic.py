#!/usr/bin/env python3
"""Writes tests/data/esri_stereographic.txt: ESRI WKT texts whose projection is
ESRI's "Stereographic" (Snyder's stereographic, PROJ's +proj=stere, not the
double stereographic of EPSG method 9809), with PROJ's coordinates from reading
each text at points around its origin.

The texts: ESRI:102018 and ESRI:102021 (the polar ones, as PROJ's database
writes them in ESRI form), and oblique ones built on the same pattern with the
parameters of real grids (the Dutch RD origin on Bessel 1841, an origin at 46 N
on GRS 1980, one at 30 S on WGS 84, and one on a sphere).

Usage: tools/make_esri_stereographic.py > tests/data/esri_stereographic.txt
Lines (tab-separated):
  W  id  wkt
  P  id  lon  lat  x  y        (metres)
"""
import pyproj

GEOG = {
    "wgs84": 'GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],'
             'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]',
    "bessel": 'GEOGCS["GCS_Amersfoort",DATUM["D_Amersfoort",SPHEROID["Bessel_1841",6377397.155,299.1528128]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]',
    "grs80": 'GEOGCS["GCS_ETRS_1989",DATUM["D_ETRS_1989",SPHEROID["GRS_1980",6378137.0,298.257222101]],'
             'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]',
    "sphere": 'GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]',
}


def text(name, geog, fe, fn, lon0, k, lat0):
    return (f'PROJCS["{name}",{GEOG[geog]},PROJECTION["Stereographic"],PARAMETER["False_Easting",{fe}],'
            f'PARAMETER["False_Northing",{fn}],PARAMETER["Central_Meridian",{lon0}],'
            f'PARAMETER["Scale_Factor",{k}],PARAMETER["Latitude_Of_Origin",{lat0}],UNIT["Meter",1.0]]')


def main():
    cases = [("ESRI:102018", pyproj.CRS.from_authority("ESRI", "102018").to_wkt("WKT1_ESRI"), 0.0, 90.0),
             ("ESRI:102021", pyproj.CRS.from_authority("ESRI", "102021").to_wkt("WKT1_ESRI"), 0.0, -90.0),
             ("rd", text("RD_Snyder", "bessel", 155000.0, 463000.0, 5.38763888888889, 0.9999079,
                         52.15616055555555), 5.38763888888889, 52.15616055555555),
             ("north46", text("North46", "grs80", 600000.0, 200000.0, 10.0, 0.9999, 46.0), 10.0, 46.0),
             ("south30", text("South30", "wgs84", 0.0, 0.0, 25.0, 1.0, -30.0), 25.0, -30.0),
             ("sphere", text("Sphere40", "sphere", 0.0, 0.0, -100.0, 1.0, 40.0), -100.0, 40.0)]
    for ident, wkt, lon0, lat0 in cases:
        print(f"W\t{ident}\t{wkt}")
        crs = pyproj.CRS.from_wkt(wkt)
        tr = pyproj.Transformer.from_crs(crs.geodetic_crs, crs, always_xy=True)
        for dlon, dlat in [(0, 0), (1.5, 0.5), (-3, -2), (4, 3), (-7, 6), (12, -9)]:
            lat = max(-89.0, min(89.0, lat0 + dlat)) if abs(lat0) < 90 else lat0 - (1 if lat0 > 0 else -1) * (5 + abs(dlat))
            lon = lon0 + dlon * (3 if abs(lat0) == 90 else 1)
            x, y = tr.transform(lon, lat)
            print(f"P\t{ident}\t{lon!r}\t{lat!r}\t{x!r}\t{y!r}")


if __name__ == "__main__":
    main()
