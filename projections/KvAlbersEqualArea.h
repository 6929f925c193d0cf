#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREA_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREA_H

#include "catalogue/KvAlbersEqualAreaProjection.h"
#include "projections/KvAlbersEqualAreaEllipsoid.h"
#include "projections/KvAlbersEqualAreaSphere.h"
#include "projections/KvConicEngine.h"

#include <string>

// Albers conic equal-area (EPSG method 9822), on the sphere or the ellipsoid.
class CKvAlbersEqualArea : public CKvConicEngine<CKvAlbersEqualArea, CKvAlbersEqualAreaProjection,
                                                 CKvAlbersEqualAreaSphere, CKvAlbersEqualAreaEllipsoid>
{
public:
    explicit CKvAlbersEqualArea(const CKvAlbersEqualAreaProjection* definition) : CKvConicEngine(*definition) {}
    // first and second parallel, central meridian, origin latitude (degrees), FE, FN.
    CKvAlbersEqualArea(const std::string& name, double phi1, double phi2, double centralMeridian, double originLatitude,
                       double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
        : CKvConicEngine(name.c_str(), phi1, phi2, centralMeridian, originLatitude, falseEasting, falseNorthing,
                         ellipsoid)
    {
    }
};

#endif
