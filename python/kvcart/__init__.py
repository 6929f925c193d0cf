"""KvCart's map projections and datum conversions for Python and numpy.

    >>> import kvcart
    >>> t = kvcart.Transformer.from_crs("EPSG:4326", "EPSG:32632")
    >>> x, y = t.transform(9.5, 47.5)

A coordinate system is given as any string the library accepts: WKT 1 (a
.prj file's text), "EPSG:n", "ESRI:n", a catalogue name ("UTM-32",
"British National Grid", "LONG/LAT", "NON-UTM"). WKT is read as the EPSG
registry defines it, as the kvcart program reads it.

The catalogue is read once, on import, from $KVCART_DATA_DIR when it is set,
else from the directory the package was built or installed with; the user's
own definitions from $KVCART_USER_DIR, else $XDG_CONFIG_HOME/kvcart/, else
~/.config/kvcart/ (a directory under the temporary directory when there is
no home).
"""

import os as _os
import tempfile as _tempfile
import warnings as _warnings

import numpy as _np

from . import _config
from . import _kvcart

__all__ = ["CRS", "Transformer", "DatumWarning", "catalogue_directory"]


class DatumWarning(UserWarning):
    """A conversion changes datum without knowing one side's shift to WGS 84."""


def _with_slash(path):
    return path if path.endswith("/") else path + "/"


def _data_directory():
    given = _os.environ.get("KVCART_DATA_DIR")
    if given:
        return _with_slash(given)
    if _config.DATA_DIR_IS_RELATIVE:
        here = _os.path.dirname(_os.path.abspath(__file__))
        return _with_slash(_os.path.normpath(_os.path.join(here, _config.DATA_DIR)))
    return _config.DATA_DIR


def _user_directory():
    given = _os.environ.get("KVCART_USER_DIR")
    if given:
        return _with_slash(given)
    # As the program: the XDG directory, else the home's; both must be absolute.
    xdg = _os.environ.get("XDG_CONFIG_HOME", "")
    if xdg.startswith("/"):
        return _with_slash(xdg) + "kvcart/"
    home = _os.environ.get("HOME", "")
    if home.startswith("/"):
        return _with_slash(home) + ".config/kvcart/"
    return _with_slash(_os.path.join(_tempfile.gettempdir(), "kvcart-%d" % _os.getuid()))


_CATALOGUE = _data_directory()
_found, _problems = _kvcart._setup(_CATALOGUE, _user_directory())
if not _found:
    _warnings.warn(
        "kvcart: no catalogue in '%s' (%s); catalogue names and EPSG codes do not resolve: "
        "set KVCART_DATA_DIR to the directory holding map_projection.gxr"
        % (_CATALOGUE, _problems.strip() or "map_projection.gxr not found"),
        RuntimeWarning,
    )


def catalogue_directory():
    """The catalogue directory read on import."""
    return _CATALOGUE


class CRS:
    """A coordinate system, made from any string the library accepts.

    An unknown name, a refused WKT text or the bare "UTM" raises ValueError
    with the library's reason (for a name, the closest names it knows)."""

    __slots__ = ("_core",)

    def __init__(self, text):
        if isinstance(text, CRS):
            self._core = text._core
            return
        if not isinstance(text, str):
            raise TypeError("a coordinate system is given as a string, not %s" % type(text).__name__)
        self._core = _kvcart._CRS(text)

    @classmethod
    def from_wkt(cls, text):
        """The system of a WKT 1 text; a name or a code is refused."""
        if not isinstance(text, str):
            raise TypeError("WKT is a string, not %s" % type(text).__name__)
        if not _kvcart._is_wkt(text.strip()):
            crs = cls(text)  # the library's own reason when it does not resolve
            raise ValueError("not WKT: %r names a coordinate system; use kvcart.CRS for names and codes" % crs.srs)
        return cls(text)

    @property
    def srs(self):
        """The text the system was made from (a catalogue name as the catalogue spells it)."""
        return self._core.srs

    @property
    def name(self):
        return self._core.name

    @property
    def is_geographic(self):
        """Longitude/latitude in degrees (longitude first)."""
        return self._core.is_geographic

    @property
    def datum_shift(self):
        """The shift to WGS 84 as 7 values (dx, dy, dz in metres; rx, ry, rz in
        arc-seconds, position vector; scale in ppm), zeros where a 3-parameter
        shift has none; None when the shift is not known."""
        return self._core.datum_shift

    @property
    def message(self):
        """What the library said on reading the system (empty when nothing)."""
        return self._core.message

    def to_wkt(self):
        """The system as OGC WKT 1, as GDAL writes it (ValueError with the
        reason for a system OGC WKT 1 has no form for, LONG/LAT and NON-UTM)."""
        return self._core.to_wkt()

    def to_proj4(self):
        """A PROJ string PROJ reads as the same system (ValueError with the reason
        for a system PROJ cannot be told)."""
        return self._core.to_proj4()

    def __repr__(self):
        text = self.srs
        shown = repr(text if len(text) <= 60 else text[:57] + "...")
        return "<kvcart.CRS %s: %s%s>" % (shown, self.name or "(unnamed)", ", geographic" if self.is_geographic else "")

    def __reduce__(self):
        return (CRS, (self.srs,))


