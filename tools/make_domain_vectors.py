#!/usr/bin/env python3
"""Writes reference vectors for the engines at the edges of their domains:
grids centred next to the antimeridian, points at the poles, a stereographic
with a polar origin, and oblique Mercator centre lines of every azimuth.

The Lambert conformal conics, Mercator, Albers and the equidistant conic (on the
ellipsoid and the sphere) take a longitude within [-180, 180] as a point of the
earth, its difference from the origin reduced as PROJ reduces it, and a
longitude beyond +-180 as a line carried on across the antimeridian, unreduced:
for those points PROJ is asked with +over, which keeps the difference as given.
A difference of exactly 180 degrees keeps its sign in both.

The oracle is PROJ's cct (Debian proj-bin), used here only and never linked into
the library. The format is that of make_projection_vectors.py:

    tools/make_domain_vectors.py > tests/data/domain_vectors.txt
"""
from make_projection_vectors import cct, emit, frange, proj_figure

WGS = ("WGS84", 6378137.0, 298.257223563)
BESSEL = ("BESSEL", 6377397.155, 299.1528128)
INTL = ("INTL", 6378388.0, 297.0)
SPHERE = ("SPHERE", 6371229.0, 0.0)
GRS = ("GRS80", 6378137.0, 298.257222101)


def figure(f):
    return "%s %r %r" % f, proj_figure(f[1], f[2])


def across_antimeridian(lon0, lat0, half_lon, half_lat, step):
    """Points on both sides of 180 degrees, given as PROJ takes them (within +-180)."""
    pts = []
    for lat in frange(lat0 - half_lat, lat0 + half_lat, step):
        for lon in frange(lon0 - half_lon, lon0 + half_lon, step):
            wrapped = lon - 360.0 if lon > 180.0 else lon
            pts.append((wrapped, lat))
        pts.append((180.0, lat))
        pts.append((-180.0, lat))
    return pts


def main():
    print("# Reference vectors at the edges of the engines' domains, from PROJ (cct);")
    print("# see tools/make_domain_vectors.py. CASE engine name a 1/f parameters...")
    for f in (WGS, SPHERE):
        fig, pf = figure(f)
        # Grids centred one or two degrees from the antimeridian (Fiji's kind).
        pts = across_antimeridian(178.0, -17.0, 5, 3, 0.5)
        emit("sterea %s 0.9999 178.0 -17.0 2000000.0 4000000.0" % fig, pts,
             cct("+proj=sterea +k=0.9999 +lon_0=178 +lat_0=-17 +x_0=2000000 +y_0=4000000 %s" % pf, pts))
        pts = across_antimeridian(179.0, -17.0, 2, 2, 0.25)
        emit("cass %s 179.0 -17.0 2000000.0 4000000.0" % fig, pts,
             cct("+proj=cass +lon_0=179 +lat_0=-17 +x_0=2000000 +y_0=4000000 %s" % pf, pts))
        pts = across_antimeridian(179.0, -17.0, 10, 10, 1.0)
        emit("laea %s 179.0 -17.0 2000000.0 4000000.0" % fig, pts,
             cct("+proj=laea +lon_0=179 +lat_0=-17 +x_0=2000000 +y_0=4000000 %s" % pf, pts))
        pts = across_antimeridian(179.0, -17.0, 5, 5, 0.5)
        emit("omerc_b %s 0.9996 179.0 -17.0 40.0 2000000.0 4000000.0" % fig, pts,
             cct("+proj=omerc +k=0.9996 +lonc=179 +lat_0=-17 +alpha=40 +x_0=2000000 +y_0=4000000 %s" % pf, pts))
        # The poles seen from an oblique origin, and a stereographic with its origin on a pole.
        pts = [(lon, lat) for lat in (-90.0, -89.5, 89.5, 90.0) for lon in frange(-180, 165, 15)]
        emit("sterea %s 0.9999079 5.387638888888889 52.15616055555555 155000.0 463000.0" % fig, pts,
             cct("+proj=sterea +k=0.9999079 +lon_0=5.387638888888889 +lat_0=52.15616055555555 "
                 "+x_0=155000 +y_0=463000 %s" % pf, pts))
        for lat0 in (90.0, -90.0):
            sign = 1 if lat0 > 0 else -1
            pts = [(lon, sign * lat) for lat in frange(60, 90, 2.5) for lon in frange(-180, 165, 15)]
            emit("sterea %s 0.994 0.0 %r 2000000.0 2000000.0" % (fig, lat0), pts,
                 cct("+proj=sterea +k=0.994 +lon_0=0 +lat_0=%r +x_0=2000000 +y_0=2000000 %s" % (lat0, pf), pts))
        pts = [(lon, lat) for lat in (-90.0, 90.0) for lon in frange(-180, 165, 45)]
        emit("omerc_b %s 0.9996 10.0 45.0 30.0 500000.0 200000.0" % fig, pts,
             cct("+proj=omerc +k=0.9996 +lonc=10 +lat_0=45 +alpha=30 +x_0=500000 +y_0=200000 %s" % pf, pts))
        # Oblique Mercator (centre-origin coordinates) with the azimuth all round,
        # except the degenerate +-90 degrees.
        for alpha in frange(-180, 180, 15):
            if abs(abs(alpha) - 90.0) < 1e-9:
                continue
            pts = [(lon, lat) for lat in frange(40, 50, 2.5) for lon in frange(5, 15, 2.5)]
            emit("omerc_b %s 0.9996 10.0 45.0 %r 500000.0 200000.0" % (fig, alpha), pts,
                 cct("+proj=omerc +k=0.9996 +lonc=10 +lat_0=45 +alpha=%r +x_0=500000 +y_0=200000 %s"
                     % (alpha, pf), pts))
    # Krovak moved next to the antimeridian, on its own figure (PROJ's krovak keeps Bessel).
    fig, pf = figure(BESSEL)
    pts = across_antimeridian(178.0, 49.5, 4, 3, 0.5)
    xy = cct("+proj=krovak +lat_0=49.5 +lon_0=178 +alpha=30.28813975277778 +k=0.9999 %s" % pf, pts)
    emit("krovak %s 0.9999 78.5 178.0 49.5 30.28813975277778 90.0 -1.0 1.0 0.0 0.0" % fig, pts, xy)
    # The New Zealand Map Grid reaches past 180 degrees east on the Chatham side.
    fig, pf = figure(INTL)
    pts = across_antimeridian(178.0, -41.0, 3, 2, 0.5)
    emit("nzmg %s 173.0 -41.0 2510000.0 6023150.0" % fig, pts,
         cct("+proj=nzmg +lat_0=-41 +lon_0=173 +x_0=2510000 +y_0=6023150 %s" % pf, pts))
    wrapping_engines()


