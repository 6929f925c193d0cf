"""Transformations: agreement with PROJ (through pyproj) on the registry's
systems, the shapes and types of input, in-place conversion, the domain, and
every refusal."""

import pickle

import numpy as np
import pyproj
import pytest
from pyproj.transformer import TransformerGroup

import kvcart


def _proj_transformer(src, dst, operation=None):
    if operation is None:
        return pyproj.Transformer.from_crs(src, dst, always_xy=True)
    # The registry's Helmert, as PROJ applies it without the grid it ranks higher.
    group = TransformerGroup(src, dst, always_xy=True)
    chosen = [t for t in group.transformers if operation in t.description]
    assert chosen, [t.description for t in group.transformers]
    return chosen[0]


CASES = {
    # target, operation PROJ is to use, lon range, lat range, tolerance in metres
    "EPSG:32632": (None, (3.0, 15.0), (0.0, 84.0), 1e-3),
    "EPSG:27700": ("OSGB36 to WGS 84 (6)", (-7.5, 1.7), (49.9, 60.8), 1e-3),
    "EPSG:2154": (None, (-4.8, 8.2), (41.3, 51.1), 1e-3),
}


@pytest.mark.parametrize("target", sorted(CASES))
def test_forward_and_inverse_agree_with_proj(target, rng):
    operation, (w, e), (s, n), tolerance = CASES[target]
    lon = rng.uniform(w, e, 400)
    lat = rng.uniform(s, n, 400)
    ref = _proj_transformer("EPSG:4326", target, operation)
    want_x, want_y = ref.transform(lon, lat)
    t = kvcart.Transformer.from_crs("EPSG:4326", target)
    x, y = t.transform(lon, lat)
    np.testing.assert_allclose(x, want_x, rtol=0, atol=tolerance)
    np.testing.assert_allclose(y, want_y, rtol=0, atol=tolerance)
    # The inverse of PROJ's grid points, against PROJ's inverse, in degrees
    # (1e-8 degrees is at most 1.1 mm).
    back_lon, back_lat = ref.transform(want_x, want_y, direction="INVERSE")
    got_lon, got_lat = t.transform(want_x, want_y, direction="INVERSE")
    np.testing.assert_allclose(got_lon, back_lon, rtol=0, atol=1e-8)
    np.testing.assert_allclose(got_lat, back_lat, rtol=0, atol=1e-8)


def test_british_national_grid_by_name_is_epsg_27700(rng):
    lon = rng.uniform(-7.5, 1.7, 300)
    lat = rng.uniform(49.9, 60.8, 300)
    by_code = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700").transform(lon, lat)
    by_name = kvcart.Transformer.from_crs("LONG/LAT", "British National Grid").transform(lon, lat)
    np.testing.assert_allclose(by_name, by_code, rtol=0, atol=1e-3)


def test_projected_to_projected_across_datums_agrees_with_proj(rng):
    lon = rng.uniform(-5, 1.5, 300)
    lat = rng.uniform(50, 55, 300)
    bng = _proj_transformer("EPSG:4326", "EPSG:27700", "OSGB36 to WGS 84 (6)")
    e, n = bng.transform(lon, lat)
    want = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:32630", always_xy=True).transform(lon, lat)
    got = kvcart.Transformer.from_crs("EPSG:27700", "EPSG:32630").transform(e, n)
    np.testing.assert_allclose(got, want, rtol=0, atol=2e-3)


def test_northing_first_grid_follows_always_xy_as_proj_does(rng):
    lon = rng.uniform(167, 178, 200)
    lat = rng.uniform(-47, -35, 200)
    east_first = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:2193", always_xy=True).transform(lon, lat)
    got = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:2193").transform(lon, lat)
    np.testing.assert_allclose(got, east_first, rtol=0, atol=1e-3)
    # The registry's order: northing first, as PROJ gives it for OGC:CRS84 (lon, lat) in.
    registry = pyproj.Transformer.from_crs("OGC:CRS84", "EPSG:2193").transform(lon, lat)
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:2193", always_xy=False)
    got = t.transform(lon, lat)
    np.testing.assert_allclose(got, registry, rtol=0, atol=1e-3)
    back = t.transform(*got, direction="INVERSE")
    np.testing.assert_allclose(back, (lon, lat), rtol=0, atol=1e-9)
    # Grid to grid, each side easting first.
    both = kvcart.Transformer.from_crs("EPSG:2193", "EPSG:2193").transform(*east_first)
    np.testing.assert_allclose(both, east_first, rtol=0, atol=1e-6)


