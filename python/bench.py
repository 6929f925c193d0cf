#!/usr/bin/python3
"""Speed of the kvcart Python package beside PROJ (through pyproj) and beside
the library's own C batch function, on the same arrays in one run.

    PYTHONPATH=<build>/python /usr/bin/python3 python/bench.py [--points N]
        [--repeat K] [--no-dask] [--lib <build>/libkvcart.so]

What is timed, each as the median of K repetitions (wall clock):
- EPSG:4326 -> EPSG:32632 over the zone (6..12 E, 0..84 N): kvcart's
  Transformer.transform on one thread, pyproj's Transformer.transform
  (always_xy=True), and the library's C_KVMP_CREATE + C_KVMP_GEO2PROJ_N on the
  same arrays through ctypes (outputs allocated once, outside the timing: the
  batch loop's own time). kvcart on two threads (threads=2) beside one,
  allocating its results and in place on arrays already in memory.
- EPSG:4326 -> EPSG:2154 (Lambert-93, over France) and EPSG:4326 ->
  EPSG:28992 (RD New through its Bessel datum shift, over the Netherlands):
  kvcart beside pyproj.
- Dask: a LocalCluster of two worker processes (one thread each), 10 x N
  points in 10 chunks drawn on the workers (fixed seed, nothing shipped) and
  persisted there; timed: kvcart.dask.transform of them persisted on the
  workers (nothing comes back), beside the in-process calls' rate. pyproj in
  map_blocks the same way, for comparison.

The Python calls allocate their outputs (as a caller gets them); the results
are checked against each other (kvcart against the C function bit for bit,
against pyproj within a few millimetres) so that every row times the same
conversion.
"""

import argparse
import ctypes
import os
import statistics
import sys
import tempfile
import time

import numpy as np
import pyproj

# The script's own directory (python/) holds the package's sources without
# its compiled core: kvcart comes from PYTHONPATH (the build tree) or the
# installation instead.
_HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:] = [p for p in sys.path if os.path.abspath(p or os.curdir) != _HERE]

import kvcart  # noqa: E402

SEED = 20240607

CASES = [
    # key, target, longitudes, latitudes, target of pyproj ÷ kvcart
    ("utm", "EPSG:32632", (6.0, 12.0), (0.0, 84.0), 10.0),
    ("lambert93", "EPSG:2154", (-5.0, 9.5), (41.3, 51.1), 2.0),
    ("rdnew", "EPSG:28992", (3.2, 7.3), (50.7, 53.6), 2.0),
]


def median_seconds(run, repeat):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        run()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def points(n, lon_range, lat_range, seed):
    rng = np.random.default_rng(seed)
    return rng.uniform(*lon_range, n), rng.uniform(*lat_range, n)


