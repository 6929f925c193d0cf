#!/usr/bin/python3
"""Writes tests/data/utm_zone_vectors.txt: the zones of the UTM/UPS grid that
GeographicLib assigns to points, and PROJ's coordinates in the southern UTM
zones and the two UPS zones of the EPSG registry.

Two independent oracles, used here only and never linked into the library:
  - GeographicLib's GeoConvert (Debian geographiclib-tools), `GeoConvert -u`,
    which places a point in its standard UTM/UPS zone by the rules of the
    military grid reference system (zone 32V widened, the Svalbard zones of
    band X, UPS beyond 84 N and 80 S);
  - PROJ through pyproj, on EPSG:32701 ... 32760, 32661 and 32761.

    /usr/bin/python3 tools/make_utm_zone_vectors.py > tests/data/utm_zone_vectors.txt

Lines (blank-separated; numbers in Python's repr, which reads back exactly):
  Z lon lat zone     GeographicLib's zone: "32n", "33s" (number and hemisphere)
                     or "n", "s" (UPS North, UPS South)
  C name lon lat easting northing
                     PROJ on the EPSG system of that catalogue name ("UTM-33S",
                     "UPS North"), metres, easting first whatever the registry's
                     axis order (UPS lists its northing first)

Every Z point lies off the one parallel where the two conventions part:
GeographicLib puts 84 N itself into UPS North; the library, as the extents of
EPSG's UTM zones, keeps it in UTM (tested on its own).
"""
import decimal
import math
import subprocess

import pyproj

EPS = 2.0 ** -20  # about 1e-6 degree, exact in binary and in decimal


def plain(x):
    """x in plain decimal notation, exactly: GeoConvert reads a trailing "e"
    as a hemisphere (east), so no exponents."""
    text = repr(x)
    return text if "e" not in text else format(decimal.Decimal(x), "f")


def geoconvert(points):
    text = "".join("%s %s\n" % (plain(lat), plain(lon)) for lon, lat in points)
    out = subprocess.run(["GeoConvert", "-u"], input=text, capture_output=True, text=True, check=True).stdout
    zones = []
    for line, (lon, lat) in zip(out.splitlines(), points):
        zone = line.split()[0]
        assert zone[-1] in "ns", (lon, lat, line)
        zones.append(zone)
    assert len(zones) == len(points)
    return zones


def zone_points():
    pts = set()
    # Everywhere, off every edge: each zone twice in every band of 8 degrees.
    for i in range(0, 120):
        lon = -180.0 + 3.0 * i + 0.75
        for j in range(0, 45):
            pts.add((lon, -89.0 + 4.0 * j))
    # The edges themselves and the points just beside them.
    lon_edges = [-180.0, -177.0, -6.0, 0.0, 3.0, 6.0, 9.0, 12.0, 18.0, 21.0, 24.0, 30.0, 33.0, 36.0, 42.0, 48.0,
                 174.0, 179.0]
    lat_edges = [-90.0, -80.0, -72.0, -56.0, -8.0, 0.0, 8.0, 56.0, 64.0, 72.0, 80.0, 83.5, 90.0]
    lat_samples = [-85.0, -80.0, -60.0, -0.5, 0.5, 50.0, 55.9, 56.0, 60.0, 63.9, 64.0, 70.0, 72.0, 75.0, 80.0, 83.9]
    for lon in lon_edges:
        for dlon in (-EPS, 0.0, EPS):
            x = lon + dlon
            if x < -180.0 or x >= 180.0:
                continue
            for lat in lat_samples:
                pts.add((x, lat))
    for lat in lat_edges:
        for dlat in (-EPS, 0.0, EPS):
            y = lat + dlat
            if abs(y) > 90.0:
                continue
            for lon in [-179.5, -3.5, 1.0, 2.9, 3.0, 4.5, 7.5, 10.0, 11.9, 15.0, 25.0, 35.0, 40.0, 41.9, 45.0, 100.0]:
                pts.add((lon, y))
    # Just below 84 N (84 itself is where the conventions part).
    for lon in [-100.0, 0.0, 8.9, 9.0, 20.9, 21.0, 32.9, 33.0, 41.9, 42.0, 100.0]:
        for lat in (84.0 - EPS, 84.0 - 1e-9, 84.0 + EPS, 84.0 + 1e-9):
            pts.add((lon, lat))
    return sorted(pts, key=lambda p: (p[1], p[0]))


def east_north(crs):
    """Indices of the easting and the northing among crs's two axes."""
    names = [a.name.lower() for a in crs.axis_info[:2]]
    return (0, 1) if names[0].startswith("e") else (1, 0)


def projected(code, lonlat):
    crs = pyproj.CRS.from_epsg(code)
    t = pyproj.Transformer.from_crs(pyproj.CRS.from_epsg(4326), crs)  # EPSG:4326 takes lat, lon
    ie, in_ = east_north(crs)
    out = []
    for lon, lat in lonlat:
        xy = t.transform(lat, lon)
        e, n = xy[ie], xy[in_]
        assert math.isfinite(e) and math.isfinite(n), (code, lon, lat)
        out.append((lon, lat, e, n))
    return out


def main():
    print("# Zones of the UTM/UPS grid from GeographicLib's GeoConvert -u, and coordinates in")
    print("# the southern UTM zones and UPS from PROJ %s (pyproj %s, EPSG %s); see"
          % (pyproj.proj_version_str, pyproj.__version__, pyproj.database.get_database_metadata("EPSG.VERSION")))
    print("# tools/make_utm_zone_vectors.py.")
    print("# Z lon lat zone | C name lon lat easting northing")
    pts = zone_points()
    for (lon, lat), zone in zip(pts, geoconvert(pts)):
        print("Z %r %r %s" % (lon, lat, zone))

    for zone in range(1, 61):
        lon0 = zone * 6.0 - 183.0
        lonlat = []
        for dlon in (-3.0, -1.25, 0.0, 2.5, 3.0, 9.0):
            for lat in (0.0, -0.001, -10.0, -33.9249, -55.0, -80.0):
                lon = lon0 + dlon
                if lon > 180.0:
                    lon -= 360.0
                lonlat.append((lon, lat))
        for lon, lat, e, n in projected(32700 + zone, lonlat):
            print("C UTM-%dS %r %r %r %r" % (zone, lon, lat, e, n))

    for name, code, lats in (("UPS North", 32661, (60.0, 80.0, 84.0, 84.5, 86.0, 88.0, 89.99, 90.0)),
                             ("UPS South", 32761, (-60.0, -80.0, -80.5, -84.0, -88.0, -89.99, -90.0))):
        lonlat = [(lon, lat) for lat in lats
                  for lon in (-180.0, -135.0, -90.0, -45.0, 0.0, 30.0, 44.0, 90.0, 135.0, 179.5)]
        for lon, lat, e, n in projected(code, lonlat):
            print("C %s %r %r %r %r" % (name.replace(" ", "_"), lon, lat, e, n))


if __name__ == "__main__":
    main()
