"""KvCart's transformations over Dask arrays and Dask dataframes.

The functions build lazy Dask collections: nothing is converted until the
result is computed. The kvcart.Transformer is made once, here, on the client,
so that an unknown name or a refused WKT text raises ValueError when the
function is called rather than when the graph runs; it travels to the workers
inside the graph's tasks (a Transformer pickles as the texts of its two
systems and is made again from them on the worker, which takes a fraction of a
millisecond). Each block is converted by one task that gives both of its
coordinates, with the bits of one in-process Transformer.transform call.

    >>> import dask.array as da
    >>> import kvcart.dask
    >>> lon = da.random.uniform(6.0, 12.0, 100_000_000, chunks=10_000_000)
    >>> lat = da.random.uniform(36.0, 60.0, 100_000_000, chunks=10_000_000)
    >>> x, y = kvcart.dask.transform("EPSG:4326", "EPSG:32632", lon, lat)

On a cluster, a client pointed at its scheduler runs the same graph on its
workers, which need the kvcart package (and, for catalogue names and EPSG codes,
its catalogue; systems defined in the user's own catalogue must be defined in
the workers' too, whereas a WKT text travels with the graph):

    >>> from distributed import Client
    >>> client = Client("tcp://scheduler:8786")
    >>> x, y = client.persist([x, y])

Dataframes with coordinate columns go through transform_dataframe, one task a
partition.

`import kvcart` does not import Dask; this module does.
"""

import operator as _operator

from dask.base import tokenize as _tokenize
import dask.array as _da
import numpy as _np

from . import CRS as _CRS
from . import Transformer as _Transformer
from . import _inverse

__all__ = ["transform", "transform_with", "transform_dataframe", "transform_dataframe_with"]

# The dtypes Transformer.transform converts to float64 (booleans, integers,
# floats); anything else is refused when the graph is built, not in a worker.
_NUMERIC_KINDS = "biuf"


def _direction_name(direction):
    return "INVERSE" if _inverse(direction) else "FORWARD"


def _transformer(crs_from, crs_to, always_xy):
    for name, crs in (("crs_from", crs_from), ("crs_to", crs_to)):
        if isinstance(crs, _Transformer):
            raise TypeError("%s is a Transformer: pass it to transform_with or "
                            "transform_dataframe_with instead of two systems" % name)
        if not isinstance(crs, (str, _CRS)):
            raise TypeError("%s is a string or a kvcart.CRS, not %s" % (name, type(crs).__name__))
    return _Transformer.from_crs(crs_from, crs_to, always_xy=always_xy)


def _as_dask_array(value, what, chunks=None):
    if isinstance(value, _da.Array):
        return value
    try:
        array = _np.asarray(value)
    except (TypeError, ValueError) as error:
        raise TypeError("%s must be real numbers (%s)" % (what, error)) from None
    if chunks is not None and not _unknown(chunks) and array.shape == tuple(sum(c) for c in chunks):
        return _da.from_array(array, chunks=chunks)
    return _da.asarray(array)


def _unknown(chunks):
    return any(_np.isnan(c) for axis in chunks for c in axis)


def _check_pair(x, y):
    for name, array in (("x", x), ("y", y)):
        if array.dtype.kind not in _NUMERIC_KINDS:
            raise TypeError("%s must be real numbers, not %s" % (name, array.dtype))
    if x.ndim != y.ndim:
        raise ValueError("x and y differ in shape: %s and %s" % (x.shape, y.shape))
    if _unknown(x.chunks) or _unknown(y.chunks):
        # Sizes known only when computed (an array from a dataframe): the
        # blocks must pair up, and each pair is checked in its task.
        if x.numblocks != y.numblocks:
            raise ValueError("x and y differ in blocks: %s and %s" % (x.numblocks, y.numblocks))
        for cx, cy in zip(x.chunks, y.chunks):
            for a, b in zip(cx, cy):
                if not (_np.isnan(a) or _np.isnan(b)) and a != b:
                    raise ValueError("x and y differ in chunks: %s and %s" % (x.chunks, y.chunks))
        return
    if x.shape != y.shape:
        raise ValueError("x and y differ in shape: %s and %s" % (x.shape, y.shape))
    if x.chunks != y.chunks:
        raise ValueError("x and y differ in chunks: %s and %s (rechunk one to the other's chunks)"
                         % (x.chunks, y.chunks))


def _transform_block(transformer, direction, bx, by):
    # One task per block for both coordinates: the pair is split by the two
    # getitem layers below, so the points are converted once.
    ox, oy = transformer.transform(_np.asarray(bx), _np.asarray(by), direction=direction)
    return _np.asarray(ox), _np.asarray(oy)


def _transform_arrays(transformer, x, y, direction):
    direction = _direction_name(direction)
    # A numpy array or scalar takes the chunks of its partner when that is a
    # Dask array of its shape; two of them, the first's as asarray makes them.
    if isinstance(x, _da.Array) or not isinstance(y, _da.Array):
        x = _as_dask_array(x, "x")
        y = _as_dask_array(y, "y", x.chunks)
    else:
        x = _as_dask_array(x, "x", y.chunks)
    _check_pair(x, y)
    token = _tokenize(transformer.source_crs.srs, transformer.target_crs.srs,
                      transformer.always_xy, direction, x.name, y.name)
    index = tuple(range(x.ndim))
    empty = _np.empty((0,) * x.ndim, dtype=_np.float64)
    pairs = _da.blockwise(_transform_block, index,
                          transformer, None, direction, None, x, index, y, index,
                          name="kvcart-transform-" + token, dtype=_np.float64, meta=empty,
                          align_arrays=False, concatenate=True)
    out_x = pairs.map_blocks(_operator.getitem, 0, dtype=_np.float64, meta=empty,
                             name="kvcart-x-" + token)
    out_y = pairs.map_blocks(_operator.getitem, 1, dtype=_np.float64, meta=empty,
                             name="kvcart-y-" + token)
    return out_x, out_y


