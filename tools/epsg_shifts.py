"""The datum shift to WGS 84 that KvCart attaches to an EPSG coordinate system.

Shared by the generators that write shifts into shipped data (the EPSG registry
file, the catalogue's national grids and state planes), so that every place
gives one system the same Helmert.

The rule: the transformations PROJ offers from the system's geodetic CRS to
WGS 84 (EPSG:4326), ranked by PROJ for the system's area of use (what
`cs2cs EPSG:4326 EPSG:n` considers), without ballpark operations. The first of
them that is a plain Helmert - geocentric translations (3 parameters), position
vector or coordinate frame rotation (7 parameters), in the geographic or the
geocentric domain - is the system's shift. When PROJ ranks an operation above it
that KvCart cannot apply (a grid such as NADCON or OSTN15, a time-dependent or
Molodensky-Badekas Helmert), that operation is named as "better", so the shift's
accuracy is read in its light.

Parameters come back in KvCart's convention: translations in metres, rotations
in arc-seconds in the position-vector convention (a coordinate-frame rotation is
negated), scale in parts per million. A transformation PROJ only has in the
direction WGS 84 -> system is inverted by negating its seven parameters, which is
exact to first order (the second-order terms stay below 1 mm for every
transformation in the registry; the registry test checks it).

Needs /usr/bin/python3 with pyproj (Debian's python3-pyproj); a tool only.
"""
import math
import warnings

import pyproj
from pyproj.aoi import AreaOfInterest
from pyproj.transformer import TransformerGroup

WGS84 = pyproj.CRS.from_epsg(4326)

# EPSG method codes of the Helmert forms KvCart applies.
TRANSLATIONS = {9603, 1031, 1035}            # geog2D, geocentric, geog3D domains
POSITION_VECTOR = {9606, 1033, 1037}
COORDINATE_FRAME = {9607, 1032, 1038}
HELMERT = TRANSLATIONS | POSITION_VECTOR | COORDINATE_FRAME

# Parameter codes: translations 8605-8607, rotations 8608-8610, scale 8611.
PARAM_ORDER = (8605, 8606, 8607, 8608, 8609, 8610, 8611)

_ARCSEC = {"arc-second": 1.0, "arc-seconds": 1.0, "radian": 206264.80624709636,
           "microradian": 0.20626480624709636, "degree": 3600.0,
           "milliarc-second": 0.001}
_PPM = {"parts per million": 1.0, "unity": 1e6, "parts per billion": 1e-3}
_METRE = {"metre": 1.0, "millimetre": 0.001, "centimetre": 0.01}


def _unit_name(p):
    u = p.get("unit", "metre")
    return u if isinstance(u, str) else u.get("name", "")


def _helmert_of(op):
    """(method code, parameters in PV arcsec ppm, inverted?) of a one-step
    Helmert, or None."""
    t = op.get("type")
    if t == "ConcatenatedOperation":
        found = None
        for step in op.get("steps", []):
            if step.get("type") == "Conversion":
                continue
            h = _helmert_of(step)
            name = step.get("name", "")
            if h is None:
                method = step.get("method", {}).get("id", {}).get("code")
                if method == 9601 and "Null" not in name:
                    # A longitude rotation from a prime meridian other than
                    # Greenwich: the system's PRIMEM node says it already.
                    continue
                if method in (9601, 1064) or "Null" in name:
                    # A null geographic offset between two CRSs of one datum.
                    if all(p.get("value", 0) == 0 for p in step.get("parameters", [])):
                        continue
                return None
            if found is not None:
                return None
            found = h
        return found
    if t not in ("Transformation",):
        return None
    inverted = op.get("name", "").startswith("Inverse of ")
    method = op.get("method", {})
    code = method.get("id", {}).get("code")
    if code is None:
        # An inverse PROJ builds keeps the method's name.
        return None
    if code not in HELMERT:
        return None
    values = {}
    for p in op.get("parameters", []):
        pc = p.get("id", {}).get("code")
        if pc not in PARAM_ORDER:
            continue
        unit = _unit_name(p)
        v = float(p["value"])
        if pc in (8605, 8606, 8607):
            if unit not in _METRE:
                return None
            v *= _METRE[unit]
        elif pc in (8608, 8609, 8610):
            if unit not in _ARCSEC:
                return None
            v *= _ARCSEC[unit]
        else:
            if unit not in _PPM:
                return None
            v = v * _PPM[unit]
        values[pc] = v
    params = [values.get(c, 0.0) for c in PARAM_ORDER]
    if code in COORDINATE_FRAME:
        params[3:6] = [-r for r in params[3:6]]
    if inverted:
        params = [-v for v in params]
    return code, params, inverted