_DIRECTIONS = {"FORWARD": False, "INVERSE": True}


def _inverse(direction):
    if not isinstance(direction, str):
        raise TypeError('direction is "FORWARD" or "INVERSE"')
    try:
        return _DIRECTIONS[direction.upper()]
    except KeyError:
        raise ValueError('direction is "FORWARD" or "INVERSE", not %r' % direction) from None


def _threads(threads):
    if isinstance(threads, bool) or not isinstance(threads, (int, _np.integer)):
        raise TypeError("threads is a whole number, not %s" % type(threads).__name__)
    if threads < 0:
        raise ValueError("threads is 0 (one per core) or more, not %d" % threads)
    return int(threads) if threads > 0 else (_os.cpu_count() or 1)


def _float_array(value, what):
    array = _np.asarray(value)
    kind = array.dtype.kind
    if kind in "biuf":
        return array
    if kind == "O" and not any(v is None for v in array.flat):
        # Numbers held as objects; None would become NaN, and is refused.
        try:
            return array.astype(_np.float64)
        except (TypeError, ValueError):
            pass
    raise TypeError("%s must be real numbers, not %s" % (what, array.dtype))


class Transformer:
    """Converts points from one coordinate system to another, through each
    side's datum shift to WGS 84, as `kvcart transform` converts them.

    Objects may be shared between threads; the conversion runs without the GIL."""

    __slots__ = ("_core", "_source", "_target", "_always_xy")

    def __init__(self, *args, **kwargs):
        raise TypeError("use Transformer.from_crs(source, target)")

    @classmethod
    def _make(cls, source, target, always_xy, warn):
        if not isinstance(always_xy, bool):
            raise TypeError("always_xy is True or False")
        self = object.__new__(cls)
        self._source = source
        self._target = target
        self._always_xy = always_xy
        self._core = _kvcart._Transformer(self._source._core, self._target._core, always_xy)
        if warn and self._core.message:
            _warnings.warn(self._core.message, DatumWarning, stacklevel=3)
        return self

    @classmethod
    def from_crs(cls, crs_from, crs_to, always_xy=True):
        """A transformer from crs_from to crs_to (CRS objects or strings).

        always_xy=True: every side's coordinates are x first, longitude or
        easting (a grid whose registry axes are northing first, EPSG:2193, is
        taken and given easting first). False: the axis order the library
        gives, which is the registry's for projected systems (EPSG:2193
        northing first); geographic systems are longitude first either way.
        Projected coordinates are in their system's own linear unit (US
        survey feet for a state plane in feet). A change of datum whose shift
        is not known on one side is made as if that side were WGS 84, with a
        DatumWarning."""
        return cls._make(CRS(crs_from), CRS(crs_to), always_xy, True)

    @property
    def source_crs(self):
        return self._source

    @property
    def target_crs(self):
        return self._target

    @property
    def always_xy(self):
        return self._always_xy

    @property
    def datum_message(self):
        """Why points may be off by a missing datum shift (empty when none is missing)."""
        return self._core.message

    def transform(self, xx, yy, zz=None, direction="FORWARD", inplace=False, threads=1):
        """Converts points.

        xx, yy (and zz, ellipsoidal heights in metres, when given): scalars give
        floats; lists and arrays of any shape give new float64 arrays of that
        shape (other dtypes converted, strided views read as they are).
        Returns (x, y), or (x, y, z) when zz is given.

        direction: "FORWARD" (source to target) or "INVERSE".
        inplace=True writes the results into xx, yy (and zz), which must be
        writable float64 numpy arrays, and returns them.
        threads=N converts one call on N threads (0: one per core); the
        results are those of one thread, bit for bit.

        A point outside the systems' domain (NaN, infinite, beyond a pole,
        where a projection has no point) is NaN in every output."""
        inverse = _inverse(direction)
        count = _threads(threads)
        if inplace:
            return self._transform_inplace(xx, yy, zz, inverse, count)
        given = (xx, yy) if zz is None else (xx, yy, zz)
        scalar = all(not isinstance(v, _np.ndarray) and _np.ndim(v) == 0 for v in given)
        arrays = [_float_array(v, name) for v, name in zip(given, ("xx", "yy", "zz"))]
        for name, a in zip(("yy", "zz"), arrays[1:]):
            if a.shape != arrays[0].shape:
                raise ValueError("xx and %s differ in shape: %s and %s" % (name, arrays[0].shape, a.shape))
        out = [_np.array(a, dtype=_np.float64, order="C", copy=True) for a in arrays]
        flat = [a.reshape(-1) for a in out]
        self._core.run(flat[0], flat[1], flat[2] if zz is not None else None, inverse, count)
        if scalar:
            return tuple(float(a) for a in out)
        return tuple(out)

    def _transform_inplace(self, xx, yy, zz, inverse, threads):
        given = [("xx", xx), ("yy", yy)] + ([] if zz is None else [("zz", zz)])
        for name, array in given:
            if not isinstance(array, _np.ndarray):
                raise TypeError("inplace=True takes numpy arrays; %s is %s" % (name, type(array).__name__))
            if array.dtype != _np.float64:
                raise TypeError("inplace=True takes float64 arrays; %s is %s" % (name, array.dtype))
            if not array.flags.writeable:
                raise ValueError("inplace=True: %s is read-only" % name)
        for name, array in given[1:]:
            if array.shape != xx.shape:
                raise ValueError("xx and %s differ in shape: %s and %s" % (name, xx.shape, array.shape))
        if xx.size > 0:
            for i in range(len(given)):
                for j in range(i + 1, len(given)):
                    if _np.shares_memory(given[i][1], given[j][1]):
                        raise ValueError("inplace=True: %s and %s share memory" % (given[i][0], given[j][0]))
        # A one-dimensional view is converted where it lies, whatever its stride;
        # an array of more dimensions that is not contiguous goes through a copy.
        views = [a if a.ndim == 1 else a.reshape(-1) if a.flags.c_contiguous else None for _, a in given]
        work = [_np.ascontiguousarray(a).reshape(-1) if v is None else v for (_, a), v in zip(given, views)]
        self._core.run(work[0], work[1], work[2] if zz is not None else None, inverse, threads)
        for (_, a), v, w in zip(given, views, work):
            if v is None:
                a[...] = w.reshape(a.shape)
        return tuple(a for _, a in given)

    def __repr__(self):
        return "<kvcart.Transformer from %r to %r%s>" % (
            self._source.srs if len(self._source.srs) <= 60 else self._source.name,
            self._target.srs if len(self._target.srs) <= 60 else self._target.name,
            "" if self._always_xy else ", always_xy=False",
        )

    def __reduce__(self):
        return (_restore_transformer, (self._source.srs, self._target.srs, self._always_xy))


def _restore_transformer(source, target, always_xy):
    # The warning, if any, was given where the transformer was first made.
    return Transformer._make(CRS(source), CRS(target), always_xy, False)
