#!/usr/bin/env python3
"""Writes the reference vectors of the projection methods described by their
descriptor: one file per group of methods,

    /usr/bin/python3 tools/make_method_vectors.py GROUP

reads tools/method_cases/GROUP.py (a list CASES of dicts) and writes
tests/data/method_vectors_GROUP.txt, which tests/Methods_test.cpp checks.

PROJ (through pyproj, Debian's python3-pyproj) is the oracle; it is used here
only and never linked into the library. A case:

  id        a short unique name
  crs       the string the library is given: WKT, "EPSG:n" or "ESRI:n"
  proj      PROJ's string of the same map (geographic coordinates on the same
            figure in, grid coordinates out), or None where PROJ computes
            nothing for the method; then only the examples, round trips and
            domain rules check it
  area      (west, south, east, north): the points are a grid over it
  edges     extra points: the antimeridian, the poles, the domain's edges
  examples  (lon, lat, x, y, source[, tolerance in metres]): published worked
            examples (IOGP Guidance Note 7-2), their figures as published
  tol       metres for the comparison with PROJ (default 0.001)
  grid      points per side of the forward grid (default 25)
  convergence  False where PROJ's meridian convergence is not the grid's (an
            axis turned by +axis); default True
  inverse_box  (xmin, ymin, xmax, ymax) of the inverse grid; default the
            forward points' box widened by a fifth on each side

The file holds, per case:
  CASE id / CRS text / PROJ string or - / AREA w s e n / TOL t
  F lon lat x y gamma   PROJ's forward (x y nan: PROJ refuses the point;
                        gamma nan: not compared)
  I x y lon lat         PROJ's inverse where it gives the point back through
                        its forward within 1 mm; lon lat nan where it refuses
                        or gives a point that does not map back (the library
                        must then give NaN or a point that does)
  X lon lat x y tol source   worked examples
  END
"""
import importlib.util
import math
import os
import sys

import numpy as np
import pyproj

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def pipeline(proj):
    """PROJ's operation for a CRS-like string: degrees in, grid out."""
    tokens = [t for t in proj.split() if t not in ("+type=crs", "+no_defs")]
    return pyproj.Transformer.from_pipeline(
        "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step " + " ".join(tokens))


def fmt(v):
    return "nan" if not math.isfinite(v) else "%.12g" % v if abs(v) < 1e-3 else repr(round(float(v), 10))


def frange(a, b, n):
    return [a + (b - a) * i / (n - 1) for i in range(n)]


def write_case(out, case):
    area = case["area"]
    tol = case.get("tol", 0.001)
    out.write("CASE\t%s\nCRS\t%s\nPROJ\t%s\nAREA\t%r\t%r\t%r\t%r\nTOL\t%r\n" % (
        case["id"], case["crs"], case.get("proj") or "-", area[0], area[1], area[2], area[3], tol))
    proj = case.get("proj")
    if proj:
        op = pipeline(proj)
        n = case.get("grid", 25)
        west, south, east, north = area
        if east < west:  # across the antimeridian
            east += 360.0
        lons, lats = [], []
        for lat in frange(south, north, n):
            for lon in frange(west, east, n):
                lons.append(lon if lon <= 180.0 else lon - 360.0)
                lats.append(lat)
        for lon, lat in case.get("edges", []):
            lons.append(float(lon))
            lats.append(float(lat))
        lon = np.array(lons)
        lat = np.array(lats)
        x, y = op.transform(lon, lat, errcheck=False)
        gamma = np.full(len(lon), np.nan)
        if case.get("convergence", True):
            p = pyproj.Proj(" ".join(t for t in proj.split() if t != "+type=crs"))
            for i in range(len(lon)):
                if math.isfinite(x[i]) and abs(lat[i]) < 90.0:
                    try:
                        g = p.get_factors(lon[i], lat[i], errcheck=True).meridian_convergence
                        gamma[i] = g if math.isfinite(g) else np.nan
                    except Exception:
                        gamma[i] = np.nan
        for i in range(len(lon)):
            out.write("F\t%s\t%s\t%s\t%s\t%s\n" % (fmt(lon[i]), fmt(lat[i]), fmt(x[i]), fmt(y[i]), fmt(gamma[i])))
        # The inverse over a box around the map.
        good = np.isfinite(x) & np.isfinite(y)
        if "inverse_box" in case:
            x0, y0, x1, y1 = case["inverse_box"]
        else:
            x0, x1 = float(np.min(x[good])), float(np.max(x[good]))
            y0, y1 = float(np.min(y[good])), float(np.max(y[good]))
            wx, wy = max(x1 - x0, 1000.0) / 5.0, max(y1 - y0, 1000.0) / 5.0
            x0, x1, y0, y1 = x0 - wx, x1 + wx, y0 - wy, y1 + wy
        m = case.get("inverse_grid", 21)
        xs, ys = [], []
        for yy in frange(y0, y1, m):
            for xx in frange(x0, x1, m):
                xs.append(xx)
                ys.append(yy)
        xs = np.array(xs)
        ys = np.array(ys)
        ilon, ilat = op.transform(xs, ys, direction="INVERSE", errcheck=False)
        bx, by = op.transform(ilon, ilat, errcheck=False)
        for i in range(len(xs)):
            back = math.isfinite(bx[i]) and math.isfinite(by[i]) and math.hypot(bx[i] - xs[i], by[i] - ys[i]) <= 0.001
            if back and math.isfinite(ilon[i]) and abs(ilat[i]) <= 90.0:
                out.write("I\t%s\t%s\t%s\t%s\n" % (fmt(xs[i]), fmt(ys[i]), fmt(ilon[i]), fmt(ilat[i])))
            else:
                out.write("I\t%s\t%s\tnan\tnan\n" % (fmt(xs[i]), fmt(ys[i])))
    for example in case.get("examples", []):
        lon, lat, x, y, source = example[:5]
        etol = example[5] if len(example) > 5 else 0.01
        out.write("X\t%r\t%r\t%r\t%r\t%r\t%s\n" % (lon, lat, x, y, etol, source))
    out.write("END\n")


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_method_vectors.py GROUP")
    group = sys.argv[1]
    path = os.path.join(ROOT, "tools", "method_cases", group + ".py")
    source = importlib.util.spec_from_file_location("cases_" + group, path)
    module = importlib.util.module_from_spec(source)
    source.loader.exec_module(module)
    target = os.path.join(ROOT, "tests", "data", "method_vectors_%s.txt" % group)
    with open(target, "w") as out:
        out.write("# Reference vectors of the projection methods of tools/method_cases/%s.py,\n"
                  "# from PROJ %s (pyproj %s); see tools/make_method_vectors.py.\n"
                  % (group, pyproj.proj_version_str, pyproj.__version__))
        for case in module.CASES:
            write_case(out, case)
    print("wrote", target)


if __name__ == "__main__":
    main()
