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

import collections as _collections
import os as _os
import tempfile as _tempfile
import warnings as _warnings

import numpy as _np

from . import _config
from . import _kvcart

__all__ = ["CRS", "Transformer", "Geod", "SiteGrid", "Axis", "AreaOfUse", "DatumWarning", "catalogue_directory",
           "ellipsoids"]


Axis = _collections.namedtuple("Axis", "direction unit_name unit_conversion_factor")
Axis.__doc__ = """One axis of a coordinate system: its direction ("east", "north", "west",
"south"), its unit's name and the unit's size in metres (degrees for a
geographic system's axes)."""

AreaOfUse = _collections.namedtuple("AreaOfUse", "west south east north")
AreaOfUse.__doc__ = """Where the EPSG registry says a system is used: Greenwich longitudes and
latitudes in degrees; west > east when the area crosses the antimeridian."""


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
        """The system's name (the WKT's, the registry's or the catalogue's)."""
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

    @property
    def axis_info(self):
        """The two axes, in the order the library reads and writes the
        coordinates (Transformer with always_xy=False): geographic systems are
        longitude, latitude in degrees; a projected system's axes carry its
        linear unit (US survey feet for a state plane kept in feet)."""
        return [Axis(*axis) for axis in self._core.axes]

    @property
    def is_projected(self):
        """Neither geographic nor a local grid without a georeference."""
        return not self.is_geographic and not self._core.is_local

    @property
    def area_of_use(self):
        """The registry's area of use (AreaOfUse), or None for a system that
        was not given by its EPSG code."""
        area = self._core.area_of_use
        return None if area is None else AreaOfUse(*area)

    @property
    def default_area(self):
        """A map area around the system's origin, (x0, y0, x1, y1) in its
        engine's coordinates (metres, or degrees for a geographic system)."""
        return self._core.default_area

    def convergence(self, lon, lat):
        """Grid convergence in degrees: the angle from true north to grid north
        at each point (lon, lat in degrees, broadcast together); 0 for a
        geographic system, NaN for a point that is none."""
        columns, shape, scalar = _columns((lon, lat), ("lon", "lat"))
        out = _outputs(1, columns)
        self._core.convergence(*columns, *out)
        return _shaped(out, shape, scalar)[0]

    def to_geocentric(self, lon, lat, h=0.0):
        """Geocentric X, Y, Z in metres on the system's ellipsoid from
        longitude, latitude (degrees) and ellipsoidal height (metres). NaN for
        a latitude beyond +-90, a longitude that is no number, or a height
        below a quarter of the semi-major axis under the ellipsoid; ValueError
        for a system without an ellipsoid (LONG/LAT, NON-UTM)."""
        columns, shape, scalar = _columns((lon, lat, h), ("lon", "lat", "h"))
        out = _outputs(3, columns)
        self._core.geocentric(True, *columns, *out)
        return _shaped(out, shape, scalar)

    def from_geocentric(self, x, y, z):
        """Longitude, latitude (degrees) and ellipsoidal height (metres) from
        geocentric coordinates on the system's ellipsoid (Bowring's method, one
        step: micrometres up to 10 km above or below the ellipsoid)."""
        columns, shape, scalar = _columns((x, y, z), ("x", "y", "z"))
        out = _outputs(3, columns)
        self._core.geocentric(False, *columns, *out)
        return _shaped(out, shape, scalar)

    def get_geod(self):
        """A Geod on the system's ellipsoid (WGS 84 for a geographic system
        that names none); None for a system without an ellipsoid."""
        figure = self._core.figure
        return None if figure is None else Geod(a=figure[0], f=figure[1])

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


def _columns(values, names):
    """Broadcasts the arguments to one shape and gives them as contiguous
    float64 columns: (columns, shape, whether all were scalars)."""
    arrays = [_float_array(v, name) for v, name in zip(values, names)]
    try:
        shape = _np.broadcast_shapes(*(a.shape for a in arrays))
    except ValueError:
        raise ValueError("%s do not broadcast together: shapes %s" % (
            ", ".join(names), ", ".join(str(a.shape) for a in arrays))) from None
    columns = [_np.ascontiguousarray(_np.broadcast_to(a, shape), dtype=_np.float64).reshape(-1) for a in arrays]
    scalar = all(not isinstance(v, _np.ndarray) and _np.ndim(v) == 0 for v in values)
    return columns, shape, scalar


def _outputs(count, columns):
    return [_np.empty(columns[0].size) for _ in range(count)]


