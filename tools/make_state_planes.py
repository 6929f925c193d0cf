#!/usr/bin/env python3
"""Generates the US state plane catalogues from the EPSG dataset.

The EPSG dataset is read from the SQLite copy that Debian's proj-data package
ships (/usr/share/proj/proj.db). Only facts are taken: each zone's method and
defining parameters. The library and its tests read the committed files only.

    tools/make_state_planes.py NAD83 > data/state_plane_nad83.gxr
    tools/make_state_planes.py NAD27 > data/state_plane_nad27.gxr

NAD83 zones are written in metres on GRS 1980 ("RF"), NAD27 zones in US survey
feet (the "_ft_us" keywords) on Clarke 1866 ("CC"). Zones whose method has no
definition type in the library are left out and listed in the file's header.
"""
import sqlite3
import sys

DB = "/usr/share/proj/proj.db"

DATUMS = {
    # datum: (geodetic CRS code, conversion name pattern, ellipsoid ID, length unit)
    "NAD83": (4269, "SPCS83 %", "RF", "9001"),
    "NAD27": (4267, "% CS27 %", "CC", "9003"),
}

# EPSG parameter codes
LAT0, LON0, K0, FE, FN = 8801, 8802, 8805, 8806, 8807
LATF, LONF, SP1, SP2, EF, NF = 8821, 8822, 8823, 8824, 8826, 8827
LATC, LONC, AZ, GAMMA, KC = 8811, 8812, 8813, 8814, 8815
EC, NC = 8816, 8817

DEGREE, SEXAGESIMAL, UNITY, METRE, US_FOOT = "9102", "9110", "9201", "9001", "9003"


def num(value):
    """The shortest text that reads back to the same double."""
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def sexagesimal_parts(value):
    """EPSG's sexagesimal DMS unit packs D.MMSSsss into one number."""
    text = repr(abs(value))
    whole, _, fraction = text.partition(".")
    fraction = fraction.ljust(4, "0")
    minutes = int(fraction[:2])
    seconds = float(fraction[2:4] + "." + (fraction[4:] or "0"))
    return (-1 if value < 0 else 1), int(whole), minutes, seconds


def angle_entry(keyword, value, uom, dms_allowed):
    """A keyword line for an angle, in degrees/minutes/seconds where EPSG has it so."""
    if uom == DEGREE:
        return "%-20s %s" % (keyword, num(value))
    if uom != SEXAGESIMAL:
        raise ValueError("unexpected angle unit %s" % uom)
    sign, d, m, s = sexagesimal_parts(value)
    # The degrees carry the sign, so a negative angle under one degree has no DMS form.
    if dms_allowed and not (sign < 0 and d == 0):
        sec = ("%.6f" % s).rstrip("0").rstrip(".")
        return "%-20s %d %d %s" % (keyword + "_dms", sign * d, m, sec)
    return "%-20s %s" % (keyword, num(sign * (d + m / 60.0 + s / 3600.0)))


def length_entry(keyword, value, uom):
    if uom == METRE:
        return "%-20s %s" % (keyword, num(value))
    if uom == US_FOOT:
        return "%-20s %s" % (keyword + "_ft_us", num(value))
    raise ValueError("unexpected length unit %s" % uom)


def scale_entry(value, uom):
    if uom != UNITY:
        raise ValueError("unexpected scale unit %s" % uom)
    return "%-20s %s" % ("Scale", num(value))


def zones(db, datum):
    gcrs, pattern, _, _ = DATUMS[datum]
    cols = [d[0] for d in db.execute("select * from conversion_table limit 1").description]
    rows = db.execute(
        "select p.code, p.name, c.* from projected_crs p join conversion_table c"
        " on p.conversion_auth_name = c.auth_name and p.conversion_code = c.code"
        " where p.auth_name = 'EPSG' and p.deprecated = 0 and p.geodetic_crs_code = ?"
        " and c.name like ? order by p.name", (gcrs, pattern)).fetchall()
    for row in rows:
        code, name, rec = row[0], row[1], dict(zip(cols, row[2:]))
        params = {}
        for i in range(1, 8):
            if rec.get("param%d_code" % i) is not None:
                params[int(rec["param%d_code" % i])] = (rec["param%d_value" % i], str(rec["param%d_uom_code" % i]))
        yield code, name, str(rec["method_code"]), params


