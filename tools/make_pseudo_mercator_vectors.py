#!/usr/bin/env python3
"""Writes the reference files of the Popular Visualisation Pseudo Mercator (EPSG
method 1024, Web Mercator, EPSG:3857): the engine against PROJ's webmerc, and the
texts that name the method (ESRI's Mercator_Auxiliary_Sphere, GDAL's WKT 1 with
its spherical PROJ4 EXTENSION, Popular_Visualisation_Pseudo_Mercator) with PROJ's
coordinates and PROJ's verdict on the PROJ strings the library writes for them.

The oracles are PROJ through pyproj (Debian python3-pyproj) and GDAL's osr
(python3-gdal), used here only and never linked into the library.

Usage:
  /usr/bin/python3 tools/make_pseudo_mercator_vectors.py build/tests/wkt_translate tests/data/

writes tests/data/pseudo_mercator_vectors.txt and tests/data/pseudo_mercator_wkt.txt.

pseudo_mercator_vectors.txt, the format of tools/make_projection_vectors.py: each
CASE line names an engine, a label, the figure (a, 1/f; 0 for a sphere) and the
parameters of the engine's explicit-value constructor; the point lines that
follow hold lon lat x y (degrees, metres) and, where given, the convergence.
  webmerc  CKvPseudoMercator (central meridian, latitude of origin, FE, FN):
           PROJ's +proj=webmerc, or EPSG:3857 itself; the case "over" has
           longitudes beyond +-180, taken unreduced by the library's Mercator
           rule and by PROJ with +over.
  scale    the same engine; x and y are the scale along the meridian and along
           the parallel, measured on the ellipsoid: PROJ's northing and easting
           differences over steps of 0.001 degree divided by the geodesic
           lengths of the same steps (pyproj.Geod, Karney's geodesics). PROJ's
           own factors are those of the sphere (sec phi both ways), not of the
           ellipsoid whose latitudes the method takes. The fifth column is PROJ's
           meridian convergence.
  merc1    CKvMercator1SP (k0, central meridian, FE, FN): PROJ's merc on the
           ellipsoid, the established reading of GDAL's WKT 1 of EPSG:3857.
The poles are not in the file: PROJ gives the northing of the rounded right angle
there (2.4e8 m), the library the limit, an infinite northing.

pseudo_mercator_wkt.txt, tab-separated:
  W  id  wkt                   a text
  P  id  lon  lat  x  y        PROJ's reading of the text (metres); for the
                               Popular_Visualisation_Pseudo_Mercator texts PROJ
                               9.1 takes central_meridian and the false origin for
                               0, so there the reference is webmerc with the
                               text's parameters
  S  id  string  worst         our PROJ string (CKvProjTranslator::ConvertToProj)
                               and the largest distance, in metres, between PROJ
                               on it and PROJ on the text at the P points
  L  id  string  worst         the same for our legacy PROJ.4 text (Convert2Proj4,
                               established reading), with its trailing
                               "no_defs <>" left off for PROJ
"""
import math
import subprocess
import sys

import pyproj
from osgeo import osr

HELPER = sys.argv[1] if len(sys.argv) > 1 else "build/tests/wkt_translate"
OUT = sys.argv[2] if len(sys.argv) > 2 else "tests/data/"

WGS84 = ("WGS84", 6378137.0, 298.257223563)
GRS80 = ("GRS80", 6378137.0, 298.257222101)
CLARKE1866 = ("CLARKE1866", 6378206.4, 6378206.4 / (6378206.4 - 6356583.8))
SPHERE = ("SPHERE", 6371229.0, 0.0)


def frange(start, stop, step):
    values, v = [], start
    while v <= stop + 1e-9:
        values.append(round(v, 9))
        v += step
    return values


def proj_figure(f):
    return "+R=%r" % f[1] if f[2] == 0 else "+a=%r +rf=%r" % (f[1], f[2])


def world():
    pts = [(lon, lat) for lat in frange(-85, 85, 5) for lon in frange(-180, 180, 15)]
    # The edges of the square web map, the antimeridian from both sides, near the
    # poles and near the equator.
    edge = 85.0511287798066
    pts += [(lon, lat) for lat in (edge, -edge, 89.0, -89.0, 89.9, -89.9, 89.999999, -89.999999, 1e-9, -1e-9, 0.0)
            for lon in (-180.0, -179.999999999, 0.0, 0.5, 179.999999999, 180.0)]
    return pts


def around(lon0, half, step):
    pts = []
    for lat in frange(-80, 80, 10):
        for d in frange(-half, half, step):
            lon = lon0 + d
            lon = lon - 360.0 if lon > 180.0 else lon + 360.0 if lon < -180.0 else lon
            pts.append((round(lon, 9), lat))
    return pts