def transform(crs_from, crs_to, x, y, *, always_xy=True, direction="FORWARD"):
    """Converts the points (x, y) from crs_from to crs_to, lazily, block by block.

    crs_from, crs_to: strings (any text kvcart.CRS takes) or kvcart.CRS
    objects. The Transformer is made now, so that an unknown system raises
    ValueError here; a Transformer already made goes to transform_with.

    x, y: Dask arrays of one shape and one chunking (ValueError otherwise:
    rechunk one to the other's chunks), of booleans, integers or floats
    (TypeError otherwise). A numpy array or a scalar is taken as a Dask array:
    with the chunks of the other argument when that is a Dask array of its
    shape, else as dask.array.asarray chunks it (one block up to its chunk
    size; a scalar gives a 0-d array).

    always_xy: as Transformer.from_crs (x first, longitude or easting).
    direction: "FORWARD" or "INVERSE".

    Returns two float64 Dask arrays, the converted x and y, with the inputs'
    chunks; computed together, each block is converted by one task. A point
    outside the systems' domain (NaN, infinite, beyond a pole) gives NaN."""
    _direction_name(direction)
    return _transform_arrays(_transformer(crs_from, crs_to, always_xy), x, y, direction)


def transform_with(transformer, x, y, *, direction="FORWARD"):
    """As transform, with a kvcart.Transformer already made (its own always_xy).

    The transformer goes into the graph's tasks as the texts of its systems
    and is made again from them where a task runs."""
    if not isinstance(transformer, _Transformer):
        raise TypeError("transformer is a kvcart.Transformer, not %s" % type(transformer).__name__)
    return _transform_arrays(transformer, x, y, direction)


def _transform_partition(frame, transformer, direction, x, y, out_x, out_y):
    # Missing values of nullable columns (pandas.NA) are NaN points.
    cx = frame[x].to_numpy(dtype=_np.float64, na_value=_np.nan)
    cy = frame[y].to_numpy(dtype=_np.float64, na_value=_np.nan)
    rx, ry = transformer.transform(cx, cy, direction=direction)
    result = frame.copy(deep=False)
    result[out_x] = rx
    result[out_y] = ry
    return result


def _transform_frame(transformer, df, x, y, out, direction):
    import dask.dataframe as dd

    direction = _direction_name(direction)
    if not isinstance(df, dd.DataFrame):
        raise TypeError("df is a dask.dataframe.DataFrame, not %s (a pandas frame converts with "
                        "dask.dataframe.from_pandas, or directly with kvcart.Transformer)"
                        % type(df).__name__)
    try:
        out_x, out_y = out
    except (TypeError, ValueError):
        raise TypeError("out names two columns, (x, y), not %r" % (out,)) from None
    if out_x == out_y:
        raise ValueError("out names one column twice: %r" % (out_x,))
    for role, column in (("x", x), ("y", y)):
        if column not in df.columns:
            raise KeyError("no column %r for %s among %s" % (column, role, list(df.columns)))
        kind = df._meta[column].dtype.kind
        if kind not in _NUMERIC_KINDS:
            raise TypeError("column %r (%s) must hold real numbers, not %s"
                            % (column, role, df._meta[column].dtype))
    meta = _transform_partition(df._meta, transformer, direction, x, y, out_x, out_y)
    return df.map_partitions(_transform_partition, transformer, direction, x, y, out_x, out_y,
                             meta=meta, token="kvcart-transform-frame",
                             align_dataframes=False, transform_divisions=False)


def transform_dataframe(df, crs_from, crs_to, *, x="x", y="y", out=("x", "y"), always_xy=True,
                        direction="FORWARD"):
    """Converts the columns x and y of a Dask dataframe from crs_from to crs_to.

    Returns a new Dask dataframe with the converted coordinates in the
    columns named by out (float64): replacing x and y with the default names,
    added beside them with others (out=("easting", "northing")). Every other
    column, the index, the partitions and their divisions stay as they are;
    one task converts each partition. Missing values (NaN, pandas.NA) and
    points outside the systems' domain give NaN.

    crs_from, crs_to, always_xy, direction: as transform; a Transformer
    already made goes to transform_dataframe_with. A column that is not there
    raises KeyError, one that does not hold numbers TypeError, both when
    called."""
    _direction_name(direction)
    return _transform_frame(_transformer(crs_from, crs_to, always_xy), df, x, y, out, direction)


def transform_dataframe_with(df, transformer, *, x="x", y="y", out=("x", "y"), direction="FORWARD"):
    """As transform_dataframe, with a kvcart.Transformer already made."""
    if not isinstance(transformer, _Transformer):
        raise TypeError("transformer is a kvcart.Transformer, not %s" % type(transformer).__name__)
    return _transform_frame(transformer, df, x, y, out, direction)
