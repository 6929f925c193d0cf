#ifndef KVCART_COORDSYS_KVMAPPROJECTION_H
#define KVCART_COORDSYS_KVMAPPROJECTION_H

#include "catalogue/KvEllipsoid.h"
#include "catalogue/KvEllipsoidList.h"
#include "coordsys/KvProjectionInfo.h"
#include "geodesy/KvGeocentric.h"
#include "geodesy/KvGeodesic.h"

#include <cstddef>

#include <string>

class CKvMapProjData;
class CKvProjection;

// The coordinate-system object: built from one string (WKT, a catalogue name
// such as "UTM-32", "NON-UTM" or "LONG/LAT"), it owns the engine that does the
// mathematics and applies the axes of the system around it. A string that
// resolves nowhere leaves an object without engine, which answers with neutral
// values. The static members resolve strings and reach the process-wide
// catalogue.
class CKvMapProjection
{
public:
    enum EMapProjectionString
    {
        eNonUTM = 1,         // "NON-UTM", the local grid that is not georeferenced
        eLongLat = 2,        // "LONG/LAT", geographical coordinates
        eGoogleMercator = 3, // the Google Maps spherical Mercator WKT
        eWgs84Geographic = 4 // the WGS 84 geographical WKT
    };

    enum EMapProjectionInfo
    {
        eProjUnit = 1,   // the linear unit of projected coordinates
        eAngularUnit = 2 // the angular unit of geographical coordinates
    };

    enum ESizeParam
    {
        eSizeX = 1, // the given size is the width
        eSizeY = 2  // the given size is the height
    };

    // Throws std::out_of_range("Can't use generic UTM") for the bare name "UTM".
    explicit CKvMapProjection(const char* text);
    explicit CKvMapProjection(const std::string& text);
    // The engine is cloned; an unresolved source gives an unresolved copy.
    CKvMapProjection(const CKvMapProjection& other);
    CKvMapProjection& operator=(const CKvMapProjection& other);
    virtual ~CKvMapProjection();

