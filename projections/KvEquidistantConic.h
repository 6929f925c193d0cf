#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONIC_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONIC_H

#include "catalogue/KvEquidistantConicProjection.h"
#include "projections/KvConicEngine.h"
#include "projections/KvEquidistantConicEllipsoid.h"
#include "projections/KvEquidistantConicSphere.h"

#include <string>

// Equidistant conic (Snyder, chapter 16), on the sphere or the ellipsoid.
class CKvEquidistantConic : public CKvConicEngine<CKvEquidistantConic, CKvEquidistantConicProjection,
                                                  CKvEquidistantConicSphere, CKvEquidistantConicEllipsoid>
{
public:
    explicit CKvEquidistantConic(const CKvEquidistantConicProjection* definition) : CKvConicEngine(*definition) {}
    // first and second parallel, central meridian, origin latitude (degrees), FE, FN.
    CKvEquidistantConic(const std::string& name, double phi1, double phi2, double centralMeridian,
                        double originLatitude, double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
        : CKvConicEngine(name.c_str(), phi1, phi2, centralMeridian, originLatitude, falseEasting, falseNorthing,
                         ellipsoid)
    {
    }
};

#endif