def test_us_survey_feet_grid_in_its_own_unit():
    # NAD27 / California zone III (EPSG:26743) is kept in US survey feet.
    lon, lat = np.array([-120.5, -121.9, -119.1]), np.array([37.5, 36.8, 38.3])
    t = kvcart.Transformer.from_crs("NAD27 / California zone III", "NAD27 / California zone III")
    ft = kvcart.Transformer.from_crs("EPSG:4267", "NAD27 / California zone III").transform(lon, lat)
    want = pyproj.Transformer.from_crs("EPSG:4267", "EPSG:26743", always_xy=True).transform(lon, lat)
    np.testing.assert_allclose(ft, want, rtol=0, atol=3e-3)
    np.testing.assert_allclose(t.transform(*ft), ft, rtol=0, atol=1e-6)
    back = kvcart.Transformer.from_crs("EPSG:4267", "NAD27 / California zone III").transform(
        *ft, direction="inverse")
    np.testing.assert_allclose(back, (lon, lat), rtol=0, atol=1e-9)


@pytest.fixture(scope="module")
def utm():
    return kvcart.Transformer.from_crs("LONG/LAT", "UTM-32")


def test_scalars_give_floats(utm):
    x, y = utm.transform(9.5, 47.5)
    assert type(x) is float and type(y) is float
    want = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:32632", always_xy=True).transform(9.5, 47.5)
    assert (x, y) == pytest.approx(want, abs=1e-3)
    x, y = utm.transform(np.float32(9.5), 47)
    assert type(x) is float
    assert (x, y) == pytest.approx(utm.transform(9.5, 47.0), abs=0)


def test_lists_and_shapes(utm, rng):
    lon = rng.uniform(6, 12, (4, 5))
    lat = rng.uniform(40, 60, (4, 5))
    x, y = utm.transform(lon, lat)
    assert x.shape == (4, 5) and x.dtype == np.float64 and y.shape == (4, 5)
    fx, fy = utm.transform(lon.ravel(), lat.ravel())
    assert np.array_equal(x.ravel(), fx) and np.array_equal(y.ravel(), fy)
    lx, ly = utm.transform(lon.tolist(), lat.tolist())
    assert isinstance(lx, np.ndarray) and np.array_equal(lx, x) and np.array_equal(ly, y)
    # One element at a time gives the same bits as the batch.
    for i in range(4):
        for j in range(5):
            assert utm.transform(float(lon[i, j]), float(lat[i, j])) == (x[i, j], y[i, j])
    # A 0-d array stays an array.
    zx, zy = utm.transform(np.array(9.5), np.array(47.5))
    assert isinstance(zx, np.ndarray) and zx.shape == () and float(zx) == utm.transform(9.5, 47.5)[0]


@pytest.mark.parametrize("dtype", [np.float32, np.int32, np.int64, ">f8", object])
def test_other_dtypes_are_converted(utm, dtype):
    lon = np.array([7, 9, 11], dtype=dtype)
    lat = np.array([45, 50, 55], dtype=dtype)
    x, y = utm.transform(lon, lat)
    want = utm.transform(lon.astype(np.float64), lat.astype(np.float64))
    assert x.dtype == np.float64
    assert np.array_equal(x, want[0]) and np.array_equal(y, want[1])
    assert np.array_equal(lon, np.array([7, 9, 11], dtype=dtype))  # the input is left alone


def test_strided_views(utm, rng):
    pts = np.empty((100, 3))
    pts[:, 0] = rng.uniform(6, 12, 100)
    pts[:, 1] = rng.uniform(40, 60, 100)
    pts[:, 2] = -1.0
    want = utm.transform(pts[:, 0].copy(), pts[:, 1].copy())
    got = utm.transform(pts[:, 0], pts[:, 1])
    assert np.array_equal(got[0], want[0]) and np.array_equal(got[1], want[1])
    rev = utm.transform(pts[::-3, 0], pts[::-3, 1])
    assert np.array_equal(rev[0], want[0][::-3]) and np.array_equal(rev[1], want[1][::-3])
    grid = np.tile(pts[:20, :2], (1, 1)).T  # Fortran-ordered 2 x 20
    gx, gy = utm.transform(grid[:, ::2], grid[::-1, ::2])
    assert gx.shape == (2, 10)
    assert gx[0, 3] == utm.transform(float(grid[0, 6]), float(grid[1, 6]))[0]


