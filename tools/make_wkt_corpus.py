#!/usr/bin/env python3
"""Builds tests/data/wkt_corpus.txt: real one-line WKT from GDAL and, for each
text, reference projections from PROJ.

For every EPSG code below, GDAL's `gdalsrsinfo -o wkt_esri` writes the ESRI
form of the system (the text of a .prj file). A selection is also written in
GDAL's OGC WKT 1 form from PROJ's own PROJ.4 definition, which adds TOWGS84
nodes, AXIS nodes, AUTHORITY nodes and the OGC projection names.

Each text is handed to the library's helper `wkt_translate`, which reports the
projection type the WKT reader gives and the PROJ.4 text the library writes.
Then, for a 3 x 3 grid of points inside the system's area of use (from
`projinfo`):
  - `cs2cs` transforms the grid with the PROJ.4 text we write (the '+' tokens;
    the trailing "no_defs <>" is for our own consumers, not a PROJ token), from
    the geographic system on the same figure and datum shift;
  - `proj` transforms it with PROJ's own definition of the EPSG code, output in
    metres, which checks that we read the right type and parameters.

Usage: tools/make_wkt_corpus.py build/tests/wkt_translate > tests/data/wkt_corpus.txt

Where the PROJ.4 text we write deliberately differs from what PROJ needs to
compute the same thing, a third reference is cs2cs with the text adjusted (the
test names the reason):
  omerc   PROJ's omerc takes the centre longitude from +lonc, and its natural-origin
          form needs +no_uoff; we write +lon_0 and no +no_uoff.
  krovak  the X/Y scales and plane rotation are not written; +axis=swu gives the
          southing/westing that X_Scale = Y_Scale = 1 without rotation describe.
  polar   the polar stereographic text has +lat_ts and the scale it implies, +k;
          PROJ takes one of the two only, so +k is dropped.
The grid points are given within [-180, 180] degrees, also for areas across the
antimeridian; there every engine reduces the longitude difference as PROJ does
(the Lambert conics, Mercator, Albers and the equidistant conic leave only
longitudes beyond +-180 unreduced, which the corpus does not use).

Output lines (tab-separated):
  W  id  expected-type  wkt
  T  id  proj4-we-write
  A  id  reason  adjusted-tokens             (only for the cases above)
  P  id  lon  lat  x-cs2cs-ours  y-cs2cs-ours  x-proj-epsg  y-proj-epsg  x-adjusted  y-adjusted
Coordinates are metres. A value that PROJ could not compute is written as "nan".
"""
import re
import subprocess
import sys

HELPER = sys.argv[1] if len(sys.argv) > 1 else "build/tests/wkt_translate"


def codes():
    c = []
    c += range(32601, 32661)                 # WGS 84 / UTM north
    c += range(32701, 32761, 4)              # WGS 84 / UTM south
    c += range(25828, 25839)                 # ETRS89 / UTM
    c += range(26901, 26924)                 # NAD83 / UTM
    c += range(26703, 26723)                 # NAD27 / UTM
    c += range(23028, 23039)                 # ED50 / UTM
    c += range(28348, 28359)                 # GDA94 / MGA
    c += range(26929, 26999)                 # NAD83 state planes, metres
    c += range(2222, 2290, 3)                # NAD83 state planes, US feet and feet
    c += range(26729, 26799, 3)              # NAD27 state planes, US feet
    c += [
        27700, 28992, 2193, 27200, 3067, 2154, 31467, 31468, 2056, 21781, 5514, 2065, 3035, 3005,
        3031, 3413, 3995, 3976, 32661, 32761, 5041, 3032, 3411, 3395, 3832, 3994, 3034, 2100, 3347, 3577,
        3112, 29873, 3375, 2039, 30200, 3068, 2314, 24500, 27571, 27572, 27573, 27574, 2062, 2180,
        3006, 3763, 2326, 3414, 2157, 29902, 29903, 3174, 5070, 3310, 2163, 3571, 3573, 3078, 3079,
        2036, 3844, 31600, 22275, 2046, 3857, 4087, 5880, 3410, 32663, 3785, 102100, 2317,
        4326, 4269, 4267, 4258, 4230, 4277, 4807, 4801, 4818, 4312, 4805, 4283, 4148, 4674, 4903,
        4813, 4202, 3408, 6933, 2449, 22391, 3107, 3111, 3308, 2992, 2994, 3080, 3081, 3083,
    ]
    return list(dict.fromkeys(c))


