#!/usr/bin/python3
"""Builds tests/data/epsg_corpus.tsv.tar.xz: every EPSG projected coordinate
system as GDAL writes it into a .prj file, with PROJ's coordinates at three
points of each system's area of use.

For every projected system of PROJ's EPSG dataset that is not deprecated
(pyproj.database.query_crs_info), GDAL (osgeo.osr, ImportFromEPSG) writes two
one-line texts:
  E  the ESRI form, ExportToWkt(['FORMAT=WKT1_ESRI']) - what
     `gdalsrsinfo -o wkt_esri EPSG:n` prints, the text of an ESRI .prj file;
  O  the OGC form, ExportToWkt(['FORMAT=WKT1']) - GDAL's WKT 1,
     `gdalsrsinfo -o wkt1 EPSG:n`, with AUTHORITY, AXIS and (where the dataset
     has one) TOWGS84 nodes. It is the text of ExportToWkt() without options,
     except that for a method WKT 1 cannot name the option-less call falls back
     to WKT 2 without a word; such a system gets GDAL's WKT 1 error instead.
Where GDAL cannot write a form (an error, or an empty text) its message is kept
instead of the text.

Each system has three points in its area of use (the EPSG box west, south,
east, north; for the few systems with several usages, the first, which is the
one PROJ gives the CRS): the box's centre and the points at 25 % and 75 % of
its width and height. A box across the antimeridian has west > east; its longitude range is
unwrapped (east + 360) before the points are placed, and the points are then
normalised into [-180, 180]. Points are Greenwich longitude and latitude in
degrees on the system's own geodetic datum, so no datum shift is involved.

PROJ (pyproj) gives the expected coordinates twice:
  (a) on the text itself: CRS.from_wkt(text) and a Transformer from the text's
      own geodetic system to it. The input is given as that geodetic system
      reads it (its axis order and directions, its angular unit, longitude from
      its prime meridian), the output is converted to metres in the projected
      system's own axis order. This is what a reader of the text must compute.
  (b) on EPSG:n itself, the same way (EPSG's axis order, metres). Where (a) and
      (b) differ, the text does not say what the EPSG definition says.
A point PROJ cannot compute is written "nan" (every point of a method PROJ
does not implement: Krovak Modified, the west-orientated Lambert conic, ...);
a text PROJ cannot read gets its message.

Axis directions alone do not fix the order on a polar system: the ESRI text of
UPS North reads as (easting, northing) and its OGC text as (northing, easting),
both "south, south". P and G points are each in their own system's order.

Usage:
  /usr/bin/python3 tools/make_epsg_corpus.py tests/data/epsg_corpus.tsv.tar.xz
  /usr/bin/python3 tools/make_epsg_corpus.py --tsv epsg_corpus.tsv   (plain text)
It uses both cores (about three minutes). The archive is an xz-compressed tar
(xz -9e) holding the one file epsg_corpus.tsv, written reproducibly (fixed time
stamp and owner), because CMake's extraction reads tar archives and not a bare
.xz stream. A summary (systems per method, texts GDAL could not write, texts
PROJ could not read) goes to standard error.

Output: UTF-8, tab-separated, one record a line, a system's records together
and systems in ascending code order. Lines starting with '#' are comments; the
first names the PROJ, GDAL and EPSG dataset versions.
  S  code  name  method-code  method-name  west  south  east  north
  W  code  E|O  wkt                      the text GDAL writes
  X  code  E|O  reason                   instead of W: GDAL could not write it
  A  code  E|O  axis1  axis2  metres-per-unit
                                         PROJ's reading of the text: the projected
                                         axes' directions (east, north, west, south,
                                         ...) and the linear unit in metres
  U  code  E|O  reason                   instead of A: PROJ could not read the text
  P  code  E|O  lon  lat  x  y           (a): PROJ on the text, three lines per text
                                         that GDAL wrote, in metres, text's axis order
  G  code  lon  lat  x  y                (b): PROJ on EPSG:n, three lines per system
lon, lat are Greenwich degrees; x, y are metres along the first and second axis.
Numbers are Python's repr(), the shortest text that reads back to the same
double (at most 17 significant digits); "nan" where PROJ gave no finite value.
"""
import io
import lzma
import math
import multiprocessing
import sys
import tarfile
from collections import Counter