def test_inplace_writes_into_the_arrays(utm, rng):
    lon = rng.uniform(6, 12, 1000)
    lat = rng.uniform(40, 60, 1000)
    want = utm.transform(lon, lat)
    x, y = lon.copy(), lat.copy()
    rx, ry = utm.transform(x, y, inplace=True)
    assert rx is x and ry is y
    assert np.array_equal(x, want[0]) and np.array_equal(y, want[1])
    # Columns of one array of points, in place, the third column untouched.
    pts = np.column_stack([lon, lat, np.full(1000, 7.0)])
    utm.transform(pts[:, 0], pts[:, 1], inplace=True)
    assert np.array_equal(pts[:, 0], want[0]) and np.array_equal(pts[:, 1], want[1])
    assert np.all(pts[:, 2] == 7.0)
    # A 2-D view that is not contiguous goes through a copy and is written back.
    block = np.column_stack([lon, lat]).reshape(50, 40)
    view_x, view_y = block[:, 0::2], block[:, 1::2]
    utm.transform(view_x, view_y, inplace=True)
    assert np.array_equal(block[:, 0::2].ravel(), want[0]) and np.array_equal(block[:, 1::2].ravel(), want[1])
    # Inverse in place brings the points back.
    utm.transform(x, y, direction="INVERSE", inplace=True)
    np.testing.assert_allclose(x, lon, rtol=0, atol=1e-9)
    np.testing.assert_allclose(y, lat, rtol=0, atol=1e-9)


def test_empty_input(utm):
    for make in (lambda: np.empty(0), lambda: [], lambda: np.empty((0, 3))):
        x, y = utm.transform(make(), make())
        assert x.size == 0 and x.dtype == np.float64 and x.shape == np.asarray(make()).shape
    e = np.empty(0)
    assert utm.transform(e, np.empty(0), inplace=True)[0] is e


@pytest.mark.parametrize("lon, lat", [
    (np.nan, 47.5), (9.5, np.nan), (np.inf, 47.5), (9.5, -np.inf), (9.5, 1e308), (9.5, 90.5), (9.5, -91),
])
def test_points_outside_the_domain_are_nan(utm, lon, lat):
    x, y = utm.transform(lon, lat)
    assert np.isnan(x) and np.isnan(y)
    # Inside an array, the bad point alone is NaN.
    xs, ys = utm.transform([9.5, lon, 10.0], [47.5, lat, 50.0])
    assert np.isnan(xs[1]) and np.isnan(ys[1])
    assert np.isfinite(xs[[0, 2]]).all() and np.isfinite(ys[[0, 2]]).all()


@pytest.mark.parametrize("x, y", [(np.nan, 5e6), (5e5, np.inf), (1e308, 1e308), (-1e308, 5e6), (-np.inf, np.nan)])
def test_grid_points_outside_the_domain_are_nan(utm, x, y):
    lon, lat = utm.transform(x, y, direction="INVERSE")
    assert np.isnan(lon) and np.isnan(lat)


@pytest.mark.parametrize("target", ["EPSG:27700", "EPSG:2154"])
def test_bad_points_through_a_datum_shift_are_nan(target):
    t = kvcart.Transformer.from_crs("EPSG:4326", target)
    x, y = t.transform([0.0] * 5, [np.nan, np.inf, -np.inf, 1e308, -1e308])
    assert np.isnan(x).all() and np.isnan(y).all()
    x, y = t.transform([np.nan, np.inf, -np.inf], [45.0] * 3)
    assert np.isnan(x).all() and np.isnan(y).all()
    lon, lat = t.transform([np.nan, np.inf, -np.inf, 0.0], [0.0, 0.0, 0.0, np.nan], direction="INVERSE")
    assert np.isnan(lon).all() and np.isnan(lat).all()