# Codes also written as OGC WKT 1 from PROJ's PROJ.4 definition (TOWGS84).
WKT1_CODES = [27700, 28992, 27572, 2056, 21781, 31467, 2100, 2039, 3068, 29873, 3375, 23032, 25832,
              27200, 2193, 5514, 3844, 30200, 24500, 4230, 4807, 26729, 3035, 3031, 3395]

# The reader's table of projection names (lower case) and types. Only to
# predict the type the reader must give; the references come from PROJ.
TABLE = {
    "transverse_mercator": 1, "transverse_mercator_complex": 1, "transverse_mercator_south_orientated": 1,
    "gauss_kruger": 1, "lambert_conformal_conic": 2, "lambert_conformal_conic_2sp": 2,
    "lambert_conformal_conic_1sp": 3, "stereographic": 4, "double_stereographic": 4,
    "oblique_stereographic": 4, "polar_stereographic": 20, "stereographic_north_pole": 12,
    "stereographic_south_pole": 13, "new_zealand_map_grid": 5,
    "hotine_oblique_mercator_azimuth_natural_origin": 6, "hotine_oblique_mercator": 6,
    "hotine_oblique_mercator_azimuth_center": 7, "rectified_skew_orthomorphic_natural_origin": 8,
    "rotated_longitude_latitude": 9, "mercator": 10, "mercator_2sp": 10, "mercator_1sp": 11,
    "geographical": 14, "krovak": 15, "albers": 16, "albers_conic_equal_area": 16,
    "lambert_azimuthal_equal_area": 17, "cassini": 18, "cassini_soldner": 18, "equidistant_conic": 19,
    "non_projected": 21, "rectified_skew_orthomorphic_center": 8,
    "mercator_auxiliary_sphere": 24, "popular_visualisation_pseudo_mercator": 24,
    # Methods described by their descriptor (types 25 onwards) that the corpus holds.
    "cylindrical_equal_area": 34, "behrmann": 34, "equirectangular": 35, "equidistant_cylindrical": 35, "plate_carree": 35,
    "polyconic": 36,
}


def run(args, stdin=None):
    r = subprocess.run(args, input=stdin, capture_output=True, text=True)
    return r.stdout.strip() if r.returncode == 0 else ""


def param(wkt, name):
    m = re.search(r'PARAMETER\["%s",([^\],]+)' % name, wkt, re.I)
    return float(m.group(1)) if m else None


# Parameters each type needs (the reader fails without them).
REQUIRED = {
    1: ["False_Easting", "False_Northing", "Central_Meridian", "Scale_Factor", "Latitude_Of_Origin"],
    3: ["False_Easting", "False_Northing", "Central_Meridian", "Scale_Factor", "Latitude_Of_Origin"],
    4: ["False_Easting", "False_Northing", "Central_Meridian|Longitude_Of_Origin", "Scale_Factor",
        "Latitude_Of_Origin"],
    5: ["False_Easting", "False_Northing", "Longitude_Of_Origin|Central_Meridian", "Latitude_Of_Origin"],
    6: ["False_Easting", "False_Northing", "Longitude_Of_Center", "Latitude_Of_Center", "Azimuth", "Scale_Factor"],
    7: ["False_Easting", "False_Northing", "Longitude_Of_Center", "Latitude_Of_Center", "Azimuth", "Scale_Factor"],
    8: ["False_Easting", "False_Northing", "Longitude_Of_Center", "Latitude_Of_Center", "Azimuth",
        "XY_Plane_Rotation", "Scale_Factor"],
    10: ["False_Easting", "False_Northing", "Central_Meridian", "Standard_Parallel_1"],
    11: ["False_Easting", "False_Northing", "Central_Meridian", "Scale_Factor"],
    12: ["False_Easting", "False_Northing", "Central_Meridian", "Standard_Parallel_1"],
    13: ["False_Easting", "False_Northing", "Central_Meridian", "Standard_Parallel_1"],
    15: ["False_Easting", "False_Northing", "Longitude_Of_Center", "Latitude_Of_Center", "Azimuth",
         "XY_Plane_Rotation", "Scale_Factor", "Pseudo_Standard_Parallel_1", "X_Scale", "Y_Scale"],
    16: ["False_Easting", "False_Northing", "Central_Meridian|Longitude_Of_Center", "Standard_Parallel_1",
         "Standard_Parallel_2", "Latitude_Of_Origin|Latitude_Of_Center"],
    17: ["False_Easting", "False_Northing", "Central_Meridian|Longitude_Of_Center",
         "Latitude_Of_Origin|Latitude_Of_Center"],
    18: ["False_Easting", "False_Northing", "Central_Meridian", "Latitude_Of_Origin"],
    20: ["False_Easting", "False_Northing", "Central_Meridian", "Scale_Factor", "Latitude_Of_Origin"],
}
REQUIRED[24] = ["False_Easting", "False_Northing", "Central_Meridian"]
REQUIRED[19] = REQUIRED[16]
REQUIRED[21] = REQUIRED[1]