def case(out, engine, label, f, params):
    out.write("CASE %s %s %r %r %s\n" % (engine, label, f[1], f[2], " ".join(repr(p) for p in params)))


def points(out, pts, forward, extra=None):
    for lon, lat in pts:
        x, y = forward(lon, lat)
        assert math.isfinite(x) and math.isfinite(y), (lon, lat)
        line = "%r %r %.6f %.6f" % (lon, lat, x, y)
        if extra is not None:
            line += " %.12f" % extra(lon, lat)
        out.write(line + "\n")


def proj_forward(text):
    p = pyproj.Proj(text)
    return lambda lon, lat: p(lon, lat, errcheck=True)


def engine_vectors(out):
    out.write("# Reference vectors for the pseudo-Mercator, from PROJ %s through pyproj %s;\n"
              % (pyproj.proj_version_str, pyproj.__version__))
    out.write("# see tools/make_pseudo_mercator_vectors.py. CASE engine label a 1/f parameters...\n")
    to3857 = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:3857", always_xy=True)
    case(out, "webmerc", "EPSG3857", WGS84, (0.0, 0.0, 0.0, 0.0))
    points(out, world(), lambda lon, lat: to3857.transform(lon, lat, errcheck=True))
    for label, f, lon0, fe, fn in (("lon150-GRS80", GRS80, 150.0, 1000.0, -2000.0),
                                   ("lon-60-Clarke1866", CLARKE1866, -60.0, 0.0, 0.0),
                                   ("lon10-sphere", SPHERE, 10.0, 500000.0, 0.0)):
        case(out, "webmerc", label, f, (lon0, 0.0, fe, fn))
        points(out, around(lon0, 60, 7.5), proj_forward("+proj=webmerc +lon_0=%r +x_0=%r +y_0=%r %s"
                                                         % (lon0, fe, fn, proj_figure(f))))
    beyond = [(lon, lat) for lat in (-60.0, 0.0, 45.0) for lon in (181.0, 200.0, 270.0, 359.5, 540.0, 570.25,
                                                                   -181.0, -300.0, -540.0)]
    # (PROJ takes no longitude beyond 10 radians, 573 degrees.)
    case(out, "webmerc", "over", WGS84, (0.0, 0.0, 0.0, 0.0))
    points(out, beyond, proj_forward("+proj=webmerc +over %s" % proj_figure(WGS84)))

    geod = pyproj.Geod(a=WGS84[1], rf=WGS84[2])
    p = pyproj.Proj("+proj=webmerc %s" % proj_figure(WGS84))
    step = 1e-3

    def scales(lon, lat):
        _, y1 = p(lon, lat - step)
        _, y2 = p(lon, lat + step)
        x1, _ = p(lon - step, lat)
        x2, _ = p(lon + step, lat)
        meridian = geod.inv(lon, lat - step, lon, lat + step)[2]
        parallel = geod.inv(lon - step, lat, lon + step, lat)[2]
        return (y2 - y1) / meridian, (x2 - x1) / parallel

    case(out, "scale", "EPSG3857", WGS84, (0.0, 0.0, 0.0, 0.0))
    for lon, lat in [(lon, lat) for lat in frange(-80, 80, 5) for lon in (0.0, 100.0)]:
        h, k = scales(lon, lat)
        convergence = p.get_factors(lon, lat, errcheck=True).meridian_convergence
        out.write("%r %r %.12f %.12f %.12f\n" % (lon, lat, h, k, convergence))

    case(out, "merc1", "WGS84-spheroid", WGS84, (1.0, 0.0, 0.0, 0.0))
    points(out, world()[::7], proj_forward("+proj=merc +k_0=1 +lon_0=0 %s" % proj_figure(WGS84)))


def gdal_wkt(definition, fmt):
    srs = osr.SpatialReference()
    if definition.startswith("EPSG:"):
        srs.ImportFromEPSG(int(definition[5:]))
    else:
        srs.SetFromUserInput(definition)
    return srs.ExportToWkt(["FORMAT=%s" % fmt])


def pvpm(name, lon0, fe, fn, extra=""):
    return ('PROJCS["WGS 84 / Pseudo-Mercator",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,'
            '298.257223563]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["%s"],'
            'PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",%r],%sPARAMETER["false_easting",%r],'
            'PARAMETER["false_northing",%r],UNIT["metre",1],AXIS["Easting",EAST],AXIS["Northing",NORTH]]'
            % (name, lon0, extra, fe, fn))


