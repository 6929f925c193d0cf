#!/usr/bin/env python3
"""Writes reference vectors for the polar stereographic engines over the whole
sphere of latitudes they draw: from the pole (and within metres of it) across the
equator down to 80 degrees on the other side, on the earth's figures and on a
figure flattened to 1/10, whose eccentricity lies beyond the short series the
engines use for the earth's.

Independent oracle, used here only and never linked into the library: PROJ's cct
(Debian proj-bin), +proj=stere.

    tools/make_polar_vectors.py > tests/data/polar_vectors.txt

The format is that of tests/data/projection_vectors.txt: each CASE line names an
engine, its figure (a, 1/f; 0 for a sphere) and its parameters in the order of
the engine's explicit-value constructor; the point lines hold lon lat x y
(degrees, metres to the nanometre).
"""
import subprocess

FIGURES = [
    ("WGS84", 6378137.0, 298.257223563),
    ("SPHERE", 6371229.0, 0.0),
    ("FLAT10", 6378137.0, 10.0),
]

# Latitudes seen from the pole: the pole itself, 111 m, 1.1 km and 11 km from it,
# then every 5 degrees across the equator to 80 degrees beyond it.
LATITUDES = [90.0, 89.999, 89.99, 89.9] + [float(v) for v in range(85, -85, -5)]
LONGITUDES = [float(v) for v in range(-180, 180, 30)] + [179.9999]


def cct(proj, points):
    text = "".join("%.12f %.12f 0 0\n" % p for p in points)
    out = subprocess.run(["cct", "-d", "9"] + proj.split(), input=text, capture_output=True, text=True,
                         check=True).stdout
    rows = [line.split() for line in out.splitlines() if line.strip()]
    assert len(rows) == len(points), proj
    return [(float(r[0]), float(r[1])) for r in rows]


def emit(header, points, results):
    print("CASE " + header)
    for (lon, lat), (x, y) in zip(points, results):
        print("%.9f %.9f %.9f %.9f" % (lon, lat, x, y))


def main():
    print("# Reference vectors for the polar stereographic engines from PROJ (cct); see")
    print("# tools/make_polar_vectors.py. CASE engine name a 1/f parameters...")
    for name, a, rf in FIGURES:
        fig = "%s %r %r" % (name, a, rf)
        pf = "+R=%r" % a if rf == 0 else "+a=%r +rf=%r" % (a, rf)
        for pole in (1.0, -1.0):
            pts = [(lon, pole * lat) for lat in LATITUDES for lon in LONGITUDES]
            # Variant A (UPS's scale at the pole) and variant B (NSIDC's and the
            # Antarctic's standard parallels).
            emit("stere %s 0.994 0.0 %r 2000000.0 2000000.0" % (fig, 90.0 * pole), pts,
                 cct("+proj=stere +lat_0=%r +lon_0=0 +k=0.994 +x_0=2000000 +y_0=2000000 %s" % (90.0 * pole, pf),
                     pts))
            engine, lat_ts, lon0 = ("sterenp", 70.0, -45.0) if pole > 0 else ("stereps", -71.0, 0.0)
            emit("%s %s %r %r 0.0 0.0" % (engine, fig, lat_ts, lon0), pts,
                 cct("+proj=stere +lat_0=%r +lat_ts=%r +lon_0=%r %s" % (90.0 * pole, lat_ts, lon0, pf), pts))


if __name__ == "__main__":
    main()