def has(wkt, names):
    return any(param(wkt, n) is not None for n in names.split("|"))


def expected_type(wkt):
    if "PROJECTION" not in wkt:
        return 14
    name = re.search(r'PROJECTION\["([^"]*)"', wkt).group(1).lower()
    t = TABLE.get(name, 22)
    if t == 2:
        two = ["False_Northing", "Central_Meridian", "Standard_Parallel_1", "Standard_Parallel_2",
               "Latitude_Of_Origin"]
        one = ["False_Northing", "Central_Meridian", "Latitude_Of_Origin", "Scale_Factor"]
        if not has(wkt, "False_Easting"):
            return 22
        if all(has(wkt, n) for n in two):
            return 2
        return 3 if all(has(wkt, n) for n in one) else 22
    if t == 20 and not has(wkt, "Scale_Factor") and all(
            has(wkt, n) for n in ["False_Easting", "False_Northing", "Central_Meridian", "Latitude_Of_Origin"]):
        # variant B in WKT 1: the latitude of origin is the standard parallel
        return 12 if param(wkt, "Latitude_Of_Origin") > 0 else 13
    if t == 15 and not any(has(wkt, n) for n in ["X_Scale", "Y_Scale", "XY_Plane_Rotation"]) and all(
            has(wkt, n) for n in REQUIRED[15][:5] + REQUIRED[15][6:8]):
        return 15  # WKT 1's Krovak: the grid follows from its AXIS nodes
    if not all(has(wkt, n) for n in REQUIRED.get(t, [])):
        return 22
    if t == 24 and any((param(wkt, n) or 0.0) != 0.0 for n in ("Auxiliary_Sphere_Type", "Standard_Parallel_1")):
        return 22  # only the sphere of the semi-major axis, on the equator
    if t in (6, 7):
        azimuth, angle = param(wkt, "Azimuth"), param(wkt, "Rectified_Grid_Angle")
        if angle is None or abs(azimuth - angle) > 1e-12 * max(abs(azimuth), abs(angle)):
            t = 8  # the rectified skew form
    return t


def adjustment(ours, wkt, tokens):
    """The reason and the adjusted tokens where our text deliberately differs."""
    if "+proj=omerc" in tokens:
        adjusted = [t.replace("+lon_0=", "+lonc=") for t in tokens]
        if ours in (6, 8):
            adjusted.append("+no_uoff")
        return "omerc", adjusted
    if "+proj=krovak" in tokens and (param(wkt, "X_Scale"), param(wkt, "Y_Scale"),
                                     param(wkt, "XY_Plane_Rotation")) == (1.0, 1.0, 0.0):
        return "krovak", tokens + ["+axis=swu"]
    lat_ts = [float(t.split("=")[1]) for t in tokens if t.startswith("+lat_ts=")]
    if "+proj=stere" in tokens and lat_ts and abs(lat_ts[0]) < 90.0:
        return "polar", [t for t in tokens if not t.startswith("+k=")]
    return None, tokens