    const char* GetName() const;
    // Why the string did not resolve (e.g. 'projection "Polyconic" is not
    // supported'; an unknown name's ends with the catalogue's names closest
    // to it: '...; did you mean "RD New" (EPSG:28992)?'), or, for a system that
    // did, what its reading differs in from the EPSG registry's definition, one
    // sentence a line. Empty when the system resolved as the registry defines it.
    const std::string& GetMessage() const { return m_message; }
    // The engine, still owned by the object; null when the string did not resolve.
    CKvProjection* GetProjection() const { return m_pProjection; }
    // For a system taken from the EPSG registry ("EPSG:27700", "ESRI:102100"):
    // its code in that form, its registry name, the area where the registry
    // says it is used (Greenwich degrees; west > east when the area crosses
    // the antimeridian) and a description of its datum shift to WGS 84 (the
    // transformation's code, name and accuracy, and a better one the library
    // cannot apply, such as a grid). Empty strings and false for other systems.
    const std::string& GetRegistryCode() const { return m_registryCode; }
    const std::string& GetRegistryName() const { return m_registryName; }
    bool GetAreaOfUse(double& west, double& south, double& east, double& north) const;
    const std::string& GetDatumShiftSource() const { return m_shiftSource; }
    // Whether a geographical point lies in the area of use, widened by a margin
    // in degrees (true when the system has no area).
    bool IsInAreaOfUse(double lon, double lat, double marginDegrees) const;
    // The WKT the registry gives for "EPSG:n" / "ESRI:n" (TOWGS84 included), to
    // be read under the EPSG reading; false for any other text (a catalogue
    // name that happens to be so spelled stays the catalogue's) and for a code
    // the registry does not give, with the reason.
    static bool RegistryText(const char* text, std::string& wkt, std::string* reason = nullptr);
    // The string as given (a catalogue name given in another case as the
    // catalogue spells it); empty when it did not resolve.
    const char* GetProjectionString() const { return m_projectionString.c_str(); }
    // Degrees in; the system's axis order and signs out (and the reverse).
    void Geo2Proj(double lon, double lat, double* x, double* y) const;
    void Proj2Geo(double x, double y, double* lon, double* lat) const;
    // n points at once, with the rules and results of n single calls: strides in
    // bytes for each array (as PROJ's proj_trans_generic), outputs may be the
    // inputs. The engine's own batch loop does the work, the axis order and
    // signs are applied around it.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const;
    void Geo2Proj(std::size_t n, const double* lon, const double* lat, double* x, double* y) const
    {
        Geo2Proj(n, lon, sizeof(double), lat, sizeof(double), x, sizeof(double), y, sizeof(double));
    }
    void Proj2Geo(std::size_t n, const double* x, const double* y, double* lon, double* lat) const
    {
        Proj2Geo(n, x, sizeof(double), y, sizeof(double), lon, sizeof(double), lat, sizeof(double));
    }
    void GetOrigin(double* x, double* y) const;
    double GetConvergence(double lon, double lat) const;
    void GetDefaultArea(double* x0, double* y0, double* x1, double* y1) const;
    // An area of nx by ny cells around the projected origin whose width
    // (eSizeX) or height (eSizeY) is size.
    void GetDefaultArea(int nx, int ny, ESizeParam which, double size, double* x0, double* y0, double* x1,
                        double* y1) const;
    bool IsLocal() const;
    bool IsGeographical() const;
    // name: at least CKvProjectionInfo::UnitNameSize bytes.
    bool GetUnit(EMapProjectionInfo what, double* factor, char* name) const;
    // The unit a user of the grid reads and writes its coordinates in, in metres
    // per unit: the WKT's linear UNIT, or for a catalogue name kept in US survey
    // feet (the NAD27 state planes) 1200/3937, where GetUnit reports the metres
    // of the engine's own description. 0 for a geographical system or one that
    // names no usable unit. The engines work in metres whatever it is.
    double GetLinearUnit() const;
    void GetDatumShift(CKvDatumShift& shift) const { m_info.GetDatumShift(shift); }
    // Whether the shift to WGS 84 is known (also when it is zero): a WKT's
    // TOWGS84, a catalogue definition's TOWGS84 keyword, the registry's shift.
    bool IsDatumShiftKnown() const { return m_info.IsDatumShiftKnown(); }
    // The datum the system names: a WKT's DATUM, a catalogue definition's
    // branch ("WGS 84" for the built-in UTM zones); "" for LONG/LAT and NON-UTM.
    const char* GetDatumName() const { return m_info.GetDatumName(); }
    // 4 x first axis type + second axis type: 1 for easting/northing.
    int GetCoordSysType() const;
    // Geocentric coordinates on the engine's ellipsoid (metres), and back by
    // Bowring's method (one step), in CKvGeocentric's domain: NaN in every
    // output for a latitude beyond +-90, a longitude that is no number, a
    // height below a quarter of the semi-major axis under the ellipsoid or
    // above 1e12 m, and for an engine without an ellipsoid; the polar axis is
    // a pole. A system that did not resolve leaves the outputs untouched.
    void Geo2XYZ(double lon, double lat, double h, double* X, double* Y, double* Z) const;
    void XYZ2Geo(double X, double Y, double Z, double* lon, double* lat, double* h) const;
    // The inverse and direct geodesic problems (Vincenty) on the engine's
    // ellipsoid; WGS 84 for a geographical engine without one.
    bool GetDistance(double lon1, double lat1, double lon2, double lat2, double& distance) const;
    bool GetDistance(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth12,
                     double& azimuth21) const;
    bool GetPoint(double lon1, double lat1, double azimuth12, double distance, double& lon2, double& lat2,
                  double& azimuth21) const;
    // The inverse geodesic problem by Karney's method (CKvGeodesic) on the
    // ellipsoid of GetPoint: the length in metres of the shortest geodesic from
    // (lon1, lat1) to (lon2, lat2), degrees, and the forward azimuths at both
    // ends (the direction of travel at the second point) in degrees within
    // (-180, 180]. False, with NaN in the outputs, for a system without engine
    // or ellipsoid and for points that are none (NaN, infinite, a latitude
    // beyond +-90); longitudes of any size are reduced exactly.
    bool GetInverseGeodesic(double lon1, double lat1, double lon2, double lat2, double& distance, double& azimuth1,
                            double& azimuth2) const;
    // The geodesic figure of GetInverseGeodesic (not valid for a system without
    // engine or ellipsoid).
    const CKvGeodesic& GetGeodesic() const { return m_geodesic; }

