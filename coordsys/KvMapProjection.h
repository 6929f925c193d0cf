#ifndef KVCART_COORDSYS_KVMAPPROJECTION_H
#define KVCART_COORDSYS_KVMAPPROJECTION_H

#include "catalogue/KvEllipsoid.h"

class CKvMapProjData;
class CKvProjection;

// The coordinate-system object. This part holds its catalogue functions: the
// look-ups that definitions and engines make by name, the edits of the
// process-wide catalogue with their modified flags, and the built-in names.
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

    virtual ~CKvMapProjection() = default;

    static const char* IDtoProjectionString(int id);

    // A new engine for a coordinate-system string, owned by the caller, or null
    // when it resolves nowhere. The trimmed text is tried as WKT first, then as a
    // catalogue name; blank text means "NON-UTM". The bare name "UTM" throws
    // std::out_of_range("Can't use generic UTM"): a zone must be named.
    static CKvProjection* GetProjection(const char* text);
    // The engine of the catalogue definition of that name, or null.
    static CKvProjection* _FindMapProjection(const char* name);
    // True exactly when the trimmed text is "NON-UTM".
    static bool IsLocal(const char* text);

    // The catalogue definition of that name, editable: the projection list is
    // marked modified, so that changes made through it are written back.
    static CKvMapProjData* MapProjection(const char* name);
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
};

#endif
