#!/usr/bin/python3
"""Checks the OGC WKT 1 the library writes (CKvOgcWktWriter, `kvcart wkt
--ogc`) with PROJ, and writes the result that tests/OgcWkt_test.cpp holds the
library to.

Two sets of systems:
  K  every entry of the shipped catalogue, the generated UTM and UPS zones
     included. PROJ (pyproj) reads our text and computes three points around
     the system's origin (from the text's own geodetic system, so no datum
     shift is involved), in metres along the text's axes. Where the text names
     an EPSG code, PROJ also computes the same points on EPSG:n itself; both
     are brought to easting and northing and compared.
  T  every text of the EPSG corpus (tools/make_epsg_corpus.py, ESRI and OGC
     form), read by the library under the EPSG reading and written again in
     OGC form. PROJ on our text is compared with PROJ on EPSG:n at the corpus's
     points of that system, easting and northing.
The helper ogc_wkt (tests/helpers/ogc_wkt.cpp) gives our texts, as the
program does; PROJ and GDAL are used here only, never by the library.

Usage:
  /usr/bin/python3 tools/check_ogc_wkt.py build/tests/ogc_wkt data/ build/tests/epsg_corpus.tsv \\
      tests/data/ogc_wkt.tsv.tar.xz
  (--tsv OUT instead of the archive writes plain text.)

Output (UTF-8, tab-separated; '#' lines are comments, the first names the
versions):
  K  name  O  text              our OGC text of a catalogue entry
  K  name  N  reason            no text, with our reason
  T  code  form  O  text        our OGC text of a corpus text (form E or O)
  T  code  form  N  reason
  A  key  axis1  axis2          PROJ's reading of our text: its axes' directions
  U  key  reason                PROJ could not read our text
  P  key  lon  lat  x  y        PROJ on our text: Greenwich degrees, metres along
                                the text's axes (degrees for a geographical
                                system; "nan" where PROJ gave none)
  E  key  code  worst           PROJ on EPSG:code against PROJ on our text,
                                easting and northing, the worst distance in
                                metres ("nan": PROJ computed neither)
key is the catalogue name, or "code:form" for a corpus text.
"""
import math
import multiprocessing
import subprocess
import sys
from collections import Counter

import pyproj
from pyproj.database import get_database_metadata

sys.path.insert(0, __import__("os").path.dirname(__file__))
from make_epsg_corpus import project, write_xz_tar  # noqa: E402  (same input conventions as the corpus)


def num(v):
    return repr(float(v)) if math.isfinite(v) else "nan"


def clean(text):
    return " ".join(str(text).split()) or "(no message)"


def east_north(crs, xy):
    """(easting, northing) of a point given along crs's axes; at a pole, where
    both axes run along meridians, the axis name tells which is the easting."""
    axes = crs.axis_info[:2]
    dirs = [a.direction.lower() for a in axes]
    out = [None, None]
    polar = dirs[0] == dirs[1]
    for a, d, v in zip(axes, dirs, xy):
        if polar:
            out[0 if a.name.lower().startswith(("e", "x")) else 1] = v
        elif d in ("east", "west"):
            out[0] = v if d == "east" else -v
        else:
            out[1] = v if d == "north" else -v
    return out


def ours(helper, catalogue, lines):
    text = "".join("%s\t%s\n" % (k, v) for k, v in lines)
    result = subprocess.run([helper, catalogue], input=text, capture_output=True, text=True, check=True)
    out = {}
    for line in result.stdout.splitlines():
        key, kind, value = line.split("\t", 2)
        out[key] = (kind, value)
    return out


def origin(crs):
    """The longitude and latitude a system is centred on, from its parameters."""
    if crs.type_name == "Bound CRS":  # a TOWGS84: the projected system is its source
        crs = crs.source_crs
    op = crs.coordinate_operation
    lon = lat = None
    if op is not None:
        for p in op.params:
            name = p.name.lower()
            factor = p.unit_conversion_factor if p.unit_conversion_factor else 1.0
            degrees = math.degrees(p.value * factor) if p.unit_category == "angular" else p.value
            if lon is None and "longitude" in name:
                lon = degrees
            elif lat is None and "latitude" in name:
                lat = degrees
    return (lon or 0.0), (lat or 0.0)


def points_around(lon0, lat0):
    if abs(lat0) > 80.0:
        s = 1.0 if lat0 > 0 else -1.0
        return [(lon0 + 10.0, s * 80.5), (lon0 - 60.0, s * 85.0), (lon0 + 135.0, s * 89.0)]
    lat = max(-80.0, min(80.0, lat0))
    return [(lon0 + 0.5, lat + 0.5), (lon0 - 1.0, lat - 0.25), (lon0 + 2.0, lat + 1.0)]


def wrap(lon):
    return lon - 360.0 if lon > 180.0 else lon + 360.0 if lon < -180.0 else lon


def authority_code(text):
    """The code of the AUTHORITY["EPSG",...] that closes the text, or None."""
    node = 'AUTHORITY["EPSG","'
    if not text.endswith('"]]') or node not in text:
        return None
    return int(text.rsplit(node, 1)[1].split('"')[0])