def area(code):
    wkt2 = run(["projinfo", "EPSG:%d" % code, "-o", "WKT2_2019", "--single-line", "-q"])
    m = re.search(r"BBOX\[([-\d.]+),([-\d.]+),([-\d.]+),([-\d.]+)\]", wkt2)
    if not m:
        return None
    south, west, north, east = map(float, m.groups())
    if east < west:
        east += 360.0
    return west, south, east, north


def grid(box):
    west, south, east, north = box
    pts = []
    for fy in (0.25, 0.5, 0.75):
        for fx in (0.25, 0.5, 0.75):
            lon = west + fx * (east - west)
            if lon > 180.0:
                lon -= 360.0
            pts.append((round(lon, 6), round(south + fy * (north - south), 6)))
    return pts


def transform(args, points):
    text = "".join("%.6f %.6f\n" % p for p in points)
    out = run(args, text).splitlines()
    result = []
    for i in range(len(points)):
        f = out[i].split() if i < len(out) else []
        try:
            result.append((float(f[0]), float(f[1])))
        except (IndexError, ValueError):
            result.append((float("nan"), float("nan")))
    return result


def main():
    texts = []
    for code in codes():
        wkt = run(["gdalsrsinfo", "-o", "wkt_esri", "--single-line", "EPSG:%d" % code])
        if wkt.startswith(("PROJCS[", "GEOGCS[")):
            texts.append(("EPSG:%d" % code, code, wkt))
    for code in WKT1_CODES:
        proj4 = run(["projinfo", "EPSG:%d" % code, "-o", "PROJ", "-q"])
        wkt = run(["gdalsrsinfo", "-o", "wkt1", "--single-line", proj4.replace("+type=crs", "")])
        if wkt.startswith(("PROJCS[", "GEOGCS[")):
            texts.append(("EPSG:%d/wkt1" % code, code, wkt))

    lines = "".join("%s\t%s\n" % (i, w) for i, _, w in texts)
    translated = {}
    for row in run([HELPER], lines).splitlines():
        ident, ours, proj4 = row.split("\t")
        translated[ident] = (int(ours), proj4)

    print("# Generated by tools/make_wkt_corpus.py with GDAL %s and %s; do not edit." %
          (run(["gdalsrsinfo", "--version"]).split(",")[0].replace("GDAL ", ""),
           run(["projinfo", "--version"]) or "PROJ"))
    for ident, code, wkt in texts:
        print("W\t%s\t%d\t%s" % (ident, expected_type(wkt), wkt))
        ours, proj4 = translated[ident]
        print("T\t%s\t%s" % (ident, proj4))
        if ours in (14, 22) or "+proj=" not in proj4 or "+proj=undef" in proj4:
            continue
        box = area(code)
        if box is None:
            continue
        points = grid(box)
        tokens = [t for t in proj4.split() if t.startswith("+")]
        figure = [t for t in tokens if t.split("=")[0] in ("+a", "+b", "+towgs84")]
        # cs2cs answers in the unit of the text; our engines in metres.
        unit = [float(t.split("=")[1]) for t in tokens if t.startswith("+to_meter=")] or [1.0]

        def cs2cs(tokens):
            out = transform(["cs2cs", "-f", "%.6f", "+proj=longlat"] + figure + ["+to"] + tokens, points)
            return [(x * unit[0], y * unit[0]) for x, y in out]

        mine = cs2cs(tokens)
        reason, adjusted = adjustment(ours, wkt, tokens)
        if reason:
            print("A\t%s\t%s\t%s" % (ident, reason, " ".join(adjusted)))
            fixed = cs2cs(adjusted)
        else:
            fixed = mine
        epsg = run(["projinfo", "EPSG:%d" % code, "-o", "PROJ", "-q"]).split()
        epsg = [t for t in epsg if not t.startswith(("+units", "+type", "+vunits", "+to_meter"))] + ["+units=m"]
        reference = transform(["proj", "-f", "%.6f"] + epsg, points)
        for (lon, lat), (x1, y1), (x2, y2), (x3, y3) in zip(points, mine, reference, fixed):
            print("P\t%s\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f\t%.6f" %
                  (ident, lon, lat, x1, y1, x2, y2, x3, y3))


if __name__ == "__main__":
    main()
