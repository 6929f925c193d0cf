#!/usr/bin/env python3
"""Writes tests/data/datum_vectors.txt: reference values from PROJ for datum
conversions between systems with published TOWGS84 shifts, and for geodetic to
geocentric conversions.

  C  case  type  source  target
     the systems of a conversion case (WKT, or "LONG/LAT", which the converter
     takes as WGS 84 when the other side has a shift) and its type (0 projected
     to projected, 1 projected to geographical, 2 geographical to projected,
     3 geographical to geographical)
  S  case  side  dx  dy  dz  rx  ry  rz  ds
     a shift set on the converter after it is made, replacing that side's
     (1 source, 0 target): 3 or 7 values as CKvDatumConverter::SetDatumShift
     takes them, rotations in radians and the scale as a plain correction
  V  case  x  y  h  x'  y'  h'
     input in the source's terms, output in the target's, from PROJ's cs2cs with
     the same +towgs84 on both sides (position-vector Helmert, PROJ's default
     small-angle form). Far from the ellipsoid (the case of heights 1500 km
     below it to 1e10 m above), where PROJ's one-step return from geocentric
     coordinates (Bowring's start on the ellipsoid) is decimetres off, the
     output comes from PROJ's cct (+proj=cart, +proj=helmert) and GeographicLib's
     CartConvert -r, exact to round-off
  G  ellipsoid-a  ellipsoid-rf  lon  lat  h  X  Y  Z
     geodetic to geocentric, from PROJ's cct +proj=cart, heights -1 km to 10 km
  H  the same fields: the poles, and heights from 0.24 times the semi-major
     axis below the ellipsoid (the converter's domain ends at a quarter) to
     1e11 m above it

Usage: tools/make_datum_vectors.py > tests/data/datum_vectors.txt
(needs PROJ's cs2cs and cct, Debian package proj-bin, and GeographicLib's
CartConvert, Debian package geographiclib-tools).
"""
import re
import subprocess

DEG = 'UNIT["degree",0.0174532925199433]'

DATUMS = {
    # name: (ellipsoid, a, rf, proj ellipsoid, towgs84) -- EPSG published shifts
    "OSGB36": ("Airy 1830", 6377563.396, 299.3249646, "+ellps=airy",
               [446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489]),       # EPSG:1314
    "ED50": ("International 1924", 6378388, 297, "+ellps=intl", [-87, -98, -121, 0, 0, 0, 0]),  # EPSG:1133
    "DHDN": ("Bessel 1841", 6377397.155, 299.1528128, "+ellps=bessel",
             [598.1, 73.7, 418.2, 0.202, 0.045, -2.455, 6.7]),                   # EPSG:1777
    "S-JTSK": ("Bessel 1841", 6377397.155, 299.1528128, "+ellps=bessel",
               [570.8, 85.7, 462.8, 4.998, 1.587, 5.261, 3.56]),                 # EPSG:1623
    "NAD27": ("Clarke 1866", 6378206.4, 294.978698213898, "+ellps=clrk66", [-8, 160, 176, 0, 0, 0, 0]),  # EPSG:1173
    "WGS84": ("WGS 84", 6378137, 298.257223563, "+ellps=WGS84", None),
}


def geogcs(datum):
    ell, a, rf, _, shift = DATUMS[datum]
    towgs = ",TOWGS84[%s]" % ",".join("%.17g" % v for v in shift) if shift else ""
    return 'GEOGCS["%s",DATUM["%s",SPHEROID["%s",%.17g,%.17g]%s],PRIMEM["Greenwich",0],%s]' % (
        datum, datum, ell, a, rf, towgs, DEG)


def proj_geog(datum):
    _, _, _, ellps, shift = DATUMS[datum]
    return "+proj=longlat %s %s" % (ellps, "+towgs84=" + ",".join("%.17g" % v for v in shift) if shift
                                     else "+towgs84=0,0,0")


def tm(datum, name, lat0, lon0, k, x0, y0):
    wkt = ('PROJCS["%s",%s,PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",%s],'
           'PARAMETER["central_meridian",%s],PARAMETER["scale_factor",%s],PARAMETER["false_easting",%s],'
           'PARAMETER["false_northing",%s],UNIT["metre",1]]') % (name, geogcs(datum), lat0, lon0, k, x0, y0)
    proj = "+proj=tmerc +lat_0=%s +lon_0=%s +k=%s +x_0=%s +y_0=%s %s" % (
        lat0, lon0, k, x0, y0, proj_geog(datum).replace("+proj=longlat ", ""))
    return wkt, proj


def geog(datum):
    return geogcs(datum), proj_geog(datum)


# The catalogue's longitude/latitude without a datum: WGS 84 for the converter
# when the other side has a shift.
LONGLAT = ("LONG/LAT", proj_geog("WGS84"))


def geographic_of(proj):
    """The PROJ string of a system's own latitude and longitude: its ellipsoid and shift."""
    return " ".join(["+proj=longlat"] + [t for t in proj.split() if t.startswith(("+ellps=", "+towgs84="))])