def _shaped(outputs, shape, scalar):
    if scalar:
        return tuple(float(a[0]) for a in outputs)
    return tuple(a.reshape(shape) for a in outputs)


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
        """The CRS points are converted from (FORWARD)."""
        return self._source

    @property
    def target_crs(self):
        """The CRS points are converted to (FORWARD)."""
        return self._target

    @property
    def always_xy(self):
        """Whether every side's coordinates are taken and given x first."""
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
        # The core reads the inputs where they lie (a one-dimensional view with
        # any stride; a copy for other dtypes and for arrays of more dimensions
        # that are not contiguous) and writes new arrays.
        source = [_np.asarray(a, dtype=_np.float64) for a in arrays]
        source = [a if a.ndim == 1 else a.reshape(-1) for a in source]
        out = [_np.empty(a.shape, dtype=_np.float64) for a in arrays]
        self._core.run(tuple(source), tuple(a.reshape(-1) for a in out), inverse, count)
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
        self._core.run(tuple(work), tuple(work), inverse, threads)
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


def ellipsoids():
    """The names of the catalogue's ellipsoids (the system's, then the user's),
    each a name Geod takes."""
    return list(_kvcart._Geod.names())


_WGS84 = (6378137.0, 1.0 / 298.257223563)


def _folded(name):
    return "".join(c for c in name.lower() if c.isalnum())


def _ellipsoid_name(given):
    # The catalogue's spelling of a name given in another case or without its
    # spaces ("WGS84", "clarke 1866"); an unknown name is refused with the
    # closest the catalogue holds.
    names = ellipsoids()
    if given in names:
        return given
    folded = _folded(given)
    same = [n for n in names if _folded(n) == folded]
    if len(same) == 1:
        return same[0]
    import difflib
    close = difflib.get_close_matches(folded, [_folded(n) for n in names], n=3, cutoff=0.6)
    hint = [n for c in close for n in names if _folded(n) == c]
    raise ValueError("unknown ellipsoid %r%s" % (
        given, "; did you mean %s?" % ", ".join(repr(n) for n in hint) if hint else
        ": kvcart.ellipsoids() lists the catalogue's"))


class Geod:
    """Geodesics on an ellipsoid, by Karney's method (C. F. F. Karney,
    "Algorithms for geodesics", J. Geodesy 87, 2013): the direct and inverse
    problems over numpy arrays, to round-off for the earth's flattening.

    Geod() is WGS 84; Geod("International 1924") a catalogue ellipsoid by its
    name (kvcart.ellipsoids() lists them); Geod(a=..., f=...) or
    Geod(a=..., rf=...) an ellipsoid of semi-major axis a metres and flattening
    f (rf: 1 / f; a sphere has f = 0). CRS.get_geod() gives the Geod of a
    system's ellipsoid. Angles are degrees, azimuths clockwise from north in
    (-180, 180], distances metres."""

    __slots__ = ("_core", "_name")

    def __init__(self, ellps=None, *, a=None, f=None, rf=None):
        if ellps is not None:
            if a is not None or f is not None or rf is not None:
                raise TypeError("Geod takes an ellipsoid's name or its a and f (or rf), not both")
            if not isinstance(ellps, str):
                raise TypeError("an ellipsoid is named by a string, not %s" % type(ellps).__name__)
            if "\0" in ellps:
                raise ValueError("an ellipsoid's name cannot hold a NUL character")
            name = _ellipsoid_name(ellps)
            axis, flattening = _kvcart._Geod.catalogue(name)
        elif a is None and f is None and rf is None:
            axis, flattening = _WGS84
            name = "WGS 84"
        else:
            if a is None or (f is None) == (rf is None):
                raise TypeError("Geod(a=..., f=...) or Geod(a=..., rf=...): a with one of f and rf")
            axis = _real(a, "a")
            flattening = _real(f, "f") if rf is None else (0.0 if _real(rf, "rf") == 0.0 else 1.0 / rf)
            name = None
        self._core = _kvcart._Geod(axis, flattening)
        self._name = name

    @property
    def a(self):
        """The semi-major axis, metres."""
        return self._core.a

    @property
    def f(self):
        """The flattening (0 for a sphere)."""
        return self._core.f

    @property
    def b(self):
        """The semi-minor axis, metres."""
        return self._core.a * (1.0 - self._core.f)

    def fwd(self, lons, lats, az, dist):
        """The direct problem: from (lons, lats) along the azimuths az for
        dist metres (negative: backwards; beyond half a meridian the geodesic
        goes on round the ellipsoid). Arguments broadcast together. Returns
        (lons, lats, back_az): the end points, longitudes within [-180, 180],
        and the azimuths from the end points back to the start. NaN for a
        point, azimuth or distance that is none."""
        columns, shape, scalar = _columns((lons, lats, az, dist), ("lons", "lats", "az", "dist"))
        out = _outputs(3, columns)
        self._core.direct(*columns, *out)
        out[2] = _back_azimuth(out[2])
        return _shaped(out, shape, scalar)

    def inv(self, lons1, lats1, lons2, lats2):
        """The inverse problem: the shortest geodesics from (lons1, lats1) to
        (lons2, lats2). Returns (az12, az21, dist): the azimuth at the first
        point, the back azimuth from the second point to the first, and the
        length in metres. NaN for a point that is none (a latitude beyond
        +-90, NaN, infinite)."""
        columns, shape, scalar = _columns((lons1, lats1, lons2, lats2), ("lons1", "lats1", "lons2", "lats2"))
        dist, az1, az2 = _outputs(3, columns)
        self._core.inverse(*columns, dist, az1, az2)
        return _shaped([az1, _back_azimuth(az2), dist], shape, scalar)

    def line_length(self, lons, lats):
        """The length in metres of the line through the points in order, each
        leg the shortest geodesic."""
        columns, _, _ = _columns((lons, lats), ("lons", "lats"))
        lon, lat = columns
        if lon.size < 2:
            return 0.0
        _, _, dist = self.inv(lon[:-1], lat[:-1], lon[1:], lat[1:])
        return float(_np.sum(dist))

    def __repr__(self):
        if self._name is not None:
            return "<kvcart.Geod %r: a=%r, f=%r>" % (self._name, self.a, self.f)
        return "<kvcart.Geod a=%r, f=%r>" % (self.a, self.f)

    def __eq__(self, other):
        return isinstance(other, Geod) and (self.a, self.f) == (other.a, other.f)

    def __hash__(self):
        return hash((self.a, self.f))

    def __reduce__(self):
        return (_restore_geod, (self.a, self.f, self._name))