def test_far_grid_points_agree_with_proj():
    # 1e308 m east of the Lambert-93 origin is, to rounding, the cone's pole
    # (the south pole, at infinity on this map), on the meridian PROJ gives.
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:2154")
    ref = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:2154", always_xy=True)
    far = [1e308, -1e308], [0.0, 0.0]
    np.testing.assert_allclose(t.transform(*far, direction="INVERSE"), ref.transform(*far, direction="INVERSE"),
                               rtol=0, atol=1e-9)


def test_round_trip_through_a_datum_shift(rng):
    lon = rng.uniform(-7.5, 1.7, 500)
    lat = rng.uniform(49.9, 60.8, 500)
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700")
    back = t.transform(*t.transform(lon, lat), direction="INVERSE")
    # The reverse Helmert is the transposed rotation: equal to first order (README).
    np.testing.assert_allclose(back, (lon, lat), rtol=0, atol=1e-7)


# Refusals.

def test_direction_must_be_forward_or_inverse(utm):
    with pytest.raises(ValueError, match="FORWARD"):
        utm.transform(9.5, 47.5, direction="BACKWARD")
    with pytest.raises(TypeError):
        utm.transform(9.5, 47.5, direction=1)


def test_shapes_must_match(utm):
    with pytest.raises(ValueError, match="differ in shape"):
        utm.transform([1.0, 2.0], [1.0])
    with pytest.raises(ValueError, match="differ in shape"):
        utm.transform(np.zeros((2, 3)), np.zeros((3, 2)))
    with pytest.raises(ValueError, match="differ in shape"):
        utm.transform(np.zeros(2), np.zeros(2)[:1], inplace=True)


@pytest.mark.parametrize("bad", ["9.5", ["a", "b"], 1 + 2j, np.array([1 + 0j]), None, [None], object()])
def test_coordinates_must_be_real_numbers(utm, bad):
    with pytest.raises(TypeError, match="real numbers"):
        utm.transform(bad, bad)


def test_inplace_refusals(utm):
    with pytest.raises(TypeError, match="numpy arrays"):
        utm.transform([9.5], [47.5], inplace=True)
    with pytest.raises(TypeError, match="numpy arrays"):
        utm.transform(9.5, 47.5, inplace=True)
    with pytest.raises(TypeError, match="float64"):
        utm.transform(np.array([9, 10]), np.array([47, 48]), inplace=True)
    with pytest.raises(TypeError, match="float64"):
        utm.transform(np.array([9.5], ">f8"), np.array([47.5], ">f8"), inplace=True)
    ro = np.array([9.5])
    ro.flags.writeable = False
    with pytest.raises(ValueError, match="read-only"):
        utm.transform(ro, np.array([47.5]), inplace=True)
    a = np.array([9.5, 47.5])
    with pytest.raises(ValueError, match="share memory"):
        utm.transform(a, a, inplace=True)
    with pytest.raises(ValueError, match="share memory"):
        utm.transform(a[:1], a[0:1], inplace=True)
    assert a.tolist() == [9.5, 47.5]


def test_core_refuses_what_the_package_never_hands_it(utm):
    core = utm._core
    a, b, c = np.zeros(2), np.zeros(2), np.zeros(2)
    with pytest.raises(TypeError, match="one-dimensional"):
        core.run((np.zeros((2, 2)), np.zeros((2, 2))), (a, b), False, 1)
    with pytest.raises(TypeError, match="float64"):
        core.run((np.zeros(2, np.float32), a), (a, b), False, 1)
    with pytest.raises(TypeError, match="float64"):
        core.run((a, b), (a, [0.0, 0.0]), False, 1)
    with pytest.raises(ValueError, match="two or three"):
        core.run((a, b, c), (a, b), False, 1)
    with pytest.raises(ValueError, match="length"):
        core.run((a, np.zeros(3)), (a, b), False, 1)
    with pytest.raises(ValueError, match="length"):
        core.run((a, b), (a, np.zeros(3)), False, 1)
    with pytest.raises(ValueError, match="same memory"):
        core.run((a, b), (a, a), False, 1)
    with pytest.raises(ValueError, match="same memory"):
        core.run((a, b, c), (a, b, b), False, 1)
    readonly = np.zeros(2)
    readonly.flags.writeable = False
    with pytest.raises(ValueError, match="writable"):
        core.run((a, b), (readonly, c), False, 1)
    with pytest.raises(ValueError, match="threads"):
        core.run((a, b), (a, b), False, 0)
    # Read-only input is read where it lies, into other arrays.
    readonly = np.array([9.0, 48.0])
    readonly.flags.writeable = False
    out = np.zeros(2), np.zeros(2)
    core.run((readonly[:1], readonly[1:]), (out[0][:1], out[1][:1]), False, 1)
    assert out[0][0] == 500000.0