def texts():
    """(id, wkt, reference PROJ string or None for PROJ on the text, lon0)."""
    lon10 = "+proj=webmerc +lon_0=10 +x_0=100 +y_0=-200 +ellps=GRS80 +type=crs"
    sphere = ('PROJCS["Sphere_Web_Mercator",GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Mercator_Auxiliary_Sphere"],'
              'PARAMETER["False_Easting",0.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",-100.0],'
              'PARAMETER["Standard_Parallel_1",0.0],PARAMETER["Auxiliary_Sphere_Type",0.0],UNIT["Meter",1.0]]')
    return [
        ("EPSG:3857/esri", gdal_wkt("EPSG:3857", "WKT1_ESRI"), None, 0.0),
        ("EPSG:3857/wkt1", gdal_wkt("EPSG:3857", "WKT1"), None, 0.0),
        ("ESRI:102100/esri", pyproj.CRS.from_authority("ESRI", "102100").to_wkt("WKT1_ESRI"), None, 0.0),
        ("ESRI:102100/wkt1", pyproj.CRS.from_authority("ESRI", "102100").to_wkt("WKT1_GDAL"), None, 0.0),
        ("lon10-GRS80/esri", gdal_wkt(lon10, "WKT1_ESRI"), None, 10.0),
        ("lon10-GRS80/wkt1", gdal_wkt(lon10, "WKT1"), None, 10.0),
        ("sphere/esri", sphere, None, -100.0),
        ("pvpm", pvpm("Popular_Visualisation_Pseudo_Mercator", 10.0, 100.0, 200.0),
         "+proj=webmerc +lon_0=10 +x_0=100 +y_0=200 +ellps=WGS84 +type=crs", 10.0),
        ("pvpm-spaced", pvpm("Popular Visualisation Pseudo Mercator", -75.0, 0.0, 0.0, 'PARAMETER["scale_factor",1],'),
         "+proj=webmerc +lon_0=-75 +ellps=WGS84 +type=crs", -75.0),
    ]


def one_line(wkt):
    return " ".join(line.strip() for line in wkt.splitlines()).replace("[ ", "[").replace(", ", ",")


def wkt_file(out):
    out.write("# Texts of the pseudo-Mercator with PROJ %s's coordinates and its verdict on our PROJ strings;\n"
              % pyproj.proj_version_str)
    out.write("# see tools/make_pseudo_mercator_vectors.py.\n")
    cases = [(ident, one_line(wkt), ref, lon0) for ident, wkt, ref, lon0 in texts()]
    request = "".join("%s\t%s\n" % (ident, wkt) for ident, wkt, _, _ in cases)
    ours = {}
    for mode in ("--proj", "--legacy"):
        args = [HELPER] + ([mode] if mode == "--proj" else [])
        result = subprocess.run(args, input=request, capture_output=True, text=True, check=True).stdout
        for line in result.splitlines():
            f = (line.split("\t") + ["", ""])[:3]
            ours.setdefault(f[0], {})[mode] = f[1] if mode == "--proj" else f[2]
    for ident, wkt, ref, lon0 in cases:
        out.write("W\t%s\t%s\n" % (ident, wkt))
        crs = pyproj.CRS.from_wkt(wkt)
        reference = pyproj.CRS.from_user_input(ref) if ref else crs
        geog = crs.geodetic_crs
        to_ref = pyproj.Transformer.from_crs(geog, reference, always_xy=True)
        pts = [(lon0 + dlon, lat) for lat in (-84.0, -60.0, -34.0, 0.0, 20.5, 51.5, 85.0)
               for dlon in (-179.5, -45.0, 0.0, 12.25, 90.0)]
        pts = [(lon - 360.0 if lon > 180.0 else lon + 360.0 if lon < -180.0 else lon, lat) for lon, lat in pts]
        expected = [to_ref.transform(lon, lat, errcheck=True) for lon, lat in pts]
        for (lon, lat), (x, y) in zip(pts, expected):
            out.write("P\t%s\t%r\t%r\t%r\t%r\n" % (ident, lon, lat, x, y))
        for tag, string in (("S", ours[ident]["--proj"]), ("L", ours[ident]["--legacy"])):
            worst = math.nan
            if string and "+proj=undef" not in string:
                text = string.replace("no_defs <>", "").strip()
                try:
                    mine = pyproj.CRS.from_proj4(text)
                    tr = pyproj.Transformer.from_crs(geog, mine, always_xy=True)
                    worst = max(math.hypot(a - c, b - d) for (a, b), (c, d) in
                                zip((tr.transform(lon, lat) for lon, lat in pts), expected))
                except pyproj.exceptions.CRSError:
                    worst = math.inf
            out.write("%s\t%s\t%s\t%r\n" % (tag, ident, string, worst))
            print("%s %-18s %s  worst %.3g m" % (tag, ident, string, worst), file=sys.stderr)


def main():
    with open(OUT + "pseudo_mercator_vectors.txt", "w", encoding="utf-8") as out:
        engine_vectors(out)
    with open(OUT + "pseudo_mercator_wkt.txt", "w", encoding="utf-8") as out:
        wkt_file(out)


if __name__ == "__main__":
    main()