def _restore_geod(a, f, name):
    geod = Geod(a=a, f=f)
    geod._name = name
    return geod


def _real(value, what):
    if isinstance(value, bool) or not isinstance(value, (int, float, _np.integer, _np.floating)):
        raise TypeError("%s is a real number, not %s" % (what, type(value).__name__))
    return float(value)


def _back_azimuth(azimuth):
    # The forward azimuth at the end point turned half round, within (-180, 180].
    return _np.where(azimuth > 0.0, azimuth - 180.0, azimuth + 180.0)


class SiteGrid:
    """A local site grid: a plane grid in metres whose origin is the point
    (lon0, lat0) and whose y axis is turned orientation degrees from true
    north towards east, laid on a map projection (crs: a CRS or any string a
    CRS takes; "UTM" takes the zone of lon0).

    Local (x, y), projected (X, Y, in the system's own unit as a Transformer
    gives them) and geographic coordinates convert into one another; every
    method takes scalars or arrays that broadcast together."""

    __slots__ = ("_core", "_crs", "_origin", "_orientation")

    def __init__(self, crs, lon0, lat0, orientation=0.0):
        origin = (_real(lon0, "lon0"), _real(lat0, "lat0"))
        turn = _real(orientation, "orientation")
        if isinstance(crs, str) and crs.strip().upper() == "UTM":
            self._core = _kvcart._SiteGrid(None, "UTM", origin[0], origin[1], turn)
            self._crs = CRS(self._core.srs)
        else:
            self._crs = CRS(crs)
            self._core = _kvcart._SiteGrid(self._crs._core, self._crs.srs, origin[0], origin[1], turn)
        self._origin = origin
        self._orientation = turn

    @property
    def crs(self):
        """The map projection the grid lies on (for "UTM" the origin's zone)."""
        return self._crs

    @property
    def origin(self):
        """(lon0, lat0), degrees."""
        return self._origin

    @property
    def orientation(self):
        """The y axis from true north at the origin, degrees towards east."""
        return self._orientation

    @property
    def projection_north(self):
        """The y axis from grid north, degrees: the orientation less the grid
        convergence at the origin."""
        return self._core.projection_north

    def _convert(self, what, a, b, names):
        columns, shape, scalar = _columns((a, b), names)
        out = _outputs(2, columns)
        self._core.convert(what, *columns, *out)
        return _shaped(out, shape, scalar)

    def from_geographic(self, lon, lat):
        """Local (x, y) in metres of points given in degrees."""
        return self._convert(0, lon, lat, ("lon", "lat"))

    def to_geographic(self, x, y):
        """Longitude and latitude, degrees, of local points."""
        return self._convert(1, x, y, ("x", "y"))

    def from_projected(self, x, y):
        """Local (x, y) of projected coordinates."""
        return self._convert(2, x, y, ("x", "y"))

    def to_projected(self, x, y):
        """Projected coordinates of local points."""
        return self._convert(3, x, y, ("x", "y"))

    def true_north(self, x, y):
        """The angle of the grid's y axis from true north at local points,
        degrees (the orientation at the origin)."""
        columns, shape, scalar = _columns((x, y), ("x", "y"))
        out = _outputs(1, columns)
        self._core.true_north(*columns, *out)
        return _shaped(out, shape, scalar)[0]

    def __repr__(self):
        return "<kvcart.SiteGrid on %r at (%r, %r), orientation %r>" % (
            self._crs.srs if len(self._crs.srs) <= 60 else self._crs.name, self._origin[0], self._origin[1],
            self._orientation)

    def __reduce__(self):
        return (SiteGrid, (self._crs.srs, self._origin[0], self._origin[1], self._orientation))