BNG = tm("OSGB36", "OSGB 1936 / British National Grid", 49, -2, 0.9996012717, 400000, -100000)
UTM30_WGS = tm("WGS84", "WGS 84 / UTM zone 30N", 0, -3, 0.9996, 500000, 0)
UTM32_ED50 = tm("ED50", "ED50 / UTM zone 32N", 0, 9, 0.9996, 500000, 0)
GK3_DHDN = tm("DHDN", "DHDN / 3-degree Gauss-Kruger zone 3", 0, 9, 1, 3500000, 0)
UTM14_NAD27 = tm("NAD27", "NAD27 / UTM zone 14N", 0, -99, 0.9996, 500000, 0)

BNG_NO_SHIFT = (BNG[0].replace(",TOWGS84[%s]" % ",".join("%.17g" % v for v in DATUMS["OSGB36"][4]), ""),
                BNG[1])
ARCSEC = 3.141592653589793 / 180 / 3600


def converter_shift(towgs84):
    """TOWGS84 values as SetDatumShift takes them: rotations in radians, scale as a correction."""
    return towgs84[:3] + ([v * ARCSEC for v in towgs84[3:6]] + [towgs84[6] * 1e-6] if len(towgs84) == 7 else [])


def with_shift(system, towgs84):
    """The PROJ side of a system whose shift is replaced by towgs84."""
    return system[0], re.sub(r"\+towgs84=\S+", "+towgs84=" + ",".join("%.17g" % v for v in towgs84), system[1])


# OSGB36 to WGS 84 (1), EPSG:1195: the 3-parameter shift, set over the WKT's 7.
OSGB36_3 = [375.0, -111.0, 431.0]
BRITAIN = (-5.5, -0.5, 50.5, 56.0)
HIGH = [-1.5e6, -1.0e6, 1.0e6, 1.0e8, 1.0e10]

# (case, type, source, target, source-side grid of lon/lat to sample[, heights][, shift set])
CASES = [
    ("osgb36-bng-to-wgs84-utm30", 0, BNG, UTM30_WGS, (-5.5, -0.5, 50.5, 56.0)),
    ("ed50-utm32-to-wgs84", 1, UTM32_ED50, geog("WGS84"), (6.5, 11.5, 44.0, 55.0)),
    ("wgs84-to-dhdn-gk3", 2, geog("WGS84"), GK3_DHDN, (7.5, 10.5, 47.5, 54.5)),
    ("sjtsk-to-ed50", 3, geog("S-JTSK"), geog("ED50"), (12.5, 22.5, 47.8, 51.0)),
    ("nad27-to-wgs84", 3, geog("NAD27"), geog("WGS84"), (-120.0, -75.0, 26.0, 48.0)),
    ("osgb36-to-dhdn", 3, geog("OSGB36"), geog("DHDN"), (-5.0, 1.5, 50.5, 58.0)),
    ("nad27-utm14-to-osgb36", 1, UTM14_NAD27, geog("OSGB36"), (-101.5, -96.5, 30.0, 45.0)),
    # LONG/LAT against a system with a shift, both orders, every type: WGS 84.
    ("longlat-to-bng-0", 0, LONGLAT, BNG, BRITAIN),
    ("longlat-to-bng-1", 1, LONGLAT, BNG, BRITAIN),
    ("longlat-to-bng-2", 2, LONGLAT, BNG, BRITAIN),
    ("longlat-to-bng-3", 3, LONGLAT, BNG, BRITAIN),
    ("bng-to-longlat-0", 0, BNG, LONGLAT, BRITAIN),
    ("bng-to-longlat-1", 1, BNG, LONGLAT, BRITAIN),
    ("bng-to-longlat-2", 2, BNG, LONGLAT, BRITAIN),
    ("bng-to-longlat-3", 3, BNG, LONGLAT, BRITAIN),
    ("longlat-to-ed50", 3, LONGLAT, geog("ED50"), (6.5, 11.5, 44.0, 55.0)),
    # A shift set after the converter is made: on a grid that had none, and in
    # place of the grid's own.
    ("longlat-to-bng-set-7", 2, LONGLAT, BNG_NO_SHIFT, BRITAIN, None,
     (0, DATUMS["OSGB36"][4])),
    ("longlat-to-bng-set-3", 2, LONGLAT, BNG, BRITAIN, None, (0, OSGB36_3)),
    # Far from the ellipsoid: 1500 km below it to 1e10 m above.
    ("nad27-to-wgs84-heights", 3, geog("NAD27"), geog("WGS84"), (-120.0, -75.0, 26.0, 48.0), HIGH),
]

HEIGHTS = [-1000.0, 0.0, 250.0, 3000.0, 10000.0]


def run(args, text):
    r = subprocess.run(args, input=text, capture_output=True, text=True, check=True)
    return [line.split() for line in r.stdout.strip().splitlines()]


