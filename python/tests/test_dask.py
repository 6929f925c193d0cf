"""kvcart.dask: ten million points converted on a cluster of two worker
processes give the bits of one in-process Transformer.transform call (forward
and inverse, with and without a datum shift, 1-D and 2-D blocks); NaN and
infinite input comes back NaN; one task converts each block; dataframes keep
their index, partitions and other columns; every refusal happens when the
function is called, before anything runs."""

import itertools
import subprocess
import sys

import dask
import dask.array as da
import dask.dataframe as dd
import distributed
import numpy as np
import pandas as pd
import pytest

import kvcart
import kvcart.dask as kd
from systems import ED50_UTM32


N = 10_000_000


@pytest.fixture(scope="module")
def client():
    # Worker processes inherit the environment (PYTHONPATH, KVCART_USER_DIR),
    # so they import this build's package and read the same catalogue.
    with distributed.LocalCluster(n_workers=2, processes=True, threads_per_worker=1,
                                  dashboard_address=None) as cluster, \
            distributed.Client(cluster, set_as_default=False) as c:
        yield c


def _uniform(seed, low, high, shape, chunks):
    return da.random.RandomState(seed).uniform(low, high, shape, chunks=chunks)


def _with_specials(a, b, beyond_pole=True):
    """Points outside the domain at scattered positions: NaN and infinite
    coordinates on either side, and (for longitudes and latitudes) a
    latitude beyond the pole."""
    i = da.arange(a.size, chunks=a.size).reshape(a.shape).rechunk(a.chunks)
    a = da.where(i % 999_983 == 11, np.nan, a)
    b = da.where(i % 1_000_003 == 7, np.inf, b)
    a = da.where(i % 1_000_033 == 5, -np.inf, a)
    b = da.where(i % 999_979 == 3, np.nan, b)
    if beyond_pole:
        b = da.where(i % 1_000_037 == 1, 91.0, b)
    return a, b


def _on_cluster_and_here(client, source, target, a, b, direction="FORWARD"):
    """The cluster's result for the lazily generated (a, b) beside one
    in-process call on the same values, computed here."""
    out_x, out_y = kd.transform(source, target, a, b, direction=direction)
    assert out_x.chunks == a.chunks and out_y.chunks == a.chunks
    assert out_x.dtype == np.float64 and out_y.dtype == np.float64
    got_x, got_y = client.compute([out_x, out_y], sync=True)
    here_a, here_b = dask.compute(a, b, scheduler="threads")
    want_x, want_y = kvcart.Transformer.from_crs(source, target).transform(here_a, here_b, direction=direction)
    return (got_x, got_y), (want_x, want_y), (here_a, here_b)


