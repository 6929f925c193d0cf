#!/usr/bin/env python3
"""Writes reference vectors for the direct geodesic problem.

The end points come from GeographicLib's GeodSolve (Debian package
geographiclib-tools), which solves geodesics to round-off accuracy with
Karney's series. It is an independent oracle: the library never links it and
the tests only read the committed output.

    tools/make_geodesic_vectors.py > tests/data/geodesic_direct.txt
"""
import random
import subprocess
import sys

FIGURES = {
    # tag: (semi-major axis, flattening) as GeodSolve's -e option takes them
    "WGS84": ("6378137", "1/298.257223563"),
    "SPHERE": ("6371229", "0"),
}


def cases(rng):
    # Boundary cases first: no distance, along the equator and a meridian,
    # starts near the poles and at the antimeridian, the longest distance.
    fixed = [
        (0.0, 0.0, 90.0, 0.0),
        (45.0, 10.0, 30.0, 0.0),
        (0.0, 0.0, 90.0, 10000000.0),
        (0.0, 20.0, 0.0, 10000000.0),
        (0.0, -20.0, 180.0, 5000000.0),
        (89.9, 0.0, 45.0, 1000000.0),
        (-89.9, 100.0, 200.0, 1000000.0),
        (60.0, 179.0, 90.0, 300000.0),
        (-33.9, 18.4, 128.0, 8700000.0),
        (51.4778, -0.0014, 90.0, 100000.0),
    ]
    for c in fixed:
        yield c
    for _ in range(300):
        lat = rng.uniform(-85.0, 85.0)
        lon = rng.uniform(-180.0, 180.0)
        azi = rng.uniform(-180.0, 360.0)
        # Distances spread over six decades, up to 10 000 km.
        dist = 10.0 ** rng.uniform(0.0, 7.0)
        yield (lat, lon, azi, dist)


def main():
    rng = random.Random(20261121)
    points = list(cases(rng))
    out = sys.stdout
    out.write("# Direct geodesic problem, reference values from GeodSolve (GeographicLib %s)\n"
              % subprocess.run(["GeodSolve", "--version"], capture_output=True, text=True).stdout.split()[-1])
    out.write("# figure lat1 lon1 azi1 s12(m) lat2 lon2 azi2 (degrees; lon2 unrolled from lon1)\n")
    for tag, (a, f) in FIGURES.items():
        text = "".join("%.12f %.12f %.12f %.6f\n" % p for p in points)
        result = subprocess.run(["GeodSolve", "-e", a, f, "-u", "-p", "10"],
                                input=text, capture_output=True, text=True, check=True)
        for p, line in zip(points, result.stdout.splitlines()):
            out.write("%s %.12f %.12f %.12f %.6f %s\n" % ((tag,) + p + (line,)))


if __name__ == "__main__":
    main()