    static const char* IDtoProjectionString(int id);

    // A new engine for a coordinate-system string, owned by the caller, or null
    // when it resolves nowhere. The trimmed text is tried as WKT first, then as a
    // catalogue name; blank text means "NON-UTM". The bare name "UTM" throws
    // std::out_of_range("Can't use generic UTM"): a zone must be named.
    // info, when not null, receives the units and axes of WKT text.
    static CKvProjection* GetProjection(const char* text, CKvProjectionInfo* info);
    // The same, with the reason of a failure or the reading's warnings in message.
    // shiftSource, when not null, receives where the datum shift of a WKT came
    // from when the registry supplied it by the datum's name.
    static CKvProjection* GetProjection(const char* text, CKvProjectionInfo* info, std::string* message,
                                        std::string* shiftSource = nullptr);
    // The message of the coordinate system this thread resolved last (by a
    // constructor or GetProjection): empty, a reason or warnings, as GetMessage.
    static const std::string& GetLastMessage();
    // Sets that message, for the library's functions that resolve a text on
    // their own behalf (such as the PROJ string of a WKT).
    static void SetLastMessage(const std::string& message);

    // How WKT is read where its established reading and the EPSG registry part
    // (south-orientated transverse Mercator, ESRI "Stereographic", a scaled
    // two-parallel Lambert, axes at a pole, a spherical PROJ4 EXTENSION): off
    // (the default) keeps the established reading and reports the difference in
    // GetMessage; on gives the registry's coordinates. Process-wide, for the
    // systems made afterwards.
    static void SetEpsgReading(bool on);
    static bool GetEpsgReading();
    // The engine of the catalogue definition of that name, or null.
    static CKvProjection* _FindMapProjection(const char* name);
    // True exactly when the trimmed text is "NON-UTM".
    static bool IsLocal(const char* text);
    // True exactly when the trimmed text is "LONG/LAT".
    static bool IsLongLat(const char* text);

    // Classification of coordinate-system strings. The type mask: 8 selects
    // "NON-UTM", 4 "LONG/LAT", 1 the projections and 2 the geographical and
    // rotated longitude/latitude systems. A catalogue name is classified by the
    // WKT its engine describes.
    static bool IsValid(const char* text);
    static bool IsGeographical(const char* text);
    static bool IsGeoreferenced(const char* text);
    static bool IsType(int mask, const char* text);
    static bool HasDatum(const char* text);
    static int GetCoordSysType(const char* text);
    // The texts of the four functions below are returned twice: as a
    // std::string, and as a pointer into a buffer of the function that each
    // thread has for itself, valid until the same thread calls that function
    // again (other threads' calls leave it alone). Any number of threads may
    // call them at once; only catalogue edits must not run meanwhile.
    //
    // "UTM-n", n = 1 ... 60, for the zone of a longitude brought into
    // [-180, 180) first: zone n spans [6n - 186, 6n - 180), each zone holding
    // its western meridian, so that 180 and -180 alike are zone 1 (EPSG's
    // extents make the antimeridian the edge of zones 60 and 1 as they make 6 E
    // the edge of zones 31 and 32; one rule gives every edge to the zone east of
    // it). Every finite longitude has a zone (the reduction is an exact
    // remainder); NaN and infinities have none: "".
    static std::string UTMZoneName(double lon);
    static const char* LongitudeToUTMZone(double lon);
    // The zone of a point on the UTM/UPS grid (WGS 84) as the military grid
    // reference system assigns it, with the EPSG code of its projected system:
    // "UTM-32" (32632) north of the equator and on it, "UTM-33S" (32733) south
    // of it, "UPS North" (32661) above 84 N and "UPS South" (32761) below 80 S.
    // Zone numbers are those of UTMZoneName, with the grid's exceptions: from
    // 56 N up to 64 N zone 32 spans 3 E to 12 E (31 ends at 3 E), and from 72 N
    // to 84 N, both included, zones 31, 33, 35 and 37 span 0 to 9 E, 9 to 21 E,
    // 21 to 33 E and 33 to 42 E (32, 34 and 36 are not used there); each zone
    // and band holds its western and southern edge. Longitudes of any size are
    // reduced first. False, with an empty name, code 0 and the reason in
    // *reason when given, for a longitude or latitude that is not a finite
    // number or a latitude beyond +-90.
    static bool UTMZoneName(double lon, double lat, std::string& name, int& epsgCode, std::string* reason = nullptr);
    // The short name of a coordinate-system string: the name of its WKT, or
    // the catalogue name as written.
    static std::string ShortNameText(const char* text);
    static const char* ShortName(const char* text);
    // The catalogue's systems of a type mask, each followed by ";": the special
    // names as they are, every other definition as its WKT.
    static std::string MapProjectionListing(int mask, long* count);
    static const char* EnumMapProjections(int mask, long* count);
    // The names of the ellipsoids of a kind, each followed by ";".
    static std::string EllipsoidListing(CKvEllipsoidList::EEllipsoidTypes kind, long* count);
    static const char* EnumEllipsoids(CKvEllipsoidList::EEllipsoidTypes kind, long* count);
    // Same projection and parameters (relative 1e-12, in common units when the
    // units are named differently), equivalent ellipsoids, the same datum shift
    // and axis directions; names are not compared. Both strings must resolve.
    static bool AreIdentical(const char* a, const char* b);

