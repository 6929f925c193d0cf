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
    return CKvConicVariant::Make<CKvEquidistantConicSphere, CKvEquidistantConicEllipsoid>(p, ellipsoid,
                                                                                          _isSphere(ellipsoid));
}