def _geocentric(lon, lat, a, f):
    e2 = f * (2.0 - f)
    lam, phi = math.radians(lon), math.radians(lat)
    n = a / math.sqrt(1.0 - e2 * math.sin(phi) ** 2)
    return (n * math.cos(phi) * math.cos(lam), n * math.cos(phi) * math.sin(lam), n * (1.0 - e2) * math.sin(phi))


def _geodetic(x, y, z, a, f):
    e2 = f * (2.0 - f)
    p = math.hypot(x, y)
    lat = math.atan2(z, p * (1.0 - e2))
    for _ in range(10):
        n = a / math.sqrt(1.0 - e2 * math.sin(lat) ** 2)
        lat = math.atan2(z + e2 * n * math.sin(lat), p)
    return math.degrees(math.atan2(y, x)), math.degrees(lat)


def _agrees(geod, area, tr, params):
    """Whether PROJ's operation is the plain Helmert of these parameters (position
    vector, small angles) at the centre of the area: within 1 mm."""
    if area is None:
        return True
    w, s, e, n = area.bounds
    if e < w:
        e += 360.0
    lon, lat = (w + e) / 2.0, (s + n) / 2.0
    if lon > 180.0:
        lon -= 360.0
    pm = geod.prime_meridian
    pm_deg = math.degrees(pm.longitude * pm.unit_conversion_factor)
    axes = {ax.direction.lower(): ax.unit_conversion_factor for ax in geod.axis_info[:2]}
    f_lon, f_lat = axes.get("east", math.pi / 180), axes.get("north", math.pi / 180)
    x_u, y_u = tr.transform(math.radians(lon - pm_deg) / f_lon, math.radians(lat) / f_lat, errcheck=False)
    ell = geod.ellipsoid
    a, rf = ell.semi_major_metre, ell.inverse_flattening
    fl = 1.0 / rf if rf and rf > 0 else 0.0
    X, Y, Z = _geocentric(lon, lat, a, fl)
    dx, dy, dz, rx, ry, rz, ds = params
    k = math.pi / (180.0 * 3600.0)
    rx, ry, rz, m = rx * k, ry * k, rz * k, 1.0 + ds * 1e-6
    X2 = dx + m * (X - rz * Y + ry * Z)
    Y2 = dy + m * (rz * X + Y - rx * Z)
    Z2 = dz + m * (-ry * X + rx * Y + Z)
    lon2, lat2 = _geodetic(X2, Y2, Z2, 6378137.0, 1.0 / 298.257223563)
    return abs(lon2 - x_u) * 111e3 * math.cos(math.radians(lat)) < 1e-3 and abs(lat2 - y_u) * 111e3 < 1e-3


def _src_is_wgs84(op):
    src = op.get("source_crs", {})
    return src.get("name") == "WGS 84" and src.get("id", {}).get("code") == 4326


def _clean(description):
    """An operation's name without PROJ's axis-order wrapping steps."""
    parts = [p for p in description.split(" + ") if not p.startswith("axis order change")]
    return " + ".join(parts)