def section(datum, code, name, method, p):
    _, _, ellipsoid, unit = DATUMS[datum]
    if p.get(FE, p.get(EF, p.get(EC)))[1] != unit:
        return None, "lengths in another unit"
    head = ['    %-20s "%s"' % ("Projection_Name", name), '    %-20s "%s"' % ("Branch_Name", datum),
            '    %-20s "%s"' % ("Ellipsoid", ellipsoid)]
    if method == "9807":
        lines = ("UTM_PROJECTION", [scale_entry(*p[K0]), angle_entry("Centre", *p[LON0], True),
                 angle_entry("Origin_Latitude", *p[LAT0], True), length_entry("Feast", *p[FE]),
                 length_entry("Fnorth", *p[FN])])
    elif method == "9801":
        lines = ("LAMBERT_CONIC_1SP_PROJECTION", [scale_entry(*p[K0]), angle_entry("Origin_Longitude", *p[LON0], True),
                 angle_entry("Origin_Latitude", *p[LAT0], True), length_entry("Feast", *p[FE]),
                 length_entry("Fnorth", *p[FN])])
    elif method == "9802":
        lines = ("LAMBERT_CONIC_2SP_PROJECTION", [angle_entry("Parallel_1", *p[SP1], True),
                 angle_entry("Parallel_2", *p[SP2], True), angle_entry("Origin_Longitude", *p[LONF], True),
                 angle_entry("Origin_Latitude", *p[LATF], True), length_entry("Feast", *p[EF]),
                 length_entry("Fnorth", *p[NF])])
    elif method == "9812":
        same = p[AZ] == p[GAMMA]
        body = [scale_entry(*p[KC]), angle_entry("Center_Longitude", *p[LONC], True),
                angle_entry("Center_Latitude", *p[LATC], True), angle_entry("Azimuth", *p[AZ], False)]
        if not same:
            body.append(angle_entry("XY_Plane_Rotation", *p[GAMMA], False))
        body += [length_entry("Feast", *p[FE]), length_entry("Fnorth", *p[FN])]
        lines = ("HOTINE_OBLIQUE_MERCATOR_PROJECTION" if same else "RECTIFIED_SKEW_ORTHOMORPHIC_PROJECTION", body)
    else:
        return None, "method EPSG:%s has no definition type" % method
    sid, body = lines
    text = ["  # EPSG:%d" % code, "  SECTION " + sid] + head + ["    " + b for b in body] + ["  END_SECTION"]
    return text, None


def main():
    datum = sys.argv[1] if len(sys.argv) > 1 else "NAD83"
    db = sqlite3.connect(DB)
    version = db.execute("select value from metadata where key = 'EPSG.VERSION'").fetchone()
    written, skipped, body = 0, [], []
    for code, name, method, params in zones(db, datum):
        text, why = section(datum, code, name, method, params)
        if text is None:
            # Zones in other length units are separate CRSs of a zone written here.
            if why != "lengths in another unit":
                skipped.append("#   EPSG:%d %s: %s" % (code, name, why))
            continue
        body += text + [""]
        written += 1
    out = ["# US state plane coordinate zones on %s, generated by tools/make_state_planes.py" % datum,
           "# from the EPSG dataset %s (Debian proj-data). %d zones." % (version[0] if version else "", written)]
    if skipped:
        out.append("# Left out, because their method has no definition type in the library:")
        out += skipped
    out += ["", "TARGET MAP_PROJECTION_DEFINITION", ""] + body + ["END_TARGET"]
    sys.stdout.write("\n".join(out) + "\n")


if __name__ == "__main__":
    main()