def beyond_antimeridian(lats, sides):
    """A line carried on past the antimeridian, given unreduced: eastwards past 180
    (side 1) for an origin east of Greenwich, westwards past -180 (side -1) for one
    west of it."""
    return [(side * lon, lat) for lat in lats for lon in frange(180.5, 190, 1.5) for side in sides]


def wrapping(header, proj, inside, beyond):
    """Points within [-180, 180] as PROJ takes them; points beyond with +over."""
    emit(header, inside, cct(proj, inside))
    emit(header, beyond, cct(proj + " +over", beyond))


def wrapping_engines():
    for f in (GRS, SPHERE):
        fig, pf = figure(f)
        # Alaska Albers (EPSG:3338) with its Aleutians west of 180, the point
        # (173, 52.9) among them, and the meridian opposite the origin (26 E).
        inside = across_antimeridian(180.0, 58.0, 8, 6, 2.0) + [(173.0, 52.9), (26.0, 55.0), (26.0, 70.0)]
        wrapping("aea %s 55.0 65.0 -154.0 50.0 0.0 0.0" % fig,
                 "+proj=aea +lat_1=55 +lat_2=65 +lat_0=50 +lon_0=-154 +x_0=0 +y_0=0 %s" % pf,
                 inside, beyond_antimeridian((52.0, 60.0), (-1,)))
        # An equidistant conic centred next to the antimeridian, and its meridian
        # opposite the origin (2 W).
        inside = across_antimeridian(178.0, 50.0, 8, 6, 2.0) + [(-2.0, 50.0), (-2.0, 60.0)]
        wrapping("eqdc %s 40.0 60.0 178.0 50.0 1000000.0 2000000.0" % fig,
                 "+proj=eqdc +lat_1=40 +lat_2=60 +lat_0=50 +lon_0=178 +x_0=1000000 +y_0=2000000 %s" % pf,
                 inside, beyond_antimeridian((45.0, 55.0), (1,)))
    fig, pf = figure(GRS)
    # NAD83 / Alaska zone 10 (EPSG:26940), Lambert conformal conic with two parallels.
    inside = across_antimeridian(180.0, 52.5, 6, 2, 1.0) + [(4.0, 52.0)]
    wrapping("lcc2 %s 53.833333333333336 51.833333333333336 -176.0 51.0 1000000.0 0.0" % fig,
             "+proj=lcc +lat_1=53.833333333333336 +lat_2=51.833333333333336 +lat_0=51 +lon_0=-176 "
             "+x_0=1000000 +y_0=0 %s" % pf, inside, beyond_antimeridian((51.0, 54.0), (-1,)))
    fig, pf = figure(WGS)
    # A Lambert conformal conic with one parallel centred on Fiji.
    inside = across_antimeridian(178.0, -17.0, 6, 4, 1.0) + [(-2.0, -17.0)]
    wrapping("lcc1 %s 0.9999 178.0 -17.0 2000000.0 4000000.0" % fig,
             "+proj=lcc +k_0=0.9999 +lat_1=-17 +lat_0=-17 +lon_0=178 +x_0=2000000 +y_0=4000000 %s" % pf,
             inside, beyond_antimeridian((-20.0, -14.0), (1,)))
    # PDC Mercator (EPSG:3832), the point (-164.655, 3.335) among the Pacific's.
    inside = across_antimeridian(180.0, 0.0, 40, 60, 10.0) + [(-164.655, 3.335), (-30.0, 10.0)]
    wrapping("merc1 %s 1.0 150.0 0.0 0.0" % fig, "+proj=merc +k=1 +lon_0=150 +x_0=0 +y_0=0 %s" % pf,
             inside, beyond_antimeridian((-40.0, 0.0, 40.0), (1,)))
    # World Mercator (EPSG:3395): -180 and 180 are the two edges of the world.
    edges = [(lon, lat) for lat in (-60.0, 0.0, 81.0) for lon in (-180.0, 180.0)]
    wrapping("merc1 %s 1.0 0.0 0.0 0.0" % fig, "+proj=merc +k=1 +lon_0=0 +x_0=0 +y_0=0 %s" % pf,
             edges, beyond_antimeridian((-60.0, 81.0), (1, -1)))
    # WGS 84 / Mercator 41 (EPSG:3994), Mercator with a standard parallel.
    inside = across_antimeridian(180.0, -40.0, 30, 20, 10.0)
    wrapping("merc2 %s -41.0 100.0 0.0 0.0" % fig, "+proj=merc +lat_ts=-41 +lon_0=100 +x_0=0 +y_0=0 %s" % pf,
             inside, beyond_antimeridian((-50.0, -30.0), (1,)))


if __name__ == "__main__":
    main()