def best_helmert(crs_code, authority="EPSG"):
    """The shift to WGS 84 of a geographic or projected CRS, as a dict:
      params      [dx, dy, dz, rx, ry, rz, ds] (m, PV arc-seconds, ppm)
      nparams     0 (no shift needed: WGS 84 or a zero Helmert), 3 or 7
      code        "EPSG:n" of the transformation ("" when none)
      name        its name
      accuracy    metres, or None when the registry gives none
      convention  "position-vector" | "coordinate-frame" | "translations"
      better      (name, accuracy) of an operation PROJ ranks higher that
                  KvCart cannot apply (a grid), or None
      transformer the pyproj Transformer of that operation (always_xy), from
                  the CRS's geodetic CRS to WGS 84, for reference values
    or None when PROJ knows no Helmert for the system's datum."""
    crs = pyproj.CRS.from_authority(authority, crs_code)
    geod = crs.geodetic_crs
    if geod is None:
        return None
    datum = geod.datum.name if geod.datum is not None else ""
    if datum.startswith("World Geodetic System 1984"):
        return {"params": [0.0] * 7, "nparams": 0, "code": "", "name": "WGS 84", "accuracy": None,
                "convention": "translations", "better": None,
                "transformer": pyproj.Transformer.from_crs(geod, WGS84, always_xy=True)}
    aoi = None
    if crs.area_of_use is not None:
        w, s, e, n = crs.area_of_use.bounds
        aoi = AreaOfInterest(w, s, e, n)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        group = TransformerGroup(geod, WGS84, always_xy=True, allow_ballpark=False,
                                 area_of_interest=aoi)
    better = None
    if not group.best_available and group.unavailable_operations:
        op = group.unavailable_operations[0]
        better = (_clean(op.name), op.accuracy if op.accuracy is not None and op.accuracy >= 0 else None)
    for tr in group.transformers:
        d = tr.to_json_dict()
        desc = _clean(tr.description or "")
        if d.get("type") == "Conversion" or desc.startswith("Null geographic offset") \
                or desc.startswith("Ballpark"):
            # The CRS's datum is WGS 84 (or an ensemble member PROJ equates).
            if desc.startswith("Ballpark"):
                continue
            return {"params": [0.0] * 7, "nparams": 0, "code": "", "name": desc,
                    "accuracy": tr.accuracy if tr.accuracy is not None and tr.accuracy >= 0 else None,
                    "convention": "translations", "better": better, "transformer": tr}
        h = _helmert_of(d)
        if h is None:
            if better is None:
                better = (desc, tr.accuracy if tr.accuracy is not None and tr.accuracy >= 0 else None)
            continue
        method, params, _ = h
        if not _agrees(geod, crs.area_of_use, tr, params):
            # Not the plain Helmert it looks like (a longitude rotation that is
            # not the prime meridian's, a height-dependent step): skipped.
            if better is None:
                better = (desc, tr.accuracy if tr.accuracy is not None and tr.accuracy >= 0 else None)
            continue
        ident = d.get("id") or {}
        if not ident and d.get("type") == "ConcatenatedOperation":
            for step in d.get("steps", []):
                if step.get("type") == "Transformation" and step.get("id"):
                    ident = step["id"]
        code = "%s:%s" % (ident.get("authority", "EPSG"), ident["code"]) if ident.get("code") else ""
        conv = ("translations" if method in TRANSLATIONS else
                "position-vector" if method in POSITION_VECTOR else "coordinate-frame")
        nparams = 3 if all(v == 0.0 for v in params[3:]) else 7
        return {"params": params, "nparams": nparams, "code": code, "name": desc,
                "accuracy": tr.accuracy if tr.accuracy is not None and tr.accuracy >= 0 else None,
                "convention": conv, "better": better, "transformer": tr}
    return None


if __name__ == "__main__":
    import sys
    for arg in sys.argv[1:] or ["27700", "28992", "4267", "26915", "2154", "4326", "3857"]:
        r = best_helmert(int(arg))
        if r is None:
            print(arg, None)
        else:
            r = dict(r)
            r.pop("transformer")
            print(arg, r)
