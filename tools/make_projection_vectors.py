#!/usr/bin/env python3
"""Writes reference vectors for the projection engines.

Independent oracles, used here only and never linked into the library:
  - GeographicLib's TransverseMercatorProj (exact transverse Mercator, Lee/Karney)
    for the transverse Mercator engines;
  - PROJ's cct (Debian proj-bin) for lcc, merc, aea, eqdc and ob_tran.

    tools/make_projection_vectors.py > tests/data/projection_vectors.txt

Each CASE line names an engine, its figure (a, 1/f; 0 for a sphere) and its
parameters in the order of the engine's explicit-value constructor; the point
lines that follow hold lon lat x y from the oracle (degrees, metres).
"""
import subprocess

FIGURES = [
    ("WGS84", 6378137.0, 298.257223563),
    ("GRS80", 6378137.0, 298.257222101),
    ("CLARKE1866", 6378206.4, 6378206.4 / (6378206.4 - 6356583.8)),
    ("SPHERE", 6371229.0, 0.0),
]


def frange(start, stop, step):
    values, v = [], start
    while v <= stop + 1e-9:
        values.append(round(v, 9))
        v += step
    return values


def proj_figure(a, rf):
    return "+R=%r" % a if rf == 0 else "+a=%r +rf=%r" % (a, rf)


def run(command, points):
    text = "".join("%.12f %.12f 0 0\n" % p for p in points)
    out = subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout
    rows = [line.split() for line in out.splitlines() if line.strip()]
    assert len(rows) == len(points), command
    return [(float(r[0]), float(r[1])) for r in rows]


def cct(proj, points):
    return run(["cct", "-d", "9"] + proj.split(), points)


def geographiclib_tm(a, rf, k0, lon0, points):
    # TransverseMercatorProj reads "lat lon" and writes "x y gamma k", no false origin.
    text = "".join("%.12f %.12f\n" % (lat, lon) for lon, lat in points)
    # The exact algorithm needs f > 0; on a sphere the series one is exact (every
    # term of Krueger's series vanishes with n).
    figure = ["-s", "-e", repr(a), "0"] if rf == 0 else ["-e", repr(a), "1/%r" % rf]
    out = subprocess.run(["TransverseMercatorProj"] + figure + ["-k", repr(k0), "-l", repr(lon0), "-p", "9"],
                         input=text, capture_output=True, text=True, check=True).stdout
    return [(float(l.split()[0]), float(l.split()[1])) for l in out.splitlines()]


def grid(lon0, lat0, half, step, lat_limit=89.0):
    return [(lon, lat) for lat in frange(max(lat0 - half, -lat_limit), min(lat0 + half, lat_limit), step)
            for lon in frange(lon0 - half, lon0 + half, step)]


def emit(header, points, results, angular=False):
    """angular: the results are degrees (printed finer), and points at the poles of
    the result, where its longitude means nothing, are left out."""
    print("CASE " + header)
    for (lon, lat), (x, y) in zip(points, results):
        if angular and abs(y) > 89.999:
            continue
        print(("%.9f %.9f %.12f %.12f" if angular else "%.9f %.9f %.6f %.6f") % (lon, lat, x, y))


