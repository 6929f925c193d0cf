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
    if (_isSphere(ellipsoid))
        return new CKvAlbersEqualAreaSphere(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(),
                                            p.GetOriginLatitude(), p.GetFalseEasting(), p.GetFalseNorthing(),
                                            ellipsoid);
    return new CKvAlbersEqualAreaEllipsoid(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(),
                                           p.GetOriginLatitude(), p.GetFalseEasting(), p.GetFalseNorthing(), ellipsoid);
}