class CBatch:
    """The library's C interface through ctypes: catalogue set up as a C host
    sets it up (CARTSETUPLINUX with the package's catalogue directory and a
    user directory of its own), EPSG reading on, one system per handle."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(path)
        lib = self.lib
        vec = np.ctypeslib.ndpointer(dtype=np.float64, flags="C_CONTIGUOUS")
        lib.CARTSETUPLINUX.argtypes = [ctypes.c_char_p, ctypes.c_char_p]
        lib.CARTSETUPLINUX.restype = None
        lib.C_KVC_SETEPSGREADING.argtypes = [ctypes.c_int]
        lib.C_KVC_SETEPSGREADING.restype = None
        lib.C_KVMP_CREATE.argtypes = [ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p), ctypes.POINTER(ctypes.c_int)]
        lib.C_KVMP_CREATE.restype = None
        lib.C_KVMP_DESTROY.argtypes = [ctypes.POINTER(ctypes.c_void_p), ctypes.POINTER(ctypes.c_int)]
        lib.C_KVMP_DESTROY.restype = None
        lib.C_KVMP_GETNAME.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int, ctypes.POINTER(ctypes.c_int)]
        lib.C_KVMP_GETNAME.restype = None
        lib.C_KVMP_GEO2PROJ_N.argtypes = [ctypes.c_void_p, ctypes.c_size_t, vec, vec, vec, vec]
        lib.C_KVMP_GEO2PROJ_N.restype = None
        self.user_dir = tempfile.TemporaryDirectory(prefix="kvcart-bench-")
        lib.CARTSETUPLINUX(kvcart.catalogue_directory().encode(), (self.user_dir.name + "/").encode())
        lib.C_KVC_SETEPSGREADING(1)

    def create(self, text):
        handle = ctypes.c_void_p()
        status = ctypes.c_int(-1)
        self.lib.C_KVMP_CREATE(text.encode(), ctypes.byref(handle), ctypes.byref(status))
        if status.value != 0:
            raise RuntimeError("C_KVMP_CREATE(%r) failed" % text)
        # A text that resolves nowhere still makes an object, with no name.
        name = ctypes.create_string_buffer(256)
        self.lib.C_KVMP_GETNAME(handle, name, 255, ctypes.byref(status))
        if status.value != 0 or not name.value:
            raise RuntimeError("%r did not resolve in the catalogue %s" % (text, kvcart.catalogue_directory()))
        return handle

    def destroy(self, handle):
        status = ctypes.c_int()
        self.lib.C_KVMP_DESTROY(ctypes.byref(handle), ctypes.byref(status))

    def geo2proj(self, text, lon, lat, x, y):
        handle = self.create(text)
        self.lib.C_KVMP_GEO2PROJ_N(handle, lon.size, lon, lat, x, y)
        self.destroy(handle)


def default_library():
    # <build>/python/kvcart/__init__.py -> <build>/libkvcart.so
    build = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(kvcart.__file__))))
    return os.path.join(build, "libkvcart.so")


def max_difference(a, b):
    return float(np.nanmax(np.abs(np.asarray(a) - np.asarray(b))))


def bench_in_process(args, rows, notes):
    n = args.points
    rates = {}
    for key, target, lon_range, lat_range, pyproj_target in CASES:
        lon, lat = points(n, lon_range, lat_range, SEED)
        case = "EPSG:4326 → %s" % target
        t = kvcart.Transformer.from_crs("EPSG:4326", target, always_xy=True)
        p = pyproj.Transformer.from_crs("EPSG:4326", target, always_xy=True)
        want = t.transform(lon, lat)
        theirs = p.transform(lon, lat)
        notes.append("%s: pyproj runs '%s'; kvcart - pyproj at most %.2g m"
                     % (case, p.description, max(max_difference(want[0], theirs[0]),
                                                 max_difference(want[1], theirs[1]))))
        del theirs
        kv = median_seconds(lambda: t.transform(lon, lat), args.repeat)
        rates[key] = n / kv
        if key == "utm":
            c = None
            if args.lib and os.path.exists(args.lib):
                batch = CBatch(args.lib)
                cx, cy = np.empty(n), np.empty(n)
                batch.geo2proj(target, lon, lat, cx, cy)
                same = np.array_equal(cx, want[0], equal_nan=True) and np.array_equal(cy, want[1], equal_nan=True)
                notes.append("%s: the C batch function's results %s kvcart's" % (
                    case, "are bit for bit" if same else "differ from (at most %.2g m)"
                    % max(max_difference(cx, want[0]), max_difference(cy, want[1]))))
                c = median_seconds(lambda: batch.geo2proj(target, lon, lat, cx, cy), args.repeat)
                rows.append((case, "C batch: C_KVMP_CREATE + C_KVMP_GEO2PROJ_N", c, n, "", ""))
                del cx, cy
            else:
                notes.append("C batch function not timed: no library at %r (--lib PATH)" % args.lib)
            rows.append((case, "kvcart, 1 thread", kv, n,
                         "kvcart ÷ C batch = %.2f" % (kv / c) if c else "", "≤ 1.5" if c else ""))
        else:
            rows.append((case, "kvcart, 1 thread", kv, n, "", ""))
        pp = median_seconds(lambda: p.transform(lon, lat), args.repeat)
        rows.append((case, "pyproj %s (PROJ %s)" % (pyproj.__version__, pyproj.proj_version_str), pp, n,
                     "pyproj ÷ kvcart = %.1f" % (pp / kv), "≥ %g" % pyproj_target))
        if key == "utm":
            two = t.transform(lon, lat, threads=2)
            if not (np.array_equal(two[0], want[0], equal_nan=True) and np.array_equal(two[1], want[1], equal_nan=True)):
                notes.append("threads=2 DIFFERS from one thread")
            del two
            kv2 = median_seconds(lambda: t.transform(lon, lat, threads=2), args.repeat)
            rows.append((case, "kvcart, threads=2", kv2, n, "1 thread ÷ 2 threads = %.2f" % (kv / kv2), "≥ 1.8"))
            rates["utm2"] = n / kv2
            # The same in place, on arrays already in memory: the calls above
            # also fault in their new output arrays (the kernel's first touch
            # of 160 MB, which two threads barely speed up on this machine).
            ox, oy = np.empty(n), np.empty(n)

            def in_place(threads):
                times = []
                for _ in range(args.repeat):
                    ox[:] = lon
                    oy[:] = lat
                    start = time.perf_counter()
                    t.transform(ox, oy, inplace=True, threads=threads)
                    times.append(time.perf_counter() - start)
                return statistics.median(times)

            one_in, two_in = in_place(1), in_place(2)
            rows.append((case, "kvcart in place, 1 thread", one_in, n, "", ""))
            rows.append((case, "kvcart in place, threads=2", two_in, n,
                         "1 thread ÷ 2 threads = %.2f" % (one_in / two_in), "≥ 1.8"))
            del ox, oy
        del want, lon, lat
    return rates


def _pyproj_block(lon, lat):
    # One task per block for both coordinates, stacked as (2, ...) so that
    # map_blocks carries them in one array.
    p = pyproj.Transformer.from_crs("EPSG:4326", "EPSG:32632", always_xy=True)
    return np.stack(p.transform(lon, lat))


def _identity(block):
    return block


def bench_dask(args, rows, notes, rates):
    import dask.array as da
    import distributed

    import kvcart.dask

    total = 10 * args.points
    chunk = args.points
    case = "EPSG:4326 → EPSG:32632, Dask"
    with distributed.LocalCluster(n_workers=2, processes=True, threads_per_worker=1,
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        # Both packages imported on the workers before anything is timed.
        client.run(lambda: (__import__("kvcart"), __import__("pyproj")) and None)
        state = da.random.RandomState(SEED)
        lon = state.uniform(6.0, 12.0, total, chunks=chunk)
        lat = state.uniform(0.0, 84.0, total, chunks=chunk)
        lon, lat = client.persist([lon, lat])
        distributed.wait([lon, lat])

        def timed(make):
            times = []
            for i in range(args.repeat):
                # A fresh key name a repetition (the identity is fused into the
                # conversion's task, no copy), so that no result of the
                # previous one is reused; its results are released before.
                a = lon.map_blocks(_identity, name="bench-lon-%d" % i)
                b = lat.map_blocks(_identity, name="bench-lat-%d" % i)
                start = time.perf_counter()
                out = client.persist(make(a, b))
                distributed.wait(out)
                times.append(time.perf_counter() - start)
                futures = distributed.futures_of(out)
                client.cancel(futures)
                del out, futures
            return statistics.median(times)

        def with_kvcart(a, b):
            return list(kvcart.dask.transform("EPSG:4326", "EPSG:32632", a, b))

        def with_pyproj(a, b):
            return [da.map_blocks(_pyproj_block, a, b, dtype=np.float64, new_axis=0,
                                  chunks=((2,),) + a.chunks)]

        kv = timed(with_kvcart)
        rows.append((case, "kvcart.dask, 2 worker processes, %d chunks" % lon.numblocks[0], kv, total,
                     "÷ in-process 1 thread: %.2f× the points/s" % (total / kv / rates["utm"]), ""))
        if not args.no_dask_pyproj:
            pp = timed(with_pyproj)
            rows.append((case, "pyproj in map_blocks, 2 worker processes", pp, total,
                         "pyproj ÷ kvcart = %.1f" % (pp / kv), ""))
    notes.append("Dask: %d points in %d chunks drawn and persisted on the workers; timed: persisting the "
                 "converted coordinates there (scheduling, conversion, storing); in-process rates: "
                 "%.1f M points/s on 1 thread, %.1f M on threads=2"
                 % (total, total // chunk, rates["utm"] / 1e6, rates["utm2"] / 1e6))


def table(rows):
    lines = ["| case | implementation | median (s) | ns / point | M points / s | ratio | target |",
             "|---|---|---:|---:|---:|---|---|"]
    for case, what, seconds, n, ratio, target in rows:
        lines.append("| %s | %s | %.3f | %.1f | %.1f | %s | %s |"
                     % (case, what, seconds, seconds / n * 1e9, n / seconds / 1e6, ratio, target))
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--points", type=int, default=10_000_000, help="points per in-process case (default 10 million); "
                        "the Dask case converts ten times as many, in 10 chunks")
    parser.add_argument("--repeat", type=int, default=5, help="repetitions; the median is reported (default 5)")
    parser.add_argument("--no-dask", action="store_true", help="leave out the Dask case")
    parser.add_argument("--no-dask-pyproj", action="store_true", help="leave out pyproj in the Dask case")
    parser.add_argument("--lib", default=default_library(),
                        help="the shared library libkvcart.so for the C batch time (default: %(default)s)")
    args = parser.parse_args()
    if args.points < 1 or args.repeat < 1:
        parser.error("--points and --repeat are at least 1")

    print("kvcart %s, catalogue %s; pyproj %s, PROJ %s; numpy %s; %d cores; %d points, median of %d"
          % (os.path.dirname(kvcart.__file__), kvcart.catalogue_directory(), pyproj.__version__,
             pyproj.proj_version_str, np.__version__, os.cpu_count(), args.points, args.repeat), flush=True)
    rows, notes = [], []
    # Other work on the machine shows in every figure: the load before and after.
    load_before = os.getloadavg()[0]
    rates = bench_in_process(args, rows, notes)
    if not args.no_dask:
        bench_dask(args, rows, notes, rates)
    notes.append("load average (1 min) %.2f before, %.2f after, on %d cores"
                 % (load_before, os.getloadavg()[0], os.cpu_count()))
    print()
    for note in notes:
        print("- " + note)
    print()
    print(table(rows))
    return 0


if __name__ == "__main__":
    sys.exit(main())