def judge(key, text, points):
    """PROJ's reading of our text: the A or U line and (crs, xy along the
    text's axes), or (None, None)."""
    try:
        crs = pyproj.CRS.from_wkt(text)
    except pyproj.exceptions.CRSError as e:
        return "\t".join(["U", key, clean(e)]), None, None
    axes = crs.axis_info
    line = "\t".join(["A", key, axes[0].direction.lower(), axes[1].direction.lower()])
    try:
        xy = project(crs, points)
        if not crs.is_projected:  # project() gives radians there: degrees, as the library's
            fx, fy = (a.unit_conversion_factor for a in crs.axis_info[:2])
            xy = [(x / fx, y / fy) for x, y in xy]
    except (pyproj.exceptions.ProjError, KeyError):
        xy = [(math.nan, math.nan)] * len(points)
    return line, crs, xy


def compare(crs, xy, code, points):
    """The worst distance, easting and northing, between xy in crs and PROJ on
    EPSG:code at points; NaN where EPSG:code gives nothing finite."""
    try:
        epsg = pyproj.CRS.from_epsg(code)
        theirs = [east_north(epsg, p) for p in project(epsg, points)]
    except (pyproj.exceptions.CRSError, pyproj.exceptions.ProjError, KeyError):
        return math.nan
    worst = math.nan
    for p, (x2, y2) in zip(xy, theirs):
        x1, y1 = east_north(crs, p)
        if not (math.isfinite(x2) and math.isfinite(y2)):
            continue
        d = math.hypot(x1 - x2, y1 - y2)
        worst = d if math.isnan(worst) else max(worst, d) if math.isfinite(d) else math.inf
    return worst


def judge_item(item):
    """The records of one of our texts: (lines, "none" | "unread" | "right" |
    "wrong" | "nan", worst)."""
    head, key, kind, value, points, code = item
    lines = ["\t".join(head + [kind, value])]
    if kind != "O":
        return lines, "none", 0.0
    catalogue = points is None
    if catalogue:
        try:
            crs = pyproj.CRS.from_wkt(value)
            lon0, lat0 = origin(crs) if crs.is_projected else (5.0, 45.0)
        except pyproj.exceptions.CRSError:
            lon0, lat0 = 5.0, 45.0
        points = [(wrap(lon), lat) for lon, lat in points_around(lon0, lat0)]
        code = authority_code(value)
    line, crs, xy = judge(key, value, points)
    lines.append(line)
    if crs is None:
        return lines, "unread", 0.0
    if catalogue:
        for (lon, lat), (x, y) in zip(points, xy):
            lines.append("\t".join(["P", key, num(lon), num(lat), num(x), num(y)]))
    if not crs.is_projected or not code:
        return lines, "right", 0.0
    worst = compare(crs, xy, code, points)
    lines.append("\t".join(["E", key, str(code), num(worst)]))
    verdict = "nan" if math.isnan(worst) else "right" if worst <= 1e-3 else "wrong"
    return lines, verdict, worst


def main():
    args = sys.argv[1:]
    plain = args[:1] == ["--tsv"]
    if plain:
        args = args[1:]
    if len(args) != 4:
        sys.exit(__doc__)
    helper, catalogue, corpus, out_path = args

    # The catalogue, our texts.
    names = subprocess.run([helper, catalogue, "--list"], capture_output=True, text=True,
                           check=True).stdout.splitlines()
    mine = ours(helper, catalogue, [(n, n) for n in names])
    items = [(["K", n], n, mine[n][0], mine[n][1], None, None) for n in names]
    # The corpus, our texts of its texts.
    texts, corpus_points = [], {}
    for line in open(corpus, encoding="utf-8"):
        f = line.rstrip("\n").split("\t")
        if f[0] == "W":
            texts.append((int(f[1]), f[2], f[3]))
        elif f[0] == "G":
            corpus_points.setdefault(int(f[1]), []).append((float(f[2]), float(f[3])))
    mine = ours(helper, catalogue, [("%d:%s" % (c, form), w) for c, form, w in texts])
    for code, form, _ in texts:
        key = "%d:%s" % (code, form)
        items.append((["T", str(code), form], key, mine[key][0], mine[key][1], corpus_points.get(code, []), code))

    with multiprocessing.Pool(2) as pool:
        results = pool.map(judge_item, items, chunksize=32)

    counts = Counter()
    worst = {"K": 0.0, "T": 0.0}
    lines = []
    for item, (item_lines, verdict, w) in zip(items, results):
        lines += item_lines
        counts[item[0][0] + " " + verdict] += 1
        if verdict == "right":
            worst[item[0][0]] = max(worst[item[0][0]], w)
        elif verdict in ("wrong", "unread"):
            print("%s %s: %s" % (item[0][0], item[1], item_lines[-1]), file=sys.stderr)

    header = ("# OGC WKT 1 of the library judged by PROJ %s (pyproj %s), EPSG %s; made by tools/check_ogc_wkt.py"
              % (pyproj.proj_version_str, pyproj.__version__, get_database_metadata("EPSG.VERSION")))
    data = ("\n".join([header] + lines) + "\n").encode("utf-8")
    if plain:
        with open(out_path, "wb") as f:
            f.write(data)
    else:
        write_xz_tar(out_path, "ogc_wkt.tsv", data)
    print(dict(sorted(counts.items())), "worst of those within 1 mm:", worst, file=sys.stderr)


if __name__ == "__main__":
    main()