import pyproj
from osgeo import gdal, osr
from pyproj.database import get_database_metadata, query_crs_info
from pyproj.enums import PJType

FORMS = (("E", ["FORMAT=WKT1_ESRI"]), ("O", ["FORMAT=WKT1"]))


def num(v):
    return repr(float(v)) if math.isfinite(v) else "nan"


def clean(text):
    """A message on one field: no tabs or line breaks."""
    return " ".join(str(text).split()) or "(no message)"


def sample_points(area):
    """Centre and the 25 % / 75 % points of the box, Greenwich degrees."""
    west, south, east, north = area
    if east < west:  # across the antimeridian
        east += 360.0
    points = []
    for f in (0.25, 0.5, 0.75):
        lon = west + f * (east - west)
        if lon > 180.0:
            lon -= 360.0
        points.append((lon, south + f * (north - south)))
    return points


def project(crs, points):
    """PROJ's coordinates of (lon, lat) Greenwich degrees in crs, in metres
    along crs's own axes; the input is given in crs's geodetic system's axis
    order, angular unit and prime meridian."""
    geod = crs.geodetic_crs
    pm = geod.prime_meridian
    pm_rad = pm.longitude * pm.unit_conversion_factor
    axes = geod.axis_info
    first, second = [], []
    for lon, lat in points:
        lam = math.radians(lon) - pm_rad
        phi = math.radians(lat)
        values = []
        for a in axes[:2]:
            d = a.direction.lower()
            v = {"east": lam, "west": -lam, "north": phi, "south": -phi}[d]
            values.append(v / a.unit_conversion_factor)
        first.append(values[0])
        second.append(values[1])
    tr = pyproj.Transformer.from_crs(geod, crs, always_xy=False)
    xs, ys = tr.transform(first, second, errcheck=False)
    fx, fy = (a.unit_conversion_factor for a in crs.axis_info[:2])
    return [(x * fx, y * fy) for x, y in zip(xs, ys)]


def gdal_text(code, options):
    """(wkt, None) or (None, GDAL's reason)."""
    messages = []

    def handler(cls, no, msg):
        messages.append(msg)

    gdal.PushErrorHandler(handler)
    try:
        srs = osr.SpatialReference()
        srs.ImportFromEPSG(int(code))
        wkt = srs.ExportToWkt(options)
    except RuntimeError as e:
        return None, clean(e)
    finally:
        gdal.PopErrorHandler()
    if not wkt:
        return None, clean("; ".join(messages) or "empty text")
    return wkt, None


def system_lines(system):
    """All records of one system: (code, name)."""
    code, name = system
    lines = []
    epsg = pyproj.CRS.from_epsg(int(code))
    op = epsg.coordinate_operation
    a = epsg.area_of_use
    area = (a.west, a.south, a.east, a.north)
    lines.append("\t".join(["S", code, name, str(op.method_code), op.method_name] + [num(v) for v in area]))
    points = sample_points(area)
    notes = []  # (form, kind, reason) for the summary
    for form, options in FORMS:
        wkt, reason = gdal_text(code, options)
        if wkt is None:
            lines.append("\t".join(["X", code, form, reason]))
            notes.append((form, "gdal", reason))
            continue
        assert "\t" not in wkt and "\n" not in wkt
        lines.append("\t".join(["W", code, form, wkt]))
        try:
            crs = pyproj.CRS.from_wkt(wkt)
            axes = crs.axis_info
            lines.append("\t".join(["A", code, form, axes[0].direction.lower(), axes[1].direction.lower(),
                                    num(axes[0].unit_conversion_factor)]))
            if axes[0].unit_conversion_factor != axes[1].unit_conversion_factor:
                notes.append((form, "units", "axes in different units"))
        except pyproj.exceptions.CRSError as e:
            lines.append("\t".join(["U", code, form, clean(e)]))
            notes.append((form, "proj", clean(e)))
            crs = None
        try:
            xy = project(crs, points) if crs is not None else None
        except (pyproj.exceptions.ProjError, pyproj.exceptions.CRSError, KeyError) as e:
            notes.append((form, "point", clean(e)))
            xy = None
        if xy is None:
            xy = [(math.nan, math.nan)] * len(points)
        for (lon, lat), (x, y) in zip(points, xy):
            if not (math.isfinite(x) and math.isfinite(y)):
                notes.append((form, "nan", "PROJ gave no finite value"))
            lines.append("\t".join(["P", code, form, num(lon), num(lat), num(x), num(y)]))
    try:
        xy = project(epsg, points)
    except (pyproj.exceptions.ProjError, KeyError) as e:
        notes.append(("G", "point", clean(e)))
        xy = [(math.nan, math.nan)] * len(points)
    for (lon, lat), (x, y) in zip(points, xy):
        lines.append("\t".join(["G", code, num(lon), num(lat), num(x), num(y)]))
    return int(code), op.method_name, lines, notes


