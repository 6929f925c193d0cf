#!/usr/bin/env python3
"""Checks the PROJ strings the library writes (CKvProjTranslator::ConvertToProj,
`kvcart proj4`) over the EPSG corpus of tools/make_epsg_corpus.py, and writes
the result that tests/ProjStrings_test.cpp holds the library to.

For every text of the corpus (ESRI and OGC form) the helper `wkt_translate
--proj` gives our PROJ string, or the reason there is none. PROJ then computes
the corpus points twice: with our string, and with its own definition of
EPSG:n. Both are brought to easting and northing (an axis running west or south
counts negatively; at a pole, where both axes run along meridians, the axis
name tells which is the easting) and compared in metres.

Usage:
  tools/check_proj_strings.py build/tests/wkt_translate build/tests/epsg_corpus.tsv \
      | xz -9 > tests/data/proj_strings.tsv.xz   (then tar, see the test's CMake)

Output lines (tab-separated):
  # PROJ version
  S  code  form  our-string  worst-difference-in-metres   (nan: PROJ could not compute)
  N  code  form  reason                                   (no string, with our reason)
A summary goes to standard error.
"""
import math
import subprocess
import sys

import pyproj

sys.path.insert(0, __import__("os").path.dirname(__file__))
from make_epsg_corpus import project  # noqa: E402  (same input conventions as the corpus)

HELPER = sys.argv[1] if len(sys.argv) > 1 else "build/tests/wkt_translate"
CORPUS = sys.argv[2] if len(sys.argv) > 2 else "build/tests/epsg_corpus.tsv"


def load():
    texts, points = [], {}
    for line in open(CORPUS, encoding="utf-8"):
        f = line.rstrip("\n").split("\t")
        if f[0] == "W":
            texts.append((int(f[1]), f[2], f[3]))
        elif f[0] == "G":
            points.setdefault(int(f[1]), []).append((float(f[2]), float(f[3])))
    return texts, points


def east_north(crs, xy):
    """(easting, northing) of a point given along crs's axes."""
    axes = crs.axis_info[:2]
    dirs = [a.direction.lower() for a in axes]
    out = [None, None]
    polar = dirs[0] == dirs[1]
    for a, d, v in zip(axes, dirs, xy):
        if polar:
            slot = 0 if a.name.lower().startswith(("e", "x")) else 1
            out[slot] = v
        elif d in ("east", "west"):
            out[0] = v if d == "east" else -v
        else:
            out[1] = v if d == "north" else -v
    return out


def main():
    texts, points = load()
    lines = "".join(f"{c}:{form}\t{wkt}\n" for c, form, wkt in texts)
    result = subprocess.run([HELPER, "--proj"], input=lines, capture_output=True, text=True, check=True)
    ours = {}
    for line in result.stdout.splitlines():
        key, string, reason = (line.split("\t") + ["", ""])[:3]
        ours[key] = (string, reason)
    print("# PROJ %s, EPSG %s" % (pyproj.proj_version_str, pyproj.database.get_database_metadata("EPSG.VERSION")))
    epsg_cache = {}
    counts = {"right": 0, "wrong": 0, "none": 0, "nan": 0}
    for code, form, _ in texts:
        string, reason = ours[f"{code}:{form}"]
        if not string:
            print(f"N\t{code}\t{form}\t{reason}")
            counts["none"] += 1
            continue
        pts = points.get(code, [])
        if code not in epsg_cache:
            crs = pyproj.CRS.from_epsg(code)
            try:
                epsg_cache[code] = [east_north(crs, p) for p in project(crs, pts)]
            except pyproj.exceptions.ProjError:  # a method PROJ computes nothing for
                epsg_cache[code] = [(math.nan, math.nan)] * len(pts)
        try:
            crs = pyproj.CRS.from_proj4(string)
            mine = [east_north(crs, p) for p in project(crs, pts)]
        except pyproj.exceptions.CRSError:
            mine = [(math.nan, math.nan)] * len(pts)
        worst = 0.0
        for (x1, y1), (x2, y2) in zip(mine, epsg_cache[code]):
            if not (math.isfinite(x2) and math.isfinite(y2)):
                continue
            d = math.hypot(x1 - x2, y1 - y2)
            worst = max(worst, d) if math.isfinite(d) else math.inf
        if not any(math.isfinite(x) for p in epsg_cache[code] for x in p):
            worst = math.nan
        counts["nan" if math.isnan(worst) else "right" if worst <= 1e-3 else "wrong"] += 1
        print(f"S\t{code}\t{form}\t{string}\t{worst!r}")
    print(counts, file=sys.stderr)


if __name__ == "__main__":
    main()