def far_reference(source_proj, target_datum, points):
    """Latitude/longitude to latitude/longitude through exact geocentric
    coordinates: PROJ's cart and Helmert forward, GeographicLib's exact inverse
    on the target's ellipsoid, whose datum is WGS 84 (no shift of its own)."""
    ellps = [t for t in source_proj.split() if t.startswith("+ellps=")][0]
    shift = [t for t in source_proj.split() if t.startswith("+towgs84=")][0][len("+towgs84="):].split(",")
    assert DATUMS[target_datum][4] is None and all(float(v) == 0.0 for v in shift[3:])
    xyz = run(["cct", "-d", "6", "+proj=pipeline", "+step", "+proj=cart", ellps, "+step", "+proj=helmert",
               "+x=" + shift[0], "+y=" + shift[1], "+z=" + shift[2]],
              "".join("%.10f %.10f %.6f 0\n" % p for p in points))
    _, a, rf, _, _ = DATUMS[target_datum]
    geo = run(["CartConvert", "-r", "-p", "10", "-e", "%.17g" % a, "1/%.17g" % rf],
              "".join("%s %s %s\n" % tuple(r[:3]) for r in xyz))
    return [(lon, lat, h) for lat, lon, h in geo]


def main():
    version = subprocess.run(["cs2cs"], capture_output=True, text=True).stderr.split(",")[0].replace("Rel. ", "")
    print("# Generated by tools/make_datum_vectors.py with PROJ %s (cs2cs --3d, cct); do not edit." % version)
    for case, kind, source, target, (w, e, s, n), *extra in CASES:
        heights = extra[0] if extra and extra[0] else HEIGHTS
        (swkt, sproj), (twkt, tproj) = source, target
        print("C\t%s\t%d\t%s\t%s" % (case, kind, swkt, twkt))
        if len(extra) > 1:
            side, towgs84 = extra[1]
            print("S\t%s\t%d\t%s" % (case, side, "\t".join("%.17g" % v for v in converter_shift(towgs84))))
            if side:
                sproj = with_shift(source, towgs84)[1]
            else:
                tproj = with_shift(target, towgs84)[1]
        geo = [(w + (e - w) * i / 3, s + (n - s) * j / 3, heights[(i + j) % len(heights)])
               for i in range(4) for j in range(4)]
        if kind in (0, 1):  # input projected: project the sample in the source system itself
            pts = run(["cs2cs", "--3d", "-f", "%.6f", geographic_of(sproj), "+to", sproj],
                      "".join("%.10f %.10f %.4f\n" % p for p in geo))
            inputs = [(float(x), float(y), float(h)) for x, y, h in pts]
        # Types 2 and 3 read the source's latitude and longitude, 1 and 3 write the target's.
        read = geographic_of(sproj) if kind in (2, 3) else sproj
        written = geographic_of(tproj) if kind in (1, 3) else tproj
        if kind in (2, 3):
            inputs = geo
        if extra and extra[0]:
            out = far_reference(read, "WGS84", inputs)
        else:
            out = run(["cs2cs", "--3d", "-f", "%.10f", read, "+to", written],
                      "".join("%.10f %.10f %.6f\n" % p for p in inputs))
        for (x, y, h), (x2, y2, h2) in zip(inputs, out):
            print("V\t%s\t%.10f\t%.10f\t%.6f\t%s\t%s\t%s" % (case, x, y, h, x2, y2, h2))
    for name in ("WGS84", "ED50", "NAD27", "OSGB36"):
        _, a, rf, ellps, _ = DATUMS[name]
        pts = [(lon, lat, h) for lon in (-179.5, -60.0, 0.0, 45.5, 135.0) for lat in (-89.9, -45.0, 0.0, 30.0, 60.0, 89.9)
               for h in HEIGHTS]
        out = run(["cct", "-d", "6", "+proj=cart", ellps], "".join("%.10f %.10f %.4f 0\n" % p for p in pts))
        for (lon, lat, h), r in zip(pts, out):
            print("G\t%.17g\t%.17g\t%.10f\t%.10f\t%.4f\t%s\t%s\t%s" % (a, rf, lon, lat, h, r[0], r[1], r[2]))
    for name in ("WGS84", "NAD27"):
        _, a, rf, ellps, _ = DATUMS[name]
        pts = [(lon, lat, h) for lon in (-179.5, 0.0, 45.5) for lat in (-90.0, -60.0, 0.0, 30.0, 89.9, 90.0)
               for h in (-0.24 * a, -1.0e6, 1.0e6, 1.0e7, 1.0e9, 1.0e11)]
        out = run(["cct", "-d", "6", "+proj=cart", ellps], "".join("%.10f %.10f %.4f 0\n" % p for p in pts))
        for (lon, lat, h), r in zip(pts, out):
            print("H\t%.17g\t%.17g\t%.10f\t%.10f\t%.4f\t%s\t%s\t%s" % (a, rf, lon, lat, h, r[0], r[1], r[2]))


if __name__ == "__main__":
    main()
