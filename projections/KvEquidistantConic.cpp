#include "projections/KvEquidistantConic.h"

#include "projections/KvEquidistantConicEllipsoid.h"
#include "projections/KvEquidistantConicSphere.h"

CKvEquidistantConic::CKvEquidistantConic(const std::string& name, double phi1, double phi2, double centralMeridian,
                                         double originLatitude, double falseEasting, double falseNorthing,
                                         const CKvEllipsoid& ellipsoid)
    : CKvVariantEngine(name.c_str(),
                       CKvEquidistantConicProjection(name, std::string(), std::string(), phi1, phi2, centralMeridian,
                                                     originLatitude, falseEasting, falseNorthing),
                       ellipsoid)
{
}

CKvVariant* CKvEquidistantConic::_makeVariant(const CKvEquidistantConicProjection& p, const CKvEllipsoid& ellipsoid)
{
    if (_isSphere(ellipsoid))
        return new CKvEquidistantConicSphere(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(),
                                             p.GetOriginLatitude(), p.GetFalseEasting(), p.GetFalseNorthing(),
                                             ellipsoid);
    return new CKvEquidistantConicEllipsoid(p.GetParallel1(), p.GetParallel2(), p.GetCentralMeridian(),
                                            p.GetOriginLatitude(), p.GetFalseEasting(), p.GetFalseNorthing(),
                                            ellipsoid);
}
