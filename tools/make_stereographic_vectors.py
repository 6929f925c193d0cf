#!/usr/bin/env python3
"""Writes reference vectors for the stereographic family and the pole-origin
Lambert grids: Snyder's ellipsoidal stereographic (PROJ's stere at any origin),
the oblique (double) stereographic with its origin on a pole (PROJ's sterea),
the polar stereographic grids of the EPSG registry (variants A and B) and the
Lambert conformal conic grids whose false origin is a pole (Belgium).

The oracle is PROJ through pyproj (Debian python3-pyproj), used here only and
never linked into the library; the registry's systems are taken by their EPSG
codes, the others by PROJ strings.

    /usr/bin/python3 tools/make_stereographic_vectors.py > tests/data/stereographic_vectors.txt

Each CASE line names an engine, a label, the figure (a, 1/f; 0 for a sphere) and
the parameters in the order of the engine's explicit-value constructor. The
point lines that follow hold lon lat x y (degrees, metres), and for the Snyder
cases also PROJ's meridian convergence (degrees).
"""
import math

import pyproj

WGS84 = ("WGS84", 6378137.0, 298.257223563)
GRS80 = ("GRS80", 6378137.0, 298.257222101)
BESSEL = ("BESSEL", 6377397.155, 299.1528128)
INTL = ("INTL", 6378388.0, 297.0)
CLARKE1866 = ("CLARKE1866", 6378206.4, 6378206.4 / (6378206.4 - 6356583.8))
SPHERE = ("SPHERE", 6371229.0, 0.0)

# A WKT angular unit of 0.0174532925199433 rad (ESRI's and GDAL's 16 digits) makes
# 90 degrees a rounding more than 90 once converted; the engines get that value.
OVER_THE_POLE = 90.0 * (0.0174532925199433 / (math.pi / 180.0))


def frange(start, stop, step):
    values, v = [], start
    while v <= stop + 1e-9:
        values.append(round(v, 9))
        v += step
    return values


def proj_figure(f):
    return "+R=%r" % f[1] if f[2] == 0 else "+a=%r +rf=%r" % (f[1], f[2])


def case(engine, label, f, params):
    print("CASE %s %s %r %r %s" % (engine, label, f[1], f[2], " ".join(repr(p) for p in params)))


def points(pts, forward, convergence=None):
    for lon, lat in pts:
        x, y = forward(lon, lat)
        assert math.isfinite(x) and math.isfinite(y), (lon, lat)
        line = "%.9f %.9f %.6f %.6f" % (lon, lat, x, y)
        if convergence is not None:
            line += " %.12f" % convergence(lon, lat)
        print(line)


def proj_string(text):
    p = pyproj.Proj(text)
    return (lambda lon, lat: p(lon, lat, errcheck=True)), p


def epsg(code):
    t = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:%d" % code, always_xy=True)
    return lambda lon, lat: t.transform(lon, lat, errcheck=True)


def around(lon0, lat0, half, step, lat_limit=89.5):
    return [(lon, lat) for lat in frange(max(lat0 - half, -lat_limit), min(lat0 + half, lat_limit), step)
            for lon in frange(lon0 - half, lon0 + half, step)]


def polar_cap(pole, lat_from, step_lat, step_lon, with_pole=True):
    sign = 1.0 if pole > 0 else -1.0
    pts = [(lon, sign * lat) for lat in frange(lat_from, 89.5, step_lat) for lon in frange(-180.0, 170.0, step_lon)]
    if with_pole:
        pts.append((0.0, sign * 90.0))
    return pts


def snyder_cases():
    # Snyder's stereographic, PROJ's stere at an oblique, equatorial or polar origin:
    # (label, figure, k0, lon0, lat0, FE, FN, points).
    rd = (0.9999079, 5.38763888888889, 52.1561605555556, 155000.0, 463000.0)
    cases = [
        ("RD-Bessel", BESSEL, rd, around(rd[1], rd[2], 15, 1.5)),
        ("RD-Bessel-wide", BESSEL, rd,
         [(lon, lat) for lat in frange(-30, 85, 10) for lon in frange(rd[1] - 120, rd[1] + 120, 20)]),
        ("lat46-WGS84", WGS84, (0.9999, 10.0, 46.0, 600000.0, 200000.0), around(10.0, 46.0, 20, 2.0)),
        ("lat-30-GRS80", GRS80, (1.0, 25.0, -30.0, 0.0, 0.0), around(25.0, -30.0, 20, 2.0)),
        ("equator-Clarke1866", CLARKE1866, (1.0, -60.0, 0.0, 1000.0, -2000.0), around(-60.0, 0.0, 20, 2.0)),
        ("lat52-sphere", SPHERE, (0.9999, 5.0, 52.0, 155000.0, 463000.0), around(5.0, 52.0, 20, 2.0)),
        ("north-pole-WGS84", WGS84, (0.994, 0.0, 90.0, 2000000.0, 2000000.0), polar_cap(90, 55, 1.5, 15)),
        ("south-pole-GRS80", GRS80, (0.97276901289, 70.0, -90.0, 6000000.0, 6000000.0), polar_cap(-90, 55, 1.5, 15)),
        ("north-pole-sphere", SPHERE, (1.0, -45.0, 90.0, 0.0, 0.0), polar_cap(90, 55, 1.5, 15)),
    ]
    for label, f, (k0, lon0, lat0, fe, fn), pts in cases:
        forward, p = proj_string("+proj=stere +lat_0=%r +lon_0=%r +k=%r +x_0=%r +y_0=%r %s"
                                 % (lat0, lon0, k0, fe, fn, proj_figure(f)))
        case("snyder", label, f, (k0, lon0, lat0, fe, fn))
        points(pts, forward, lambda lon, lat: p.get_factors(lon, lat, errcheck=True).meridian_convergence)


