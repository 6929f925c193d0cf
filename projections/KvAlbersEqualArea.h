#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREA_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREA_H

#include "catalogue/KvAlbersEqualAreaProjection.h"
#include "projections/KvVariantEngine.h"

#include <string>

// Albers conic equal-area (EPSG method 9822), on the sphere or the ellipsoid.
class CKvAlbersEqualArea : public CKvVariantEngine<CKvAlbersEqualArea, CKvAlbersEqualAreaProjection>
{
public:
    explicit CKvAlbersEqualArea(const CKvAlbersEqualAreaProjection* definition) : CKvVariantEngine(*definition) {}
    // first and second parallel, central meridian, origin latitude (degrees), FE, FN.
    CKvAlbersEqualArea(const std::string& name, double phi1, double phi2, double centralMeridian, double originLatitude,
                       double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    static CKvVariant* _makeVariant(const CKvAlbersEqualAreaProjection& parameters, const CKvEllipsoid& ellipsoid);
};

#endif
