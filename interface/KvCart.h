#ifndef KVCART_INTERFACE_KVCART_H
#define KVCART_INTERFACE_KVCART_H

/* The flat C interface of the library (C99 and C++).
 *
 * Angles are decimal degrees, geographical points (longitude, latitude), lengths
 * metres. Handles are opaque pointers to the library's objects: create
 * functions write one through a pointer and report *status 0, or -1 when the
 * object could not be made (the handle is then left as it was); destroy
 * functions delete the object, set the handle to NULL and report 0, or -1 for a
 * NULL handle. Other functions do not check their handle.
 *
 * String results follow one rule: with len the text's length, when len > size
 * *status = len and the buffer is not touched; otherwise the text and its
 * terminator are copied and *status = 0. A buffer therefore holds size + 1
 * bytes: retry with len + 1 bytes and size = len.
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
void C_KVMP_GETNAME(KVMP_HANDLE handle, char* buffer, int size, int* status);
void C_KVMP_GETPROJECTIONSTRING(KVMP_HANDLE handle, char* buffer, int size, int* status);
/* Why the object's text did not resolve (e.g. 'projection
 * "Mercator_Auxiliary_Sphere" is not supported', 'unknown coordinate system
 * "X"'), or, for one that did, the warnings of its reading: what it reads
 * differently from the EPSG registry, one sentence a line. Empty when it
 * resolved as the registry defines it. String rule: the buffer holds size + 1
 * bytes; size it as len + 1 from a first call that reports len. */
void C_KVMP_GETMESSAGE(KVMP_HANDLE handle, char* buffer, int size, int* status);
/* The same message for the coordinate system this thread created last (also
 * after a create that failed with -1, such as the generic "UTM"). String rule
 * as above. */
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
 * degrees from true north towards east. "UTM" names the zone of lon0. */
void C_KVC_CREATE(const char* text, double lon0, double lat0, double orientation, KVC_HANDLE* handle, int* status);
void C_KVC_DESTROY(KVC_HANDLE* handle, int* status);
/* The grid's coordinate system, owned by the grid: never destroy it. */
KVMP_HANDLE C_KVC_GETPROJECTION(KVC_HANDLE handle);
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
 * systems' TOWGS84 (position vector, arc-seconds, ppm). */
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
void C_KVDC_SETCONVERSIONTYPE(KVDC_HANDLE handle, int type);
int C_KVDC_GETBYPASSXYZ(KVDC_HANDLE handle);
void C_KVDC_BYPASSXYZ(KVDC_HANDLE handle);
void C_KVDC_RESETBYPASSXYZ(KVDC_HANDLE handle);
/* Replaces the source (flag != 0) or target shift: type 1 takes 3 values, type 2
 * seven, with the rotations in radians and the scale as a plain correction
 * (not ppm). Returns the new bypass flag. */
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
void S_PROJECTIONSHORTNAME(const char* text, char* buffer, int size, int* status);
void S_LONGITUDETOUTMZONE(char* buffer, int size, int* status, double lon);
void S_GETGOOGLEMAPPROJECTIONSTRING(char* buffer, int size, int* status);
/* The projected origin of a system; *status -1 when it cannot be made. */
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
 * everything of the session is saved, -1 otherwise (CARTGETERRORLINUX tells why). */
int CARTWRITEBACKLINUX(void);

/* The catalogue's problems since the last CARTSETUPLINUX, one "file:line: what"
 * per line (a user file that did not read cleanly is named here; it is never
 * written over), and any failure of a write-back. Copied like every string
 * result: when its length len exceeds size, *status = len and buffer is not
 * touched; otherwise the text and its terminator are copied (buffer holds
 * size + 1 bytes) and *status = 0. */
void CARTGETERRORLINUX(char* buffer, int size, int* status);

/* The coordinate system text (WKT or a catalogue name) as a PROJ.4 definition.
 * datumShift: count values (dx, dy, dz in metres, rx, ry, rz in arc-seconds,
 * scale in ppm) that replace the system's own datum shift when count >= 1; may
 * be null. The result is copied like every string result (buffer holds size + 1
 * bytes; *status = length when it does not fit). *status = -1 for the generic
 * name "UTM", which names no zone. */
void C_KVC_CONVERT2PROJ4(const char* text, double* datumShift, int count, char* buffer, int size, int* status);
/* A PROJ string that PROJ 9 reads as the same system, the text read by the EPSG
 * rules (C_KVC_SETEPSGREADING(1) whatever the setting): PROJ's own parameter
 * names (+lonc and +no_uoff for the oblique Mercator, +k_0, +axis=wsu, ...),
 * numbers in their shortest exact form, ending "+no_defs +type=crs" (no
 * trailing text, so it can be pasted unquoted into a shell). Arguments and
 * string rule as C_KVC_CONVERT2PROJ4; *status = -1 when the text has no PROJ
 * string (unresolved, a local grid, a method PROJ cannot be told), with the
 * reason from C_KVMP_GETLASTERROR. */
void C_KVC_CONVERT2PROJ(const char* text, double* datumShift, int count, char* buffer, int size, int* status);

#ifdef __cplusplus
}
#endif

#endif