def test_from_crs_refusals():
    with pytest.raises(TypeError):
        kvcart.Transformer.from_crs(4326, "UTM-32")
    with pytest.raises(TypeError):
        kvcart.Transformer.from_crs("LONG/LAT", "UTM-32", always_xy=1)
    with pytest.raises(ValueError, match="did you mean"):
        kvcart.Transformer.from_crs("LONG/LAT", "Britsh National Grid")
    with pytest.raises(TypeError, match="from_crs"):
        kvcart.Transformer()


def test_unknown_datum_shift_warns_once_when_made():
    local = ('PROJCS["Local",GEOGCS["Local_Survey_1950",DATUM["Local_Survey_1950",SPHEROID["Bessel 1841",'
             '6377397.155,299.1528128]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],'
             'PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",9],'
             'PARAMETER["scale_factor",1],PARAMETER["false_easting",0],PARAMETER["false_northing",0],'
             'UNIT["metre",1]]')
    with pytest.warns(kvcart.DatumWarning, match="Local_Survey_1950"):
        t = kvcart.Transformer.from_crs("British National Grid", local)
    assert "Local_Survey_1950" in t.datum_message
    assert kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700").datum_message == ""


def test_repr_names_both_systems():
    t = kvcart.Transformer.from_crs("EPSG:4326", "UTM-32", always_xy=False)
    assert repr(t) == "<kvcart.Transformer from 'EPSG:4326' to 'UTM-32', always_xy=False>"
    assert t.source_crs.srs == "EPSG:4326" and t.target_crs.name == "UTM-32" and t.always_xy is False


def test_arrays_that_went_through_pickle(utm):
    # An unpickled array's float64 dtype is an object of its own, not numpy's
    # float64 singleton; it is the same type all the same.
    lon, lat = np.array([7.0, 9.5, 11.0]), np.array([45.0, 47.5, 55.0])
    want = utm.transform(lon, lat)
    px, py = pickle.loads(pickle.dumps((lon, lat)))
    assert px.dtype is not np.dtype(np.float64)
    got = utm.transform(px, py)
    assert np.array_equal(got[0], want[0]) and np.array_equal(got[1], want[1])
    utm.transform(px, py, inplace=True)
    assert np.array_equal(px, want[0]) and np.array_equal(py, want[1])


# PROJ's pipeline for EPSG:4326 to EPSG:27700 through EPSG:1314 written out in
# full, so that PROJ carries the height through the Helmert (its 2-D systems
# leave a height untouched).
OSGB_PIPELINE_3D = (
    "+proj=pipeline +step +proj=axisswap +order=2,1 +step +proj=unitconvert +xy_in=deg +xy_out=rad "
    "+step +proj=cart +ellps=WGS84 +step +inv +proj=helmert +x=446.448 +y=-125.157 +z=542.06 "
    "+rx=0.15 +ry=0.247 +rz=0.842 +s=-20.489 +convention=position_vector +step +inv +proj=cart "
    "+ellps=airy +step +proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy"
)


def test_heights_go_through_the_datum_shift_as_proj_takes_them(rng):
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700")
    lon = rng.uniform(-7.5, 1.7, 3000)
    lat = rng.uniform(49.9, 60.8, 3000)
    h = rng.uniform(-100.0, 4000.0, 3000)
    x, y, z = t.transform(lon, lat, h)
    px, py, pz = pyproj.Transformer.from_pipeline(OSGB_PIPELINE_3D).transform(lat, lon, h)
    assert np.max(np.abs(x - px)) < 1e-3 and np.max(np.abs(y - py)) < 1e-3
    assert np.max(np.abs(z - pz)) < 1e-3
    # The height changes the plane position through the shift (by millimetres
    # here): the two-dimensional call is the one at height 0.
    x0, y0 = t.transform(lon, lat)
    xz, yz, _ = t.transform(lon, lat, np.zeros_like(lon))
    assert np.array_equal(x0, xz) and np.array_equal(y0, yz)
    assert np.max(np.hypot(x - x0, y - y0)) > 1e-4
    # And back: the geocentric inverse is Bowring's single step, whose height is
    # tens of micrometres off at 4 km.
    blon, blat, bh = t.transform(x, y, z, direction="INVERSE")
    assert np.max(np.abs(blon - lon)) < 1e-9 and np.max(np.abs(blat - lat)) < 1e-9
    assert np.max(np.abs(bh - h)) < 1e-4