def write_xz_tar(path, member_name, data):
    """Writes data as the one file member_name of an xz-compressed tar (xz -9e),
    reproducibly: fixed time stamp, owner and mode. CMake's extraction reads tar
    archives, not a bare .xz stream."""
    tar_bytes = io.BytesIO()
    with tarfile.open(fileobj=tar_bytes, mode="w", format=tarfile.USTAR_FORMAT) as tar:
        member = tarfile.TarInfo(member_name)
        member.size = len(data)
        member.mtime = 0
        member.mode = 0o644
        member.uname = member.gname = "root"
        tar.addfile(member, io.BytesIO(data))
    with open(path, "wb") as f:
        f.write(lzma.compress(tar_bytes.getvalue(), format=lzma.FORMAT_XZ, check=lzma.CHECK_CRC64,
                              preset=9 | lzma.PRESET_EXTREME))


def init_worker():
    osr.UseExceptions()


def main():
    args = sys.argv[1:]
    plain = args[:1] == ["--tsv"]
    if plain:
        args = args[1:]
    if len(args) != 1:
        sys.exit(__doc__)
    out_path = args[0]

    infos = query_crs_info(auth_name="EPSG", pj_types=PJType.PROJECTED_CRS, allow_deprecated=False)
    # One row per usage: a system used in several areas comes more than once.
    systems = sorted({(i.code, i.name) for i in infos}, key=lambda s: int(s[0]))
    with multiprocessing.Pool(2, initializer=init_worker) as pool:
        results = pool.map(system_lines, systems, chunksize=32)

    meta = get_database_metadata
    header = ("# Every non-deprecated EPSG projected coordinate system (%d), as GDAL %s writes it "
              "(E: WKT1_ESRI, O: WKT1_GDAL), with PROJ %s's coordinates (pyproj %s); "
              "EPSG dataset %s (%s), PROJ data %s. Made by tools/make_epsg_corpus.py."
              % (len(results), gdal.__version__, pyproj.proj_version_str, pyproj.__version__,
                 meta("EPSG.VERSION"), meta("EPSG.DATE"), meta("PROJ_DATA.VERSION")))
    body = "\n".join([header] + [line for r in results for line in r[2]]) + "\n"
    data = body.encode("utf-8")

    if plain:
        with open(out_path, "wb") as f:
            f.write(data)
    else:
        write_xz_tar(out_path, "epsg_corpus.tsv", data)

    # Summary.
    methods = Counter(r[1] for r in results)
    notes = Counter((form, kind, reason) for r in results for form, kind, reason in r[3])
    err = sys.stderr
    print("systems: %d, uncompressed %d bytes" % (len(results), len(data)), file=err)
    for name, n in sorted(methods.items(), key=lambda kv: (-kv[1], kv[0])):
        print("  %5d  %s" % (n, name), file=err)
    for (form, kind, reason), n in sorted(notes.items()):
        print("  %s %-5s %5d  %s" % (form, kind, n, reason), file=err)


if __name__ == "__main__":
    main()
