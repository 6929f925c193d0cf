#ifndef KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREA_H
#define KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREA_H

#include "catalogue/KvLambertAzimuthalEqualAreaProjection.h"
#include "projections/KvVariantEngine.h"

#include <string>

// Lambert azimuthal equal-area (EPSG method 9820), on the sphere or the ellipsoid.
class CKvLambertAzimuthalEqualArea
    : public CKvVariantEngine<CKvLambertAzimuthalEqualArea, CKvLambertAzimuthalEqualAreaProjection>
{
public:
    explicit CKvLambertAzimuthalEqualArea(const CKvLambertAzimuthalEqualAreaProjection* definition)
        : CKvVariantEngine(*definition)
    {
    }
    // longitude and latitude of the origin (degrees), FE, FN.
    CKvLambertAzimuthalEqualArea(const std::string& name, double centralMeridian, double originLatitude,
                                 double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    static CKvVariant* _makeVariant(const CKvLambertAzimuthalEqualAreaProjection& parameters,
                                    const CKvEllipsoid& ellipsoid);
};

#endif