    // The catalogue definition of that name, editable: the projection list is
    // marked modified, so that changes made through it are written back.
    static CKvMapProjData* MapProjection(const char* name);
    // The catalogue definition of that name, read-only (nothing is marked), or null.
    static const CKvMapProjData* FindMapProjectionDefinition(const char* name);
    // The text with a catalogue name written in another ASCII case ("rd new")
    // replaced by the name as the catalogue spells it ("RD New"), so that all
    // that is taken from a name (its units, datum shift, descriptions) is taken
    // alike; any other text, a name spelled exactly and a name that differs
    // only in case from several, as given.
    static std::string CatalogueSpelling(const char* text);
    // The ellipsoid of the catalogue projection of that name, or null.
    static const CKvEllipsoid* Ellipsoid(const char* projectionName);
    static const CKvEllipsoid* EllipsoidFromID(const char* id);
    static const CKvEllipsoid* EllipsoidFromName(const char* name);

    // Catalogue edits; each marks its list modified. The catalogue takes
    // ownership of what is added and deletes what is deleted.
    static void AddEllipsoid(CKvEllipsoid* ellipsoid);
    static void DeleteEllipsoid(CKvEllipsoid* ellipsoid);
    static void EditEllipsoid(CKvEllipsoid* ellipsoid);
    static void AddMapProjection(CKvMapProjData* definition);
    static void DeleteMapProjection(CKvMapProjData* definition);

protected:
    void _copy(const CKvMapProjection& other);
    void _dealloc();

private:
    void _construct(const char* text);
    // A system of the EPSG registry, read under the EPSG reading whatever the
    // process-wide setting; fills the object's registry fields when `self` is given.
    static CKvProjection* _fromRegistry(const std::string& authority, int code, CKvProjectionInfo* info,
                                        std::string& said, CKvMapProjection* self);
    // The engine's ellipsoid, or WGS 84 for a geographical engine without one.
    bool _geodesicEllipsoid(CKvEllipsoid& ellipsoid) const;

    CKvProjection* m_pProjection;
    // The engine's figure, taken once so that geocentric conversions neither
    // copy an ellipsoid nor allocate; none when the engine has no ellipsoid.
    void _takeFigure();

    CKvProjectionInfo m_info;
    std::string m_projectionString;
    std::string m_message;
    bool m_usSurveyFeet = false; // a catalogue definition kept in US survey feet
    std::string m_registryCode;  // "EPSG:27700" for a system from the registry
    std::string m_registryName;
    std::string m_shiftSource;
    bool m_hasArea = false;
    double m_area[4] = {0, 0, 0, 0}; // west, south, east, north
    CKvGeocentric m_figure;
    // The figure of GetInverseGeodesic, taken with m_figure (the ellipsoid of
    // _geodesicEllipsoid); not valid without one.
    CKvGeodesic m_geodesic{0.0, 0.0};
};

#endif
