#include "projections/KvLambertAzimuthalEqualArea.h"

#include "projections/KvLambertAzimuthalEqualAreaEllipsoid.h"
#include "projections/KvLambertAzimuthalEqualAreaSphere.h"

CKvLambertAzimuthalEqualArea::CKvLambertAzimuthalEqualArea(const std::string& name, double centralMeridian,
                                                           double originLatitude, double falseEasting,
                                                           double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvVariantEngine(name.c_str(),
                       CKvLambertAzimuthalEqualAreaProjection(name, std::string(), std::string(), centralMeridian,
                                                              originLatitude, falseEasting, falseNorthing),
                       ellipsoid)
{
}

CKvVariant* CKvLambertAzimuthalEqualArea::_makeVariant(const CKvLambertAzimuthalEqualAreaProjection& p,
                                                       const CKvEllipsoid& ellipsoid)
{
    if (_isSphere(ellipsoid))
        return new CKvLambertAzimuthalEqualAreaSphere(p.GetCentre(), p.GetOriginLatitude(), p.GetFalseEasting(),
                                                      p.GetFalseNorthing(), ellipsoid);
    return new CKvLambertAzimuthalEqualAreaEllipsoid(p.GetCentre(), p.GetOriginLatitude(), p.GetFalseEasting(),
                                                     p.GetFalseNorthing(), ellipsoid);
}
