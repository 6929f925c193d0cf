#include "projections/KvAlbersEqualArea.h"

#include "projections/KvAlbersEqualAreaEllipsoid.h"
#include "projections/KvAlbersEqualAreaSphere.h"

CKvAlbersEqualArea::CKvAlbersEqualArea(const std::string& name, double phi1, double phi2, double centralMeridian,
                                       double originLatitude, double falseEasting, double falseNorthing,
                                       const CKvEllipsoid& ellipsoid)
    : CKvVariantEngine(name.c_str(),
                       CKvAlbersEqualAreaProjection(name, std::string(), std::string(), phi1, phi2, centralMeridian,
                                                    originLatitude, falseEasting, falseNorthing),
                       ellipsoid)
{
}

CKvVariant* CKvAlbersEqualArea::_makeVariant(const CKvAlbersEqualAreaProjection& p, const CKvEllipsoid& ellipsoid)
{
    return CKvConicVariant::Make<CKvAlbersEqualAreaSphere, CKvAlbersEqualAreaEllipsoid>(p, ellipsoid,
                                                                                        _isSphere(ellipsoid));
}