def sterea_pole_cases():
    # The oblique (double) stereographic with its origin on a pole: GRS 80, k = 1,
    # no false origin, and the same origin given a rounding beyond the pole.
    for lat0 in (90.0, -90.0):
        forward, _ = proj_string("+proj=sterea +lat_0=%r +lon_0=0 +k=1 +x_0=0 +y_0=0 %s" % (lat0, proj_figure(GRS80)))
        pts = polar_cap(lat0, 30, 3.0, 15)
        for given, label in ((lat0, "exact"), (math.copysign(OVER_THE_POLE, lat0), "unit-rounding")):
            case("sterea", "GRS80-pole-%s" % label, GRS80, (1.0, 0.0, given, 0.0, 0.0))
            points(pts, forward)


def lambert_pole_cases():
    # Lambert conformal conic 2SP with the false origin on a pole: Belgian Lambert 72
    # (EPSG:31370) and Belge Lambert 50 (EPSG:21500, on the Brussels meridian) by
    # their EPSG definitions, the first also with its origin a rounding beyond the
    # pole, and the mirror image of Lambert 72 about the equator (south-pole origin).
    belgium = [(lon, lat) for lat in frange(49.0, 52.0, 0.25) for lon in frange(2.0, 7.0, 0.25)]
    wide = [(lon, lat) for lat in frange(30.0, 80.0, 5.0) for lon in frange(-60.0, 60.0, 10.0)]
    # From each grid's own geographic system: the projection alone, no datum shift.
    to_lb72 = pyproj.Transformer.from_crs("EPSG:4313", "EPSG:31370", always_xy=True)

    def lb72(lon, lat):
        return to_lb72.transform(lon, lat, errcheck=True)

    params72 = [51.16666723333333, 49.8333339, 4.367486666666666, 90.0, 150000.013, 5400088.438]
    for lat0, label in ((90.0, "EPSG31370"), (OVER_THE_POLE, "EPSG31370-unit-rounding")):
        case("lcc2", label, INTL, params72[:3] + [lat0] + params72[4:])
        points(belgium + wide, lb72)
    # BD50 (Brussels): longitudes from the Brussels meridian, 4 22 4.71 E of Greenwich.
    brussels = 4.367975
    to_lb50 = pyproj.Transformer.from_crs("EPSG:4809", "EPSG:21500", always_xy=True)
    case("lcc2", "EPSG21500", INTL, [49.8333333333333, 51.1666666666667, brussels, 90.0, 150000.0, 5400000.0])
    points(belgium + wide, lambda lon, lat: to_lb50.transform(lon - brussels, lat, errcheck=True))
    south = [-params72[0], -params72[1], params72[2], -90.0, params72[4], params72[5]]
    forward, _ = proj_string("+proj=lcc +lat_1=%r +lat_2=%r +lon_0=%r +lat_0=%r +x_0=%r +y_0=%r %s"
                             % (south[0], south[1], south[2], south[3], south[4], south[5], proj_figure(INTL)))
    case("lcc2", "south-pole-mirror", INTL, south)
    points([(lon, -lat) for lon, lat in belgium + wide], forward)


def polar_epsg_cases():
    # The registry's polar stereographic systems on WGS 84: variant A (UPS, the scale
    # at the pole) as CKvPolarStereographic on its pole, variant B (a standard
    # parallel) as CKvPolarStereographic on the parallel and as the north and south
    # pole engines. 32661 and 32761 are UPS with northing first: the same map.
    variant_a = [(5041, 90.0), (5042, -90.0), (32661, 90.0), (32761, -90.0)]
    for code, pole in variant_a:
        case("stere", "EPSG%d" % code, WGS84, (0.994, 0.0, pole, 2000000.0, 2000000.0))
        points(polar_cap(pole, 0, 5.0, 15), epsg(code))
    variant_b = [(3031, -71.0, 0.0), (3413, 70.0, -45.0), (3976, -70.0, 0.0)]
    for code, parallel, lon0 in variant_b:
        pts = polar_cap(parallel, 0, 5.0, 15)
        case("stere", "EPSG%d" % code, WGS84, (1.0, lon0, parallel, 0.0, 0.0))
        points(pts, epsg(code))
        case("sterenp" if parallel > 0 else "stereps", "EPSG%d" % code, WGS84, (parallel, lon0, 0.0, 0.0))
        points(pts, epsg(code))


def main():
    print("# Reference vectors for the stereographic family and the pole-origin Lambert grids, from")
    print("# PROJ %s through pyproj %s; see tools/make_stereographic_vectors.py." % (pyproj.proj_version_str,
                                                                                     pyproj.__version__))
    print("# CASE engine label a 1/f parameters...; then lon lat x y [convergence]")
    snyder_cases()
    sterea_pole_cases()
    lambert_pole_cases()
    polar_epsg_cases()


if __name__ == "__main__":
    main()
