#!/usr/bin/env python3
"""Writes reference vectors for the inverse geodesic problem.

The distances and azimuths come from GeographicLib's GeodSolve (Debian package
geographiclib-tools) in its inverse mode, which solves the problem to
round-off with Karney's series. It is an independent oracle: the library never
links it and the tests only read the committed output.

    tools/make_geodesic_inverse_vectors.py > tests/data/geodesic_inverse.txt

The file lists the figures ("FIGURE tag a 1/f", 1/f 0 for a sphere), then one
geodesic a line in the library's order, longitude first:

    tag lon1 lat1 lon2 lat2 s12 azi1 azi2 m12

distances in metres, angles in degrees; azi2 is the forward azimuth at the
second point; m12 is the reduced length, which says how well the azimuths are
determined by the points (an error dx in a position turns them by dx / m12).
Each input is written as the shortest decimal that reads back as its double,
and handed to GeodSolve as that double's exact decimal expansion, so both
sides start from the same numbers.
"""
import math
import random
import subprocess
import sys
from decimal import Decimal

FIGURES = [
    # tag, semi-major axis, inverse flattening (0: sphere)
    ("WGS84", "6378137", "298.257223563"),
    ("INTL1924", "6378388", "297"),
    ("SPHERE", "6371229", "0"),
    # Flattened to 1/10, where the series' truncation (about 1 mm) is far above
    # round-off: agreement there to round-off shows that the series carry
    # GeographicLib's terms to the sixth order.
    ("FLAT10", "6378137", "10"),
]


def exact(value):
    """The exact decimal expansion of a double, without an exponent."""
    return format(Decimal(value), "f")


def clamp_latitude(lat):
    return max(-90.0, min(90.0, lat))


def cases(rng):
    """(lat1, lon1, lat2, lon2, kind) in GeodSolve's order."""
    out = []

    def add(kind, lat1, lon1, lat2, lon2):
        out.append((clamp_latitude(lat1), lon1, clamp_latitude(lat2), lon2, kind))

    # Fixed cases: coincident points (also on a pole, given with two longitudes),
    # the poles, both points on the equator within and beyond the reach of the
    # equatorial geodesic ((1 - f) 180 degrees), exactly antipodal points,
    # longitudes to be reduced (540, -720) and on the antimeridian.
    fixed = [
        ("coincident", 0.0, 0.0, 0.0, 0.0),
        ("coincident", 48.85, 2.35, 48.85, 2.35),
        ("coincident", -33.9, 18.4, -33.9, 378.4),
        ("coincident", 90.0, 10.0, 90.0, -170.0),
        ("coincident", -90.0, 0.0, -90.0, 30.0),
        ("pole", 90.0, 0.0, -90.0, 0.0),
        ("pole", -90.0, 0.0, 90.0, 30.0),
        ("pole", 90.0, 45.0, 0.0, 0.0),
        ("pole", -90.0, -120.0, 41.5, 77.25),
        ("pole", 52.1, 4.3, 90.0, 4.3),
        ("pole", 52.1, 4.3, 90.0, -175.7),
        ("pole", -10.0, 20.0, -90.0, 100.0),
        ("pole", 89.999999, 0.0, 89.999999, 180.0),
        ("equator", 0.0, 0.0, 0.0, 90.0),
        ("equator", 0.0, 10.0, 0.0, -10.0),
        ("equator", 0.0, 0.0, 0.0, 179.3),
        ("equator", 0.0, 0.0, 0.0, 179.4),
        ("equator", 0.0, 0.0, 0.0, 179.5),
        ("equator", 0.0, 0.0, 0.0, 180.0),
        ("equator", 0.0, 179.9, 0.0, -179.9),
        ("antipodal", 10.0, 0.0, -10.0, 180.0),
        ("antipodal", -45.0, 30.0, 45.0, -150.0),
        ("antipodal", 0.0, 0.0, 0.5, 179.5),
        ("antimeridian", 30.0, 179.5, -30.0, -179.5),
        ("antimeridian", 12.5, -720.0, -33.25, 359.0),
        ("antimeridian", 45.0, 540.0, 45.0, -179.0),
        ("antimeridian", -60.0, 180.0, -60.5, -180.0),
        ("antimeridian", 5.0, -180.0, -5.0, 180.0),
    ]
    for kind, lat1, lon1, lat2, lon2 in fixed:
        add(kind, lat1, lon1, lat2, lon2)

    # Random pairs, uniform on the sphere.
    for _ in range(150):
        add("random", math.degrees(math.asin(rng.uniform(-1, 1))), rng.uniform(-180, 180),
            math.degrees(math.asin(rng.uniform(-1, 1))), rng.uniform(-180, 180))
    # Nearly antipodal points: 1e-6 to 1 degree from the antipode in any direction.
    for _ in range(60):
        lat1 = rng.uniform(-89, 89)
        lon1 = rng.uniform(-180, 180)
        d = 10.0 ** rng.uniform(-6, 0)
        t = rng.uniform(0, 2 * math.pi)
        add("antipodal", lat1, lon1, -lat1 + d * math.sin(t), lon1 + 180 + d * math.cos(t))
    # ... on the equator, or just off it, short of the antipode in longitude.
    for _ in range(20):
        lon1 = rng.uniform(-180, 180)
        lat2 = rng.choice([0.0, 10.0 ** rng.uniform(-6, -1), -(10.0 ** rng.uniform(-6, -1))])
        add("antipodal-equatorial", 0.0, lon1, lat2, lon1 + 180 - 10.0 ** rng.uniform(-6, 0))
    # ... on opposite meridians, off the antipode in latitude.
    for _ in range(20):
        lat1 = rng.uniform(-89, 89)
        lon1 = rng.uniform(-180, 180)
        add("antipodal-meridional", lat1, lon1, -lat1 + rng.choice([-1, 1]) * 10.0 ** rng.uniform(-6, 0),
            lon1 + 180)
    # Near the poles.
    for _ in range(15):
        s1 = rng.choice([-1, 1])
        add("pole", s1 * (90 - 10.0 ** rng.uniform(-8, 0)), rng.uniform(-180, 180),
            math.degrees(math.asin(rng.uniform(-1, 1))), rng.uniform(-180, 180))
    # Across the antimeridian.
    for _ in range(15):
        add("antimeridian", rng.uniform(-80, 80), 180 - 10.0 ** rng.uniform(-6, 1), rng.uniform(-80, 80),
            -180 + 10.0 ** rng.uniform(-6, 1))
    # Short lines, 1 mm to 10 km.
    for _ in range(20):
        lat1 = rng.uniform(-85, 85)
        lon1 = rng.uniform(-180, 180)
        d = 10.0 ** rng.uniform(-8, -1)
        t = rng.uniform(0, 2 * math.pi)
        add("short", lat1, lon1, lat1 + d * math.sin(t), lon1 + d * math.cos(t))
    return out


