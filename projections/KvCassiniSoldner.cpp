#include "projections/KvCassiniSoldner.h"

#include "projections/KvCassiniSoldnerEllipsoid.h"
#include "projections/KvCassiniSoldnerSphere.h"

CKvCassiniSoldner::CKvCassiniSoldner(const std::string& name, double centralMeridian, double originLatitude,
                                     double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvVariantEngine(name.c_str(),
                       CKvCassiniSoldnerProjection(name, std::string(), std::string(), centralMeridian, originLatitude,
                                                   falseEasting, falseNorthing),
                       ellipsoid)
{
}

CKvVariant* CKvCassiniSoldner::_makeVariant(const CKvCassiniSoldnerProjection& p, const CKvEllipsoid& ellipsoid)
{
    if (_isSphere(ellipsoid))
        return new CKvCassiniSoldnerSphere(p.GetCentralMeridian(), p.GetOriginLatitude(), p.GetFalseEasting(),
                                           p.GetFalseNorthing(), ellipsoid);
    return new CKvCassiniSoldnerEllipsoid(p.GetCentralMeridian(), p.GetOriginLatitude(), p.GetFalseEasting(),
                                          p.GetFalseNorthing(), ellipsoid);
}