@pytest.mark.parametrize("target, shape, chunks, box", [
    # 1-D blocks, the last one short.
    ("EPSG:32632", (N,), (1_300_000,), ((3.0, 15.0), (30.0, 72.0))),
    # RD New: its datum shift from Bessel 1841; 2-D blocks, ragged at both edges.
    ("EPSG:28992", (2_000, N // 2_000), (700, 1_800), ((3.0, 7.5), (50.5, 53.8))),
])
def test_ten_million_points_on_the_cluster_are_the_in_process_bits(client, target, shape, chunks, box):
    lon = _uniform(1, *box[0], shape, chunks)
    lat = _uniform(2, *box[1], shape, chunks)
    lon, lat = _with_specials(lon, lat)
    got, want, (here_lon, here_lat) = _on_cluster_and_here(client, "EPSG:4326", target, lon, lat)
    for g, w in zip(got, want):
        assert g.shape == shape and g.dtype == np.float64
        assert np.array_equal(g, w, equal_nan=True)
    outside = ~np.isfinite(here_lon) | ~np.isfinite(here_lat) | (np.abs(here_lat) > 90)
    assert outside.sum() >= 5 * (N // 1_000_037)
    assert np.isnan(got[0][outside]).all() and np.isnan(got[1][outside]).all()
    assert np.isfinite(got[0][~outside]).all() and np.isfinite(got[1][~outside]).all()


def test_inverse_of_ten_million_utm_points_on_the_cluster_is_the_in_process_bits(client):
    east = _uniform(3, 200_000.0, 800_000.0, (N,), 2_500_000)
    north = _uniform(4, 3_500_000.0, 7_900_000.0, (N,), 2_500_000)
    east, north = _with_specials(east, north, beyond_pole=False)
    got, want, (here_e, here_n) = _on_cluster_and_here(client, "EPSG:4326", "EPSG:32632", east, north,
                                                       direction="INVERSE")
    for g, w in zip(got, want):
        assert np.array_equal(g, w, equal_nan=True)
    bad = ~np.isfinite(here_e) | ~np.isfinite(here_n)
    assert bad.any() and np.isnan(got[0][bad]).all() and np.isnan(got[1][bad]).all()
    # Longitudes about the zone's meridian, latitudes within the northings' band.
    assert np.nanmin(got[0]) > 0 and np.nanmax(got[0]) < 18
    assert np.nanmin(got[1]) > 31 and np.nanmax(got[1]) < 72


def test_a_transformer_made_here_keeps_its_wkt_and_axis_order_on_the_workers(client):
    # A WKT system with its datum shift, and a grid whose registry order is
    # northing first, given in that order (always_xy=False): both travel in
    # the pickled transformer.
    lon = _uniform(5, 6.0, 12.0, (400_000,), 70_000)
    lat = _uniform(6, 40.0, 55.0, (400_000,), 70_000)
    here = dask.compute(lon, lat, scheduler="threads")
    for source, target, always_xy, a, b, values in [
        ("EPSG:4326", ED50_UTM32, True, lon, lat, here),
        ("EPSG:2193", "EPSG:4326", False, lat * 20_000 + 4_000_000, lon * 50_000 + 1_000_000,
         (here[1] * 20_000 + 4_000_000, here[0] * 50_000 + 1_000_000)),
    ]:
        t = kvcart.Transformer.from_crs(source, target, always_xy=always_xy)
        got = client.compute(list(kd.transform_with(t, a, b)), sync=True)
        want = t.transform(*values)
        assert np.array_equal(got[0], want[0], equal_nan=True)
        assert np.array_equal(got[1], want[1], equal_nan=True)
        assert np.isfinite(got[0]).all()
    # The same points by the systems' texts with always_xy=False.
    got = client.compute(list(kd.transform("EPSG:2193", "EPSG:4326", lat * 20_000 + 4_000_000,
                                           lon * 50_000 + 1_000_000, always_xy=False)), sync=True)
    assert np.array_equal(got[0], want[0]) and np.array_equal(got[1], want[1])


def test_each_block_is_converted_once_for_both_coordinates(monkeypatch):
    calls = []
    original = kd._transform_block

    def counting(*args):
        calls.append(np.shape(args[2]))
        return original(*args)

    monkeypatch.setattr(kd, "_transform_block", counting)
    lon = _uniform(7, 3.0, 15.0, (50, 40), (20, 15))
    lat = _uniform(8, 40.0, 60.0, (50, 40), (20, 15))
    x, y = kd.transform("EPSG:4326", "EPSG:32632", lon, lat)
    got = dask.compute(x, y, scheduler="sync")
    assert len(calls) == lon.npartitions == 9
    assert sorted(calls) == sorted(itertools.product(*lon.chunks))
    want = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:32632").transform(*dask.compute(lon, lat))
    assert np.array_equal(got[0], want[0]) and np.array_equal(got[1], want[1])


def test_numpy_arrays_and_scalars_become_dask_arrays():
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700")
    lon = np.linspace(-5.0, 1.5, 1_000)
    lat = np.linspace(50.0, 58.0, 1_000).astype(np.float32)
    # Both numpy: y takes x's chunks whatever its dtype; a numpy partner of a
    # Dask array takes that array's chunks.
    for a, b in [(lon, lat), (da.from_array(lon, chunks=300), lat), (lon, da.from_array(lat, chunks=(250,)))]:
        x, y = kd.transform("EPSG:4326", "EPSG:27700", a, b)
        assert isinstance(x, da.Array) and isinstance(y, da.Array)
        assert x.chunks == y.chunks
        if isinstance(a, da.Array) or isinstance(b, da.Array):
            assert x.chunks == (a if isinstance(a, da.Array) else b).chunks
        got = dask.compute(x, y, scheduler="sync")
        want = t.transform(lon, lat)
        assert np.array_equal(got[0], want[0]) and np.array_equal(got[1], want[1])
    # Integers and scalars: 0-d arrays with the in-process call's floats.
    x, y = kd.transform("EPSG:4326", "EPSG:27700", -2, 53)
    assert x.shape == () and x.dtype == np.float64
    assert tuple(float(v) for v in dask.compute(x, y, scheduler="sync")) == t.transform(-2, 53)
    x, y = kd.transform("EPSG:4326", "EPSG:27700", np.nan, 53.0)
    assert np.isnan(dask.compute(x, y, scheduler="sync")).all()
    # Empty arrays stay empty.
    x, y = kd.transform("EPSG:4326", "EPSG:27700", np.empty(0), np.empty(0))
    assert dask.compute(x, y, scheduler="sync")[0].shape == (0,)


def test_dataframe_on_the_cluster_matches_the_in_process_call(client):
    n = 300_000
    rng = np.random.default_rng(20240607)
    lon = rng.uniform(-7.5, 1.7, n)
    lat = rng.uniform(49.9, 60.8, n)
    lon[::4999] = np.nan
    lat[::7919] = np.inf
    frame = pd.DataFrame({
        "lon": lon,
        "lat": lat.astype(np.float32),
        "name": np.array(["p%d" % (i % 97) for i in range(n)], dtype=object),
        "count": np.arange(n, dtype=np.int64) % 13,
    }, index=pd.Index(np.arange(n, dtype=np.int64) * 3 + 7, name="id"))
    df = dd.from_pandas(frame, npartitions=7)
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700")
    want_e, want_n = t.transform(lon, lat.astype(np.float32))

    out = kd.transform_dataframe(df, "EPSG:4326", "EPSG:27700", x="lon", y="lat", out=("easting", "northing"))
    assert out.npartitions == 7 and out.divisions == df.divisions
    assert list(out.columns) == ["lon", "lat", "name", "count", "easting", "northing"]
    assert out._meta.dtypes["easting"] == np.float64 and out._meta.dtypes["northing"] == np.float64
    got = client.compute(out, sync=True)
    pd.testing.assert_frame_equal(got[["lon", "lat", "name", "count"]], frame)
    assert np.array_equal(got["easting"].to_numpy(), want_e, equal_nan=True)
    assert np.array_equal(got["northing"].to_numpy(), want_n, equal_nan=True)
    assert np.isnan(got["easting"].to_numpy()[::4999]).all()

    # The default names replace the columns x and y; the inverse gives back
    # the in-process inverse.
    grid = pd.DataFrame({"x": want_e, "y": want_n, "count": frame["count"].to_numpy()}, index=frame.index)
    back = client.compute(kd.transform_dataframe_with(dd.from_pandas(grid, npartitions=5), t,
                                                      direction="INVERSE"), sync=True)
    want_lon, want_lat = t.transform(want_e, want_n, direction="INVERSE")
    assert list(back.columns) == ["x", "y", "count"]
    assert back.index.equals(frame.index)
    assert np.array_equal(back["x"].to_numpy(), want_lon, equal_nan=True)
    assert np.array_equal(back["y"].to_numpy(), want_lat, equal_nan=True)

    # Columns taken as arrays of unknown chunk sizes pair up block by block.
    x, y = kd.transform("EPSG:4326", "EPSG:27700", df["lon"].to_dask_array(), df["lat"].to_dask_array())
    got_x, got_y = client.compute([x, y], sync=True)
    assert np.array_equal(got_x, want_e, equal_nan=True) and np.array_equal(got_y, want_n, equal_nan=True)


def test_nullable_columns_give_nan_for_missing_values():
    frame = pd.DataFrame({"x": pd.array([9.0, None, 10.5, 11.0], dtype="Float64"),
                          "y": pd.array([47, 48, None, 49], dtype="Int64")})
    got = kd.transform_dataframe(dd.from_pandas(frame, npartitions=2), "EPSG:4326", "EPSG:32632",
                                 out=("e", "n")).compute(scheduler="sync")
    want = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:32632").transform([9.0, np.nan, 10.5, 11.0],
                                                                              [47, 48, np.nan, 49])
    assert np.array_equal(got["e"].to_numpy(), want[0], equal_nan=True)
    assert np.array_equal(got["n"].to_numpy(), want[1], equal_nan=True)
    assert np.isnan(got["e"].to_numpy()[1:3]).all() and np.isfinite(got["e"].to_numpy()[[0, 3]]).all()


def _arrays(n=100, chunks=30):
    return da.ones(n, chunks=chunks), da.ones(n, chunks=chunks)


@pytest.mark.parametrize("call, error, words", [
    (lambda: kd.transform("EPSG:4326", "EPSG:999999", *_arrays()), ValueError, "999999"),
    (lambda: kd.transform("EPSG:4326", 'PROJCS["x",GEOGCS[', *_arrays()), ValueError, "bracket"),
    (lambda: kd.transform("Nowhere Grid", "EPSG:4326", *_arrays()), ValueError, "Nowhere Grid"),
    (lambda: kd.transform("EPSG:4326", "UTM", *_arrays()), ValueError, "UTM"),
    (lambda: kd.transform("EPSG:4326", 32632, *_arrays()), TypeError, "crs_to"),
    (lambda: kd.transform(kvcart.Transformer.from_crs("EPSG:4326", "EPSG:32632"), "EPSG:32632", *_arrays()),
     TypeError, "transform_with"),
    (lambda: kd.transform_with("EPSG:4326", *_arrays()), TypeError, "Transformer"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", *_arrays(), direction="BACKWARD"), ValueError, "INVERSE"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", *_arrays(), direction=1), TypeError, "INVERSE"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones(100, chunks=30), da.ones(101, chunks=30)),
     ValueError, "shape"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones((10, 10)), da.ones(100)), ValueError, "shape"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones(100, chunks=30), da.ones(100, chunks=50)),
     ValueError, "chunks"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones(100, chunks=30), np.ones(99)), ValueError, "shape"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.from_array(np.array(["9"] * 4)), da.ones(4)),
     TypeError, "real numbers"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones(4), da.ones(4, dtype=complex)),
     TypeError, "complex"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", da.ones(4), np.array([1, None, 2, 3], dtype=object)),
     TypeError, "object"),
    (lambda: kd.transform("EPSG:4326", "EPSG:32632", ["a", "b"], [1.0, 2.0]), TypeError, "real numbers"),
])
def test_array_refusals_happen_when_called(call, error, words):
    with pytest.raises(error, match=words):
        call()