def main():
    print("# Reference vectors for the projection engines, from GeographicLib (transverse Mercator)")
    print("# and PROJ (cct); see tools/make_projection_vectors.py. CASE engine name a 1/f parameters...")
    for name, a, rf in FIGURES:
        fig = "%s %r %r" % (name, a, rf)
        # Transverse Mercator: within 10 degrees of the central meridian up to latitude 84.
        for (k0, lon0, lat0, fe, fn) in [(0.9996, 9.0, 0.0, 500000.0, 0.0),
                                         (0.9996012717, -2.0, 49.0, 400000.0, -100000.0)]:
            pts = [(lon, lat) for lat in frange(-84, 84, 4) for lon in frange(lon0 - 10, lon0 + 10, 2.5)]
            xy = geographiclib_tm(a, rf, k0, lon0, pts)
            y0 = geographiclib_tm(a, rf, k0, lon0, [(lon0, lat0)])[0][1]
            emit("tm %s %r %r %r %r %r" % (fig, k0, lon0, lat0, fe, fn), pts,
                 [(fe + x, fn + y - y0) for x, y in xy])
        pf = proj_figure(a, rf)
        # Lambert conformal conic, one parallel (NTF Lambert zone II-like) and two (Lambert-93).
        k0, lon0, lat0, fe, fn = 0.99987742, 2.337229167, 46.8, 600000.0, 2200000.0
        pts = grid(lon0, lat0, 20, 2.5)
        emit("lcc1 %s %r %r %r %r %r" % (fig, k0, lon0, lat0, fe, fn), pts,
             cct("+proj=lcc +lat_1=%r +lat_0=%r +lon_0=%r +k_0=%r +x_0=%r +y_0=%r %s"
                 % (lat0, lat0, lon0, k0, fe, fn, pf), pts))
        p1, p2, lonf, latf, fe, fn = 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0
        pts = grid(lonf, latf, 20, 2.5)
        emit("lcc2 %s %r %r %r %r %r %r" % (fig, p1, p2, lonf, latf, fe, fn), pts,
             cct("+proj=lcc +lat_1=%r +lat_2=%r +lat_0=%r +lon_0=%r +x_0=%r +y_0=%r %s"
                 % (p1, p2, latf, lonf, fe, fn, pf), pts))
        # Mercator: a world view for the scale on the equator, a box around a standard parallel.
        pts = [(lon, lat) for lat in frange(-80, 80, 5) for lon in frange(-180, 180, 15)]
        emit("merc1 %s 1.0 0.0 0.0 0.0" % fig, pts, cct("+proj=merc +k_0=1 +lon_0=0 %s" % pf, pts))
        pts = grid(51.0, 0.0, 23, 2.5)
        emit("merc2 %s 42.0 51.0 100.0 -200.0" % fig, pts,
             cct("+proj=merc +lat_ts=42 +lon_0=51 +x_0=100 +y_0=-200 %s" % pf, pts))
        # Albers (Conus Albers) and equidistant conic (USA Contiguous Equidistant Conic).
        for engine, proj in (("aea", "aea"), ("eqdc", "eqdc")):
            p1, p2, lon0, lat0 = (29.5, 45.5, -96.0, 23.0) if engine == "aea" else (33.0, 45.0, -96.0, 39.0)
            fe, fn = 1000.0, 2000.0
            pts = grid(lon0, lat0, 20, 2.5)
            emit("%s %s %r %r %r %r %r %r" % (engine, fig, p1, p2, lon0, lat0, fe, fn), pts,
                 cct("+proj=%s +lat_1=%r +lat_2=%r +lat_0=%r +lon_0=%r +x_0=%r +y_0=%r %s"
                     % (proj, p1, p2, lat0, lon0, fe, fn, pf), pts))
    # Rotated poles on the model sphere. PROJ's ob_tran is told the north pole of the
    # grid (o_lat_p = -south pole latitude, lon_0 = south pole longitude) and turns
    # the grid the other way round (o_lon_p = -rotation angle).
    for lonp, latp, gamma in ((10.0, -40.0, 0.0), (-170.0, -30.0, 15.0), (45.0, -60.0, -25.0)):
        pts = [(lon, lat) for lat in frange(-80, 80, 10) for lon in frange(-180, 165, 15)]
        emit("rot SPHERE 6371229.0 0.0 %r %r %r" % (lonp, latp, gamma), pts,
             run(["cct", "-d", "12", "+proj=pipeline", "+step", "+proj=ob_tran", "+o_proj=longlat",
                  "+o_lon_p=%r" % -gamma, "+o_lat_p=%r" % -latp, "+lon_0=%r" % lonp, "+R=6371229",
                  "+step", "+proj=unitconvert", "+xy_in=rad", "+xy_out=deg"], pts), angular=True)


if __name__ == "__main__":
    main()