def main():
    rng = random.Random(20261205)
    points = cases(rng)
    out = sys.stdout
    version = subprocess.run(["GeodSolve", "--version"], capture_output=True, text=True).stdout.split()[-1]
    out.write("# Inverse geodesic problem, reference values from GeodSolve -i (GeographicLib %s)\n" % version)
    out.write("# FIGURE tag a 1/f (0: a sphere)\n")
    out.write("# tag lon1 lat1 lon2 lat2 s12(m) azi1 azi2 m12(m) kind (degrees; longitude first)\n")
    for tag, a, invf in FIGURES:
        out.write("FIGURE %s %s %s\n" % (tag, a, invf))
    for tag, a, invf in FIGURES:
        flattening = "0" if invf == "0" else "1/" + invf
        text = "".join("%s %s %s %s\n" % tuple(exact(v) for v in p[:4]) for p in points)
        result = subprocess.run(["GeodSolve", "-i", "-f", "-p", "12", "-e", a, flattening],
                                input=text, capture_output=True, text=True, check=True)
        lines = result.stdout.splitlines()
        assert len(lines) == len(points)
        for p, line in zip(points, lines):
            # -f: lat1 lon1 azi1 lat2 lon2 azi2 s12 a12 m12 M12 M21 S12
            f = line.split()
            lat1, lon1, lat2, lon2, kind = p
            # GeodSolve echoes the points it read (longitudes reduced): they
            # must be ours to its 15 decimals.
            for mine, echoed in ((lat1, f[0]), (lat2, f[3])):
                assert abs(float(echoed) - mine) <= 1e-15 * max(1.0, abs(mine)), (mine, echoed)
            out.write("%s %r %r %r %r %s %s %s %s %s\n"
                      % (tag, lon1, lat1, lon2, lat2, f[6], f[2], f[5], f[8], kind))


if __name__ == "__main__":
    main()