def test_heights_without_a_datum_change_are_kept(utm):
    x, y, z = utm.transform([9.0, 10.0], [48.0, np.nan], [5.0, 7.0])
    assert z[0] == 5.0 and np.isnan(x[1]) and np.isnan(y[1])
    assert utm.transform(9.0, 48.0, 12.5)[2] == 12.5
    hx, hy, hz = np.array([9.0]), np.array([48.0]), np.array([3.0])
    assert utm.transform(hx, hy, hz, inplace=True)[2] is hz and hz[0] == 3.0 and hx[0] == 500000.0
    with pytest.raises(ValueError, match="zz"):
        utm.transform([9.0, 10.0], [48.0, 49.0], [1.0])
    with pytest.raises(ValueError, match="share memory"):
        utm.transform(hx, hy, hx, inplace=True)
    with pytest.raises(TypeError, match="zz"):
        utm.transform(hx, hy, [1.0], inplace=True)


@pytest.mark.parametrize("threads", [0, 2, 3, 8])
def test_threads_give_the_single_thread_bits(utm, rng, threads):
    n = 100_003  # not a multiple of the runs
    lon = rng.uniform(3.0, 15.0, n)
    lat = rng.uniform(-80.0, 84.0, n)
    lon[::101] = np.nan
    want = utm.transform(lon, lat)
    got = utm.transform(lon, lat, threads=threads)
    assert all(np.array_equal(a, b, equal_nan=True) for a, b in zip(want, got))
    # In place on strided views, and inverse.
    gx, gy = want[0].copy(), want[1].copy()
    back = utm.transform(want[0], want[1], direction="INVERSE")
    vx = np.empty(2 * n)
    vx[::2] = gx
    utm.transform(vx[::2], gy, direction="INVERSE", inplace=True, threads=threads)
    assert np.array_equal(vx[::2], back[0], equal_nan=True) and np.array_equal(gy, back[1], equal_nan=True)
    # A few points take one thread whatever is asked.
    assert utm.transform([9.0], [48.0], threads=threads)[0][0] == 500000.0


@pytest.mark.parametrize("bad, error", [(-1, ValueError), (1.5, TypeError), (True, TypeError), ("2", TypeError),
                                        (None, TypeError)])
def test_threads_refusals(utm, bad, error):
    with pytest.raises(error, match="threads"):
        utm.transform(9.0, 48.0, threads=bad)


@pytest.mark.parametrize("target", ["EPSG:32632", "EPSG:27700", "EPSG:2193", "EPSG:2263"])
def test_contiguous_and_strided_arrays_give_the_same_bits(target, rng):
    # Contiguous arrays in the engines' axes and unit are converted where they
    # lie; strided ones, swapped axes and other units through a block buffer.
    t = kvcart.Transformer.from_crs("EPSG:4326", target)
    lon = rng.uniform(-180.0, 180.0, 5000)
    lat = rng.uniform(-90.0, 90.0, 5000)
    h = rng.uniform(-100.0, 3000.0, 5000)
    lon[::7] = np.nan
    wide = np.empty((3, 5000 * 2))
    wide[0, ::2], wide[1, ::2], wide[2, ::2] = lon, lat, h
    for heights in (False, True):
        args = (lon, lat, h) if heights else (lon, lat)
        strided = (wide[0, ::2], wide[1, ::2], wide[2, ::2]) if heights else (wide[0, ::2], wide[1, ::2])
        for direction in ("FORWARD", "INVERSE"):
            a = t.transform(*args, direction=direction)
            b = t.transform(*strided, direction=direction)
            assert all(np.array_equal(u, v, equal_nan=True) for u, v in zip(a, b))
