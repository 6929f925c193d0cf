"""Coordinate systems: every kind of string, their properties, the texts
written back (checked by reading them again and by PROJ through pyproj), and
every refusal."""

import numpy as np
import pyproj
import pytest
from pyproj.crs import CoordinateOperation

import kvcart
from systems import ED50_UTM32



@pytest.mark.parametrize("text, name, geographic", [
    ("EPSG:27700", "OSGB36 / British National Grid", False),
    ("epsg:4326", "WGS 84", True),
    ("  EPSG:2154 ", "RGF93 v1 / Lambert-93", False),
    ("ESRI:102001", "Canada_Albers_Equal_Area_Conic", False),
    ("UTM-32", "UTM-32", False),
    ("UTM-33S", "UTM-33S", False),
    ("LONG/LAT", "LONG/LAT", True),
    ("NON-UTM", "NON-UTM", False),
    ("British National Grid", "British National Grid", False),
    (ED50_UTM32, "ED50 / UTM zone 32N", False),
])
def test_every_kind_of_string_resolves(text, name, geographic):
    crs = kvcart.CRS(text)
    assert crs.name == name
    assert crs.is_geographic is geographic
    assert crs.srs == text
    assert repr(crs).startswith("<kvcart.CRS ")
    assert name in repr(crs)


def test_a_catalogue_name_in_another_case_is_the_catalogue_entry():
    crs = kvcart.CRS("rd new")
    assert crs.srs == "RD New"
    assert crs.name == "RD New"
    assert crs.datum_shift == kvcart.CRS("RD New").datum_shift


def test_a_crs_made_from_a_crs_is_the_same_system():
    crs = kvcart.CRS("EPSG:27700")
    assert kvcart.CRS(crs).srs == "EPSG:27700"


def test_a_long_wkt_is_shortened_in_repr():
    shown = repr(kvcart.CRS(ED50_UTM32))
    assert "..." in shown and len(shown) < 150


def test_registry_shift_is_epsg_1314_as_proj_holds_it():
    # OSGB36 to WGS 84 (6), position vector: the values PROJ's database gives.
    expected = [p.value for p in CoordinateOperation.from_epsg(1314).params]
    assert CoordinateOperation.from_epsg(1314).method_name.startswith("Position Vector")
    assert kvcart.CRS("EPSG:27700").datum_shift == pytest.approx(expected, abs=1e-12)


def test_shifts_known_zero_three_parameter_and_unknown():
    assert kvcart.CRS("EPSG:2154").datum_shift == (0.0,) * 7
    assert kvcart.CRS(ED50_UTM32).datum_shift == (-87.0, -98.0, -121.0, 0.0, 0.0, 0.0, 0.0)
    assert kvcart.CRS("LONG/LAT").datum_shift is None
    assert kvcart.CRS("NON-UTM").datum_shift is None


@pytest.mark.parametrize("text", ["EPSG:27700", "EPSG:2154", "UTM-32", "RD New", "EPSG:3857",
                                  "NAD27 / California zone III"])
def test_proj_string_is_read_by_proj_as_the_same_projection(text, rng):
    crs = kvcart.CRS(text)
    proj = crs.to_proj4()
    assert proj.startswith("+proj=") and proj.endswith("+no_defs +type=crs")
    ref = pyproj.CRS(proj)
    lon0, lat0 = {"EPSG:27700": (-2, 54), "EPSG:2154": (2.5, 46.5), "UTM-32": (9, 50), "RD New": (5.4, 52.2),
                  "EPSG:3857": (0, 0), "NAD27 / California zone III": (-120.5, 37.5)}[text]
    lon = lon0 + rng.uniform(-2, 2, 200)
    lat = lat0 + rng.uniform(-2, 2, 200)
    # Projection alone on both sides: from the system's own geographic system.
    want = pyproj.Transformer.from_crs(ref.geodetic_crs, ref, always_xy=True).transform(lon, lat)
    own = kvcart.CRS.from_wkt(_geodetic_wkt(crs))
    got = kvcart.Transformer.from_crs(own, crs).transform(lon, lat)
    np.testing.assert_allclose(got[0], want[0], rtol=0, atol=1e-3)
    np.testing.assert_allclose(got[1], want[1], rtol=0, atol=1e-3)


def _geodetic_wkt(crs):
    # The geographic system of crs with crs's own datum shift, as OGC WKT from
    # the library's own description: the conversion between them is the
    # projection alone.
    wkt = crs.to_wkt()
    start = wkt.index("GEOGCS[")
    depth = 0
    for end in range(start, len(wkt)):
        depth += {"[": 1, "]": -1}.get(wkt[end], 0)
        if depth == 0 and wkt[end] == "]":
            return wkt[start:end + 1]
    raise AssertionError("no GEOGCS in " + wkt)


@pytest.mark.parametrize("text", ["EPSG:27700", "EPSG:2154", "UTM-32", "RD New", ED50_UTM32, "EPSG:4326",
                                  "NAD27 / California zone III"])
