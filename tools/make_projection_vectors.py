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


def emit(header, points, results, angular=False, fine=False):
    """angular: the results are degrees (printed finer), and points at the poles of
    the result, where its longitude means nothing, are left out. fine: metres to
    the nanometre, for points so near a pole that a micrometre is 1e-8 degree of
    longitude."""
    print("CASE " + header)
    for (lon, lat), (x, y) in zip(points, results):
        if angular and abs(y) > 89.999:
            continue
        print(("%.9f %.9f %.12f %.12f" if angular else "%.9f %.9f %.9f %.9f" if fine else "%.9f %.9f %.6f %.6f")
              % (lon, lat, x, y))


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
    # The remaining methods on the figures of their real grids, over each method's
    # useful domain around the origin.
    bessel = ("BESSEL", 6377397.155, 299.1528128)
    intl = ("INTL", 6378388.0, 297.0)
    grs = ("GRS80", 6378137.0, 298.257222101)
    wgs = ("WGS84", 6378137.0, 298.257223563)
    everest = ("EVEREST1969", 6377295.664, 300.8017)
    sphere = ("SPHERE", 6371229.0, 0.0)

    def figure(f):
        return "%s %r %r" % f, proj_figure(f[1], f[2])

    rd = (0.9999079, 5.387638888888889, 52.15616055555555, 155000.0, 463000.0)
    for f in (bessel, wgs, sphere):
        fig, pf = figure(f)
        pts = grid(rd[1], rd[2], 15, 1.5)
        emit("sterea %s %r %r %r %r %r" % ((fig,) + rd), pts,
             cct("+proj=sterea +k=%r +lon_0=%r +lat_0=%r +x_0=%r +y_0=%r %s" % (rd + (pf,)), pts))
    for f in (wgs, grs, sphere):
        fig, pf = figure(f)
        for lat0, k in ((90.0, 0.994), (-90.0, 0.994)):
            pts = [(lon, lat) for lat in frange(60, 89, 1.5) for lon in frange(-180, 165, 15)]
            pts = [(lon, lat * (1 if lat0 > 0 else -1)) for lon, lat in pts]
            emit("stere %s %r 0.0 %r 2000000.0 2000000.0" % (fig, k, lat0), pts,
                 cct("+proj=stere +lat_0=%r +lon_0=0 +k=%r +x_0=2000000 +y_0=2000000 %s" % (lat0, k, pf), pts))
        for engine, lat_ts, lon0 in (("sterenp", 70.0, -45.0), ("stereps", -71.0, 0.0)):
            pole = 90.0 if lat_ts > 0 else -90.0
            pts = [(lon, lat * (1 if pole > 0 else -1)) for lat in frange(55, 89, 1.5) for lon in frange(-180, 165, 15)]
            emit("%s %s %r %r 0.0 0.0" % (engine, fig, lat_ts, lon0), pts,
                 cct("+proj=stere +lat_0=%r +lat_ts=%r +lon_0=%r %s" % (pole, lat_ts, lon0, pf), pts))
    # Hotine oblique Mercator: variant A (Michigan), variant B (Swiss LV03), and the
    # rectified skew orthomorphic grid of Malaya with its own grid angle.
    cases = [("omerc_a", grs, (0.9996, -86.0, 45.309166666666667, 337.25556, 2546731.496, -4354009.816),
              "+no_uoff +gamma=337.25556"),
             ("omerc_b", bessel, (1.0, 7.439583333333333, 46.95240555555556, 90.0, 600000.0, 200000.0),
              "+gamma=90"),
             ("rso", everest, (0.99984, 102.25, 4.0, 323.0257905, 323.13010236111114, 804670.24, 0.0), "+no_uoff")]
    for engine, f, params, extra in cases:
        for ff in (f, sphere):
            fig, pf = figure(ff)
            lonc, latc = params[1], params[2]
            pts = grid(lonc, latc, 8, 1.0)
            gamma = ("+gamma=%r" % params[4]) if engine == "rso" else ""
            emit("%s %s %s" % (engine, fig, " ".join(repr(v) for v in params)), pts,
                 cct("+proj=omerc %s %s +k=%r +lonc=%r +lat_0=%r +alpha=%r +x_0=%r +y_0=%r %s"
                     % (extra, gamma, params[0], lonc, latc, params[3], params[-2], params[-1], pf), pts))
    # Far from the centre and up to the poles, in both hemispheres: NAD83 / Alaska
    # zone 1 (variant B), and a variant A centred at 62 S; latitudes past 69
    # degrees and within a hundredth of a degree of the pole, longitudes 40 degrees
    # either side.
    polar = [89.5, 89.9, 89.99]
    far = [("omerc_b", (0.9999, -133.66666666666667, 57.0, 323.1301023611111, 5000000.0, -5000000.0),
            "+gamma=323.1301023611111", 1.0),
           ("omerc_a", (1.0, -60.0, -62.0, 20.0, 0.0, 0.0), "+no_uoff +gamma=20.0", -1.0)]
    for engine, params, extra, side in far:
        fig, pf = figure(grs)
        lonc, latc = params[1], params[2]
        lats = sorted(set(frange(35, 89, 3) + polar))
        pts = [(lon, side * lat) for lat in lats for lon in frange(lonc - 40, lonc + 40, 10)]
        emit("%s %s %s" % (engine, fig, " ".join(repr(v) for v in params)), pts,
             cct("+proj=omerc %s +k=%r +lonc=%r +lat_0=%r +alpha=%r +x_0=%r +y_0=%r %s"
                 % (extra, params[0], lonc, latc, params[3], params[-2], params[-1], pf), pts), fine=True)
    # Krovak: PROJ writes the east/north form (-Y, -X); the classic pair (X, Y) is its
    # negation, swapped. PROJ's krovak keeps the Bessel figure whatever it is told, so
    # only Bessel (the method's own figure) serves as a reference.
    for f in (bessel,):
        fig, pf = figure(f)
        pts = grid(17.0, 49.5, 6, 0.5)
        xy = cct("+proj=krovak +lat_0=49.5 +lon_0=24.833333333333333 +alpha=30.28813975277778 +k=0.9999 %s" % pf, pts)
        common = "0.9999 78.5 24.833333333333333 49.5 30.28813975277778"
        emit("krovak %s %s 0.0 1.0 1.0 0.0 0.0" % (fig, common), pts, [(-y, -x) for x, y in xy])
        emit("krovak %s %s 90.0 -1.0 1.0 0.0 0.0" % (fig, common), pts, xy)
    fig, pf = figure(intl)
    pts = grid(173.0, -41.0, 6, 0.5)
    emit("nzmg %s 173.0 -41.0 2510000.0 6023150.0" % fig, pts,
         cct("+proj=nzmg +lat_0=-41 +lon_0=173 +x_0=2510000 +y_0=6023150 %s" % pf, pts))
    for f in (grs, wgs, sphere):
        fig, pf = figure(f)
        pts = grid(10.0, 52.0, 20, 2.0)
        emit("laea %s 10.0 52.0 4321000.0 3210000.0" % fig, pts,
             cct("+proj=laea +lat_0=52 +lon_0=10 +x_0=4321000 +y_0=3210000 %s" % pf, pts))
        pts = [(lon, lat) for lat in frange(50, 89, 3) for lon in frange(-180, 165, 15)]
        emit("laea %s 0.0 90.0 0.0 0.0" % fig, pts, cct("+proj=laea +lat_0=90 +lon_0=0 %s" % pf, pts))
    for f in (bessel, grs, sphere):
        fig, pf = figure(f)
        # The Cassini series serve a narrow zone about the central meridian.
        pts = grid(13.627203666666667, 52.41864827777778, 2, 0.25)
        emit("cass %s 13.627203666666667 52.41864827777778 40000.0 10000.0" % fig, pts,
             cct("+proj=cass +lat_0=52.41864827777778 +lon_0=13.627203666666667 +x_0=40000 +y_0=10000 %s" % pf, pts))
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
