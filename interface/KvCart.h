#ifndef KVCART_INTERFACE_KVCART_H
#define KVCART_INTERFACE_KVCART_H

/* The flat C interface of the library (C99 and C++).
 *
 * Angles are decimal degrees, geographical points (longitude, latitude), lengths
 * metres. Handles are opaque pointers to the library's objects: create
 * functions write one through a pointer and report *status 0, or -1 when the
 * object could not be made (the handle is then left as it was); destroy
 * functions delete the object, set the handle to NULL and report 0, or -1 for a
 * NULL handle.
 *
 * NULL arguments. A function given a NULL status pointer does nothing at all
 * (no object is made or destroyed, no buffer written). A create function given
 * a NULL handle pointer makes nothing and reports -1; a destroy function given
 * a NULL handle pointer or handle reports -1; a string function on a NULL
 * handle reports -1; a NULL buffer learns the length as a too small one does,
 * whatever size says. The transformations (the *2PROJ, *2GEO, *2XY... and
 * datum functions) do not check their handle or output pointers: they are the
 * per-point path.
 *
 * Threads. Every function may be called from any number of threads at once,
 * each on its own handles. One handle may also serve several threads at once
 * for the functions that only read it, which are all but the destroy
 * functions, C_KVDC_SETCONVERSIONTYPE, C_KVDC_SETDATUMSHIFT,
 * C_KVDC_BYPASSXYZ, C_KVDC_RESETBYPASSXYZ and C_KVDC_INVERTORDER. String
 * results are copied into the caller's buffer and share no storage between
 * calls or threads; the last error is each thread's own. The exception
 * is the catalogue: CARTSETUPLINUX and CARTWRITEBACKLINUX read and write the
 * process-wide catalogue and must not run while any other function of the
 * library runs. C_KVC_SETEPSGREADING may be called at any time; objects made
 * afterwards read by the new setting.
 *
 * String results follow one rule: with len the text's length, when len > size
 * *status = len and the buffer is not touched; otherwise the text and its
 * terminator are copied and *status = 0. A buffer therefore holds size + 1
 * bytes. The idiom to size it: call with size 0 (or a NULL buffer) to learn
 * len in *status, allocate len + 1 bytes, call again with size = len:
 *
 *     int len = 0, status = 0;
 *     C_KVMP_GETNAME(handle, NULL, 0, &len);
 *     char* name = malloc((size_t)len + 1);
 *     C_KVMP_GETNAME(handle, name, len, &status);   // status 0: name holds the text
 *
 * (Size 0 with a real buffer and the empty text writes the terminator and
 * reports 0, which is len.) Each string function below says "String rule".
 */

#include <stddef.h>

