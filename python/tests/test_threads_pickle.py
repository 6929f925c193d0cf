"""One Transformer shared by eight threads, pickling round trips (in this
process and in a fresh interpreter, as a worker receives them), and the
catalogue read on import."""

import os
import pickle
import subprocess
import sys
import threading

import numpy as np
import pytest

import kvcart
from systems import ED50_UTM32



@pytest.mark.parametrize("source, target, box", [
    ("EPSG:4326", "EPSG:32632", ((3, 15), (0, 84))),
    ("EPSG:4326", "EPSG:27700", ((-7.5, 1.7), (49.9, 60.8))),
    ("EPSG:27700", ED50_UTM32, None),
])
def test_eight_threads_on_one_transformer_give_the_single_thread_results(source, target, box, rng):
    t = kvcart.Transformer.from_crs(source, target)
    n = 200_000
    if box is None:  # British grid points
        x = rng.uniform(100_000, 600_000, n)
        y = rng.uniform(50_000, 900_000, n)
    else:
        x = rng.uniform(*box[0], n)
        y = rng.uniform(*box[1], n)
    # Some points outside the domain, which come back NaN in every thread.
    x[::997] = np.nan
    y[::1009] = np.inf
    want_f = t.transform(x, y)
    want_i = t.transform(*want_f, direction="INVERSE")
    results = [None] * 8
    start = threading.Barrier(8)

    def work(k):
        start.wait()
        out = []
        for rounds in range(3):
            if k % 2 == 0:
                out.append(t.transform(x, y))
            else:
                fx, fy = want_f[0].copy(), want_f[1].copy()
                t.transform(fx, fy, direction="INVERSE", inplace=True)
                out.append((fx, fy))
        results[k] = out

    threads = [threading.Thread(target=work, args=(k,)) for k in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for k, out in enumerate(results):
        want = want_f if k % 2 == 0 else want_i
        for got in out:
            # Bit for bit, NaN where the single thread has NaN.
            assert np.array_equal(got[0], want[0], equal_nan=True)
            assert np.array_equal(got[1], want[1], equal_nan=True)


def test_the_conversion_releases_the_gil():
    # While one thread converts a large array in place, another thread looks at
    # it: it can see the array half converted (the first point done, the last
    # not yet) only if it ran during the loop, which it cannot while the loop
    # holds the GIL.
    t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:27700")
    x = np.full(4_000_000, -1.0)
    y = np.full(4_000_000, 52.0)
    done = threading.Event()
    seen = []

    def watch():
        while not done.is_set():
            if x[0] != -1.0 and x[-1] == -1.0:
                seen.append(True)
                return

    def convert():
        t.transform(x, y, inplace=True)
        done.set()

    watcher = threading.Thread(target=watch)
    watcher.start()
    worker = threading.Thread(target=convert)
    worker.start()
    worker.join()
    watcher.join()
    assert seen == [True]
    assert x[-1] == x[0] != -1.0


@pytest.mark.parametrize("text", ["EPSG:27700", "UTM-32", "rd new", "LONG/LAT", "NON-UTM", "ESRI:102001",
                                  ED50_UTM32])
def test_crs_pickles_by_its_text(text):
    crs = kvcart.CRS(text)
    again = pickle.loads(pickle.dumps(crs))
    assert isinstance(again, kvcart.CRS)
    assert again.srs == crs.srs and again.name == crs.name
    assert again.datum_shift == crs.datum_shift and again.is_geographic == crs.is_geographic


@pytest.mark.parametrize("always_xy", [True, False])
def test_transformer_pickles_and_gives_the_same_bits(always_xy, rng):
    lon = rng.uniform(167, 178, 500)
    lat = rng.uniform(-47, -35, 500)
    t = kvcart.Transformer.from_crs(kvcart.CRS("EPSG:4326"), "EPSG:2193", always_xy=always_xy)
    again = pickle.loads(pickle.dumps(t, protocol=pickle.HIGHEST_PROTOCOL))
    assert again.always_xy is always_xy and again.target_crs.srs == "EPSG:2193"
    a, b = t.transform(lon, lat), again.transform(lon, lat)
    assert np.array_equal(a[0], b[0]) and np.array_equal(a[1], b[1])


def test_a_fresh_interpreter_unpickles_and_converts_alike(tmp_path):
    t = kvcart.Transformer.from_crs("EPSG:4326", "British National Grid")
    crs = kvcart.CRS(ED50_UTM32)
    points = (np.array([-0.1281, -3.1883, -5.7]), np.array([51.508, 55.9533, 50.07]))
    blob = tmp_path / "objects.pickle"
    blob.write_bytes(pickle.dumps((t, crs, points)))
    script = (
        "import pickle, sys\n"
        "t, crs, (lon, lat) = pickle.loads(open(sys.argv[1], 'rb').read())\n"
        "x, y = t.transform(lon, lat)\n"
        "print(repr(crs.name))\n"
        "print(' '.join(v.hex() for v in list(x) + list(y)))\n"
    )
    out = subprocess.run([sys.executable, "-c", script, str(blob)], check=True, capture_output=True, text=True,
                         env=dict(os.environ)).stdout.split("\n")
    x, y = t.transform(*points)
    assert out[0] == repr(crs.name)
    assert out[1] == " ".join(float(v).hex() for v in list(x) + list(y))


def _run_fresh(code, **env):
    environment = dict(os.environ)
    environment.update(env)
    return subprocess.run([sys.executable, "-W", "always", "-c", code], capture_output=True, text=True,
                          env=environment)


def test_catalogue_directory_from_the_environment(tmp_path):
    empty = tmp_path / "empty"
    empty.mkdir()
    done = _run_fresh(
        "import kvcart\n"
        "print(kvcart.catalogue_directory())\n"
        "try:\n"
        "    kvcart.CRS('British National Grid')\n"
        "except ValueError as e:\n"
        "    print('refused:', e)\n",
        KVCART_DATA_DIR=str(empty))
    assert done.returncode == 0, done.stderr
    lines = done.stdout.splitlines()
    assert lines[0] == str(empty) + "/"
    assert lines[1].startswith('refused: unknown coordinate system "British National Grid"')
    assert "RuntimeWarning" in done.stderr and "KVCART_DATA_DIR" in done.stderr


def test_catalogue_directory_baked_in_holds_the_catalogue():
    assert os.path.isfile(os.path.join(kvcart.catalogue_directory(), "map_projection.gxr"))
    done = _run_fresh("import kvcart; print(kvcart.CRS('British National Grid').name)")
    assert done.returncode == 0 and done.stdout.strip() == "British National Grid"
    assert "Warning" not in done.stderr, done.stderr


def test_user_catalogue_definitions_resolve(tmp_path):
    # A definition in the user's catalogue, in the shipped catalogue's format.
    (tmp_path / "custom_projection.gxr").write_text(
        "TARGET MAP_PROJECTION_DEFINITION\n\n"
        "  SECTION UTM_PROJECTION\n"
        '    Projection_Name      "Site Grid 7"\n'
        '    Branch_Name          "WGS 84"\n'
        '    Ellipsoid            "WE"\n'
        "    Scale                1\n"
        "    Centre_dms           7 0 0\n"
        "    Origin_Latitude_dms  0 0 0\n"
        "    Feast                100000\n"
        "    Fnorth               0\n"
        "  END_SECTION\n"
        "END_TARGET\n")
    done = _run_fresh(
        "import kvcart\n"
        "x, y = kvcart.Transformer.from_crs('LONG/LAT', 'Site Grid 7').transform(7.0, 0.0)\n"
        "print(x, y)\n",
        KVCART_USER_DIR=str(tmp_path))
    assert done.returncode == 0, done.stderr
    assert [float(v) for v in done.stdout.split()] == [100000.0, 0.0]