def test_wkt_written_reads_back_as_the_same_system(text, rng):
    crs = kvcart.CRS(text)
    again = kvcart.CRS.from_wkt(crs.to_wkt())
    lon = 0.5 + rng.uniform(-3, 3, 100) + (9 if "32" in text else -120.5 if "California" in text else 0)
    lat = rng.uniform(44, 54, 100) if "California" not in text else rng.uniform(36, 39, 100)
    a = kvcart.Transformer.from_crs("EPSG:4326", crs).transform(lon, lat)
    b = kvcart.Transformer.from_crs("EPSG:4326", again).transform(lon, lat)
    np.testing.assert_allclose(a, b, rtol=0, atol=1e-6)
    if crs.datum_shift is not None and any(crs.datum_shift):
        assert again.datum_shift == pytest.approx(crs.datum_shift, rel=1e-15)


def test_ogc_wkt_is_read_by_proj_as_the_registry_system():
    wkt = kvcart.CRS("EPSG:2154").to_wkt()
    assert wkt.startswith("PROJCS[")
    lon, lat = np.array([2.35, -1.5, 7.2]), np.array([48.85, 43.5, 48.6])
    want = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:2154", always_xy=True).transform(lon, lat)
    got = pyproj.Transformer.from_crs("EPSG:4326", pyproj.CRS(wkt), always_xy=True).transform(lon, lat)
    np.testing.assert_allclose(got, want, rtol=0, atol=1e-3)


# Refusals: each with the library's reason.

def test_unknown_name_suggests_the_closest():
    with pytest.raises(ValueError, match=r'unknown coordinate system "Britsh National Grid"; '
                                         r'did you mean "British National Grid" \(EPSG:27700\)\?'):
        kvcart.CRS("Britsh National Grid")


def test_unknown_name_with_nothing_close():
    with pytest.raises(ValueError, match='unknown coordinate system "Nowhere Grid"$'):
        kvcart.CRS("Nowhere Grid")


def test_generic_utm_names_no_zone():
    with pytest.raises(ValueError, match="UTM-1 to UTM-60"):
        kvcart.CRS("UTM")


def test_code_the_registry_does_not_hold():
    with pytest.raises(ValueError, match="EPSG:1 "):
        kvcart.CRS("EPSG:1")


def test_unsupported_method_is_refused_with_its_name():
    with pytest.raises(ValueError, match='"Aitoff" is not supported'):
        kvcart.CRS("ESRI:54043")


@pytest.mark.parametrize("text, reason", [
    ("PROJCS[garbage", "bracket"),
    (ED50_UTM32.replace('PARAMETER["scale_factor",0.9996],', ""), '"Scale_Factor" is missing'),
    ('GEOGCRS["WGS 84",DATUM["World Geodetic System 1984",ELLIPSOID["WGS 84",6378137,298.257223563]],'
     'CS[ellipsoidal,2],AXIS["lon",east],AXIS["lat",north],ANGLEUNIT["degree",0.0174532925199433]]', "WKT 2"),
])
def test_refused_wkt_says_why(text, reason):
    with pytest.raises(ValueError, match=reason):
        kvcart.CRS(text)
    with pytest.raises(ValueError, match=reason):
        kvcart.CRS.from_wkt(text)


def test_from_wkt_refuses_names_and_codes():
    for text in ("UTM-32", "EPSG:4326", "LONG/LAT"):
        with pytest.raises(ValueError, match="not WKT"):
            kvcart.CRS.from_wkt(text)
    with pytest.raises(ValueError, match="unknown coordinate system"):
        kvcart.CRS.from_wkt("Nowhere Grid")


def test_nul_character_is_refused():
    with pytest.raises(ValueError, match="NUL"):
        kvcart.CRS("UTM-32\0garbage")


@pytest.mark.parametrize("value", [None, 32632, b"UTM-32", ["UTM-32"]])
def test_non_strings_are_refused(value):
    with pytest.raises(TypeError):
        kvcart.CRS(value)
    with pytest.raises(TypeError):
        kvcart.CRS.from_wkt(value)


def test_texts_the_library_cannot_write():
    for text in ("LONG/LAT", "NON-UTM"):
        crs = kvcart.CRS(text)
        with pytest.raises(ValueError, match="no OGC WKT .*" + ("no datum" if text == "LONG/LAT" else "local grid")):
            crs.to_wkt()
        with pytest.raises(ValueError, match="no PROJ string"):
            crs.to_proj4()
    # OGC WKT 1 has no form for a two-parallel Lambert with a scale factor.
    with pytest.raises(ValueError, match="no OGC WKT"):
        kvcart.CRS("EPSG:6201").to_wkt()


def test_help_shows_what_every_public_name_does():
    import inspect
    import pydoc

    import kvcart.dask

    for module in (kvcart, kvcart.dask):
        for name in module.__all__:
            thing = getattr(module, name)
            assert (thing.__doc__ or "").strip(), "%s.%s" % (module.__name__, name)
            if inspect.isclass(thing) and not issubclass(thing, tuple):
                for member, value in vars(thing).items():
                    if member.startswith("_"):
                        continue
                    value = value.__func__ if isinstance(value, (classmethod, staticmethod)) else value
                    assert (value.__doc__ or "").strip(), "%s.%s" % (name, member)
    shown = pydoc.render_doc(kvcart.Transformer, renderer=pydoc.plaintext)
    for words in ("from_crs", "always_xy", "threads", "INVERSE", "NaN"):
        assert words in shown