#ifdef __cplusplus
class CKvMapProjection;
class CKvCartography;
class CKvDatumConverter;
class CKvProjection;
typedef CKvMapProjection* KVMP_HANDLE;
typedef CKvCartography* KVC_HANDLE;
typedef CKvDatumConverter* KVDC_HANDLE;
typedef CKvProjection* KVP_HANDLE;
extern "C" {
#else
typedef struct CKvMapProjection* KVMP_HANDLE;
typedef struct CKvCartography* KVC_HANDLE;
typedef struct CKvDatumConverter* KVDC_HANDLE;
typedef struct CKvProjection* KVP_HANDLE;
#endif

/* Coordinate systems, from WKT or a catalogue name ("UTM-32", "LONG/LAT",
 * "NON-UTM"; blank text is "NON-UTM"). The generic name "UTM" fails (-1); a
 * name that resolves nowhere succeeds with an object that answers neutral
 * values (empty name, origin 0/0, convergence 0, outputs of Proj2Geo untouched). */
void C_KVMP_CREATE(const char* text, KVMP_HANDLE* handle, int* status);
void C_KVMP_DESTROY(KVMP_HANDLE* handle, int* status);
/* The system's name (empty for one that did not resolve). String rule: len >
 * size reports *status = len and leaves the buffer alone, else len + 1 bytes
 * are copied and *status = 0; call with size 0 to learn len, then pass len + 1
 * bytes and size = len. -1 for a NULL handle. */
void C_KVMP_GETNAME(KVMP_HANDLE handle, char* buffer, int size, int* status);
/* The text the system was made from, a catalogue name given in another case
 * as the catalogue spells it (empty for one that did not resolve).
 * String rule: len > size reports len; size 0 learns len, then len + 1 bytes
 * with size = len take the text. -1 for a NULL handle. */
void C_KVMP_GETPROJECTIONSTRING(KVMP_HANDLE handle, char* buffer, int size, int* status);
/* Why the object's text did not resolve (e.g. 'projection
 * "Polyconic" is not supported', 'unknown coordinate system
 * "X"', which ends with the closest catalogue names when there are any: '...;
 * did you mean "British National Grid" (EPSG:27700)?'), or, for one that did,
 * the warnings of its reading: what it reads differently from the EPSG
 * registry, one sentence a line. Empty when it
 * resolved as the registry defines it. String rule: len > size reports len;
 * size 0 learns len, then len + 1 bytes with size = len take the text. -1 for
 * a NULL handle. */
void C_KVMP_GETMESSAGE(KVMP_HANDLE handle, char* buffer, int size, int* status);
/* The same message for the coordinate system this thread created last (also
 * after a create that failed with -1, such as the generic "UTM"); each thread
 * has its own. String rule: len > size reports len; size 0 learns len, then
 * len + 1 bytes with size = len take the text. */
void C_KVMP_GETLASTERROR(char* buffer, int size, int* status);
void C_KVMP_GEO2PROJ(KVMP_HANDLE handle, double lon, double lat, double* x, double* y);
void C_KVMP_PROJ2GEO(KVMP_HANDLE handle, double x, double y, double* lon, double* lat);
/* n points at once, with the results of n single calls; the outputs may be the
 * inputs (in place). These run the engines' batch loops, the fast way to
 * transform arrays. */
void C_KVMP_GEO2PROJ_N(KVMP_HANDLE handle, size_t n, const double* lon, const double* lat, double* x, double* y);
void C_KVMP_PROJ2GEO_N(KVMP_HANDLE handle, size_t n, const double* x, const double* y, double* lon, double* lat);
void C_KVMP_GETORIGIN(KVMP_HANDLE handle, double* x, double* y);
/* Grid convergence, degrees: the angle from true north to grid north. */
double C_KVMP_GETCONVERGENCE(KVMP_HANDLE handle, double lon, double lat);
/* Geocentric X/Y/Z on the system's ellipsoid, and back (Bowring, one step). */
void C_KVMP_GEO2XYZ(KVMP_HANDLE handle, double lon, double lat, double h, double* X, double* Y, double* Z);
void C_KVMP_XYZ2GEO(KVMP_HANDLE handle, double X, double Y, double Z, double* lon, double* lat, double* h);
void C_KVMP_GETDEFAULTAREA(KVMP_HANDLE handle, double* x0, double* y0, double* x1, double* y1);
/* The linear unit of a projected system's coordinates in metres per unit
 * (1200/3937 for US survey feet, 1 for metres): *status 0 and the factor when
 * the system is projected and names its unit, else -1 and 1 (a geographical
 * system, no unit named, a NULL handle or factor). The engines work in metres
 * whatever the unit: a host whose coordinates are in the system's unit
 * multiplies projected input by the factor and divides projected output by it. */
void C_KVMP_GETLINEARUNIT(KVMP_HANDLE handle, double* factor, int* status);

/* The area of use of a system taken from the EPSG registry ("EPSG:27700"):
 * Greenwich longitudes west and east (west > east when the area crosses the
 * antimeridian) and latitudes south and north, in degrees. Returns 0 with the
 * four values, or -1 and writes nothing for a system without one (WKT, a
 * catalogue name), a NULL handle or output. */
int C_KVMP_GETAREAOFUSE(KVMP_HANDLE handle, double* west, double* south, double* east, double* north);
/* The inverse geodesic problem (Karney's method) on the system's ellipsoid, as
 * for the direct one: WGS 84 for a geographical system without an ellipsoid.
 * Writes the length in metres of the shortest geodesic from (lon1, lat1) to
 * (lon2, lat2), degrees, and the forward azimuths at both ends (at the second
 * point the direction of travel) in degrees within (-180, 180]; longitudes of
 * any size are reduced exactly. Returns 0, or -1: for a NULL handle or output
 * pointer (nothing is written), and, with NaN in the three outputs, for a
 * system without an ellipsoid or points that are none (NaN, infinite, a
 * latitude beyond +-90). */
int C_KVMP_GETINVERSEGEODESIC(KVMP_HANDLE handle, double lon1, double lat1, double lon2, double lat2,
                              double* distance, double* azimuth1, double* azimuth2);

/* How WKT is read where its established reading and the EPSG registry's
 * definition part: a Transverse_Mercator_South_Orientated text without
 * west/south axes, ESRI's "Stereographic" (Snyder's, not the double
 * stereographic), a two-parallel Lambert_Conformal_Conic with a Scale_Factor
 * (Michigan), axes named along meridians at a pole (AXIS[..,SOUTH] twice), and a
 * PROJ4 EXTENSION that projects on a sphere (Web Mercator). 0 (the default)
 * keeps the established reading and reports each such difference through
 * C_KVMP_GETMESSAGE; 1 gives the registry's coordinates. Process-wide, for the
 * objects created afterwards. */
void C_KVC_SETEPSGREADING(int on);
int C_KVC_GETEPSGREADING(void);

/* Local site grids: origin at (lon0, lat0), y axis turned by orientation
 * degrees from true north towards east. "UTM" names the zone of lon0, as
 * S_LONGITUDETOUTMZONE gives it (1 to 60; 180 and -180 are zone 1); a NaN or
 * infinite lon0 has no zone, and "UTM" then fails (-1). */
void C_KVC_CREATE(const char* text, double lon0, double lat0, double orientation, KVC_HANDLE* handle, int* status);
void C_KVC_DESTROY(KVC_HANDLE* handle, int* status);
/* The grid's coordinate system, owned by the grid: never destroy it. NULL for
 * a NULL handle. */
KVMP_HANDLE C_KVC_GETPROJECTION(KVC_HANDLE handle);
/* The name and the text of the grid's coordinate system ("UTM-32" for the
 * generic "UTM" at 9.5 E). String rule: len > size reports len; size 0 learns
 * len, then len + 1 bytes with size = len take the text. -1 for a NULL handle. */
void C_KVC_GETPROJECTIONNAME(KVC_HANDLE handle, char* buffer, int size, int* status);
void C_KVC_GETPROJECTIONSTRING(KVC_HANDLE handle, char* buffer, int size, int* status);
double C_KVC_GETTRUENORTH(KVC_HANDLE handle, double x, double y);
double C_KVC_GETPROJNORTH(KVC_HANDLE handle);
void C_KVC_GEO2PROJ(KVC_HANDLE handle, double lon, double lat, double* X, double* Y);
void C_KVC_PROJ2GEO(KVC_HANDLE handle, double X, double Y, double* lon, double* lat);
void C_KVC_GEO2XY(KVC_HANDLE handle, double lon, double lat, double* x, double* y);
void C_KVC_XY2GEO(KVC_HANDLE handle, double x, double y, double* lon, double* lat);
void C_KVC_PROJ2XY(KVC_HANDLE handle, double X, double Y, double* x, double* y);
void C_KVC_XY2PROJ(KVC_HANDLE handle, double x, double y, double* X, double* Y);

/* Datum converters between two coordinate systems (texts as for
 * C_KVMP_CREATE). Conversion types: 0 projected to projected, 1 projected to
 * geographical, 2 geographical to projected, 3 geographical to geographical.
 * Coordinates are converted in place; the datum shifts are those of the two
 * systems' TOWGS84 (position vector, arc-seconds, ppm). A side without an
 * ellipsoid ("LONG/LAT") and without a shift of its own is WGS 84 when the
 * other side has a shift; one with a shift of its own gives NaN. A latitude
 * beyond +-90, a longitude that is not finite, or (when the datums differ) a
 * height below a quarter of the semi-major axis under the ellipsoid or above
 * 1e12 m gives NaN in every output. */
void C_KVDC_CREATE(const char* source, const char* target, KVDC_HANDLE* handle, int* status);
void C_KVDC_DESTROY(KVDC_HANDLE* handle, int* status);
void C_KVDC_CONVERTXY(KVDC_HANDLE handle, double* x, double* y);
void C_KVDC_INVCONVERTXY(KVDC_HANDLE handle, double* x, double* y);
void C_KVDC_CONVERTXYH(KVDC_HANDLE handle, double* x, double* y, double* h);
void C_KVDC_INVCONVERTXYH(KVDC_HANDLE handle, double* x, double* y, double* h);
/* n points in place, as n calls of C_KVDC_CONVERTXY / C_KVDC_CONVERTXYH. */
void C_KVDC_CONVERTXY_N(KVDC_HANDLE handle, size_t n, double* x, double* y);
void C_KVDC_CONVERTXYH_N(KVDC_HANDLE handle, size_t n, double* x, double* y, double* h);
/* Source-geocentric to target-geocentric metres, and back. */
void C_KVDC_DATUMSHIFT(KVDC_HANDLE handle, double* X, double* Y, double* Z);
void C_KVDC_INVDATUMSHIFT(KVDC_HANDLE handle, double* X, double* Y, double* Z);
/* A type other than 0 to 3 is ignored: the converter keeps its type. */
void C_KVDC_SETCONVERSIONTYPE(KVDC_HANDLE handle, int type);
int C_KVDC_GETBYPASSXYZ(KVDC_HANDLE handle);
void C_KVDC_BYPASSXYZ(KVDC_HANDLE handle);
void C_KVDC_RESETBYPASSXYZ(KVDC_HANDLE handle);
/* Replaces the source (flag != 0) or target shift: type 0 none (params may be
 * NULL), type 1 takes 3 values, type 2 seven, with the rotations in radians
 * and the scale as a plain correction (not ppm). Returns the new bypass flag
 * (0 or 1; C_KVDC_RESETBYPASSXYZ returns to it), or -1 for another type, NULL
 * params with type 1 or 2, or a value among those read that is not finite:
 * the converter is then left as it was. */
int C_KVDC_SETDATUMSHIFT(KVDC_HANDLE handle, int type, double* params, int flag);
void C_KVDC_INVERTORDER(KVDC_HANDLE handle);

/* Questions on coordinate-system strings, 0 or 1. The type mask: 8 "NON-UTM",
 * 4 "LONG/LAT", 1 projections, 2 geographical systems. The generic name "UTM"
 * is none of these and answers 0. */
int S_ISVALID(const char* text);
int S_ISLOCAL(const char* text);
int S_ISLONGLAT(const char* text);
int S_ISGEOGRAPHICAL(const char* text);
int S_ISGEOREFERENCED(const char* text);
int S_HASDATUM(const char* text);
int S_ISTYPE(const char* text, int typeMask);
int S_AREIDENTICAL(const char* a, const char* b);
/* 4 x first axis + second axis (east 0, north 1, west 2, south 3): 1 for
 * easting/northing. */
int S_GETCOORDSYSTYPE(const char* text);
/* The three string functions below follow the string rule: len > size
 * reports *status = len and leaves the buffer alone, else the text and its
 * terminator (len + 1 bytes) are copied and *status = 0; call with size 0 to
 * learn len, then pass len + 1 bytes and size = len. */
/* The short name of a system: its WKT's name, or the catalogue name as
 * written. String rule. */
void S_PROJECTIONSHORTNAME(const char* text, char* buffer, int size, int* status);
/* "UTM-n", n = 1 ... 60: the zone of lon brought into [-180, 180). Zone n
 * spans [6n - 186, 6n - 180) degrees, each zone holding its western edge, so
 * 180 and -180 alike are zone 1 (EPSG's extents put the antimeridian on the
 * edge of zones 60 and 1, as they put 6 E on the edge of zones 31 and 32);
 * 359.9 is zone 30, 540 zone 1. NaN and infinities have no zone: the empty
 * text. String rule. */
void S_LONGITUDETOUTMZONE(char* buffer, int size, int* status, double lon);
/* The zone of a point on the UTM/UPS grid of WGS 84, as the military grid
 * reference system assigns it: "UTM-32" north of the equator and on it,
 * "UTM-33S" south of it (false northing 10 000 000 m), "UPS North" above 84 N,
 * "UPS South" below 80 S; each a catalogue name. Zone numbers follow
 * S_LONGITUDETOUTMZONE (longitudes of any size reduced; 180 is zone 1) except
 * where the grid widens zones: 32 over 3 E to 12 E from 56 N up to 64 N, and
 * from 72 N to 84 N 31, 33, 35 and 37 over 0-9, 9-21, 21-33 and 33-42 E.
 * *epsgCode, when not NULL, receives the EPSG code of the zone's projected
 * system: 326zz, 327zz, 32661 or 32761. String rule. *status = -1, the buffer
 * untouched and *epsgCode 0 for a longitude or latitude that is NaN or
 * infinite, or a latitude beyond +-90. */
void S_POINTTOUTMZONE(char* buffer, int size, int* status, double lon, double lat, int* epsgCode);
/* The WKT of the spherical Mercator of web maps. String rule. */
void S_GETGOOGLEMAPPROJECTIONSTRING(char* buffer, int size, int* status);
/* The projected origin of a system; *status -1 when it cannot be made (or x or
 * y is NULL). */
void S_PROJECTIONORIGIN(const char* text, double* x, double* y, int* status);

/* A bare projection engine for a system, or NULL; release it with
 * DeleteKvProjection. */
KVP_HANDLE NewKvProjection(const char* text);
void DeleteKvProjection(KVP_HANDLE engine);

/* Reads the catalogues once per call: ellipsoid.gxr, map_projection.gxr and the
 * state plane files from systemDirectory, custom_ellipsoid.gxr and
 * custom_projection.gxr from userDirectory. Both are prefixes to which the file
 * names are appended, so they end with "/". Changed custom catalogues are
 * written back to userDirectory at process exit. */
void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory);