def _frame():
    return dd.from_pandas(pd.DataFrame({"x": [9.0, 10.0], "y": [47.0, 48.0], "s": ["a", "b"]}), npartitions=1)


@pytest.mark.parametrize("call, error, words", [
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", x="lon"), KeyError, "lon"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", y="lat"), KeyError, "lat"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", y="s"), TypeError, "'s'"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", out=("e", "e")), ValueError, "twice"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", out="e"), TypeError, "two columns"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:0"), ValueError, "EPSG:0"),
    (lambda: kd.transform_dataframe(_frame(), "EPSG:4326", "EPSG:32632", direction="UP"), ValueError, "INVERSE"),
    (lambda: kd.transform_dataframe(_frame().compute(), "EPSG:4326", "EPSG:32632"), TypeError, "from_pandas"),
    (lambda: kd.transform_dataframe(_frame()["x"], "EPSG:4326", "EPSG:32632"), TypeError, "Series"),
    (lambda: kd.transform_dataframe_with(_frame(), "EPSG:32632"), TypeError, "Transformer"),
])
def test_dataframe_refusals_happen_when_called(call, error, words):
    with pytest.raises(error, match=words):
        call()


def test_importing_kvcart_does_not_import_dask():
    code = ("import sys, kvcart; assert 'dask' not in sys.modules, 'dask imported'; "
            "import kvcart.dask; assert 'dask.array' in sys.modules; "
            "assert 'dask.dataframe' not in sys.modules, 'dask.dataframe imported'")
    subprocess.run([sys.executable, "-c", code], check=True)