/* Writes the changed custom catalogues now rather than at exit. Returns 0 when
 * everything of the session is saved in the catalogue files, -1 otherwise: a
 * change kept only in the rescue file beside them (a conflict with another
 * writer, a full disk) counts as not saved; CARTGETERRORLINUX tells why and
 * where it went. */
int CARTWRITEBACKLINUX(void);

/* The catalogue's problems since the last CARTSETUPLINUX, one "file:line: what"
 * per line (a user file that did not read cleanly is named here; it is never
 * written over), and any failure of a write-back. String rule: when its length
 * len exceeds size, *status = len and buffer is not touched; otherwise the
 * text and its terminator are copied (buffer holds size + 1 bytes) and
 * *status = 0; call with size 0 to learn len, then pass len + 1 bytes and
 * size = len. */
void CARTGETERRORLINUX(char* buffer, int size, int* status);

/* The coordinate system text (WKT or a catalogue name) as a PROJ.4 definition.
 * datumShift: count values (dx, dy, dz in metres, rx, ry, rz in arc-seconds,
 * scale in ppm) that replace the system's own datum shift when count >= 1; may
 * be null. String rule: len > size reports *status = len and leaves the buffer
 * alone, else len + 1 bytes are copied and *status = 0; call with size 0 to
 * learn len, then pass len + 1 bytes and size = len. *status = -1 for the
 * generic name "UTM", which names no zone. */
void C_KVC_CONVERT2PROJ4(const char* text, double* datumShift, int count, char* buffer, int size, int* status);
/* A PROJ string that PROJ 9 reads as the same system, the text read by the EPSG
 * rules (C_KVC_SETEPSGREADING(1) whatever the setting): PROJ's own parameter
 * names (+lonc and +no_uoff for the oblique Mercator, +k_0, +axis=wsu, ...),
 * numbers in their shortest exact form, ending "+no_defs +type=crs" (no
 * trailing text, so it can be pasted unquoted into a shell). Arguments as
 * C_KVC_CONVERT2PROJ4. String rule: len > size reports len; size 0 learns
 * len, then len + 1 bytes with size = len take the text. *status = -1 when the
 * text has no PROJ string (unresolved, a local grid, a method PROJ cannot be
 * told), with the reason from C_KVMP_GETLASTERROR. */
void C_KVC_CONVERT2PROJ(const char* text, double* datumShift, int count, char* buffer, int size, int* status);

#ifdef __cplusplus
}
#endif

#endif
